#include "filters/renderer/quality_counters.h"

namespace brindlecast {

namespace {

constexpr std::int64_t kMillisecond = 10'000;

} // namespace

template <class Read>
HRESULT QualityCounters::Answer(int* value, Read&& read) {
    if (value == nullptr) {
        return E_POINTER;
    }
    *value = static_cast<int>(read(core.Drawing().Count()));
    return S_OK;
}

STDMETHODIMP QualityCounters::get_FramesDroppedInRenderer(int* frames) {
    return Answer(frames, [](const DrawingThread::Counters& counters) { return counters.dropped; });
}

STDMETHODIMP QualityCounters::get_FramesDrawn(int* frames) {
    return Answer(frames, [](const DrawingThread::Counters& counters) { return counters.shown; });
}

STDMETHODIMP QualityCounters::get_AvgFrameRate(int* rate) {
    return Answer(rate, [](const DrawingThread::Counters& counters) -> std::int64_t {
        const std::int64_t elapsed = counters.lastShown - counters.firstShown;
        return elapsed > 0 ? (counters.shown - 1) * std::int64_t{1'000'000'000} / elapsed : 0;
    });
}

STDMETHODIMP QualityCounters::get_AvgSyncOffset(int* milliseconds) {
    return Answer(milliseconds, [](const DrawingThread::Counters& counters) -> std::int64_t {
        return counters.timed > 0 ? counters.lateSum / counters.timed / kMillisecond : 0;
    });
}

STDMETHODIMP QualityCounters::get_DevSyncOffset(int* milliseconds) {
    return Answer(milliseconds, [](const DrawingThread::Counters& counters) {
        return counters.lateLargest / kMillisecond;
    });
}

} // namespace brindlecast
