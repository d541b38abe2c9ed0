#include "base/scan.h"
#include "base/strict_utf8.h"
#include "base/utf8.h"
#include "subtitles/srt_to_ass.h"
#include "subtitles/subtitle_cues.h"
#include "subtitles/subtitle_file.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

using namespace brindlecast;

namespace {

void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// Whether a run of digits is long enough to overflow, where the C library's answer is undefined.
bool HasHugeNumber(std::string_view text) {
    std::size_t run = 0;
    for (const char byte : text) {
        run = IsDigit(byte) ? run + 1 : 0;
        if (run > 9) {
            return true;
        }
    }
    return false;
}

// The scanner must find what the C library finds.
void CheckScanning(const std::string& line, const char* pattern) {
    std::array<int, 4> ours{};
    const std::size_t count = ScanIntegers(line, pattern, ours);
    if (HasHugeNumber(line)) {
        return;
    }
    std::array<int, 4> theirs{};
    const int expected = std::sscanf(line.c_str(), pattern, &theirs[0], &theirs[1], &theirs[2], &theirs[3]);
    Require(count == static_cast<std::size_t>(std::max(expected, 0)) && ours == theirs);
}

void CheckTimes(const std::string& line) {
    CheckScanning(line, "%d:%d:%d,%d");
    CheckScanning(line, "%d:%d:%d.%d");
    const Milliseconds time = ParseSrtTime(line);
    Require(time == ParseCueTime(line));
    Require(FormatAssTime(time).size() < 32);
}

// An event for each line that begins as one, and nothing but lines.
std::size_t CountEvents(std::string_view script) {
    std::size_t count = 0;
    while (!script.empty()) {
        count += TakeSubtitleLine(script).starts_with("Dialogue: 0,") ? 1 : 0;
    }
    return count;
}

// Each event has a line with an arrow in the file.
void CheckConversion(std::string_view content) {
    const std::string script = ConvertSrtToAss(content, SubtitleStyle{});
    Require(script.starts_with("[Script Info]\n") && script.ends_with('\n'));
    std::size_t arrows = 0;
    for (std::size_t at = 0; (at = content.find(" --> ", at)) != std::string_view::npos; ++at) {
        ++arrows;
    }
    Require(CountEvents(script) <= arrows);
}

// The text of a cue that has these lines, made the plain way: joined, then freed of one tag after the other.
std::string PlainText(std::string_view lines) {
    std::string text;
    while (!lines.empty()) {
        const std::string_view line = TakeSubtitleLine(lines);
        if (line.empty()) {
            break;
        }
        text.append(text.empty() ? "" : "\\N").append(line);
    }
    while (true) {
        const std::size_t open = text.find('<');
        const std::size_t close = text.find('>', std::min(open, text.size()));
        if (close == std::string::npos) {
            return text;
        }
        text.erase(open, close - open + 1);
    }
}

void CheckText(std::string_view lines) {
    const std::string script =
        ConvertSrtToAss(std::string("1\n00:00:01,000 --> 00:00:02,000\n").append(lines), SubtitleStyle{});
    const std::string event = "Dialogue: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,";
    std::string_view first = lines;
    if (TakeSubtitleLine(first).empty()) {
        return; // no text at all
    }
    const std::size_t at = script.find(event);
    Require(at != std::string::npos);
    Require(script.substr(at + event.size()).starts_with(PlainText(lines) + "\n"));
}

void CheckCues(std::string_view content) {
    std::vector<SubtitleCue> cues;
    try {
        ParseSubtitleCues(content, cues);
    } catch (const std::range_error&) {
        // Text that is not UTF-8; what was finished before must be whole.
    }
    for (const SubtitleCue& cue : cues) {
        Require(!cue.text.empty() && cue.text.front() != L'\n' && cue.text.back() != L'\n');
    }
}

// What is converted must survive the way back.
void CheckUtf8(std::string_view line) {
    try {
        const std::wstring text = StrictUtf8ToWide(line);
        Require(HasUtf8Form(text) && WideToUtf8(text) == line);
    } catch (const std::range_error&) {
        Require(WideToUtf8(Utf8ToWide(std::string(line).c_str())) != line);
    }
}

} // namespace

// Reads the input as a subtitle file, and each of its lines as a time and as a text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view content(reinterpret_cast<const char*>(data), size);
    content = WithoutUtf8Mark(content);
    CheckConversion(content);
    CheckText(content);
    CheckCues(content);
    while (!content.empty()) {
        const std::string_view line = TakeSubtitleLine(content);
        CheckTimes(std::string(line));
        CheckCues(std::string("1\n").append(line).append("\ntext\n"));
        CheckUtf8(line);
    }
    return 0;
}
