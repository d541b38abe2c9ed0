#include "subtitles/subtitle_provider.h"

#include "tests/support/subtitle_fixture.h"

#include <limits>

// The pixels that CSubtitleProvider makes of a moment.

namespace brindlecast::testing {
namespace {

constexpr Size kFrame{200, 100};
constexpr Rect kPlace{10, 20, 110, 60};
constexpr Milliseconds kMostDelay = std::numeric_limits<Milliseconds>::max();
constexpr Milliseconds kLeastDelay = std::numeric_limits<Milliseconds>::min();

class SubtitleRendering : public SubtitleTest {
protected:
    struct Answer {
        HRESULT result;
        Rect bbox;
    };

    SubtitleRendering() { provider->SetVideoSize(kFrame); }
    static ComReference<CSubtitleProvider> Make(const SubtitleStyle& style) {
        return ComReference<CSubtitleProvider>(new CSubtitleProvider(style, DrawFakeCue));
    }
    void Load(const std::u8string& name, std::string_view bytes) {
        ASSERT_TRUE(provider->LoadFile(folder.Write(name, bytes)));
    }
    Answer Render(Canvas& canvas, Time100ns rt) {
        canvas.Clear();
        // What the box holds before does not count.
        Answer answer{-1, {-50, -50, 5000, 5000}};
        answer.result = provider->Render(canvas.desc, rt, 25.0, answer.bbox);
        EXPECT_TRUE(canvas.GapsAreClear());
        return answer;
    }
    // The colour in the middle of kPlace at that time.
    Pixel ColorAt(Time100ns rt) {
        Canvas canvas(kFrame);
        const Answer answer = Render(canvas, rt);
        const Pixel pixel = canvas.At(60, 40);
        EXPECT_EQ(pixel == kClear ? 1 : 0, answer.result);
        return pixel;
    }
    // The only cue drawn at that time; nothing without one.
    std::wstring CueAt(Time100ns rt) {
        drawnCues.clear();
        Canvas canvas(kFrame);
        const Answer answer = Render(canvas, rt);
        EXPECT_EQ(drawnCues.empty() ? 1 : 0, answer.result);
        EXPECT_LE(drawnCues.size(), 1U);
        return drawnCues.empty() ? L"" : drawnCues[0].text;
    }

    ComReference<CSubtitleProvider> provider = Make({});
};

TEST_F(SubtitleRendering, EachPixelOfAnEventIsThere) {
    Load(u8"a.ass", AssScript(kFrame, {{.place = kPlace}}));
    Canvas canvas(kFrame);
    const Answer answer = Render(canvas, 15'000'000);
    EXPECT_EQ(0, answer.result);
    for (int y = kPlace.top + 1; y < kPlace.bottom - 1; ++y) {
        for (int x = kPlace.left + 1; x < kPlace.right - 1; ++x) {
            ASSERT_EQ(kRed, canvas.At(x, y)) << x << ", " << y;
        }
    }
    EXPECT_TRUE(IsAbout(kPlace, canvas.Drawn()));
    // The images of libass may have a margin.
    EXPECT_TRUE(Holds(answer.bbox, canvas.Drawn()));
    EXPECT_TRUE(Holds({0, 0, kPlace.right + 20, kPlace.bottom + 20}, answer.bbox));
}

TEST_F(SubtitleRendering, TimeIsThatOfTheFileInWholeMilliseconds) {
    Load(u8"a.ass", AssScript(kFrame, {{.place = kPlace}}));
    EXPECT_EQ(kClear, ColorAt(0));
    EXPECT_EQ(kClear, ColorAt(9'999'999));
    EXPECT_EQ(kRed, ColorAt(10'000'000));
    EXPECT_EQ(kRed, ColorAt(19'999'999));
    EXPECT_EQ(kClear, ColorAt(20'000'000));
    EXPECT_EQ(kClear, ColorAt(std::numeric_limits<Time100ns>::max()));
    EXPECT_EQ(kClear, ColorAt(std::numeric_limits<Time100ns>::min()));
}

TEST_F(SubtitleRendering, NothingDrawnLeavesTheBoxInverted) {
    Load(u8"a.ass", AssScript(kFrame, {{.place = kPlace}}));
    Canvas canvas(kFrame);
    const Answer answer = Render(canvas, 0);
    EXPECT_EQ(1, answer.result);
    EXPECT_EQ((Rect{0x7FFFFFFF, 0x7FFFFFFF, -0x7FFFFFFF - 1, -0x7FFFFFFF - 1}), answer.bbox);
}

// The delay.

TEST_F(SubtitleRendering, ADelayIsAddedToTheTimeThatIsDrawn) {
    Load(u8"a.ass",
         AssScript(kFrame,
                   {{.place = kPlace},
                    {.start = "0:00:02.00", .end = "0:00:03.00", .place = kPlace, .color = "00FF00"}}));
    provider->SetDelay(500);
    EXPECT_EQ(kClear, ColorAt(4'999'999));
    EXPECT_EQ(kRed, ColorAt(5'000'000)) << "later text is shown sooner";
    EXPECT_EQ(kRed, ColorAt(14'999'999));
    EXPECT_EQ(kGreen, ColorAt(15'000'000));
    EXPECT_EQ(kClear, ColorAt(25'000'000));
    provider->SetDelay(-500);
    EXPECT_EQ(kClear, ColorAt(14'999'999));
    EXPECT_EQ(kRed, ColorAt(15'000'000));
    EXPECT_EQ(kGreen, ColorAt(34'999'999));
    provider->SetDelay(0);
    EXPECT_EQ(kRed, ColorAt(10'000'000));
}

TEST_F(SubtitleRendering, AFractionOfAMillisecondIsCutOffTowardsZero) {
    Load(u8"a.ass", AssScript(kFrame, {{.place = kPlace}}));
    provider->SetDelay(1000);
    EXPECT_EQ(kRed, ColorAt(-9'999)) << "not yet a whole millisecond before the event";
    EXPECT_EQ(kClear, ColorAt(-10'000));
    provider->SetDelay(2000);
    EXPECT_EQ(kClear, ColorAt(-9'999)) << "not yet a whole millisecond before its end";
    EXPECT_EQ(kRed, ColorAt(-10'000));
}

TEST_F(SubtitleRendering, ANegativeTimeOfATrackIsItsStart) {
    Load(u8"a.ass", AssScript(kFrame, {{.start = "0:00:00.00", .end = "0:00:01.00", .place = kPlace}}));
    EXPECT_EQ(kRed, ColorAt(-10'000'000'000));
    provider->SetDelay(-5000);
    EXPECT_EQ(kRed, ColorAt(0));
    EXPECT_EQ(kRed, ColorAt(50'000'000));
    EXPECT_EQ(kRed, ColorAt(59'999'999));
    EXPECT_EQ(kClear, ColorAt(60'000'000));
}

TEST_F(SubtitleRendering, AnyDelayCanBeAdded) {
    Load(u8"a.ass", AssScript(kFrame, {{.start = "0:00:00.00", .place = kPlace}}));
    for (const Time100ns rt : {std::numeric_limits<Time100ns>::min(), Time100ns{-1}, Time100ns{1},
                               std::numeric_limits<Time100ns>::max()}) {
        provider->SetDelay(kMostDelay);
        EXPECT_EQ(kClear, ColorAt(rt)) << rt;
        provider->SetDelay(kLeastDelay);
        EXPECT_EQ(kRed, ColorAt(rt)) << rt;
    }
    Load(u8"a.idx", "1\n00:00:00,000 --> 00:00:02,000\nHi\n");
    for (const Milliseconds delay : {kMostDelay, kLeastDelay}) {
        provider->SetDelay(delay);
        EXPECT_EQ(L"", CueAt(std::numeric_limits<Time100ns>::max()));
        EXPECT_EQ(L"", CueAt(std::numeric_limits<Time100ns>::min()));
    }
}

TEST_F(SubtitleRendering, TheDelayStandsForTheNextFile) {
    provider->SetDelay(500);
    Load(u8"a.ass", AssScript(kFrame, {{.place = kPlace}}));
    EXPECT_EQ(kRed, ColorAt(5'000'000));
    Load(u8"a.idx", kSubRip);
    EXPECT_EQ(L"Hi", CueAt(5'000'000));
    EXPECT_EQ(500, provider->Delay());
}

// Cues.

TEST_F(SubtitleRendering, ACueIsShownFromItsStartToBeforeItsEnd) {
    Load(u8"a.idx",
         "1\n00:00:01,000 --> 00:00:02,000\n<i>Hi</i>\nthere\n\n2\n00:00:02,000 --> 00:00:02,001\nB\n");
    EXPECT_EQ(L"", CueAt(9'999'999));
    EXPECT_EQ(L"<i>Hi</i>\nthere", CueAt(10'000'000)) << "tags and line feeds as they stand";
    EXPECT_EQ(L"<i>Hi</i>\nthere", CueAt(19'999'999));
    EXPECT_EQ(L"B", CueAt(20'000'000));
    EXPECT_EQ(L"", CueAt(20'010'000));
    Canvas canvas(kFrame);
    const Answer answer = Render(canvas, 10'000'000);
    EXPECT_EQ(kCuePlace, answer.bbox);
    EXPECT_EQ(kCuePlace, canvas.Drawn());
    EXPECT_EQ((DrawnCue{L"<i>Hi</i>\nthere", kFrame}), drawnCues.back());
}

TEST_F(SubtitleRendering, OfSeveralCuesTheFirstOfTheFileIsShown) {
    Load(u8"a.idx", "1\n00:00:05,000 --> 00:00:09,000\nfirst\n\n"
                    "2\n00:00:01,000 --> 00:00:09,000\nsecond\n\n"
                    "3\n00:00:00,000 --> 00:00:09,000\nthird\n");
    EXPECT_EQ(L"third", CueAt(0));
    EXPECT_EQ(L"second", CueAt(10'000'000));
    EXPECT_EQ(L"first", CueAt(50'000'000));
}

TEST_F(SubtitleRendering, ACuesTimeMayBeNegativeAndFindsNothing) {
    Load(u8"a.idx", "1\n00:00:00,000 --> 00:00:02,000\nHi\n");
    EXPECT_EQ(L"Hi", CueAt(0));
    EXPECT_EQ(L"Hi", CueAt(-9'999)) << "cut off towards zero";
    EXPECT_EQ(L"", CueAt(-10'000));
    provider->SetDelay(-500);
    EXPECT_EQ(L"", CueAt(4'990'000));
    EXPECT_EQ(L"Hi", CueAt(5'000'000));
    provider->SetDelay(500);
    EXPECT_EQ(L"Hi", CueAt(-5'000'000));
    EXPECT_EQ(L"", CueAt(15'000'000));
}

TEST_F(SubtitleRendering, ACueOfWhichNothingIsDrawnIsNoPicture) {
    provider.reset(new CSubtitleProvider({}, [](const std::wstring& text, const SubPicDesc& picture, Rect&) {
        drawnCues.push_back({text, {picture.width, picture.height}});
    }));
    Load(u8"a.idx", kSubRip);
    Canvas canvas(kFrame);
    const Answer answer = Render(canvas, 15'000'000);
    EXPECT_EQ(1, answer.result);
    EXPECT_EQ(kInvertedRect, answer.bbox);
    EXPECT_EQ((std::vector<DrawnCue>{{L"Hi", kFrame}}), drawnCues);
}

// Where images go.

TEST_F(SubtitleRendering, ImagesLieOverEachOtherInTheirOrder) {
    Load(u8"a.ass", AssScript(kFrame, {{.place = {0, 0, 60, 60}, .color = "FFFFFF", .transparency = "80"},
                                       {.place = {20, 20, 80, 80}, .transparency = "80"},
                                       {.place = {40, 40, 100, 100}, .color = "00FF00"}}));
    Canvas canvas(kFrame);
    EXPECT_EQ(0, Render(canvas, 15'000'000).result);
    EXPECT_EQ((Pixel{127, 127, 127, 127}), canvas.At(10, 10));
    EXPECT_EQ((Pixel{0, 0, 127, 127}), canvas.At(70, 30));
    // 127 * 128 / 255, rounded, is 64.
    EXPECT_EQ((Pixel{64, 64, 191, 191}), canvas.At(30, 30));
    EXPECT_EQ(kGreen, canvas.At(50, 50));
    EXPECT_EQ(kClear, canvas.At(150, 10));
}

TEST_F(SubtitleRendering, AnEventOutsideTheFrameIsNoPicture) {
    Load(u8"a.ass", AssScript(kFrame, {{.place = {300, 20, 340, 60}}, {.place = {-190, -190, -110, -110}}}));
    Canvas canvas(kFrame);
    const Answer answer = Render(canvas, 15'000'000);
    EXPECT_EQ(1, answer.result);
    EXPECT_EQ(kInvertedRect, answer.bbox);
    EXPECT_EQ(kInvertedRect, canvas.Drawn());
}

// The picture may be smaller than the frame for which libass draws.
TEST_F(SubtitleRendering, ImagesAreCutAtThePicture) {
    Load(u8"a.ass", AssScript(kFrame, {{.place = {60, 30, 140, 70}}}));
    Canvas canvas({100, 50});
    const Answer answer = Render(canvas, 15'000'000);
    EXPECT_EQ(0, answer.result);
    EXPECT_TRUE(IsAbout({60, 30, 100, 50}, canvas.Drawn()));
    EXPECT_EQ(100, answer.bbox.right);
    EXPECT_EQ(50, answer.bbox.bottom);

    Canvas small({50, 25});
    const Answer outside = Render(small, 15'000'000);
    EXPECT_EQ(1, outside.result) << "images that lie wholly beside it";
    EXPECT_EQ(kInvertedRect, outside.bbox);
    EXPECT_EQ(kInvertedRect, small.Drawn());
}

// The size of the frame.

TEST_F(SubtitleRendering, ANewFrameSizeNeedsNoNewLoad) {
    Load(u8"a.ass", AssScript(kFrame, {{.place = kPlace}}));
    EXPECT_EQ(kRed, ColorAt(15'000'000));
    TakeLines();
    provider->SetVideoSize({400, 200});
    EXPECT_EQ(Lines{L"libass: frame=400x200"}, TakeLines());
    Canvas canvas({400, 200});
    EXPECT_EQ(0, Render(canvas, 15'000'000).result);
    EXPECT_TRUE(IsAbout({20, 40, 220, 120}, canvas.Drawn()));
    TakeLines();
    provider->SetVideoSize({400, 200});
    EXPECT_EQ(Lines{}, TakeLines());
    provider->SetVideoSize({400, 201});
    provider->SetVideoSize({401, 201});
    EXPECT_EQ((Lines{L"libass: frame=400x201", L"libass: frame=401x201"}), TakeLines());
    Size size;
    EXPECT_EQ((Size{401, 201}), *provider->GetVideoSize(&size));
}

TEST_F(SubtitleRendering, TheFrameSizeStandsForTheNextFile) {
    provider->SetVideoSize({400, 200});
    EXPECT_EQ(Lines{}, TakeLines()) << "libass is not up yet";
    for (int load = 0; load < 2; ++load) {
        Load(u8"a.ass", AssScript(kFrame, {{.place = kPlace}}));
        Canvas canvas({400, 200});
        EXPECT_EQ(0, Render(canvas, 15'000'000).result);
        EXPECT_TRUE(IsAbout({20, 40, 220, 120}, canvas.Drawn()));
    }
}

TEST_F(SubtitleRendering, WithoutAUsableSizeTheFrameIsThatOfFullHd) {
    struct Row {
        Size given;
        Size used;
    };
    for (const Row& row :
         {Row{{0, 0}, {1920, 1080}}, Row{{-3, 300}, {1920, 300}}, Row{{300, -3}, {300, 1080}},
          Row{{0, 1}, {1920, 1}}, Row{{1, 0}, {1, 1080}}, Row{{1, 1}, {1, 1}}}) {
        provider = Make({});
        provider->SetVideoSize(row.given);
        Load(u8"a.ass", AssScript(kFrame, {{.place = kPlace}}));
        TakeLines();
        Size size;
        EXPECT_EQ(row.given, *provider->GetVideoSize(&size));
        provider->SetVideoSize(row.used);
        EXPECT_EQ(Lines{}, TakeLines()) << "nothing changes";
        provider->SetVideoSize({row.used.width + 1, row.used.height});
        EXPECT_EQ(1U, TakeLines().size());
    }
}

} // namespace
} // namespace brindlecast::testing
