#include "tests/graph/graph_fixture.h"
#include "tests/graph/sleep_record.h"

#include <vfwmsgs.h>

// The whole way of opening a file: every call that the modules get and every line, in order.

namespace brindlecast::testing {
namespace {

using OpenFile = GraphTest;

TEST_F(OpenFile, AFilmIsBuiltStepByStep) {
    EXPECT_TRUE(engine->OpenFile(kFilm));
    ExpectLines(Join({{L"> OpenFile with HWAccel=5"}, expected::FilmBuild()}), Calls());
    EXPECT_EQ(kFilm, engine->currentFile);
    EXPECT_EQ(0U, engine->state);
    EXPECT_TRUE(engine->hasVideo);
    EXPECT_DOUBLE_EQ(25.0, engine->frameRate);
    EXPECT_EQ((std::vector<Time100ns>{0, 20'000'000, 40'000'000}), engine->keyFrames);
    EXPECT_EQ(nullptr, engine->subtitleManager);
}

TEST_F(OpenFile, EveryFieldOfAnOpenGraphIsThere) {
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_NE(nullptr, engine->graph);
    EXPECT_NE(nullptr, engine->control);
    EXPECT_NE(nullptr, engine->seeking);
    EXPECT_NE(nullptr, engine->events);
    EXPECT_NE(nullptr, engine->basicAudio);
    EXPECT_NE(nullptr, engine->basicVideo);
    EXPECT_NE(nullptr, engine->videoWindowControl);
    EXPECT_NE(nullptr, engine->videoRenderer);
    EXPECT_NE(nullptr, engine->rendererConfig);
    EXPECT_NE(nullptr, engine->splitter);
    EXPECT_NE(nullptr, engine->lavVideo);
    EXPECT_NE(nullptr, engine->lavAudio);
    EXPECT_NE(nullptr, engine->audioSwitcher);
    EXPECT_NE(nullptr, engine->audioSwitcherControl);
    EXPECT_NE(nullptr, engine->keyFrameInfo);
    EXPECT_NE(nullptr, engine->subtitleCallback);
    EXPECT_NE(nullptr, engine->splitterModule);
    EXPECT_NE(nullptr, engine->videoModule);
    EXPECT_NE(nullptr, engine->audioModule);
    EXPECT_NE(nullptr, engine->rendererModule);
    EXPECT_EQ(nullptr, engine->switcherModule);
}

TEST_F(OpenFile, ANewEngineHasItsStartValues) {
    const PlayerEngine fresh(settings);
    for (const bool present : {fresh.graph != nullptr,
                               fresh.control != nullptr,
                               fresh.seeking != nullptr,
                               fresh.events != nullptr,
                               fresh.basicAudio != nullptr,
                               fresh.basicVideo != nullptr,
                               fresh.videoWindowControl != nullptr,
                               fresh.videoRenderer != nullptr,
                               fresh.rendererConfig != nullptr,
                               fresh.splitter != nullptr,
                               fresh.lavVideo != nullptr,
                               fresh.lavAudio != nullptr,
                               fresh.audioSwitcher != nullptr,
                               fresh.audioSwitcherControl != nullptr,
                               fresh.keyFrameInfo != nullptr,
                               fresh.subtitleCallback != nullptr,
                               fresh.subtitleManager != nullptr,
                               fresh.videoHost != nullptr,
                               fresh.splitterModule != nullptr,
                               fresh.videoModule != nullptr,
                               fresh.audioModule != nullptr,
                               fresh.rendererModule != nullptr,
                               fresh.switcherModule != nullptr}) {
        EXPECT_FALSE(present);
    }
    EXPECT_TRUE(fresh.keyFrames.empty());
    EXPECT_FALSE(fresh.flipHorizontal);
    EXPECT_FALSE(fresh.flipVertical);
    EXPECT_EQ(0, fresh.toolbarHeight);
    EXPECT_EQ(0U, fresh.state);
    EXPECT_FLOAT_EQ(0.5F, fresh.volume);
    EXPECT_FALSE(fresh.muted);
    EXPECT_EQ(0U, fresh.rotation);
    EXPECT_EQ(5U, fresh.hwAccel);
    EXPECT_DOUBLE_EQ(1.0, fresh.rate);
    EXPECT_DOUBLE_EQ(0.0, fresh.frameRate);
    EXPECT_FALSE(fresh.hasVideo);
    EXPECT_TRUE(fresh.audioNormalize);
    EXPECT_TRUE(fresh.audioNormalizeRecover);
    EXPECT_FLOAT_EQ(4.0F, fresh.audioMaxNormFactor);
    EXPECT_FLOAT_EQ(1.0F, fresh.audioBoostGain);
    EXPECT_TRUE(fresh.currentFile.empty());
    EXPECT_EQ(0, fresh.markA);
    EXPECT_EQ(0, fresh.markB);
    EXPECT_EQ(0U, fresh.lastRepeatJumpTick);
    EXPECT_EQ(-1, fresh.embeddedSubtitleTrack);
    EXPECT_TRUE(settings.writes.empty());
}

TEST_F(OpenFile, AFailedBuildIsRepeatedOnceAfterAPause) {
    SetNumber("LAVSplitter.load", E_FAIL);
    const SleepRecord sleeps;
    EXPECT_FALSE(engine->OpenFile(kFilm));
    EXPECT_EQ((std::vector<DWORD>{100}), sleeps.Seen());
    ExpectLines(Join({{L"> OpenFile with HWAccel=5"}, expected::FailedLoad(), expected::FailedLoad()}),
                Calls());
    EXPECT_TRUE(engine->currentFile.empty());
    EXPECT_EQ(nullptr, engine->graph);
    EXPECT_EQ(nullptr, engine->splitter);
    EXPECT_EQ(nullptr, engine->videoRenderer);
    EXPECT_EQ(0, RecorderLiving());
}

TEST_F(OpenFile, ABuildThatSucceedsAtTheSecondAttemptIsAnOpen) {
    SetNumber("LAVSplitter.loadFailures", 1);
    const SleepRecord sleeps;
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((std::vector<DWORD>{100}), sleeps.Seen());
    ExpectLines(Join({{L"> OpenFile with HWAccel=5"}, expected::FailedLoad(), expected::FilmBuild()}),
                Calls());
    EXPECT_EQ(kFilm, engine->currentFile);
}

TEST_F(OpenFile, TheOpenFileCanBeOpenedAgainByItsOwnField) {
    ASSERT_TRUE(engine->OpenFile(kFilm));
    ClearCalls();
    EXPECT_TRUE(engine->OpenFile(engine->currentFile));
    ExpectLines(Join({expected::Close(), {L"> OpenFile with HWAccel=5"}, expected::FilmBuild()}), Calls());
    EXPECT_EQ(kFilm, engine->currentFile);
}

TEST_F(OpenFile, NothingOfAFailedBuildIsLeftInTheNext) {
    // The first build fails at its very end, with every filter made.
    SetNumber("LAVAudio.refuse", VFW_E_TYPE_NOT_ACCEPTED);
    EXPECT_FALSE(engine->OpenFile(kFilm));
    // The renderer and the splitter itself.
    EXPECT_EQ((Lines{L"LAVSplitter.Load with 2 filters alive", L"LAVSplitter.Load with 2 filters alive"}),
              QueriesOf(L"LAVSplitter.Load with"));
}

TEST_F(OpenFile, AFailedOpenClosesWhatWasOpen) {
    ASSERT_TRUE(engine->OpenFile(kFilm));
    SetNumber("LAVSplitter.load", E_FAIL);
    ClearCalls();
    EXPECT_FALSE(engine->OpenFile(kFilm));
    ExpectLines(Join({expected::Close(),
                      {L"> OpenFile with HWAccel=5"},
                      expected::FailedLoad(),
                      expected::FailedLoad()}),
                Calls());
    EXPECT_TRUE(engine->currentFile.empty());
    EXPECT_EQ(nullptr, engine->control);
}

TEST_F(OpenFile, AnEmptyPathOpensAndLooksForNoSubtitles) {
    ASSERT_TRUE(engine->OpenFile(L""));
    EXPECT_TRUE(engine->currentFile.empty());
    EXPECT_EQ(Lines{}, CallsOf(L"> Found"));
}

TEST_F(OpenFile, SubtitlesBesideTheFileAreCounted) {
    const std::wstring film = ModulePath(L"subtitle film.mkv");
    const Lines files = {ModulePath(L"subtitle film.srt"), ModulePath(L"subtitle film.ko.ass")};
    for (const std::wstring& file : files) {
        CloseHandle(CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    }
    EXPECT_TRUE(engine->OpenFile(film));
    EXPECT_EQ((Lines{L"> Found 2 subtitle(s): <dir>\\subtitle film.srt"}), CallsOf(L"> Found"));
    for (const std::wstring& file : files) {
        EXPECT_TRUE(DeleteFileW(file.c_str()));
    }
}

TEST_F(OpenFile, WhatSurvivesFromFileToFile) {
    settings.values[L"AudioNormalize"] = std::uint32_t{0};
    settings.values[L"AudioNormalizeRecover"] = std::uint32_t{0};
    settings.values[L"AudioMaxNormFactor"] = std::uint32_t{250};
    settings.values[L"AudioBoost"] = std::uint32_t{40};
    ASSERT_TRUE(engine->OpenFile(kFilm));
    const HMODULE modules[] = {engine->splitterModule, engine->videoModule, engine->audioModule,
                               engine->rendererModule};
    EXPECT_TRUE(engine->SetRate(2.0));
    EXPECT_TRUE(engine->SetVolume(0.25F));
    engine->SetMuted(true);
    engine->SetRotation(90);
    engine->SetFlipHorizontal(true);
    engine->SetFlipVertical(true);
    engine->toolbarHeight = 75;
    SetText("LAVSplitter.pins", L"Video:video/640/480/0;Audio:audio"); // no frame duration
    SetNumber("AudioSwitcher.noControl", 1);
    ASSERT_TRUE(engine->OpenFile(L"C:\\films\\other.mkv"));
    EXPECT_DOUBLE_EQ(2.0, engine->rate);
    EXPECT_FLOAT_EQ(0.25F, engine->volume);
    EXPECT_TRUE(engine->muted);
    EXPECT_EQ(90U, engine->rotation);
    EXPECT_TRUE(engine->flipHorizontal);
    EXPECT_TRUE(engine->flipVertical);
    EXPECT_DOUBLE_EQ(25.0, engine->frameRate);
    EXPECT_TRUE(engine->hasVideo);
    EXPECT_EQ(75, engine->toolbarHeight);
    EXPECT_EQ(host, engine->videoHost);
    EXPECT_FALSE(engine->audioNormalize);
    EXPECT_FALSE(engine->audioNormalizeRecover);
    EXPECT_FLOAT_EQ(2.5F, engine->audioMaxNormFactor);
    EXPECT_FLOAT_EQ(1.4F, engine->audioBoostGain);
    EXPECT_EQ(modules[0], engine->splitterModule);
    EXPECT_EQ(modules[1], engine->videoModule);
    EXPECT_EQ(modules[2], engine->audioModule);
    EXPECT_EQ(modules[3], engine->rendererModule);
    double graphRate = 0.0;
    engine->seeking->GetRate(&graphRate);
    EXPECT_DOUBLE_EQ(1.0, graphRate);
    EXPECT_EQ((Lines{L"AudioRenderer.put_Volume(-10000)"}), Lines(1, CallsOf(L"AudioRenderer.put").back()));
}

TEST_F(OpenFile, WithoutPictureHasVideoIsTakenBack) {
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_TRUE(engine->hasVideo);
    SetText("LAVSplitter.pins", L"Audio:audio");
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_FALSE(engine->hasVideo);
}

} // namespace
} // namespace brindlecast::testing
