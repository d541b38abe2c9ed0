#include "tests/filters/renderer/renderer_bench.h"

#include <gtest/gtest.h>

#include <amvideo.h>
#include <evcode.h>

namespace brindlecast::test {
namespace {

Color Grey(int frame) {
    const int level = 20 + frame * 4;
    return {level, level, level};
}

struct Quality {
    int drawn = 0;
    int dropped = 0;
    int mean = 0;
    int largest = 0;
};

Quality ReadQuality(const ComPtr<IBaseFilter>& filter) {
    const auto counters = Query<IQualProp>(filter, IID_IQualProp);
    Quality quality;
    counters->get_FramesDrawn(&quality.drawn);
    counters->get_FramesDroppedInRenderer(&quality.dropped);
    counters->get_AvgSyncOffset(&quality.mean);
    counters->get_DevSyncOffset(&quality.largest);
    return quality;
}

void PushFilm(RendererBench& bench, int frames, std::int64_t duration) {
    for (int i = 0; i < frames; ++i) {
        if (bench.Push(MakePicture(bench.kind, Grey(i)), i * duration, (i + 1) * duration) != S_OK) {
            return;
        }
    }
    bench.source->Pin().DeliverEndOfStream();
}

// 50 frames at 25 a second, in order, each at its time. The bounds leave room for a machine that does other
// work as well; a renderer that does not wait, or waits for the wrong time, is far outside.
TEST(TimingTest, FramesInOrderAtTheirTime) {
    PictureKind kind;
    kind.width = 160;
    kind.height = 90;
    RendererBench bench(kind, 160, 90);
    bench.AttachWindow();
    ASSERT_TRUE(SUCCEEDED(bench.graph->Pause()));
    bench.source->Pin().DeliverNewSegment({0, 1'000'000'000, 1.0});
    Pusher pusher([&] { PushFilm(bench, 50, 400'000); });
    const ULONGLONG began = GetTickCount64();
    ASSERT_TRUE(SUCCEEDED(bench.graph->Run()));
    int last = -1;
    int seen = 0;
    bool complete = false;
    ASSERT_TRUE(PumpUntil(
        [&] {
            const Color color = bench.Screen().At(80, 45);
            const int frame = (color.green - 20 + 2) / 4;
            const bool grey = Distance(color, {color.green, color.green, color.green}) <= 2;
            if (grey && color.green >= 18 && frame != last) {
                EXPECT_GT(frame, last);
                last = frame;
                ++seen;
            }
            complete = complete || bench.graph->WaitForEvent(EC_COMPLETE, 10);
            return complete && last == 49;
        },
        8000))
        << last;
    EXPECT_GT(seen, 15);
    const Quality quality = ReadQuality(bench.filter);
    EXPECT_EQ(quality.drawn + quality.dropped, 50);
    EXPECT_GE(quality.drawn, 30);
    EXPECT_LE(quality.mean, 60);
    EXPECT_LE(quality.largest, 300);
    EXPECT_GE(GetTickCount64() - began, 1900U);
    std::printf("25 fps: drawn %d dropped %d, mean offset %d ms, largest %d ms\n", quality.drawn,
                quality.dropped, quality.mean, quality.largest);
}

// Frames that come too late are dropped, but the picture never stands still for long.
TEST(TimingTest, LateFramesAreDroppedAndTheFilmGoesOn) {
    PictureKind kind;
    kind.width = 160;
    kind.height = 90;
    RendererBench bench(kind, 160, 90);
    bench.AttachWindow();
    bench.ShowPaused(MakePicture(kind, Grey(0)));
    ASSERT_TRUE(SUCCEEDED(bench.graph->Run()));
    Pump(1500); // the sender sleeps: everything that follows is late
    Pusher pusher([&] {
        for (int i = 1; i < 31; ++i) {
            bench.Push(MakePicture(kind, Grey(i)), i * 400'000, (i + 1) * 400'000);
            Sleep(20);
        }
    });
    pusher.Join();
    Pump(100);
    const Quality quality = ReadQuality(bench.filter);
    EXPECT_GE(quality.dropped, 15);
    EXPECT_GE(quality.drawn, 3);
    EXPECT_EQ(quality.drawn + quality.dropped, 31);
}

// Frames before the segment's start are not shown, neither by their time nor by their mark.
TEST(TimingTest, PrerollIsNotShown) {
    PictureKind kind;
    RendererBench bench(kind);
    bench.AttachWindow();
    ASSERT_TRUE(SUCCEEDED(bench.graph->Pause()));
    ASSERT_EQ(bench.Push(MakePicture(kind, kRed), -800'000, -400'000), S_OK);
    const auto blue = MakePicture(kind, kBlue);
    PushSource::Options preroll;
    preroll.start = 0;
    preroll.stop = 400'000;
    preroll.preroll = true;
    ASSERT_EQ(bench.source->Push(blue.data(), blue.size(), preroll), S_OK);
    FILTER_STATE state{};
    EXPECT_EQ(bench.filter->GetState(50, &state), VFW_S_STATE_INTERMEDIATE);
    ASSERT_EQ(bench.Push(MakePicture(kind, kGreen), -200'000, 200'000), S_OK); // reaches into the segment
    EXPECT_LE(Distance(bench.WaitForColor(200, 150, kGreen), kGreen), 2);
    EXPECT_EQ(ReadQuality(bench.filter).drawn, 1);
}

TEST(TimingTest, WithoutAClockFramesGoOutAsTheyCome) {
    PictureKind kind;
    kind.width = 160;
    kind.height = 90;
    RendererBench bench(kind, 160, 90);
    bench.AttachWindow();
    bench.graph->RemoveClock();
    ASSERT_TRUE(SUCCEEDED(bench.graph->Run()));
    const ULONGLONG began = GetTickCount64();
    Pusher pusher([&] { PushFilm(bench, 20, 10'000'000); });
    EXPECT_TRUE(bench.WaitForEvent(EC_COMPLETE, 15000));
    EXPECT_LE(GetTickCount64() - began, 10'000U) << "20 seconds of film";
    EXPECT_EQ(ReadQuality(bench.filter).drawn, 20);
}

// A change of size and shape in the stream.
TEST(TimingTest, FormatChangeInTheStream) {
    PictureKind kind;
    RendererBench bench(kind);
    bench.AttachWindow();
    bench.ShowPaused(MakePicture(kind, kRed));
    ASSERT_TRUE(SUCCEEDED(bench.graph->Run()));
    PictureKind other{Format::Nv12, Matrix::Bt601, true, 200, 120, 4, 3};
    const MediaType type = TypeOf(other);
    const auto picture = MakePicture(other, kGreen);
    PushSource::Options options;
    options.start = 1'000'000;
    options.stop = 1'400'000;
    options.formatChange = &type;
    ASSERT_EQ(bench.source->Push(picture.data(), picture.size(), options), S_OK);
    EXPECT_LE(Distance(bench.WaitForColor(200, 150, kGreen), kGreen), 2);
    LONG width = 0;
    LONG height = 0;
    ASSERT_EQ(bench.basicVideo->GetVideoSize(&width, &height), S_OK);
    EXPECT_EQ(width, 160);
    EXPECT_EQ(height, 120);
    EXPECT_TRUE(bench.WaitForEvent(EC_VIDEO_SIZE_CHANGED, 2000));
}

// Full HD at 30 frames a second. How many frames come depends on the machine and what else runs on it, so
// the numbers are recorded; that the film keeps moving and keeps its time does not depend on it.
TEST(TimingTest, FullHdKeepsItsTime) {
    PictureKind kind{Format::Nv12, Matrix::Bt709, false, 1920, 1080};
    kind.frameDuration = 333'333;
    RendererBench bench(kind, 1600, 900);
    bench.AttachWindow();
    const auto first = MakePicture(kind, kRed);
    const auto second = MakePicture(kind, kBlue);
    ASSERT_TRUE(SUCCEEDED(bench.graph->Pause()));
    Pusher pusher([&] {
        for (int i = 0; i < 90; ++i) {
            if (bench.Push(i % 2 == 0 ? first : second, i * 333'333LL, (i + 1) * 333'333LL) != S_OK) {
                return;
            }
        }
        bench.source->Pin().DeliverEndOfStream();
    });
    const ULONGLONG began = GetTickCount64();
    ASSERT_TRUE(SUCCEEDED(bench.graph->Run()));
    EXPECT_TRUE(bench.WaitForEvent(EC_COMPLETE, 10000));
    EXPECT_NEAR(static_cast<double>(GetTickCount64() - began), 3200.0, 1000.0);
    const Quality quality = ReadQuality(bench.filter);
    RecordProperty("drawn", quality.drawn);
    RecordProperty("dropped", quality.dropped);
    RecordProperty("mean_ms", quality.mean);
    RecordProperty("largest_ms", quality.largest);
    EXPECT_GE(quality.drawn, 10);
    EXPECT_EQ(quality.drawn + quality.dropped, 90);
}

} // namespace
} // namespace brindlecast::test
