#include "tests/graph/failing_control.h"
#include "tests/graph/graph_fixture.h"

#include <algorithm>

namespace brindlecast::testing {
namespace {

class PlayAndClose : public GraphTest {
protected:
    void Open() {
        ASSERT_TRUE(engine->OpenFile(kFilm));
        ClearCalls();
    }
    void OpenAndPause() {
        Open();
        ASSERT_TRUE(engine->Play());
        ASSERT_TRUE(SUCCEEDED(engine->control->Pause()));
        engine->state = kEnginePaused;
        ClearCalls();
    }
    // The first keyframe, where closing seeks to; the graph's own seeks when it stops go elsewhere.
    static constexpr const wchar_t* kClosingSeek = L"LAVSplitter.SetPositions(230000, 1, 0)";
    void UseLateFirstKeyFrame() { SetText("LAVSplitter.keyFrames", L"230000,20000000"); }
};

TEST_F(PlayAndClose, WithoutGraphNothingPlays) {
    EXPECT_FALSE(engine->Play());
    EXPECT_EQ(Lines{}, Calls());
    EXPECT_EQ(0U, engine->state);
}

TEST_F(PlayAndClose, RunsTheGraph) {
    Open();
    EXPECT_TRUE(engine->Play());
    EXPECT_EQ(2U, engine->state);
    ExpectLines({L"> Play() - Current state: 0", L"> Play() - Run() returned: 0x00000000",
                 L"> Active Decoder: (null/software)"},
                Calls());
}

TEST_F(PlayAndClose, RunsOnFromPaused) {
    OpenAndPause();
    EXPECT_TRUE(engine->Play());
    EXPECT_EQ(2U, engine->state);
    ExpectLines({L"> Play() - Current state: 1", L"> Play() - Run() returned: 0x00000000",
                 L"> Active Decoder: (null/software)"},
                Calls());
}

TEST_F(PlayAndClose, AFailureFromPausedLeavesItPaused) {
    OpenAndPause();
    LetRunFail(engine->control, E_FAIL);
    EXPECT_FALSE(engine->Play());
    EXPECT_EQ(1U, engine->state);
    ExpectLines({L"> Play() - Current state: 1", L"> Play() - Run() returned: 0x80004005"}, Calls());
    EXPECT_EQ(kFilm, engine->currentFile);
}

TEST_F(PlayAndClose, NamesTheDecoderAndItsDevice) {
    SetText("LAVVideo.decoderName", L"d3d11va");
    SetText("LAVVideo.activeDevice", L"Adapter 0");
    Open();
    EXPECT_TRUE(engine->Play());
    ExpectLines({L"> Play() - Current state: 0", L"> Play() - Run() returned: 0x00000000",
                 L"> Active Decoder: d3d11va", L"> HW Accel Device: Adapter 0"},
                Calls());
}

TEST_F(PlayAndClose, ADeviceWithoutNameIsNotNamed) {
    SetText("LAVVideo.decoderName", L"d3d11va");
    SetNumber("LAVVideo.deviceIsNull", 1);
    Open();
    EXPECT_TRUE(engine->Play());
    EXPECT_EQ((Lines{L"LAVVideo.GetHWAccelActiveDevice"}), QueriesOf(L"LAVVideo.GetHWAccelActive"));
    EXPECT_EQ(Lines{}, CallsOf(L"> HW Accel Device"));
}

TEST_F(PlayAndClose, AnOldDecoderWithoutStatusIsNotNamed) {
    for (const long answer : {1L, 2L}) {
        SetNumber("LAVVideo.noStatus", answer);
        Open();
        EXPECT_TRUE(engine->Play());
        EXPECT_EQ(Lines{}, CallsOf(L"> Active Decoder"));
    }
}

TEST_F(PlayAndClose, AfterStopThereIsNothingToPlay) {
    Open();
    ASSERT_TRUE(engine->Play());
    engine->CloseGraph();
    ClearCalls();
    EXPECT_FALSE(engine->Play());
    EXPECT_EQ(Lines{}, Calls());
    EXPECT_EQ(0U, engine->state);
    EXPECT_TRUE(engine->currentFile.empty());
}

TEST_F(PlayAndClose, ClosingClearsWhatBelongsToTheFile) {
    Open();
    EXPECT_TRUE(engine->Play());
    engine->markA = 5;
    engine->markB = 6;
    engine->lastRepeatJumpTick = 7;
    engine->embeddedSubtitleTrack = 2;
    ClearCalls();
    engine->CloseGraph();
    EXPECT_EQ((Lines{L"MpcVideoRenderer64.put_Visible(0)", L"MpcVideoRenderer64.put_Owner(0)"}),
              CallsOf(L"MpcVideoRenderer64."));
    EXPECT_EQ(0, engine->markA);
    EXPECT_EQ(0, engine->markB);
    EXPECT_EQ(0U, engine->lastRepeatJumpTick);
    EXPECT_EQ(-1, engine->embeddedSubtitleTrack);
    EXPECT_TRUE(engine->currentFile.empty());
    EXPECT_TRUE(engine->keyFrames.empty());
    EXPECT_EQ(0U, engine->state);
    EXPECT_EQ(0, RecorderLiving());
}

TEST_F(PlayAndClose, ClosingReleasesEveryInterface) {
    Open();
    engine->CloseGraph();
    const PlayerEngine& e = *engine;
    for (const bool present :
         {e.graph != nullptr, e.control != nullptr, e.seeking != nullptr, e.events != nullptr,
          e.basicAudio != nullptr, e.basicVideo != nullptr, e.videoWindowControl != nullptr,
          e.videoRenderer != nullptr, e.rendererConfig != nullptr, e.splitter != nullptr,
          e.lavVideo != nullptr, e.lavAudio != nullptr, e.audioSwitcher != nullptr,
          e.audioSwitcherControl != nullptr, e.keyFrameInfo != nullptr, e.subtitleCallback != nullptr}) {
        EXPECT_FALSE(present);
    }
    EXPECT_NE(nullptr, e.splitterModule);
    EXPECT_NE(nullptr, e.videoModule);
    EXPECT_NE(nullptr, e.audioModule);
    EXPECT_NE(nullptr, e.rendererModule);
    EXPECT_EQ(host, e.videoHost);
}

TEST_F(PlayAndClose, ClosingTwiceIsHarmless) {
    Open();
    engine->CloseGraph();
    ClearCalls();
    engine->CloseGraph();
    EXPECT_EQ(Lines{}, Calls());
}

TEST_F(PlayAndClose, TheSeekToTheStartSnapsToTheFirstKeyFrame) {
    UseLateFirstKeyFrame();
    Open();
    engine->CloseGraph();
    EXPECT_EQ((Lines{kClosingSeek}), CallsOf(L"LAVSplitter.SetPositions"));
}

TEST_F(PlayAndClose, ClosingStopsAndThenSeeksToTheStart) {
    UseLateFirstKeyFrame();
    for (const bool paused : {false, true}) {
        if (paused) {
            OpenAndPause();
        } else {
            Open();
            ASSERT_TRUE(engine->Play());
        }
        ClearCalls();
        engine->CloseGraph();
        const Lines all = CallsAndStates();
        const auto seek = std::ranges::find(all, kClosingSeek);
        ASSERT_NE(all.end(), seek);
        EXPECT_EQ(6, std::count_if(all.begin(), seek,
                                   [](const std::wstring& line) { return line.ends_with(L".Stop"); }))
            << "every filter has stopped before";
        EXPECT_EQ(0, std::ranges::count(seek, all.end(), L"MpcVideoRenderer64.Run")) << "and stays so";
        const auto hides = std::ranges::find(all, L"MpcVideoRenderer64.put_Visible(0)");
        EXPECT_LT(seek, hides);
        EXPECT_LT(hides, std::ranges::find(all, L"MpcVideoRenderer64.leaves the graph"));
    }
}

TEST_F(PlayAndClose, AGraphThatDoesNotStopIsNotSought) {
    UseLateFirstKeyFrame();
    OpenAndPause();
    SetNumber("LAVVideo.stop", E_FAIL);
    engine->CloseGraph();
    EXPECT_EQ(0U, CountOf(Calls(), kClosingSeek));
    EXPECT_EQ((Lines{L"MpcVideoRenderer64.put_Visible(0)", L"MpcVideoRenderer64.put_Owner(0)"}),
              CallsOf(L"MpcVideoRenderer64."));
    EXPECT_EQ(0U, engine->state);
    EXPECT_EQ(nullptr, engine->graph);
}

TEST_F(PlayAndClose, ShutdownForgetsWindowAndModules) {
    Open();
    const std::wstring path = ModulePath(L"LAVVideo.ax");
    for (int time = 0; time < 2; ++time) {
        engine->Shutdown();
        EXPECT_EQ(nullptr, engine->videoHost);
        EXPECT_EQ(nullptr, engine->splitterModule);
        EXPECT_EQ(nullptr, engine->videoModule);
        EXPECT_EQ(nullptr, engine->audioModule);
        EXPECT_EQ(nullptr, engine->rendererModule);
        EXPECT_EQ(nullptr, engine->switcherModule);
        EXPECT_NE(nullptr, GetModuleHandleW(path.c_str())) << "a module stays loaded";
    }
}

TEST_F(PlayAndClose, ShutdownOfAPlayingFileLeavesNothing) {
    Open();
    ASSERT_TRUE(engine->Play());
    ClearCalls();
    engine->Shutdown();
    EXPECT_EQ((Lines{L"MpcVideoRenderer64.put_Visible(0)", L"MpcVideoRenderer64.put_Owner(0)"}),
              CallsOf(L"MpcVideoRenderer64."));
    EXPECT_EQ(0, RecorderLiving());
    EXPECT_EQ(nullptr, engine->graph);
    ClearCalls();
    engine->Shutdown();
    engine.reset();
    EXPECT_EQ(Lines{}, Calls());
}

} // namespace
} // namespace brindlecast::testing
