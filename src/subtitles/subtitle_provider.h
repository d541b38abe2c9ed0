#pragma once

#include "base/com_object.h"
#include "subtitles/ass_context.h"
#include "subtitles/sub_pic.h"
#include "subtitles/subtitle_cues.h"
#include "subtitles/subtitle_type.h"

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

namespace brindlecast {

// One event of a subtitle, on the time line of the file.
struct SubtitleEvent {
    Time100ns start = 0;
    Time100ns stop = 0; // no longer shown
    std::wstring text;  // of a cue; libass keeps its own
    bool animated = false;
};

// Draws a cue's text at the bottom of a picture and widens `bbox` by what it has drawn.
using CueTextDrawing = void (*)(const std::wstring& text, const SubPicDesc& picture, Rect& bbox);

// Turns a moment into pixels: by libass, or, for a file that libass refuses, by drawing its cues as plain
// text. Files are loaded on the main thread; everything of ISubPicProvider but SetVideoSize is called by the
// picture queue between Lock and Unlock, on the renderer's drawing thread.
//
// Lock order: the queue's mutex, the provider's, the track's.
class CSubtitleProvider final : public ComObject<ISubPicProvider> {
public:
    // The style is that of converted files.
    CSubtitleProvider(SubtitleStyle style, CueTextDrawing drawing);

    // Reads a file in the place of the one before. False when no reader takes it. Throws std::range_error,
    // keeping the cues so far, when a line that is to be a cue's text is not UTF-8.
    [[nodiscard]] bool LoadFile(const std::wstring& path);
    // Forgets the file; the delay stays.
    void Clear();
    // Whether there is anything that could be drawn.
    [[nodiscard]] bool HasContent();

    // Added to the time of playing when a picture is drawn, and only there: which event a time belongs to is
    // told without it.
    void SetDelay(Milliseconds delay);
    [[nodiscard]] Milliseconds Delay() const { return assContext.delayMs.load(std::memory_order_relaxed); }

    STDMETHODIMP Lock() override;
    STDMETHODIMP Unlock() override;
    SubPicPosition STDMETHODCALLTYPE GetStartPosition(Time100ns rt, double fps) override;
    SubPicPosition STDMETHODCALLTYPE GetNext(SubPicPosition position) override;
    Time100ns STDMETHODCALLTYPE GetStart(SubPicPosition position, double fps) override;
    Time100ns STDMETHODCALLTYPE GetStop(SubPicPosition position, double fps) override;
    bool STDMETHODCALLTYPE IsAnimated(SubPicPosition position) override;
    STDMETHODIMP Render(SubPicDesc& desc, Time100ns rt, double fps, Rect& bbox) override;
    void STDMETHODCALLTYPE SetVideoSize(Size size) override;
    Size* STDMETHODCALLTYPE GetVideoSize(Size* result) override;
    STDMETHODIMP Reserved1(std::uint32_t* result) override;

private:
    ~CSubtitleProvider() override;

    [[nodiscard]] bool LoadCues(const std::wstring& path);
    void BuildEvents();
    [[nodiscard]] const SubtitleEvent* EventAt(SubPicPosition position) const;
    void DrawTrack(const SubPicDesc& desc, Time100ns rt, Rect& bbox);
    void DrawCue(const SubPicDesc& desc, Time100ns rt, Rect& bbox) const;

    std::recursive_mutex providerMutex;
    // All guarded by the mutex.
    Size videoSize;
    SubtitleType subtitleType = SubtitleType::Unknown;
    AssContext assContext;
    std::vector<SubtitleCue> cues; // in the order of the file
    Milliseconds cueDelayMs = 0;
    std::vector<SubtitleEvent> events; // by start
    bool eventsBuilt = false;

    const CueTextDrawing drawText;
};

} // namespace brindlecast
