#include "filters/renderer/drawing_thread.h"

#include <timeapi.h>
#include <vfwmsgs.h>

#include <algorithm>
#include <utility>

namespace brindlecast {

namespace {

constexpr std::int64_t kMillisecond = 10'000;
// A capture draws one picture; more than this means that the drawing thread can't answer at all.
constexpr DWORD kCaptureMilliseconds = 5'000;

std::int64_t TickTime() {
    return static_cast<std::int64_t>(GetTickCount64()) * kMillisecond;
}

std::unique_ptr<Presenter> DefaultPresenter(const D3dDevice& device, std::shared_ptr<WindowSlot> window) {
    const PresenterKind kind = PresenterFor(window->Get(), RunsUnderWine());
    return MakePresenter(device, std::move(window), kind);
}

// Waits of one millisecond need the system's timer at that step.
class FineTimer {
public:
    FineTimer() { timeBeginPeriod(1); }
    FineTimer(const FineTimer&) = delete;
    FineTimer& operator=(const FineTimer&) = delete;
    ~FineTimer() { timeEndPeriod(1); }
};

} // namespace

DrawingThread::DrawingThread(DrawingHost& host, std::shared_ptr<WindowSlot> window, SubtitleLink& subtitles,
                             const SharedLook& look)
    : host_(host), look_(look), painter_(std::move(window), subtitles, DefaultPresenter) {}

DrawingThread::~DrawingThread() {
    {
        const std::lock_guard lock(mutex_);
        quit_ = true;
    }
    wake_.Set();
    room_.Set();
    if (thread_ && GetCurrentThreadId() == threadId_) {
        // Telling the graph of the end gave it up: its last reference was ours. The thread leaves when it
        // comes back.
        *alive_ = false;
    } else if (thread_) {
        WaitForSingleObject(thread_.Get(), INFINITE);
    }
}

HRESULT DrawingThread::Start() {
    if (thread_) {
        return S_OK;
    }
    thread_ = UniqueHandle(CreateThread(nullptr, 0, ThreadEntry, this, 0, &threadId_));
    return thread_ ? S_OK : HRESULT_FROM_WIN32(GetLastError());
}

DWORD WINAPI DrawingThread::ThreadEntry(void* self) noexcept {
    auto& thread = *static_cast<DrawingThread*>(self);
    const std::shared_ptr<bool> alive = thread.alive_;
    try {
        thread.Loop(*alive);
    } catch (...) {
        // Without memory for a picture nothing more can be drawn; the streaming thread must not wait for us.
        if (*alive) {
            const std::lock_guard lock(thread.mutex_);
            thread.quit_ = true;
            thread.room_.Set();
            thread.ready_.Set();
        }
    }
    if (*alive) {
        thread.FinishPendingCaptures();
    }
    return 0;
}

void DrawingThread::Loop(const bool& alive) {
    std::optional<FineTimer> timer; // only while something is timed: it costs power
    painter_.WarmUp();
    while (alive) {
        const std::optional<std::int64_t> clock = host_.ClockTime();
        const Task task = NextTask(clock);
        if (task.work == Work::kQuit) {
            return;
        }
        if (task.work != Work::kWait) {
            Perform(task);
            continue;
        }
        if (task.milliseconds == INFINITE) {
            timer.reset();
        } else if (!timer) {
            timer.emplace();
        }
        static_cast<void>(wake_.Wait(task.milliseconds));
    }
}

DrawingThread::Task DrawingThread::NextTask(const std::optional<std::int64_t>& clock) {
    const std::lock_guard lock(mutex_);
    Task task;
    if (quit_) {
        task.work = Work::kQuit;
    } else if (std::exchange(keepCopies_, false)) {
        task.work = Work::kKeepCopies;
    } else if (!captures_.empty()) {
        task.work = Work::kCapture;
        task.capture = captures_.front();
        captures_.pop_front();
    } else {
        const Decision decision = Judge(clock);
        // A frame that is due serves a redraw as well.
        if (std::exchange(redraw_, false) && decision.step != NextStep::kShow) {
            prepared_.reset(); // it is drawn over
            task.work = Work::kRedraw;
        } else {
            task = Carry(decision);
        }
    }
    task.generation = generation_;
    return task;
}

Decision DrawingThread::Judge(const std::optional<std::int64_t>& clock) const {
    ScheduleInput input;
    input.state = flushing_ ? PlayState::kStopped : state_;
    input.haveFrame = !queue_.empty();
    if (input.haveFrame) {
        input.frame = queue_.front()->times;
        input.frame.timed = input.frame.timed && clock.has_value();
    }
    // Without a clock frames go out as they come, and the end follows the last one.
    input.streamTime = clock ? *clock - start_ : lastStop_;
    input.first = first_;
    input.endOfStream = endOfStream_;
    input.completed = completed_;
    input.lastStop = lastStop_;
    input.sinceShown = TickTime() - shownAt_;
    return Decide(input);
}

DrawingThread::Task DrawingThread::Carry(const Decision& decision) {
    Task task;
    switch (decision.step) {
    case NextStep::kNothing: break;
    case NextStep::kWait:
        task.milliseconds = static_cast<DWORD>(std::min<std::int64_t>(decision.wait / kMillisecond, 1000));
        if (!queue_.empty() && prepared_ != queue_.front()) {
            task.work = Work::kPrepare;
            task.picture = prepared_ = queue_.front();
        }
        break;
    case NextStep::kShow:
    case NextStep::kDrop:
        task.work = decision.step == NextStep::kShow ? Work::kShow : Work::kDrop;
        task.picture = queue_.front();
        queue_.pop_front();
        prepared_.reset();
        UpdateRoom();
        break;
    case NextStep::kComplete:
        task.work = Work::kComplete;
        completed_ = true;
        break;
    }
    return task;
}

void DrawingThread::Perform(const Task& task) {
    switch (task.work) {
    case Work::kKeepCopies: painter_.KeepCopies(); break;
    case Work::kCapture:
        task.capture->result = painter_.Capture(task.capture->kind, look_.Get(), &task.capture->image);
        task.capture->done.Set();
        break;
    case Work::kRedraw: static_cast<void>(painter_.Redraw(look_.Get())); break;
    case Work::kShow: ShowFrame(task); break;
    case Work::kPrepare: painter_.Prepare(task.picture, look_.Get()); break;
    case Work::kDrop: {
        const std::lock_guard lock(mutex_);
        ++counters_.dropped;
        break;
    }
    case Work::kComplete: host_.OnStreamEnd(); break;
    case Work::kQuit:
    case Work::kWait: break;
    }
}

void DrawingThread::ShowFrame(const Task& task) {
    bool first = false;
    {
        const std::lock_guard lock(mutex_);
        if (task.generation != generation_) {
            return; // flushed or stopped since it was taken
        }
        first = first_;
        first_ = false;
        shownTimes_ = task.picture->times;
        shownAt_ = TickTime();
        hasPicture_ = true;
    }
    // A picture that can't be drawn now (no window, no device) is still the one whose turn it is.
    static_cast<void>(painter_.Show(task.picture, look_.Get()));
    CountShown(*task.picture, host_.ClockTime(), first);
    const std::lock_guard lock(mutex_);
    if (task.generation == generation_) {
        drawn_ = true;
        UpdateReady();
    }
}

void DrawingThread::CountShown(const Picture& picture, const std::optional<std::int64_t>& clock, bool first) {
    const std::lock_guard lock(mutex_);
    counters_.lastShown = TickTime();
    if (counters_.shown++ == 0) {
        counters_.firstShown = counters_.lastShown;
    }
    if (clock && picture.times.timed && !first && state_ == PlayState::kRunning) {
        const std::int64_t off = std::abs(*clock - start_ - picture.times.start);
        counters_.lateSum += off;
        counters_.lateLargest = std::max(counters_.lateLargest, off);
        ++counters_.timed;
    }
}

void DrawingThread::Pause() {
    const std::lock_guard lock(mutex_);
    if (state_ == PlayState::kStopped) {
        first_ = true;
        drawn_ = endOfStream_ = completed_ = flushing_ = false;
        lastStop_ = 0;
        counters_ = {};
    }
    state_ = PlayState::kPaused;
    UpdateReady();
    UpdateRoom();
    wake_.Set();
}

void DrawingThread::Run(std::int64_t start) {
    const std::lock_guard lock(mutex_);
    if (state_ != PlayState::kRunning) {
        completed_ = false; // each run tells the end once
    }
    start_ = start;
    state_ = PlayState::kRunning;
    UpdateReady();
    wake_.Set();
}

void DrawingThread::Stop() {
    std::deque<PicturePtr> dropped; // freed outside the lock: that is foreign code
    PicturePtr prepared;
    const std::lock_guard lock(mutex_);
    state_ = PlayState::kStopped;
    ++generation_;
    dropped.swap(queue_);
    prepared.swap(prepared_);
    keepCopies_ = true;
    UpdateReady();
    UpdateRoom();
    wake_.Set();
}

HRESULT DrawingThread::Push(PicturePtr picture) {
    for (;;) {
        {
            const std::lock_guard lock(mutex_);
            if (state_ == PlayState::kStopped || quit_) {
                return VFW_E_WRONG_STATE;
            }
            if (flushing_) {
                return S_FALSE;
            }
            if (queue_.size() < kQueueLength) {
                lastStop_ = std::max(lastStop_, picture->times.stop);
                queue_.push_back(std::move(picture));
                UpdateRoom();
                wake_.Set();
                return S_OK;
            }
        }
        static_cast<void>(room_.Wait());
    }
}

void DrawingThread::EndOfStream() {
    const std::lock_guard lock(mutex_);
    endOfStream_ = true;
    UpdateReady();
    wake_.Set();
}

void DrawingThread::NewSegment(std::int64_t start, double rate) {
    const std::lock_guard lock(mutex_);
    segmentStart_ = start;
    segmentRate_ = rate;
    lastStop_ = 0;
}

void DrawingThread::BeginFlush() {
    std::deque<PicturePtr> dropped;
    PicturePtr prepared;
    const std::lock_guard lock(mutex_);
    flushing_ = true;
    ++generation_;
    dropped.swap(queue_);
    prepared.swap(prepared_);
    endOfStream_ = completed_ = drawn_ = false;
    first_ = true;
    lastStop_ = 0;
    UpdateReady();
    UpdateRoom();
    wake_.Set();
}

void DrawingThread::EndFlush() {
    const std::lock_guard lock(mutex_);
    flushing_ = false;
    UpdateRoom();
    wake_.Set();
}

void DrawingThread::RequestRedraw() {
    const std::lock_guard lock(mutex_);
    redraw_ = hasPicture_;
    if (redraw_) {
        wake_.Set();
    }
}

HRESULT DrawingThread::Capture(FramePainter::CaptureKind kind, CapturedImage* out) {
    if (!hasPicture_) {
        return E_ABORT;
    }
    const auto job = std::make_shared<CaptureJob>();
    job->kind = kind;
    {
        const std::lock_guard lock(mutex_);
        if (quit_) {
            return E_ABORT;
        }
        captures_.push_back(job);
        wake_.Set();
    }
    if (!job->done.Wait(kCaptureMilliseconds)) {
        return HRESULT_FROM_WIN32(ERROR_TIMEOUT);
    }
    if (SUCCEEDED(job->result)) {
        *out = std::move(job->image);
    }
    return job->result;
}

void DrawingThread::FinishPendingCaptures() {
    const std::lock_guard lock(mutex_);
    for (const auto& job : captures_) {
        job->done.Set();
    }
    captures_.clear();
}

std::int64_t DrawingThread::Position() {
    const std::optional<std::int64_t> clock = host_.ClockTime();
    const std::lock_guard lock(mutex_);
    if (state_ == PlayState::kRunning && clock) {
        std::int64_t stream = *clock - start_;
        if (endOfStream_ && queue_.empty()) {
            stream = std::min(stream, lastStop_);
        }
        return MediaPosition(segmentStart_, segmentRate_, stream);
    }
    if (first_) {
        return segmentStart_; // nothing of this segment was shown
    }
    return MediaPosition(shownTimes_.segmentStart, shownTimes_.rate, shownTimes_.start);
}

DrawingThread::Counters DrawingThread::Count() const {
    const std::lock_guard lock(mutex_);
    return counters_;
}

void DrawingThread::UpdateRoom() {
    if (queue_.size() < kQueueLength || flushing_ || state_ == PlayState::kStopped || quit_) {
        room_.Set();
    } else {
        room_.Clear();
    }
}

void DrawingThread::UpdateReady() {
    const bool ended = endOfStream_ && queue_.empty();
    const bool waiting = state_ == PlayState::kPaused && !drawn_ && !ended;
    if (waiting) {
        ready_.Clear();
    } else {
        ready_.Set();
    }
}

} // namespace brindlecast
