#pragma once

#include "filters/core/demux_queue.h"
#include "filters/include/lav_splitter.h"

#include <mutex>
#include <string>

namespace brindlecast {

// ILAVFSettings as a part of the filter, which brings IUnknown. Settings live in memory only. They are read
// by Load, but the queue limits take effect at once. What this splitter cannot do answers E_NOTIMPL when
// set; its getters tell how the splitter behaves.
class SplitterSettings : public ILAVFSettings {
public:
    STDMETHODIMP SetRuntimeConfig(BOOL runtime) override;
    STDMETHODIMP GetPreferredLanguages(LPWSTR* languages) override;
    STDMETHODIMP SetPreferredLanguages(LPCWSTR languages) override;
    STDMETHODIMP GetPreferredSubtitleLanguages(LPWSTR* languages) override;
    STDMETHODIMP SetPreferredSubtitleLanguages(LPCWSTR languages) override;
    STDMETHODIMP_(int) GetSubtitleMode() override;
    STDMETHODIMP SetSubtitleMode(int mode) override;
    STDMETHODIMP_(BOOL) GetSubtitleMatchingLanguage() override { return FALSE; }
    STDMETHODIMP SetSubtitleMatchingLanguage(BOOL) override { return E_NOTIMPL; }
    STDMETHODIMP_(BOOL) GetPGSForcedStream() override { return FALSE; }
    STDMETHODIMP SetPGSForcedStream(BOOL) override { return E_NOTIMPL; }
    STDMETHODIMP_(BOOL) GetPGSOnlyForced() override { return FALSE; }
    STDMETHODIMP SetPGSOnlyForced(BOOL) override { return E_NOTIMPL; }
    STDMETHODIMP_(int) GetVC1TimestampMode() override { return 0; }
    STDMETHODIMP SetVC1TimestampMode(int) override { return E_NOTIMPL; }
    STDMETHODIMP SetSubstreamsEnabled(BOOL) override { return E_NOTIMPL; }
    STDMETHODIMP_(BOOL) GetSubstreamsEnabled() override { return FALSE; }
    STDMETHODIMP SetVideoParsingEnabled(BOOL) override { return E_NOTIMPL; }
    STDMETHODIMP_(BOOL) GetVideoParsingEnabled() override { return TRUE; }
    STDMETHODIMP SetFixBrokenHDPVR(BOOL) override { return E_NOTIMPL; }
    STDMETHODIMP_(BOOL) GetFixBrokenHDPVR() override { return FALSE; }
    STDMETHODIMP SetFormatEnabled(LPCSTR, BOOL) override { return E_NOTIMPL; }
    STDMETHODIMP_(BOOL) IsFormatEnabled(LPCSTR format) override;
    STDMETHODIMP SetStreamSwitchRemoveAudio(BOOL) override { return E_NOTIMPL; }
    STDMETHODIMP_(BOOL) GetStreamSwitchRemoveAudio() override { return FALSE; }
    STDMETHODIMP GetAdvancedSubtitleConfig(LPWSTR* config) override;
    STDMETHODIMP SetAdvancedSubtitleConfig(LPCWSTR) override { return E_NOTIMPL; }
    STDMETHODIMP SetUseAudioForHearingVisuallyImpaired(BOOL) override { return E_NOTIMPL; }
    STDMETHODIMP_(BOOL) GetUseAudioForHearingVisuallyImpaired() override { return FALSE; }
    STDMETHODIMP SetMaxQueueMemSize(DWORD megabytes) override;
    STDMETHODIMP_(DWORD) GetMaxQueueMemSize() override;
    STDMETHODIMP SetTrayIcon(BOOL enabled) override;
    STDMETHODIMP_(BOOL) GetTrayIcon() override { return FALSE; }
    STDMETHODIMP SetPreferHighQualityAudioStreams(BOOL) override { return E_NOTIMPL; }
    STDMETHODIMP_(BOOL) GetPreferHighQualityAudioStreams() override { return FALSE; }
    STDMETHODIMP SetLoadMatroskaExternalSegments(BOOL) override { return E_NOTIMPL; }
    STDMETHODIMP_(BOOL) GetLoadMatroskaExternalSegments() override { return FALSE; }
    STDMETHODIMP GetFormats(LPSTR** formats, UINT* count) override;
    STDMETHODIMP SetNetworkStreamAnalysisDuration(DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP_(DWORD) GetNetworkStreamAnalysisDuration() override { return 0; }
    STDMETHODIMP SetMaxQueueSize(DWORD packets) override;
    STDMETHODIMP_(DWORD) GetMaxQueueSize() override;
    STDMETHODIMP SetStreamSwitchReselectSubtitles(BOOL) override { return E_NOTIMPL; }
    STDMETHODIMP_(BOOL) GetStreamSwitchReselectSubtitles() override { return FALSE; }

protected:
    ~SplitterSettings() = default;

    [[nodiscard]] StreamPreferences Preferences();
    [[nodiscard]] QueueLimits Limits();
    // The queue limits have changed.
    virtual void OnLimitsChanged() = 0;

private:
    std::mutex mutex; // leaf lock
    std::wstring audioLanguages;
    std::wstring subtitleLanguages;
    int subtitleMode = kLavSubtitleModeNone;
    DWORD queueMegabytes = 256;
    DWORD queuePackets = 500;
};

} // namespace brindlecast
