#include "app/window_sizing.h"

#include "app/window_sizing_texts.h"
#include "base/saturate.h"
#include "base/text.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace brindlecast {

namespace {

// Dividing by a height of 0 gives infinity or no number at all, and both compare as they should.
static_assert(std::numeric_limits<double>::is_iec559);

bool HasArea(Size size) {
    return size.width >= 1 && size.height >= 1;
}

std::int64_t PercentOf(std::int64_t length, int percent) {
    return length * percent / 100;
}

std::int64_t WidthOf(const Rect& rect) {
    return std::int64_t{rect.right} - rect.left;
}

std::int64_t HeightOf(const Rect& rect) {
    return std::int64_t{rect.bottom} - rect.top;
}

Size WindowAround(std::int64_t videoWidth, std::int64_t videoHeight, WindowChrome chrome) {
    return {SaturateToInt(videoWidth + chrome.width), SaturateToInt(videoHeight + chrome.height)};
}

struct Span {
    int begin;
    int end;
};

// One axis of PlaceAroundCentre. The far side is looked at last and wins.
Span PlaceAround(Span window, int length, Span area) {
    const std::int64_t centre = (std::int64_t{window.begin} + window.end) / 2;
    std::int64_t begin = std::max<std::int64_t>(centre - length / 2, area.begin);
    if (begin + length > area.end) {
        begin = std::int64_t{area.end} - length;
    }
    return {SaturateToInt(begin), SaturateToInt(begin + length)};
}

} // namespace

WindowChrome ChromeOf(const MainWindowMetrics& metrics) {
    const int frames = 2 * metrics.frame;
    return {frames, metrics.titleBar + metrics.toolbar + frames};
}

std::optional<Size> WindowForVideoPercent(Size video, int percent, WindowChrome chrome) {
    if (!HasArea(video)) {
        return std::nullopt;
    }
    return WindowAround(PercentOf(video.width, percent), PercentOf(video.height, percent), chrome);
}

std::optional<Size> WindowForMonitorPercent(Size video, int percent, const Rect& workArea,
                                            WindowChrome chrome) {
    if (!HasArea(video)) {
        return std::nullopt;
    }
    const std::int64_t mostWidth = PercentOf(WidthOf(workArea), percent) - chrome.width;
    const std::int64_t mostHeight = PercentOf(HeightOf(workArea), percent) - chrome.height;
    const double aspect = static_cast<double>(video.width) / video.height;
    const double mostAspect = static_cast<double>(mostWidth) / static_cast<double>(mostHeight);
    if (aspect > mostAspect) {
        return WindowAround(mostWidth, TruncateToInt(static_cast<double>(mostWidth) / aspect), chrome);
    }
    return WindowAround(TruncateToInt(static_cast<double>(mostHeight) * aspect), mostHeight, chrome);
}

Rect PlaceAroundCentre(const Rect& window, Size newSize, const Rect& workArea) {
    const Span x = PlaceAround({window.left, window.right}, newSize.width, {workArea.left, workArea.right});
    const Span y = PlaceAround({window.top, window.bottom}, newSize.height, {workArea.top, workArea.bottom});
    return {x.begin, y.begin, x.end, y.end};
}

Size VideoAreaOf(Size client, const MainWindowMetrics& metrics) {
    const WindowChrome chrome = ChromeOf(metrics);
    return {client.width - chrome.width, client.height - chrome.height};
}

std::wstring VideoSizeText(Size videoArea) {
    return FormatText(texts::kVideoSize, videoArea.width, videoArea.height);
}

} // namespace brindlecast
