// The generated media hold what the manifest says, as ffmpeg decodes them.
#include "tests/media/manifest.h"
#include "tests/support/frame_mark.h"
#include "tests/support/tone_analysis.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace brindlecast::testing {

// Found by the framework, which would print bytes otherwise.
static void PrintTo(const MediaEntry& entry, std::ostream* out) {
    *out << entry.name;
}

namespace {

struct CloseProcess {
    void operator()(std::FILE* pipe) const { pclose(pipe); }
};

std::string Folder() {
    const char* folder = std::getenv("BRINDLECAST_MEDIA");
    return folder != nullptr ? folder : "build/media";
}

const std::vector<MediaEntry>& Media() {
    static const std::vector<MediaEntry> entries = ReadManifest(Folder());
    return entries;
}

// Everything that ffmpeg writes to standard output.
std::vector<std::uint8_t> Decode(const MediaEntry& entry, const std::string& arguments) {
    const std::string command =
        "ffmpeg -v error -nostdin -i '" + Folder() + "/" + entry.name + "' " + arguments + " pipe:1";
    const std::unique_ptr<std::FILE, CloseProcess> pipe(popen(command.c_str(), "r"));
    std::vector<std::uint8_t> bytes;
    std::vector<std::uint8_t> buffer(1 << 16);
    for (std::size_t count = 0;
         pipe && (count = std::fread(buffer.data(), 1, buffer.size(), pipe.get())) > 0;) {
        bytes.insert(bytes.end(), buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(count));
    }
    return bytes;
}

class EveryFile : public ::testing::TestWithParam<MediaEntry> {};

TEST_P(EveryFile, FramesCarryTheirNumbersAndColours) {
    const MediaEntry& entry = GetParam();
    if (entry.broken || entry.frames == 0) {
        return;
    }
    const bool upright = entry.displayHeight > entry.displayWidth;
    const int width = upright ? 180 : 320;
    const int height = upright ? 320 : 180;
    const std::vector<std::uint8_t> bytes =
        Decode(entry, "-map 0:V:0 -fps_mode drop -vf scale=" + std::to_string(width) + ":" +
                          std::to_string(height) + ",setsar=1 -pix_fmt bgra -f rawvideo");
    const std::size_t size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
    ASSERT_EQ(bytes.size(), size * static_cast<std::size_t>(entry.frames));
    for (int i = 0; i < entry.frames; ++i) {
        const BgraView view{bytes.data() + size * static_cast<std::size_t>(i), width, height,
                            std::ptrdiff_t{width} * 4};
        ASSERT_EQ(ReadFrameMark(view, {0, 0, width, height}), entry.firstNumber + i);
        const auto patches = ReadColourPatches(view, {0, 0, width, height});
        ASSERT_TRUE(patches);
        ASSERT_LE(LargestPatchError(*patches), 10) << "frame " << i;
    }
}

TEST_P(EveryFile, SoundHasItsToneLevelAndTicks) {
    const MediaEntry& entry = GetParam();
    for (std::size_t track = 0; track < entry.tones.size(); ++track) {
        const std::vector<std::uint8_t> bytes =
            Decode(entry, "-map 0:a:" + std::to_string(track) + " -ac 2 -ar 48000 -f s16le");
        std::vector<std::int16_t> samples;
        for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
            samples.push_back(static_cast<std::int16_t>(bytes[i] | (bytes[i + 1] << 8)));
        }
        const Recording sound = SplitStereo(samples, 48000);
        ASSERT_GT(sound.left.size(), 48000U * 2);
        const double length = static_cast<double>(sound.left.size()) / 48000;
        const auto middle = Between(sound.left, 48000, 0.5, length - 0.5);
        EXPECT_NEAR(DominantFrequency(middle, 48000).value_or(0), entry.tones[track], 0.1);
        if (entry.name == "tracks_mixed.mkv" && track > 0) {
            continue; // mono tells no second, and mixing to stereo changes the level
        }
        EXPECT_NEAR(LevelDbfs(middle), entry.toneLevel, 0.3);
        const std::vector<Tick> ticks = FindTicks(sound.right, 48000);
        // The tick at 0 has no quiet before it.
        ASSERT_GE(ticks.size(), static_cast<std::size_t>(length) - 2);
        for (const Tick& tick : ticks) {
            // Encoders' padding in front counts as time of the stream: up to 23 ms in AAC, 50 in mp3.
            EXPECT_NEAR(tick.recordedAt, tick.filmSecond, 0.055);
        }
    }
}

TEST_P(EveryFile, KeyframesComeEveryTwoSeconds) {
    const MediaEntry& entry = GetParam();
    for (std::size_t i = 0; i < entry.keyframes.size(); ++i) {
        EXPECT_NEAR(entry.keyframes[i], entry.videoStart + 2.0 * static_cast<double>(i), 0.002);
    }
    if (entry.frames > 0) {
        EXPECT_EQ(entry.keyframes.size(), static_cast<std::size_t>(std::ceil(entry.frames / entry.fps / 2)));
    }
}

std::string NameOf(const ::testing::TestParamInfo<MediaEntry>& info) {
    std::string name = info.param.name;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return c >= 128 || std::isalnum(c) == 0; }, '_');
    return std::to_string(info.index) + "_" + name;
}

INSTANTIATE_TEST_SUITE_P(Media, EveryFile, ::testing::ValuesIn(Media()), NameOf);

const MediaEntry& Named(const std::string& name) {
    const auto found = std::find_if(Media().begin(), Media().end(),
                                    [&](const MediaEntry& entry) { return entry.name == name; });
    if (found == Media().end()) {
        throw std::runtime_error(name + " is not in the manifest");
    }
    return *found;
}

std::string Bytes(const std::string& name) {
    std::ifstream in(Folder() + "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TEST(Media, SpecialFilesAreWhatTheirNamesSay) {
    EXPECT_EQ(Named("rotated.mp4").width, 320);
    EXPECT_EQ(Named("rotated.mp4").displayWidth, 180);
    EXPECT_EQ(Named("anamorphic.mp4").width, 240);
    EXPECT_EQ(Named("anamorphic.mp4").displayWidth, 320);
    EXPECT_EQ(Named("film_1080p.mkv").height, 1080);
    EXPECT_EQ(Named("tracks.mkv").tones, (std::vector<double>{440, 550, 880}));
    EXPECT_TRUE(Named("silent.mp4").tones.empty());
    EXPECT_EQ(Named("song_cover.m4a").frames, 0);
    EXPECT_EQ(Named("한국어 영화 01화.mkv").firstNumber, 10000);
    const std::string cues = "\x1C\x53\xBB\x6B";
    EXPECT_NE(Bytes("film.mkv").rfind(cues), std::string::npos);
    // What is left is the entry of the index of elements that names it.
    EXPECT_EQ(Bytes("no_cues.mkv").find(cues), Bytes("no_cues.mkv").rfind(cues));
    EXPECT_EQ(Bytes("live.mkv").find(cues), std::string::npos);
    EXPECT_EQ(Named("live.mkv").duration, 0);
    EXPECT_NEAR(Named("no_cues.mkv").duration, 20, 0.1);
    EXPECT_TRUE(Bytes("empty.mkv").empty());
    EXPECT_EQ(Bytes("truncated.mp4").find("moov"), std::string::npos);
    EXPECT_NE(Bytes("truncated_faststart.mp4").find("moov"), std::string::npos);
    EXPECT_EQ(Bytes("truncated.mkv"), Bytes("film.mkv").substr(0, Bytes("truncated.mkv").size()));
}

} // namespace
} // namespace brindlecast::testing
