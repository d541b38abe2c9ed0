#include "filters/splitter/splitter_settings.h"

#include "filters/base/com_object.h"
#include "filters/splitter/splitter_text.h"

#include <algorithm>
#include <cstring>
#include <vector>

extern "C" {
#include <libavformat/avformat.h>
}

namespace brindlecast {

STDMETHODIMP SplitterSettings::SetRuntimeConfig(BOOL) {
    return S_OK; // settings are never stored, so that either answer is true already
}

STDMETHODIMP SplitterSettings::GetPreferredLanguages(LPWSTR* languages) {
    const std::lock_guard lock(mutex);
    return TaskMemString(audioLanguages, languages);
}

STDMETHODIMP SplitterSettings::SetPreferredLanguages(LPCWSTR languages) {
    return Guarded([&] {
        const std::lock_guard lock(mutex);
        audioLanguages = languages != nullptr ? languages : L"";
        return S_OK;
    });
}

STDMETHODIMP SplitterSettings::GetPreferredSubtitleLanguages(LPWSTR* languages) {
    const std::lock_guard lock(mutex);
    return TaskMemString(subtitleLanguages, languages);
}

STDMETHODIMP SplitterSettings::SetPreferredSubtitleLanguages(LPCWSTR languages) {
    return Guarded([&] {
        const std::lock_guard lock(mutex);
        subtitleLanguages = languages != nullptr ? languages : L"";
        return S_OK;
    });
}

STDMETHODIMP_(int) SplitterSettings::GetSubtitleMode() {
    const std::lock_guard lock(mutex);
    return subtitleMode;
}

STDMETHODIMP SplitterSettings::SetSubtitleMode(int mode) {
    if (mode == kLavSubtitleModeAdvanced) {
        return E_NOTIMPL;
    }
    if (mode < kLavSubtitleModeNone || mode > kLavSubtitleModeAdvanced) {
        return E_INVALIDARG;
    }
    const std::lock_guard lock(mutex);
    subtitleMode = mode;
    return S_OK;
}

STDMETHODIMP_(BOOL) SplitterSettings::IsFormatEnabled(LPCSTR format) {
    return format != nullptr && av_find_input_format(format) != nullptr;
}

STDMETHODIMP SplitterSettings::GetAdvancedSubtitleConfig(LPWSTR* config) {
    if (config != nullptr) {
        *config = nullptr;
    }
    return E_NOTIMPL;
}

STDMETHODIMP SplitterSettings::SetMaxQueueMemSize(DWORD megabytes) {
    {
        const std::lock_guard lock(mutex);
        queueMegabytes = std::clamp<DWORD>(megabytes, 1, 4096);
    }
    OnLimitsChanged();
    return S_OK;
}

STDMETHODIMP_(DWORD) SplitterSettings::GetMaxQueueMemSize() {
    const std::lock_guard lock(mutex);
    return queueMegabytes;
}

STDMETHODIMP SplitterSettings::SetTrayIcon(BOOL enabled) {
    return enabled ? E_NOTIMPL : S_OK;
}

STDMETHODIMP SplitterSettings::GetFormats(LPSTR** formats, UINT* count) {
    return Guarded([&]() -> HRESULT {
        if (formats == nullptr || count == nullptr) {
            return E_POINTER;
        }
        std::vector<const char*> names;
        void* walk = nullptr;
        while (const AVInputFormat* format = av_demuxer_iterate(&walk)) {
            names.push_back(format->name);
        }
        auto** list =
            static_cast<LPSTR*>(CoTaskMemAlloc(std::max<std::size_t>(names.size(), 1) * sizeof(LPSTR)));
        if (list == nullptr) {
            return E_OUTOFMEMORY;
        }
        for (std::size_t i = 0; i < names.size(); ++i) {
            const std::size_t size = std::strlen(names[i]) + 1;
            list[i] = static_cast<LPSTR>(CoTaskMemAlloc(size));
            if (list[i] == nullptr) {
                while (i > 0) {
                    CoTaskMemFree(list[--i]);
                }
                CoTaskMemFree(list);
                return E_OUTOFMEMORY;
            }
            std::memcpy(list[i], names[i], size);
        }
        *formats = list;
        *count = static_cast<UINT>(names.size());
        return S_OK;
    });
}

STDMETHODIMP SplitterSettings::SetMaxQueueSize(DWORD packets) {
    {
        const std::lock_guard lock(mutex);
        queuePackets = std::clamp<DWORD>(packets, 2, 100'000);
    }
    OnLimitsChanged();
    return S_OK;
}

STDMETHODIMP_(DWORD) SplitterSettings::GetMaxQueueSize() {
    const std::lock_guard lock(mutex);
    return queuePackets;
}

StreamPreferences SplitterSettings::Preferences() {
    const std::lock_guard lock(mutex);
    StreamPreferences preferences;
    preferences.audioLanguages = ParseLanguages(Utf8(audioLanguages));
    preferences.subtitleLanguages = ParseLanguages(Utf8(subtitleLanguages));
    using Subtitles = StreamPreferences::Subtitles;
    preferences.subtitles = subtitleMode == kLavSubtitleModeNone         ? Subtitles::None
                            : subtitleMode == kLavSubtitleModeForcedOnly ? Subtitles::ForcedOnly
                                                                         : Subtitles::Default;
    return preferences;
}

QueueLimits SplitterSettings::Limits() {
    const std::lock_guard lock(mutex);
    QueueLimits limits;
    limits.bytes = static_cast<std::size_t>(queueMegabytes) << 20;
    limits.packets = queuePackets;
    return limits;
}

} // namespace brindlecast
