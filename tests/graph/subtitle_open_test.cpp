#include "subtitles/subtitle_manager.h"
#include "tests/graph/graph_fixture.h"
#include "tests/support/temporary_folder.h"

#include <algorithm>

// Subtitles beside a file, from the opening of the file to its closing, and what the menu does with them.

namespace brindlecast::testing {
namespace {

constexpr const char* kSubRip = "1\n00:00:01,000 --> 00:00:02,000\nHi\n";
constexpr const char* kNoUtf8 = "1\n00:00:01,000 --> 00:00:02,000\n\xFF\n";
constexpr const char* kSami = "<SAMI>\n<BODY>\n</BODY>\n</SAMI>\n";

class SubtitleOpen : public GraphTest {
protected:
    // Opens a film beside which these files lie.
    bool OpenBeside(const std::vector<std::pair<std::u8string, const char*>>& files) {
        for (const auto& [name, content] : files) {
            static_cast<void>(folder.Write(name, content));
        }
        ClearCalls();
        return engine->OpenFile(film);
    }
    // The lines from the search for subtitles on, with <folder> for theirs.
    [[nodiscard]] Lines SubtitleLines() const {
        const Lines all = CallsOf(L"> ");
        auto first =
            std::ranges::find_if(all, [](const auto& line) { return line.starts_with(L"> Found "); });
        Lines found(first, all.end());
        const std::wstring directory = folder.Path(u8"");
        for (std::wstring& line : found) {
            if (const auto at = line.find(directory); at != std::wstring::npos) {
                line.replace(at, directory.size(), L"<folder>\\");
            }
        }
        return found;
    }
    [[nodiscard]] std::wstring LoadedName() const {
        return engine->subtitleManager != nullptr ? engine->subtitleManager->NameAt(0) : L"no manager";
    }
    // How often something of subtitles was stored.
    [[nodiscard]] std::ptrdiff_t Stores() const {
        return std::ranges::count_if(settings.writes,
                                     [](const auto& name) { return name.starts_with(L"Sub"); });
    }
    [[nodiscard]] bool IsLinked() const {
        return engine->subtitleCallback->manager == engine->subtitleManager.get();
    }

    const TemporaryFolder folder;
    const std::wstring film = folder.Path(u8"영화.mkv");
};

// Opening.

TEST_F(SubtitleOpen, TheFileBesideTheFilmIsLoadedLast) {
    EXPECT_TRUE(OpenBeside({{u8"영화.srt", kSubRip}}));
    EXPECT_EQ(
        (Lines{L"> Found 1 subtitle(s): <folder>\\영화.srt", L"> Subtitle video size: 1920x1080",
               L"> Subtitle type: 1", L"> SRT content size: 35 bytes", L"> ASS content size: 618 bytes"}),
        SubtitleLines());
    const Lines calls = Calls();
    EXPECT_EQ(L"> ASS content size: 618 bytes", calls.back()) << "after everything else";
    ASSERT_NE(nullptr, engine->subtitleManager);
    EXPECT_EQ(1, engine->subtitleManager->EntryCount());
    EXPECT_EQ(0, engine->subtitleManager->CurrentIndex());
    EXPECT_EQ(L"영화.srt", LoadedName());
    EXPECT_TRUE(engine->subtitleManager->enabled);
    EXPECT_TRUE(IsLinked());
    EXPECT_EQ(0, Stores());
}

TEST_F(SubtitleOpen, WithoutAFileThereIsNoManager) {
    EXPECT_TRUE(OpenBeside({{u8"other.srt", kSubRip}, {u8"영화.sami", kSami}, {u8"영화.idx", ""}}));
    EXPECT_EQ(nullptr, engine->subtitleManager);
    EXPECT_EQ(nullptr, engine->subtitleCallback->manager);
    EXPECT_EQ(Lines{}, CallsOf(L"> Found"));
}

TEST_F(SubtitleOpen, OnlyTheFirstCandidateIsLoaded) {
    EXPECT_TRUE(OpenBeside({{u8"영화.ko.srt", kSubRip}, {u8"영화.ass", ""}, {u8"영화.srt", kSubRip}}));
    EXPECT_EQ(L"> Found 3 subtitle(s): <folder>\\영화.srt", SubtitleLines().at(0));
    EXPECT_EQ(L"영화.srt", LoadedName());
    EXPECT_EQ(1, engine->subtitleManager->EntryCount());
}

TEST_F(SubtitleOpen, AFirstCandidateThatFailsIsTheOnlyOneTried) {
    EXPECT_TRUE(OpenBeside({{u8"영화.ko.smi", kSami}, {u8"영화.vtt", kSubRip}}));
    EXPECT_EQ((Lines{L"> Found 2 subtitle(s): <folder>\\영화.ko.smi", L"> Subtitle video size: 1920x1080",
                     L"> Subtitle type: 5"}),
              SubtitleLines());
    EXPECT_EQ(film, engine->currentFile);
    EXPECT_EQ(0, engine->subtitleManager->EntryCount());
    EXPECT_EQ(-1, engine->subtitleManager->CurrentIndex());
    EXPECT_TRUE(IsLinked()) << "before the load";
}

TEST_F(SubtitleOpen, NoFailureOfASubtitleFailsTheOpen) {
    EXPECT_TRUE(OpenBeside({{u8"영화.sub", kNoUtf8}})) << "interrupted by an exception";
    EXPECT_EQ(film, engine->currentFile);
    EXPECT_EQ(0U, engine->state);
    EXPECT_EQ(0, engine->subtitleManager->EntryCount());
    // A folder of that name.
    ASSERT_NE(FALSE, CreateDirectoryW(folder.Path(u8"영화.srt").c_str(), nullptr));
    EXPECT_TRUE(OpenBeside({}));
    EXPECT_EQ(L"> Found 2 subtitle(s): <folder>\\영화.srt", SubtitleLines().at(0));
    EXPECT_EQ(film, engine->currentFile);
    EXPECT_EQ(0, engine->subtitleManager->EntryCount());
}

TEST_F(SubtitleOpen, AFilmThatDoesNotOpenLoadsNothing) {
    SetNumber("LAVSplitter.load", E_FAIL);
    EXPECT_FALSE(OpenBeside({{u8"영화.srt", kSubRip}}));
    EXPECT_EQ(nullptr, engine->subtitleManager);
}

TEST_F(SubtitleOpen, ARendererWithoutSubtitlesOpensAllTheSame) {
    SetNumber("MpcVideoRenderer64.noSubtitles", 1);
    EXPECT_TRUE(OpenBeside({{u8"영화.srt", kSubRip}}));
    EXPECT_EQ(nullptr, engine->subtitleCallback);
    EXPECT_EQ(L"영화.srt", LoadedName());
}

// The manager.

TEST_F(SubtitleOpen, ItsSizeIsThatOfTheVideo) {
    SetNumber("MpcVideoRenderer64.width", 640);
    SetNumber("MpcVideoRenderer64.height", 352);
    EXPECT_TRUE(OpenBeside({{u8"영화.srt", kSubRip}}));
    EXPECT_EQ(L"> Subtitle video size: 640x352", SubtitleLines().at(1));
}

TEST_F(SubtitleOpen, ItsSizeIsThatOfFullHdWhereTheVideoHasNone) {
    SetNumber("MpcVideoRenderer64.width", 0); // the question fails
    EXPECT_TRUE(OpenBeside({{u8"영화.srt", kSubRip}}));
    EXPECT_EQ(L"> Subtitle video size: 1920x1080", SubtitleLines().at(1));
}

TEST_F(SubtitleOpen, ItIsMadeOnceAndServesAllFiles) {
    EXPECT_TRUE(OpenBeside({{u8"영화.srt", kSubRip}}));
    const SubtitleManager* const manager = engine->subtitleManager.get();
    SetNumber("MpcVideoRenderer64.width", 640);
    settings.values[L"SubtitleEnabled"] = std::uint32_t{0};
    EXPECT_TRUE(OpenBeside({}));
    EXPECT_EQ((Lines{L"> Found 1 subtitle(s): <folder>\\영화.srt", L"> Subtitle type: 1",
                     L"> SRT content size: 35 bytes", L"> ASS content size: 618 bytes"}),
              SubtitleLines());
    EXPECT_EQ(manager, engine->subtitleManager.get());
    EXPECT_TRUE(manager->enabled) << "the setting is read when it is made";
    EXPECT_TRUE(IsLinked()) << "with the callback of the new graph";
}

TEST_F(SubtitleOpen, ItIsSwitchedOnByTheSetting) {
    for (const auto& [value, enabled] : {std::pair{0U, false}, std::pair{1U, true}, std::pair{7U, true}}) {
        settings.values[L"SubtitleEnabled"] = std::uint32_t{value};
        engine = std::make_unique<PlayerEngine>(settings);
        engine->videoHost = host;
        EXPECT_TRUE(OpenBeside({{u8"영화.srt", kSubRip}}));
        EXPECT_EQ(enabled, engine->subtitleManager->enabled) << value;
        EXPECT_EQ(1, engine->subtitleManager->EntryCount()) << "loaded all the same";
    }
}

// Closing.

TEST_F(SubtitleOpen, ClosingTheGraphUnloadsAndKeepsTheRest) {
    EXPECT_TRUE(OpenBeside({{u8"영화.srt", kSubRip}}));
    engine->AdjustSubtitleDelay(500);
    engine->SetSubtitleEnabled(false);
    engine->SetSubtitleEnabled(true);
    SubtitleManager* const manager = engine->subtitleManager.get();
    EXPECT_NE(nullptr, manager->GetSubPic(12'000'000));
    engine->CloseGraph();
    ASSERT_EQ(manager, engine->subtitleManager.get());
    EXPECT_EQ(0, manager->EntryCount());
    EXPECT_EQ(-1, manager->CurrentIndex());
    EXPECT_FALSE(manager->IsActive());
    EXPECT_EQ(nullptr, manager->GetSubPic(12'000'000));
    EXPECT_TRUE(manager->enabled);
    EXPECT_EQ(500, engine->GetSubtitleDelay());
    EXPECT_EQ(nullptr, engine->subtitleCallback);
}

TEST_F(SubtitleOpen, ClosingForgetsAlsoTheCuesOfAnInterruptedLoad) {
    EXPECT_TRUE(OpenBeside({{u8"영화.sub", kSubRip}}));
    EXPECT_FALSE(engine->LoadSubtitle(
        folder.Write(u8"broken.idx", std::string(kSubRip) + "\n2\n00:00:03,000 --> 00:00:04,000\n\xFF\n")));
    engine->CloseGraph();
    EXPECT_FALSE(engine->subtitleManager->IsActive());
}

TEST_F(SubtitleOpen, TheNextFileHasNoSubtitleOfTheOneBefore) {
    EXPECT_TRUE(OpenBeside({{u8"영화.srt", kSubRip}}));
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(0, engine->subtitleManager->EntryCount());
    EXPECT_EQ(nullptr, engine->subtitleCallback->manager) << "linked when a subtitle is loaded";
    EXPECT_TRUE(OpenBeside({}));
    EXPECT_EQ(L"영화.srt", LoadedName());
    SetNumber("LAVSplitter.load", E_FAIL);
    EXPECT_FALSE(engine->OpenFile(kFilm));
    EXPECT_EQ(0, engine->subtitleManager->EntryCount());
}

TEST_F(SubtitleOpen, ShutdownDisposesOfTheManager) {
    EXPECT_TRUE(OpenBeside({{u8"영화.srt", kSubRip}}));
    engine->Shutdown();
    EXPECT_EQ(nullptr, engine->subtitleManager);
    EXPECT_EQ(0, engine->GetSubtitleDelay());
}

// Loading, choosing, switching, shifting.

TEST_F(SubtitleOpen, AFileIsLoadedInThePlaceOfWhatIsLoaded) {
    EXPECT_TRUE(OpenBeside({{u8"영화.srt", kSubRip}}));
    EXPECT_TRUE(engine->LoadSubtitle(folder.Write(u8"다른.vtt", kSubRip)));
    EXPECT_EQ(1, engine->subtitleManager->EntryCount());
    EXPECT_EQ(L"다른.vtt", LoadedName());
    EXPECT_FALSE(engine->LoadSubtitle(folder.Path(u8"gone.srt")));
    EXPECT_EQ(0, engine->subtitleManager->EntryCount()) << "what was loaded is gone as well";
    EXPECT_TRUE(engine->LoadSubtitle(folder.Path(u8"다른.vtt")));
    EXPECT_FALSE(engine->LoadSubtitle(folder.Write(u8"bytes.sub", kNoUtf8)));
    EXPECT_EQ(0, engine->subtitleManager->EntryCount());
}

TEST_F(SubtitleOpen, ALoadMakesTheManagerAndLinksTheCallback) {
    EXPECT_TRUE(OpenBeside({}));
    ASSERT_EQ(nullptr, engine->subtitleManager);
    ClearCalls();
    EXPECT_TRUE(engine->LoadSubtitle(folder.Write(u8"a.srt", kSubRip)));
    EXPECT_EQ((Lines{L"> Subtitle video size: 1920x1080", L"> Subtitle type: 1",
                     L"> SRT content size: 35 bytes", L"> ASS content size: 618 bytes"}),
              CallsOf(L"> "));
    EXPECT_TRUE(IsLinked());
}

TEST_F(SubtitleOpen, ALoadNeedsNoGraph) {
    EXPECT_TRUE(engine->LoadSubtitle(folder.Write(u8"a.srt", kSubRip)));
    EXPECT_EQ(L"> Subtitle video size: 1920x1080", CallsOf(L"> ").at(0));
    EXPECT_EQ(L"a.srt", LoadedName());
}

TEST_F(SubtitleOpen, AnEntryIsChosenByItsIndex) {
    EXPECT_FALSE(engine->SelectSubtitle(0)) << "no manager";
    EXPECT_TRUE(OpenBeside({{u8"영화.srt", kSubRip}}));
    EXPECT_TRUE(engine->SelectSubtitle(0));
    EXPECT_FALSE(engine->SelectSubtitle(1));
    EXPECT_FALSE(engine->SelectSubtitle(-1));
    EXPECT_EQ(0, engine->subtitleManager->CurrentIndex());
}

TEST_F(SubtitleOpen, SwitchingIsStoredAndObeyed) {
    engine->SetSubtitleEnabled(false);
    EXPECT_EQ(std::uint32_t{0}, std::get<std::uint32_t>(settings.values.at(L"SubtitleEnabled")));
    EXPECT_EQ(nullptr, engine->subtitleManager) << "nothing is made for it";
    engine->SetSubtitleEnabled(true);
    EXPECT_EQ(std::uint32_t{1}, std::get<std::uint32_t>(settings.values.at(L"SubtitleEnabled")));
    EXPECT_TRUE(OpenBeside({{u8"영화.srt", kSubRip}}));
    engine->SetSubtitleEnabled(false);
    EXPECT_FALSE(engine->subtitleManager->enabled);
    EXPECT_EQ(nullptr, engine->subtitleManager->GetSubPic(15'000'000));
    EXPECT_EQ(1, engine->subtitleManager->EntryCount()) << "nothing is unloaded";
    settings.refusesWrites = true;
    engine->SetSubtitleEnabled(true);
    EXPECT_TRUE(engine->subtitleManager->enabled) << "also when it can't be stored";
    EXPECT_NE(nullptr, engine->subtitleManager->GetSubPic(15'000'000));
    EXPECT_EQ(4, Stores());
}

TEST_F(SubtitleOpen, TheDelayIsShiftedAndReset) {
    engine->AdjustSubtitleDelay(500);
    engine->ResetSubtitleDelay();
    EXPECT_EQ(0, engine->GetSubtitleDelay());
    EXPECT_EQ(nullptr, engine->subtitleManager) << "without one nothing happens";
    EXPECT_TRUE(OpenBeside({{u8"영화.srt", kSubRip}}));
    engine->AdjustSubtitleDelay(500);
    EXPECT_EQ(500, engine->GetSubtitleDelay());
    engine->AdjustSubtitleDelay(500);
    EXPECT_EQ(1000, engine->GetSubtitleDelay());
    engine->AdjustSubtitleDelay(-2500);
    EXPECT_EQ(-1500, engine->GetSubtitleDelay());
    EXPECT_TRUE(OpenBeside({}));
    EXPECT_EQ(-1500, engine->GetSubtitleDelay()) << "it stands for the next file";
    engine->ResetSubtitleDelay();
    EXPECT_EQ(0, engine->GetSubtitleDelay());
    EXPECT_EQ(0, Stores()) << "it is not stored";
}

TEST_F(SubtitleOpen, AShiftDropsThePictures) {
    EXPECT_TRUE(OpenBeside({{u8"영화.srt", kSubRip}}));
    EXPECT_NE(nullptr, engine->subtitleManager->GetSubPic(15'000'000));
    engine->AdjustSubtitleDelay(500);
    EXPECT_EQ(nullptr, engine->subtitleManager->GetSubPic(15'000'000)) << "nothing is shown at two seconds";
    engine->ResetSubtitleDelay();
    EXPECT_NE(nullptr, engine->subtitleManager->GetSubPic(15'000'000));
}

} // namespace
} // namespace brindlecast::testing
