#pragma once

#include "filters/base/base_filter.h"
#include "filters/renderer/basic_video.h"
#include "filters/renderer/position.h"
#include "filters/renderer/quality_counters.h"
#include "filters/renderer/renderer_core.h"
#include "filters/renderer/renderer_options.h"
#include "filters/renderer/renderer_pin.h"
#include "filters/renderer/video_window_control.h"

namespace brindlecast {

// ISubRender11.
class SubtitleAccess final : public FilterPart<ISubRender11> {
public:
    SubtitleAccess(BaseFilter& filter, RendererCore& core) : FilterPart(filter), core_(core) {}
    STDMETHODIMP SetCallback11(ISubRender11Callback* callback) override;

private:
    RendererCore& core_;
};

// The video renderer: one input, a window, the graph's clock.
class RendererFilter final : public BaseFilter, private DrawingHost {
public:
    RendererFilter();

    STDMETHODIMP Stop() override;
    STDMETHODIMP Pause() override;
    STDMETHODIMP Run(REFERENCE_TIME start) override;
    STDMETHODIMP GetState(DWORD milliseconds, FILTER_STATE* state) override;

private:
    ~RendererFilter() override = default;
    void* FindInterface(REFIID iid) noexcept override;

    std::optional<std::int64_t> ClockTime() override;
    void OnStreamEnd() override;

    RendererCore core_;
    RendererPin* input_; // owned by the list of pins
    VideoWindowControl videoWindow_;
    BasicVideo basicVideo_;
    PositionSeeking seeking_;
    RendererOptions options_;
    SubtitleAccess subtitles_;
    QualityCounters quality_;
};

} // namespace brindlecast
