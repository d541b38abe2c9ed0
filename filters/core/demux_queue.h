#pragma once

#include "filters/core/demux_file.h"

#include <array>
#include <condition_variable>
#include <memory>
#include <mutex>

namespace brindlecast {

// How much the demux thread may read ahead.
struct QueueLimits {
    std::size_t bytes = 256u << 20; // of all queues together
    std::size_t packets = 500;      // in one queue: that is ahead enough
    DemuxTime span = 20'000'000;    // from first to last packet of one queue: that is ahead enough
};

using SharedPacket = std::shared_ptr<const DemuxPacket>;

// The packets between one demux thread and one reader thread per kind of stream.
//
// There is a queue for every stream. A kind's reader takes from the one that is selected for it. Sound
// streams keep their packets from shortly before the play position on, selected or not, so that a track
// switch goes on at once. Other unselected streams keep nothing.
//
// The writer waits while every live reader's queue is ahead enough, or all of them hold too many bytes. A
// live reader is one of video or sound that was opened and has a selected stream; subtitles are too sparse
// to wait for.
class PacketQueues {
public:
    PacketQueues() = default;

    // Sets the streams by kind, in the order of DemuxFile::Streams, and empties everything.
    void Configure(std::vector<StreamKind> kinds);
    void SetLimits(const QueueLimits& newLimits);

    // Empties the queues for a new start; writer and readers may come. All readers are closed.
    void Open();
    // Ends every wait; Push and Pop refuse.
    void Close();

    // Selects the stream of a kind and lets its reader in. -1: the reader meets the end at once. Packets
    // that end before `from` are skipped. While Open.
    void OpenReader(StreamKind kind, int stream, DemuxTime from);
    // Ends the waits of that reader and makes its stream no longer live.
    void CloseReader(StreamKind kind);
    // The reader wants nothing more; its packets are dropped and nobody waits for it.
    void Abandon(StreamKind kind);

    // Waits for room. False when closed.
    bool Push(DemuxPacket packet);
    // No more packets will come.
    void Finish();

    enum class PopResult { Packet, End, Closed };
    // Waits for a packet, the end, or closing.
    PopResult Pop(StreamKind kind, SharedPacket& packet);

    // Sound that ends well before this is no longer kept for track switches.
    void SetPlayPosition(DemuxTime position);

    [[nodiscard]] std::size_t Bytes();

private:
    struct Lane {
        StreamKind kind = StreamKind::Video;
        std::deque<SharedPacket> packets;
        std::size_t next = 0; // of the selected lane: what its reader takes next; what lies before is kept
    };
    struct Reader {
        int stream = -1;
        bool open = false;
        bool abandoned = false;
    };

    [[nodiscard]] Reader& ReaderOf(StreamKind kind) { return readers[static_cast<std::size_t>(kind)]; }
    [[nodiscard]] bool IsSelected(const Lane& lane) const;
    [[nodiscard]] bool IsLive(const Reader& reader) const;
    [[nodiscard]] bool IsAheadEnough(const Lane& lane) const;
    [[nodiscard]] bool IsFull() const;
    [[nodiscard]] bool Keeps(const Lane& lane) const;
    void DropFront(Lane& lane);
    void Trim(Lane& lane);

    std::mutex mutex;
    std::condition_variable roomMade;
    std::condition_variable packetCame;
    QueueLimits limits;
    std::vector<Lane> lanes;
    std::array<Reader, 3> readers;
    std::size_t bytes = 0;
    DemuxTime playPosition = 0;
    bool open = false;
    bool finished = false;
};

} // namespace brindlecast
