#pragma once

#include "filters/base/transform_filter.h"
#include "filters/core/audio_stretch.h"
#include "filters/core/gain_processor.h"
#include "filters/include/audio_switcher.h"

#include <mutex>
#include <optional>
#include <vector>

namespace brindlecast {

// Processing of uncompressed sound between decoder and renderer. The output keeps the format of its
// connection whatever comes in, because renderers may refuse a change in mid-stream. At other rates than 1
// the sound is stretched to the length of its time, at its own pitch, and goes on as sound of rate 1; rates
// that it can't be stretched to are passed on. With normalisation and boost off, rate 1 and equal formats
// the samples pass unchanged.
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
    [[nodiscard]] bool Stretches() const;
    HRESULT DeliverStretched(std::optional<Time100ns> start);
    HRESULT DrainStretch();
    HRESULT DeliverBytes(std::optional<Time100ns> start);

    // Streaming lock, or while stopped.
    std::optional<AudioConverter> converter;
    std::unique_ptr<AudioStretch> stretch; // from the first sound of a segment at another rate than 1
    GainProcessor gain;
    std::vector<std::uint8_t> bytes;
    std::vector<std::uint8_t> stretched;
    double rate = 1.0;       // of the segment
    Time100ns nextStart = 0; // of what is delivered next
    // Where the sound goes on without a gap, in the times of the input; only while it is stretched.
    std::optional<Time100ns> expectedStart;
    bool discontinuity = true;

    std::mutex settingsLock; // leaf lock
    Loudness loudness;
    std::optional<AudioFormat> input;
};

} // namespace brindlecast
