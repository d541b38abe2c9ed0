#include "engine/graph_seeking.h"

#include "base/time_types.h"
#include "base/win32/wine.h"
#include "engine/clock_position.h"
#include "engine/graph_pins.h"

#include <control.h>

#include <algorithm>
#include <atomic>
#include <utility>

namespace brindlecast {

namespace {

bool IsConnected(IBaseFilter* filter) {
    std::vector<ComPtr<IPin>> pins;
    if (filter == nullptr || FAILED(ListPins(filter, PINDIR_INPUT, pins))) {
        return false;
    }
    for (const ComPtr<IPin>& pin : pins) {
        if (!IsUnconnected(pin.Get())) {
            return true;
        }
    }
    return false;
}

// The source's own interface, from the filter or else from the first output pin that has it.
ComPtr<IMediaSeeking> SeekingOf(IBaseFilter* source) {
    auto seeking = QueryFor<IMediaSeeking>(source);
    std::vector<ComPtr<IPin>> pins;
    if (source == nullptr || seeking != nullptr || FAILED(ListPins(source, PINDIR_OUTPUT, pins))) {
        return seeking;
    }
    for (auto pin = pins.begin(); pin != pins.end() && seeking == nullptr; ++pin) {
        seeking = QueryFor<IMediaSeeking>(pin->Get());
    }
    return seeking;
}

// Stands in for the graph's object where that one has stubs. Main thread only, like everything that calls it.
class SubstituteSeeking final : public IMediaSeeking {
public:
    SubstituteSeeking(ComPtr<IMediaSeeking> graphSeeking, IBaseFilter* sourceFilter,
                      IBaseFilter* videoRenderer)
        : graph(std::move(graphSeeking)), source(SeekingOf(sourceFilter)) {
        if (IsConnected(videoRenderer)) {
            renderer = QueryFor<IMediaSeeking>(videoRenderer);
        }
    }

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        if (out == nullptr) {
            return E_POINTER;
        }
        if (iid != IID_IUnknown && iid != __uuidof(IMediaSeeking)) {
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

    STDMETHODIMP GetCapabilities(DWORD* capabilities) override {
        return graph->GetCapabilities(capabilities);
    }
    STDMETHODIMP CheckCapabilities(DWORD* capabilities) override {
        return graph->CheckCapabilities(capabilities);
    }
    STDMETHODIMP IsFormatSupported(const GUID* format) override { return graph->IsFormatSupported(format); }
    STDMETHODIMP QueryPreferredFormat(GUID* format) override { return graph->QueryPreferredFormat(format); }
    STDMETHODIMP GetTimeFormat(GUID* format) override { return graph->GetTimeFormat(format); }
    STDMETHODIMP IsUsingTimeFormat(const GUID* format) override { return graph->IsUsingTimeFormat(format); }
    STDMETHODIMP SetTimeFormat(const GUID* format) override { return graph->SetTimeFormat(format); }
    STDMETHODIMP GetDuration(LONGLONG* duration) override { return graph->GetDuration(duration); }
    STDMETHODIMP GetStopPosition(LONGLONG* stop) override { return graph->GetStopPosition(stop); }
    STDMETHODIMP GetCurrentPosition(LONGLONG* current) override;
    STDMETHODIMP ConvertTimeFormat(LONGLONG* target, const GUID* targetFormat, LONGLONG from,
                                   const GUID* fromFormat) override {
        return graph->ConvertTimeFormat(target, targetFormat, from, fromFormat);
    }
    STDMETHODIMP SetPositions(LONGLONG* current, DWORD currentFlags, LONGLONG* stop,
                              DWORD stopFlags) override;
    STDMETHODIMP GetPositions(LONGLONG* current, LONGLONG* stop) override;
    STDMETHODIMP GetAvailable(LONGLONG* earliest, LONGLONG* latest) override {
        return graph->GetAvailable(earliest, latest);
    }
    STDMETHODIMP SetRate(double newRate) override;
    STDMETHODIMP GetRate(double* current) override;
    STDMETHODIMP GetPreroll(LONGLONG* preroll) override { return graph->GetPreroll(preroll); }

private:
    [[nodiscard]] bool HasEnded() const;
    [[nodiscard]] HRESULT SeekFromTheEnd(LONGLONG* current, DWORD currentFlags, LONGLONG* stop,
                                         DWORD stopFlags);

    std::atomic<ULONG> references{1};
    ComPtr<IMediaSeeking> graph;
    ComPtr<IMediaSeeking> source;   // null when the source can't seek
    ComPtr<IMediaSeeking> renderer; // null when no picture is connected
    Time100ns lastTarget = 0;
    double rate = 1.0;
};

HRESULT SubstituteSeeking::GetCurrentPosition(LONGLONG* current) {
    if (current == nullptr) {
        return E_POINTER;
    }
    if (renderer != nullptr && SUCCEEDED(renderer->GetCurrentPosition(current))) {
        return S_OK;
    }
    GraphClockReading reading;
    const HRESULT result = graph->GetCurrentPosition(&reading.reported);
    if (FAILED(result)) {
        return result;
    }
    if (FAILED(graph->GetDuration(&reading.duration))) {
        reading.duration = 0;
    }
    reading.lastSeekTarget = lastTarget;
    reading.rate = rate;
    *current = PositionFromGraphClock(reading);
    return S_OK;
}

HRESULT SubstituteSeeking::SetPositions(LONGLONG* current, DWORD currentFlags, LONGLONG* stop,
                                        DWORD stopFlags) {
    // The graph writes a returned time over the target.
    const Time100ns target = current != nullptr ? *current : 0;
    const HRESULT result = HasEnded() ? SeekFromTheEnd(current, currentFlags, stop, stopFlags)
                                      : graph->SetPositions(current, currentFlags, stop, stopFlags);
    if (SUCCEEDED(result) &&
        (currentFlags & AM_SEEKING_PositioningBitsMask) == AM_SEEKING_AbsolutePositioning) {
        LONGLONG duration = 0;
        const bool known = SUCCEEDED(graph->GetDuration(&duration)) && duration > 0;
        // The source does not go beyond its ends.
        lastTarget = std::max<LONGLONG>(known ? std::min(target, duration) : target, 0);
    }
    return result;
}

bool SubstituteSeeking::HasEnded() const {
    LONGLONG position = 0;
    LONGLONG duration = 0;
    return SUCCEEDED(graph->GetCurrentPosition(&position)) && SUCCEEDED(graph->GetDuration(&duration)) &&
           duration > 0 && position == duration;
}

// Once its end was reached the graph reports the end whatever comes, until it is stopped.
HRESULT SubstituteSeeking::SeekFromTheEnd(LONGLONG* current, DWORD currentFlags, LONGLONG* stop,
                                          DWORD stopFlags) {
    ComPtr<IMediaControl> control;
    OAFilterState state = State_Stopped;
    if (SUCCEEDED(graph.As(&control))) {
        control->GetState(0, &state);
        control->Stop();
    }
    const HRESULT result = graph->SetPositions(current, currentFlags, stop, stopFlags);
    if (state == State_Running) {
        control->Run();
    } else if (state == State_Paused) {
        control->Pause();
    }
    return result;
}

HRESULT SubstituteSeeking::GetPositions(LONGLONG* current, LONGLONG* stop) {
    const HRESULT result = current != nullptr ? GetCurrentPosition(current) : S_OK;
    return FAILED(result) || stop == nullptr ? result : graph->GetStopPosition(stop);
}

HRESULT SubstituteSeeking::SetRate(double newRate) {
    if (source == nullptr) {
        return E_NOTIMPL;
    }
    if (newRate == rate) {
        return S_OK;
    }
    LONGLONG position = 0;
    HRESULT result = GetCurrentPosition(&position);
    if (FAILED(result)) {
        return result;
    }
    result = source->SetRate(newRate);
    if (FAILED(result)) {
        return result;
    }
    // What is under way was made for the old rate; a seek to where we are throws it away.
    const double oldRate = std::exchange(rate, newRate);
    result = SetPositions(&position, AM_SEEKING_AbsolutePositioning, nullptr, AM_SEEKING_NoPositioning);
    if (FAILED(result)) {
        rate = oldRate;
        source->SetRate(oldRate);
    }
    return result;
}

HRESULT SubstituteSeeking::GetRate(double* current) {
    if (current == nullptr) {
        return E_POINTER;
    }
    *current = rate;
    return S_OK;
}

} // namespace

ComPtr<IMediaSeeking> GetGraphSeeking(IGraphBuilder* graph, IBaseFilter* source, IBaseFilter* videoRenderer) {
    ComPtr<IMediaSeeking> own;
    if (FAILED(graph->QueryInterface(IID_PPV_ARGS(&own)))) {
        return nullptr;
    }
    // Wine's graph takes SetRate without telling any filter, and its position is its clock's, 200 ms ahead of
    // the picture.
    if (!IsRunningUnderWine()) {
        return own;
    }
    ComPtr<IMediaSeeking> substitute;
    // Not Attach: that of the compiler's ComPtr adds a reference.
    *substitute.ReleaseAndGetAddressOf() = new SubstituteSeeking(own, source, videoRenderer);
    return substitute;
}

} // namespace brindlecast
