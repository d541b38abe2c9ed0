#include "filters/core/demux_queue.h"

#include <algorithm>

namespace brindlecast {
namespace {

// How long before the play position sound is kept.
constexpr DemuxTime kKeptBehind = 10'000'000;

DemuxTime EndOf(const DemuxPacket& packet) {
    return packet.start.value_or(0) + packet.duration;
}

} // namespace

void PacketQueues::Configure(std::vector<StreamKind> kinds) {
    const std::lock_guard lock(mutex_);
    lanes_.clear();
    lanes_.resize(kinds.size());
    for (std::size_t i = 0; i < kinds.size(); ++i)
        lanes_[i].kind = kinds[i];
    readers_ = {};
    bytes_ = 0;
    open_ = finished_ = false;
}

void PacketQueues::SetLimits(const QueueLimits& limits) {
    const std::lock_guard lock(mutex_);
    limits_ = limits;
    roomMade_.notify_all();
}

void PacketQueues::Open() {
    const std::lock_guard lock(mutex_);
    for (Lane& lane : lanes_) {
        lane.packets.clear();
        lane.next = 0;
    }
    readers_ = {};
    bytes_ = 0;
    finished_ = false;
    open_ = true;
}

void PacketQueues::Close() {
    const std::lock_guard lock(mutex_);
    open_ = false;
    roomMade_.notify_all();
    packetCame_.notify_all();
}

void PacketQueues::OpenReader(StreamKind kind, int stream, DemuxTime from) {
    const std::lock_guard lock(mutex_);
    ReaderOf(kind) = {stream, true, false};
    if (stream >= 0) {
        Lane& lane = lanes_[static_cast<std::size_t>(stream)];
        const auto first = std::find_if(lane.packets.begin(), lane.packets.end(),
                                        [&](const SharedPacket& packet) { return EndOf(*packet) > from; });
        lane.next = static_cast<std::size_t>(first - lane.packets.begin());
    }
    roomMade_.notify_all();
    packetCame_.notify_all();
}

void PacketQueues::CloseReader(StreamKind kind) {
    const std::lock_guard lock(mutex_);
    ReaderOf(kind).open = false;
    roomMade_.notify_all();
    packetCame_.notify_all();
}

void PacketQueues::Abandon(StreamKind kind) {
    const std::lock_guard lock(mutex_);
    Reader& reader = ReaderOf(kind);
    reader.abandoned = true;
    if (reader.stream >= 0) {
        Lane& lane = lanes_[static_cast<std::size_t>(reader.stream)];
        while (!lane.packets.empty() && !Keeps(lane))
            DropFront(lane);
    }
    roomMade_.notify_all();
}

bool PacketQueues::IsSelected(const Lane& lane) const {
    const Reader& reader = readers_[static_cast<std::size_t>(lane.kind)];
    return reader.open && !reader.abandoned && reader.stream == static_cast<int>(&lane - lanes_.data());
}

bool PacketQueues::IsLive(const Reader& reader) const {
    return reader.open && !reader.abandoned && reader.stream >= 0;
}

bool PacketQueues::Keeps(const Lane& lane) const {
    return lane.kind == StreamKind::Audio || IsSelected(lane);
}

bool PacketQueues::IsAheadEnough(const Lane& lane) const {
    const std::size_t ahead = lane.packets.size() - lane.next;
    if (ahead >= limits_.packets)
        return true;
    if (ahead < 2)
        return false;
    return EndOf(*lane.packets.back()) - lane.packets[lane.next]->start.value_or(0) >= limits_.span;
}

bool PacketQueues::IsFull() const {
    if (bytes_ >= limits_.bytes)
        return true;
    const Reader& subtitles = readers_[static_cast<std::size_t>(StreamKind::Subtitle)];
    bool someLive = false;
    for (const Reader& reader : readers_) {
        if (&reader == &subtitles || !IsLive(reader))
            continue;
        someLive = true;
        if (!IsAheadEnough(lanes_[static_cast<std::size_t>(reader.stream)]))
            return false;
    }
    if (someLive || !IsLive(subtitles))
        return true;
    return IsAheadEnough(lanes_[static_cast<std::size_t>(subtitles.stream)]);
}

void PacketQueues::DropFront(Lane& lane) {
    bytes_ -= lane.packets.front()->Bytes();
    lane.packets.pop_front();
    if (lane.next > 0)
        --lane.next;
}

// Lets go of sound that no track switch will ask for any more.
void PacketQueues::Trim(Lane& lane) {
    while (!lane.packets.empty() && (lane.next > 0 || !IsSelected(lane)) &&
           EndOf(*lane.packets.front()) < playPosition_ - kKeptBehind)
        DropFront(lane);
}

bool PacketQueues::Push(DemuxPacket packet) {
    auto shared = std::make_shared<const DemuxPacket>(std::move(packet));
    std::unique_lock lock(mutex_);
    roomMade_.wait(lock, [&] { return !open_ || !IsFull(); });
    if (!open_)
        return false;
    Lane& lane = lanes_[static_cast<std::size_t>(shared->stream)];
    if (!Keeps(lane))
        return true;
    bytes_ += shared->Bytes();
    lane.packets.push_back(std::move(shared));
    if (lane.kind == StreamKind::Audio)
        Trim(lane);
    packetCame_.notify_all();
    return true;
}

void PacketQueues::Finish() {
    const std::lock_guard lock(mutex_);
    finished_ = true;
    packetCame_.notify_all();
}

PacketQueues::PopResult PacketQueues::Pop(StreamKind kind, SharedPacket& packet) {
    std::unique_lock lock(mutex_);
    for (;;) {
        const Reader& reader = ReaderOf(kind);
        if (!open_ || !reader.open)
            return PopResult::Closed;
        if (reader.stream < 0)
            return PopResult::End;
        Lane& lane = lanes_[static_cast<std::size_t>(reader.stream)];
        if (lane.next < lane.packets.size()) {
            packet = lane.packets[lane.next++];
            if (lane.kind == StreamKind::Audio)
                Trim(lane);
            else
                DropFront(lane);
            roomMade_.notify_all();
            return PopResult::Packet;
        }
        if (finished_)
            return PopResult::End;
        packetCame_.wait(lock);
    }
}

void PacketQueues::SetPlayPosition(DemuxTime position) {
    const std::lock_guard lock(mutex_);
    playPosition_ = position;
    for (Lane& lane : lanes_) {
        if (lane.kind == StreamKind::Audio)
            Trim(lane);
    }
}

std::size_t PacketQueues::Bytes() {
    const std::lock_guard lock(mutex_);
    return bytes_;
}

} // namespace brindlecast
