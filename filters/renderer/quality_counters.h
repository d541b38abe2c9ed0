#pragma once

#include "filters/renderer/filter_part.h"
#include "filters/renderer/renderer_core.h"

#include <amvideo.h>

namespace brindlecast {

// IQualProp: how well frames meet their time, since the filter last left the stopped state.
class QualityCounters final : public FilterPart<IQualProp> {
public:
    QualityCounters(BaseFilter& theFilter, RendererCore& theCore) : FilterPart(theFilter), core(theCore) {}

    STDMETHODIMP get_FramesDroppedInRenderer(int* frames) override;
    STDMETHODIMP get_FramesDrawn(int* frames) override;
    // Frames in 100 seconds.
    STDMETHODIMP get_AvgFrameRate(int* rate) override;
    STDMETHODIMP get_Jitter(int*) override { return E_NOTIMPL; }
    // Milliseconds between a frame's time and its showing: the mean, and the largest instead of a deviation.
    STDMETHODIMP get_AvgSyncOffset(int* milliseconds) override;
    STDMETHODIMP get_DevSyncOffset(int* milliseconds) override;

private:
    template <class Read>
    [[nodiscard]] HRESULT Answer(int* value, Read&& read);

    RendererCore& core;
};

} // namespace brindlecast
