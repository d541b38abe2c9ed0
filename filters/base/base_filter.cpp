#include "filters/base/base_filter.h"

#include "filters/base/base_pin.h"
#include "filters/base/enumerators.h"

#include <algorithm>

namespace brindlecast {

using Microsoft::WRL::ComPtr;

BaseFilter::BaseFilter(const CLSID& theClsid, ULONG theMiscFlags)
    : clsid(theClsid), miscFlags(theMiscFlags) {}

BaseFilter::~BaseFilter() = default;

void* BaseFilter::FindInterface(REFIID iid) noexcept {
    if (iid == IID_IUnknown || iid == IID_IPersist || iid == IID_IMediaFilter || iid == IID_IBaseFilter) {
        return static_cast<IBaseFilter*>(this);
    }
    if (iid == IID_IAMFilterMiscFlags && miscFlags != 0) {
        return static_cast<IAMFilterMiscFlags*>(this);
    }
    return nullptr;
}

STDMETHODIMP BaseFilter::GetClassID(CLSID* out) {
    if (out == nullptr) {
        return E_POINTER;
    }
    *out = clsid;
    return S_OK;
}

STDMETHODIMP BaseFilter::Stop() {
    return Guarded([&] {
        const std::lock_guard lock(stateLock);
        if (state == State_Stopped) {
            return S_OK;
        }
        // First the state: streaming threads that look at it give up while pins are taken down.
        state = State_Stopped;
        DeactivatePins();
        return S_OK;
    });
}

STDMETHODIMP BaseFilter::Pause() {
    return Guarded([&] {
        const std::lock_guard lock(stateLock);
        if (state == State_Stopped) {
            const HRESULT result = ActivatePins();
            if (FAILED(result)) {
                return result;
            }
        }
        state = State_Paused;
        return S_OK;
    });
}

STDMETHODIMP BaseFilter::Run(REFERENCE_TIME start) {
    return Guarded([&] {
        const std::lock_guard lock(stateLock);
        startTime = start;
        if (state == State_Stopped) {
            const HRESULT result = Pause();
            if (FAILED(result)) {
                return result;
            }
        }
        state = State_Running;
        return S_OK;
    });
}

STDMETHODIMP BaseFilter::GetState(DWORD, FILTER_STATE* out) {
    if (out == nullptr) {
        return E_POINTER;
    }
    *out = state;
    return S_OK;
}

STDMETHODIMP BaseFilter::SetSyncSource(IReferenceClock* clock) {
    const std::lock_guard lock(graphLock);
    referenceClock = clock;
    return S_OK;
}

STDMETHODIMP BaseFilter::GetSyncSource(IReferenceClock** clock) {
    if (clock == nullptr) {
        return E_POINTER;
    }
    *clock = Clock().Detach();
    return S_OK;
}

STDMETHODIMP BaseFilter::EnumPins(IEnumPins** out) {
    return Guarded([&] {
        if (out == nullptr) {
            return E_POINTER;
        }
        *out = nullptr;
        *out = new PinEnumerator(*this, 0);
        return S_OK;
    });
}

STDMETHODIMP BaseFilter::FindPin(LPCWSTR id, IPin** pin) {
    return Guarded([&]() -> HRESULT {
        if (id == nullptr || pin == nullptr) {
            return E_POINTER;
        }
        *pin = nullptr;
        int version = 0;
        for (BasePin* candidate : PinSnapshot(version)) {
            if (candidate->Name() != id) {
                continue;
            }
            *pin = candidate;
            candidate->AddRef();
            return S_OK;
        }
        return VFW_E_NOT_FOUND;
    });
}

STDMETHODIMP BaseFilter::QueryFilterInfo(FILTER_INFO* info) {
    if (info == nullptr) {
        return E_POINTER;
    }
    const std::lock_guard lock(graphLock);
    const std::size_t length = std::min<std::size_t>(filterName.size(), MAX_FILTER_NAME - 1);
    std::copy_n(filterName.data(), length, info->achName);
    info->achName[length] = 0;
    info->pGraph = graph;
    if (graph != nullptr) {
        graph->AddRef();
    }
    return S_OK;
}

STDMETHODIMP BaseFilter::JoinFilterGraph(IFilterGraph* newGraph, LPCWSTR name) {
    return Guarded([&] {
        std::wstring newName = name != nullptr ? name : L"";
        ComPtr<IMediaEventSink> sink;
        if (newGraph != nullptr) {
            newGraph->QueryInterface(IID_IMediaEventSink, reinterpret_cast<void**>(sink.GetAddressOf()));
        }
        const std::lock_guard lock(graphLock);
        graph = newGraph;
        eventSink = sink.Get();
        filterName = std::move(newName);
        return S_OK;
    });
}

STDMETHODIMP BaseFilter::QueryVendorInfo(LPWSTR* info) {
    if (info == nullptr) {
        return E_POINTER;
    }
    *info = nullptr;
    return E_NOTIMPL;
}

std::vector<BasePin*> BaseFilter::PinSnapshot(int& version) {
    const std::lock_guard lock(stateLock);
    std::vector<BasePin*> snapshot;
    snapshot.reserve(pins.size());
    for (const auto& pin : pins) {
        snapshot.push_back(pin.get());
    }
    version = pinVersion;
    return snapshot;
}

HRESULT BaseFilter::Notify(long code, LONG_PTR first, LONG_PTR second) {
    ComPtr<IMediaEventSink> sink;
    {
        const std::lock_guard lock(graphLock);
        sink = eventSink;
    }
    return sink ? sink->Notify(code, first, second) : E_NOTIMPL;
}

ComPtr<IReferenceClock> BaseFilter::Clock() {
    const std::lock_guard lock(graphLock);
    return referenceClock;
}

bool BaseFilter::InGraph() {
    const std::lock_guard lock(graphLock);
    return graph != nullptr;
}

void BaseFilter::AddPin(std::unique_ptr<BasePin> pin) {
    const std::lock_guard lock(stateLock);
    pins.push_back(std::move(pin));
    ++pinVersion;
}

HRESULT BaseFilter::ActivatePins() {
    for (const auto& pin : pins) {
        const HRESULT result = pin->IsConnected() ? pin->Activate() : S_OK;
        if (FAILED(result)) {
            DeactivatePins();
            return result;
        }
    }
    return S_OK;
}

void BaseFilter::DeactivatePins() {
    for (const auto& pin : pins) {
        if (pin->IsConnected()) {
            pin->Deactivate();
        }
    }
}

} // namespace brindlecast
