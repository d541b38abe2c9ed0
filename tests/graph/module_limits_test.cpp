#include "tests/graph/allocation_limit.h"
#include "tests/graph/build_fixture.h"

#include <algorithm>

// Modules that count without end, or more than there is memory for.

namespace brindlecast::testing {
namespace {

class ModuleLimits : public BuildTest {
protected:
    // How often the splitter was asked what a stream is.
    static std::size_t Asked() { return QueriesOf(L"LAVSplitter.Info(").size(); }
};

TEST_F(ModuleLimits, NoMoreThan4096StreamsAreAskedFor) {
    SetText("LAVSplitter.pins", L"Video:video/1920/1080/400000");
    SetNumber("LAVSplitter.streamCount", -1);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(4096U, Asked());
    EXPECT_EQ((Lines{L"LAVSplitter.Enable(1, 0)"}), CallsOf(L"LAVSplitter.Enable"));
    ClearCalls();
    EXPECT_EQ(1, engine->GetAudioTrackCount());
    EXPECT_EQ(4096U, Asked());
    EXPECT_EQ(0, engine->GetEmbeddedSubtitleCount());
    EXPECT_FALSE(engine->SelectAudioTrack(1));
    EXPECT_EQ(L"", engine->GetAudioTrackName(1));
    EXPECT_EQ(4 * 4096U, Asked());
}

TEST_F(ModuleLimits, StreamsUpToTheLimitAreAllAskedFor) {
    SetNumber("LAVSplitter.streamCount", 4096);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    ClearCalls();
    EXPECT_EQ(1, engine->GetAudioTrackCount());
    EXPECT_EQ(4096U, Asked());
    SetNumber("LAVSplitter.streamCount", 4097);
    EXPECT_EQ(1, engine->GetAudioTrackCount());
    EXPECT_EQ(2 * 4096U, Asked());
}

TEST_F(ModuleLimits, AListOfPinsWithoutEndIsLeft) {
    SetNumber("LAVVideo.pinsAreEndless", 1);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    ClearCalls();
    EXPECT_EQ(L"H264", engine->GetMediaSummary().videoCodec);
    const Lines asked = QueriesOf(L"LAVVideo.pin ");
    EXPECT_EQ(1024U, asked.size());
    EXPECT_EQ(L"LAVVideo.pin 1023", asked.back());
}

TEST_F(ModuleLimits, ASplitterWhosePinsHaveNoEndOpens) {
    SetNumber("LAVSplitter.pinsAreEndless", 1);
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(512U, CallsOf(L"> Detected").size());
    EXPECT_EQ((Lines{L"> Rendering pin: Video", L"> Connection status - Video: 1, Audio: 1"}),
              Join({CallsOf(L"> Rendering"), CallsOf(L"> Connection status")}));
}

TEST_F(ModuleLimits, TenMillionKeyFramesAreATable) {
    SetNumber("LAVSplitter.keyFrameCount", 10'000'000);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"LAVSplitter.GetKeyFrames(media time, 10000000)"}),
              CallsOf(L"LAVSplitter.GetKeyFrames("));
    EXPECT_EQ((std::vector<Time100ns>{0, 20'000'000, 40'000'000}), engine->keyFrames);
}

TEST_F(ModuleLimits, MoreKeyFramesAreNone) {
    for (const long count : {10'000'001L, -1L}) {
        SetNumber("LAVSplitter.keyFrameCount", count);
        ClearCalls();
        ASSERT_TRUE(engine->OpenFile(kFilm));
        EXPECT_EQ((Lines{L"> No keyframes found (count=" + std::to_wstring(static_cast<UINT>(count)) +
                         L", hr=0x00000000)"}),
                  CallsOf(L"> No keyframes"));
        EXPECT_EQ(Lines{}, CallsOf(L"LAVSplitter.GetKeyFrames("));
        EXPECT_TRUE(engine->keyFrames.empty());
    }
}

TEST_F(ModuleLimits, ATableOfWhichNothingWasWrittenIsEmpty) {
    SetNumber("LAVSplitter.keyFramesWritten", 0);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_TRUE(engine->keyFrames.empty());
    EXPECT_EQ((Lines{L"> Keyframes found: 0"}), CallsOf(L"> Keyframes found"));
}

TEST_F(ModuleLimits, MemoryThatRunsOutFailsTheBuild) {
    SetNumber("LAVSplitter.keyFrameCount", 1'000'000);
    const AllocationLimit limit(1'000'000);
    ExpectFailsWith(
        Join({expected::RendererStart(), expected::SplitterStart(), {L"LAVSplitter.GetKeyFrameCount"}}));
    EXPECT_TRUE(engine->currentFile.empty());
}

} // namespace
} // namespace brindlecast::testing
