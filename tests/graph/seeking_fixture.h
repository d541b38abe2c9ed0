#pragma once

#include "tests/graph/graph_fixture.h"

#include <atomic>

namespace brindlecast::testing {

// The film, with a playhead where the test puts it.
class SeekingTest : public GraphTest {
protected:
    void Open() {
        ASSERT_TRUE(engine->OpenFile(kFilm));
        ClearCalls();
    }
    // Where the renderer says it is; this position does not move by itself.
    void PlaceAt(long milliseconds) { SetNumber("MpcVideoRenderer64.positionMilliseconds", milliseconds); }
    static Lines SoughtTo(long long units) {
        return {L"LAVSplitter.SetPositions(" + std::to_wstring(units) + L", 1, 0)"};
    }
};

// Counts what the engine asks of the graph's control, and fails it; the graph itself stands still.
class CountingControl final : public IMediaControl {
public:
    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        if (iid != __uuidof(IUnknown) && iid != __uuidof(IMediaControl)) {
            *out = nullptr;
            return E_NOINTERFACE;
        }
        *out = static_cast<IMediaControl*>(this);
        AddRef();
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
    STDMETHODIMP Run() override {
        ++runs;
        return E_FAIL;
    }
    STDMETHODIMP Pause() override { return Other(); }
    STDMETHODIMP Stop() override { return Other(); }
    STDMETHODIMP GetState(LONG, OAFilterState*) override { return Other(); }
    STDMETHODIMP RenderFile(BSTR) override { return Other(); }
    STDMETHODIMP AddSourceFilter(BSTR, IDispatch**) override { return Other(); }
    STDMETHODIMP get_FilterCollection(IDispatch**) override { return Other(); }
    STDMETHODIMP get_RegFilterCollection(IDispatch**) override { return Other(); }
    STDMETHODIMP StopWhenReady() override { return Other(); }
    STDMETHODIMP GetTypeInfoCount(UINT*) override { return Other(); }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return Other(); }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return Other(); }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return Other();
    }

    int runs = 0;
    int others = 0;

private:
    HRESULT Other() {
        ++others;
        return E_FAIL;
    }

    std::atomic<ULONG> references{1};
};

// Puts a counting control into the engine for as long as it lives.
class ControlSwap {
public:
    explicit ControlSwap(PlayerEngine& theEngine) : engine(theEngine), original(theEngine.control) {
        // Not Attach: that of the compiler's ComPtr adds a reference.
        *counting.ReleaseAndGetAddressOf() = new CountingControl;
        engine.control = counting;
    }
    ControlSwap(const ControlSwap&) = delete;
    ControlSwap& operator=(const ControlSwap&) = delete;
    ~ControlSwap() { engine.control = original; }

    [[nodiscard]] int Runs() const { return counting->runs; }
    [[nodiscard]] int Others() const { return counting->others; }

private:
    PlayerEngine& engine;
    ComPtr<IMediaControl> original;
    ComPtr<CountingControl> counting;
};

// Seeking that can't say where it is, nor how long the file is, and takes every seek and rate.
class LostSeeking final : public IMediaSeeking {
public:
    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        if (iid != __uuidof(IUnknown) && iid != __uuidof(IMediaSeeking)) {
            *out = nullptr;
            return E_NOINTERFACE;
        }
        *out = static_cast<IMediaSeeking*>(this);
        AddRef();
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
    // A value is written all the same: a failed answer must not be read.
    STDMETHODIMP GetCurrentPosition(LONGLONG* current) override {
        *current = 70'000'000;
        return E_FAIL;
    }
    STDMETHODIMP GetDuration(LONGLONG* duration) override {
        *duration = 600'000'000;
        return E_FAIL;
    }
    STDMETHODIMP SetPositions(LONGLONG* current, DWORD, LONGLONG*, DWORD) override {
        targets.push_back(*current);
        return S_OK;
    }
    STDMETHODIMP SetRate(double) override { return S_OK; }
    STDMETHODIMP GetCapabilities(DWORD*) override { return E_NOTIMPL; }
    STDMETHODIMP CheckCapabilities(DWORD*) override { return E_NOTIMPL; }
    STDMETHODIMP IsFormatSupported(const GUID*) override { return E_NOTIMPL; }
    STDMETHODIMP QueryPreferredFormat(GUID*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTimeFormat(GUID*) override { return E_NOTIMPL; }
    STDMETHODIMP IsUsingTimeFormat(const GUID*) override { return E_NOTIMPL; }
    STDMETHODIMP SetTimeFormat(const GUID*) override { return E_NOTIMPL; }
    STDMETHODIMP GetStopPosition(LONGLONG*) override { return E_NOTIMPL; }
    STDMETHODIMP ConvertTimeFormat(LONGLONG*, const GUID*, LONGLONG, const GUID*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetPositions(LONGLONG*, LONGLONG*) override { return E_NOTIMPL; }
    STDMETHODIMP GetAvailable(LONGLONG*, LONGLONG*) override { return E_NOTIMPL; }
    STDMETHODIMP GetRate(double*) override { return E_NOTIMPL; }
    STDMETHODIMP GetPreroll(LONGLONG*) override { return E_NOTIMPL; }

    std::vector<LONGLONG> targets;

private:
    std::atomic<ULONG> references{1};
};

[[nodiscard]] inline ComPtr<LostSeeking> MakeLostSeeking() {
    ComPtr<LostSeeking> seeking;
    *seeking.ReleaseAndGetAddressOf() = new LostSeeking;
    return seeking;
}

} // namespace brindlecast::testing
