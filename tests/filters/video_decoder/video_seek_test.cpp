#include "tests/filters/video_decoder/video_bench.h"

#include <atomic>
#include <chrono>
#include <thread>

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kPromptly = std::chrono::seconds(2);

class VideoSeek : public ::testing::Test {
protected:
    const MediaStream stream = ReadStream(L"film.mkv", AVMEDIA_TYPE_VIDEO);
    const std::vector<FramePtr> pictures = DecodeStream(stream);

    // The pictures at or after a time, as bytes.
    [[nodiscard]] std::size_t FirstAtOrAfter(Time100ns time) const {
        std::size_t i = 0;
        while (i < pictures.size() && pictures[i]->pts < time) {
            ++i;
        }
        return i;
    }
};

TEST_F(VideoSeek, TheFirstPictureComesWithTheFirstPacket) {
    VideoBench bench(stream);
    for (const Time100ns target : {Time100ns{0}, Time100ns{100'210'000}, Time100ns{20'210'000}}) {
        const std::size_t keyframe = stream.KeyframeBefore(target);
        const Time100ns start = stream.packets[keyframe].start;
        bench.source->FlushAndSegment(start, 200'000'000, 1.0);
        ASSERT_EQ(bench.Push(stream.packets[keyframe], start), S_OK);
        const auto samples = bench.sink->SamplesOfSegment();
        ASSERT_EQ(samples.size(), 1U);
        EXPECT_EQ(samples[0].start, 0);
        EXPECT_TRUE(samples[0].discontinuity);
        EXPECT_TRUE(samples[0].bytes == AsNv12(*pictures[FirstAtOrAfter(start)]));
        // And the pictures after it are complete and right.
        bench.PushFrom(stream, keyframe + 1, start);
        bench.EndOfStream();
        const auto all = bench.sink->SamplesOfSegment();
        const std::size_t first = FirstAtOrAfter(start);
        ASSERT_EQ(all.size(), pictures.size() - first);
        for (std::size_t i = 0; i < all.size(); ++i) {
            ASSERT_EQ(*all[i].start, pictures[first + i]->pts - start);
            ASSERT_TRUE(all[i].bytes == AsNv12(*pictures[first + i])) << i;
        }
    }
}

TEST_F(VideoSeek, PicturesBeforeTheSegmentAreDecodedAndNotShown) {
    VideoBench bench(stream);
    for (const Time100ns start : {Time100ns{110'610'000}, Time100ns{35'410'000}, Time100ns{5'000'000}}) {
        bench.source->FlushAndSegment(start, 200'000'000, 1.0);
        bench.PushFrom(stream, stream.KeyframeBefore(start), start);
        bench.EndOfStream();
        const auto samples = bench.sink->SamplesOfSegment();
        const std::size_t first = FirstAtOrAfter(start);
        ASSERT_EQ(samples.size(), pictures.size() - first);
        EXPECT_GE(*samples[0].start, 0);
        EXPECT_TRUE(samples[0].bytes == AsNv12(*pictures[first]));
    }
}

TEST_F(VideoSeek, ASegmentThatStartsWithinAPictureBeginsWithIt) {
    VideoBench bench(stream);
    constexpr Time100ns kInThePicture = 110'810'000; // half of its time is over
    const std::size_t first = FirstAtOrAfter(kInThePicture) - 1;
    bench.source->FlushAndSegment(kInThePicture, 200'000'000, 1.0);
    bench.PushFrom(stream, stream.KeyframeBefore(kInThePicture), kInThePicture);
    bench.EndOfStream();
    const auto samples = bench.sink->SamplesOfSegment();
    ASSERT_EQ(samples.size(), pictures.size() - first);
    EXPECT_EQ(*samples[0].start, pictures[first]->pts - kInThePicture);
    EXPECT_EQ(*samples[0].stop, *samples[1].start);
    EXPECT_TRUE(samples[0].bytes == AsNv12(*pictures[first]));
}

TEST_F(VideoSeek, SegmentsAndFlushesPassOnInOrder) {
    VideoBench bench(stream);
    bench.source->Pin().DeliverNewSegment({5, 7, 2.0});
    bench.source->FlushAndSegment(10, 20, 0.5);
    const auto events = bench.sink->Events();
    using Kind = RecordingSink::Kind;
    ASSERT_EQ(events.size(), 4U);
    EXPECT_EQ(events[0].kind, Kind::NewSegment);
    EXPECT_EQ(events[0].segment.rate, 2.0);
    EXPECT_EQ(events[1].kind, Kind::BeginFlush);
    EXPECT_EQ(events[2].kind, Kind::EndFlush);
    EXPECT_EQ(events[3].kind, Kind::NewSegment);
    EXPECT_EQ(events[3].segment.start, 10);
    EXPECT_EQ(events[3].segment.stop, 20);
    EXPECT_EQ(events[3].segment.rate, 0.5);
}

TEST_F(VideoSeek, AFlushFreesABlockedDelivery) {
    VideoBench bench(stream);
    bench.sink->Block(true);
    std::atomic<HRESULT> result{E_PENDING};
    std::thread streaming([&] {
        for (std::size_t i = 0; i < 20 && result != S_FALSE; ++i) {
            result = bench.Push(stream.packets[i], 0);
        }
    });
    for (int i = 0; i < 500 && !bench.sink->IsBlocking(); ++i) {
        Sleep(10);
    }
    ASSERT_TRUE(bench.sink->IsBlocking());
    const auto begin = Clock::now();
    EXPECT_EQ(bench.source->Pin().DeliverBeginFlush(), S_OK);
    streaming.join();
    EXPECT_LT(Clock::now() - begin, kPromptly);
    EXPECT_EQ(result, S_FALSE);
    bench.sink->Block(false);
    EXPECT_EQ(bench.source->Pin().DeliverEndFlush(), S_OK);
    bench.sink->Clear();
    const std::size_t keyframe = stream.KeyframeBefore(100'210'000);
    const Time100ns start = stream.packets[keyframe].start;
    bench.source->Pin().DeliverNewSegment({start, 200'000'000, 1.0});
    bench.PushFrom(stream, keyframe, start);
    bench.EndOfStream();
    EXPECT_EQ(bench.sink->Samples().size(), pictures.size() - FirstAtOrAfter(start));
}

TEST_F(VideoSeek, StopFreesABlockedDeliveryAndPlayingStartsAfresh) {
    VideoBench bench(stream);
    bench.sink->Block(true);
    std::atomic<bool> left{false};
    std::thread streaming([&] {
        for (std::size_t i = 0; i < 20 && bench.Push(stream.packets[i], 0) == S_OK; ++i) {
        }
        left = true;
    });
    for (int i = 0; i < 500 && !bench.sink->IsBlocking(); ++i) {
        Sleep(10);
    }
    ASSERT_TRUE(bench.sink->IsBlocking());
    const auto begin = Clock::now();
    EXPECT_EQ(bench.graph.Stop(), S_OK);
    streaming.join();
    EXPECT_LT(Clock::now() - begin, kPromptly);
    EXPECT_TRUE(left);
    bench.sink->Block(false);
    bench.sink->Clear();
    ASSERT_TRUE(SUCCEEDED(bench.graph.Pause()));
    bench.PushFrom(stream, 0, 0);
    bench.EndOfStream();
    EXPECT_EQ(bench.sink->Samples().size(), 500U);
}

TEST_F(VideoSeek, ARefusingReceiverEndsTheDelivery) {
    VideoBench bench(stream);
    bench.sink->Refuse(S_FALSE);
    EXPECT_EQ(bench.Push(stream.packets[0], 0), S_FALSE);
    EXPECT_EQ(bench.sink->Samples().size(), 0U);
}

TEST_F(VideoSeek, EndOfStreamComesEvenWithoutAnyPicture) {
    VideoBench bench(stream);
    bench.EndOfStream();
    ASSERT_EQ(bench.sink->Events().size(), 1U);
    EXPECT_EQ(bench.sink->Events()[0].kind, RecordingSink::Kind::EndOfStream);
}

TEST(VideoLifetime, FiftyFiltersComeAndGoAndTheModuleCanBeUnloaded) {
    const MediaStream stream = ReadStream(L"short.mkv", AVMEDIA_TYPE_VIDEO);
    EXPECT_EQ(VideoModule().CanUnload(), S_OK);
    for (int i = 0; i < 50; ++i) {
        VideoBench bench(stream);
        EXPECT_EQ(VideoModule().CanUnload(), S_FALSE);
        for (std::size_t packet = 0; packet < 12; ++packet) {
            ASSERT_EQ(bench.Push(stream.packets[packet], 0), S_OK);
        }
        if (i % 2 == 0) {
            ASSERT_TRUE(SUCCEEDED(bench.graph.Run()));
        }
        ASSERT_GE(bench.sink->Count(RecordingSink::Kind::Sample), 1U);
    }
    EXPECT_EQ(VideoModule().CanUnload(), S_OK);
}

} // namespace
} // namespace brindlecast
