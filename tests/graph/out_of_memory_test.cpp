#include "tests/graph/failing_control.h"
#include "tests/graph/graph_fixture.h"

#include <algorithm>

// Running out of memory under a hardware method is answered by one rebuild with D3D11.

namespace brindlecast::testing {
namespace {

class OutOfMemory : public GraphTest {
protected:
    void Open(std::uint32_t method) {
        settings.values[L"LAV_HWAccel"] = method;
        ASSERT_TRUE(engine->OpenFile(kFilm));
        ClearCalls();
    }
    // The decoder's next attempt to start fails, and no further one.
    void FailOnce(const std::string& module = "LAVVideo") {
        SetNumber((module + ".pause").c_str(), E_OUTOFMEMORY);
        SetNumber((module + ".pauseTimes").c_str(), 1);
    }
    static Lines FirstRun(int state = 0) {
        return {L"> Play() - Current state: " + std::to_wstring(state),
                L"> Play() - Run() returned: 0x8007000E"};
    }
    static Lines Closed() {
        return {L"MpcVideoRenderer64.put_Visible(0)", L"MpcVideoRenderer64.put_Owner(0)"};
    }
    static Lines SecondRun() {
        return {L"> Play() - Retry with D3D11 returned: 0x00000000", L"> Active Decoder: (null/software)"};
    }
    static Lines Given() { return CallsOf(L"LAVVideo.SetHWAccel("); }
    // Wine's graph seeks back when a failed run is stopped; how often is its affair.
    static Lines WithoutSeeks(Lines lines) {
        std::erase(lines, L"LAVSplitter.SetPositions(0, 1, 0)");
        return lines;
    }
    // The film plays after a rebuild, which made these calls.
    void ExpectRetried(const Lines& rebuild, int state = 0) {
        EXPECT_TRUE(engine->Play());
        ExpectLines(WithoutSeeks(Join({FirstRun(state), Closed(), rebuild, SecondRun()})),
                    WithoutSeeks(Calls()));
        EXPECT_EQ(5U, engine->hwAccel);
        EXPECT_EQ(2U, engine->state);
        EXPECT_EQ(kFilm, engine->currentFile);
    }
    void ExpectNotRetried(std::uint32_t method) {
        EXPECT_FALSE(engine->Play());
        ExpectLines(FirstRun(), WithoutSeeks(Calls()));
        EXPECT_EQ(method, engine->hwAccel);
        EXPECT_EQ(0U, engine->state);
        EXPECT_EQ(kFilm, engine->currentFile);
    }
};

TEST_F(OutOfMemory, UnderAnotherMethodIsAnsweredByD3D11) {
    for (const std::uint32_t method : {1U, 2U, 3U, 4U}) {
        Open(method);
        // The decoder fails as long as it is not asked for D3D11.
        SetNumber("LAVVideo.pauseExceptMethod5", E_OUTOFMEMORY);
        ExpectRetried(expected::FilmBuild());
        SetNumber("LAVVideo.pauseExceptMethod5", 0);
    }
}

TEST_F(OutOfMemory, UnderAnUnknownMethodIsAnsweredToo) {
    SetText("LAVVideo.supported", L"5");
    Open(9);
    FailOnce();
    ExpectRetried(expected::FilmBuild());
}

// What was asked for counts, and not what came of it.
TEST_F(OutOfMemory, WithD3D11InUseForCudaIsAnswered) {
    SetText("LAVVideo.supported", L"5");
    Open(1);
    FailOnce();
    ExpectRetried(expected::FilmBuild());
}

TEST_F(OutOfMemory, TheRebuildMayFallBackAsTheFirstBuildDid) {
    SetText("LAVVideo.supported", L"3");
    Open(1);
    FailOnce();
    EXPECT_TRUE(engine->Play());
    EXPECT_EQ((Lines{L"LAVVideo.SetHWAccel(3)"}), Given());
    EXPECT_EQ((Lines{L"> ConfigureLAVVideo: HWAccel=5"}), CallsOf(L"> ConfigureLAVVideo"));
    EXPECT_EQ(5U, engine->hwAccel);
}

TEST_F(OutOfMemory, FromPausedIsAnsweredToo) {
    Open(3);
    ASSERT_TRUE(engine->Play());
    ASSERT_TRUE(SUCCEEDED(engine->control->Pause()));
    engine->state = kEnginePaused;
    LetRunFail(engine->control, E_OUTOFMEMORY);
    ClearCalls();
    ExpectRetried(expected::FilmBuild(), 1);
}

TEST_F(OutOfMemory, OfASoundFileIsAnsweredToo) {
    settings.values[L"HWAccelFallback"] = std::uint32_t{0};
    SetText("LAVSplitter.pins", L"Audio:audio");
    Open(3);
    FailOnce("LAVAudio");
    ExpectRetried(expected::SoundBuild());
}

TEST_F(OutOfMemory, InSoftwareOrUnderD3D11IsFinal) {
    for (const std::uint32_t method : {0U, 5U}) {
        Open(method);
        FailOnce();
        ExpectNotRetried(method);
    }
}

TEST_F(OutOfMemory, UnderD3D11ForcedByTheSizeIsFinal) {
    SetText("LAVSplitter.pins", L"Video:video/7680/4320/400000;Audio:audio");
    Open(3);
    FailOnce();
    ExpectNotRetried(5);
}

TEST_F(OutOfMemory, ForTheSecondTimeIsFinal) {
    Open(3);
    SetNumber("LAVVideo.pause", E_OUTOFMEMORY);
    EXPECT_FALSE(engine->Play());
    ExpectLines(WithoutSeeks(Join({FirstRun(),
                                   Closed(),
                                   expected::FilmBuild(),
                                   {L"> Play() - Retry with D3D11 returned: 0x8007000E"}})),
                WithoutSeeks(Calls()));
    EXPECT_EQ(0U, engine->state);
    EXPECT_EQ(kFilm, engine->currentFile);
    // Now under D3D11, it is not tried a third time.
    ClearCalls();
    ExpectNotRetried(5);
}

TEST_F(OutOfMemory, AnotherFailureIsFinal) {
    for (const HRESULT failure : {E_FAIL, static_cast<HRESULT>(0x8007000D), E_ACCESSDENIED}) {
        Open(3);
        SetNumber("LAVVideo.pause", failure);
        EXPECT_FALSE(engine->Play());
        EXPECT_EQ(Lines{}, Given());
        EXPECT_EQ(Lines{}, CallsOf(L"> Play() - Retry"));
        EXPECT_EQ(3U, engine->hwAccel);
        EXPECT_EQ(0U, engine->state);
        EXPECT_EQ(kFilm, engine->currentFile);
        SetNumber("LAVVideo.pause", 0);
    }
}

TEST_F(OutOfMemory, WithoutAPathIsFinal) {
    Open(3);
    engine->currentFile.clear();
    FailOnce();
    EXPECT_FALSE(engine->Play());
    ExpectLines(FirstRun(), WithoutSeeks(Calls()));
}

TEST_F(OutOfMemory, ARebuildThatFailsLeavesTheEngineClosed) {
    Open(3);
    FailOnce();
    SetNumber("LAVSplitter.load", E_FAIL);
    EXPECT_FALSE(engine->Play());
    ExpectLines(WithoutSeeks(Join({FirstRun(), Closed(), expected::FailedLoad()})), WithoutSeeks(Calls()));
    EXPECT_EQ(nullptr, engine->graph);
    EXPECT_TRUE(engine->currentFile.empty());
    EXPECT_EQ(0U, engine->state);
    EXPECT_EQ(0, RecorderLiving());
}

} // namespace
} // namespace brindlecast::testing
