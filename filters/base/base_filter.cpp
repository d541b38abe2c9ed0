#include "filters/base/base_filter.h"

#include "filters/base/base_pin.h"
#include "filters/base/enumerators.h"

#include <algorithm>

namespace brindlecast {

using Microsoft::WRL::ComPtr;

BaseFilter::BaseFilter(const CLSID& clsid, ULONG miscFlags) : clsid_(clsid), miscFlags_(miscFlags) {}

BaseFilter::~BaseFilter() = default;

void* BaseFilter::FindInterface(REFIID iid) noexcept {
    if (iid == IID_IUnknown || iid == IID_IPersist || iid == IID_IMediaFilter || iid == IID_IBaseFilter)
        return static_cast<IBaseFilter*>(this);
    if (iid == IID_IAMFilterMiscFlags && miscFlags_ != 0)
        return static_cast<IAMFilterMiscFlags*>(this);
    return nullptr;
}

STDMETHODIMP BaseFilter::GetClassID(CLSID* clsid) {
    if (clsid == nullptr)
        return E_POINTER;
    *clsid = clsid_;
    return S_OK;
}

STDMETHODIMP BaseFilter::Stop() {
    return Guarded([&] {
        const std::lock_guard lock(stateLock_);
        if (state_ == State_Stopped)
            return S_OK;
        // First the state: streaming threads that look at it give up while pins are taken down.
        state_ = State_Stopped;
        DeactivatePins();
        return S_OK;
    });
}

STDMETHODIMP BaseFilter::Pause() {
    return Guarded([&] {
        const std::lock_guard lock(stateLock_);
        if (state_ == State_Stopped) {
            const HRESULT result = ActivatePins();
            if (FAILED(result))
                return result;
        }
        state_ = State_Paused;
        return S_OK;
    });
}

STDMETHODIMP BaseFilter::Run(REFERENCE_TIME start) {
    return Guarded([&] {
        const std::lock_guard lock(stateLock_);
        startTime_ = start;
        if (state_ == State_Stopped) {
            const HRESULT result = Pause();
            if (FAILED(result))
                return result;
        }
        state_ = State_Running;
        return S_OK;
    });
}

STDMETHODIMP BaseFilter::GetState(DWORD, FILTER_STATE* state) {
    if (state == nullptr)
        return E_POINTER;
    *state = state_;
    return S_OK;
}

STDMETHODIMP BaseFilter::SetSyncSource(IReferenceClock* clock) {
    const std::lock_guard lock(graphLock_);
    clock_ = clock;
    return S_OK;
}

STDMETHODIMP BaseFilter::GetSyncSource(IReferenceClock** clock) {
    if (clock == nullptr)
        return E_POINTER;
    *clock = Clock().Detach();
    return S_OK;
}

STDMETHODIMP BaseFilter::EnumPins(IEnumPins** pins) {
    return Guarded([&] {
        if (pins == nullptr)
            return E_POINTER;
        *pins = nullptr;
        *pins = new PinEnumerator(*this, 0);
        return S_OK;
    });
}

STDMETHODIMP BaseFilter::FindPin(LPCWSTR id, IPin** pin) {
    return Guarded([&]() -> HRESULT {
        if (id == nullptr || pin == nullptr)
            return E_POINTER;
        *pin = nullptr;
        int version = 0;
        for (BasePin* candidate : PinSnapshot(version)) {
            if (candidate->Name() != id)
                continue;
            *pin = candidate;
            candidate->AddRef();
            return S_OK;
        }
        return VFW_E_NOT_FOUND;
    });
}

STDMETHODIMP BaseFilter::QueryFilterInfo(FILTER_INFO* info) {
    if (info == nullptr)
        return E_POINTER;
    const std::lock_guard lock(graphLock_);
    const std::size_t length = std::min<std::size_t>(name_.size(), MAX_FILTER_NAME - 1);
    std::copy_n(name_.data(), length, info->achName);
    info->achName[length] = 0;
    info->pGraph = graph_;
    if (graph_ != nullptr)
        graph_->AddRef();
    return S_OK;
}

STDMETHODIMP BaseFilter::JoinFilterGraph(IFilterGraph* graph, LPCWSTR name) {
    return Guarded([&] {
        std::wstring newName = name != nullptr ? name : L"";
        ComPtr<IMediaEventSink> sink;
        if (graph != nullptr)
            graph->QueryInterface(IID_IMediaEventSink, reinterpret_cast<void**>(sink.GetAddressOf()));
        const std::lock_guard lock(graphLock_);
        graph_ = graph;
        sink_ = sink.Get();
        name_ = std::move(newName);
        return S_OK;
    });
}

STDMETHODIMP BaseFilter::QueryVendorInfo(LPWSTR* info) {
    if (info == nullptr)
        return E_POINTER;
    *info = nullptr;
    return E_NOTIMPL;
}

std::vector<BasePin*> BaseFilter::PinSnapshot(int& version) {
    const std::lock_guard lock(stateLock_);
    std::vector<BasePin*> pins;
    pins.reserve(pins_.size());
    for (const auto& pin : pins_)
        pins.push_back(pin.get());
    version = pinVersion_;
    return pins;
}

HRESULT BaseFilter::Notify(long code, LONG_PTR first, LONG_PTR second) {
    ComPtr<IMediaEventSink> sink;
    {
        const std::lock_guard lock(graphLock_);
        sink = sink_;
    }
    return sink ? sink->Notify(code, first, second) : E_NOTIMPL;
}

ComPtr<IReferenceClock> BaseFilter::Clock() {
    const std::lock_guard lock(graphLock_);
    return clock_;
}

bool BaseFilter::InGraph() {
    const std::lock_guard lock(graphLock_);
    return graph_ != nullptr;
}

void BaseFilter::AddPin(std::unique_ptr<BasePin> pin) {
    const std::lock_guard lock(stateLock_);
    pins_.push_back(std::move(pin));
    ++pinVersion_;
}

HRESULT BaseFilter::ActivatePins() {
    for (const auto& pin : pins_) {
        const HRESULT result = pin->IsConnected() ? pin->Activate() : S_OK;
        if (FAILED(result)) {
            DeactivatePins();
            return result;
        }
    }
    return S_OK;
}

void BaseFilter::DeactivatePins() {
    for (const auto& pin : pins_) {
        if (pin->IsConnected())
            pin->Deactivate();
    }
}

} // namespace brindlecast
