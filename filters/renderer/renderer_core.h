#pragma once

#include "filters/renderer/drawing_thread.h"
#include "filters/renderer/look.h"
#include "filters/renderer/subtitle_link.h"
#include "filters/renderer/video_window.h"

#include <atomic>
#include <mutex>
#include <optional>

namespace brindlecast {

// What the interfaces of the renderer share: the window, the look, the format and the drawing thread.
// Methods may be called on any thread unless their part says otherwise.
class RendererCore final : public VideoWindowEvents {
public:
    explicit RendererCore(DrawingHost& host);

    [[nodiscard]] VideoWindow& Window() noexcept { return window; }
    [[nodiscard]] DrawingThread& Drawing() noexcept { return drawing; }
    [[nodiscard]] SubtitleLink& Subtitles() noexcept { return subtitles; }
    [[nodiscard]] SharedLook& TheLook() noexcept { return look; }

    // The connection's format; nothing while the input is not connected.
    void SetFormat(const std::optional<PictureFormat>& newFormat);
    [[nodiscard]] std::optional<PictureFormat> Format() const;
    [[nodiscard]] bool IsConnected() const { return Format().has_value(); }

    void SetContainerRotation(int degrees) noexcept { containerRotation = degrees; }
    [[nodiscard]] int ContainerRotation() const noexcept { return containerRotation.load(); }

    // The upright size of the picture: sample aspect and both rotations applied. Nothing without a
    // connection.
    [[nodiscard]] std::optional<PictureSize> VideoSize() const;

    // VideoWindowEvents
    void OnPaintNeeded() override { drawing.RequestRedraw(); }
    bool HasPicture() override { return drawing.HasPicture(); }

private:
    const std::shared_ptr<WindowSlot> slot = std::make_shared<WindowSlot>();
    SharedLook look;
    SubtitleLink subtitles;
    mutable std::mutex formatMutex;
    std::optional<PictureFormat> format;
    std::atomic<int> containerRotation{0};
    VideoWindow window;
    DrawingThread drawing; // last: it ends before what it uses
};

} // namespace brindlecast
