#pragma once

#include "base/text.h"
#include "tests/graph/fakes/fake_pin.h"
#include "tests/graph/fakes/recorder.h"

#include <windows.h>

#include <strmif.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

namespace brindlecast::testing {

// Whether the code at this address belongs to the program and not to a library. Some answers are for the
// engine alone, because Wine's graph manager does not survive them.
[[nodiscard]] bool IsInExecutable(const void* address);

// A filter that records what happens to it under its module's name, and answers by the script. Keys of the
// script begin with that name and a point; besides those of the pins they are
//   classObject, create, join, stop   failures
//   classObjectIsNull, createIsNull   a success that hands nothing out
//   createWrites          creating fails and writes a pointer all the same
//   pause                 failure once something is connected; pauseTimes: how often, else always
//   completes             running reports the end of the file at once
//   refuse                failure of connecting the inputs
//   noInput, noOutput     there is no pin of that direction
//   enumPins              failure, for the engine alone, like the next three
//   pinsAreNull, pinIsNull, pinsAreEndless   a success without an enumerator, without a pin, without end
// and "no" followed by the name of an interface: 1, it is not offered; 2, asking for it succeeds and hands
// nothing out.
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
    // Whether something is to happen once more, by a number that each time takes one away.
    [[nodiscard]] bool CountDown(const char* key) const;
    [[nodiscard]] const wchar_t* ScriptText(const char* key) const;
    // Adds a line "Module.text".
    void Record(RecordKind kind, const std::wstring& text) const;
    // The failure of a connection to an input, 0 when it may be made.
    [[nodiscard]] virtual long InputRefusal() const { return Script("refuse"); }
    [[nodiscard]] virtual long PauseFailure() const { return Script("pause"); }

    std::vector<std::unique_ptr<FakePin>> pins;

protected:
    // The interface without a reference, or null.
    [[nodiscard]] virtual void* FindInterface(REFIID) { return nullptr; }
    // What FindInterface answers for an interface that the script's key is about.
    [[nodiscard]] void* Offer(const char* key, void* found) const;
    void AddPin(const wchar_t* name, PIN_DIRECTION direction, std::vector<FakeType> types);

    const std::wstring moduleName;

private:
    [[nodiscard]] bool IsConnected() const;
    void ReportTheEnd();

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
