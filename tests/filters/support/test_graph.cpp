#include "tests/filters/support/test_graph.h"

#include <chrono>
#include <stdexcept>
#include <uuids.h>

namespace brindlecast {

using Microsoft::WRL::ComPtr;

namespace {

void Require(HRESULT result, const char* what) {
    if (FAILED(result))
        throw std::runtime_error(std::string(what) + " failed, result " + std::to_string(result));
}

} // namespace

TestGraph::TestGraph() {
    Require(CoCreateInstance(CLSID_FilterGraph, nullptr, CLSCTX_INPROC_SERVER, IID_IGraphBuilder,
                             reinterpret_cast<void**>(graph_.GetAddressOf())),
            "creating the graph");
    graph_->QueryInterface(IID_IMediaControl, reinterpret_cast<void**>(control_.GetAddressOf()));
    graph_->QueryInterface(IID_IMediaEvent, reinterpret_cast<void**>(events_.GetAddressOf()));
    graph_->QueryInterface(IID_IMediaSeeking, reinterpret_cast<void**>(seeking_.GetAddressOf()));
}

TestGraph::~TestGraph() {
    control_->Stop();
}

void TestGraph::Add(IBaseFilter* filter, const wchar_t* name) {
    Require(graph_->AddFilter(filter, name), "AddFilter");
}

HRESULT TestGraph::ConnectDirect(IPin* from, IPin* to, const MediaType* type) {
    return graph_->ConnectDirect(from, to, type != nullptr ? &type->Get() : nullptr);
}

void TestGraph::SetClock(IReferenceClock* clock) {
    ComPtr<IMediaFilter> filter;
    Require(graph_->QueryInterface(IID_IMediaFilter, reinterpret_cast<void**>(filter.GetAddressOf())),
            "IMediaFilter");
    Require(filter->SetSyncSource(clock), "SetSyncSource");
}

void TestGraph::RemoveClock() {
    SetClock(nullptr);
}

void TestGraph::UseSystemClock() {
    ComPtr<IReferenceClock> clock;
    Require(CoCreateInstance(CLSID_SystemClock, nullptr, CLSCTX_INPROC_SERVER, IID_IReferenceClock,
                             reinterpret_cast<void**>(clock.GetAddressOf())),
            "the system's clock");
    SetClock(clock.Get());
}

HRESULT TestGraph::Run() {
    return control_->Run();
}

HRESULT TestGraph::Pause() {
    return control_->Pause();
}

HRESULT TestGraph::Stop() {
    return control_->Stop();
}

bool TestGraph::WaitForEvent(long code, int milliseconds) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        if (left <= 0)
            return false;
        long got = 0;
        LONG_PTR first = 0;
        LONG_PTR second = 0;
        // Wine's graph may answer before the time is up although nothing has come.
        if (FAILED(events_->GetEvent(&got, &first, &second, static_cast<long>(left)))) {
            Sleep(1);
            continue;
        }
        events_->FreeEventParams(got, first, second);
        if (got == code)
            return true;
    }
}

std::vector<ComPtr<IPin>> PinsOf(IBaseFilter* filter, PIN_DIRECTION direction) {
    ComPtr<IEnumPins> pins;
    Require(filter->EnumPins(pins.GetAddressOf()), "EnumPins");
    std::vector<ComPtr<IPin>> found;
    ComPtr<IPin> pin;
    while (pins->Next(1, pin.ReleaseAndGetAddressOf(), nullptr) == S_OK) {
        PIN_DIRECTION its = PINDIR_INPUT;
        if (SUCCEEDED(pin->QueryDirection(&its)) && its == direction)
            found.push_back(pin);
    }
    return found;
}

ComPtr<IPin> PinNamed(IBaseFilter* filter, const std::wstring& name) {
    for (const PIN_DIRECTION direction : {PINDIR_OUTPUT, PINDIR_INPUT}) {
        for (const ComPtr<IPin>& pin : PinsOf(filter, direction)) {
            if (NameOf(pin.Get()) == name)
                return pin;
        }
    }
    return nullptr;
}

std::wstring NameOf(IPin* pin) {
    PIN_INFO info{};
    Require(pin->QueryPinInfo(&info), "QueryPinInfo");
    if (info.pFilter != nullptr)
        info.pFilter->Release();
    return info.achName;
}

std::vector<MediaType> TypesOf(IPin* pin) {
    ComPtr<IEnumMediaTypes> types;
    Require(pin->EnumMediaTypes(types.GetAddressOf()), "EnumMediaTypes");
    std::vector<MediaType> found;
    AM_MEDIA_TYPE* type = nullptr;
    while (types->Next(1, &type, nullptr) == S_OK) {
        found.emplace_back(*type);
        MediaType::FreeTaskMem(type);
    }
    return found;
}

} // namespace brindlecast
