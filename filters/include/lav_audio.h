#pragma once

#include <windows.h>

#include <unknwn.h>

// What LAVAudio.ax offers besides the standard DirectShow interfaces. The order of the methods is the binary
// contract: every slot is named, also those that the player does not call, because other hosts call them. No
// interface has a virtual destructor, which would take two slots.

namespace brindlecast {

// The audio decoder.
inline constexpr GUID kClsidLavAudio = {
    0xE8E73B6B, 0x4CB3, 0x44A4, {0xBE, 0x99, 0x4F, 0x7B, 0xCB, 0x96, 0xE4, 0x91}};

// Output sample formats.
enum LavSampleFormat : int {
    kLavSampleFormat16 = 0,
    kLavSampleFormat24 = 1,
    kLavSampleFormat32 = 2,
    kLavSampleFormatU8 = 3,
    kLavSampleFormatFloat32 = 4,
    kLavSampleFormatBitstream = 5,
};

// Settings of the audio decoder. Calls may come from the main thread at any time.
struct ILAVAudioSettings : public IUnknown {
    // TRUE: use only what this interface sets; stored settings are neither read nor changed.
    virtual HRESULT STDMETHODCALLTYPE SetRuntimeConfig(BOOL runtime) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDRC(BOOL* enabled, int* level) = 0;
    // Dynamic range compression; `level` from 0 to 100 percent. Takes effect while playing.
    virtual HRESULT STDMETHODCALLTYPE SetDRC(BOOL enabled, int level) = 0;
    virtual BOOL STDMETHODCALLTYPE GetFormatConfiguration(int codec) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetFormatConfiguration(int codec, BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetBitstreamConfig(int codec) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetBitstreamConfig(int codec, BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetDTSHDFraming() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetDTSHDFraming(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetAutoAVSync() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetAutoAVSync(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetOutputStandardLayout() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetOutputStandardLayout(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetExpandMono() = 0;
    // Mono becomes two equal channels.
    virtual HRESULT STDMETHODCALLTYPE SetExpandMono(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetExpand61() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetExpand61(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetAllowRawSPDIFInput() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetAllowRawSPDIFInput(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetSampleFormat(int format) = 0;
    // `format` is a LavSampleFormat.
    virtual HRESULT STDMETHODCALLTYPE SetSampleFormat(int format, BOOL enabled) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetAudioDelay(BOOL* enabled, int* milliseconds) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetAudioDelay(BOOL enabled, int milliseconds) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetMixingEnabled(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetMixingEnabled() = 0;
    // A channel mask of the platform's speaker positions.
    virtual HRESULT STDMETHODCALLTYPE SetMixingLayout(DWORD channelMask) = 0;
    virtual DWORD STDMETHODCALLTYPE GetMixingLayout() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetMixingFlags(DWORD flags) = 0;
    virtual DWORD STDMETHODCALLTYPE GetMixingFlags() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetMixingMode(int mode) = 0;
    virtual int STDMETHODCALLTYPE GetMixingMode() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetMixingLevels(DWORD center, DWORD surround, DWORD lfe) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMixingLevels(DWORD* center, DWORD* surround, DWORD* lfe) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetTrayIcon(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetTrayIcon() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetSampleConvertDithering(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetSampleConvertDithering() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetSuppressFormatChanges(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetSuppressFormatChanges() = 0;
    virtual BOOL STDMETHODCALLTYPE GetOutput51LegacyLayout() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetOutput51LegacyLayout(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetBitstreamingFallback() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetBitstreamingFallback(BOOL enabled) = 0;
};

// What the audio decoder is doing. Any output pointer may be null; texts are static and owned by the filter.
struct ILAVAudioStatus : public IUnknown {
    virtual BOOL STDMETHODCALLTYPE IsSampleFormatSupported(int format) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDecodeDetails(LPCSTR* codec, LPCSTR* format, int* channels,
                                                       int* sampleRate, DWORD* channelMask) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetOutputDetails(LPCSTR* format, int* channels, int* sampleRate,
                                                       DWORD* channelMask) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnableVolumeStats() = 0;
    virtual HRESULT STDMETHODCALLTYPE DisableVolumeStats() = 0;
    // Decibels.
    virtual HRESULT STDMETHODCALLTYPE GetChannelVolumeAverage(WORD channel, float* decibels) = 0;
};

} // namespace brindlecast

__CRT_UUID_DECL(brindlecast::ILAVAudioSettings, 0x4158A22B, 0x6553, 0x45D0, 0x80, 0x69, 0x24, 0x71, 0x6F,
                0x8F, 0xF1, 0x71)
__CRT_UUID_DECL(brindlecast::ILAVAudioStatus, 0xA668B8F2, 0xBA87, 0x4F63, 0x9D, 0x41, 0x76, 0x8F, 0x7D, 0xE9,
                0xC5, 0x0E)
