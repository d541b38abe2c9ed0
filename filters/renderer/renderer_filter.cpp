#include "filters/renderer/renderer_filter.h"

#include <evcode.h>
#include <vfwmsgs.h>

namespace brindlecast {

STDMETHODIMP SubtitleAccess::SetCallback11(ISubRender11Callback* callback) {
    return Guarded([&] {
        core.Subtitles().SetCallback(callback);
        return S_OK;
    });
}

RendererFilter::RendererFilter()
    : BaseFilter(kClsidMpcVideoRenderer, AM_FILTER_MISC_FLAGS_IS_RENDERER), core(*this),
      input(new RendererPin(*this, core)), videoWindow(*this, core), basicVideo(*this, core),
      seeking(*this, *input, core), options(*this, core), subtitles(*this, core), quality(*this, core) {
    AddPin(std::unique_ptr<BasePin>(input));
}

void* RendererFilter::FindInterface(REFIID iid) noexcept {
    if (iid == IID_IVideoWindow) {
        return static_cast<IVideoWindow*>(&videoWindow);
    }
    if (iid == IID_IBasicVideo) {
        return static_cast<IBasicVideo*>(&basicVideo);
    }
    if (iid == IID_IBasicVideo2) {
        return static_cast<IBasicVideo2*>(&basicVideo);
    }
    if (iid == IID_IMediaSeeking) {
        return static_cast<IMediaSeeking*>(&seeking);
    }
    if (iid == __uuidof(IExFilterConfig)) {
        return static_cast<IExFilterConfig*>(&options);
    }
    if (iid == __uuidof(ISubRender11)) {
        return static_cast<ISubRender11*>(&subtitles);
    }
    if (iid == IID_IQualProp) {
        return static_cast<IQualProp*>(&quality);
    }
    return BaseFilter::FindInterface(iid);
}

STDMETHODIMP RendererFilter::Stop() {
    return BaseFilter::Stop(); // the pin stops the drawing
}

STDMETHODIMP RendererFilter::Pause() {
    const std::lock_guard lock(StateLock());
    const HRESULT result = BaseFilter::Pause();
    if (FAILED(result) || !input->IsConnected()) {
        return result;
    }
    core.Drawing().Pause();
    return core.Drawing().WaitReady(0) ? S_OK : S_FALSE;
}

STDMETHODIMP RendererFilter::Run(REFERENCE_TIME start) {
    const std::lock_guard lock(StateLock());
    const bool wasRunning = State() == State_Running;
    const HRESULT result = BaseFilter::Run(start);
    if (FAILED(result)) {
        return result;
    }
    if (input->IsConnected()) {
        core.Drawing().Run(start);
    } else if (!wasRunning) {
        OnStreamEnd(); // nothing will come: the graph must not wait for this filter
    }
    return S_OK;
}

STDMETHODIMP RendererFilter::GetState(DWORD milliseconds, FILTER_STATE* out) {
    if (out == nullptr) {
        return E_POINTER;
    }
    // No lock: a streaming thread ends the wait, and a stop may come meanwhile.
    const bool ready = core.Drawing().WaitReady(milliseconds);
    *out = State();
    return ready ? S_OK : VFW_S_STATE_INTERMEDIATE;
}

std::optional<std::int64_t> RendererFilter::ClockTime() {
    const ComPtr<IReferenceClock> clock = Clock();
    REFERENCE_TIME now = 0;
    if (clock == nullptr || FAILED(clock->GetTime(&now))) {
        return std::nullopt;
    }
    return now;
}

void RendererFilter::OnStreamEnd() {
    Notify(EC_COMPLETE, S_OK, reinterpret_cast<LONG_PTR>(static_cast<IBaseFilter*>(this)));
}

} // namespace brindlecast
