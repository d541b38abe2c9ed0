#include "subtitles/ass_context.h"

#include "tests/support/subtitle_fixture.h"

#include <cstdlib>

// libass and its track, without what stands around them.

namespace brindlecast::testing {
namespace {

constexpr Size kFrame{200, 100};
constexpr Rect kPlace{10, 20, 110, 60};

class AssContextTest : public SubtitleTest {
protected:
    std::wstring WriteBlock() const {
        return folder.Write(u8"block.ass", AssScript(kFrame, {{.place = kPlace}}));
    }
    std::wstring WriteSubRip() const { return folder.Write(u8"a.srt", kSubRip); }

    AssContext context;
};

TEST_F(AssContextTest, NothingIsReadOrDrawnBeforeItsStart) {
    EXPECT_FALSE(context.ReadFile(WriteBlock()));
    EXPECT_FALSE(context.LoadSrtAsAss(WriteSubRip()));
    EXPECT_EQ(Lines{}, TakeLines());
    EXPECT_FALSE(context.HasTrack());
    EXPECT_TRUE(context.Events().empty());
    context.SetFrameSize(kFrame);
    EXPECT_EQ(Lines{}, TakeLines());
    EXPECT_EQ(nullptr, context.RenderFrame(1500));
    context.FreeTrack();
    context.Shutdown();
    context.Shutdown();
}

TEST_F(AssContextTest, EventsAreThoseOfTheTrackInItsOrder) {
    ASSERT_TRUE(context.Initialise(kFrame.width, kFrame.height));
    ASSERT_TRUE(context.ReadFile(folder.Write(
        u8"a.ass", AssScript(kFrame, {{.start = "0:00:03.00", .end = "1:00:04.05", .place = kPlace},
                                      {.start = "0:00:01.25", .end = "0:00:01.50", .place = kPlace}}))));
    const std::vector<AssContext::Event> events = context.Events();
    EXPECT_EQ(Lines{L"libass event count: 2"}, TakeLines());
    ASSERT_EQ(2U, events.size());
    EXPECT_EQ(3000, events[0].start);
    EXPECT_EQ(3'601'050, events[0].duration);
    EXPECT_EQ(1250, events[1].start);
    EXPECT_EQ(250, events[1].duration);
}

TEST_F(AssContextTest, AStartDropsWhatWasThereBefore) {
    ASSERT_TRUE(context.Initialise(kFrame.width, kFrame.height));
    ASSERT_TRUE(context.ReadFile(WriteBlock()));
    EXPECT_NE(nullptr, context.RenderFrame(1500));
    ASSERT_TRUE(context.Initialise(kFrame.width, kFrame.height));
    EXPECT_FALSE(context.HasTrack());
    EXPECT_EQ(nullptr, context.RenderFrame(1500));
    ASSERT_TRUE(context.ReadFile(WriteBlock()));
    EXPECT_NE(nullptr, context.RenderFrame(1500));
}

TEST_F(AssContextTest, AfterItsEndNothingIsThere) {
    context.delayMs = 300;
    ASSERT_TRUE(context.Initialise(kFrame.width, kFrame.height));
    ASSERT_TRUE(context.ReadFile(WriteBlock()));
    context.Shutdown();
    EXPECT_FALSE(context.HasTrack());
    EXPECT_TRUE(context.Events().empty());
    EXPECT_EQ(nullptr, context.RenderFrame(1500));
    EXPECT_FALSE(context.ReadFile(WriteBlock()));
    EXPECT_EQ(300, context.delayMs);
}

TEST_F(AssContextTest, AFileThatLibassRefusesTakesTheTrackWithIt) {
    ASSERT_TRUE(context.Initialise(kFrame.width, kFrame.height));
    for (const std::wstring& path : {WriteSubRip(), folder.Path(u8"gone.ass")}) {
        ASSERT_TRUE(context.ReadFile(WriteBlock()));
        EXPECT_FALSE(context.ReadFile(path));
        EXPECT_FALSE(context.HasTrack());
    }
}

TEST_F(AssContextTest, AConversionThatCanNotReadItsFileLeavesTheTrackAlone) {
    ASSERT_TRUE(context.Initialise(kFrame.width, kFrame.height));
    ASSERT_TRUE(context.ReadFile(WriteBlock()));
    TakeLines();
    EXPECT_FALSE(context.LoadSrtAsAss(folder.Path(u8"gone.srt")));
    EXPECT_EQ(Lines{}, TakeLines());
    EXPECT_TRUE(context.HasTrack());
    ASSERT_TRUE(context.LoadSrtAsAss(WriteSubRip()));
    EXPECT_EQ(1U, context.Events().size());
}

TEST_F(AssContextTest, TheFrameSizeIsThatOfTheStartUntilItChanges) {
    ASSERT_TRUE(context.Initialise(kFrame.width, kFrame.height));
    context.SetFrameSize(kFrame);
    EXPECT_EQ(Lines{}, TakeLines());
    context.SetFrameSize({200, 101});
    EXPECT_EQ(Lines{L"libass: frame=200x101"}, TakeLines());
}

// Lines that come so often in a run are counted in a process of their own.

class AssContextDeathTest : public AssContextTest {
protected:
    AssContextDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
    static void Draw(const ASS_Image* /*images*/) {}
    // Ends the process with the number of lines that begin and end so. Nothing else removes its folder.
    [[noreturn]] void ExitWithCount(const std::wstring& begin, const std::wstring& end) const {
        const std::string path = WideToUtf8(folder.Path(u8""));
        std::filesystem::remove_all(std::u8string(path.begin(), path.end()));
        std::_Exit(static_cast<int>(std::ranges::count_if(lines, [&](const std::wstring& line) {
            return line.starts_with(begin) && line.ends_with(end);
        })));
    }
};

TEST_F(AssContextDeathTest, TheFirstTenFramesOfARunAreTraced) {
    EXPECT_EXIT(
        {
            AssContext other;
            const bool works = context.Initialise(200, 100) && context.ReadFile(WriteBlock()) &&
                               other.Initialise(200, 100) && other.ReadFile(WriteBlock());
            for (int frame = 0; works && frame < 8; ++frame) {
                Draw(context.RenderFrame(0));
                Draw(other.RenderFrame(0));
            }
            ExitWithCount(L"RenderFrame: time=0 img=0", L"0");
        },
        ::testing::ExitedWithCode(10), "");
    EXPECT_EXIT(
        {
            if (context.Initialise(200, 100) && context.ReadFile(WriteBlock())) {
                Draw(context.RenderFrame(1'999));
                Draw(context.RenderFrame(9'000'000'000'000'000));
            }
            ExitWithCount(L"RenderFrame: time=1999 img=", L"");
        },
        ::testing::ExitedWithCode(1), "");
}

TEST_F(AssContextDeathTest, TheFirstFiveFramesWithoutATrackAreTraced) {
    const std::wstring null = FormatText(L"%p", static_cast<const void*>(nullptr));
    EXPECT_EXIT(
        {
            for (int frame = 0; frame < 8; ++frame) {
                Draw(context.RenderFrame(1500));
            }
            ExitWithCount(L"RenderFrame: renderer=" + null + L" track=" + null, L"");
        },
        ::testing::ExitedWithCode(5), "");
    EXPECT_EXIT(
        {
            if (context.Initialise(200, 100)) {
                Draw(context.RenderFrame(1500));
            }
            ExitWithCount(L"RenderFrame: renderer=", L" track=" + null);
        },
        ::testing::ExitedWithCode(1), "");
}

} // namespace
} // namespace brindlecast::testing
