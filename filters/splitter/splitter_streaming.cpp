// Starting, stopping, seeking and switching of the splitter's threads.
#include "filters/splitter/splitter_filter.h"

#include <algorithm>
#include <limits>

namespace brindlecast {

bool SplitterFilter::AnyConnected() const {
    return std::any_of(pins_.begin(), pins_.end(),
                       [](SplitterPin* pin) { return pin != nullptr && pin->IsConnected(); });
}

STDMETHODIMP SplitterFilter::Pause() {
    return Guarded([&] {
        const std::lock_guard lock(StateLock());
        if (State() == State_Running)
            pausedAt_ = StreamTime();
        const bool starts = State() == State_Stopped;
        const HRESULT result = BaseFilter::Pause();
        if (SUCCEEDED(result) && starts && file_ && AnyConnected()) {
            pausedAt_ = 0;
            StartStreaming();
        }
        return result;
    });
}

STDMETHODIMP SplitterFilter::Stop() {
    return Guarded([&] {
        const std::lock_guard lock(StateLock());
        if (streaming_)
            StopStreaming(false);
        pausedAt_ = 0;
        return BaseFilter::Stop();
    });
}

BasePin::Segment SplitterFilter::RunningSegment() const {
    BasePin::Segment segment = segment_;
    if (segment.stop <= 0)
        segment.stop = std::numeric_limits<REFERENCE_TIME>::max() / 2; // to the end, however long that is
    return segment;
}

void SplitterFilter::StartStreaming() {
    if (!placed_) {
        const int video = EnabledStream(StreamKind::Video);
        file_->Seek(segment_.start, video >= 0 ? video : EnabledStream(StreamKind::Audio));
    }
    placed_ = false; // reading moves it
    const BasePin::Segment segment = RunningSegment();
    queues_.Open();
    queues_.SetPlayPosition(segment.start);
    streaming_ = true;
    for (SplitterPin* pin : pins_) {
        if (pin != nullptr && pin->IsConnected())
            queues_.OpenReader(pin->Kind(), pin->Stream(), std::numeric_limits<DemuxTime>::min());
    }
    reader_ = std::thread([this] { ReadFile(); });
    for (SplitterPin* pin : pins_) {
        if (pin != nullptr && pin->IsConnected())
            pin->StartDelivery(segment);
    }
}

void SplitterFilter::StopStreaming(bool flush) {
    if (!streaming_)
        return;
    queues_.Close();
    file_->Interrupt(true);
    for (SplitterPin* pin : pins_) {
        if (pin != nullptr && pin->IsConnected())
            pin->StopDelivery(flush);
    }
    if (reader_.joinable())
        reader_.join();
    reader_ = std::thread();
    file_->Interrupt(false);
    streaming_ = false;
}

void SplitterFilter::Restart() {
    StopStreaming(true);
    pausedAt_ = 0;
    StartStreaming();
}

void SplitterFilter::ReadFile() noexcept {
    try {
        ReadPackets();
    } catch (...) {
        BaseFilter::Notify(EC_ERRORABORT, E_OUTOFMEMORY, 0);
    }
    queues_.Finish();
}

void SplitterFilter::ReadPackets() {
    DemuxPacket packet;
    while (file_->Read(packet) == DemuxFile::ReadResult::Packet) {
        if (!queues_.Push(std::move(packet)))
            return;
        packet = {};
    }
}

REFERENCE_TIME SplitterFilter::StreamTime() {
    if (State() != State_Running)
        return State() == State_Paused ? pausedAt_ : 0;
    const Microsoft::WRL::ComPtr<IReferenceClock> clock = Clock();
    REFERENCE_TIME now = 0;
    if (clock && SUCCEEDED(clock->GetTime(&now)))
        return std::max<REFERENCE_TIME>(now - StartTime(), 0);
    // Without a clock the streams run as fast as they are taken.
    for (const StreamKind kind : {StreamKind::Video, StreamKind::Audio}) {
        const SplitterPin* pin = PinOf(kind);
        if (pin != nullptr && pin->IsDelivering())
            return static_cast<REFERENCE_TIME>(static_cast<double>(pin->DeliveredUpTo() - segment_.start) /
                                               segment_.rate);
    }
    return 0;
}

LONGLONG SplitterFilter::SeekDuration() {
    return duration_;
}

LONGLONG SplitterFilter::SeekPosition() {
    const std::lock_guard lock(StateLock());
    const auto passed = static_cast<LONGLONG>(static_cast<double>(StreamTime()) * segment_.rate);
    const LONGLONG position = segment_.start + passed;
    return duration_ > 0 ? std::min<LONGLONG>(position, duration_) : position;
}

LONGLONG SplitterFilter::SeekStop() {
    const std::lock_guard lock(StateLock());
    return segment_.stop > 0 ? segment_.stop : duration_.load();
}

double SplitterFilter::SeekRate() {
    const std::lock_guard lock(StateLock());
    return segment_.rate;
}

LONGLONG SplitterFilter::KeyframeBefore(LONGLONG time) {
    const std::lock_guard lock(StateLock());
    if (!file_ || file_->Keyframes().empty())
        return time;
    const std::vector<DemuxTime>& times = file_->Keyframes();
    const auto behind = std::upper_bound(times.begin(), times.end(), time);
    return behind == times.begin() ? times.front() : *std::prev(behind);
}

HRESULT SplitterFilter::SeekTo(const void* asker, const LONGLONG* start, const LONGLONG* stop) {
    const std::lock_guard lock(StateLock());
    BasePin::Segment wanted = segment_;
    if (start != nullptr)
        wanted.start = std::clamp<LONGLONG>(*start, 0,
                                            duration_ > 0 ? duration_.load()
                                            : *start < 0  ? 0
                                                          : *start);
    if (stop != nullptr) // the end of the file is where it stops anyway
        wanted.stop = duration_ > 0 && *stop >= duration_ ? 0 : std::max<LONGLONG>(*stop, 0);
    if (start == nullptr) {
        segment_.stop = wanted.stop;
        return S_OK; // a new end alone: from the next start on
    }
    const bool same = wanted.start == segment_.start && wanted.stop == segment_.stop;
    if (same && !askers_.empty() && askers_.insert(asker).second)
        return S_OK; // one seek that arrives through another object
    askers_ = {asker};
    segment_ = wanted;
    placed_ = false;
    if (streaming_)
        Restart();
    return S_OK;
}

HRESULT SplitterFilter::ChangeRate(double rate) {
    constexpr double kSlowest = 0.01;
    constexpr double kFastest = 100.0;
    if (!(rate >= kSlowest && rate <= kFastest))
        return E_INVALIDARG;
    const std::lock_guard lock(StateLock());
    if (rate == segment_.rate)
        return S_OK;
    const LONGLONG position = SeekPosition();
    askers_.clear();
    segment_.rate = rate;
    if (!streaming_)
        return S_OK;
    segment_.start = position;
    placed_ = false;
    Restart();
    return S_OK;
}

void SplitterFilter::OnConnectedWhileActive(SplitterPin& pin) {
    if (!streaming_) {
        StartStreaming();
        return;
    }
    queues_.OpenReader(pin.Kind(), pin.Stream(), std::numeric_limits<DemuxTime>::min());
    pin.StartDelivery(RunningSegment());
}

void SplitterFilter::OnDisconnectedWhileActive(SplitterPin& pin) {
    queues_.CloseReader(pin.Kind());
    pin.StopDelivery(false);
}

void SplitterFilter::OnDelivered() {
    // Runs on delivery threads, which must not take the state lock: the clock and the start time are safe to
    // ask, the segment does not change while these threads run.
    const SplitterPin* sound = PinOf(StreamKind::Audio);
    if (sound == nullptr)
        return;
    const Microsoft::WRL::ComPtr<IReferenceClock> clock = Clock();
    REFERENCE_TIME now = 0;
    if (State() == State_Running && clock && SUCCEEDED(clock->GetTime(&now))) {
        const auto passed = std::max<REFERENCE_TIME>(now - StartTime(), 0);
        queues_.SetPlayPosition(segment_.start +
                                static_cast<DemuxTime>(static_cast<double>(passed) * segment_.rate));
    } else if (!clock) {
        SplitterPin* leading = PinOf(StreamKind::Video);
        const bool byVideo = leading != nullptr && leading->IsConnected();
        queues_.SetPlayPosition((byVideo ? leading : sound)->DeliveredUpTo());
    }
}

// Makes a pin stand for another stream, at the present position, without touching the other pins.
HRESULT SplitterFilter::SwitchStream(SplitterPin& pin, int stream) {
    // Another picture would need packets from before the next keyframe, which are not kept.
    if (pin.Kind() == StreamKind::Video && stream >= 0 && pin.IsConnected())
        return E_NOTIMPL;
    if (!streaming_ || !pin.IsConnected())
        return pin.SetStream(stream);
    const DemuxTime position = SeekPosition();
    queues_.CloseReader(pin.Kind());
    pin.StopDelivery(true);
    const HRESULT result = pin.SetStream(stream);
    queues_.OpenReader(pin.Kind(), pin.Stream(), position);
    pin.StartDelivery(RunningSegment());
    return result;
}

} // namespace brindlecast
