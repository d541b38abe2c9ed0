#pragma once

#include "filters/audio_decoder/audio_settings.h"
#include "filters/base/transform_filter.h"
#include "filters/core/audio_converter.h"
#include "filters/core/audio_decoder.h"

#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace brindlecast {

// The DirectShow filter around AudioDecoder. The format agreed on at connection stays; what comes in another
// format later (after a change of track, say) is converted to it.
class AudioDecoderFilter final : public TransformFilter, public AudioSettings, public ILAVAudioStatus {
public:
    AudioDecoderFilter();

    BRINDLECAST_COM_METHODS

    STDMETHODIMP_(BOOL) IsSampleFormatSupported(int format) override;
    STDMETHODIMP GetDecodeDetails(LPCSTR* codec, LPCSTR* format, int* channels, int* sampleRate,
                                  DWORD* channelMask) override;
    STDMETHODIMP GetOutputDetails(LPCSTR* format, int* channels, int* sampleRate,
                                  DWORD* channelMask) override;
    STDMETHODIMP EnableVolumeStats() override;
    STDMETHODIMP DisableVolumeStats() override;
    STDMETHODIMP GetChannelVolumeAverage(WORD channel, float* decibels) override;

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
    HRESULT OnStart() override;
    void OnStop() override;

protected:
    void* FindInterface(REFIID iid) noexcept override;

private:
    // What is decoded, as far as it is told. Static text.
    struct Details {
        const char* codec = nullptr;
        AudioFormat format;
    };

    void TellDetails();
    [[nodiscard]] std::vector<AudioFormat> Formats();
    bool Deliver(AudioBlock&& block);
    HRESULT DeliverBytes(Time100ns start);

    // Streaming lock, or while stopped.
    std::unique_ptr<AudioDecoder> decoder;
    std::optional<AudioConverter> converter;
    std::vector<std::uint8_t> bytes;
    double rate = 1.0;
    double compression = 0.0;
    Time100ns nextStart = 0;
    bool discontinuity = true;
    HRESULT deliveryResult = S_OK;

    std::mutex detailsLock; // leaf lock
    std::optional<Details> details;
    std::optional<AudioFormat> output;
};

} // namespace brindlecast
