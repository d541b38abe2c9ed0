#pragma once

#include <dshow.h>
#include <wrl/client.h>

namespace brindlecast {

// IMediaSeeking that hands every call to the filter upstream; E_NOTIMPL when there is none. A transform's
// output pin derives from it, and so may a renderer, which then overrides what it knows better. The class
// that derives brings IUnknown (BRINDLECAST_COM_METHODS).
class UpstreamSeeking : public IMediaSeeking {
public:
    STDMETHODIMP GetCapabilities(DWORD* capabilities) override;
    STDMETHODIMP CheckCapabilities(DWORD* capabilities) override;
    STDMETHODIMP IsFormatSupported(const GUID* format) override;
    STDMETHODIMP QueryPreferredFormat(GUID* format) override;
    STDMETHODIMP GetTimeFormat(GUID* format) override;
    STDMETHODIMP IsUsingTimeFormat(const GUID* format) override;
    STDMETHODIMP SetTimeFormat(const GUID* format) override;
    STDMETHODIMP GetDuration(LONGLONG* duration) override;
    STDMETHODIMP GetStopPosition(LONGLONG* stop) override;
    STDMETHODIMP GetCurrentPosition(LONGLONG* current) override;
    STDMETHODIMP ConvertTimeFormat(LONGLONG* target, const GUID* targetFormat, LONGLONG source,
                                   const GUID* sourceFormat) override;
    STDMETHODIMP SetPositions(LONGLONG* current, DWORD currentFlags, LONGLONG* stop,
                              DWORD stopFlags) override;
    STDMETHODIMP GetPositions(LONGLONG* current, LONGLONG* stop) override;
    STDMETHODIMP GetAvailable(LONGLONG* earliest, LONGLONG* latest) override;
    STDMETHODIMP SetRate(double rate) override;
    STDMETHODIMP GetRate(double* rate) override;
    STDMETHODIMP GetPreroll(LONGLONG* preroll) override;

protected:
    ~UpstreamSeeking() = default;

    // The pin at the other end of the input pin, or null.
    [[nodiscard]] virtual Microsoft::WRL::ComPtr<IPin> UpstreamPin() = 0;

private:
    template <class Method, class... Arguments>
    HRESULT Forward(Method method, Arguments... arguments);
};

} // namespace brindlecast
