#pragma once

#include "filters/base/unique_handle.h"
#include "filters/core/picture_schedule.h"
#include "filters/renderer/frame_painter.h"

#include <atomic>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>

namespace brindlecast {

// What the drawing thread asks of its filter. Called on the drawing thread without any lock of ours.
class DrawingHost {
public:
    // Time of the graph's clock, or nothing without a clock.
    [[nodiscard]] virtual std::optional<std::int64_t> ClockTime() = 0;
    // The last frame's time is over and the stream has ended.
    virtual void OnStreamEnd() = 0;

protected:
    ~DrawingHost() = default;
};

// Holds the frames that wait and the thread that draws them at their time. The thread waits for its events
// and the clock only: never for the window's thread or the graph, so that any thread may wait for it (that
// is how a capture is handed over). State changes do not wait for a drawing under way.
class DrawingThread {
public:
    // Frames that may wait; the streaming thread is held up beyond.
    static constexpr std::size_t kQueueLength = 3;

    DrawingThread(DrawingHost& theHost, std::shared_ptr<WindowSlot> window, SubtitleLink& subtitles,
                  const SharedLook& theLook);
    ~DrawingThread();

    // Starts the thread if it does not run yet; it stays until destruction.
    [[nodiscard]] HRESULT Start();

    // Changes of state, from the filter under its state lock.
    void Pause();
    // `start`: clock time of stream time 0.
    void Run(std::int64_t start);
    // Drops what waits; the last picture stays.
    void Stop();

    // From the streaming thread.
    // Takes a frame; waits while the queue is full. S_FALSE while flushing, VFW_E_WRONG_STATE when stopped.
    [[nodiscard]] HRESULT Push(PicturePtr picture);
    void EndOfStream();
    void NewSegment(std::int64_t start, double rate);

    // From the thread that seeks.
    void BeginFlush();
    void EndFlush();

    // Waits until a paused filter has its first frame (or the end of the stream). False when the time ran
    // out.
    [[nodiscard]] bool WaitReady(DWORD milliseconds) const { return ready.Wait(milliseconds); }

    // The window has to be drawn again. Any thread; does not wait.
    void RequestRedraw();
    [[nodiscard]] bool HasPicture() const noexcept { return hasPicture.load(); }
    // Hands a capture over to the drawing thread and waits for it. E_ABORT when there is no picture.
    [[nodiscard]] HRESULT Capture(FramePainter::CaptureKind kind, CapturedImage* out);

    // Place on the file's time line now; nothing while the segment that follows a flush has not come yet.
    // Any thread.
    [[nodiscard]] std::optional<std::int64_t> Position();

    struct Counters {
        int shown = 0;
        int dropped = 0;
        // Sum and largest distance of shown frames from their time, 100 ns units; first frames are not
        // counted.
        std::int64_t lateSum = 0;
        std::int64_t lateLargest = 0;
        int timed = 0;
        // System ticks (100 ns units) at the first and the last frame shown.
        std::int64_t firstShown = 0;
        std::int64_t lastShown = 0;
    };
    [[nodiscard]] Counters Count() const;

private:
    struct CaptureJob {
        FramePainter::CaptureKind kind = FramePainter::CaptureKind::kPicture;
        CapturedImage image;
        HRESULT result = E_ABORT;
        Event done{Event::Reset::Manual};
    };
    enum class Work { kQuit, kKeepCopies, kRedraw, kCapture, kShow, kPrepare, kDrop, kComplete, kWait };
    struct Task {
        Work work = Work::kWait;
        PicturePtr picture;
        std::shared_ptr<CaptureJob> capture;
        DWORD milliseconds = INFINITE;
        unsigned generation = 0;
    };

    static DWORD WINAPI ThreadEntry(void* self) noexcept;
    void Loop(const bool& alive);
    [[nodiscard]] Task NextTask(const std::optional<std::int64_t>& clock);
    [[nodiscard]] Decision Judge(const std::optional<std::int64_t>& clock) const;
    [[nodiscard]] Task Carry(const Decision& decision);
    void Perform(const Task& task);
    void ShowFrame(const Task& task);
    void CountShown(const Picture& picture, const std::optional<std::int64_t>& clock, bool first);
    void FinishPendingCaptures();
    void UpdateRoom();
    void UpdateReady();

    DrawingHost& host;
    const SharedLook& look;
    FramePainter painter; // used by the thread alone
    UniqueHandle threadHandle;
    DWORD threadId = 0;
    // False once this object was destroyed on its own thread.
    const std::shared_ptr<bool> aliveFlag = std::make_shared<bool>(true);

    mutable std::mutex mutex; // guards what follows; held for moments only
    bool quit = false;
    PlayState state = PlayState::kStopped;
    std::int64_t runStart = 0;
    std::deque<PicturePtr> queue;
    PicturePtr prepared;
    bool flushing = false;
    bool endOfStream = false;
    bool completed = false;
    bool drawn = false;      // the first frame since the last flush or start is on the screen
    bool nextIsFirst = true; // none was taken for showing since then
    unsigned generation = 0;
    std::int64_t lastStop = 0;
    std::int64_t segmentStart = 0;
    double segmentRate = 1.0;
    bool segmentCame = true; // since the last flush
    FrameTimes shownTimes;
    std::int64_t shownAt = 0; // 100 ns units of the system's tick count
    bool redraw = false;
    bool keepCopies = false;
    std::deque<std::shared_ptr<CaptureJob>> captures;
    Counters counters;

    std::atomic<bool> hasPicture{false};
    Event wake{Event::Reset::Automatic};
    Event room{Event::Reset::Manual, true};
    Event ready{Event::Reset::Manual, true};
};

} // namespace brindlecast
