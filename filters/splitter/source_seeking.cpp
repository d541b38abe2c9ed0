#include "filters/splitter/source_seeking.h"

#include "filters/base/com_object.h"

#include <uuids.h>

namespace brindlecast {
namespace {

constexpr DWORD kCapabilities = AM_SEEKING_CanSeekAbsolute | AM_SEEKING_CanSeekForwards |
                                AM_SEEKING_CanSeekBackwards | AM_SEEKING_CanGetCurrentPos |
                                AM_SEEKING_CanGetStopPos | AM_SEEKING_CanGetDuration;

} // namespace

STDMETHODIMP SourceSeeking::GetCapabilities(DWORD* capabilities) {
    if (capabilities == nullptr) {
        return E_POINTER;
    }
    *capabilities = kCapabilities;
    return S_OK;
}

STDMETHODIMP SourceSeeking::CheckCapabilities(DWORD* capabilities) {
    if (capabilities == nullptr) {
        return E_POINTER;
    }
    const DWORD asked = *capabilities;
    *capabilities &= kCapabilities;
    if (*capabilities == asked) {
        return S_OK;
    }
    return *capabilities != 0 ? S_FALSE : E_FAIL;
}

STDMETHODIMP SourceSeeking::IsFormatSupported(const GUID* format) {
    if (format == nullptr) {
        return E_POINTER;
    }
    return *format == TIME_FORMAT_MEDIA_TIME ? S_OK : S_FALSE;
}

STDMETHODIMP SourceSeeking::QueryPreferredFormat(GUID* format) {
    return GetTimeFormat(format);
}

STDMETHODIMP SourceSeeking::GetTimeFormat(GUID* format) {
    if (format == nullptr) {
        return E_POINTER;
    }
    *format = TIME_FORMAT_MEDIA_TIME;
    return S_OK;
}

STDMETHODIMP SourceSeeking::IsUsingTimeFormat(const GUID* format) {
    return IsFormatSupported(format);
}

STDMETHODIMP SourceSeeking::SetTimeFormat(const GUID* format) {
    if (format == nullptr) {
        return E_POINTER;
    }
    return *format == TIME_FORMAT_MEDIA_TIME ? S_OK : E_INVALIDARG;
}

STDMETHODIMP SourceSeeking::GetDuration(LONGLONG* duration) {
    if (duration == nullptr) {
        return E_POINTER;
    }
    *duration = seekTarget.SeekDuration();
    return *duration > 0 ? S_OK : E_FAIL;
}

STDMETHODIMP SourceSeeking::GetStopPosition(LONGLONG* stop) {
    if (stop == nullptr) {
        return E_POINTER;
    }
    *stop = seekTarget.SeekStop();
    return S_OK;
}

STDMETHODIMP SourceSeeking::GetCurrentPosition(LONGLONG* current) {
    if (current == nullptr) {
        return E_POINTER;
    }
    *current = seekTarget.SeekPosition();
    return S_OK;
}

STDMETHODIMP SourceSeeking::ConvertTimeFormat(LONGLONG* target, const GUID* targetFormat, LONGLONG source,
                                              const GUID* sourceFormat) {
    if (target == nullptr) {
        return E_POINTER;
    }
    // A null format is the current one.
    for (const GUID* format : {targetFormat, sourceFormat}) {
        if (format != nullptr && *format != TIME_FORMAT_MEDIA_TIME) {
            return E_INVALIDARG;
        }
    }
    *target = source;
    return S_OK;
}

STDMETHODIMP SourceSeeking::SetPositions(LONGLONG* current, DWORD currentFlags, LONGLONG* stop,
                                         DWORD stopFlags) {
    return Guarded([&]() -> HRESULT {
        LONGLONG start = seekTarget.SeekPosition();
        const DWORD startKind = currentFlags & AM_SEEKING_PositioningBitsMask;
        if (startKind != AM_SEEKING_NoPositioning) {
            if (current == nullptr) {
                return E_POINTER;
            }
            if (startKind == AM_SEEKING_AbsolutePositioning) {
                start = *current;
            } else if (startKind == AM_SEEKING_RelativePositioning) {
                start += *current;
            } else {
                return E_INVALIDARG;
            }
            if ((currentFlags & AM_SEEKING_SeekToKeyFrame) != 0) {
                start = seekTarget.KeyframeBefore(start);
            }
        }
        LONGLONG end = seekTarget.SeekStop();
        const DWORD stopKind = stopFlags & AM_SEEKING_PositioningBitsMask;
        if (stopKind != AM_SEEKING_NoPositioning) {
            if (stop == nullptr) {
                return E_POINTER;
            }
            if (stopKind == AM_SEEKING_AbsolutePositioning) {
                end = *stop;
            } else if (stopKind == AM_SEEKING_RelativePositioning) {
                end += *stop;
            } else {
                end = start + *stop; // incremental: counted from the start
            }
        }
        const HRESULT result =
            seekTarget.SeekTo(this, startKind != AM_SEEKING_NoPositioning ? &start : nullptr,
                              stopKind != AM_SEEKING_NoPositioning ? &end : nullptr);
        if (FAILED(result)) {
            return result;
        }
        if ((currentFlags & AM_SEEKING_ReturnTime) != 0 && current != nullptr) {
            *current = start;
        }
        if ((stopFlags & AM_SEEKING_ReturnTime) != 0 && stop != nullptr) {
            *stop = end;
        }
        return result;
    });
}

STDMETHODIMP SourceSeeking::GetPositions(LONGLONG* current, LONGLONG* stop) {
    if (current != nullptr) {
        *current = seekTarget.SeekPosition();
    }
    if (stop != nullptr) {
        *stop = seekTarget.SeekStop();
    }
    return S_OK;
}

STDMETHODIMP SourceSeeking::GetAvailable(LONGLONG* earliest, LONGLONG* latest) {
    if (earliest != nullptr) {
        *earliest = 0;
    }
    if (latest != nullptr) {
        *latest = seekTarget.SeekDuration();
    }
    return S_OK;
}

STDMETHODIMP SourceSeeking::SetRate(double rate) {
    return Guarded([&] { return seekTarget.ChangeRate(rate); });
}

STDMETHODIMP SourceSeeking::GetRate(double* rate) {
    if (rate == nullptr) {
        return E_POINTER;
    }
    *rate = seekTarget.SeekRate();
    return S_OK;
}

STDMETHODIMP SourceSeeking::GetPreroll(LONGLONG* preroll) {
    if (preroll == nullptr) {
        return E_POINTER;
    }
    *preroll = 0;
    return S_OK;
}

} // namespace brindlecast
