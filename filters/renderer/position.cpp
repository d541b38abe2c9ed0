#include "filters/renderer/position.h"

namespace brindlecast {

STDMETHODIMP PositionSeeking::GetCapabilities(DWORD* capabilities) {
    if (capabilities == nullptr) {
        return E_POINTER;
    }
    DWORD upstream = 0;
    if (FAILED(UpstreamSeeking::GetCapabilities(&upstream))) {
        upstream = 0;
    }
    *capabilities = upstream | AM_SEEKING_CanGetCurrentPos;
    return S_OK;
}

STDMETHODIMP PositionSeeking::IsFormatSupported(const GUID* format) {
    if (format == nullptr) {
        return E_POINTER;
    }
    return *format == TIME_FORMAT_MEDIA_TIME ? S_OK : S_FALSE;
}

STDMETHODIMP PositionSeeking::QueryPreferredFormat(GUID* format) {
    if (format == nullptr) {
        return E_POINTER;
    }
    *format = TIME_FORMAT_MEDIA_TIME;
    return S_OK;
}

STDMETHODIMP PositionSeeking::GetTimeFormat(GUID* format) {
    return QueryPreferredFormat(format);
}

STDMETHODIMP PositionSeeking::IsUsingTimeFormat(const GUID* format) {
    return IsFormatSupported(format);
}

STDMETHODIMP PositionSeeking::SetTimeFormat(const GUID* format) {
    if (format == nullptr) {
        return E_POINTER;
    }
    return *format == TIME_FORMAT_MEDIA_TIME ? S_OK : E_INVALIDARG;
}

STDMETHODIMP PositionSeeking::GetCurrentPosition(LONGLONG* current) {
    if (current == nullptr) {
        return E_POINTER;
    }
    if (!input.IsConnected()) {
        return E_NOTIMPL; // graphs pass over a filter that answers so
    }
    // A stopped graph may have been given a new place that no picture has followed yet.
    if (filter.State() == State_Stopped && UpstreamSeeking::GetCurrentPosition(current) == S_OK) {
        return S_OK;
    }
    if (const std::optional<std::int64_t> position = core.Drawing().Position()) {
        *current = *position;
        return S_OK;
    }
    // After a seek the new segment comes on the streaming thread; until then only the source knows the place.
    return UpstreamSeeking::GetCurrentPosition(current);
}

STDMETHODIMP PositionSeeking::GetPositions(LONGLONG* current, LONGLONG* stop) {
    if (current != nullptr) {
        if (const HRESULT result = GetCurrentPosition(current); FAILED(result)) {
            return result;
        }
    }
    return stop != nullptr ? GetStopPosition(stop) : S_OK;
}

} // namespace brindlecast
