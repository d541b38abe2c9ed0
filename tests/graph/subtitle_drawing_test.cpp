#include "tests/graph/subtitle_drawing_fixture.h"

#include <cstdlib>

// Subtitles over a frame, drawn with the device and the shaders of the real renderer and read back.

namespace brindlecast::testing {
namespace {

using SubtitleDrawing = SubtitleDrawingTest;

TEST_F(SubtitleDrawing, ThePictureIsBlendedOverTheFrame) {
    LoadBlocks();
    Target target = MakeTarget();
    EXPECT_EQ(S_OK, RenderOn(target, Whole()));
    ExpectPicture(target, Whole());
    const Canvas& seen = target.Read();
    EXPECT_EQ(kRed, seen.At(20, 20));
    EXPECT_EQ(kFrameColor, seen.At(5, 5));
    // Half of green over the frame: 127 and 128 parts of 255.
    EXPECT_NEAR(172.2, seen.At(120, 70).green, 1);
    EXPECT_NEAR(100.4, seen.At(120, 70).red, 1);
    EXPECT_NEAR(20.1, seen.At(120, 70).blue, 1);
    EXPECT_NEAR(255, seen.At(120, 70).alpha, 1);
}

TEST_F(SubtitleDrawing, ItCoversTheVideoAndNothingElse) {
    LoadBlocks();
    Target target = MakeTarget({400, 300});
    const RECT video{50, 40, 250, 140};
    EXPECT_EQ(S_OK, RenderOn(target, video));
    ExpectPicture(target, video);
}

TEST_F(SubtitleDrawing, ItsPartOutsideTheTargetIsCutOff) {
    LoadBlocks();
    Target target = MakeTarget();
    const RECT video{-40, -20, 160, 80};
    EXPECT_EQ(S_OK, RenderOn(target, video));
    ExpectPicture(target, video);
    Target beyond = MakeTarget();
    EXPECT_EQ(S_OK, RenderOn(beyond, {100, 50, 300, 150}));
    ExpectPicture(beyond, {100, 50, 300, 150});
}

TEST_F(SubtitleDrawing, TheStepsOfTheFirstFrameAreTraced) {
    LoadBlocks();
    const Target target = MakeTarget({400, 300});
    EXPECT_EQ(S_OK, RenderOn(target, {50, 40, 350, 240}));
    EXPECT_EQ((Lines{L"SetRenderSize: 300x200", L"libass: frame=300x200",
                     L"Render11: video=300x200, viewport=(0,0,400,300)", L"libass event count: 3",
                     L"Total events loaded: 3", L"Subtitle texture created: 300x200"}),
              TakeLastingLines());
    EXPECT_EQ(S_OK, RenderOn(target, {50, 40, 350, 240}));
    EXPECT_EQ(S_OK, RenderOn(target, {0, 0, 300, 200}, kWithin + 400'000));
    EXPECT_EQ(Lines{}, TakeLastingLines()) << "the same size, wherever it stands";
}

TEST_F(SubtitleDrawing, AChangeOfSizeRendersAnew) {
    LoadBlocks();
    for (const Size size : {Size{200, 100}, Size{400, 300}, Size{201, 100}, Size{200, 100}, Size{1, 1}}) {
        TakeLines();
        Target target = MakeTarget({400, 300});
        EXPECT_EQ(S_OK, RenderOn(target, Whole(size)));
        ExpectPicture(target, Whole(size));
        const std::wstring text = std::to_wstring(size.width) + L"x" + std::to_wstring(size.height);
        const Lines traced = TakeLastingLines();
        EXPECT_EQ(1, std::ranges::count(traced, L"Render11: video=" + text + L", viewport=(0,0,400,300)"));
        EXPECT_EQ(1, std::ranges::count(traced, L"Subtitle texture created: " + text));
    }
}

TEST_F(SubtitleDrawing, EachFrameGetsThePictureOfItsTime) {
    ASSERT_TRUE(manager.Load(folder.Write(
        u8"a.ass", AssScript(kVideo, {{.place = {0, 0, 100, 50}},
                                      {"0:00:02.00", "0:00:03.00", {100, 50, 200, 100}, "00FF00"}}))));
    Target target = MakeTarget();
    EXPECT_EQ(S_FALSE, RenderOn(target, Whole(), 9'999'999));
    ExpectUntouched(target);
    EXPECT_EQ(S_OK, RenderOn(target, Whole(), 10'000'000));
    EXPECT_EQ(kRed, target.Read().At(50, 25));
    Target second = MakeTarget();
    EXPECT_EQ(S_OK, RenderOn(second, Whole(), 20'000'000));
    EXPECT_EQ(kGreen, second.Read().At(150, 75));
    EXPECT_EQ(kFrameColor, second.Read().At(50, 25)) << "all of the old picture is gone";
    Target third = MakeTarget();
    EXPECT_EQ(S_FALSE, RenderOn(third, Whole(), 30'000'000));
    ExpectUntouched(third);
    EXPECT_EQ(S_OK, RenderOn(third, Whole(), 10'000'000)) << "back again";
    EXPECT_EQ(kRed, third.Read().At(50, 25));
}

TEST_F(SubtitleDrawing, TheEngineCanSwitchItOffAndOn) {
    LoadBlocks();
    Target target = MakeTarget();
    manager.enabled = false;
    EXPECT_EQ(S_FALSE, RenderOn(target, Whole()));
    ExpectUntouched(target);
    EXPECT_EQ(Lines{}, TakeLines());
    manager.enabled = true;
    EXPECT_EQ(S_OK, RenderOn(target, Whole()));
    ExpectPicture(target, Whole());
}

TEST_F(SubtitleDrawing, WithoutManagerOrSubtitleNothingIsDrawn) {
    Target target = MakeTarget();
    TakeLines();
    EXPECT_EQ(S_FALSE, RenderOn(target, Whole())) << "nothing loaded";
    EXPECT_EQ(Lines{}, TakeLines()) << "not even the size is looked at";
    LoadBlocks();
    callback->manager = nullptr;
    EXPECT_EQ(S_FALSE, RenderOn(target, Whole()));
    callback->manager = &manager;
    manager.Unload();
    EXPECT_EQ(S_FALSE, RenderOn(target, Whole()));
    EXPECT_EQ(Lines{}, TakeLines());
    ExpectUntouched(target);
}

TEST_F(SubtitleDrawing, AVideoWithoutWidthOrHeightLeavesTheSizeAlone) {
    LoadBlocks();
    Target target = MakeTarget();
    EXPECT_EQ(S_OK, RenderOn(target, Whole()));
    TakeLines();
    for (const RECT& video : {RECT{100, 0, 100, 100}, RECT{0, 50, 200, 50}, RECT{5, 5, 5, 5}}) {
        Target other = MakeTarget();
        EXPECT_EQ(S_OK, RenderOn(other, video)) << "it is drawn all the same";
        ExpectUntouched(other);
    }
    EXPECT_EQ(Lines{}, TakeLastingLines());
    Target again = MakeTarget();
    EXPECT_EQ(S_OK, RenderOn(again, Whole()));
    ExpectPicture(again, Whole());
    EXPECT_EQ(Lines{}, TakeLastingLines()) << "the size before still stands";
}

TEST_F(SubtitleDrawing, AFirstVideoWithoutSizeDrawsInTheSizeOfTheManager) {
    LoadBlocks();
    const Target target = MakeTarget();
    EXPECT_EQ(S_OK, RenderOn(target, {0, 0, 0, 100}));
    EXPECT_EQ(
        (Lines{L"libass event count: 3", L"Total events loaded: 3", L"Subtitle texture created: 200x100"}),
        TakeLastingLines());
}

TEST_F(SubtitleDrawing, WithoutDeviceNothingIsDrawnAndANewOneGoesOn) {
    LoadBlocks();
    Target target = MakeTarget();
    EXPECT_EQ(S_OK, RenderOn(target, Whole()));
    EXPECT_EQ(S_OK, callback->SetDevice11(nullptr));
    Target other = MakeTarget();
    TakeLines();
    EXPECT_EQ(S_FALSE, RenderOn(other, Whole()));
    ExpectUntouched(other);
    EXPECT_EQ(Lines{}, TakeLines());

    HRESULT failure = E_FAIL;
    resources->Device().context->ClearState();
    resources = RenderResources::Create(&failure);
    ASSERT_EQ(S_OK, failure);
    EXPECT_EQ(S_OK, callback->SetDevice11(resources->Device().device.Get()));
    EXPECT_EQ(Lines{L"D3D11 Device set: 0x" +
                    FormatText(L"%p", static_cast<const void*>(resources->Device().device.Get())) +
                    L", resources created"},
              TakeLines());
    Target fresh = MakeTarget();
    EXPECT_EQ(S_OK, RenderOn(fresh, Whole()));
    ExpectPicture(fresh, Whole());
    EXPECT_EQ(
        (Lines{L"Render11: video=200x100, viewport=(0,0,200,100)", L"Subtitle texture created: 200x100"}),
        TakeLastingLines())
        << "the manager has the size already, the callback begins anew";
}

TEST_F(SubtitleDrawing, AnotherDeviceTakesThePlaceOfTheFirst) {
    LoadBlocks();
    const Target target = MakeTarget();
    EXPECT_EQ(S_OK, RenderOn(target, Whole()));
    HRESULT failure = E_FAIL;
    std::unique_ptr<RenderResources> second = RenderResources::Create(&failure);
    ASSERT_EQ(S_OK, failure);
    EXPECT_EQ(S_OK, callback->SetDevice11(second->Device().device.Get()));
    resources->Device().context->ClearState();
    resources = std::move(second);
    Target fresh = MakeTarget();
    EXPECT_EQ(S_OK, RenderOn(fresh, Whole()));
    ExpectPicture(fresh, Whole());
}

TEST_F(SubtitleDrawing, NothingOfTheDeviceIsKeptAfterItIsTakenBack) {
    LoadBlocks();
    ID3D11Device* const device = resources->Device().device.Get();
    const auto references = [device] {
        device->AddRef();
        return device->Release();
    };
    EXPECT_EQ(S_OK, callback->SetDevice11(nullptr));
    const ULONG before = references();
    EXPECT_EQ(S_OK, callback->SetDevice11(device));
    {
        const Target target = MakeTarget();
        EXPECT_EQ(S_OK, RenderOn(target, Whole()));
        EXPECT_GT(references(), before);
        // What is bound is held by the context.
        resources->Device().context->ClearState();
        resources->Device().context->Flush();
    }
    EXPECT_EQ(S_OK, callback->SetDevice11(nullptr));
    EXPECT_EQ(before, references());
}

TEST_F(SubtitleDrawing, ACueIsDrawnAsWell) {
    ASSERT_TRUE(manager.Load(folder.Write(u8"a.idx", kSubRip)));
    Target target = MakeTarget();
    EXPECT_EQ(S_OK, RenderOn(target, Whole()));
    ExpectPicture(target, Whole());
    EXPECT_EQ(kWhite, target.Read().At(3, 4));
    EXPECT_EQ((std::vector<DrawnCue>{{L"Hi", kVideo}}), drawnCues);
}

// Lines that come so often in a run are counted in a process of their own.

class SubtitleDrawingDeathTest : public SubtitleDrawingTest {
protected:
    SubtitleDrawingDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
    [[noreturn]] void ExitWithCounts() const {
        const auto updates = std::ranges::count(lines, L"Updated texture: 200x100 from SubPic 200x100");
        const auto draws = std::ranges::count(lines, L"Drew subtitle at viewport (30,10,200,100)");
        const std::string path = WideToUtf8(folder.Path(u8""));
        std::filesystem::remove_all(std::u8string(path.begin(), path.end()));
        std::_Exit(static_cast<int>(updates * 10 + draws));
    }
};

TEST_F(SubtitleDrawingDeathTest, TheFirstFiveUpdatesAndDrawsOfARunAreTraced) {
    EXPECT_EXIT(
        {
            LoadBlocks();
            const Target target = MakeTarget({400, 300});
            for (int frame = 0; frame < 8; ++frame) {
                EXPECT_EQ(S_OK, RenderOn(target, {30, 10, 230, 110}));
                EXPECT_EQ(S_FALSE, RenderOn(target, {30, 10, 230, 110}, kOutside));
            }
            ExitWithCounts();
        },
        ::testing::ExitedWithCode(55), "");
}

} // namespace
} // namespace brindlecast::testing
