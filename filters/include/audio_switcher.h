#pragma once

#include <windows.h>

#include <strmif.h>
#include <unknwn.h>

// What AudioSwitcher.ax offers besides the standard DirectShow interfaces. The order of the methods is the
// binary contract: every slot is named, also those that the player does not call, because other hosts call
// them. The interface has no virtual destructor, which would take two slots.

namespace brindlecast {

// The audio processing filter: normalisation, boost, stretching at rates other than 1.0.
inline constexpr GUID kClsidAudioSwitcher = {
    0x18C16B08, 0x6497, 0x420E, {0xAD, 0x14, 0x22, 0xD2, 0x1C, 0x2C, 0xEA, 0xB7}};

// Rows and columns of the speaker matrix.
inline constexpr int kAudioSwitcherSpeakers = 18;

// Settings of the audio processing filter. Calls may come from the main thread at any time. Its bools are
// C++ bools: one byte, 0 or 1.
struct IAudioSwitcherFilter : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetInputSpeakerConfig(DWORD* channelMask) = 0;
    virtual HRESULT STDMETHODCALLTYPE
    GetSpeakerConfig(bool* customChannelMapping,
                     DWORD speakerToChannelMap[kAudioSwitcherSpeakers][kAudioSwitcherSpeakers]) = 0;
    virtual HRESULT STDMETHODCALLTYPE
    SetSpeakerConfig(bool customChannelMapping,
                     DWORD speakerToChannelMap[kAudioSwitcherSpeakers][kAudioSwitcherSpeakers]) = 0;
    virtual int STDMETHODCALLTYPE GetNumberOfInputChannels() = 0;
    virtual bool STDMETHODCALLTYPE IsDownSamplingTo441Enabled() = 0;
    virtual HRESULT STDMETHODCALLTYPE EnableDownSamplingTo441(bool enabled) = 0;
    // 100 ns units.
    virtual REFERENCE_TIME STDMETHODCALLTYPE GetAudioTimeShift() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetAudioTimeShift(REFERENCE_TIME shift) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetNormalizeBoost(bool& normalize, bool& recover,
                                                        float& boostDecibels) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetNormalizeBoost(bool normalize, bool recover,
                                                        float boostDecibels) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetNormalizeBoost2(bool& normalize, UINT& maxFactorPercent,
                                                         bool& recover, UINT& boostPercent) = 0;
    // `maxFactorPercent`: the largest amplification, 300 is a factor of 3. `boostPercent` is added to unity.
    virtual HRESULT STDMETHODCALLTYPE SetNormalizeBoost2(bool normalize, UINT maxFactorPercent, bool recover,
                                                         UINT boostPercent) = 0;
};

} // namespace brindlecast

__CRT_UUID_DECL(brindlecast::IAudioSwitcherFilter, 0xCEDB2890, 0x53AE, 0x4231, 0x91, 0xA3, 0xB0, 0xAA, 0xFC,
                0xD1, 0xDB, 0xDE)
