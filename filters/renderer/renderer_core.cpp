#include "filters/renderer/renderer_core.h"

namespace brindlecast {

RendererCore::RendererCore(DrawingHost& host)
    : window_(*this, slot_), drawing_(host, slot_, subtitles_, look_) {}

void RendererCore::SetFormat(const std::optional<PictureFormat>& format) {
    const std::lock_guard lock(formatMutex_);
    format_ = format;
}

std::optional<PictureFormat> RendererCore::Format() const {
    const std::lock_guard lock(formatMutex_);
    return format_;
}

std::optional<PictureSize> RendererCore::VideoSize() const {
    const std::optional<PictureFormat> format = Format();
    if (!format) {
        return std::nullopt;
    }
    const int rotation = NormalizedRotation(containerRotation_.load() + look_.Get().orientation.rotation);
    return DisplaySize(format->Size(), format->aspectX, format->aspectY, rotation);
}

} // namespace brindlecast
