#pragma once

#include <windows.h>

#include <strmif.h>
#include <unknwn.h>

// What LAVSplitter.ax offers besides the standard DirectShow interfaces. The order of the methods is the
// binary contract: every slot is named, also those that the player does not call, because other hosts call
// them. No interface has a virtual destructor, which would take two slots.

namespace brindlecast {

// The file source and splitter.
inline constexpr GUID kClsidLavSplitterSource = {
    0xB98D13E7, 0x55DB, 0x4385, {0xA3, 0x3D, 0x09, 0xFD, 0x1B, 0xA2, 0x63, 0x38}};

// Which subtitle stream the splitter turns on by itself.
enum LavSubtitleMode : int {
    kLavSubtitleModeNone = 0,
    kLavSubtitleModeForcedOnly = 1,
    kLavSubtitleModeDefault = 2,
    kLavSubtitleModeAdvanced = 3,
};

// Settings of the splitter. Strings handed out are allocated with CoTaskMemAlloc and belong to the caller.
// Calls may come from the main thread at any time.
struct ILAVFSettings : public IUnknown {
    // TRUE: use only what this interface sets; stored settings are neither read nor changed.
    virtual HRESULT STDMETHODCALLTYPE SetRuntimeConfig(BOOL runtime) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetPreferredLanguages(LPWSTR* languages) = 0;
    // Comma-separated ISO 639-2 codes in order of preference.
    virtual HRESULT STDMETHODCALLTYPE SetPreferredLanguages(LPCWSTR languages) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetPreferredSubtitleLanguages(LPWSTR* languages) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetPreferredSubtitleLanguages(LPCWSTR languages) = 0;
    virtual int STDMETHODCALLTYPE GetSubtitleMode() = 0;
    // A LavSubtitleMode number.
    virtual HRESULT STDMETHODCALLTYPE SetSubtitleMode(int mode) = 0;
    virtual BOOL STDMETHODCALLTYPE GetSubtitleMatchingLanguage() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetSubtitleMatchingLanguage(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetPGSForcedStream() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetPGSForcedStream(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetPGSOnlyForced() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetPGSOnlyForced(BOOL enabled) = 0;
    virtual int STDMETHODCALLTYPE GetVC1TimestampMode() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetVC1TimestampMode(int mode) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetSubstreamsEnabled(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetSubstreamsEnabled() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetVideoParsingEnabled(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetVideoParsingEnabled() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetFixBrokenHDPVR(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetFixBrokenHDPVR() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetFormatEnabled(LPCSTR format, BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE IsFormatEnabled(LPCSTR format) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetStreamSwitchRemoveAudio(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetStreamSwitchRemoveAudio() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetAdvancedSubtitleConfig(LPWSTR* config) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetAdvancedSubtitleConfig(LPCWSTR config) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetUseAudioForHearingVisuallyImpaired(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetUseAudioForHearingVisuallyImpaired() = 0;
    // Megabytes held by the packet queues at most.
    virtual HRESULT STDMETHODCALLTYPE SetMaxQueueMemSize(DWORD megabytes) = 0;
    virtual DWORD STDMETHODCALLTYPE GetMaxQueueMemSize() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetTrayIcon(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetTrayIcon() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetPreferHighQualityAudioStreams(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetPreferHighQualityAudioStreams() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetLoadMatroskaExternalSegments(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetLoadMatroskaExternalSegments() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetFormats(LPSTR** formats, UINT* count) = 0;
    // Milliseconds.
    virtual HRESULT STDMETHODCALLTYPE SetNetworkStreamAnalysisDuration(DWORD duration) = 0;
    virtual DWORD STDMETHODCALLTYPE GetNetworkStreamAnalysisDuration() = 0;
    // Packets held by one queue at most.
    virtual HRESULT STDMETHODCALLTYPE SetMaxQueueSize(DWORD packets) = 0;
    virtual DWORD STDMETHODCALLTYPE GetMaxQueueSize() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetStreamSwitchReselectSubtitles(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetStreamSwitchReselectSubtitles() = 0;
};

// The splitter's table of keyframes.
struct IKeyFrameInfo : public IUnknown {
    // Answers 1 (S_FALSE) when every frame is a keyframe; a count of zero means that there is no table.
    virtual HRESULT STDMETHODCALLTYPE GetKeyFrameCount(UINT& count) = 0;
    // `count`: in, the room in `keyFrames`; out, the number of times written. Times are in units of
    // `format`.
    virtual HRESULT STDMETHODCALLTYPE GetKeyFrames(const GUID* format, REFERENCE_TIME* keyFrames,
                                                   UINT& count) = 0;
};

} // namespace brindlecast

__CRT_UUID_DECL(brindlecast::ILAVFSettings, 0x774A919D, 0xEA95, 0x4A87, 0x8A, 0x1E, 0xF4, 0x8A, 0xBE, 0x84,
                0x99, 0xC7)
__CRT_UUID_DECL(brindlecast::IKeyFrameInfo, 0x01A5BBD3, 0xFE71, 0x487C, 0xA2, 0xEC, 0xF5, 0x85, 0x91, 0x8A,
                0x87, 0x24)
