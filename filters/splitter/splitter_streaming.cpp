// Starting, stopping, seeking and switching of the splitter's threads.
#include "filters/splitter/splitter_filter.h"

#include <algorithm>
#include <limits>

namespace brindlecast {

bool SplitterFilter::AnyConnected() const {
    return std::any_of(pins.begin(), pins.end(),
                       [](SplitterPin* pin) { return pin != nullptr && pin->IsConnected(); });
}

STDMETHODIMP SplitterFilter::Pause() {
    return Guarded([&] {
        const std::lock_guard lock(StateLock());
        if (State() == State_Running) {
            pausedAt = StreamTime();
        }
        const bool starts = State() == State_Stopped;
        const HRESULT result = BaseFilter::Pause();
        if (SUCCEEDED(result) && starts && file && AnyConnected()) {
            pausedAt = 0;
            StartStreaming();
        }
        return result;
    });
}

STDMETHODIMP SplitterFilter::Stop() {
    return Guarded([&] {
        const std::lock_guard lock(StateLock());
        if (streaming) {
            StopStreaming(false);
        }
        pausedAt = 0;
        return BaseFilter::Stop();
    });
}

BasePin::Segment SplitterFilter::RequestedSegment() const {
    const std::lock_guard lock(segmentLock);
    return segment;
}

void SplitterFilter::Request(const BasePin::Segment& requested) {
    const std::lock_guard lock(segmentLock);
    segment = requested;
}

BasePin::Segment SplitterFilter::RunningSegment() const {
    BasePin::Segment running = RequestedSegment();
    if (running.stop <= 0) {
        running.stop = std::numeric_limits<REFERENCE_TIME>::max() / 2; // to the end, however long that is
    }
    return running;
}

void SplitterFilter::StartStreaming() {
    if (!placed) {
        const int video = EnabledStream(StreamKind::Video);
        file->Seek(RequestedSegment().start, video >= 0 ? video : EnabledStream(StreamKind::Audio));
    }
    placed = false; // reading moves it
    const BasePin::Segment running = RunningSegment();
    queues.Open();
    queues.SetPlayPosition(running.start);
    streaming = true;
    for (SplitterPin* pin : pins) {
        if (pin != nullptr && pin->IsConnected()) {
            queues.OpenReader(pin->Kind(), pin->Stream(), std::numeric_limits<DemuxTime>::min());
        }
    }
    reader = std::thread([this] { ReadFile(); });
    for (SplitterPin* pin : pins) {
        if (pin != nullptr && pin->IsConnected()) {
            pin->StartDelivery(running);
        }
    }
}

void SplitterFilter::StopStreaming(bool flush) {
    if (!streaming) {
        return;
    }
    queues.Close();
    file->Interrupt(true);
    for (SplitterPin* pin : pins) {
        if (pin != nullptr && pin->IsConnected()) {
            pin->StopDelivery(flush);
        }
    }
    if (reader.joinable()) {
        reader.join();
    }
    reader = std::thread();
    file->Interrupt(false);
    streaming = false;
}

void SplitterFilter::Restart() {
    StopStreaming(true);
    pausedAt = 0;
    StartStreaming();
}

void SplitterFilter::ReadFile() noexcept {
    try {
        ReadPackets();
    } catch (...) {
        BaseFilter::Notify(EC_ERRORABORT, E_OUTOFMEMORY, 0);
    }
    queues.Finish();
}

void SplitterFilter::ReadPackets() {
    DemuxPacket packet;
    while (file->Read(packet) == DemuxFile::ReadResult::Packet) {
        if (!queues.Push(std::move(packet))) {
            return;
        }
        packet = {};
    }
}

REFERENCE_TIME SplitterFilter::StreamTime() {
    if (State() != State_Running) {
        return State() == State_Paused ? pausedAt.load() : 0;
    }
    const Microsoft::WRL::ComPtr<IReferenceClock> clock = Clock();
    REFERENCE_TIME now = 0;
    if (clock && SUCCEEDED(clock->GetTime(&now))) {
        return std::max<REFERENCE_TIME>(now - StartTime(), 0);
    }
    // Without a clock the streams run as fast as they are taken.
    for (const StreamKind kind : {StreamKind::Video, StreamKind::Audio}) {
        const SplitterPin* pin = PinOf(kind);
        if (pin != nullptr && pin->IsDelivering()) {
            const BasePin::Segment requested = RequestedSegment();
            return static_cast<REFERENCE_TIME>(static_cast<double>(pin->DeliveredUpTo() - requested.start) /
                                               requested.rate);
        }
    }
    return 0;
}

LONGLONG SplitterFilter::SeekDuration() {
    return duration;
}

LONGLONG SplitterFilter::SeekPosition() {
    const BasePin::Segment requested = RequestedSegment();
    const auto passed = static_cast<LONGLONG>(static_cast<double>(StreamTime()) * requested.rate);
    const LONGLONG position = requested.start + passed;
    return duration > 0 ? std::min<LONGLONG>(position, duration) : position;
}

LONGLONG SplitterFilter::SeekStop() {
    const LONGLONG stop = RequestedSegment().stop;
    return stop > 0 ? stop : duration.load();
}

double SplitterFilter::SeekRate() {
    return RequestedSegment().rate;
}

LONGLONG SplitterFilter::KeyframeBefore(LONGLONG time) {
    const std::lock_guard lock(StateLock());
    if (!file || file->Keyframes().empty()) {
        return time;
    }
    const std::vector<DemuxTime>& times = file->Keyframes();
    const auto behind = std::upper_bound(times.begin(), times.end(), time);
    return behind == times.begin() ? times.front() : *std::prev(behind);
}

HRESULT SplitterFilter::SeekTo(const void* asker, const LONGLONG* start, const LONGLONG* stop) {
    const std::lock_guard lock(StateLock());
    const BasePin::Segment present = RequestedSegment();
    BasePin::Segment wanted = present;
    if (start != nullptr) {
        wanted.start = std::clamp<LONGLONG>(*start, 0,
                                            duration > 0 ? duration.load()
                                            : *start < 0 ? 0
                                                         : *start);
    }
    if (stop != nullptr) { // the end of the file is where it stops anyway
        wanted.stop = duration > 0 && *stop >= duration ? 0 : std::max<LONGLONG>(*stop, 0);
    }
    if (start == nullptr) {
        Request(wanted);
        return S_OK; // a new end alone: from the next start on
    }
    const bool same = wanted.start == present.start && wanted.stop == present.stop;
    if (same && !askers.empty() && askers.insert(asker).second) {
        return S_OK; // one seek that arrives through another object
    }
    askers = {asker};
    Request(wanted);
    placed = false;
    if (streaming) {
        Restart();
    }
    return S_OK;
}

HRESULT SplitterFilter::ChangeRate(double rate) {
    constexpr double kSlowest = 0.01;
    constexpr double kFastest = 100.0;
    if (!(rate >= kSlowest && rate <= kFastest)) {
        return E_INVALIDARG;
    }
    const std::lock_guard lock(StateLock());
    BasePin::Segment wanted = RequestedSegment();
    if (rate == wanted.rate) {
        return S_OK;
    }
    const LONGLONG position = SeekPosition();
    askers.clear();
    wanted.rate = rate;
    if (!streaming) {
        Request(wanted);
        return S_OK;
    }
    wanted.start = position;
    Request(wanted);
    placed = false;
    Restart();
    return S_OK;
}

void SplitterFilter::OnConnectedWhileActive(SplitterPin& pin) {
    if (!streaming) {
        StartStreaming();
        return;
    }
    queues.OpenReader(pin.Kind(), pin.Stream(), std::numeric_limits<DemuxTime>::min());
    pin.StartDelivery(RunningSegment());
}

void SplitterFilter::OnDisconnectedWhileActive(SplitterPin& pin) {
    queues.CloseReader(pin.Kind());
    pin.StopDelivery(false);
}

void SplitterFilter::OnDelivered() {
    // Runs on delivery threads, which must not take the state lock: the clock, the start time and the segment
    // are safe to ask.
    const SplitterPin* sound = PinOf(StreamKind::Audio);
    if (sound == nullptr) {
        return;
    }
    const Microsoft::WRL::ComPtr<IReferenceClock> clock = Clock();
    REFERENCE_TIME now = 0;
    if (State() == State_Running && clock && SUCCEEDED(clock->GetTime(&now))) {
        const auto passed = std::max<REFERENCE_TIME>(now - StartTime(), 0);
        const BasePin::Segment requested = RequestedSegment();
        queues.SetPlayPosition(requested.start +
                               static_cast<DemuxTime>(static_cast<double>(passed) * requested.rate));
    } else if (!clock) {
        SplitterPin* leading = PinOf(StreamKind::Video);
        const bool byVideo = leading != nullptr && leading->IsConnected();
        queues.SetPlayPosition((byVideo ? leading : sound)->DeliveredUpTo());
    }
}

// Makes a pin stand for another stream, at the present position, without touching the other pins.
HRESULT SplitterFilter::SwitchStream(SplitterPin& pin, int stream) {
    // Another picture would need packets from before the next keyframe, which are not kept.
    if (pin.Kind() == StreamKind::Video && stream >= 0 && pin.IsConnected()) {
        return E_NOTIMPL;
    }
    if (!streaming || !pin.IsConnected()) {
        return pin.SetStream(stream);
    }
    const DemuxTime position = SeekPosition();
    queues.CloseReader(pin.Kind());
    pin.StopDelivery(true);
    const HRESULT result = pin.SetStream(stream);
    queues.OpenReader(pin.Kind(), pin.Stream(), position);
    pin.StartDelivery(RunningSegment());
    return result;
}

} // namespace brindlecast
