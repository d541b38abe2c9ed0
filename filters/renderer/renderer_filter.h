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
    SubtitleAccess(BaseFilter& theFilter, RendererCore& theCore) : FilterPart(theFilter), core(theCore) {}
    STDMETHODIMP SetCallback11(ISubRender11Callback* callback) override;

private:
    RendererCore& core;
};

// The video renderer: one input, a window, the graph's clock.
class RendererFilter final : public BaseFilter, private DrawingHost {
public:
    RendererFilter();

    STDMETHODIMP Stop() override;
    STDMETHODIMP Pause() override;
    STDMETHODIMP Run(REFERENCE_TIME start) override;
    STDMETHODIMP GetState(DWORD milliseconds, FILTER_STATE* out) override;

private:
    ~RendererFilter() override = default;
    void* FindInterface(REFIID iid) noexcept override;

    std::optional<std::int64_t> ClockTime() override;
    void OnStreamEnd() override;

    RendererCore core;
    RendererPin* input; // owned by the list of pins
    VideoWindowControl videoWindow;
    BasicVideo basicVideo;
    PositionSeeking seeking;
    RendererOptions options;
    SubtitleAccess subtitles;
    QualityCounters quality;
};

} // namespace brindlecast
