#pragma once

#include "base/win32/com_ptr.h"

#include <windows.h>

#include <strmif.h>

namespace brindlecast {

// The seeking interface for a built graph; null when the graph has none. On Windows it is the graph's own.
// Wine's graph ignores rates and reports the time of its clock as position, so there it is an object of ours
// with the same interface, which hands rates to the source and asks the video renderer where it is.
// `videoRenderer` may be unconnected: a file without picture takes its position from the clock. The object
// keeps the filters alive until it is released.
[[nodiscard]] ComPtr<IMediaSeeking> GetGraphSeeking(IGraphBuilder* graph, IBaseFilter* source,
                                                    IBaseFilter* videoRenderer);

} // namespace brindlecast
