#include "subtitles/subtitle_manager.h"
#include "tests/e2e/environment.h"
#include "tests/e2e/waits.h"
#include "tests/filters/roads/captured_image.h"
#include "tests/filters/roads/road_fixture.h"
#include "tests/support/ass_script.h"
#include "tests/support/temporary_folder.h"

#include <algorithm>
#include <cstdlib>

// A film with a subtitle beside it, through the real modules: what the renderer shows, captured, against the
// bare frame.

namespace brindlecast::testing {
namespace {

using std::chrono::milliseconds;

constexpr int kWidth = 320;
constexpr int kHeight = 180;
// Below the marks of the frames.
constexpr Rect kPlace{60, 130, 260, 170};

struct Color {
    int red;
    int green;
    int blue;
};

class SubtitleRoad : public RoadTest {
protected:
    // film.mkv has a keyframe each 50 frames. Opens a copy of it with that file beside it, paused.
    void OpenBeside(const std::u8string& name, const std::string& content) {
        ShowHost(kWidth, kHeight);
        ASSERT_TRUE(Open(L"film.mkv")); // for its facts
        const std::wstring copy = folder.Path(u8"film.mkv");
        ASSERT_NE(FALSE, CopyFileW(Media(L"film.mkv").c_str(), copy.c_str(), FALSE));
        static_cast<void>(folder.Write(name, content));
        ASSERT_TRUE(engine->OpenFile(copy));
        ASSERT_TRUE(engine->Play());
        ASSERT_TRUE(PumpUntil(limits::kPicture, [this] { return FrameOnScreen().value_or(0) > 0; }));
        ASSERT_TRUE(SUCCEEDED(engine->control->Pause()));
        engine->state = kEnginePaused;
    }
    void TearDown() override {
        engine->CloseGraph(); // the film's copy goes with the folder
        RoadTest::TearDown();
    }
    void ShowKeyFrame(std::size_t index) {
        ASSERT_LT(index, engine->keyFrames.size());
        ASSERT_TRUE(engine->Seek(static_cast<double>(engine->keyFrames[index]) / 1e7));
        ASSERT_TRUE(WaitForFrame(static_cast<int>(index) * 50));
    }
    [[nodiscard]] Image Shown() { return FromBitmapFile(engine->CaptureDisplayedImage()); }
    [[nodiscard]] Image Bare() { return FromBitmapFile(engine->CaptureCurrentImage()); }
    // The number of pixels of the shown image that are not those of the frame, by more than what decoding
    // and scaling may differ.
    [[nodiscard]] int Changed() {
        const Image shown = Shown();
        const Image bare = Bare();
        EXPECT_EQ(bare.pixels.size(), shown.pixels.size());
        int changed = 0;
        for (std::size_t i = 0; i + 3 < std::min(shown.pixels.size(), bare.pixels.size()); i += 4) {
            changed += std::abs(shown.pixels[i] - bare.pixels[i]) > 8 ||
                               std::abs(shown.pixels[i + 1] - bare.pixels[i + 1]) > 8 ||
                               std::abs(shown.pixels[i + 2] - bare.pixels[i + 2]) > 8
                           ? 1
                           : 0;
        }
        return changed;
    }
    // Whether all of that part of the shown image, less its edges, has the colour.
    [[nodiscard]] static bool IsFilled(const Image& image, const Rect& part, const Color& color) {
        for (int y = part.top + 2; y < part.bottom - 2; ++y) {
            for (int x = part.left + 2; x < part.right - 2; ++x) {
                const std::uint8_t* const pixel =
                    &image.pixels[static_cast<std::size_t>(y * image.width + x) * 4];
                if (std::abs(pixel[0] - color.blue) > 1 || std::abs(pixel[1] - color.green) > 1 ||
                    std::abs(pixel[2] - color.red) > 1) {
                    return false;
                }
            }
        }
        return true;
    }

    const TemporaryFolder folder;
};

constexpr Color kRed{255, 0, 0};
constexpr Color kGreen{0, 255, 0};
constexpr Size kScript{kWidth, kHeight};

// The first three keyframes stand at 0.021, 2.021 and 4.021 seconds.

TEST_F(SubtitleRoad, TextOfASubRipFileIsShownInItsTime) {
    OpenBeside(u8"film.srt", "1\n00:00:02,020 --> 00:00:04,020\n한글 TEXT\n");
    EXPECT_TRUE(Traced(L"[Brindlecast] Render11: video=320x180, viewport=(0,0,320,180)\n"));
    ShowKeyFrame(0);
    EXPECT_EQ(0, Changed());
    ShowKeyFrame(1);
    EXPECT_GT(Changed(), 300);
    ShowKeyFrame(2);
    EXPECT_EQ(0, Changed());
    ShowKeyFrame(1);
    EXPECT_GT(Changed(), 300) << "again, backwards";
}

// Its start and end are those of frames, to the millisecond.
TEST_F(SubtitleRoad, TextThatLibassDoesNotTakeIsShownFromItsStartToBeforeItsEnd) {
    OpenBeside(u8"film.sub", "1\n00:00:02,021 --> 00:00:04,021\nPlain text\n");
    ShowKeyFrame(0);
    EXPECT_EQ(0, Changed());
    ShowKeyFrame(1);
    EXPECT_GT(Changed(), 300);
    ShowKeyFrame(2);
    EXPECT_EQ(0, Changed());
}

TEST_F(SubtitleRoad, EachPixelStandsWhereItBelongs) {
    OpenBeside(u8"film.ass", AssScript(kScript, {{"0:00:02.00", "0:00:04.00", kPlace}}));
    ShowKeyFrame(1);
    const Image shown = Shown();
    EXPECT_TRUE(IsFilled(shown, kPlace, kRed));
    EXPECT_NEAR(kPlace.Width() * kPlace.Height(), Changed(), 2 * (kPlace.Width() + kPlace.Height()))
        << "and nothing else has changed";
    EXPECT_EQ(50, FrameOnScreen());
}

TEST_F(SubtitleRoad, ItFollowsTheVideoInAnotherWindow) {
    OpenBeside(u8"film.ass", AssScript(kScript, {{"0:00:02.00", "0:00:04.00", kPlace}}));
    ShowKeyFrame(1);
    ShowHost(640, 480); // the video is twice as large, 60 below the top
    ASSERT_TRUE(PumpUntil(limits::kPicture, [this] { return Shown().width == 640; }));
    EXPECT_TRUE(PumpUntil(limits::kPicture, [this] {
        return IsFilled(
            Shown(), {2 * kPlace.left, 60 + 2 * kPlace.top, 2 * kPlace.right, 60 + 2 * kPlace.bottom}, kRed);
    }));
    // Whether the window or the picture in it grew first is not told.
    EXPECT_EQ(1, CountTraced(L"[Brindlecast] Render11: video=640x360, viewport="));
    EXPECT_TRUE(Traced(L"[Brindlecast] SetRenderSize: 640x360\n"));
    ShowHost(kWidth, kHeight);
    EXPECT_TRUE(PumpUntil(limits::kPicture, [this] {
        const Image shown = Shown();
        return shown.width == kWidth && IsFilled(shown, kPlace, kRed);
    }));
}

TEST_F(SubtitleRoad, SwitchingAndUnloadingShowWithTheNextDraw) {
    OpenBeside(u8"film.ass", AssScript(kScript, {{"0:00:02.00", "0:00:04.00", kPlace}}));
    ShowKeyFrame(1);
    EXPECT_TRUE(IsFilled(Shown(), kPlace, kRed));
    engine->SetSubtitleEnabled(false);
    engine->RedrawVideo();
    EXPECT_TRUE(PumpUntil(limits::kPicture, [this] { return Changed() == 0; }));
    engine->SetSubtitleEnabled(true);
    engine->RedrawVideo();
    EXPECT_TRUE(PumpUntil(limits::kPicture, [this] { return IsFilled(Shown(), kPlace, kRed); }));
    ASSERT_TRUE(engine->LoadSubtitle(
        folder.Write(u8"other.ass", AssScript(kScript, {{"0:00:02.00", "0:00:04.00", kPlace, "00FF00"}}))));
    engine->RedrawVideo();
    EXPECT_TRUE(PumpUntil(limits::kPicture, [this] { return IsFilled(Shown(), kPlace, kGreen); }));
    EXPECT_FALSE(engine->LoadSubtitle(folder.Path(u8"gone.ass")));
    engine->RedrawVideo();
    EXPECT_TRUE(PumpUntil(limits::kPicture, [this] { return Changed() == 0; }));
}

TEST_F(SubtitleRoad, ADelayShowsLaterTextInTheEventsTime) {
    OpenBeside(u8"film.ass", AssScript(kScript, {{"0:00:02.00", "0:00:04.00", kPlace},
                                                 {"0:00:04.00", "0:00:06.00", kPlace, "00FF00"}}));
    ShowKeyFrame(1);
    EXPECT_TRUE(IsFilled(Shown(), kPlace, kRed));
    engine->AdjustSubtitleDelay(2000);
    engine->RedrawVideo();
    EXPECT_TRUE(PumpUntil(limits::kPicture, [this] { return IsFilled(Shown(), kPlace, kGreen); }));
    ShowKeyFrame(0);
    EXPECT_EQ(0, Changed()) << "no event stands here";
    ShowKeyFrame(2);
    EXPECT_EQ(0, Changed()) << "and nothing of the delayed time is shown here";
    engine->AdjustSubtitleDelay(-4000);
    engine->RedrawVideo();
    EXPECT_TRUE(PumpUntil(limits::kPicture, [this] { return IsFilled(Shown(), kPlace, kRed); }));
}

TEST_F(SubtitleRoad, WhileTheFilmRunsEachFrameHasItsText) {
    // Half a second with and half a second without, four times.
    OpenBeside(u8"film.ass", AssScript(kScript, {{"0:00:01.00", "0:00:01.50", kPlace},
                                                 {"0:00:02.00", "0:00:02.50", kPlace},
                                                 {"0:00:03.00", "0:00:03.50", kPlace},
                                                 {"0:00:04.00", "0:00:04.50", kPlace}}));
    ShowKeyFrame(0);
    ASSERT_TRUE(engine->Play());
    int with = 0;
    int without = 0;
    ASSERT_TRUE(PumpUntil(milliseconds(20'000), [&] {
        const Image shown = Shown();
        const BgraView view{shown.pixels.data(), shown.width, shown.height, std::ptrdiff_t{4} * shown.width};
        const auto mark = ReadFrameMark(view, {0, 0, shown.width, shown.height});
        if (!mark) {
            return false;
        }
        const int frame = *mark - film.firstNumber;
        const double time = film.videoStart + frame / film.fps;
        const bool expected = time >= 1.0 && time < 4.5 && time - static_cast<int>(time) < 0.5;
        EXPECT_EQ(expected, IsFilled(shown, kPlace, kRed)) << "frame " << frame;
        (expected ? with : without) += 1;
        return time > 4.6;
    }));
    EXPECT_GT(with, 4);
    EXPECT_GT(without, 4);
}

TEST_F(SubtitleRoad, TheNextFileBeginsWithoutIt) {
    OpenBeside(u8"film.ass", AssScript(kScript, {{"0:00:00.00", "0:00:30.00", kPlace}}));
    ShowKeyFrame(1);
    EXPECT_TRUE(IsFilled(Shown(), kPlace, kRed));
    OpenPaused(L"film.mkv"); // where none lies beside it
    ShowKeyFrame(1);
    EXPECT_EQ(0, Changed());
    EXPECT_EQ(0, engine->subtitleManager->EntryCount());
}

} // namespace
} // namespace brindlecast::testing
