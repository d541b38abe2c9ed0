#include "tests/filters/audio_decoder/audio_bench.h"
#include "tests/support/tone_analysis.h"

#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <thread>

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

using brindlecast::testing::Recording;

// 16-bit stereo as the tone analysis wants it.
Recording AsRecording(const std::vector<BYTE>& bytes, int rate) {
    std::vector<std::int16_t> samples(bytes.size() / 2);
    std::memcpy(samples.data(), bytes.data(), samples.size() * 2);
    return brindlecast::testing::SplitStereo(samples, rate);
}

// Samples follow each other without gap and overlap, from `first` on.
void ExpectContinuous(const std::vector<RecordingSink::Sample>& samples, Time100ns first,
                      const AudioFormat& format) {
    ASSERT_FALSE(samples.empty());
    EXPECT_EQ(samples[0].start, first);
    std::int64_t frames = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        EXPECT_LE(std::llabs(*samples[i].start - first - LengthOf(frames, format.sampleRate)), 1) << i;
        frames += static_cast<std::int64_t>(samples[i].bytes.size()) / format.BytesPerFrame();
        EXPECT_LE(std::llabs(*samples[i].stop - first - LengthOf(frames, format.sampleRate)), 1) << i;
        EXPECT_EQ(samples[i].discontinuity, i == 0) << i;
        EXPECT_TRUE(samples[i].syncPoint);
    }
}

// True when floats are the same sound: codecs with random noise in them differ a little from run to run, far
// less than a shift by one sample would make.
bool IsSameSound(const BYTE* a, const BYTE* b, std::size_t bytes) {
    double difference = 0.0;
    double energy = 0.0;
    for (std::size_t at = 0; at + sizeof(float) <= bytes; at += sizeof(float)) {
        float x = 0;
        float y = 0;
        std::memcpy(&x, a + at, sizeof x);
        std::memcpy(&y, b + at, sizeof y);
        difference += std::pow(static_cast<double>(x) - static_cast<double>(y), 2.0);
        energy += std::pow(static_cast<double>(x), 2.0);
    }
    return difference < 1e-3 * energy;
}

struct Song {
    const wchar_t* file;
    SampleKind natural;
    const char* codec;
    // Position in the film of the file's first sample: priming that the container can't tell comes before
    // it.
    double startsAt = 0.0;
};

class AudioSongs : public ::testing::TestWithParam<Song> {
protected:
    const MediaStream stream = ReadStream(GetParam().file, AVMEDIA_TYPE_AUDIO);
};

TEST_P(AudioSongs, EveryBitIsAsTheLibraryDecodesIt) {
    AudioBench bench(stream);
    const AudioFormat format = bench.OutputFormat();
    EXPECT_EQ(format.kind, GetParam().natural);
    bench.PushFrom(stream, 0, 0);
    bench.EndOfStream();
    const auto samples = bench.sink->Samples();
    const auto expected = DecodedSound(stream);
    const auto bytes = Joined(samples);
    ASSERT_EQ(bytes.size(), expected.size());
    EXPECT_TRUE(bytes == expected);
    ExpectContinuous(samples, 0, format);
    EXPECT_EQ(bench.sink->Events().back().kind, RecordingSink::Kind::EndOfStream);
}

TEST_P(AudioSongs, SixteenBitsHaveTheRightToneLevelAndTicks) {
    AudioBench bench(stream, Only(SampleKind::kSigned16));
    bench.PushFrom(stream, 0, 0);
    bench.EndOfStream();
    const auto bytes = Joined(bench.sink->Samples());
    const int rate = bench.OutputFormat().sampleRate;
    const auto verdict = brindlecast::testing::JudgeSound(AsRecording(bytes, rate),
                                                          {440.0, -20.0, 0.5, GetParam().startsAt, 0.01});
    EXPECT_TRUE(verdict.audible);
    EXPECT_TRUE(verdict.rightTone) << verdict.frequency;
    EXPECT_TRUE(verdict.rightLevel) << verdict.level;
    EXPECT_TRUE(verdict.inStep) << verdict.largestLag;
}

TEST_P(AudioSongs, ASegmentBeginsAtItsSample) {
    AudioBench bench(stream);
    const AudioFormat format = bench.OutputFormat();
    const auto whole = DecodedSound(stream);
    for (const Time100ns start : {Time100ns{50'123'456}, Time100ns{12'345'678}}) {
        // Some packets earlier, because what they leave in the decoder belongs to the sound of the next.
        const std::size_t first = stream.KeyframeBefore(start - 5'000'000);
        bench.source->FlushAndSegment(start, 300'000'000, 1.0);
        bench.PushFrom(stream, first, start);
        bench.EndOfStream();
        const auto samples = bench.sink->SamplesOfSegment();
        ExpectContinuous(samples, 0, format);
        const auto bytes = Joined(samples);
        const std::int64_t skipped = std::llround(static_cast<double>(start) * format.sampleRate / 1e7);
        const std::size_t offset =
            static_cast<std::size_t>(skipped) * static_cast<std::size_t>(format.BytesPerFrame());
        // The container's rounding of times to a millisecond may move the cut by as much.
        bool found = false;
        const auto reach = static_cast<std::ptrdiff_t>(format.sampleRate) / 1000 * format.BytesPerFrame();
        for (std::ptrdiff_t shift = -reach; shift <= reach; shift += format.BytesPerFrame()) {
            const std::size_t at = offset + static_cast<std::size_t>(shift);
            constexpr std::size_t kCompared = 80'000;
            ASSERT_LT(at + kCompared, whole.size());
            const bool same = format.kind == SampleKind::kFloat32
                                  ? IsSameSound(bytes.data(), whole.data() + at, kCompared)
                                  : std::memcmp(bytes.data(), whole.data() + at, kCompared) == 0;
            if (same) {
                found = true;
                EXPECT_NEAR(static_cast<double>(bytes.size()), static_cast<double>(whole.size() - at), 16.0);
                break;
            }
        }
        EXPECT_TRUE(found) << "the sound of the segment is not in the file at that place";
    }
}

TEST_P(AudioSongs, DetailsTellTheCodec) {
    AudioBench bench(stream);
    const char* codec = nullptr;
    const char* format = nullptr;
    int channels = 0;
    int rate = 0;
    DWORD mask = 0;
    ASSERT_EQ(bench.Status().GetDecodeDetails(&codec, &format, &channels, &rate, &mask), S_OK);
    EXPECT_STREQ(codec, GetParam().codec);
    EXPECT_STREQ(format, NameOf(GetParam().natural));
    EXPECT_EQ(channels, 2);
    EXPECT_EQ(rate, stream.parameters->sample_rate);
    EXPECT_EQ(mask, 3U);
    EXPECT_EQ(bench.Status().GetDecodeDetails(nullptr, nullptr, nullptr, nullptr, nullptr), S_OK);
    ASSERT_EQ(bench.Status().GetOutputDetails(&format, &channels, &rate, &mask), S_OK);
    EXPECT_STREQ(format, NameOf(GetParam().natural));
    EXPECT_EQ(channels, 2);
    EXPECT_EQ(bench.Status().GetOutputDetails(nullptr, nullptr, nullptr, nullptr), S_OK);
}

INSTANTIATE_TEST_SUITE_P(Files, AudioSongs,
                         ::testing::Values(Song{L"song.flac", SampleKind::kSigned16, "flac"},
                                           Song{L"song.mp3", SampleKind::kFloat32, "mp3"},
                                           Song{L"song_cover.m4a", SampleKind::kFloat32, "aac"},
                                           Song{L"film.mkv", SampleKind::kFloat32, "aac", -0.021}),
                         [](const auto& song) {
                             return std::string(song.param.codec) + std::to_string(song.index);
                         });

TEST(AudioSound, ASegmentWithARateCountsItsTimeByIt) {
    const MediaStream stream = ReadStream(L"song.flac", AVMEDIA_TYPE_AUDIO);
    AudioBench bench(stream);
    bench.source->FlushAndSegment(10'000'000, 300'000'000, 2.0);
    const AudioFormat format = bench.OutputFormat();
    for (std::size_t i = 0; i < 40; ++i) {
        PushSource::Options options = stream.packets[i].In(10'000'000);
        options.start = *options.start / 2;
        options.stop.reset();
        ASSERT_EQ(bench.source->Push(stream.packets[i].bytes.data(), stream.packets[i].bytes.size(), options),
                  S_OK);
    }
    const auto samples = bench.sink->SamplesOfSegment();
    ASSERT_GT(samples.size(), 3U);
    EXPECT_EQ(samples[0].start, 0);
    std::int64_t frames = 0;
    for (const auto& sample : samples) {
        EXPECT_LE(std::llabs(*sample.start - LengthOf(frames, format.sampleRate) / 2), 2);
        frames += static_cast<std::int64_t>(sample.bytes.size()) / format.BytesPerFrame();
    }
}

TEST(AudioSound, AGapInTheStreamIsAGapInTheSound) {
    const MediaStream stream = ReadStream(L"song.flac", AVMEDIA_TYPE_AUDIO);
    AudioBench bench(stream);
    bench.PushFrom(stream, 0, 0, 5);
    bench.PushFrom(stream, 15, 0, 20);
    bool found = false;
    for (const auto& sample : bench.sink->Samples()) {
        if (sample.discontinuity && *sample.start > 0) {
            EXPECT_FALSE(found);
            found = true;
            EXPECT_LE(std::llabs(*sample.start - stream.packets[15].start), 10'000);
        }
    }
    EXPECT_TRUE(found);
}

TEST(AudioSound, AnotherTrackIsConvertedToTheFormatOfTheConnection) {
    const MediaStream first = ReadStream(L"song.flac", AVMEDIA_TYPE_AUDIO);
    const MediaStream second = ReadStream(L"song_cover.m4a", AVMEDIA_TYPE_AUDIO);
    AudioBench bench(first);
    bench.PushFrom(first, 0, 0, 20);
    bench.sink->Clear();
    bench.source->FlushAndSegment(0, 300'000'000, 1.0);
    for (std::size_t i = 0; i < second.packets.size(); ++i) {
        PushSource::Options options = second.packets[i].In(0);
        options.formatChange = i == 0 ? &second.types[0] : nullptr;
        ASSERT_EQ(bench.source->Push(second.packets[i].bytes.data(), second.packets[i].bytes.size(), options),
                  S_OK);
    }
    bench.EndOfStream();
    const auto samples = bench.sink->SamplesOfSegment();
    const AudioFormat format = bench.OutputFormat();
    EXPECT_EQ(format.kind, SampleKind::kSigned16);
    ExpectContinuous(samples, 0, format);
    for (const auto& sample : samples) {
        EXPECT_FALSE(sample.formatChange);
    }
    const auto verdict = brindlecast::testing::JudgeSound(AsRecording(Joined(samples), format.sampleRate),
                                                          {440.0, -20.0, 0.5, 0.0, 0.02});
    EXPECT_TRUE(verdict.Right()) << verdict.frequency << " Hz " << verdict.level << " dB";
    const char* codec = nullptr;
    ASSERT_EQ(bench.Status().GetDecodeDetails(&codec, nullptr, nullptr, nullptr, nullptr), S_OK);
    EXPECT_STREQ(codec, "aac");
}

TEST(AudioSound, BrokenDataCostsSoundAndNothingElse) {
    const MediaStream stream = ReadStream(L"film.mkv", AVMEDIA_TYPE_AUDIO);
    AudioBench bench(stream);
    std::uint32_t random = 7;
    auto next = [&] {
        return random = random * 1664525U + 1013904223U;
    };
    for (MediaPacket packet : stream.packets) {
        for (int i = 0; i < 6; ++i) {
            packet.bytes[next() % packet.bytes.size()] = static_cast<std::uint8_t>(next() >> 24);
        }
        ASSERT_EQ(bench.Push(packet, 0), S_OK);
    }
    ASSERT_EQ(bench.source->Push(nullptr, 0, {}), S_OK);
    bench.source->FlushAndSegment(0, 300'000'000, 1.0);
    bench.PushFrom(stream, 0, 0);
    bench.EndOfStream();
    const auto bytes = Joined(bench.sink->SamplesOfSegment());
    const auto expected = DecodedSound(stream);
    EXPECT_NEAR(static_cast<double>(bytes.size()), static_cast<double>(expected.size()), 16'384);
}

TEST(AudioSound, AFlushFreesABlockedDelivery) {
    const MediaStream stream = ReadStream(L"song.flac", AVMEDIA_TYPE_AUDIO);
    AudioBench bench(stream);
    bench.sink->Block(true);
    std::atomic<HRESULT> result{E_PENDING};
    std::thread streaming([&] { result = bench.Push(stream.packets[0], 0); });
    for (int i = 0; i < 500 && !bench.sink->IsBlocking(); ++i) {
        Sleep(10);
    }
    ASSERT_TRUE(bench.sink->IsBlocking());
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(bench.source->Pin().DeliverBeginFlush(), S_OK);
    streaming.join();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
    EXPECT_EQ(result, S_FALSE);
    bench.sink->Block(false);
    EXPECT_EQ(bench.source->Pin().DeliverEndFlush(), S_OK);
    bench.sink->Clear();
    bench.PushFrom(stream, 0, 0);
    bench.EndOfStream();
    EXPECT_EQ(Joined(bench.sink->Samples()).size(), DecodedSound(stream).size());
}

TEST(AudioSound, FiftyFiltersComeAndGoAndTheModuleCanBeUnloaded) {
    const MediaStream stream = ReadStream(L"song.mp3", AVMEDIA_TYPE_AUDIO);
    EXPECT_EQ(AudioModule().CanUnload(), S_OK);
    for (int i = 0; i < 50; ++i) {
        AudioBench bench(stream);
        EXPECT_EQ(AudioModule().CanUnload(), S_FALSE);
        bench.PushFrom(stream, 0, 0, 20);
        if (i % 2 == 0) {
            ASSERT_TRUE(SUCCEEDED(bench.graph.Run()));
        }
        ASSERT_GE(bench.sink->Count(RecordingSink::Kind::Sample), 1U);
    }
    EXPECT_EQ(AudioModule().CanUnload(), S_OK);
}

} // namespace
} // namespace brindlecast
