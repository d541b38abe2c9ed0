#include "filters/renderer/renderer_filter.h"

#include <evcode.h>
#include <vfwmsgs.h>

namespace brindlecast {

STDMETHODIMP SubtitleAccess::SetCallback11(ISubRender11Callback* callback) {
    return Guarded([&] {
        core_.Subtitles().SetCallback(callback);
        return S_OK;
    });
}

RendererFilter::RendererFilter()
    : BaseFilter(kClsidMpcVideoRenderer, AM_FILTER_MISC_FLAGS_IS_RENDERER), core_(*this),
      input_(new RendererPin(*this, core_)), videoWindow_(*this, core_), basicVideo_(*this, core_),
      seeking_(*this, *input_, core_), options_(*this, core_), subtitles_(*this, core_),
      quality_(*this, core_) {
    AddPin(std::unique_ptr<BasePin>(input_));
}

void* RendererFilter::FindInterface(REFIID iid) noexcept {
    if (iid == IID_IVideoWindow) {
        return static_cast<IVideoWindow*>(&videoWindow_);
    }
    if (iid == IID_IBasicVideo) {
        return static_cast<IBasicVideo*>(&basicVideo_);
    }
    if (iid == IID_IBasicVideo2) {
        return static_cast<IBasicVideo2*>(&basicVideo_);
    }
    if (iid == IID_IMediaSeeking) {
        return static_cast<IMediaSeeking*>(&seeking_);
    }
    if (iid == __uuidof(IExFilterConfig)) {
        return static_cast<IExFilterConfig*>(&options_);
    }
    if (iid == __uuidof(ISubRender11)) {
        return static_cast<ISubRender11*>(&subtitles_);
    }
    if (iid == IID_IQualProp) {
        return static_cast<IQualProp*>(&quality_);
    }
    return BaseFilter::FindInterface(iid);
}

STDMETHODIMP RendererFilter::Stop() {
    return BaseFilter::Stop(); // the pin stops the drawing
}

STDMETHODIMP RendererFilter::Pause() {
    const std::lock_guard lock(StateLock());
    const HRESULT result = BaseFilter::Pause();
    if (FAILED(result) || !input_->IsConnected()) {
        return result;
    }
    core_.Drawing().Pause();
    return core_.Drawing().WaitReady(0) ? S_OK : S_FALSE;
}

STDMETHODIMP RendererFilter::Run(REFERENCE_TIME start) {
    const std::lock_guard lock(StateLock());
    const bool wasRunning = State() == State_Running;
    const HRESULT result = BaseFilter::Run(start);
    if (FAILED(result)) {
        return result;
    }
    if (input_->IsConnected()) {
        core_.Drawing().Run(start);
    } else if (!wasRunning) {
        OnStreamEnd(); // nothing will come: the graph must not wait for this filter
    }
    return S_OK;
}

STDMETHODIMP RendererFilter::GetState(DWORD milliseconds, FILTER_STATE* state) {
    if (state == nullptr) {
        return E_POINTER;
    }
    // No lock: a streaming thread ends the wait, and a stop may come meanwhile.
    const bool ready = core_.Drawing().WaitReady(milliseconds);
    *state = State();
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
