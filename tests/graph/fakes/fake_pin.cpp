#include "tests/graph/fakes/fake_pin.h"

#include "tests/graph/fakes/fake_enumerator.h"
#include "tests/graph/fakes/fake_filter.h"

#include <vfwmsgs.h>

#include <algorithm>
#include <cstring>

namespace brindlecast::testing {

namespace {

bool SameType(const FakeType& known, const AM_MEDIA_TYPE& type) {
    return known.major == type.majortype && known.subtype == type.subtype;
}

// The name of the filter that the pin belongs to.
std::wstring PeerName(IPin* peer) {
    PIN_INFO pin{};
    peer->QueryPinInfo(&pin);
    FILTER_INFO info{};
    if (pin.pFilter != nullptr) {
        pin.pFilter->QueryFilterInfo(&info);
        pin.pFilter->Release();
    }
    if (info.pGraph != nullptr) {
        info.pGraph->Release();
    }
    return info.achName;
}

std::wstring NameOf(IPin* pin) {
    PIN_INFO info{};
    pin->QueryPinInfo(&info);
    if (info.pFilter != nullptr) {
        info.pFilter->Release();
    }
    return info.achName;
}

} // namespace

STDMETHODIMP FakePin::QueryInterface(REFIID iid, void** out) {
    if (iid != __uuidof(IUnknown) && iid != __uuidof(IPin)) {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    *out = static_cast<IPin*>(this);
    AddRef();
    return S_OK;
}

STDMETHODIMP_(ULONG) FakePin::AddRef() {
    return filter.AddRef();
}
STDMETHODIMP_(ULONG) FakePin::Release() {
    return filter.Release();
}

STDMETHODIMP FakePin::Connect(IPin* receiver, const AM_MEDIA_TYPE* /*type*/) {
    if (direction != PINDIR_OUTPUT || peer != nullptr) {
        return E_UNEXPECTED;
    }
    if (const long refusal = filter.Script("refuseOutput"); refusal != 0) {
        return refusal;
    }
    for (const FakeType& offered : types) {
        AM_MEDIA_TYPE* copy = AllocateType(offered);
        const HRESULT result = receiver->ReceiveConnection(this, copy);
        CoTaskMemFree(copy->pbFormat);
        CoTaskMemFree(copy);
        if (SUCCEEDED(result)) {
            peer = receiver;
            connectedType = offered;
            filter.Record(kRecordCall, name + L" connected to " + PeerName(receiver));
            return S_OK;
        }
    }
    return VFW_E_NO_ACCEPTABLE_TYPES;
}

HRESULT FakePin::RefusalOf(IPin* connector) const {
    const wchar_t* refused = filter.ScriptText("refuseFrom");
    if (refused != nullptr && NameOf(connector) == refused) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    if (filter.CountDown("refuseTimes")) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    return filter.InputRefusal();
}

STDMETHODIMP FakePin::ReceiveConnection(IPin* connector, const AM_MEDIA_TYPE* type) {
    if (direction != PINDIR_INPUT || peer != nullptr) {
        return E_UNEXPECTED;
    }
    if (const HRESULT refusal = RefusalOf(connector); refusal != S_OK) {
        filter.Record(kRecordQuery, name + L" refuses");
        return refusal;
    }
    if (QueryAccept(type) != S_OK) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    peer = connector;
    connectedType = CopyType(*type);
    return S_OK;
}

STDMETHODIMP FakePin::Disconnect() {
    if (peer == nullptr) {
        return S_FALSE;
    }
    peer.Reset();
    return S_OK;
}

STDMETHODIMP FakePin::ConnectedTo(IPin** pin) {
    if (const long answer = filter.Script("connectedTo"); answer != 0 && peer == nullptr) {
        // The graph manager takes such an answer for a connection too, and wants a pin to look at.
        *pin = this;
        AddRef();
        return answer;
    }
    *pin = peer.Get();
    if (peer == nullptr) {
        return VFW_E_NOT_CONNECTED;
    }
    peer->AddRef();
    return S_OK;
}

STDMETHODIMP FakePin::ConnectionMediaType(AM_MEDIA_TYPE* type) {
    if (const long failure = filter.Script("connectionMediaType");
        failure != 0 && IsInExecutable(__builtin_return_address(0))) {
        return failure;
    }
    if (peer == nullptr) {
        *type = AM_MEDIA_TYPE{};
        return VFW_E_NOT_CONNECTED;
    }
    FillType(*type, connectedType);
    return S_OK;
}

STDMETHODIMP FakePin::QueryPinInfo(PIN_INFO* info) {
    const bool isEngine = IsInExecutable(__builtin_return_address(0));
    if (const long failure = filter.Script("queryPinInfo"); failure != 0 && isEngine) {
        return failure;
    }
    info->pFilter = &filter;
    filter.AddRef();
    info->dir = direction;
    lstrcpynW(info->achName, name.c_str(), static_cast<int>(std::size(info->achName)));
    if (isEngine && filter.Script("unterminatedNames") != 0) {
        std::wstring filled = name;
        filled.resize(std::size(info->achName), L'x');
        std::memcpy(info->achName, filled.data(), sizeof(info->achName));
    }
    return S_OK;
}

STDMETHODIMP FakePin::QueryDirection(PIN_DIRECTION* out) {
    if (const long failure = filter.Script("queryDirection");
        failure != 0 && IsInExecutable(__builtin_return_address(0))) {
        return failure;
    }
    *out = direction;
    return S_OK;
}

STDMETHODIMP FakePin::QueryId(LPWSTR* id) {
    const std::size_t bytes = (name.size() + 1) * sizeof(wchar_t);
    *id = static_cast<LPWSTR>(CoTaskMemAlloc(bytes));
    std::memcpy(*id, name.c_str(), bytes);
    return S_OK;
}

STDMETHODIMP FakePin::QueryAccept(const AM_MEDIA_TYPE* type) {
    return std::ranges::any_of(types, [type](const FakeType& known) { return SameType(known, *type); })
               ? S_OK
               : S_FALSE;
}

STDMETHODIMP FakePin::EnumMediaTypes(IEnumMediaTypes** out) {
    *out = nullptr;
    std::size_t count = types.size();
    bool typeIsNull = false;
    if (IsInExecutable(__builtin_return_address(0))) {
        if (const long failure = filter.Script("enumMediaTypes"); failure != 0) {
            return failure;
        }
        if (filter.Script("typesAreNull") != 0) {
            return S_OK;
        }
        typeIsNull = filter.Script("typeIsNull") != 0;
        count = filter.Script("typesAreEndless") != 0 ? kEndless : count;
    }
    *out = MakeEnumerator<IEnumMediaTypes, AM_MEDIA_TYPE*>(
        this, count, [this, typeIsNull](std::size_t index) -> AM_MEDIA_TYPE* {
            filter.Record(kRecordQuery, L"type " + std::to_wstring(index));
            return typeIsNull ? nullptr : AllocateType(types[index % types.size()]);
        });
    return S_OK;
}

STDMETHODIMP FakePin::QueryInternalConnections(IPin**, ULONG*) {
    return E_NOTIMPL;
}

} // namespace brindlecast::testing
