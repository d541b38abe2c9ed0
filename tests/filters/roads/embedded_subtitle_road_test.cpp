#include "base/utf8.h"
#include "engine/executable_directory.h"
#include "engine/graph_pins.h"
#include "engine/subtitle_grabber.h"
#include "engine/tool_process.h"
#include "subtitles/subtitle_manager.h"
#include "tests/e2e/environment.h"
#include "tests/e2e/waits.h"
#include "tests/filters/roads/road_fixture.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>

// Text tracks inside a film: four of them in tracks.mkv, Korean and English as SubRip, then Korean and
// Japanese as ASS.

namespace brindlecast::testing {
namespace {

using std::chrono::milliseconds;

class EmbeddedSubtitleRoad : public RoadTest {
protected:
    void SetUp() override {
        RoadTest::SetUp();
        ShowHost(320, 180);
        for (const wchar_t* extension : {L".srt", L".ass"}) {
            std::filesystem::remove(Extracted(extension));
        }
    }
    [[nodiscard]] static std::filesystem::path Extracted(const wchar_t* extension) {
        return std::filesystem::temp_directory_path() /
               (std::wstring(L"Brindlecast_embedded_sub") + extension);
    }
    // Empty when the file is not there.
    [[nodiscard]] static std::string TextOf(const std::filesystem::path& path) {
        std::ifstream file(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }
    // The place of the file that is loaded, empty when none is.
    [[nodiscard]] std::wstring LoadedPath() const {
        const SubtitleEntry* entry =
            engine->subtitleManager != nullptr ? engine->subtitleManager->GetEntry(0) : nullptr;
        return entry != nullptr ? entry->path : L"";
    }
    // The texts of the samples that came so far, as the stream holds them.
    [[nodiscard]] std::vector<std::string> Grabbed() const {
        const std::lock_guard guard(engine->subtitleGrabberCallback->lock);
        std::vector<std::string> texts;
        for (const GrabbedSample& sample : engine->subtitleGrabberCallback->samples) {
            texts.emplace_back(sample.data.begin(), sample.data.end());
        }
        return texts;
    }
};

bool Holds(const std::string& text, const wchar_t* part) {
    return text.find(WideToUtf8(part)) != std::string::npos;
}

TEST_F(EmbeddedSubtitleRoad, EachTrackIsLoadedByItsOrdinal) {
    struct Track {
        const wchar_t* extension;
        const wchar_t* words;
    };
    const std::vector<Track> tracks = {{L".srt", L"한국어 자막 4"},
                                       {L".srt", L"English line 4"},
                                       {L".ass", L"꾸민 자막{\\i0} 4"},
                                       {L".ass", L"日本語字幕 4"}};
    ASSERT_TRUE(Open(L"tracks.mkv"));
    ASSERT_EQ(4, engine->GetEmbeddedSubtitleCount());
    for (int ordinal = 0; ordinal < 4; ++ordinal) {
        const Track& track = tracks[static_cast<std::size_t>(ordinal)];
        ASSERT_TRUE(engine->LoadEmbeddedSubtitle(ordinal)) << ordinal;
        EXPECT_EQ(Extracted(track.extension).wstring(), LoadedPath()) << ordinal;
        EXPECT_TRUE(Holds(TextOf(Extracted(track.extension)), track.words)) << ordinal;
        EXPECT_TRUE(engine->subtitleManager->IsActive()) << ordinal;
        EXPECT_EQ(ordinal, engine->embeddedSubtitleTrack);
    }
    EXPECT_FALSE(engine->LoadEmbeddedSubtitle(4));
    EXPECT_EQ(3, engine->embeddedSubtitleTrack);
}

TEST_F(EmbeddedSubtitleRoad, ATrackIsLoadedWhileTheFilmRuns) {
    OpenRunning(L"tracks.mkv");
    ASSERT_TRUE(engine->LoadEmbeddedSubtitle(1));
    EXPECT_TRUE(engine->subtitleManager->IsActive());
    const int frame = FrameOnScreen().value_or(0);
    EXPECT_TRUE(PumpUntil(limits::kPicture, [&] { return FrameOnScreen().value_or(0) > frame; }));
}

TEST_F(EmbeddedSubtitleRoad, ATrackThatCanNotBeCopiedIsNotLoaded) {
    // SubRip under a name that says ASS, and WebVTT, which a SubRip file can't hold.
    const std::filesystem::path odd = std::filesystem::temp_directory_path() / L"odd tracks.mkv";
    const std::wstring tool = ExecutableDirectory() + L"\\ffmpeg.exe";
    constexpr DWORD kLongest = 30000;
    ASSERT_TRUE(RunTool(tool,
                        L"\"" + tool + L"\" -y -i \"" + Media(L"tracks.mkv") +
                            L"\" -map 0:v -map 0:a:0 -map 0:s:1 -map 0:s:1 -map 0:s:0 -c copy "
                            L"-c:s:1 webvtt -metadata:s:s:0 title=Classic -metadata:s:s:1 title=Web \"" +
                            odd.wstring() + L"\"",
                        kLongest));
    ASSERT_TRUE(engine->OpenFile(odd.wstring()));
    ASSERT_EQ(3, engine->GetEmbeddedSubtitleCount());
    EXPECT_FALSE(engine->LoadEmbeddedSubtitle(0)) << WideToUtf8(engine->GetEmbeddedSubtitleName(0));
    EXPECT_FALSE(engine->LoadEmbeddedSubtitle(1)) << WideToUtf8(engine->GetEmbeddedSubtitleName(1));
    EXPECT_EQ(-1, engine->embeddedSubtitleTrack);
    EXPECT_EQ(L"", LoadedPath());
    EXPECT_EQ(0U, store.values.count(L"SubtitleEnabled"));
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(2)) << "which is a SubRip track under a plain name";
    EXPECT_TRUE(Holds(TextOf(Extracted(L".srt")), L"한국어 자막 0"));
    engine->CloseGraph();
    EXPECT_TRUE(std::filesystem::remove(odd));
}

TEST_F(EmbeddedSubtitleRoad, TheGrabberCollectsTheSamplesOfTheTrack) {
    store.values[L"EmbeddedSubtitleMethod"] = 1U;
    ASSERT_TRUE(Open(L"tracks.mkv"));
    ASSERT_TRUE(engine->LoadEmbeddedSubtitle(1));
    EXPECT_EQ(1, engine->embeddedSubtitleTrack);
    EXPECT_EQ(L"", LoadedPath()) << "nothing was extracted";
    EXPECT_FALSE(std::filesystem::exists(Extracted(L".srt")));
    ASSERT_NE(nullptr, engine->subtitleGrabberCallback.Get());
    EXPECT_FALSE(engine->subtitleGrabberCallback->isAss);
    ASSERT_TRUE(engine->Play());
    ASSERT_TRUE(PumpUntil(limits::kPicture, [this] { return Grabbed().size() >= 2; }));
    EXPECT_NE(std::string::npos, Grabbed()[0].find("English line 0"));
    EXPECT_NE(std::string::npos, Grabbed()[1].find("English line 1"));
    {
        const std::lock_guard guard(engine->subtitleGrabberCallback->lock);
        const GrabbedSample& first = engine->subtitleGrabberCallback->samples[0];
        // From 0.5 to 1.9 seconds, later by the few milliseconds that the sound's encoder adds.
        constexpr Seconds kLongestShift = 0.05;
        EXPECT_NEAR(0.5, static_cast<Seconds>(first.start) / kUnitsPerSecond, kLongestShift);
        EXPECT_NEAR(1.9, static_cast<Seconds>(first.stop) / kUnitsPerSecond, kLongestShift);
    }
    EXPECT_GT(FrameOnScreen().value_or(0), 0) << "the picture goes on";
    EXPECT_TRUE(engine->Seek(9.0));
    EXPECT_TRUE(WaitForEnd(milliseconds(6000)));
}

TEST_F(EmbeddedSubtitleRoad, AskingForTheGrabberDoesNotHoldARunningFilmUp) {
    store.values[L"EmbeddedSubtitleMethod"] = 1U;
    OpenRunning(L"tracks.mkv");
    ASSERT_TRUE(engine->LoadEmbeddedSubtitle(1));
    EXPECT_EQ(1, engine->embeddedSubtitleTrack);
    const int frame = FrameOnScreen().value_or(0);
    EXPECT_TRUE(PumpUntil(limits::kPicture, [&] { return FrameOnScreen().value_or(0) > frame + 25; }));
    // Filters may refuse to be connected now, which leaves the track to the tool.
    EXPECT_TRUE(PumpUntil(limits::kPicture, [this] { return !Grabbed().empty() || !LoadedPath().empty(); }));
    EXPECT_TRUE(engine->Seek(9.0));
    EXPECT_TRUE(WaitForEnd(milliseconds(6000)));
}

TEST_F(EmbeddedSubtitleRoad, TheGrabberLeavesASecondFileToTheTool) {
    store.values[L"EmbeddedSubtitleMethod"] = 1U;
    ASSERT_TRUE(Open(L"tracks.mkv"));
    ASSERT_TRUE(engine->LoadEmbeddedSubtitle(0));
    ASSERT_TRUE(Open(L"tracks.mkv"));
    ASSERT_TRUE(engine->LoadEmbeddedSubtitle(3));
    EXPECT_EQ(3, engine->embeddedSubtitleTrack);
    EXPECT_EQ(Extracted(L".ass").wstring(), LoadedPath());
    // What the attempt left in the graph does not hold the film up.
    ASSERT_TRUE(engine->Play());
    ASSERT_TRUE(PumpUntil(limits::kPicture, [this] { return FrameOnScreen().value_or(0) > 25; }));
    EXPECT_TRUE(engine->Seek(9.0));
    EXPECT_TRUE(WaitForEnd(milliseconds(6000)));
}

} // namespace
} // namespace brindlecast::testing
