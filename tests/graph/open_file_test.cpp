#include "tests/graph/graph_fixture.h"

#include <vfwmsgs.h>

// The whole way of opening a file: every call that the modules get and every line, in order.

namespace brindlecast::testing {
namespace {

class OpenFile : public GraphTest {
protected:
    // One build of a file whose Load fails.
    static Lines FailedLoad() {
        return Join(
            {expected::RendererStart(), expected::SplitterStart(), {L"> Failed to load file: 0x80004005"}});
    }
    static Lines BuildWithoutVideo(int method, const wchar_t* methodName) {
        return Join({expected::RendererStart(),
                     expected::SplitterStart(),
                     expected::ThreeKeyFrames(),
                     expected::VideoDecoderStart(method, methodName),
                     expected::AudioDecoderStart(),
                     expected::SwitcherStart(),
                     expected::SoundStart(),
                     expected::Priming(),
                     expected::AudioChain(),
                     {L"> Connection status - Video: 0, Audio: 1"},
                     expected::GraphEnd()});
    }
};

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

TEST_F(OpenFile, TheHardwareMethodIsReadEachTime) {
    settings.values[L"LAV_HWAccel"] = std::uint32_t{3};
    ASSERT_TRUE(engine->OpenFile(kFilm));
    ExpectLines(Join({{L"> OpenFile with HWAccel=3"}, expected::FilmBuild(3, L"DXVA2")}), Calls());
    EXPECT_EQ(3U, engine->hwAccel);
    settings.values[L"LAV_HWAccel"] = std::uint32_t{0};
    ClearCalls();
    ASSERT_TRUE(engine->OpenFile(kFilm));
    ExpectLines(Join({expected::Close(), {L"> OpenFile with HWAccel=0"}, expected::FilmBuild(0, L"None")}),
                Calls());
    EXPECT_EQ(0U, engine->hwAccel);
}

TEST_F(OpenFile, AMethodOfAnotherTypeCountsAsAbsent) {
    settings.values[L"LAV_HWAccel"] = std::wstring(L"0");
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(5U, engine->hwAccel);
}

TEST_F(OpenFile, AFailedBuildIsRepeatedOnceAfterAPause) {
    SetNumber("LAVSplitter.load", E_FAIL);
    const ULONGLONG begin = GetTickCount64();
    EXPECT_FALSE(engine->OpenFile(kFilm));
    EXPECT_GE(GetTickCount64() - begin, 90U); // 100 ms by a coarser clock
    ExpectLines(Join({{L"> OpenFile with HWAccel=5"}, FailedLoad(), FailedLoad()}), Calls());
    EXPECT_TRUE(engine->currentFile.empty());
    EXPECT_EQ(nullptr, engine->graph);
    EXPECT_EQ(nullptr, engine->splitter);
    EXPECT_EQ(nullptr, engine->videoRenderer);
    EXPECT_EQ(0, RecorderLiving());
}

TEST_F(OpenFile, NothingOfAFailedBuildIsLeftInTheNext) {
    // The first build fails at its very end, with every filter made.
    SetNumber("LAVAudio.refuse", VFW_E_TYPE_NOT_ACCEPTED);
    EXPECT_FALSE(engine->OpenFile(kFilm));
    Lines loads;
    for (unsigned i = 0; i < RecorderCount(); ++i) {
        const std::wstring line = RecorderLineAt(i);
        if (line.starts_with(L"LAVSplitter.Load with")) {
            loads.push_back(line);
        }
    }
    // The renderer and the splitter itself.
    EXPECT_EQ((Lines{L"LAVSplitter.Load with 2 filters alive", L"LAVSplitter.Load with 2 filters alive"}),
              loads);
}

TEST_F(OpenFile, AFailedOpenClosesWhatWasOpen) {
    ASSERT_TRUE(engine->OpenFile(kFilm));
    SetNumber("LAVSplitter.load", E_FAIL);
    ClearCalls();
    EXPECT_FALSE(engine->OpenFile(kFilm));
    ExpectLines(Join({expected::Close(), {L"> OpenFile with HWAccel=5"}, FailedLoad(), FailedLoad()}),
                Calls());
    EXPECT_TRUE(engine->currentFile.empty());
    EXPECT_EQ(nullptr, engine->control);
}

TEST_F(OpenFile, ASoundFileIsBuiltAgainInSoftware) {
    SetText("LAVSplitter.pins", L"Audio:audio");
    ASSERT_TRUE(engine->OpenFile(kFilm));
    ExpectLines(Join({{L"> OpenFile with HWAccel=5"},
                      BuildWithoutVideo(5, L"D3D11"),
                      expected::Close(),
                      BuildWithoutVideo(0, L"None")}),
                Calls());
    EXPECT_EQ(0U, engine->hwAccel);
    EXPECT_FALSE(engine->hasVideo);
    EXPECT_EQ(kFilm, engine->currentFile);
    EXPECT_DOUBLE_EQ(0.0, engine->frameRate);
}

TEST_F(OpenFile, ASoundFileInSoftwareIsBuiltOnce) {
    settings.values[L"LAV_HWAccel"] = std::uint32_t{0};
    SetText("LAVSplitter.pins", L"Audio:audio");
    ASSERT_TRUE(engine->OpenFile(kFilm));
    ExpectLines(Join({{L"> OpenFile with HWAccel=0"}, BuildWithoutVideo(0, L"None")}), Calls());
}

TEST_F(OpenFile, WithoutTheFallbackTheSoundAloneStands) {
    settings.values[L"HWAccelFallback"] = std::uint32_t{0};
    SetText("LAVSplitter.pins", L"Audio:audio");
    ASSERT_TRUE(engine->OpenFile(kFilm));
    ExpectLines(Join({{L"> OpenFile with HWAccel=5"}, BuildWithoutVideo(5, L"D3D11")}), Calls());
    EXPECT_EQ(5U, engine->hwAccel);
    EXPECT_EQ(kFilm, engine->currentFile);
}

TEST_F(OpenFile, AFallbackOfAnotherTypeIsTakenByItsFirstBytes) {
    settings.values[L"HWAccelFallback"] = FakeSettingsStore::Bytes{0, 0, 0, 0, 9};
    SetText("LAVSplitter.pins", L"Audio:audio");
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(5U, engine->hwAccel);
}

TEST_F(OpenFile, APictureThatConnectsInSoftwareAloneComesFromTheThirdBuild) {
    // The decoder takes no connection while D3D11 is asked for.
    SetNumber("LAVVideo.refuseUnderMethod", 5);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_TRUE(engine->hasVideo);
    EXPECT_EQ(0U, engine->hwAccel);
    EXPECT_EQ((Lines{L"LAVVideo.SetHWAccel(5)", L"LAVVideo.SetHWAccel(0)"}),
              CallsOf(L"LAVVideo.SetHWAccel("));
    EXPECT_EQ(
        (Lines{L"> Connection status - Video: 0, Audio: 1", L"> Connection status - Video: 1, Audio: 1"}),
        CallsOf(L"> Connection status"));
}

TEST_F(OpenFile, WithoutTheFallbackNoSoftwareAttemptIsMade) {
    settings.values[L"HWAccelFallback"] = std::uint32_t{0};
    SetNumber("LAVVideo.refuseUnderMethod", 5);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_FALSE(engine->hasVideo);
    EXPECT_EQ((Lines{L"LAVVideo.SetHWAccel(5)"}), CallsOf(L"LAVVideo.SetHWAccel("));
}

TEST_F(OpenFile, AFailedSoftwareRebuildIsNotRepeated) {
    SetText("LAVSplitter.pins", L"Audio:audio");
    SetNumber("LAVSplitter.loadsBeforeFailure", 1);
    EXPECT_FALSE(engine->OpenFile(kFilm));
    ExpectLines(Join({{L"> OpenFile with HWAccel=5"},
                      BuildWithoutVideo(5, L"D3D11"),
                      expected::Close(),
                      FailedLoad()}),
                Calls());
    EXPECT_TRUE(engine->currentFile.empty());
    EXPECT_EQ(nullptr, engine->graph);
}

TEST_F(OpenFile, ALargePictureForcesD3D11AlsoInTheSoftwareRebuild) {
    settings.values[L"LAV_HWAccel"] = std::uint32_t{3};
    SetText("LAVSplitter.pins", L"Video:video/7680/4320/400000;Audio:audio");
    SetNumber("LAVVideo.refuse", VFW_E_TYPE_NOT_ACCEPTED);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"LAVVideo.SetHWAccel(5)", L"LAVVideo.SetHWAccel(5)"}),
              CallsOf(L"LAVVideo.SetHWAccel("));
    EXPECT_EQ(5U, engine->hwAccel);
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
    ASSERT_TRUE(engine->OpenFile(kFilm));
    const HMODULE splitterModule = engine->splitterModule;
    EXPECT_TRUE(engine->SetRate(2.0));
    engine->SetRotation(90);
    SetText("LAVSplitter.pins", L"Video:video/640/480/0;Audio:audio"); // no frame duration
    ASSERT_TRUE(engine->OpenFile(L"C:\\films\\other.mkv"));
    EXPECT_DOUBLE_EQ(2.0, engine->rate);
    EXPECT_EQ(90U, engine->rotation);
    EXPECT_DOUBLE_EQ(25.0, engine->frameRate);
    EXPECT_EQ(splitterModule, engine->splitterModule);
    double graphRate = 0.0;
    engine->seeking->GetRate(&graphRate);
    EXPECT_DOUBLE_EQ(1.0, graphRate);
}

} // namespace
} // namespace brindlecast::testing
