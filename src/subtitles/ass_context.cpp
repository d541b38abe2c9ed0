#include "subtitles/ass_context.h"

#include "base/trace.h"
#include "base/utf8.h"
#include "subtitles/srt_to_ass.h"
#include "subtitles/subtitle_file.h"

namespace brindlecast {

namespace {

constexpr const char* kDefaultFamily = "sans-serif";

// Lines that would come with each frame are traced a few times in a run.
constexpr int kTracedRefusals = 5;
constexpr int kTracedFrames = 10;

bool IsAmongFirst(std::atomic<int>& count, int limit) {
    return count.load(std::memory_order_relaxed) < limit &&
           count.fetch_add(1, std::memory_order_relaxed) < limit;
}

} // namespace

bool AssContext::Initialise(int width, int height) {
    const std::lock_guard lock(trackMutex);
    if (initialised) {
        Shutdown();
    }
    frameSize = {width, height};
    library.reset(ass_library_init());
    if (library == nullptr) {
        return false;
    }
    ass_set_message_cb(library.get(), nullptr, nullptr);
    renderer.reset(ass_renderer_init(library.get()));
    if (renderer == nullptr) {
        library.reset();
        return false;
    }
    ass_set_frame_size(renderer.get(), width, height);
    ass_set_fonts(renderer.get(), nullptr, kDefaultFamily, ASS_FONTPROVIDER_AUTODETECT, nullptr, 1);
    initialised = true;
    return true;
}

void AssContext::Shutdown() {
    const std::lock_guard lock(trackMutex);
    track.reset();
    renderer.reset();
    library.reset();
    initialised = false;
}

bool AssContext::ReadFile(const std::wstring& path) {
    const std::lock_guard lock(trackMutex);
    if (library == nullptr) {
        return false;
    }
    track.reset();
    // libass promises not to write to the path.
    std::string utf8Path = WideToUtf8(path);
    track.reset(ass_read_file(library.get(), utf8Path.data(), nullptr));
    return track != nullptr;
}

bool AssContext::LoadSrtAsAss(const std::wstring& path) {
    const std::lock_guard lock(trackMutex);
    if (library == nullptr) {
        return false;
    }
    const auto content = ReadSubtitleFile(path);
    if (!content) {
        return false;
    }
    Trace(L"[Brindlecast] SRT content size: %zu bytes\n", content->size());
    std::string ass = ConvertSrtToAss(WithoutUtf8Mark(*content), style);
    Trace(L"[Brindlecast] ASS content size: %zu bytes\n", ass.size());
    if (ass.empty()) {
        return false;
    }
    track.reset();
    track.reset(ass_read_memory(library.get(), ass.data(), ass.size(), nullptr));
    return track != nullptr;
}

void AssContext::FreeTrack() {
    const std::lock_guard lock(trackMutex);
    track.reset();
}

bool AssContext::HasTrack() const {
    const std::lock_guard lock(trackMutex);
    return track != nullptr;
}

std::vector<AssContext::Event> AssContext::Events() const {
    const std::lock_guard lock(trackMutex);
    std::vector<Event> events;
    if (track == nullptr) {
        return events;
    }
    Trace(L"[Brindlecast] libass event count: %d\n", track->n_events);
    for (int i = 0; i < track->n_events; ++i) {
        events.push_back({track->events[i].Start, track->events[i].Duration});
    }
    return events;
}

void AssContext::SetFrameSize(Size size) {
    const std::lock_guard lock(trackMutex);
    if (size == frameSize) {
        return;
    }
    frameSize = size;
    if (renderer != nullptr) {
        ass_set_frame_size(renderer.get(), size.width, size.height);
        Trace(L"[Brindlecast] libass: frame=%dx%d\n", size.width, size.height);
    }
}

const ASS_Image* AssContext::RenderFrame(Milliseconds time) {
    static std::atomic<int> refusals{0};
    static std::atomic<int> frames{0};
    const std::lock_guard lock(trackMutex);
    if (renderer == nullptr || track == nullptr) {
        if (IsAmongFirst(refusals, kTracedRefusals)) {
            Trace(L"[Brindlecast] RenderFrame: renderer=%p track=%p\n",
                  static_cast<const void*>(renderer.get()), static_cast<const void*>(track.get()));
        }
        return nullptr;
    }
    int change = 0;
    const ASS_Image* images = ass_render_frame(renderer.get(), track.get(), time, &change);
    if (IsAmongFirst(frames, kTracedFrames)) {
        Trace(L"[Brindlecast] RenderFrame: time=%lld img=%p\n", time, static_cast<const void*>(images));
    }
    return images;
}

} // namespace brindlecast
