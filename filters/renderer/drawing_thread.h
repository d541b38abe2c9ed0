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

    DrawingThread(DrawingHost& host, std::shared_ptr<WindowSlot> window, SubtitleLink& subtitles,
                  const SharedLook& look);
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
    [[nodiscard]] bool WaitReady(DWORD milliseconds) const { return ready_.Wait(milliseconds); }

    // The window has to be drawn again. Any thread; does not wait.
    void RequestRedraw();
    [[nodiscard]] bool HasPicture() const noexcept { return hasPicture_.load(); }
    // Hands a capture over to the drawing thread and waits for it. E_ABORT when there is no picture.
    [[nodiscard]] HRESULT Capture(FramePainter::CaptureKind kind, CapturedImage* out);

    // Place on the file's time line now. Any thread.
    [[nodiscard]] std::int64_t Position();

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

    DrawingHost& host_;
    const SharedLook& look_;
    FramePainter painter_; // used by the thread alone
    UniqueHandle thread_;
    DWORD threadId_ = 0;
    // False once this object was destroyed on its own thread.
    const std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);

    mutable std::mutex mutex_; // guards what follows; held for moments only
    bool quit_ = false;
    PlayState state_ = PlayState::kStopped;
    std::int64_t start_ = 0;
    std::deque<PicturePtr> queue_;
    PicturePtr prepared_;
    bool flushing_ = false;
    bool endOfStream_ = false;
    bool completed_ = false;
    bool drawn_ = false; // the first frame since the last flush or start is on the screen
    bool first_ = true;  // none was taken for showing since then
    unsigned generation_ = 0;
    std::int64_t lastStop_ = 0;
    std::int64_t segmentStart_ = 0;
    double segmentRate_ = 1.0;
    FrameTimes shownTimes_;
    std::int64_t shownAt_ = 0; // 100 ns units of the system's tick count
    bool redraw_ = false;
    bool keepCopies_ = false;
    std::deque<std::shared_ptr<CaptureJob>> captures_;
    Counters counters_;

    std::atomic<bool> hasPicture_{false};
    Event wake_{Event::Reset::Automatic};
    Event room_{Event::Reset::Manual, true};
    Event ready_{Event::Reset::Manual, true};
};

} // namespace brindlecast
