#pragma once

#include "filters/base/transform_filter.h"
#include "filters/core/audio_converter.h"
#include "filters/core/gain_processor.h"
#include "filters/include/audio_switcher.h"

#include <mutex>
#include <optional>
#include <vector>

namespace brindlecast {

// Processing of uncompressed sound between decoder and renderer. The output keeps the format of its
// connection whatever comes in, because renderers may refuse a change in mid-stream. With normalisation and
// boost off and equal formats the samples pass unchanged.
class AudioSwitcherFilter final : public TransformFilter, public IAudioSwitcherFilter {
public:
    AudioSwitcherFilter();

    BRINDLECAST_COM_METHODS

    STDMETHODIMP GetInputSpeakerConfig(DWORD* channelMask) override;
    STDMETHODIMP
    GetSpeakerConfig(bool* customChannelMapping,
                     DWORD speakerToChannelMap[kAudioSwitcherSpeakers][kAudioSwitcherSpeakers]) override;
    STDMETHODIMP
    SetSpeakerConfig(bool customChannelMapping,
                     DWORD speakerToChannelMap[kAudioSwitcherSpeakers][kAudioSwitcherSpeakers]) override;
    STDMETHODIMP_(int) GetNumberOfInputChannels() override;
    STDMETHODIMP_(bool) IsDownSamplingTo441Enabled() override { return false; }
    STDMETHODIMP EnableDownSamplingTo441(bool enabled) override;
    STDMETHODIMP_(REFERENCE_TIME) GetAudioTimeShift() override { return 0; }
    STDMETHODIMP SetAudioTimeShift(REFERENCE_TIME shift) override;
    STDMETHODIMP GetNormalizeBoost(bool& normalize, bool& recover, float& boostDecibels) override;
    STDMETHODIMP SetNormalizeBoost(bool normalize, bool recover, float boostDecibels) override;
    STDMETHODIMP GetNormalizeBoost2(bool& normalize, UINT& maxFactorPercent, bool& recover,
                                    UINT& boostPercent) override;
    STDMETHODIMP SetNormalizeBoost2(bool normalize, UINT maxFactorPercent, bool recover,
                                    UINT boostPercent) override;

    HRESULT CheckInput(const MediaType& type) override;
    std::vector<MediaType> OutputTypes() override;
    HRESULT CheckOutput(const MediaType& type) override;
    ALLOCATOR_PROPERTIES OutputBuffers() override;
    HRESULT OnInputType(const MediaType& type) override;
    HRESULT OnOutputType(const MediaType& type) override;
    void OnInputDisconnected() override;
    void OnOutputDisconnected() override;
    HRESULT Process(IMediaSample& sample) override;
    HRESULT Drain() override;
    void Reset() override;
    HRESULT OnSegment(const BasePin::Segment& segment) override;

protected:
    void* FindInterface(REFIID iid) noexcept override;

private:
    // As the interface states them, in percent.
    struct Loudness {
        bool normalize = false;
        UINT maxFactorPercent = 300;
        bool recover = true;
        UINT boostPercent = 0;
    };

    [[nodiscard]] std::optional<AudioFormat> InputFormat();
    [[nodiscard]] GainSettings CurrentGain();
    HRESULT DeliverBytes(std::optional<Time100ns> start);

    // Streaming lock, or while stopped.
    std::optional<AudioConverter> converter_;
    GainProcessor gain_;
    std::vector<std::uint8_t> bytes_;
    double rate_ = 1.0;
    Time100ns nextStart_ = 0;
    bool discontinuity_ = true;

    std::mutex settingsLock_; // leaf lock
    Loudness loudness_;
    std::optional<AudioFormat> input_;
};

} // namespace brindlecast
