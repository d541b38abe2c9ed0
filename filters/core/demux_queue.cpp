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
    const std::lock_guard lock(mutex);
    lanes.clear();
    lanes.resize(kinds.size());
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        lanes[i].kind = kinds[i];
    }
    readers = {};
    bytes = 0;
    open = finished = false;
}

void PacketQueues::SetLimits(const QueueLimits& newLimits) {
    const std::lock_guard lock(mutex);
    limits = newLimits;
    roomMade.notify_all();
}

void PacketQueues::Open() {
    const std::lock_guard lock(mutex);
    for (Lane& lane : lanes) {
        lane.packets.clear();
        lane.next = 0;
    }
    readers = {};
    bytes = 0;
    finished = false;
    open = true;
}

void PacketQueues::Close() {
    const std::lock_guard lock(mutex);
    open = false;
    roomMade.notify_all();
    packetCame.notify_all();
}

void PacketQueues::OpenReader(StreamKind kind, int stream, DemuxTime from) {
    const std::lock_guard lock(mutex);
    ReaderOf(kind) = {stream, true, false};
    if (stream >= 0) {
        Lane& lane = lanes[static_cast<std::size_t>(stream)];
        const auto first = std::find_if(lane.packets.begin(), lane.packets.end(),
                                        [&](const SharedPacket& packet) { return EndOf(*packet) > from; });
        lane.next = static_cast<std::size_t>(first - lane.packets.begin());
    }
    roomMade.notify_all();
    packetCame.notify_all();
}

void PacketQueues::CloseReader(StreamKind kind) {
    const std::lock_guard lock(mutex);
    ReaderOf(kind).open = false;
    roomMade.notify_all();
    packetCame.notify_all();
}

void PacketQueues::Abandon(StreamKind kind) {
    const std::lock_guard lock(mutex);
    Reader& reader = ReaderOf(kind);
    reader.abandoned = true;
    if (reader.stream >= 0) {
        Lane& lane = lanes[static_cast<std::size_t>(reader.stream)];
        while (!lane.packets.empty() && !Keeps(lane)) {
            DropFront(lane);
        }
    }
    roomMade.notify_all();
}

bool PacketQueues::IsSelected(const Lane& lane) const {
    const Reader& reader = readers[static_cast<std::size_t>(lane.kind)];
    return reader.open && !reader.abandoned && reader.stream == static_cast<int>(&lane - lanes.data());
}

bool PacketQueues::IsLive(const Reader& reader) const {
    return reader.open && !reader.abandoned && reader.stream >= 0;
}

bool PacketQueues::Keeps(const Lane& lane) const {
    return lane.kind == StreamKind::Audio || IsSelected(lane);
}

bool PacketQueues::IsAheadEnough(const Lane& lane) const {
    const std::size_t ahead = lane.packets.size() - lane.next;
    if (ahead >= limits.packets) {
        return true;
    }
    if (ahead < 2) {
        return false;
    }
    return EndOf(*lane.packets.back()) - lane.packets[lane.next]->start.value_or(0) >= limits.span;
}

bool PacketQueues::IsFull() const {
    if (bytes >= limits.bytes) {
        return true;
    }
    const Reader& subtitles = readers[static_cast<std::size_t>(StreamKind::Subtitle)];
    bool someLive = false;
    for (const Reader& reader : readers) {
        if (&reader == &subtitles || !IsLive(reader)) {
            continue;
        }
        someLive = true;
        if (!IsAheadEnough(lanes[static_cast<std::size_t>(reader.stream)])) {
            return false;
        }
    }
    if (someLive || !IsLive(subtitles)) {
        return true;
    }
    return IsAheadEnough(lanes[static_cast<std::size_t>(subtitles.stream)]);
}

void PacketQueues::DropFront(Lane& lane) {
    bytes -= lane.packets.front()->Bytes();
    lane.packets.pop_front();
    if (lane.next > 0) {
        --lane.next;
    }
}

// Lets go of sound that no track switch will ask for any more.
void PacketQueues::Trim(Lane& lane) {
    while (!lane.packets.empty() && (lane.next > 0 || !IsSelected(lane)) &&
           EndOf(*lane.packets.front()) < playPosition - kKeptBehind) {
        DropFront(lane);
    }
}

bool PacketQueues::Push(DemuxPacket packet) {
    auto shared = std::make_shared<const DemuxPacket>(std::move(packet));
    std::unique_lock lock(mutex);
    roomMade.wait(lock, [&] { return !open || !IsFull(); });
    if (!open) {
        return false;
    }
    Lane& lane = lanes[static_cast<std::size_t>(shared->stream)];
    if (!Keeps(lane)) {
        return true;
    }
    bytes += shared->Bytes();
    lane.packets.push_back(std::move(shared));
    if (lane.kind == StreamKind::Audio) {
        Trim(lane);
    }
    packetCame.notify_all();
    return true;
}

void PacketQueues::Finish() {
    const std::lock_guard lock(mutex);
    finished = true;
    packetCame.notify_all();
}

PacketQueues::PopResult PacketQueues::Pop(StreamKind kind, SharedPacket& packet) {
    std::unique_lock lock(mutex);
    for (;;) {
        const Reader& reader = ReaderOf(kind);
        if (!open || !reader.open) {
            return PopResult::Closed;
        }
        if (reader.stream < 0) {
            return PopResult::End;
        }
        Lane& lane = lanes[static_cast<std::size_t>(reader.stream)];
        if (lane.next < lane.packets.size()) {
            packet = lane.packets[lane.next++];
            if (lane.kind == StreamKind::Audio) {
                Trim(lane);
            } else {
                DropFront(lane);
            }
            roomMade.notify_all();
            return PopResult::Packet;
        }
        if (finished) {
            return PopResult::End;
        }
        packetCame.wait(lock);
    }
}

void PacketQueues::SetPlayPosition(DemuxTime position) {
    const std::lock_guard lock(mutex);
    playPosition = position;
    for (Lane& lane : lanes) {
        if (lane.kind == StreamKind::Audio) {
            Trim(lane);
        }
    }
}

std::size_t PacketQueues::Bytes() {
    const std::lock_guard lock(mutex);
    return bytes;
}

} // namespace brindlecast
