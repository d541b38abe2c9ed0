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

DrawingThread::DrawingThread(DrawingHost& theHost, std::shared_ptr<WindowSlot> window,
                             SubtitleLink& subtitles, const SharedLook& theLook)
    : host(theHost), look(theLook), painter(std::move(window), subtitles, DefaultPresenter) {}

DrawingThread::~DrawingThread() {
    {
        const std::lock_guard lock(mutex);
        quit = true;
    }
    wake.Set();
    room.Set();
    if (threadHandle && GetCurrentThreadId() == threadId) {
        // Telling the graph of the end gave it up: its last reference was ours. The thread leaves when it
        // comes back.
        *aliveFlag = false;
    } else if (threadHandle) {
        WaitForSingleObject(threadHandle.Get(), INFINITE);
    }
}

HRESULT DrawingThread::Start() {
    if (threadHandle) {
        return S_OK;
    }
    threadHandle = UniqueHandle(CreateThread(nullptr, 0, ThreadEntry, this, 0, &threadId));
    return threadHandle ? S_OK : HRESULT_FROM_WIN32(GetLastError());
}

DWORD WINAPI DrawingThread::ThreadEntry(void* self) noexcept {
    auto& thread = *static_cast<DrawingThread*>(self);
    const std::shared_ptr<bool> alive = thread.aliveFlag;
    try {
        thread.Loop(*alive);
    } catch (...) {
        // Without memory for a picture nothing more can be drawn; the streaming thread must not wait for us.
        if (*alive) {
            const std::lock_guard lock(thread.mutex);
            thread.quit = true;
            thread.room.Set();
            thread.ready.Set();
        }
    }
    if (*alive) {
        thread.FinishPendingCaptures();
    }
    return 0;
}

void DrawingThread::Loop(const bool& alive) {
    std::optional<FineTimer> timer; // only while something is timed: it costs power
    painter.WarmUp();
    while (alive) {
        const std::optional<std::int64_t> clock = host.ClockTime();
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
        static_cast<void>(wake.Wait(task.milliseconds));
    }
}

DrawingThread::Task DrawingThread::NextTask(const std::optional<std::int64_t>& clock) {
    const std::lock_guard lock(mutex);
    Task task;
    if (quit) {
        task.work = Work::kQuit;
    } else if (std::exchange(keepCopies, false)) {
        task.work = Work::kKeepCopies;
    } else if (!captures.empty()) {
        task.work = Work::kCapture;
        task.capture = captures.front();
        captures.pop_front();
    } else {
        const Decision decision = Judge(clock);
        // A frame that is due serves a redraw as well.
        if (std::exchange(redraw, false) && decision.step != NextStep::kShow) {
            prepared.reset(); // it is drawn over
            task.work = Work::kRedraw;
        } else {
            task = Carry(decision);
        }
    }
    task.generation = generation;
    return task;
}

Decision DrawingThread::Judge(const std::optional<std::int64_t>& clock) const {
    ScheduleInput input;
    input.state = flushing ? PlayState::kStopped : state;
    input.haveFrame = !queue.empty();
    if (input.haveFrame) {
        input.frame = queue.front()->times;
        input.frame.timed = input.frame.timed && clock.has_value();
    }
    // Without a clock frames go out as they come, and the end follows the last one.
    input.streamTime = clock ? *clock - runStart : lastStop;
    input.first = nextIsFirst;
    input.endOfStream = endOfStream;
    input.completed = completed;
    input.lastStop = lastStop;
    input.sinceShown = TickTime() - shownAt;
    return Decide(input);
}

DrawingThread::Task DrawingThread::Carry(const Decision& decision) {
    Task task;
    switch (decision.step) {
    case NextStep::kNothing: break;
    case NextStep::kWait:
        task.milliseconds = static_cast<DWORD>(std::min<std::int64_t>(decision.wait / kMillisecond, 1000));
        if (!queue.empty() && prepared != queue.front()) {
            task.work = Work::kPrepare;
            task.picture = prepared = queue.front();
        }
        break;
    case NextStep::kShow:
    case NextStep::kDrop:
        task.work = decision.step == NextStep::kShow ? Work::kShow : Work::kDrop;
        task.picture = queue.front();
        queue.pop_front();
        prepared.reset();
        UpdateRoom();
        break;
    case NextStep::kComplete:
        task.work = Work::kComplete;
        completed = true;
        break;
    }
    return task;
}

void DrawingThread::Perform(const Task& task) {
    switch (task.work) {
    case Work::kKeepCopies: painter.KeepCopies(); break;
    case Work::kCapture:
        task.capture->result = painter.Capture(task.capture->kind, look.Get(), &task.capture->image);
        task.capture->done.Set();
        break;
    case Work::kRedraw: static_cast<void>(painter.Redraw(look.Get())); break;
    case Work::kShow: ShowFrame(task); break;
    case Work::kPrepare: painter.Prepare(task.picture, look.Get()); break;
    case Work::kDrop: {
        const std::lock_guard lock(mutex);
        ++counters.dropped;
        break;
    }
    case Work::kComplete: host.OnStreamEnd(); break;
    case Work::kQuit:
    case Work::kWait: break;
    }
}

void DrawingThread::ShowFrame(const Task& task) {
    bool first = false;
    {
        const std::lock_guard lock(mutex);
        if (task.generation != generation) {
            return; // flushed or stopped since it was taken
        }
        first = nextIsFirst;
        nextIsFirst = false;
        shownTimes = task.picture->times;
        shownAt = TickTime();
        hasPicture = true;
    }
    // A picture that can't be drawn now (no window, no device) is still the one whose turn it is.
    static_cast<void>(painter.Show(task.picture, look.Get()));
    CountShown(*task.picture, host.ClockTime(), first);
    const std::lock_guard lock(mutex);
    if (task.generation == generation) {
        drawn = true;
        UpdateReady();
    }
}

void DrawingThread::CountShown(const Picture& picture, const std::optional<std::int64_t>& clock, bool first) {
    const std::lock_guard lock(mutex);
    counters.lastShown = TickTime();
    if (counters.shown++ == 0) {
        counters.firstShown = counters.lastShown;
    }
    if (clock && picture.times.timed && !first && state == PlayState::kRunning) {
        const std::int64_t off = std::abs(*clock - runStart - picture.times.start);
        counters.lateSum += off;
        counters.lateLargest = std::max(counters.lateLargest, off);
        ++counters.timed;
    }
}

void DrawingThread::Pause() {
    const std::lock_guard lock(mutex);
    if (state == PlayState::kStopped) {
        nextIsFirst = true;
        drawn = endOfStream = completed = flushing = segmentCame = false;
        lastStop = 0;
        counters = {};
    }
    state = PlayState::kPaused;
    UpdateReady();
    UpdateRoom();
    wake.Set();
}

void DrawingThread::Run(std::int64_t start) {
    const std::lock_guard lock(mutex);
    if (state != PlayState::kRunning) {
        completed = false; // each run tells the end once
    }
    runStart = start;
    state = PlayState::kRunning;
    UpdateReady();
    wake.Set();
}

void DrawingThread::Stop() {
    std::deque<PicturePtr> dropped; // freed outside the lock: that is foreign code
    PicturePtr droppedPrepared;
    const std::lock_guard lock(mutex);
    state = PlayState::kStopped;
    ++generation;
    dropped.swap(queue);
    droppedPrepared.swap(prepared);
    keepCopies = true;
    UpdateReady();
    UpdateRoom();
    wake.Set();
}

HRESULT DrawingThread::Push(PicturePtr picture) {
    for (;;) {
        {
            const std::lock_guard lock(mutex);
            if (state == PlayState::kStopped || quit) {
                return VFW_E_WRONG_STATE;
            }
            if (flushing) {
                return S_FALSE;
            }
            if (queue.size() < kQueueLength) {
                lastStop = std::max(lastStop, picture->times.stop);
                queue.push_back(std::move(picture));
                UpdateRoom();
                wake.Set();
                return S_OK;
            }
        }
        static_cast<void>(room.Wait());
    }
}

void DrawingThread::EndOfStream() {
    const std::lock_guard lock(mutex);
    endOfStream = true;
    UpdateReady();
    wake.Set();
}

void DrawingThread::NewSegment(std::int64_t start, double rate) {
    const std::lock_guard lock(mutex);
    segmentStart = start;
    segmentRate = rate;
    segmentCame = true;
    lastStop = 0;
}

void DrawingThread::BeginFlush() {
    std::deque<PicturePtr> dropped;
    PicturePtr droppedPrepared;
    const std::lock_guard lock(mutex);
    flushing = true;
    ++generation;
    dropped.swap(queue);
    droppedPrepared.swap(prepared);
    endOfStream = completed = drawn = segmentCame = false;
    nextIsFirst = true;
    lastStop = 0;
    UpdateReady();
    UpdateRoom();
    wake.Set();
}

void DrawingThread::EndFlush() {
    const std::lock_guard lock(mutex);
    flushing = false;
    segmentCame = false; // one that came during the flush was that of the old place
    UpdateRoom();
    wake.Set();
}

void DrawingThread::RequestRedraw() {
    const std::lock_guard lock(mutex);
    redraw = hasPicture;
    if (redraw) {
        wake.Set();
    }
}

HRESULT DrawingThread::Capture(FramePainter::CaptureKind kind, CapturedImage* out) {
    if (!hasPicture) {
        return E_ABORT;
    }
    const auto job = std::make_shared<CaptureJob>();
    job->kind = kind;
    {
        const std::lock_guard lock(mutex);
        if (quit) {
            return E_ABORT;
        }
        captures.push_back(job);
        wake.Set();
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
    const std::lock_guard lock(mutex);
    for (const auto& job : captures) {
        job->done.Set();
    }
    captures.clear();
}

std::optional<std::int64_t> DrawingThread::Position() {
    const std::optional<std::int64_t> clock = host.ClockTime();
    const std::lock_guard lock(mutex);
    if (!segmentCame) {
        return std::nullopt;
    }
    if (state == PlayState::kRunning && clock) {
        std::int64_t stream = *clock - runStart;
        if (endOfStream && queue.empty()) {
            stream = std::min(stream, lastStop);
        }
        return MediaPosition(segmentStart, segmentRate, stream);
    }
    if (nextIsFirst) {
        return segmentStart; // nothing of this segment was shown
    }
    return MediaPosition(shownTimes.segmentStart, shownTimes.rate, shownTimes.start);
}

DrawingThread::Counters DrawingThread::Count() const {
    const std::lock_guard lock(mutex);
    return counters;
}

void DrawingThread::UpdateRoom() {
    if (queue.size() < kQueueLength || flushing || state == PlayState::kStopped || quit) {
        room.Set();
    } else {
        room.Clear();
    }
}

void DrawingThread::UpdateReady() {
    const bool ended = endOfStream && queue.empty();
    const bool waiting = state == PlayState::kPaused && !drawn && !ended;
    if (waiting) {
        ready.Clear();
    } else {
        ready.Set();
    }
}

} // namespace brindlecast
