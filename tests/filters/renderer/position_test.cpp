#include "tests/filters/renderer/renderer_bench.h"

#include <gtest/gtest.h>

namespace brindlecast::test {
namespace {

LONGLONG PositionOf(const RendererBench& bench) {
    LONGLONG position = -1;
    EXPECT_EQ(bench.seeking->GetCurrentPosition(&position), S_OK);
    return position;
}

TEST(PositionTest, FormatsAndUnconnected) {
    const auto filter = RendererModule().CreateFilter(kClsidMpcVideoRenderer);
    const auto seeking = Query<IMediaSeeking>(filter, IID_IMediaSeeking);
    EXPECT_EQ(seeking->IsFormatSupported(&TIME_FORMAT_MEDIA_TIME), S_OK);
    EXPECT_EQ(seeking->IsFormatSupported(&TIME_FORMAT_FRAME), S_FALSE);
    EXPECT_EQ(seeking->SetTimeFormat(&TIME_FORMAT_MEDIA_TIME), S_OK);
    EXPECT_TRUE(FAILED(seeking->SetTimeFormat(&TIME_FORMAT_FRAME)));
    LONGLONG value = 0;
    EXPECT_EQ(seeking->GetCurrentPosition(&value), E_NOTIMPL);
    EXPECT_EQ(seeking->GetDuration(&value), E_NOTIMPL);
    EXPECT_EQ(seeking->GetCurrentPosition(nullptr), E_POINTER);
    const auto flags = Query<IAMFilterMiscFlags>(filter, IID_IAMFilterMiscFlags);
    ASSERT_TRUE(flags);
    EXPECT_EQ(flags->GetMiscFlags(), static_cast<ULONG>(AM_FILTER_MISC_FLAGS_IS_RENDERER));
}

// Paused: the shown frame. Running: segment start + (clock - start) * rate. At the end: the end of the last
// frame.
TEST(PositionTest, FollowsFrameThenClock) {
    PictureKind kind;
    RendererBench bench(kind);
    bench.AttachWindow();
    ASSERT_TRUE(SUCCEEDED(bench.graph->Pause()));
    bench.source->Pin().DeliverNewSegment({100'000'000, 1'000'000'000, 2.0});
    EXPECT_EQ(PositionOf(bench), 100'000'000) << "nothing shown yet";
    ASSERT_EQ(bench.Push(MakePicture(kind, kRed), 200'000, 600'000), S_OK);
    ASSERT_TRUE(PumpUntil([&] { return PositionOf(bench) == 100'400'000; }, 3000)) << PositionOf(bench);
    Pump(100);
    EXPECT_EQ(PositionOf(bench), 100'400'000) << "a paused position stands";

    ComPtr<IReferenceClock> clock;
    ASSERT_EQ(bench.filter->GetSyncSource(clock.GetAddressOf()), S_OK);
    ASSERT_TRUE(clock);
    REFERENCE_TIME now = 0;
    clock->GetTime(&now);
    const REFERENCE_TIME start = now + 1'000'000;
    ASSERT_EQ(bench.filter->Run(start), S_OK);
    EXPECT_GE(PositionOf(bench), 100'000'000) << "never before the segment";
    Pump(300);
    REFERENCE_TIME before = 0;
    REFERENCE_TIME after = 0;
    clock->GetTime(&before);
    const LONGLONG position = PositionOf(bench);
    clock->GetTime(&after);
    EXPECT_GE(position, 100'000'000 + (before - start) * 2);
    EXPECT_LE(position, 100'000'000 + (after - start) * 2);

    ASSERT_EQ(bench.source->Pin().DeliverEndOfStream(), S_OK);
    EXPECT_TRUE(PumpUntil([&] { return PositionOf(bench) == 101'200'000; }, 2000)) << PositionOf(bench);
}

// A seek has moved on, its segment is still on its way: the old place is no answer, the source is asked.
TEST(PositionTest, AsksTheSourceBetweenFlushAndSegment) {
    PictureKind kind;
    RendererBench bench(kind);
    bench.AttachWindow();
    ASSERT_TRUE(SUCCEEDED(bench.graph->Pause()));
    bench.source->Pin().DeliverNewSegment({100'000'000, 1'000'000'000, 1.0});
    EXPECT_EQ(PositionOf(bench), 100'000'000);
    ASSERT_EQ(bench.source->Pin().DeliverBeginFlush(), S_OK);
    // From a streaming thread that has not seen the flush yet.
    bench.source->Pin().DeliverNewSegment({200'000'000, 1'000'000'000, 1.0});
    ASSERT_EQ(bench.source->Pin().DeliverEndFlush(), S_OK);
    LONGLONG position = 0;
    EXPECT_EQ(bench.seeking->GetCurrentPosition(&position), E_NOTIMPL) << "this source can't tell";
    bench.source->Pin().DeliverNewSegment({300'000'000, 1'000'000'000, 1.0});
    EXPECT_EQ(PositionOf(bench), 300'000'000);
}

} // namespace
} // namespace brindlecast::test
