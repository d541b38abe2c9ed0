#include "filters/core/demux_file.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>

extern "C" {
#include <libavcodec/packet.h>
}

#ifndef _WIN32 // the files are made here with the ffmpeg program; tests/filters plays them on the product's
               // platform

namespace brindlecast {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr DemuxTime kSecond = 10'000'000;
constexpr const char* kPicture = "-f lavfi -i testsrc2=s=64x36:r=25 ";
constexpr const char* kSound = "-f lavfi -i sine=r=48000 ";
constexpr const char* kH264 = "-c:v libx264 -preset ultrafast -bf 2 -b_strategy 0 -g 50 -sc_threshold 0 ";

// A folder of files that lives as long as the test program.
class Media {
public:
    static std::string Path(const std::string& name) { return (Instance().folder_ / name).string(); }

    // Runs ffmpeg once per name; the name's ending decides the container.
    static std::string Make(const std::string& name, const std::string& arguments) {
        const std::string path = Path(name);
        if (!std::filesystem::exists(path)) {
            const std::string command = "ffmpeg -v error -nostdin -y " + arguments + " '" + path + "'";
            EXPECT_EQ(std::system(command.c_str()), 0) << command;
        }
        return path;
    }

private:
    Media() {
        std::string pattern = (std::filesystem::temp_directory_path() / "demux-test-XXXXXX").string();
        folder_ = mkdtemp(pattern.data());
    }
    ~Media() { std::filesystem::remove_all(folder_); }
    static Media& Instance() {
        static Media media;
        return media;
    }

    std::filesystem::path folder_;
};

std::string Film(const std::string& name, const std::string& more = "") {
    return Media::Make(name, std::string(kPicture) + kSound + "-t 10 " + kH264 + "-c:a aac " + more);
}

std::unique_ptr<DemuxFile> OpenFile(const std::string& path) {
    int error = 0;
    auto file = DemuxFile::Open(path, error);
    EXPECT_TRUE(file) << path << ": " << error;
    return file;
}

int FirstOf(const DemuxFile& file, StreamKind kind) {
    for (std::size_t i = 0; i < file.Streams().size(); ++i) {
        if (file.Streams()[i].kind == kind)
            return static_cast<int>(i);
    }
    return -1;
}

std::vector<DemuxTime> TableOf(const std::string& path) {
    const auto file = OpenFile(path);
    file->LoadKeyframes(FirstOf(*file, StreamKind::Video));
    return file->Keyframes();
}

// Presentation times of the keyframe packets, by reading the whole file.
std::vector<DemuxTime> KeyframesByReading(const std::string& path) {
    const auto file = OpenFile(path);
    const int video = FirstOf(*file, StreamKind::Video);
    std::vector<DemuxTime> times;
    DemuxPacket packet;
    while (file->Read(packet) == DemuxFile::ReadResult::Packet) {
        if (packet.stream == video && packet.keyframe)
            times.push_back(*packet.start);
    }
    return times;
}

DemuxPacket NextOf(DemuxFile& file, int stream) {
    DemuxPacket packet;
    while (file.Read(packet) == DemuxFile::ReadResult::Packet) {
        if (packet.stream == stream)
            return packet;
    }
    ADD_FAILURE() << "no packet";
    return {};
}

TEST(DemuxFileTest, StreamsAndDurationAreTold) {
    const auto file = OpenFile(Film("film.mkv"));
    ASSERT_THAT(file->Streams(), SizeIs(2));
    EXPECT_EQ(file->Streams()[0].kind, StreamKind::Video);
    EXPECT_EQ(file->Streams()[0].codecName, "h264");
    EXPECT_EQ(file->Streams()[0].frameDuration, 400'000);
    EXPECT_EQ(file->Streams()[1].codecName, "aac");
    EXPECT_TRUE(file->Streams()[1].decodable);
    EXPECT_NEAR(static_cast<double>(file->Duration()), 10.0 * kSecond, 0.1 * kSecond);
}

TEST(DemuxFileTest, TheTableIsWhatReadingTheFileFinds) {
    const std::string vfr =
        "-f lavfi -i testsrc2=s=64x36:r=25 -t 12 -vf \"select='lt(mod(n\\,7)\\,3)+lt(n\\,40)'\" "
        "-vsync vfr -c:v libx264 -preset ultrafast -bf 3 -b_strategy 0 -g 20 ";
    for (const std::string& path :
         {Film("film.mkv"), Film("film.mp4"), Film("faststart.mp4", "-movflags +faststart"),
          Media::Make("vfr.mp4", vfr),
          Media::Make("tiny_gop.mp4", std::string(kPicture) + "-t 4 " + kH264 + "-g 3 ")}) {
        const std::vector<DemuxTime> truth = KeyframesByReading(path);
        EXPECT_GE(truth.size(), 5u) << path;
        EXPECT_EQ(TableOf(path), truth) << path;
    }
}

TEST(DemuxFileTest, LoadingTheTableLeavesTheFileAtItsStart) {
    for (const char* name : {"film.mkv", "film.mp4"}) {
        const std::string path = Film(name);
        const auto plain = OpenFile(path);
        const auto loaded = OpenFile(path);
        loaded->LoadKeyframes(0);
        DemuxPacket expected;
        DemuxPacket got;
        int packets = 0;
        while (plain->Read(expected) == DemuxFile::ReadResult::Packet) {
            ASSERT_EQ(loaded->Read(got), DemuxFile::ReadResult::Packet);
            ASSERT_EQ(got.stream, expected.stream);
            ASSERT_EQ(got.start, expected.start);
            ASSERT_EQ(got.Bytes(), expected.Bytes());
            ASSERT_EQ(std::memcmp(got.data->data, expected.data->data, got.Bytes()), 0);
            ++packets;
        }
        EXPECT_EQ(loaded->Read(got), DemuxFile::ReadResult::End);
        EXPECT_GT(packets, 600);
    }
}

TEST(DemuxFileTest, EveryEntryIsReachedExactlyAndOneUnitBeforeItIsTheOneBefore) {
    for (const char* name : {"film.mkv", "film.mp4"}) {
        const auto file = OpenFile(Film(name));
        file->LoadKeyframes(0);
        const std::vector<DemuxTime> table = file->Keyframes();
        ASSERT_THAT(table, SizeIs(5));
        for (std::size_t i = table.size(); i-- > 0;) {
            ASSERT_TRUE(file->Seek(table[i], 0));
            DemuxPacket packet = NextOf(*file, 0);
            EXPECT_EQ(packet.start, table[i]) << name;
            EXPECT_TRUE(packet.keyframe);
            if (i == 0)
                continue;
            ASSERT_TRUE(file->Seek(table[i] - 1, 0));
            EXPECT_EQ(NextOf(*file, 0).start, table[i - 1]) << name;
        }
    }
}

TEST(DemuxFileTest, WithoutATableASeekStillBeginsAtAKeyframeNotBehindTheTarget) {
    const std::string ts = Film("film.ts");
    const std::string fragmented = Film("fragmented.mp4", "-movflags frag_keyframe+empty_moov");
    const std::string live = Media::Make("live.mkv", std::string(kPicture) + kSound + "-t 10 " + kH264 +
                                                         "-c:a aac -f matroska -live 1 ");
    for (const std::string& path : {ts, fragmented, live}) {
        const auto file = OpenFile(path);
        const std::vector<DemuxTime> truth = KeyframesByReading(path);
        for (const DemuxTime target : {3 * kSecond, 5 * kSecond + kSecond / 2, 8 * kSecond, kSecond}) {
            ASSERT_TRUE(file->Seek(target, 0)) << path;
            const DemuxPacket packet = NextOf(*file, 0);
            EXPECT_TRUE(packet.keyframe) << path;
            EXPECT_LE(*packet.start, target) << path;
            EXPECT_THAT(truth, testing::Contains(*packet.start)) << path;
        }
        ASSERT_TRUE(file->Seek(0, 0));
        EXPECT_EQ(NextOf(*file, 0).start, truth.front()) << path;
    }
}

TEST(DemuxFileTest, ThereIsNoTableWithoutACompleteIndex) {
    EXPECT_THAT(TableOf(Film("film.ts")), IsEmpty());
    EXPECT_THAT(TableOf(Film("film.flv")), IsEmpty());
    EXPECT_THAT(TableOf(Film("film.avi")), IsEmpty());
    const std::string live = Media::Make("live.mkv", std::string(kPicture) + kSound + "-t 10 " + kH264 +
                                                         "-c:a aac -f matroska -live 1 ");
    EXPECT_THAT(TableOf(live), IsEmpty());
    const auto song = OpenFile(Media::Make("song.mp3", std::string(kSound) + "-t 5 -c:a libmp3lame "));
    song->LoadKeyframes(0);
    EXPECT_THAT(song->Keyframes(), IsEmpty());
}

TEST(DemuxFileTest, AnIndexMadeUpWhileReadingIsNoTable) {
    std::ifstream in(Film("film.mkv"), std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), {});
    const std::string cues = "\x1c\x53\xbb\x6b";
    int places = 0;
    for (std::size_t at = bytes.find(cues); at != std::string::npos; at = bytes.find(cues, at + 1)) {
        bytes[at + 3] = '\x6c'; // an element that nobody knows
        ++places;
    }
    ASSERT_GE(places, 1);
    const std::string path = Media::Path("no_cues.mkv");
    std::ofstream(path, std::ios::binary) << bytes;
    EXPECT_GT(OpenFile(path)->Duration(), 9 * kSecond);
    EXPECT_THAT(TableOf(path), IsEmpty());
}

TEST(DemuxFileTest, AllIntraIsSaidAndHasNoTable) {
    for (const auto& [name, codec] :
         {std::pair("intra.mp4", "-c:v libx264 -g 1 "), std::pair("intra.mkv", "-c:v mjpeg ")}) {
        const auto file = OpenFile(Media::Make(name, std::string(kPicture) + "-t 3 " + codec));
        file->LoadKeyframes(0);
        EXPECT_TRUE(file->AllIntra()) << name;
        EXPECT_THAT(file->Keyframes(), IsEmpty()) << name;
    }
    const auto film = OpenFile(Film("film.mp4"));
    film->LoadKeyframes(0);
    EXPECT_FALSE(film->AllIntra());
}

TEST(DemuxFileTest, TimesCountFromTheContainersStart) {
    const auto file = OpenFile(Film("film.ts")); // its clock starts at 1.4 s
    DemuxTime earliest = kSecond;
    DemuxPacket packet;
    for (int i = 0; i < 20 && file->Read(packet) == DemuxFile::ReadResult::Packet; ++i)
        earliest = std::min(earliest, packet.start.value_or(kSecond));
    EXPECT_EQ(earliest, 0);
}

TEST(DemuxFileTest, SoundSeeksToThePacketBeforeTheTarget) {
    for (const auto& [name, codec] :
         {std::pair("song.mp3", "-c:a libmp3lame "), std::pair("song.flac", "-c:a flac ")}) {
        const auto file = OpenFile(Media::Make(name, std::string(kSound) + "-t 5 " + codec));
        for (const DemuxTime target : {3 * kSecond, kSecond + 7, 4 * kSecond}) {
            ASSERT_TRUE(file->Seek(target, 0));
            const DemuxPacket packet = NextOf(*file, 0);
            EXPECT_LE(*packet.start, target) << name;
            EXPECT_GT(*packet.start, target - kSecond / 2) << name;
        }
    }
}

TEST(DemuxFileTest, TruncatedFilesEndAndSeekIntoWhatIsLeft) {
    for (const char* name : {"film.mkv", "faststart.mp4"}) {
        const std::string whole =
            std::string(name) == "film.mkv" ? Film(name) : Film(name, "-movflags +faststart");
        const std::string path = Media::Path(std::string("half_") + name);
        std::filesystem::copy_file(whole, path);
        std::filesystem::resize_file(path, std::filesystem::file_size(whole) / 2);
        const auto file = OpenFile(path);
        file->LoadKeyframes(0);
        for (const DemuxTime time : file->Keyframes())
            EXPECT_LT(time, 8 * kSecond);
        file->Seek(9 * kSecond, 0);
        DemuxPacket packet;
        int packets = 0;
        while (file->Read(packet) == DemuxFile::ReadResult::Packet)
            ++packets;
        EXPECT_GT(packets, 10) << name;
    }
}

TEST(DemuxFileTest, WhatIsNoMediaIsRefused) {
    const auto refused = [](const std::string& name, const std::string& content) {
        const std::string path = Media::Path(name);
        std::ofstream(path, std::ios::binary) << content;
        int error = 0;
        EXPECT_EQ(DemuxFile::Open(path, error), nullptr) << name;
        EXPECT_LT(error, 0);
    };
    refused("empty.mkv", "");
    refused("text.mkv", std::string(4000, 'a') + "\nnot a film\n");
    refused("text.txt", "just some words\n");
    refused("only.srt", "1\n00:00:01,000 --> 00:00:02,000\nwords\n");
    int error = 0;
    EXPECT_EQ(DemuxFile::Open(Media::Path("missing.mkv"), error), nullptr);
    EXPECT_EQ(DemuxFile::Open("concat:" + Film("film.ts"), error), nullptr) << "another protocol";
}

TEST(DemuxFileTest, DamagedBytesNeitherCrashNorHang) {
    std::ifstream in(Film("film.mkv"), std::ios::binary);
    const std::string whole((std::istreambuf_iterator<char>(in)), {});
    unsigned seed = 1;
    for (int round = 0; round < 20; ++round) {
        std::string damaged = whole;
        for (int i = 0; i < 200; ++i) {
            seed = seed * 1664525u + 1013904223u;
            damaged[(seed >> 4) % damaged.size()] = static_cast<char>(seed >> 24);
        }
        const std::string path = Media::Path("damaged.mkv");
        std::ofstream(path, std::ios::binary) << damaged;
        int error = 0;
        const auto file = DemuxFile::Open(path, error);
        if (!file)
            continue;
        file->LoadKeyframes(FirstOf(*file, StreamKind::Video));
        file->Seek(5 * kSecond, 0);
        DemuxPacket packet;
        int packets = 0;
        while (packets < 10'000 && file->Read(packet) == DemuxFile::ReadResult::Packet)
            ++packets;
        EXPECT_LT(packets, 10'000);
    }
}

TEST(DemuxFileTest, KoreanNamesOpen) {
    const std::string path = Media::Path("한국어 이름.mkv");
    std::filesystem::copy_file(Film("film.mkv"), path);
    EXPECT_TRUE(OpenFile(path));
}

TEST(DemuxFileTest, AnInterruptedReadFailsAndTheFileGoesOnAfterASeek) {
    const auto file = OpenFile(Film("film.mkv"));
    file->Interrupt(true);
    DemuxPacket packet;
    int packets = 0;
    while (file->Read(packet) == DemuxFile::ReadResult::Packet) // what is in the buffer may still come
        ++packets;
    EXPECT_LT(packets, 700);
    file->Interrupt(false);
    ASSERT_TRUE(file->Seek(4 * kSecond, 0));
    EXPECT_LE(*NextOf(*file, 0).start, 4 * kSecond);
}

} // namespace
} // namespace brindlecast

#endif
