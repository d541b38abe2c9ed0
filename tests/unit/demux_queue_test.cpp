#include "filters/core/demux_queue.h"

#include <atomic>
#include <chrono>
#include <gmock/gmock.h>
#include <thread>

extern "C" {
#include <libavcodec/packet.h>
}

namespace brindlecast {
namespace {

using PopResult = PacketQueues::PopResult;
constexpr DemuxTime kFrame = 400'000;
constexpr DemuxTime kFromTheStart = -1'000'000'000;

DemuxPacket Packet(int stream, int number, int bytes = 100) {
    DemuxPacket packet;
    packet.data.reset(av_packet_alloc());
    EXPECT_EQ(av_new_packet(packet.data.get(), bytes), 0);
    packet.stream = stream;
    packet.start = number * kFrame;
    packet.duration = kFrame;
    return packet;
}

// Streams: 0 video, 1 and 2 sound, 3 subtitles.
class DemuxQueue : public testing::Test {
protected:
    void SetUp() override {
        queues.Configure({StreamKind::Video, StreamKind::Audio, StreamKind::Audio, StreamKind::Subtitle});
        queues.Open();
        queues.OpenReader(StreamKind::Video, 0, kFromTheStart);
        queues.OpenReader(StreamKind::Audio, 1, kFromTheStart);
    }

    // Number of the packet that the reader gets, or -1 for anything else.
    int PopNumber(StreamKind kind) {
        SharedPacket packet;
        if (queues.Pop(kind, packet) != PopResult::Packet)
            return -1;
        return static_cast<int>(*packet->start / kFrame);
    }

    // Pushes on a thread of its own until the queues are closed; counts.
    void Feed(int videoBytes, bool withSound) {
        feeder = std::thread([this, videoBytes, withSound] {
            for (int i = 0;; ++i) {
                if (!queues.Push(Packet(0, i, videoBytes)))
                    return;
                if (withSound && !queues.Push(Packet(1, i)))
                    return;
                pushed = i + 1;
            }
        });
    }

    // The number pushed once it no longer grows.
    int PushedAtRest() {
        int before = -1;
        while (before != pushed || before == 0) {
            before = pushed;
            std::this_thread::sleep_for(std::chrono::milliseconds(60));
        }
        return before;
    }

    void TearDown() override {
        queues.Close();
        if (feeder.joinable())
            feeder.join();
    }

    PacketQueues queues;
    std::thread feeder;
    std::atomic<int> pushed{0};
};

TEST_F(DemuxQueue, EachReaderGetsItsStreamInOrderThenTheEnd) {
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(queues.Push(Packet(0, i)));
        ASSERT_TRUE(queues.Push(Packet(1, 10 + i)));
    }
    queues.Finish();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(PopNumber(StreamKind::Video), i);
        EXPECT_EQ(PopNumber(StreamKind::Audio), 10 + i);
    }
    SharedPacket packet;
    EXPECT_EQ(queues.Pop(StreamKind::Video, packet), PopResult::End);
    EXPECT_EQ(queues.Pop(StreamKind::Audio, packet), PopResult::End);
    EXPECT_EQ(queues.Pop(StreamKind::Subtitle, packet), PopResult::Closed);
}

TEST_F(DemuxQueue, ReadingAheadEndsWhenEveryLiveQueueHasEnoughTime) {
    queues.SetLimits({.bytes = 1u << 30, .packets = 100'000, .span = 100 * kFrame});
    Feed(100, true);
    const int ahead = PushedAtRest();
    EXPECT_NEAR(ahead, 100, 2);
    EXPECT_EQ(PopNumber(StreamKind::Video), 0);
    EXPECT_EQ(PopNumber(StreamKind::Audio), 0);
    EXPECT_NEAR(PushedAtRest(), ahead + 1, 1);
}

TEST_F(DemuxQueue, APacketCountIsEnoughAsWell) {
    queues.SetLimits({.bytes = 1u << 30, .packets = 20, .span = 1'000'000 * kFrame});
    Feed(100, true);
    EXPECT_NEAR(PushedAtRest(), 20, 2);
}

TEST_F(DemuxQueue, AStarvingReaderIsFedUntilTheByteLimit) {
    queues.SetLimits({.bytes = 500'000, .packets = 20, .span = 10 * kFrame});
    Feed(1000, false); // sound never comes
    EXPECT_NEAR(PushedAtRest(), 500, 5);
    EXPECT_LE(queues.Bytes(), 501'000u);
}

TEST_F(DemuxQueue, NobodyWaitsForAnAbandonedReader) {
    queues.SetLimits({.bytes = 1u << 30, .packets = 20, .span = 10 * kFrame});
    queues.Abandon(StreamKind::Audio);
    Feed(1000, false);
    EXPECT_LE(PushedAtRest(), 30);
}

TEST_F(DemuxQueue, CloseEndsAWaitingWriterAndAWaitingReader) {
    queues.SetLimits({.bytes = 10'000, .packets = 5, .span = kFrame});
    Feed(1000, true);
    PushedAtRest();
    while (PopNumber(StreamKind::Video) < 4) {
    }
    std::atomic<bool> closed{false};
    queues.OpenReader(StreamKind::Subtitle, 3, kFromTheStart);
    std::thread reader([&] {
        SharedPacket packet;
        closed = queues.Pop(StreamKind::Subtitle, packet) == PopResult::Closed;
    });
    queues.Close();
    reader.join();
    feeder.join();
    EXPECT_TRUE(closed);
    EXPECT_FALSE(queues.Push(Packet(0, 0)));
}

TEST_F(DemuxQueue, AnotherSoundTrackGoesOnFromThePlayPositionNotFromWhereReadingIs) {
    for (int i = 0; i < 50; ++i) {
        ASSERT_TRUE(queues.Push(Packet(1, i)));
        ASSERT_TRUE(queues.Push(Packet(2, i)));
    }
    for (int i = 0; i < 40; ++i)
        EXPECT_EQ(PopNumber(StreamKind::Audio), i);
    queues.SetPlayPosition(30 * kFrame);
    queues.CloseReader(StreamKind::Audio);
    queues.OpenReader(StreamKind::Audio, 2, 30 * kFrame);
    EXPECT_EQ(PopNumber(StreamKind::Audio), 30);
    queues.CloseReader(StreamKind::Audio);
    queues.OpenReader(StreamKind::Audio, 1, 30 * kFrame); // and back, to what has been delivered before
    EXPECT_EQ(PopNumber(StreamKind::Audio), 30);
    EXPECT_EQ(PopNumber(StreamKind::Audio), 31);
}

TEST_F(DemuxQueue, SoundWellBehindThePlayPositionIsLetGo) {
    for (int i = 0; i < 100; ++i) {
        ASSERT_TRUE(queues.Push(Packet(1, i)));
        ASSERT_TRUE(queues.Push(Packet(2, i)));
    }
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(PopNumber(StreamKind::Audio), i);
    EXPECT_EQ(queues.Bytes(), 20'000u);
    queues.SetPlayPosition(100 * kFrame); // a second is kept: 25 packets of each
    EXPECT_NEAR(static_cast<double>(queues.Bytes()), 5'000.0, 300.0);
}

TEST_F(DemuxQueue, SelectedSoundThatIsNotYetReadIsNeverLetGo) {
    for (int i = 0; i < 100; ++i)
        ASSERT_TRUE(queues.Push(Packet(1, i)));
    queues.SetPlayPosition(1000 * kFrame);
    EXPECT_EQ(PopNumber(StreamKind::Audio), 0);
    EXPECT_EQ(PopNumber(StreamKind::Audio), 1);
}

TEST_F(DemuxQueue, AReaderWithoutStreamMeetsTheEnd) {
    queues.OpenReader(StreamKind::Audio, -1, kFromTheStart);
    SharedPacket packet;
    EXPECT_EQ(queues.Pop(StreamKind::Audio, packet), PopResult::End);
}

TEST_F(DemuxQueue, UnselectedSubtitlesTakeNoRoom) {
    ASSERT_TRUE(queues.Push(Packet(3, 0, 5000)));
    EXPECT_EQ(queues.Bytes(), 0u);
}

} // namespace
} // namespace brindlecast
