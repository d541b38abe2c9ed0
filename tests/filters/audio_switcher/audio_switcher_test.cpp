#include "tests/filters/audio_switcher/switcher_bench.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace brindlecast {
namespace {

TEST(AudioSwitcher, WithoutNormalisationAndBoostEveryBitAndTimeStays) {
    for (const AudioFormat& format :
         {kStereo16, kStereoFloat, AudioFormat{SampleKind::kSigned16, kRate, 6, 0x3F}}) {
        SwitcherBench bench(format);
        bench.control->SetNormalizeBoost2(false, 300, true, 0);
        bench.source->Pin().DeliverNewSegment({0, 100'000'000, 1.0});
        for (int i = 0; i < 20; ++i) {
            const auto bytes = Sine(format, 0.7, i);
            const Time100ns start = LengthOf(std::int64_t{i} * kBlock, kRate);
            ASSERT_EQ(bench.Push(bytes, start), S_OK);
            const auto last = bench.sink->Samples().back();
            EXPECT_TRUE(last.bytes == bytes);
            EXPECT_EQ(last.start, start);
            EXPECT_EQ(last.stop, start + LengthOf(kBlock, kRate));
            EXPECT_EQ(last.discontinuity, i == 0);
        }
        EXPECT_EQ(bench.sink->Samples().size(), 20U);
        const auto format2 = ReadAudioType(bench.sink->Pin().Type().Get());
        EXPECT_EQ(format2, format);
    }
}

TEST(AudioSwitcher, NormalisationRaisesQuietSoundByTheLargestFactorAtMost) {
    for (const AudioFormat& format : {kStereo16, kStereoFloat}) {
        SwitcherBench bench(format);
        bench.control->SetNormalizeBoost2(true, 300, true, 0);
        EXPECT_NEAR(bench.PushSine(format, 0.1, 30), 0.3, 0.003);
    }
}

TEST(AudioSwitcher, NormalisationNeverClipsAndRisesAgainSlowly) {
    SwitcherBench bench(kStereo16);
    bench.control->SetNormalizeBoost2(true, 300, true, 0);
    EXPECT_NEAR(bench.PushSine(kStereo16, 0.1, 10), 0.3, 0.003);
    EXPECT_NEAR(bench.PushSine(kStereo16, 0.9, 10), 1.0, 0.02);
    for (const auto& sample : bench.sink->Samples()) {
        EXPECT_LE(Peak(kStereo16, sample.bytes), 1.0);
    }
    // Half a second later the quiet sound is still much lower than before the loud one.
    const double after = bench.PushSine(kStereo16, 0.1, 24);
    EXPECT_GT(after, 0.112);
    EXPECT_LT(after, 0.15);
    EXPECT_NEAR(bench.PushSine(kStereo16, 0.1, 500), 0.3, 0.003);
}

TEST(AudioSwitcher, WithoutRecoveryTheSoundStaysLow) {
    SwitcherBench bench(kStereo16);
    bench.control->SetNormalizeBoost2(true, 300, false, 0);
    (void)bench.PushSine(kStereo16, 0.9, 5);
    EXPECT_NEAR(bench.PushSine(kStereo16, 0.1, 300), 0.111, 0.003);
}

TEST(AudioSwitcher, BoostAmplifiesAndStaysBelowFullScale) {
    SwitcherBench bench(kStereoFloat);
    bench.control->SetNormalizeBoost2(false, 300, true, 100);
    EXPECT_NEAR(bench.PushSine(kStereoFloat, 0.2, 10), 0.4, 0.004);
    EXPECT_NEAR(bench.PushSine(kStereoFloat, 0.8, 10), 1.0, 0.01);
    for (const auto& sample : bench.sink->Samples()) {
        EXPECT_LE(Peak(kStereoFloat, sample.bytes), 1.0);
    }
}

TEST(AudioSwitcher, SettingsMayChangeWhilePlaying) {
    SwitcherBench bench(kStereo16);
    bench.control->SetNormalizeBoost2(false, 300, true, 0);
    std::atomic<bool> stop{false};
    std::thread changing([&] {
        for (UINT i = 0; !stop; ++i) {
            bench.control->SetNormalizeBoost2(i % 2 == 0, 100 + i % 400, i % 3 == 0, i % 200);
        }
    });
    for (int i = 0; i < 500; ++i) {
        EXPECT_EQ(bench.Push(Sine(kStereo16, 0.5, i), LengthOf(std::int64_t{i} * kBlock, kRate)), S_OK);
    }
    stop = true;
    changing.join();
    for (const auto& sample : bench.sink->Samples()) {
        EXPECT_GE(Peak(kStereo16, sample.bytes), 0.49);
        EXPECT_LE(Peak(kStereo16, sample.bytes), 1.0);
    }
}

TEST(AudioSwitcher, AnotherInputIsConvertedToTheFormatOfTheConnection) {
    SwitcherBench bench(kStereo16);
    bench.control->SetNormalizeBoost2(false, 300, true, 0);
    (void)bench.PushSine(kStereo16, 0.5, 3);
    const AudioFormat mono = {SampleKind::kFloat32, kRate, 1, 4};
    const MediaType type = MakeAudioType(mono);
    EXPECT_EQ(bench.Push(Sine(mono, 0.5, 0), 10'000'000, &type), S_OK);
    const auto last = bench.sink->Samples().back();
    EXPECT_FALSE(last.formatChange);
    EXPECT_EQ(last.bytes.size(), static_cast<std::size_t>(kBlock) * 4);
    EXPECT_EQ(last.start, 10'000'000);
    EXPECT_NEAR(Peak(kStereo16, last.bytes), 0.43, 0.08);
    EXPECT_EQ(bench.control->GetNumberOfInputChannels(), 1);
    DWORD mask = 0;
    EXPECT_EQ(bench.control->GetInputSpeakerConfig(&mask), S_OK);
    EXPECT_EQ(mask, 4U);
    // 44.1 kHz becomes 48 kHz of the same length.
    const AudioFormat slow = {SampleKind::kSigned16, 44'100, 2, 3};
    const MediaType slowType = MakeAudioType(slow);
    bench.sink->Clear();
    for (int i = 0; i < 44; ++i) {
        EXPECT_EQ(bench.Push(Sine(slow, 0.5, i), 20'000'000 + LengthOf(std::int64_t{i} * kBlock, 44'100),
                             i == 0 ? &slowType : nullptr),
                  S_OK);
    }
    EXPECT_EQ(bench.source->Pin().DeliverEndOfStream(), S_OK);
    std::size_t bytes = 0;
    for (const auto& sample : bench.sink->Samples()) {
        EXPECT_LE(
            std::abs(*sample.start - 20'000'000 - LengthOf(static_cast<std::int64_t>(bytes / 4), kRate)),
            2000);
        bytes += sample.bytes.size();
    }
    EXPECT_NEAR(static_cast<double>(bytes) / 4, 44.0 * kBlock * 48'000 / 44'100, 32.0);
}

TEST(AudioSwitcher, AReceiverOfSixteenBitsGetsThem) {
    SwitcherBench bench(kStereoFloat, [](const MediaType& type) {
        const auto format = ReadAudioType(type.Get());
        return format && format->kind == SampleKind::kSigned16;
    });
    bench.control->SetNormalizeBoost2(false, 300, true, 0);
    ASSERT_EQ(bench.Push(Sine(kStereoFloat, 0.5, 0), 0), S_OK);
    const auto last = bench.sink->Samples().back();
    EXPECT_EQ(last.bytes.size(), static_cast<std::size_t>(kBlock) * 4);
    EXPECT_NEAR(Peak(kStereo16, last.bytes), 0.5, 0.002);
}

TEST(AudioSwitcher, VideoIsRefused) {
    const auto filter = SwitcherModule().CreateFilter(kClsidAudioSwitcher);
    const auto input = PinsOf(filter.Get(), PINDIR_INPUT)[0];
    MediaType type = MakeAudioType(kStereo16);
    EXPECT_EQ(input->QueryAccept(&type.Get()), S_OK);
    type.Edit().majortype = MEDIATYPE_Video;
    EXPECT_NE(input->QueryAccept(&type.Get()), S_OK);
    MediaType compressed = MakeAudioType(kStereo16);
    compressed.Format<WAVEFORMATEX>(FORMAT_WaveFormatEx)->wFormatTag = 0x55;
    EXPECT_NE(input->QueryAccept(&compressed.Get()), S_OK);
    EXPECT_EQ(input->QueryAccept(nullptr), E_POINTER);
}

TEST(AudioSwitcher, SegmentsFlushesAndTheEndPassOn) {
    SwitcherBench bench(kStereo16);
    bench.source->Pin().DeliverNewSegment({5, 7, 1.0});
    bench.source->FlushAndSegment(10, 20, 1.0);
    EXPECT_EQ(bench.source->Pin().DeliverEndOfStream(), S_OK);
    const auto events = bench.sink->Events();
    using Kind = RecordingSink::Kind;
    ASSERT_EQ(events.size(), 5U);
    EXPECT_EQ(events[0].kind, Kind::NewSegment);
    EXPECT_EQ(events[1].kind, Kind::BeginFlush);
    EXPECT_EQ(events[2].kind, Kind::EndFlush);
    EXPECT_EQ(events[3].kind, Kind::NewSegment);
    EXPECT_EQ(events[3].segment.start, 10);
    EXPECT_EQ(events[3].segment.rate, 1.0);
    EXPECT_EQ(events[4].kind, Kind::EndOfStream);
}

TEST(AudioSwitcher, AFlushFreesABlockedDelivery) {
    SwitcherBench bench(kStereo16);
    bench.sink->Block(true);
    std::atomic<HRESULT> result{E_PENDING};
    std::thread streaming([&] { result = bench.Push(Sine(kStereo16, 0.5, 0), 0); });
    for (int i = 0; i < 500 && !bench.sink->IsBlocking(); ++i) {
        Sleep(10);
    }
    ASSERT_TRUE(bench.sink->IsBlocking());
    EXPECT_EQ(bench.source->Pin().DeliverBeginFlush(), S_OK);
    streaming.join();
    EXPECT_EQ(result, S_FALSE);
    bench.sink->Block(false);
    EXPECT_EQ(bench.source->Pin().DeliverEndFlush(), S_OK);
    EXPECT_EQ(bench.Push(Sine(kStereo16, 0.5, 0), 0), S_OK);
}

TEST(AudioSwitcher, SettingsAreKept) {
    const auto filter = SwitcherModule().CreateFilter(kClsidAudioSwitcher);
    const auto control = Query<IAudioSwitcherFilter>(filter, __uuidof(IAudioSwitcherFilter));
    ASSERT_TRUE(control);
    bool normalize = true;
    bool recover = false;
    UINT factor = 0;
    UINT boost = 1;
    EXPECT_EQ(control->GetNormalizeBoost2(normalize, factor, recover, boost), S_OK);
    EXPECT_FALSE(normalize);
    EXPECT_EQ(factor, 300U);
    EXPECT_TRUE(recover);
    EXPECT_EQ(boost, 0U);
    EXPECT_EQ(control->SetNormalizeBoost2(true, 250, false, 100), S_OK);
    EXPECT_EQ(control->GetNormalizeBoost2(normalize, factor, recover, boost), S_OK);
    EXPECT_TRUE(normalize);
    EXPECT_EQ(factor, 250U);
    EXPECT_FALSE(recover);
    EXPECT_EQ(boost, 100U);
    float decibels = 0;
    EXPECT_EQ(control->GetNormalizeBoost(normalize, recover, decibels), S_OK);
    EXPECT_NEAR(decibels, 6.02F, 0.01F);
    EXPECT_EQ(control->SetNormalizeBoost(false, true, 12.04F), S_OK);
    EXPECT_EQ(control->GetNormalizeBoost2(normalize, factor, recover, boost), S_OK);
    EXPECT_EQ(factor, 250U);
    EXPECT_EQ(boost, 300U);
    EXPECT_EQ(control->SetNormalizeBoost(false, true, -1.0F), E_INVALIDARG);
    EXPECT_EQ(control->SetNormalizeBoost(false, true, std::nanf("")), E_INVALIDARG);
}

TEST(AudioSwitcher, WhatIsNotThereSaysSo) {
    const auto filter = SwitcherModule().CreateFilter(kClsidAudioSwitcher);
    const auto control = Query<IAudioSwitcherFilter>(filter, __uuidof(IAudioSwitcherFilter));
    ASSERT_TRUE(control);
    DWORD mask = 7;
    EXPECT_EQ(control->GetInputSpeakerConfig(nullptr), E_POINTER);
    EXPECT_TRUE(FAILED(control->GetInputSpeakerConfig(&mask)));
    EXPECT_EQ(mask, 0U);
    EXPECT_EQ(control->GetNumberOfInputChannels(), 0);
    EXPECT_EQ(control->GetSpeakerConfig(nullptr, nullptr), E_NOTIMPL);
    EXPECT_EQ(control->SetSpeakerConfig(false, nullptr), E_NOTIMPL);
    EXPECT_FALSE(control->IsDownSamplingTo441Enabled());
    EXPECT_EQ(control->EnableDownSamplingTo441(false), S_OK);
    EXPECT_EQ(control->EnableDownSamplingTo441(true), E_NOTIMPL);
    EXPECT_EQ(control->GetAudioTimeShift(), 0);
    EXPECT_EQ(control->SetAudioTimeShift(0), S_OK);
    EXPECT_EQ(control->SetAudioTimeShift(1), E_NOTIMPL);
    EXPECT_EQ(filter->Pause(), S_OK);
    EXPECT_EQ(filter->Stop(), S_OK);
    EXPECT_FALSE(Query<IMediaSeeking>(filter, IID_IMediaSeeking));
}

TEST(AudioSwitcher, FiftyFiltersComeAndGoAndTheModuleCanBeUnloaded) {
    EXPECT_EQ(SwitcherModule().CanUnload(), S_OK);
    for (int i = 0; i < 50; ++i) {
        SwitcherBench bench(kStereo16);
        EXPECT_EQ(SwitcherModule().CanUnload(), S_FALSE);
        (void)bench.PushSine(kStereo16, 0.5, 3);
        if (i % 2 == 0) {
            EXPECT_TRUE(SUCCEEDED(bench.graph.Run()));
        }
    }
    EXPECT_EQ(SwitcherModule().CanUnload(), S_OK);
}

} // namespace
} // namespace brindlecast
