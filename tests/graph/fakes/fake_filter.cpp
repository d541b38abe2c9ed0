#include "tests/graph/fakes/fake_filter.h"

#include "tests/graph/fakes/fake_enumerator.h"

#include <windows.h>

#include <control.h>
#include <evcode.h>
#include <vfwmsgs.h>

#include <algorithm>

namespace brindlecast::testing {

namespace {

std::string NarrowName(const std::wstring& name) {
    return std::string(name.begin(), name.end());
}

// Stands for an interface that is handed out as null.
char nothingHandedOut = 0;

} // namespace

bool IsInExecutable(const void* address) {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       static_cast<LPCWSTR>(address), &module);
    return module == GetModuleHandleW(nullptr);
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

bool FakeFilter::CountDown(const char* key) const {
    const long left = Script(key);
    if (left <= 0) {
        return false;
    }
    RecorderSetNumber((NarrowName(moduleName) + "." + key).c_str(), left - 1);
    return true;
}

const wchar_t* FakeFilter::ScriptText(const char* key) const {
    return RecorderText((NarrowName(moduleName) + "." + key).c_str());
}

void FakeFilter::Record(RecordKind kind, const std::wstring& text) const {
    RecorderAdd(kind, (moduleName + L"." + text).c_str());
}

void FakeFilter::AddPin(const wchar_t* name, PIN_DIRECTION direction, std::vector<FakeType> types) {
    if (Script(direction == PINDIR_INPUT ? "noInput" : "noOutput") == 0) {
        pins.push_back(std::make_unique<FakePin>(*this, name, direction, std::move(types)));
    }
}

void* FakeFilter::Offer(const char* key, void* found) const {
    switch (Script(key)) {
    case 0: return found;
    case 2: return &nothingHandedOut;
    default: return nullptr;
    }
}

STDMETHODIMP FakeFilter::QueryInterface(REFIID iid, void** out) {
    void* found = FindInterface(iid);
    if (iid == __uuidof(IUnknown) || iid == __uuidof(IPersist) || iid == __uuidof(IMediaFilter) ||
        iid == __uuidof(IBaseFilter)) {
        found = static_cast<IBaseFilter*>(this);
    }
    if (found == &nothingHandedOut) {
        *out = nullptr;
        return S_OK;
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
        if (Script("pauseTimes", -1) < 0 || CountDown("pauseTimes")) {
            return failure;
        }
    }
    state = State_Paused;
    return S_OK;
}

STDMETHODIMP FakeFilter::Run(REFERENCE_TIME) {
    Record(kRecordState, L"Run");
    state = State_Running;
    if (Script("completes") != 0) {
        ReportTheEnd();
    }
    return S_OK;
}

void FakeFilter::ReportTheEnd() {
    ComPtr<IMediaEventSink> sink;
    if (graph != nullptr && SUCCEEDED(graph->QueryInterface(IID_PPV_ARGS(&sink)))) {
        sink->Notify(EC_COMPLETE, S_OK, reinterpret_cast<LONG_PTR>(static_cast<IBaseFilter*>(this)));
    }
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
    *out = nullptr;
    std::size_t count = pins.size();
    bool pinIsNull = false;
    if (IsInExecutable(__builtin_return_address(0))) {
        if (const long failure = Script("enumPins"); failure != 0) {
            return failure;
        }
        if (Script("pinsAreNull") != 0) {
            return S_OK;
        }
        pinIsNull = Script("pinIsNull") != 0;
        count = Script("pinsAreEndless") != 0 ? kEndless : count;
    }
    *out = MakeEnumerator<IEnumPins, IPin*>(this, count, [this, pinIsNull](std::size_t index) -> IPin* {
        Record(kRecordQuery, L"pin " + std::to_wstring(index));
        if (pinIsNull) {
            return nullptr;
        }
        IPin* const pin = pins[index % pins.size()].get();
        pin->AddRef();
        return pin;
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
