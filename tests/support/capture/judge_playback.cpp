// Judges what a player showed and played against the file that it was given:
//   judge_playback --handed-over TIME [--grabs FOLDER --film FILE --size WxH --rate FPS --shape W:H]
//                  [--recording FILE --source FILE...]
// TIME is in seconds since 1970; FOLDER comes from watch_screen; --film holds frames of size WxH with 4 bytes
// a pixel (B, G, R, unused) from the file's beginning, --shape is how wide and high they are to appear;
// --recording comes from stamp_sound and is to be one of the sources (s16le, stereo, 48000 Hz). Ends with 0
// only if all that was given was really seen and heard.
#include "tests/support/capture/picture_match.h"
#include "tests/support/capture/sound_match.h"

#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace brindlecast::testing {
namespace {

constexpr int kRate = 48000;
using Bytes = std::vector<std::uint8_t>;

struct Options {
    std::map<std::string, std::string> values;
    std::vector<std::string> sources;
    [[nodiscard]] const std::string& Get(const std::string& name) const {
        const auto found = values.find(name);
        if (found == values.end()) {
            throw std::invalid_argument(name + " is missing");
        }
        return found->second;
    }
    [[nodiscard]] bool Has(const std::string& name) const { return values.count(name) != 0; }
};

Bytes Load(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        throw std::runtime_error("cannot read " + path);
    }
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::pair<int, int> Pair(const std::string& text, char separator) {
    const std::size_t at = text.find(separator);
    if (at == std::string::npos) {
        throw std::invalid_argument("not a pair: " + text);
    }
    return {std::stoi(text.substr(0, at)), std::stoi(text.substr(at + 1))};
}

ReferenceFilm LoadFilm(const Options& options) {
    const auto [width, height] = Pair(options.Get("--size"), 'x');
    const auto [displayWidth, displayHeight] = Pair(options.Get("--shape"), ':');
    ReferenceFilm film{{}, std::stod(options.Get("--rate")), displayWidth, displayHeight};
    const Bytes bytes = Load(options.Get("--film"));
    const std::size_t size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
    for (std::size_t at = 0; at + size <= bytes.size(); at += size) {
        const BgraView frame{bytes.data() + at, width, height, std::ptrdiff_t{width} * 4};
        film.frames.push_back(Shrink(frame, {0, 0, width, height}, width, height));
    }
    return film;
}

PictureVerdict Picture(const Options& options, double handedOver) {
    const ReferenceFilm film = LoadFilm(options);
    std::ifstream index(options.Get("--grabs") + "/index.tsv");
    std::vector<Bytes> storage;
    std::vector<Grab> grabs;
    double time = 0;
    int width = 0;
    int height = 0;
    std::string name;
    while (index >> time >> width >> height >> name) {
        storage.push_back(Load(options.Get("--grabs") + "/" + name));
        if (storage.back().size() != static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4) {
            throw std::runtime_error(name + " is not whole");
        }
        grabs.push_back(
            {time - handedOver, {storage.back().data(), width, height, std::ptrdiff_t{width} * 4}});
    }
    const PictureVerdict verdict = JudgePicture(grabs, film);
    if (verdict.seen) {
        std::printf("picture: seen, %d pictures, %.1f dB against the film%s, %.2f s after the file was "
                    "handed over (give or take %.2f), at "
                    "%d,%d %dx%d of the window\n",
                    verdict.compared, verdict.decibels,
                    verdict.still ? " (which stands still)" : " and moving with it", verdict.delay,
                    verdict.hesitation, verdict.place.left, verdict.place.top, verdict.place.width,
                    verdict.place.height);
    } else {
        std::printf("picture: NOT seen: %s (%d pictures, %.1f dB)\n", verdict.complaint.c_str(),
                    static_cast<int>(grabs.size()), verdict.decibels);
    }
    return verdict;
}

Recording LoadSound(const std::string& path) {
    const Bytes bytes = Load(path);
    std::vector<std::int16_t> samples;
    samples.reserve(bytes.size() / 2);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        samples.push_back(static_cast<std::int16_t>(bytes[i] | (bytes[i + 1] << 8)));
    }
    return SplitStereo(samples, kRate);
}

SoundMatch Sound(const Options& options, double handedOver, std::optional<double> pictureDelay) {
    const Recording recording = LoadSound(options.Get("--recording"));
    double start = 0;
    if (!(std::ifstream(options.Get("--recording") + ".start") >> start)) {
        throw std::runtime_error("the recording has no start time");
    }
    SoundMatch best;
    std::size_t number = 0;
    for (std::size_t i = 0; i < options.sources.size(); ++i) {
        const SoundMatch match =
            MatchSound(recording, start - handedOver, LoadSound(options.sources[i]), pictureDelay);
        if (i == 0 || match.heard > best.heard ||
            (match.heard == best.heard && match.likeness > best.likeness)) {
            best = match;
            number = i + 1;
        }
    }
    const std::string which = options.sources.size() > 1 ? "audio stream " + std::to_string(number) + " of " +
                                                               std::to_string(options.sources.size()) + ", "
                                                         : "";
    if (best.heard) {
        std::printf("sound: heard, %s%.1f dBFS (%.1f in the file), likeness %.2f, without holes\n",
                    which.c_str(), best.level, best.source, best.likeness);
    } else {
        std::printf("sound: NOT heard: %s (%s%.1f dBFS, %.1f in the file, likeness %.2f, %.0f %% covered)\n",
                    best.complaint.c_str(), which.c_str(), best.level, best.source, best.likeness,
                    best.coverage * 100);
    }
    return best;
}

Options Parse(std::span<char* const> arguments) {
    Options options;
    for (std::size_t i = 1; i < arguments.size(); i += 2) {
        if (i + 1 == arguments.size()) {
            throw std::invalid_argument(std::string("no value for ") + arguments[i]);
        }
        const std::string name = arguments[i];
        if (name == "--source") {
            options.sources.emplace_back(arguments[i + 1]);
        } else {
            options.values[name] = arguments[i + 1];
        }
    }
    return options;
}

int Run(const Options& options) {
    const double handedOver = std::stod(options.Get("--handed-over"));
    const bool hasPicture = options.Has("--film");
    const bool hasSound = options.Has("--recording");
    if (!hasPicture && !hasSound) {
        throw std::invalid_argument("nothing to judge");
    }
    PictureVerdict picture;
    SoundMatch sound;
    bool right = true;
    if (hasPicture) {
        picture = Picture(options, handedOver);
        right = right && picture.seen;
    }
    if (hasSound) {
        const bool known = picture.seen && picture.delayIsSure;
        sound = Sound(options, handedOver, known ? std::optional(picture.delay) : std::nullopt);
        right = right && sound.heard;
    }
    if (picture.seen && sound.heard && picture.delayIsSure && sound.delayIsSure) {
        std::printf("sound comes %.2f s after the picture\n", sound.delay - picture.delay);
    }
    return right ? 0 : 1;
}

} // namespace
} // namespace brindlecast::testing

int main(int argc, char** argv) {
    namespace testing = brindlecast::testing;
    try {
        return testing::Run(testing::Parse(std::span<char* const>(argv, static_cast<std::size_t>(argc))));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "judge_playback: %s\n", error.what());
        return 2;
    }
}
