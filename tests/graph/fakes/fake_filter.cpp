#include "tests/graph/fakes/fake_filter.h"

#include <windows.h>

#include <mmreg.h>

#include <amvideo.h>
#include <uuids.h>
#include <vfwmsgs.h>

#include <algorithm>
#include <cstring>

namespace brindlecast::testing {

namespace {

std::string NarrowName(const std::wstring& name) {
    return std::string(name.begin(), name.end());
}

bool SameType(const FakeType& known, const AM_MEDIA_TYPE& type) {
    return known.major == type.majortype && known.subtype == type.subtype;
}

// One enumerator for pins and for media types, over copies made by `give`.
template <class Interface, class Item, class Give>
class FakeEnumerator final : public Interface {
public:
    FakeEnumerator(ComPtr<IUnknown> owner, std::size_t count, Give give)
        : owner(std::move(owner)), count(count), give(give) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        if (iid != __uuidof(IUnknown) && iid != __uuidof(Interface)) {
            *out = nullptr;
            return E_NOINTERFACE;
        }
        *out = static_cast<Interface*>(this);
        this->AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = --references;
        if (left == 0) {
            delete this;
        }
        return left;
    }
    STDMETHODIMP Next(ULONG wanted, Item* items, ULONG* fetched) override {
        ULONG given = 0;
        for (; given < wanted && at < count; ++given, ++at) {
            items[given] = give(at);
        }
        if (fetched != nullptr) {
            *fetched = given;
        }
        return given == wanted ? S_OK : S_FALSE;
    }
    STDMETHODIMP Skip(ULONG skipped) override {
        at = std::min(count, at + skipped);
        return S_OK;
    }
    STDMETHODIMP Reset() override {
        at = 0;
        return S_OK;
    }
    STDMETHODIMP Clone(Interface** out) override {
        auto* copy = new FakeEnumerator(owner, count, give);
        copy->at = at;
        *out = copy;
        return S_OK;
    }

private:
    std::atomic<ULONG> references{1};
    ComPtr<IUnknown> owner; // keeps the filter, and with it the pins, alive
    std::size_t count;
    std::size_t at = 0;
    Give give;
};

template <class Interface, class Item, class Give>
Interface* MakeEnumerator(IUnknown* owner, std::size_t count, Give give) {
    return new FakeEnumerator<Interface, Item, Give>(owner, count, give);
}

// Whether the code at this address belongs to the program and not to a library. Some answers are for the
// engine alone, because Wine's graph manager does not survive them.
bool IsInExecutable(const void* address) {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       static_cast<LPCWSTR>(address), &module);
    return module == GetModuleHandleW(nullptr);
}

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

} // namespace

void FillType(AM_MEDIA_TYPE& target, const FakeType& type) {
    target = AM_MEDIA_TYPE{};
    target.majortype = type.major;
    target.subtype = type.subtype;
    target.formattype = type.formatType;
    target.bTemporalCompression = TRUE;
    target.cbFormat = static_cast<ULONG>(type.format.size());
    if (!type.format.empty()) {
        target.pbFormat = static_cast<BYTE*>(CoTaskMemAlloc(type.format.size()));
        std::memcpy(target.pbFormat, type.format.data(), type.format.size());
    }
}

AM_MEDIA_TYPE* AllocateType(const FakeType& type) {
    auto* allocated = static_cast<AM_MEDIA_TYPE*>(CoTaskMemAlloc(sizeof(AM_MEDIA_TYPE)));
    FillType(*allocated, type);
    return allocated;
}

FakeType CompressedAudioType() {
    // A subtype of nobody's, so that only the fake decoder takes it.
    return {MEDIATYPE_Audio,
            {0x6B0A5E8C, 0x3D41, 0x4B5F, {0x9A, 0x77, 0x10, 0x2E, 0x5C, 0x8D, 0x44, 0x01}},
            GUID_NULL,
            {}};
}

FakeType PlainAudioType() {
    FakeType type{MEDIATYPE_Audio, MEDIASUBTYPE_PCM, FORMAT_WaveFormatEx, {}};
    WAVEFORMATEX format{};
    format.wFormatTag = WAVE_FORMAT_PCM;
    format.nChannels = 2;
    format.nSamplesPerSec = 48000;
    format.wBitsPerSample = 16;
    format.nBlockAlign = 4;
    format.nAvgBytesPerSec = 48000 * 4;
    type.format.resize(sizeof(format));
    std::memcpy(type.format.data(), &format, sizeof(format));
    return type;
}

FakeType PlainVideoType() {
    // Again a subtype of nobody's: no renderer of the platform may take the picture.
    return {MEDIATYPE_Video,
            {0x6B0A5E8C, 0x3D41, 0x4B5F, {0x9A, 0x77, 0x10, 0x2E, 0x5C, 0x8D, 0x44, 0x02}},
            GUID_NULL,
            {}};
}

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

STDMETHODIMP FakePin::ReceiveConnection(IPin* connector, const AM_MEDIA_TYPE* type) {
    if (direction != PINDIR_INPUT || peer != nullptr) {
        return E_UNEXPECTED;
    }
    if (const long refusal = filter.InputRefusal(); refusal != 0) {
        return refusal;
    }
    if (QueryAccept(type) != S_OK) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    peer = connector;
    connectedType = {type->majortype, type->subtype, type->formattype,
                     std::vector<BYTE>(type->pbFormat, type->pbFormat + type->cbFormat)};
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
    if (peer == nullptr) {
        *type = AM_MEDIA_TYPE{};
        return VFW_E_NOT_CONNECTED;
    }
    FillType(*type, connectedType);
    return S_OK;
}

STDMETHODIMP FakePin::QueryPinInfo(PIN_INFO* info) {
    info->pFilter = &filter;
    filter.AddRef();
    info->dir = direction;
    lstrcpynW(info->achName, name.c_str(), static_cast<int>(std::size(info->achName)));
    return S_OK;
}

STDMETHODIMP FakePin::QueryDirection(PIN_DIRECTION* out) {
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
    *out = MakeEnumerator<IEnumMediaTypes, AM_MEDIA_TYPE*>(
        this, types.size(), [this](std::size_t index) { return AllocateType(types[index]); });
    return S_OK;
}

STDMETHODIMP FakePin::QueryInternalConnections(IPin**, ULONG*) {
    return E_NOTIMPL;
}

FakeFilter::FakeFilter(std::wstring name, const CLSID& filterClass)
    : moduleName(std::move(name)), clsid(filterClass) {
    RecorderObjectMade();
}

FakeFilter::~FakeFilter() {
    RecorderObjectGone();
}

long FakeFilter::Script(const char* key, long absent) const {
    return RecorderNumber((NarrowName(moduleName) + "." + key).c_str(), absent);
}

const wchar_t* FakeFilter::ScriptText(const char* key) const {
    return RecorderText((NarrowName(moduleName) + "." + key).c_str());
}

void FakeFilter::Record(RecordKind kind, const std::wstring& text) const {
    RecorderAdd(kind, (moduleName + L"." + text).c_str());
}

STDMETHODIMP FakeFilter::QueryInterface(REFIID iid, void** out) {
    void* found = FindInterface(iid);
    if (iid == __uuidof(IUnknown) || iid == __uuidof(IPersist) || iid == __uuidof(IMediaFilter) ||
        iid == __uuidof(IBaseFilter)) {
        found = static_cast<IBaseFilter*>(this);
    }
    *out = found;
    if (found == nullptr) {
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

STDMETHODIMP_(ULONG) FakeFilter::AddRef() {
    return ++references;
}

STDMETHODIMP_(ULONG) FakeFilter::Release() {
    const ULONG left = --references;
    if (left == 0) {
        delete this;
    }
    return left;
}

STDMETHODIMP FakeFilter::GetClassID(CLSID* out) {
    *out = clsid;
    return S_OK;
}

bool FakeFilter::IsConnected() const {
    return std::ranges::any_of(pins, [](const auto& pin) { return pin->peer != nullptr; });
}

STDMETHODIMP FakeFilter::Stop() {
    Record(kRecordState, L"Stop");
    state = State_Stopped;
    return Script("stop");
}

STDMETHODIMP FakeFilter::Pause() {
    Record(kRecordState, L"Pause");
    // Priming pauses a graph without connections, and must stay harmless.
    if (const long failure = PauseFailure(); failure != 0 && IsConnected()) {
        return failure;
    }
    state = State_Paused;
    return S_OK;
}

STDMETHODIMP FakeFilter::Run(REFERENCE_TIME) {
    Record(kRecordState, L"Run");
    state = State_Running;
    return S_OK;
}

STDMETHODIMP FakeFilter::GetState(DWORD, FILTER_STATE* out) {
    *out = state;
    return S_OK;
}

STDMETHODIMP FakeFilter::SetSyncSource(IReferenceClock* newClock) {
    clock = newClock;
    return S_OK;
}

STDMETHODIMP FakeFilter::GetSyncSource(IReferenceClock** out) {
    clock.CopyTo(out);
    return S_OK;
}

STDMETHODIMP FakeFilter::EnumPins(IEnumPins** out) {
    const long failure = Script("enumPins");
    if (failure != 0 && IsInExecutable(__builtin_return_address(0))) {
        *out = nullptr;
        return failure;
    }
    *out = MakeEnumerator<IEnumPins, IPin*>(this, pins.size(), [this](std::size_t index) -> IPin* {
        pins[index]->AddRef();
        return pins[index].get();
    });
    return S_OK;
}

STDMETHODIMP FakeFilter::FindPin(LPCWSTR id, IPin** out) {
    const auto found = std::ranges::find_if(pins, [id](const auto& pin) { return pin->name == id; });
    if (found == pins.end()) {
        *out = nullptr;
        return VFW_E_NOT_FOUND;
    }
    *out = found->get();
    (*out)->AddRef();
    return S_OK;
}

STDMETHODIMP FakeFilter::QueryFilterInfo(FILTER_INFO* info) {
    lstrcpynW(info->achName, graphName.c_str(), static_cast<int>(std::size(info->achName)));
    info->pGraph = graph;
    if (graph != nullptr) {
        graph->AddRef();
    }
    return S_OK;
}

STDMETHODIMP FakeFilter::JoinFilterGraph(IFilterGraph* newGraph, LPCWSTR newName) {
    if (newGraph == nullptr) {
        Record(kRecordState, L"leaves the graph");
    } else {
        Record(kRecordCall, FormatText(L"joins the graph as %s", newName));
        if (const long failure = Script("join"); failure != 0) {
            return failure;
        }
    }
    graph = newGraph;
    graphName = newName != nullptr ? newName : L"";
    return S_OK;
}

STDMETHODIMP FakeFilter::QueryVendorInfo(LPWSTR* info) {
    *info = nullptr;
    return E_NOTIMPL;
}

} // namespace brindlecast::testing
