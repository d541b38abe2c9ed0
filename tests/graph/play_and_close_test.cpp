#include "tests/graph/graph_fixture.h"

#include <control.h>

#include <functional>

namespace brindlecast::testing {
namespace {

class PlayAndClose : public GraphTest {
protected:
    void Open(std::uint32_t method) {
        settings.values[L"LAV_HWAccel"] = method;
        ASSERT_TRUE(engine->OpenFile(kFilm));
        ClearCalls();
    }
    static Lines OutOfMemory() {
        return {L"> Play() - Current state: 0", L"> Play() - Run() returned: 0x8007000E"};
    }
    // Wine's graph seeks back when a failed run is stopped; how often is its affair.
    static Lines WithoutSeeks(Lines lines) {
        std::erase(lines, L"LAVSplitter.SetPositions(0, 1, 0)");
        return lines;
    }
};

TEST_F(PlayAndClose, WithoutGraphNothingPlays) {
    EXPECT_FALSE(engine->Play());
    EXPECT_EQ(Lines{}, Calls());
    EXPECT_EQ(0U, engine->state);
}

TEST_F(PlayAndClose, RunsTheGraph) {
    Open(5);
    EXPECT_TRUE(engine->Play());
    EXPECT_EQ(2U, engine->state);
    ExpectLines({L"> Play() - Current state: 0", L"> Play() - Run() returned: 0x00000000",
                 L"> Active Decoder: (null/software)"},
                Calls());
}

TEST_F(PlayAndClose, NamesTheDecoderAndItsDevice) {
    SetText("LAVVideo.decoderName", L"d3d11va");
    SetText("LAVVideo.activeDevice", L"Adapter 0");
    Open(5);
    EXPECT_TRUE(engine->Play());
    ExpectLines({L"> Play() - Current state: 0", L"> Play() - Run() returned: 0x00000000",
                 L"> Active Decoder: d3d11va", L"> HW Accel Device: Adapter 0"},
                Calls());
}

TEST_F(PlayAndClose, AnOldDecoderWithoutStatusIsNotNamed) {
    SetNumber("LAVVideo.noStatus", 1);
    Open(5);
    EXPECT_TRUE(engine->Play());
    EXPECT_EQ(Lines{}, CallsOf(L"> Active Decoder"));
}

TEST_F(PlayAndClose, OutOfMemoryUnderAnotherMethodIsAnsweredByD3D11) {
    for (const std::uint32_t method : {1U, 2U, 3U, 4U}) {
        Open(method);
        // The decoder fails as long as it is not asked for D3D11.
        SetNumber("LAVVideo.pauseExceptMethod5", E_OUTOFMEMORY);
        EXPECT_TRUE(engine->Play());
        ExpectLines(Join({OutOfMemory(),
                          {L"MpcVideoRenderer64.put_Visible(0)", L"MpcVideoRenderer64.put_Owner(0)"},
                          WithoutSeeks(expected::FilmBuild()),
                          {L"> Play() - Retry with D3D11 returned: 0x00000000",
                           L"> Active Decoder: (null/software)"}}),
                    WithoutSeeks(Calls()));
        EXPECT_EQ(5U, engine->hwAccel);
        EXPECT_EQ(2U, engine->state);
        EXPECT_EQ(kFilm, engine->currentFile);
        SetNumber("LAVVideo.pauseExceptMethod5", 0);
    }
}

TEST_F(PlayAndClose, ASecondFailureUnderD3D11Stands) {
    Open(3);
    SetNumber("LAVVideo.pause", E_OUTOFMEMORY);
    EXPECT_FALSE(engine->Play());
    EXPECT_EQ((Lines{L"> Play() - Run() returned: 0x8007000E",
                     L"> Play() - Retry with D3D11 returned: 0x8007000E"}),
              Join({CallsOf(L"> Play() - Run"), CallsOf(L"> Play() - Retry")}));
    EXPECT_EQ(0U, engine->state);
    EXPECT_EQ(kFilm, engine->currentFile);
}

TEST_F(PlayAndClose, OutOfMemoryInSoftwareOrUnderD3D11IsNotRetried) {
    for (const std::uint32_t method : {0U, 5U}) {
        Open(method);
        SetNumber("LAVVideo.pause", E_OUTOFMEMORY);
        EXPECT_FALSE(engine->Play());
        ExpectLines(OutOfMemory(), WithoutSeeks(Calls()));
        EXPECT_EQ(method, engine->hwAccel);
        EXPECT_EQ(0U, engine->state);
        SetNumber("LAVVideo.pause", 0);
    }
}

TEST_F(PlayAndClose, AnotherFailureIsNotRetried) {
    Open(3);
    SetNumber("LAVVideo.pause", E_FAIL);
    EXPECT_FALSE(engine->Play());
    ExpectLines({L"> Play() - Current state: 0", L"> Play() - Run() returned: 0x80004005"},
                WithoutSeeks(Calls()));
    EXPECT_EQ(kFilm, engine->currentFile);
}

TEST_F(PlayAndClose, AnEmptyPathIsNotRetried) {
    Open(3);
    engine->currentFile.clear();
    SetNumber("LAVVideo.pause", E_OUTOFMEMORY);
    EXPECT_FALSE(engine->Play());
    ExpectLines(OutOfMemory(), WithoutSeeks(Calls()));
}

TEST_F(PlayAndClose, ARebuildThatFailsLeavesTheEngineClosed) {
    Open(3);
    SetNumber("LAVVideo.pause", E_OUTOFMEMORY);
    SetNumber("LAVSplitter.load", E_FAIL);
    EXPECT_FALSE(engine->Play());
    EXPECT_EQ(1U, CallsOf(L"LAVSplitter.Load").size());
    EXPECT_EQ(Lines{}, CallsOf(L"> Play() - Retry"));
    EXPECT_EQ(nullptr, engine->graph);
    EXPECT_TRUE(engine->currentFile.empty());
    EXPECT_EQ(0, RecorderLiving());
}

TEST_F(PlayAndClose, ClosingClearsWhatBelongsToTheFile) {
    Open(5);
    EXPECT_TRUE(engine->Play());
    engine->markA = 5;
    engine->markB = 6;
    engine->lastRepeatJumpTick = 7;
    engine->embeddedSubtitleTrack = 2;
    ClearCalls();
    engine->CloseGraph();
    EXPECT_EQ((Lines{L"MpcVideoRenderer64.put_Visible(0)", L"MpcVideoRenderer64.put_Owner(0)"}),
              CallsOf(L"MpcVideoRenderer64."));
    EXPECT_EQ(L"LAVSplitter.SetPositions(0, 1, 0)", Calls().front());
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
    Open(5);
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
    EXPECT_EQ(host, e.videoHost);
}

TEST_F(PlayAndClose, ClosingTwiceIsHarmless) {
    Open(5);
    engine->CloseGraph();
    ClearCalls();
    engine->CloseGraph();
    EXPECT_EQ(Lines{}, Calls());
}

TEST_F(PlayAndClose, TheSeekToTheStartSnapsToTheFirstKeyFrame) {
    SetText("LAVSplitter.keyFrames", L"230000,20000000");
    Open(5);
    engine->CloseGraph();
    EXPECT_EQ((Lines{L"LAVSplitter.SetPositions(230000, 1, 0)"}), CallsOf(L"LAVSplitter.SetPositions"));
}

TEST_F(PlayAndClose, ShutdownForgetsWindowAndModules) {
    Open(5);
    const std::wstring path = ModulePath(L"LAVVideo.ax");
    engine->Shutdown();
    EXPECT_EQ(nullptr, engine->videoHost);
    EXPECT_EQ(nullptr, engine->splitterModule);
    EXPECT_EQ(nullptr, engine->videoModule);
    EXPECT_EQ(nullptr, engine->audioModule);
    EXPECT_EQ(nullptr, engine->rendererModule);
    EXPECT_NE(nullptr, GetModuleHandleW(path.c_str())) << "a module stays loaded";
}

TEST_F(PlayAndClose, TheGraphsEventsReachTheWindow) {
    Open(5);
    constexpr UINT kEvent = WM_USER + 100;
    ASSERT_EQ(S_OK, engine->events->SetNotifyWindow(reinterpret_cast<OAHWND>(host), kEvent, 0));
    ComPtr<IMediaEventSink> sink;
    ASSERT_EQ(S_OK, engine->graph.As(&sink));
    constexpr long kUserEvent = 0x8001;
    ASSERT_EQ(S_OK, sink->Notify(kUserEvent, 1, 2));
    MSG message{};
    ASSERT_TRUE(PeekMessageW(&message, host, kEvent, kEvent, PM_REMOVE));
    long code = 0;
    LONG_PTR first = 0;
    LONG_PTR second = 0;
    // Events of the graph's own may come before it.
    while (code != kUserEvent && engine->events->GetEvent(&code, &first, &second, 0) == S_OK) {
        engine->events->FreeEventParams(code, first, second);
    }
    EXPECT_EQ(kUserEvent, code);
    engine->events->SetNotifyWindow(0, 0, 0);
}

} // namespace
} // namespace brindlecast::testing
