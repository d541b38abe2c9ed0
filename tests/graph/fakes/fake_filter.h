#pragma once

#include "base/text.h"
#include "tests/graph/fakes/recorder.h"

#include <windows.h>

#include <strmif.h>
#include <wrl/client.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

namespace brindlecast::testing {

using Microsoft::WRL::ComPtr;

// A media type of a fake pin.
struct FakeType {
    GUID major = GUID_NULL;
    GUID subtype = GUID_NULL;
    GUID formatType = GUID_NULL;
    std::vector<BYTE> format;
};

// An allocated copy, as a filter hands it out.
[[nodiscard]] AM_MEDIA_TYPE* AllocateType(const FakeType& type);
void FillType(AM_MEDIA_TYPE& target, const FakeType& type);

// The compressed types that only the fake decoders take, and the plain ones that only renderers take.
[[nodiscard]] FakeType CompressedAudioType();
[[nodiscard]] FakeType PlainAudioType();
[[nodiscard]] FakeType PlainVideoType();

class FakeFilter;

// A pin that connects when both sides know the type, and carries nothing. Lives as long as its filter.
class FakePin final : public IPin {
public:
    FakePin(FakeFilter& filter, std::wstring name, PIN_DIRECTION direction, std::vector<FakeType> types)
        : filter(filter), name(std::move(name)), direction(direction), types(std::move(types)) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;
    STDMETHODIMP Connect(IPin* receiver, const AM_MEDIA_TYPE* type) override;
    STDMETHODIMP ReceiveConnection(IPin* connector, const AM_MEDIA_TYPE* type) override;
    STDMETHODIMP Disconnect() override;
    STDMETHODIMP ConnectedTo(IPin** pin) override;
    STDMETHODIMP ConnectionMediaType(AM_MEDIA_TYPE* type) override;
    STDMETHODIMP QueryPinInfo(PIN_INFO* info) override;
    STDMETHODIMP QueryDirection(PIN_DIRECTION* out) override;
    STDMETHODIMP QueryId(LPWSTR* id) override;
    STDMETHODIMP QueryAccept(const AM_MEDIA_TYPE* type) override;
    STDMETHODIMP EnumMediaTypes(IEnumMediaTypes** out) override;
    STDMETHODIMP QueryInternalConnections(IPin** pins, ULONG* count) override;
    STDMETHODIMP EndOfStream() override { return S_OK; }
    STDMETHODIMP BeginFlush() override { return S_OK; }
    STDMETHODIMP EndFlush() override { return S_OK; }
    STDMETHODIMP NewSegment(REFERENCE_TIME, REFERENCE_TIME, double) override { return S_OK; }

    FakeFilter& filter;
    const std::wstring name;
    const PIN_DIRECTION direction;
    const std::vector<FakeType> types;
    ComPtr<IPin> peer;
    FakeType connectedType;
};

// A filter that records what happens to it under its module's name, and answers by the script. Keys of the
// script begin with that name and a point: ".create", ".join", ".pause" (once connected), ".refuse"
// (connections of its inputs),
// ".refuseOutput", ".enumPins", and ".no" followed by the name of an interface.
class FakeFilter : public IBaseFilter {
public:
    FakeFilter(std::wstring moduleName, const CLSID& clsid);
    virtual ~FakeFilter();
    FakeFilter(const FakeFilter&) = delete;
    FakeFilter& operator=(const FakeFilter&) = delete;

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;
    STDMETHODIMP GetClassID(CLSID* out) override;
    STDMETHODIMP Stop() override;
    STDMETHODIMP Pause() override;
    STDMETHODIMP Run(REFERENCE_TIME start) override;
    STDMETHODIMP GetState(DWORD milliseconds, FILTER_STATE* out) override;
    STDMETHODIMP SetSyncSource(IReferenceClock* newClock) override;
    STDMETHODIMP GetSyncSource(IReferenceClock** out) override;
    STDMETHODIMP EnumPins(IEnumPins** out) override;
    STDMETHODIMP FindPin(LPCWSTR id, IPin** out) override;
    STDMETHODIMP QueryFilterInfo(FILTER_INFO* info) override;
    STDMETHODIMP JoinFilterGraph(IFilterGraph* newGraph, LPCWSTR newName) override;
    STDMETHODIMP QueryVendorInfo(LPWSTR* info) override;

    // The script's number under this filter's name.
    [[nodiscard]] long Script(const char* key, long absent = 0) const;
    [[nodiscard]] const wchar_t* ScriptText(const char* key) const;
    // Adds a line "Module.text".
    void Record(RecordKind kind, const std::wstring& text) const;
    // The failure of a connection to an input, 0 when it may be made.
    [[nodiscard]] virtual long InputRefusal() const { return Script("refuse"); }
    [[nodiscard]] virtual long PauseFailure() const { return Script("pause"); }
    [[nodiscard]] std::wstring GraphName() const { return graphName; }

    std::vector<std::unique_ptr<FakePin>> pins;

protected:
    // The interface without a reference, or null.
    [[nodiscard]] virtual void* FindInterface(REFIID) { return nullptr; }
    void AddPin(const wchar_t* name, PIN_DIRECTION direction, std::vector<FakeType> types) {
        pins.push_back(std::make_unique<FakePin>(*this, name, direction, std::move(types)));
    }

    const std::wstring moduleName;

private:
    [[nodiscard]] bool IsConnected() const;

    const CLSID clsid;
    std::atomic<ULONG> references{1};
    IFilterGraph* graph = nullptr; // not referenced: the graph owns the filter
    std::wstring graphName;
    ComPtr<IReferenceClock> clock;
    std::atomic<FILTER_STATE> state{State_Stopped};
};

// Makes the module's filter with one reference; each module defines it.
[[nodiscard]] FakeFilter* MakeFakeFilter();
// The name that the script and the log know the module by, and its class; each module defines them.
extern const char* const kFakeName;
extern const CLSID kFakeClass;

// The three methods of IUnknown for an interface beside IBaseFilter.
#define FAKE_UNKNOWN                                                                                         \
    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {                                           \
        return FakeFilter::QueryInterface(iid, out);                                                         \
    }                                                                                                        \
    STDMETHODIMP_(ULONG) AddRef() override {                                                                 \
        return FakeFilter::AddRef();                                                                         \
    }                                                                                                        \
    STDMETHODIMP_(ULONG) Release() override {                                                                \
        return FakeFilter::Release();                                                                        \
    }

// A method that only records that it was called and is not expected: it fails.
#define FAKE_UNEXPECTED(Result, name, ...)                                                                   \
    STDMETHODIMP_(Result) name(__VA_ARGS__) override {                                                       \
        Record(kRecordCall, L"" #name " (unexpected)");                                                      \
        return static_cast<Result>(E_NOTIMPL);                                                               \
    }

} // namespace brindlecast::testing
