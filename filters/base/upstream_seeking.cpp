#include "filters/base/upstream_seeking.h"

namespace brindlecast {

using Microsoft::WRL::ComPtr;

template <class Method, class... Arguments>
HRESULT UpstreamSeeking::Forward(Method method, Arguments... arguments) {
    const ComPtr<IPin> pin = UpstreamPin();
    ComPtr<IMediaSeeking> seeking;
    if (!pin ||
        FAILED(pin->QueryInterface(IID_IMediaSeeking, reinterpret_cast<void**>(seeking.GetAddressOf())))) {
        return E_NOTIMPL;
    }
    return (seeking.Get()->*method)(arguments...);
}

STDMETHODIMP UpstreamSeeking::GetCapabilities(DWORD* capabilities) {
    return Forward(&IMediaSeeking::GetCapabilities, capabilities);
}

STDMETHODIMP UpstreamSeeking::CheckCapabilities(DWORD* capabilities) {
    return Forward(&IMediaSeeking::CheckCapabilities, capabilities);
}

STDMETHODIMP UpstreamSeeking::IsFormatSupported(const GUID* format) {
    return Forward(&IMediaSeeking::IsFormatSupported, format);
}

STDMETHODIMP UpstreamSeeking::QueryPreferredFormat(GUID* format) {
    return Forward(&IMediaSeeking::QueryPreferredFormat, format);
}

STDMETHODIMP UpstreamSeeking::GetTimeFormat(GUID* format) {
    return Forward(&IMediaSeeking::GetTimeFormat, format);
}

STDMETHODIMP UpstreamSeeking::IsUsingTimeFormat(const GUID* format) {
    return Forward(&IMediaSeeking::IsUsingTimeFormat, format);
}

STDMETHODIMP UpstreamSeeking::SetTimeFormat(const GUID* format) {
    return Forward(&IMediaSeeking::SetTimeFormat, format);
}

STDMETHODIMP UpstreamSeeking::GetDuration(LONGLONG* duration) {
    return Forward(&IMediaSeeking::GetDuration, duration);
}

STDMETHODIMP UpstreamSeeking::GetStopPosition(LONGLONG* stop) {
    return Forward(&IMediaSeeking::GetStopPosition, stop);
}

STDMETHODIMP UpstreamSeeking::GetCurrentPosition(LONGLONG* current) {
    return Forward(&IMediaSeeking::GetCurrentPosition, current);
}

STDMETHODIMP UpstreamSeeking::ConvertTimeFormat(LONGLONG* target, const GUID* targetFormat, LONGLONG source,
                                                const GUID* sourceFormat) {
    return Forward(&IMediaSeeking::ConvertTimeFormat, target, targetFormat, source, sourceFormat);
}

STDMETHODIMP UpstreamSeeking::SetPositions(LONGLONG* current, DWORD currentFlags, LONGLONG* stop,
                                           DWORD stopFlags) {
    return Forward(&IMediaSeeking::SetPositions, current, currentFlags, stop, stopFlags);
}

STDMETHODIMP UpstreamSeeking::GetPositions(LONGLONG* current, LONGLONG* stop) {
    return Forward(&IMediaSeeking::GetPositions, current, stop);
}

STDMETHODIMP UpstreamSeeking::GetAvailable(LONGLONG* earliest, LONGLONG* latest) {
    return Forward(&IMediaSeeking::GetAvailable, earliest, latest);
}

STDMETHODIMP UpstreamSeeking::SetRate(double rate) {
    return Forward(&IMediaSeeking::SetRate, rate);
}

STDMETHODIMP UpstreamSeeking::GetRate(double* rate) {
    return Forward(&IMediaSeeking::GetRate, rate);
}

STDMETHODIMP UpstreamSeeking::GetPreroll(LONGLONG* preroll) {
    return Forward(&IMediaSeeking::GetPreroll, preroll);
}

} // namespace brindlecast
