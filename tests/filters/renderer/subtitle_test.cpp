#include "tests/filters/renderer/renderer_bench.h"
#include "tests/filters/renderer/subtitle_fake.h"

#include <gtest/gtest.h>

namespace brindlecast::test {
namespace {

bool Same(const RECT& a, const RECT& b) {
    return EqualRect(&a, &b) != FALSE;
}

// What half-transparent yellow over a colour gives.
Color UnderYellow(const Color& color) {
    return {128 + color.red / 2, 128 + color.green / 2, color.blue / 2};
}

TEST(SubtitleTest, DrawsWithTheRightTimesAndRectangles) {
    PictureKind kind{Format::Nv12, Matrix::Bt601, false, 320, 240, 16, 9};
    RendererBench bench(kind, 400, 300);
    const ComPtr<FakeSubtitles> fake = FakeSubtitles::Create();
    fake->area = {180, 200, 220, 220};
    ASSERT_EQ(bench.subtitles->SetCallback11(fake.Get()), S_OK);
    bench.AttachWindow();
    bench.Place(400, 300, {0, 37, 400, 262});
    ASSERT_EQ(bench.options->Flt_SetInt("rotation", 180), S_OK);
    ASSERT_EQ(bench.options->Flt_SetBool("flip", true), S_OK);
    ASSERT_TRUE(SUCCEEDED(bench.graph->Pause()));
    bench.source->Pin().DeliverNewSegment({50'000'000, 1'000'000'000, 2.0});
    ASSERT_EQ(bench.Push(MakePicture(kind, kBlue), 300'000, 500'000), S_OK);
    EXPECT_LE(Distance(bench.WaitForColor(200, 210, UnderYellow(kBlue), 3), UnderYellow(kBlue)), 3)
        << "neither turned nor mirrored";
    EXPECT_LE(Distance(bench.Screen().At(200, 100), kBlue), 2);
    EXPECT_LE(Distance(bench.Screen().At(178, 210), kBlue), 2);
    ASSERT_FALSE(fake->Calls().empty());
    const FakeSubtitles::Call call = fake->Calls().back();
    EXPECT_EQ(call.start, 50'600'000);
    EXPECT_EQ(call.stop, 51'000'000);
    EXPECT_EQ(call.duration, kind.frameDuration);
    EXPECT_TRUE(Same(call.video, {0, 37, 400, 262}));
    EXPECT_TRUE(Same(call.originalVideo, {0, 0, 427, 240}));
    EXPECT_TRUE(Same(call.viewport, {0, 0, 400, 300}));
    EXPECT_EQ(call.stretch, 1.0);
    EXPECT_EQ(call.xOffset, 0);
    EXPECT_EQ(call.flags, 0U);
    EXPECT_EQ(fake->Devices(), std::vector<bool>{true});
}

TEST(SubtitleTest, NothingIsCalledAfterTheCallbackIsTakenAway) {
    PictureKind kind;
    RendererBench bench(kind);
    bench.AttachWindow();
    const ComPtr<FakeSubtitles> fake = FakeSubtitles::Create();
    ASSERT_EQ(bench.subtitles->SetCallback11(fake.Get()), S_OK);
    bench.ShowPaused(MakePicture(kind, kRed));
    EXPECT_LE(Distance(bench.WaitForColor(20, 10, UnderYellow(kRed), 3), UnderYellow(kRed)), 3);
    for (int i = 0; i < 20; ++i) {
        bench.options->Flt_SetBool("cmd_redraw", true);
        Pump(3);
    }
    ASSERT_EQ(bench.subtitles->SetCallback11(nullptr), S_OK);
    const std::size_t calls = fake->Calls().size();
    EXPECT_EQ(fake->Devices(), (std::vector<bool>{true, false})) << "told to let go of the device";
    EXPECT_EQ(fake->AddReference(), 2U) << "no reference is kept";
    fake->ReleaseReference();
    bench.options->Flt_SetBool("cmd_redraw", true);
    EXPECT_LE(Distance(bench.WaitForColor(20, 10, kRed), kRed), 2);
    Pump(100);
    EXPECT_EQ(fake->Calls().size(), calls);
    EXPECT_EQ(fake->Devices().size(), 2U);
}

TEST(SubtitleTest, LetsGoWhenTheFilterGoes) {
    PictureKind kind;
    const ComPtr<FakeSubtitles> fake = FakeSubtitles::Create();
    {
        RendererBench bench(kind);
        bench.AttachWindow();
        ASSERT_EQ(bench.subtitles->SetCallback11(fake.Get()), S_OK);
        bench.ShowPaused(MakePicture(kind, kRed));
        EXPECT_LE(Distance(bench.WaitForColor(20, 10, UnderYellow(kRed), 3), UnderYellow(kRed)), 3);
    }
    EXPECT_EQ(fake->Devices(), (std::vector<bool>{true, false}));
    EXPECT_EQ(fake->AddReference(), 2U);
    fake->ReleaseReference();
}

// The callback's pictures are made for the window: a picture of another size is taken without it.
TEST(SubtitleTest, NotCalledForTheCurrentImage) {
    PictureKind kind;
    RendererBench bench(kind);
    bench.AttachWindow();
    const ComPtr<FakeSubtitles> fake = FakeSubtitles::Create();
    ASSERT_EQ(bench.subtitles->SetCallback11(fake.Get()), S_OK);
    bench.ShowPaused(MakePicture(kind, kRed));
    EXPECT_LE(Distance(bench.WaitForColor(20, 10, UnderYellow(kRed), 3), UnderYellow(kRed)), 3);
    Pump(100);
    const std::size_t calls = fake->Calls().size();
    LONG size = 0;
    ASSERT_EQ(bench.basicVideo->GetCurrentImage(&size, nullptr), S_OK);
    std::vector<LONG> image(static_cast<std::size_t>(size) / 4 + 1);
    ASSERT_EQ(bench.basicVideo->GetCurrentImage(&size, image.data()), S_OK);
    EXPECT_EQ(fake->Calls().size(), calls);
    LPVOID data = nullptr;
    unsigned bytes = 0;
    ASSERT_EQ(bench.options->Flt_GetBin("displayedImage", &data, &bytes), S_OK);
    CoTaskMemFree(data);
    EXPECT_EQ(fake->Calls().size(), calls + 1) << "what the window shows has the subtitles";
}

} // namespace
} // namespace brindlecast::test
