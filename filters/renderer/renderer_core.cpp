#include "filters/renderer/renderer_core.h"

namespace brindlecast {

RendererCore::RendererCore(DrawingHost& host) : window(*this, slot), drawing(host, slot, subtitles, look) {}

void RendererCore::SetFormat(const std::optional<PictureFormat>& newFormat) {
    const std::lock_guard lock(formatMutex);
    format = newFormat;
}

std::optional<PictureFormat> RendererCore::Format() const {
    const std::lock_guard lock(formatMutex);
    return format;
}

std::optional<PictureSize> RendererCore::VideoSize() const {
    const std::optional<PictureFormat> current = Format();
    if (!current) {
        return std::nullopt;
    }
    const int rotation = NormalizedRotation(containerRotation.load() + look.Get().orientation.rotation);
    return DisplaySize(current->Size(), current->aspectX, current->aspectY, rotation);
}

} // namespace brindlecast
