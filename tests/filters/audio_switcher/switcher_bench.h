#pragma once

#include "filters/base/audio_type.h"
#include "filters/include/audio_switcher.h"
#include "tests/filters/support/push_source.h"
#include "tests/filters/support/recording_sink.h"
#include "tests/filters/support/test_graph.h"
#include "tests/filters/support/test_module.h"

#include <cmath>
#include <cstring>
#include <functional>
#include <numbers>

#include <gtest/gtest.h>

namespace brindlecast {

using Microsoft::WRL::ComPtr;

inline constexpr int kRate = 48'000;
inline constexpr int kBlock = 1024;
inline constexpr AudioFormat kStereo16 = {SampleKind::kSigned16, kRate, 2, 3};
inline constexpr AudioFormat kStereoFloat = {SampleKind::kFloat32, kRate, 2, 3};

inline TestModule& SwitcherModule() {
    static TestModule module(L"AudioSwitcher.ax");
    return module;
}

// One block of a sine, `number` blocks from the beginning, equal in all channels.
inline std::vector<BYTE> Sine(const AudioFormat& format, double amplitude, int number) {
    std::vector<BYTE> bytes;
    for (int i = 0; i < kBlock; ++i) {
        const double at = 2.0 * std::numbers::pi * 440.0 * (number * kBlock + i) / format.sampleRate;
        const double value = amplitude * std::sin(at);
        for (int channel = 0; channel < format.channels; ++channel) {
            BYTE sample[4] = {};
            if (format.kind == SampleKind::kSigned16) {
                const auto integer = static_cast<std::int16_t>(std::lrint(value * 32767.0));
                std::memcpy(sample, &integer, 2);
            } else {
                const auto real = static_cast<float>(value);
                std::memcpy(sample, &real, 4);
            }
            bytes.insert(bytes.end(), sample, sample + BytesPerSample(format.kind));
        }
    }
    return bytes;
}

// The largest absolute sample as a part of full scale.
inline double Peak(const AudioFormat& format, const std::vector<BYTE>& bytes) {
    double peak = 0.0;
    const auto size = static_cast<std::size_t>(BytesPerSample(format.kind));
    for (std::size_t at = 0; at + size <= bytes.size(); at += size) {
        double value = 0.0;
        if (format.kind == SampleKind::kSigned16) {
            std::int16_t integer = 0;
            std::memcpy(&integer, bytes.data() + at, 2);
            value = integer / 32768.0;
        } else {
            float real = 0;
            std::memcpy(&real, bytes.data() + at, 4);
            value = static_cast<double>(real);
        }
        peak = std::max(peak, std::abs(value));
    }
    return peak;
}

// The switcher between a source that a test pushes with and a sink that writes down, paused.
class SwitcherBench {
public:
    explicit SwitcherBench(const AudioFormat& input, std::function<bool(const MediaType&)> accepts = {})
        : filter(SwitcherModule().CreateFilter(kClsidAudioSwitcher)),
          control(Query<IAudioSwitcherFilter>(filter, __uuidof(IAudioSwitcherFilter))),
          source(PushSource::Create({MakeAudioType(input)})),
          sink(RecordingSink::Create(MEDIATYPE_Audio, std::move(accepts))) {
        graph.Add(source.Get(), L"source");
        graph.Add(filter.Get(), L"switcher");
        graph.Add(sink.Get(), L"sink");
        graph.RemoveClock();
        EXPECT_EQ(graph.ConnectDirect(&source->Pin(), PinsOf(filter.Get(), PINDIR_INPUT)[0].Get()), S_OK);
        EXPECT_EQ(graph.ConnectDirect(PinsOf(filter.Get(), PINDIR_OUTPUT)[0].Get(), &sink->Pin()), S_OK);
        EXPECT_TRUE(SUCCEEDED(graph.Pause()));
    }
    ~SwitcherBench() {
        sink->Block(false);
        (void)graph.Stop();
    }

    HRESULT Push(const std::vector<BYTE>& bytes, Time100ns start, const MediaType* formatChange = nullptr) {
        PushSource::Options options;
        options.start = start;
        options.stop = start + LengthOf(kBlock, kRate);
        options.formatChange = formatChange;
        return source->Push(bytes.data(), bytes.size(), options);
    }

    // Pushes blocks of a sine and gives back the peak of the last one that came out.
    double PushSine(const AudioFormat& format, double amplitude, int blocks) {
        for (int i = 0; i < blocks; ++i) {
            EXPECT_EQ(Push(Sine(format, amplitude, i), LengthOf(std::int64_t{i} * kBlock, kRate)), S_OK);
        }
        return Peak(format, sink->Samples().back().bytes);
    }

    TestGraph graph;
    ComPtr<IBaseFilter> filter;
    ComPtr<IAudioSwitcherFilter> control;
    ComPtr<PushSource> source;
    ComPtr<RecordingSink> sink;
};

} // namespace brindlecast
