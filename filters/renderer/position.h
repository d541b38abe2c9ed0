#pragma once

#include "filters/base/base_pin.h"
#include "filters/base/upstream_seeking.h"
#include "filters/renderer/renderer_core.h"

namespace brindlecast {

// IMediaSeeking of the renderer: the position is that of the picture; all else goes upstream. Times are in
// 100 ns units only.
class PositionSeeking final : public UpstreamSeeking {
public:
    PositionSeeking(BaseFilter& theFilter, BasePin& theInput, RendererCore& theCore)
        : filter(theFilter), input(theInput), core(theCore) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override { return filter.QueryInterface(iid, out); }
    STDMETHODIMP_(ULONG) AddRef() override { return filter.AddRef(); }
    STDMETHODIMP_(ULONG) Release() override { return filter.Release(); }

    STDMETHODIMP GetCapabilities(DWORD* capabilities) override;
    STDMETHODIMP IsFormatSupported(const GUID* format) override;
    STDMETHODIMP QueryPreferredFormat(GUID* format) override;
    STDMETHODIMP GetTimeFormat(GUID* format) override;
    STDMETHODIMP IsUsingTimeFormat(const GUID* format) override;
    STDMETHODIMP SetTimeFormat(const GUID* format) override;
    STDMETHODIMP GetCurrentPosition(LONGLONG* current) override;
    STDMETHODIMP GetPositions(LONGLONG* current, LONGLONG* stop) override;

private:
    [[nodiscard]] Microsoft::WRL::ComPtr<IPin> UpstreamPin() override { return input.Peer(); }

    BaseFilter& filter;
    BasePin& input;
    RendererCore& core;
};

} // namespace brindlecast
