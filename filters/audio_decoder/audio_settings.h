#pragma once

#include "filters/core/audio_format.h"
#include "filters/include/lav_audio.h"

#include <array>
#include <atomic>
#include <mutex>

namespace brindlecast {

// The decoder's settings. Every method may be called on any thread at any time. Compression takes effect at
// once, what changes the output's format with the next connection. A setter answers E_NOTIMPL where the
// decoder can't do what is asked for, and its getter tells what the decoder does. The class that derives
// brings IUnknown.
class AudioSettings : public ILAVAudioSettings {
public:
    STDMETHODIMP SetRuntimeConfig(BOOL runtime) override;
    STDMETHODIMP GetDRC(BOOL* enabled, int* level) override;
    STDMETHODIMP SetDRC(BOOL enabled, int level) override;
    STDMETHODIMP_(BOOL) GetFormatConfiguration(int codec) override;
    STDMETHODIMP SetFormatConfiguration(int codec, BOOL enabled) override;
    STDMETHODIMP_(BOOL) GetBitstreamConfig(int codec) override;
    STDMETHODIMP SetBitstreamConfig(int codec, BOOL enabled) override;
    STDMETHODIMP_(BOOL) GetDTSHDFraming() override { return FALSE; }
    STDMETHODIMP SetDTSHDFraming(BOOL enabled) override;
    STDMETHODIMP_(BOOL) GetAutoAVSync() override { return TRUE; }
    STDMETHODIMP SetAutoAVSync(BOOL enabled) override;
    STDMETHODIMP_(BOOL) GetOutputStandardLayout() override { return TRUE; }
    STDMETHODIMP SetOutputStandardLayout(BOOL enabled) override;
    STDMETHODIMP_(BOOL) GetExpandMono() override { return expandMono; }
    STDMETHODIMP SetExpandMono(BOOL enabled) override;
    STDMETHODIMP_(BOOL) GetExpand61() override { return expand61; }
    STDMETHODIMP SetExpand61(BOOL enabled) override;
    STDMETHODIMP_(BOOL) GetAllowRawSPDIFInput() override { return FALSE; }
    STDMETHODIMP SetAllowRawSPDIFInput(BOOL enabled) override;
    STDMETHODIMP_(BOOL) GetSampleFormat(int format) override;
    STDMETHODIMP SetSampleFormat(int format, BOOL enabled) override;
    STDMETHODIMP GetAudioDelay(BOOL* enabled, int* milliseconds) override;
    STDMETHODIMP SetAudioDelay(BOOL enabled, int milliseconds) override;
    STDMETHODIMP SetMixingEnabled(BOOL enabled) override;
    STDMETHODIMP_(BOOL) GetMixingEnabled() override { return mixing; }
    STDMETHODIMP SetMixingLayout(DWORD channelMask) override;
    STDMETHODIMP_(DWORD) GetMixingLayout() override { return mixingLayout; }
    STDMETHODIMP SetMixingFlags(DWORD flags) override;
    STDMETHODIMP_(DWORD) GetMixingFlags() override { return 0; }
    STDMETHODIMP SetMixingMode(int mode) override;
    STDMETHODIMP_(int) GetMixingMode() override { return 0; }
    STDMETHODIMP SetMixingLevels(DWORD center, DWORD surround, DWORD lfe) override;
    STDMETHODIMP GetMixingLevels(DWORD* center, DWORD* surround, DWORD* lfe) override;
    STDMETHODIMP SetTrayIcon(BOOL enabled) override;
    STDMETHODIMP_(BOOL) GetTrayIcon() override { return FALSE; }
    STDMETHODIMP SetSampleConvertDithering(BOOL enabled) override;
    STDMETHODIMP_(BOOL) GetSampleConvertDithering() override { return FALSE; }
    STDMETHODIMP SetSuppressFormatChanges(BOOL enabled) override;
    STDMETHODIMP_(BOOL) GetSuppressFormatChanges() override { return TRUE; }
    STDMETHODIMP_(BOOL) GetOutput51LegacyLayout() override { return FALSE; }
    STDMETHODIMP SetOutput51LegacyLayout(BOOL enabled) override;
    STDMETHODIMP_(BOOL) GetBitstreamingFallback() override { return TRUE; }
    STDMETHODIMP SetBitstreamingFallback(BOOL enabled) override;

protected:
    AudioSettings();
    ~AudioSettings() = default;

    // From 0 (none) to 1, by what is set now.
    [[nodiscard]] double Compression() const;
    [[nodiscard]] bool IsEnabled(SampleKind kind) const;
    // The channels in which sound of `source` leaves.
    [[nodiscard]] AudioFormat WithOutputChannels(AudioFormat source) const;

private:
    static constexpr std::size_t kSampleFormats = kLavSampleFormatBitstream + 1;

    mutable std::mutex compressionLock;
    bool compressionEnabled = false;
    int compressionLevel = 100;

    std::atomic<bool> expandMono{false};
    std::atomic<bool> expand61{false};
    std::atomic<bool> mixing{false};
    std::atomic<DWORD> mixingLayout{3}; // front left and right
    std::array<std::atomic<bool>, kSampleFormats> sampleFormats;
};

// The LavSampleFormat of a kind, and whether there is a kind for a LavSampleFormat that the decoder gives
// out.
[[nodiscard]] LavSampleFormat LavSampleFormatOf(SampleKind kind);
[[nodiscard]] bool IsOutputFormat(int format);

} // namespace brindlecast
