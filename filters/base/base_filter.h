#pragma once

#include "filters/base/com_object.h"
#include "filters/base/media_type.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>
#include <wrl/client.h>

namespace brindlecast {

class BasePin;

// IBaseFilter with state, clock, graph and a list of pins.
//
// Threads: the graph calls from the application's threads. The state lock guards state changes, connections
// and the list of pins. A streaming thread must never take it: it reads the atomic state, uses Notify, and
// has its own lock. Order of locks: state lock, then a streaming lock, then small leaf locks.
//
// A derived filter overrides Pause, Run and Stop where it has work to do, and calls these.
class BaseFilter : public IBaseFilter, public IAMFilterMiscFlags, public RefCounted {
public:
    BRINDLECAST_COM_METHODS

    STDMETHODIMP GetClassID(CLSID* out) override;

    STDMETHODIMP Stop() override;
    STDMETHODIMP Pause() override;
    STDMETHODIMP Run(REFERENCE_TIME start) override;
    STDMETHODIMP GetState(DWORD milliseconds, FILTER_STATE* out) override;
    STDMETHODIMP SetSyncSource(IReferenceClock* clock) override;
    STDMETHODIMP GetSyncSource(IReferenceClock** clock) override;

    STDMETHODIMP EnumPins(IEnumPins** out) override;
    STDMETHODIMP FindPin(LPCWSTR id, IPin** pin) override;
    STDMETHODIMP QueryFilterInfo(FILTER_INFO* info) override;
    STDMETHODIMP JoinFilterGraph(IFilterGraph* newGraph, LPCWSTR name) override;
    STDMETHODIMP QueryVendorInfo(LPWSTR* info) override;

    STDMETHODIMP_(ULONG) GetMiscFlags() override { return miscFlags; }

    [[nodiscard]] FILTER_STATE State() const noexcept { return state.load(); }
    [[nodiscard]] std::recursive_mutex& StateLock() noexcept { return stateLock; }
    // The pins now, and their version for noticing changes.
    [[nodiscard]] std::vector<BasePin*> PinSnapshot(int& version);
    [[nodiscard]] int PinVersion() const noexcept { return pinVersion.load(); }
    // Tells the graph's event sink. Any thread, also a streaming one. E_NOTIMPL outside a graph.
    HRESULT Notify(long code, LONG_PTR first, LONG_PTR second);
    // The graph's clock, or null. Any thread.
    [[nodiscard]] Microsoft::WRL::ComPtr<IReferenceClock> Clock();
    // Clock time that belongs to stream time 0, as Run gave it.
    [[nodiscard]] REFERENCE_TIME StartTime() const noexcept { return startTime.load(); }
    // True while the filter is in a graph.
    [[nodiscard]] bool InGraph();

protected:
    // `miscFlags` are the AM_FILTER_MISC_FLAGS_*; 0 for a transform, which then hides IAMFilterMiscFlags.
    explicit BaseFilter(const CLSID& theClsid, ULONG theMiscFlags = 0);
    ~BaseFilter() override;

    // The interface of that id as the right base of this object, or null. Overriders end with this one.
    [[nodiscard]] virtual void* FindInterface(REFIID iid) noexcept;

    // Takes over a pin. Pins live as long as the filter; a removed one stays allocated, because callers may
    // hold it.
    void AddPin(std::unique_ptr<BasePin> pin);

private:
    HRESULT ActivatePins();
    void DeactivatePins();

    const CLSID clsid;
    const ULONG miscFlags;
    std::recursive_mutex stateLock;
    std::atomic<FILTER_STATE> state{State_Stopped};
    std::atomic<REFERENCE_TIME> startTime{0};
    std::vector<std::unique_ptr<BasePin>> pins;
    std::atomic<int> pinVersion{1};

    std::mutex graphLock; // leaf lock: clock, graph, sink, name
    Microsoft::WRL::ComPtr<IReferenceClock> referenceClock;
    IFilterGraph* graph = nullptr;        // not referenced: the graph owns the filter
    IMediaEventSink* eventSink = nullptr; // not referenced, for the same reason
    std::wstring filterName;
};

} // namespace brindlecast
