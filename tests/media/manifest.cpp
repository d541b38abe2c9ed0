#include "tests/media/manifest.h"

#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

namespace brindlecast::testing {
namespace {

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, separator);) {
        parts.push_back(part);
    }
    return parts;
}

double Number(const std::string& text) {
    return text.empty() ? 0.0 : std::stod(text);
}

double Ratio(const std::string& text) {
    const std::size_t slash = text.find('/');
    return slash == std::string::npos ? Number(text)
                                      : Number(text.substr(0, slash)) / Number(text.substr(slash + 1));
}

std::vector<double> Numbers(const std::string& text) {
    std::vector<double> numbers;
    for (const std::string& part : Split(text, ',')) {
        numbers.push_back(Number(part));
    }
    return numbers;
}

} // namespace

std::vector<MediaEntry> ReadManifest(const std::string& folder) {
    std::ifstream in(folder + "/manifest.tsv");
    std::string line;
    if (!std::getline(in, line)) {
        throw std::runtime_error("no manifest in " + folder);
    }
    const std::vector<std::string> columns = Split(line, '\t');
    std::vector<MediaEntry> entries;
    while (std::getline(in, line)) {
        const std::vector<std::string> cells = Split(line, '\t');
        std::map<std::string, std::string> row;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            row[columns[i]] = i < cells.size() ? cells[i] : "";
        }
        const auto whole = [&row](const char* name) {
            return static_cast<int>(Number(row[name]));
        };
        MediaEntry entry;
        entry.name = row["name"];
        entry.broken = row["streams"].empty();
        entry.duration = Number(row["duration"]);
        entry.frames = whole("frames");
        entry.fps = row["fps"].empty() ? 0.0 : Ratio(row["fps"]);
        entry.firstNumber = whole("first_number");
        entry.width = whole("width");
        entry.height = whole("height");
        entry.displayWidth = whole("display_width");
        entry.displayHeight = whole("display_height");
        entry.videoStart = Number(row["video_start"]);
        entry.audioStart = Number(row["audio_start"]);
        entry.tones = Numbers(row["tones"]);
        entry.toneLevel = Number(row["tone_level"]);
        entry.keyframes = Numbers(row["keyframes"]);
        entries.push_back(entry);
    }
    return entries;
}

} // namespace brindlecast::testing
