#pragma once

#include "base/geometry.h"
#include "base/time_types.h"
#include "subtitles/subtitle_style.h"

#include <ass/ass.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace brindlecast {

// libass with at most one track. Each operation takes the track mutex; it is the last in the order of locks,
// so none of them calls anything that locks. Loading happens on the main thread, drawing on the renderer's.
class AssContext {
public:
    AssContext() = default;
    AssContext(const AssContext&) = delete;
    AssContext& operator=(const AssContext&) = delete;
    ~AssContext() { Shutdown(); }

    // Starts libass anew for frames of that size in pixels; the track goes. False when libass can't start.
    [[nodiscard]] bool Initialise(int width, int height);
    void Shutdown();

    // Has libass read a file in a format of its own, as UTF-8. False, without a track, when it can't, and
    // before Initialise.
    [[nodiscard]] bool ReadFile(const std::wstring& path);
    // Reads a SubRip or WebVTT file through its conversion. False when it can't be opened, and before
    // Initialise.
    [[nodiscard]] bool LoadSrtAsAss(const std::wstring& path);
    void FreeTrack();
    [[nodiscard]] bool HasTrack() const;

    struct Event {
        Milliseconds start;
        Milliseconds duration;
    };
    // Of the track, in its order; nothing without one.
    [[nodiscard]] std::vector<Event> Events() const;

    // For the frames from now on.
    void SetFrameSize(Size size);
    // What is shown at a time of the file, from back to front; null when that is nothing. Valid until the
    // next call of any operation: the caller keeps others from making one.
    [[nodiscard]] const ASS_Image* RenderFrame(Milliseconds time);

    // Added to the time of playing when a frame is drawn. Stays as it is when files come and go.
    std::atomic<Milliseconds> delayMs{0};
    // Of converted files; set before the first of them is loaded.
    SubtitleStyle style;

private:
    struct LibraryDeleter {
        void operator()(ASS_Library* owned) const { ass_library_done(owned); }
    };
    struct RendererDeleter {
        void operator()(ASS_Renderer* owned) const { ass_renderer_done(owned); }
    };
    struct TrackDeleter {
        void operator()(ASS_Track* owned) const { ass_free_track(owned); }
    };

    mutable std::recursive_mutex trackMutex;
    // Guarded by the mutex. In the order in which they must be given back, last to first.
    bool initialised = false;
    Size frameSize;
    std::unique_ptr<ASS_Library, LibraryDeleter> library;
    std::unique_ptr<ASS_Renderer, RendererDeleter> renderer;
    std::unique_ptr<ASS_Track, TrackDeleter> track;
};

} // namespace brindlecast
