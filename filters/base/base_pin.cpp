#include "filters/base/base_pin.h"

#include "filters/base/enumerators.h"

#include <algorithm>

namespace brindlecast {

using Microsoft::WRL::ComPtr;

BasePin::BasePin(BaseFilter& filter, PIN_DIRECTION direction, std::wstring name)
    : ownerFilter(filter), pinDirection(direction), pinName(std::move(name)) {}

BasePin::~BasePin() = default;

void* BasePin::FindInterface(REFIID iid) noexcept {
    if (iid == IID_IUnknown || iid == IID_IPin) {
        return static_cast<IPin*>(this);
    }
    if (iid == IID_IQualityControl) {
        return static_cast<IQualityControl*>(this);
    }
    return nullptr;
}

STDMETHODIMP BasePin::ReceiveConnection(IPin*, const AM_MEDIA_TYPE*) {
    return E_UNEXPECTED;
}

STDMETHODIMP BasePin::Connect(IPin*, const AM_MEDIA_TYPE*) {
    return E_UNEXPECTED;
}

STDMETHODIMP BasePin::Disconnect() {
    return Guarded([&]() -> HRESULT {
        const std::lock_guard lock(ownerFilter.StateLock());
        if (!IsConnected()) {
            return S_FALSE;
        }
        if (ownerFilter.State() != State_Stopped) {
            if (!ConnectsWhileActive()) {
                return VFW_E_NOT_STOPPED;
            }
            Deactivate();
        }
        OnDisconnected();
        SetPeer(nullptr);
        return S_OK;
    });
}

STDMETHODIMP BasePin::ConnectedTo(IPin** pin) {
    if (pin == nullptr) {
        return E_POINTER;
    }
    *pin = Peer().Detach();
    return *pin != nullptr ? S_OK : VFW_E_NOT_CONNECTED;
}

STDMETHODIMP BasePin::ConnectionMediaType(AM_MEDIA_TYPE* type) {
    if (type == nullptr) {
        return E_POINTER;
    }
    const std::lock_guard lock(pinLock);
    if (!connectedPeer) {
        *type = {};
        return VFW_E_NOT_CONNECTED;
    }
    return agreedType.CopyTo(*type);
}

STDMETHODIMP BasePin::QueryPinInfo(PIN_INFO* info) {
    if (info == nullptr) {
        return E_POINTER;
    }
    info->pFilter = &ownerFilter;
    ownerFilter.AddRef();
    info->dir = pinDirection;
    const std::size_t length = std::min<std::size_t>(pinName.size(), MAX_PIN_NAME - 1);
    std::copy_n(pinName.data(), length, info->achName);
    info->achName[length] = 0;
    return S_OK;
}

STDMETHODIMP BasePin::QueryDirection(PIN_DIRECTION* direction) {
    if (direction == nullptr) {
        return E_POINTER;
    }
    *direction = pinDirection;
    return S_OK;
}

STDMETHODIMP BasePin::QueryId(LPWSTR* id) {
    if (id == nullptr) {
        return E_POINTER;
    }
    const std::size_t length = pinName.size() + 1;
    *id = static_cast<LPWSTR>(CoTaskMemAlloc(length * sizeof(wchar_t)));
    if (*id == nullptr) {
        return E_OUTOFMEMORY;
    }
    std::copy_n(pinName.c_str(), length, *id);
    return S_OK;
}

STDMETHODIMP BasePin::QueryAccept(const AM_MEDIA_TYPE* type) {
    return Guarded([&] {
        if (type == nullptr) {
            return E_POINTER;
        }
        return CheckType(MediaType(*type)) == S_OK ? S_OK : S_FALSE;
    });
}

STDMETHODIMP BasePin::EnumMediaTypes(IEnumMediaTypes** types) {
    return Guarded([&] {
        if (types == nullptr) {
            return E_POINTER;
        }
        *types = nullptr;
        const std::lock_guard lock(ownerFilter.StateLock());
        *types = new MediaTypeEnumerator(PreferredTypes());
        return S_OK;
    });
}

STDMETHODIMP BasePin::QueryInternalConnections(IPin**, ULONG*) {
    return E_NOTIMPL; // documented: every input is connected to every output
}

STDMETHODIMP BasePin::EndOfStream() {
    return E_UNEXPECTED;
}

STDMETHODIMP BasePin::BeginFlush() {
    return E_UNEXPECTED;
}

STDMETHODIMP BasePin::EndFlush() {
    return E_UNEXPECTED;
}

STDMETHODIMP BasePin::NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) {
    SetSegment({start, stop, rate});
    return S_OK;
}

STDMETHODIMP BasePin::Notify(IBaseFilter*, Quality) {
    return E_NOTIMPL;
}

STDMETHODIMP BasePin::SetSink(IQualityControl* sink) {
    const std::lock_guard lock(pinLock);
    qualitySink = sink;
    return S_OK;
}

bool BasePin::IsConnected() {
    const std::lock_guard lock(pinLock);
    return connectedPeer != nullptr;
}

ComPtr<IPin> BasePin::Peer() {
    const std::lock_guard lock(pinLock);
    return connectedPeer;
}

MediaType BasePin::Type() {
    const std::lock_guard lock(pinLock);
    return agreedType;
}

BasePin::Segment BasePin::CurrentSegment() {
    const std::lock_guard lock(pinLock);
    return currentSegment;
}

HRESULT BasePin::Activate() {
    return S_OK;
}

void BasePin::Deactivate() {}

void BasePin::SetPeer(IPin* peer) {
    ComPtr<IPin> old; // released outside the lock
    const std::lock_guard lock(pinLock);
    old.Swap(connectedPeer);
    connectedPeer = peer;
    if (peer == nullptr) {
        currentSegment = {};
    }
}

void BasePin::SetType(const MediaType& type) {
    MediaType copy = type;
    const std::lock_guard lock(pinLock);
    agreedType = std::move(copy);
}

void BasePin::SetSegment(const Segment& segment) {
    const std::lock_guard lock(pinLock);
    currentSegment = segment;
}

ComPtr<IQualityControl> BasePin::QualitySink() {
    const std::lock_guard lock(pinLock);
    return qualitySink;
}

} // namespace brindlecast
