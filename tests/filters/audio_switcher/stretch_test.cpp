#include "tests/filters/audio_switcher/switcher_bench.h"
#include "tests/support/tone_analysis.h"

namespace brindlecast {
namespace {

constexpr int kBlocks = 140; // about three seconds

Time100ns TimeOfBlock(int block, double rate) {
    return static_cast<Time100ns>(static_cast<double>(LengthOf(std::int64_t{block} * kBlock, kRate)) / rate);
}

void PushBlocks(SwitcherBench& bench, double rate, int from, int to, Time100ns later = 0) {
    for (int i = from; i < to; ++i) {
        ASSERT_EQ(S_OK, bench.Push(Sine(kStereo16, 0.5, i), TimeOfBlock(i, rate) + later));
    }
}

// The left channel of all that came out.
std::vector<double> Heard(SwitcherBench& bench) {
    std::vector<double> heard;
    for (const auto& sample : bench.sink->Samples()) {
        for (std::size_t at = 0; at + 4 <= sample.bytes.size(); at += 4) {
            std::int16_t value = 0;
            std::memcpy(&value, sample.bytes.data() + at, sizeof(value));
            heard.push_back(value / 32768.0);
        }
    }
    return heard;
}

class SwitcherRates : public ::testing::TestWithParam<double> {};

TEST_P(SwitcherRates, SoundIsAsLongAsItsTimeAndKeepsItsPitch) {
    const double rate = GetParam();
    SwitcherBench bench(kStereo16);
    bench.control->SetNormalizeBoost2(false, 300, true, 0);
    bench.source->Pin().DeliverNewSegment({50'000'000, 900'000'000, rate});
    PushBlocks(bench, rate, 0, kBlocks);
    ASSERT_EQ(S_OK, bench.source->Pin().DeliverEndOfStream());

    const auto events = bench.sink->Events();
    ASSERT_EQ(RecordingSink::Kind::NewSegment, events.front().kind);
    EXPECT_EQ(50'000'000, events.front().segment.start);
    EXPECT_EQ(1.0, events.front().segment.rate);

    const auto samples = bench.sink->Samples();
    ASSERT_FALSE(samples.empty());
    EXPECT_EQ(0, samples.front().start);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const auto frames = static_cast<std::int64_t>(samples[i].bytes.size() / 4);
        EXPECT_NEAR(static_cast<double>(LengthOf(frames, kRate)),
                    static_cast<double>(*samples[i].stop - *samples[i].start), 2.0);
        if (i > 0) {
            // At rate 1 the times are the input's own, each rounded for itself.
            EXPECT_NEAR(static_cast<double>(*samples[i - 1].stop), static_cast<double>(*samples[i].start),
                        1.0);
            EXPECT_FALSE(samples[i].discontinuity);
        }
    }
    const auto length = static_cast<double>(TimeOfBlock(kBlocks, rate));
    EXPECT_NEAR(length, static_cast<double>(*samples.back().stop), length * 0.002);

    const std::vector<double> heard = Heard(bench);
    const auto frequency = testing::DominantFrequency(heard, kRate);
    ASSERT_TRUE(frequency.has_value());
    EXPECT_NEAR(440.0, *frequency, 1.0);
    EXPECT_NEAR(-9.03, testing::LevelDbfs(heard), 0.5);
    // The last piece is overlapped with nothing, so it fades out.
    constexpr double kLastPiece = 0.2;
    const auto middle =
        testing::Between(heard, kRate, 0.0, static_cast<double>(heard.size()) / kRate - kLastPiece);
    EXPECT_TRUE(testing::SilentIntervals(middle, kRate, -30.0, 0.005).empty());
}

INSTANTIATE_TEST_SUITE_P(AllPresets, SwitcherRates,
                         ::testing::Values(0.25, 0.5, 0.75, 0.9, 1.0, 1.1, 1.25, 1.5, 1.75, 2.0, 3.0, 4.0));

TEST(SwitcherStretch, AHoleInTheSoundStaysAHole) {
    SwitcherBench bench(kStereo16);
    bench.control->SetNormalizeBoost2(false, 300, true, 0);
    bench.source->Pin().DeliverNewSegment({0, 900'000'000, 2.0});
    PushBlocks(bench, 2.0, 0, 50);
    PushBlocks(bench, 2.0, 50, 100, 10'000'000);
    ASSERT_EQ(S_OK, bench.source->Pin().DeliverEndOfStream());
    const auto samples = bench.sink->Samples();
    int holes = 0;
    for (std::size_t i = 1; i < samples.size(); ++i) {
        if (*samples[i].start == *samples[i - 1].stop) {
            continue;
        }
        ++holes;
        EXPECT_NEAR(static_cast<double>(TimeOfBlock(50, 2.0)), static_cast<double>(*samples[i - 1].stop),
                    20'000.0);
        EXPECT_EQ(TimeOfBlock(50, 2.0) + 10'000'000, *samples[i].start);
    }
    EXPECT_EQ(1, holes);
}

TEST(SwitcherStretch, BehindAHoleOnlyTheNewSoundIsHeard) {
    SwitcherBench bench(kStereo16);
    bench.control->SetNormalizeBoost2(false, 300, true, 0);
    bench.source->Pin().DeliverNewSegment({0, 900'000'000, 2.0});
    PushBlocks(bench, 2.0, 0, 50);
    const Time100ns later = TimeOfBlock(50, 2.0) + 10'000'000;
    for (int i = 0; i < 50; ++i) {
        ASSERT_EQ(S_OK, bench.Push(Sine(kStereo16, 0.0, i), later + TimeOfBlock(i, 2.0)));
    }
    ASSERT_EQ(S_OK, bench.source->Pin().DeliverEndOfStream());
    std::size_t bytes = 0;
    for (const auto& sample : bench.sink->Samples()) {
        if (*sample.start >= later) {
            EXPECT_EQ(0.0, Peak(kStereo16, sample.bytes)) << "silence was sent";
            bytes += sample.bytes.size();
        }
    }
    EXPECT_NEAR(50.0 * kBlock / 2.0, static_cast<double>(bytes) / 4.0, 50.0);
}

TEST(SwitcherStretch, AFlushForgetsWhatWasUnderWay) {
    SwitcherBench bench(kStereo16);
    bench.control->SetNormalizeBoost2(false, 300, true, 0);
    bench.source->Pin().DeliverNewSegment({0, 900'000'000, 0.5});
    PushBlocks(bench, 0.5, 0, 30);
    bench.source->FlushAndSegment(70'000'000, 900'000'000, 1.0);
    bench.sink->Clear();
    const auto block = Sine(kStereo16, 0.3, 0);
    ASSERT_EQ(S_OK, bench.Push(block, 0));
    const auto samples = bench.sink->Samples();
    ASSERT_EQ(1U, samples.size());
    EXPECT_TRUE(samples[0].bytes == block) << "at rate 1 every bit stays";
    EXPECT_EQ(0, samples[0].start);
    EXPECT_TRUE(samples[0].discontinuity);
}

TEST(SwitcherStretch, ASeekAtTheSameRateBeginsAtItsOwnTime) {
    SwitcherBench bench(kStereo16);
    bench.source->Pin().DeliverNewSegment({0, 900'000'000, 2.0});
    PushBlocks(bench, 2.0, 0, 30);
    bench.source->FlushAndSegment(70'000'000, 900'000'000, 2.0);
    bench.sink->Clear();
    PushBlocks(bench, 2.0, 0, 40);
    ASSERT_EQ(S_OK, bench.source->Pin().DeliverEndOfStream());
    const auto samples = bench.sink->Samples();
    ASSERT_FALSE(samples.empty());
    EXPECT_EQ(0, samples.front().start);
    const auto length = static_cast<double>(TimeOfBlock(40, 2.0));
    EXPECT_NEAR(length, static_cast<double>(*samples.back().stop), length * 0.002);
}

TEST(SwitcherStretch, RatesThatNobodyUnderstandsPassOn) {
    for (const double rate : {0.1, 8.0}) {
        SwitcherBench bench(kStereo16);
        bench.control->SetNormalizeBoost2(false, 300, true, 0);
        bench.source->Pin().DeliverNewSegment({0, 900'000'000, rate});
        const auto block = Sine(kStereo16, 0.3, 0);
        ASSERT_EQ(S_OK, bench.Push(block, 0));
        EXPECT_EQ(rate, bench.sink->Events().front().segment.rate);
        const auto samples = bench.sink->Samples();
        ASSERT_EQ(1U, samples.size());
        EXPECT_TRUE(samples[0].bytes == block);
        EXPECT_NEAR(static_cast<double>(TimeOfBlock(1, rate)), static_cast<double>(*samples[0].stop), 10.0);
    }
}

TEST(SwitcherStretch, BoostAndStretchingTogetherStayBelowFullScale) {
    SwitcherBench bench(kStereo16);
    bench.control->SetNormalizeBoost2(false, 300, true, 300);
    bench.source->Pin().DeliverNewSegment({0, 900'000'000, 1.5});
    PushBlocks(bench, 1.5, 0, kBlocks);
    ASSERT_EQ(S_OK, bench.source->Pin().DeliverEndOfStream());
    const std::vector<double> heard = Heard(bench);
    int run = 0;
    int longest = 0;
    for (const double sample : heard) {
        run = std::abs(sample) > 0.9999 ? run + 1 : 0;
        longest = std::max(longest, run);
    }
    EXPECT_LT(longest, 5) << "a cut wave stays at full scale for some forty samples";
    EXPECT_GT(testing::LevelDbfs(heard), -4.0);
}

} // namespace
} // namespace brindlecast
