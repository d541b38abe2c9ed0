#include "subtitles/subtitle_provider.h"

#include "base/trace.h"
#include "subtitles/image_blend.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

namespace brindlecast {

namespace {

constexpr int kDefaultWidth = 1920;
constexpr int kDefaultHeight = 1080;
constexpr Time100ns kUnitsPerMillisecond = 10'000;

// Files may hold any number for a time: what lies beyond the range of 64 bits counts as its end.
Time100ns ToUnits(Milliseconds time) {
    constexpr Milliseconds kMost = std::numeric_limits<Time100ns>::max() / kUnitsPerMillisecond;
    return std::clamp(time, -kMost, kMost) * kUnitsPerMillisecond;
}

Milliseconds Sum(Milliseconds one, Milliseconds other) {
    Milliseconds sum = 0;
    if (!__builtin_add_overflow(one, other, &sum)) {
        return sum;
    }
    return one > 0 ? std::numeric_limits<Milliseconds>::max() : std::numeric_limits<Milliseconds>::min();
}

// The moment to draw for a frame of that time, in milliseconds.
Milliseconds DelayedTime(Time100ns rt, Milliseconds delay) {
    const auto negated = static_cast<Milliseconds>(static_cast<double>(rt) / -10000.0);
    return Sum(delay, -negated);
}

} // namespace

CSubtitleProvider::CSubtitleProvider(SubtitleStyle style, CueTextDrawing drawing) : drawText(drawing) {
    assContext.style = std::move(style);
}

CSubtitleProvider::~CSubtitleProvider() {
    Clear();
}

bool CSubtitleProvider::LoadFile(const std::wstring& path) {
    const std::lock_guard lock(providerMutex);
    Clear();
    subtitleType = SubtitleTypeOf(path);
    Trace(L"[Brindlecast] Subtitle type: %d\n", subtitleType);
    const bool isConverted = subtitleType == SubtitleType::SubRip || subtitleType == SubtitleType::WebVtt;
    const bool hasLibass = assContext.Initialise(videoSize.width < 1 ? kDefaultWidth : videoSize.width,
                                                 videoSize.height < 1 ? kDefaultHeight : videoSize.height);
    if (hasLibass && (isConverted ? assContext.LoadSrtAsAss(path) : assContext.ReadFile(path))) {
        subtitleType = SubtitleType::Ass;
        eventsBuilt = false;
        return true;
    }
    // The plain reader takes what libass refuses, and it alone has a type for what it holds.
    bool loaded = false;
    if (isConverted) {
        loaded = LoadCues(path);
        subtitleType = SubtitleType::SubRip;
    }
    if (!loaded && LoadCues(path)) {
        loaded = true;
        subtitleType = SubtitleType::SubRip;
    }
    eventsBuilt = false;
    return loaded;
}

bool CSubtitleProvider::LoadCues(const std::wstring& path) {
    return LoadSubtitleCues(path, cues);
}

void CSubtitleProvider::Clear() {
    const std::lock_guard lock(providerMutex);
    assContext.FreeTrack();
    cues.clear();
    events.clear();
    eventsBuilt = false;
    subtitleType = SubtitleType::Unknown;
}

bool CSubtitleProvider::HasContent() {
    const std::lock_guard lock(providerMutex);
    return !cues.empty() || assContext.HasTrack();
}

void CSubtitleProvider::SetDelay(Milliseconds delay) {
    const std::lock_guard lock(providerMutex);
    assContext.delayMs.store(delay, std::memory_order_relaxed);
    cueDelayMs = delay;
}

STDMETHODIMP CSubtitleProvider::Lock() {
    providerMutex.lock();
    return S_OK;
}

STDMETHODIMP CSubtitleProvider::Unlock() {
    providerMutex.unlock();
    return S_OK;
}

void CSubtitleProvider::BuildEvents() {
    events.clear();
    for (const AssContext::Event& event : assContext.Events()) {
        events.push_back({ToUnits(event.start), ToUnits(Sum(event.start, event.duration)), {}});
    }
    if (events.empty()) {
        for (const SubtitleCue& cue : cues) {
            events.push_back({ToUnits(cue.startMs), ToUnits(cue.endMs), cue.text});
        }
    }
    std::ranges::sort(events, {}, &SubtitleEvent::start);
    eventsBuilt = true;
    Trace(L"[Brindlecast] Total events loaded: %zu\n", events.size());
}

SubPicPosition STDMETHODCALLTYPE CSubtitleProvider::GetStartPosition(Time100ns rt, double /*fps*/) {
    const std::lock_guard lock(providerMutex);
    if (!HasContent()) {
        return 0;
    }
    if (!eventsBuilt) {
        BuildEvents();
    }
    const auto found =
        std::ranges::find_if(events, [rt](const SubtitleEvent& event) { return event.stop > rt; });
    return found != events.end() ? static_cast<SubPicPosition>(found - events.begin()) + 1 : 0;
}

SubPicPosition STDMETHODCALLTYPE CSubtitleProvider::GetNext(SubPicPosition position) {
    const std::lock_guard lock(providerMutex);
    return position != 0 && position < events.size() ? position + 1 : 0;
}

const SubtitleEvent* CSubtitleProvider::EventAt(SubPicPosition position) const {
    return position >= 1 && position <= events.size() ? &events[position - 1] : nullptr;
}

Time100ns STDMETHODCALLTYPE CSubtitleProvider::GetStart(SubPicPosition position, double /*fps*/) {
    const std::lock_guard lock(providerMutex);
    const SubtitleEvent* event = EventAt(position);
    return event != nullptr ? event->start : 0;
}

Time100ns STDMETHODCALLTYPE CSubtitleProvider::GetStop(SubPicPosition position, double /*fps*/) {
    const std::lock_guard lock(providerMutex);
    const SubtitleEvent* event = EventAt(position);
    return event != nullptr ? event->stop : 0;
}

bool STDMETHODCALLTYPE CSubtitleProvider::IsAnimated(SubPicPosition position) {
    const std::lock_guard lock(providerMutex);
    const SubtitleEvent* event = EventAt(position);
    return event != nullptr && event->animated;
}

STDMETHODIMP CSubtitleProvider::Render(SubPicDesc& desc, Time100ns rt, double /*fps*/, Rect& bbox) {
    const std::lock_guard lock(providerMutex);
    if (!HasContent()) {
        return S_FALSE;
    }
    bbox = kInvertedRect;
    if (subtitleType == SubtitleType::Ass || subtitleType == SubtitleType::Ssa) {
        DrawTrack(desc, rt, bbox);
    } else {
        DrawCue(desc, rt, bbox);
    }
    return bbox.left > bbox.right || bbox.top > bbox.bottom ? S_FALSE : S_OK;
}

// The images belong to libass and are read without its mutex: whoever could have it draw something else needs
// the provider's, which is held here.
void CSubtitleProvider::DrawTrack(const SubPicDesc& desc, Time100ns rt, Rect& bbox) {
    if (!assContext.HasTrack()) {
        return; // an interrupted load may have left cues
    }
    const Milliseconds time = std::max<Milliseconds>(DelayedTime(rt, Delay()), 0);
    for (const ASS_Image* image = assContext.RenderFrame(time); image != nullptr; image = image->next) {
        BlendImage(
            {image->w, image->h, image->stride, image->bitmap, image->color, image->dst_x, image->dst_y},
            desc, bbox);
    }
}

void CSubtitleProvider::DrawCue(const SubPicDesc& desc, Time100ns rt, Rect& bbox) const {
    const Milliseconds time = DelayedTime(rt, cueDelayMs);
    const auto shown = std::ranges::find_if(
        cues, [time](const SubtitleCue& cue) { return cue.startMs <= time && time < cue.endMs; });
    if (shown != cues.end()) {
        drawText(shown->text, desc, bbox);
    }
}

void STDMETHODCALLTYPE CSubtitleProvider::SetVideoSize(Size size) {
    const std::lock_guard lock(providerMutex);
    videoSize = size;
    assContext.SetFrameSize(size);
}

Size* STDMETHODCALLTYPE CSubtitleProvider::GetVideoSize(Size* result) {
    const std::lock_guard lock(providerMutex);
    *result = videoSize;
    return result;
}

STDMETHODIMP CSubtitleProvider::Reserved1(std::uint32_t* result) {
    if (result == nullptr) {
        return E_POINTER;
    }
    *result = 0;
    return S_OK;
}

} // namespace brindlecast
