#include "tests/graph/graph_fixture.h"

#include "base/win32/wine.h"

#include <evcode.h>

#include <algorithm>

namespace brindlecast::testing {
namespace {

class Seeking : public GraphTest {
protected:
    void Open() {
        ASSERT_TRUE(engine->OpenFile(kFilm));
        ClearCalls();
    }
    // Where the renderer says it is.
    void PlaceAt(long milliseconds) { SetNumber("MpcVideoRenderer64.positionMilliseconds", milliseconds); }
    static Lines SoughtTo(long long units) {
        return {L"LAVSplitter.SetPositions(" + std::to_wstring(units) + L", 1, 0)"};
    }
};

TEST_F(Seeking, WithoutGraphNothingMoves) {
    EXPECT_FALSE(engine->Seek(1.0));
    EXPECT_FALSE(engine->SeekRelative(1.0));
    EXPECT_FALSE(engine->SeekPreviousKeyFrame());
    EXPECT_FALSE(engine->SeekNextKeyFrame());
    EXPECT_FALSE(engine->SetRate(1.0));
    EXPECT_DOUBLE_EQ(0.0, engine->GetPosition());
    EXPECT_DOUBLE_EQ(0.0, engine->GetDuration());
    engine->SetMarkA();
    engine->SetMarkB();
    EXPECT_EQ(0, engine->markA);
    EXPECT_EQ(0, engine->markB);
}

TEST_F(Seeking, SnapsToTheTable) {
    Open();
    EXPECT_TRUE(engine->Seek(2.9));
    EXPECT_TRUE(engine->Seek(3.0)); // half way
    EXPECT_TRUE(engine->Seek(3.1));
    EXPECT_TRUE(engine->Seek(50.0));
    ExpectLines(
        Join({SoughtTo(20'000'000), SoughtTo(20'000'000), SoughtTo(40'000'000), SoughtTo(40'000'000)}),
        Calls());
}

TEST_F(Seeking, WithoutTableGoesExactlyThere) {
    SetText("LAVSplitter.keyFrames", L"");
    Open();
    EXPECT_TRUE(engine->Seek(2.9));
    ExpectLines(SoughtTo(29'000'000), Calls());
}

TEST_F(Seeking, ARefusedSeekIsReported) {
    Open();
    SetNumber("LAVSplitter.setPositions", E_FAIL);
    EXPECT_FALSE(engine->Seek(2.0));
}

TEST_F(Seeking, AStoppedGraphStaysStopped) {
    Open();
    EXPECT_TRUE(engine->Seek(2.0));
    EXPECT_EQ(Lines{}, StatesOf(L"MpcVideoRenderer64"));
    EXPECT_EQ(0U, engine->state);
}

TEST_F(Seeking, ARunningGraphRunsOn) {
    Open();
    ASSERT_TRUE(engine->Play());
    ClearCalls();
    EXPECT_TRUE(engine->Seek(2.0));
    EXPECT_EQ(SoughtTo(20'000'000), CallsOf(L"LAVSplitter.SetPositions"));
    EXPECT_EQ(L"Run", StatesOf(L"MpcVideoRenderer64").back());
    EXPECT_EQ(2U, engine->state);
}

TEST_F(Seeking, APausedGraphStaysPaused) {
    Open();
    ASSERT_TRUE(SUCCEEDED(engine->control->Pause()));
    engine->state = 1;
    ClearCalls();
    EXPECT_TRUE(engine->Seek(2.0));
    EXPECT_EQ(0, std::ranges::count(StatesOf(L"MpcVideoRenderer64"), L"Run"));
    EXPECT_EQ(1U, engine->state);
}

TEST_F(Seeking, SecondsOfPositionAndDuration) {
    Open();
    PlaceAt(12'345);
    SetNumber("LAVSplitter.durationMilliseconds", 61'500);
    EXPECT_DOUBLE_EQ(12.345, engine->GetPosition());
    EXPECT_DOUBLE_EQ(61.5, engine->GetDuration());
}

TEST_F(Seeking, RelativeSeeksStayInTheFile) {
    SetText("LAVSplitter.keyFrames", L"");
    Open();
    PlaceAt(10'000);
    EXPECT_TRUE(engine->SeekRelative(5.0));
    EXPECT_TRUE(engine->SeekRelative(-15.0));
    EXPECT_TRUE(engine->SeekRelative(100.0));
    ExpectLines(Join({SoughtTo(150'000'000), SoughtTo(0), SoughtTo(600'000'000)}), Calls());
}

TEST_F(Seeking, WithUnknownDurationRelativeSeeksGoToTheStart) {
    SetText("LAVSplitter.keyFrames", L"");
    SetNumber("LAVSplitter.durationMilliseconds", 0);
    Open();
    PlaceAt(10'000);
    EXPECT_TRUE(engine->SeekRelative(5.0));
    ExpectLines(SoughtTo(0), Calls());
}

TEST_F(Seeking, StepsFromKeyFrameToKeyFrame) {
    Open();
    PlaceAt(2'100);
    EXPECT_TRUE(engine->SeekNextKeyFrame());
    EXPECT_TRUE(engine->SeekPreviousKeyFrame());
    ExpectLines(Join({SoughtTo(40'000'000), SoughtTo(0)}), Calls());
}

TEST_F(Seeking, BehindTheLastKeyFrameTheStepOnStaysThere) {
    Open();
    PlaceAt(4'000);
    EXPECT_TRUE(engine->SeekNextKeyFrame());
    ExpectLines(SoughtTo(40'000'000), Calls());
}

TEST_F(Seeking, NearTheFirstKeyFrameTheStepBackGoesThere) {
    SetText("LAVSplitter.keyFrames", L"230000,20000000");
    Open();
    PlaceAt(400);
    EXPECT_TRUE(engine->SeekPreviousKeyFrame());
    ExpectLines(SoughtTo(230'000), Calls());
}

TEST_F(Seeking, WithoutTableTheStepsAreFiveSeconds) {
    SetText("LAVSplitter.keyFrames", L"");
    Open();
    PlaceAt(20'000);
    EXPECT_TRUE(engine->SeekNextKeyFrame());
    EXPECT_TRUE(engine->SeekPreviousKeyFrame());
    ExpectLines(Join({SoughtTo(250'000'000), SoughtTo(150'000'000)}), Calls());
}

TEST_F(Seeking, TheTableIsSorted) {
    SetText("LAVSplitter.keyFrames", L"40000000,0,20000000");
    Open();
    EXPECT_EQ((std::vector<Time100ns>{0, 20'000'000, 40'000'000}), engine->keyFrames);
}

TEST_F(Seeking, FewerKeyFramesThanCountedAreKept) {
    SetNumber("LAVSplitter.keyFrameCount", 3);
    SetNumber("LAVSplitter.keyFramesWritten", 2);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((std::vector<Time100ns>{0, 20'000'000}), engine->keyFrames);
    EXPECT_EQ((Lines{L"> Keyframes found: 2"}), CallsOf(L"> Keyframes found"));
}

TEST_F(Seeking, MoreKeyFramesThanThereIsRoomForAreNotBelieved) {
    SetNumber("LAVSplitter.keyFramesWritten", 1'000'000);
    Open();
    EXPECT_EQ(3U, engine->keyFrames.size());
}

TEST_F(Seeking, AFailedOrEmptyCountMeansNoTable) {
    SetNumber("LAVSplitter.keyFrameCount", 0);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"> No keyframes found (count=0, hr=0x00000000)"}), CallsOf(L"> No keyframes"));
    EXPECT_EQ(Lines{}, CallsOf(L"LAVSplitter.GetKeyFrames"));
    EXPECT_TRUE(engine->keyFrames.empty());
    SetNumber("LAVSplitter.keyFrameCount", 4);
    SetNumber("LAVSplitter.keyFrameCountResult", E_FAIL);
    ClearCalls();
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"> No keyframes found (count=4, hr=0x80004005)"}), CallsOf(L"> No keyframes"));
}

TEST_F(Seeking, EveryFrameAKeyFrameIsNoFailure) {
    SetNumber("LAVSplitter.keyFrameCount", 0);
    SetNumber("LAVSplitter.keyFrameCountResult", S_FALSE);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"> No keyframes found (count=0, hr=0x00000001)"}), CallsOf(L"> No keyframes"));
}

TEST_F(Seeking, AFailedTableIsEmpty) {
    SetNumber("LAVSplitter.keyFramesResult", E_FAIL);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_TRUE(engine->keyFrames.empty());
    EXPECT_EQ(Lines{}, CallsOf(L"> Keyframes"));
    EXPECT_EQ(Lines{}, CallsOf(L"> No keyframes"));
}

TEST_F(Seeking, RatesOutsideTheRangeAreRefused) {
    Open();
    EXPECT_FALSE(engine->SetRate(0.2));
    EXPECT_FALSE(engine->SetRate(4.1));
    EXPECT_DOUBLE_EQ(1.0, engine->rate);
    EXPECT_EQ(Lines{}, Calls());
    EXPECT_TRUE(engine->SetRate(0.25));
    EXPECT_TRUE(engine->SetRate(4.0));
    EXPECT_DOUBLE_EQ(4.0, engine->rate);
}

TEST_F(Seeking, ARefusedRateIsNotStored) {
    Open();
    SetNumber("LAVSplitter.setRate", E_NOTIMPL);
    EXPECT_FALSE(engine->SetRate(2.0));
    EXPECT_DOUBLE_EQ(1.0, engine->rate);
}

TEST_F(Seeking, MarksAreSetAndCleared) {
    Open();
    PlaceAt(3'000);
    engine->SetMarkA();
    PlaceAt(9'000);
    engine->SetMarkB();
    EXPECT_EQ(30'000'000, engine->markA);
    EXPECT_EQ(90'000'000, engine->markB);
    ExpectLines({L"> AB Repeat: Mark A set at 3.00 sec", L"> AB Repeat: Mark B set at 9.00 sec (A=3.00)"},
                Calls());
    engine->lastRepeatJumpTick = 77;
    engine->SetMarkB(); // again near B
    EXPECT_EQ(0, engine->markB);
    EXPECT_EQ(30'000'000, engine->markA);
    EXPECT_EQ(0U, engine->lastRepeatJumpTick);
    PlaceAt(3'500);
    engine->lastRepeatJumpTick = 77;
    engine->SetMarkA(); // again near A
    EXPECT_EQ(0, engine->markA);
    EXPECT_EQ(0U, engine->lastRepeatJumpTick);
}

TEST_F(Seeking, MarkBAloneRepeatsFromTheStart) {
    Open();
    PlaceAt(5'000);
    engine->SetMarkB();
    EXPECT_EQ(1, engine->markA);
    EXPECT_EQ(50'000'000, engine->markB);
    engine->ClearMarks();
    EXPECT_EQ(0, engine->markA);
    EXPECT_EQ(0, engine->markB);
}

// The two objects that stand behind `seeking`.

TEST_F(Seeking, OnWindowsTheGraphsOwnObjectIsUsed) {
    SetWineAnswerForTest(WineAnswer::Denied);
    Open();
    ComPtr<IMediaSeeking> own;
    ASSERT_EQ(S_OK, engine->graph.As(&own));
    EXPECT_EQ(own.Get(), engine->seeking.Get());
    EXPECT_TRUE(engine->Seek(4.0));
    ExpectLines(SoughtTo(40'000'000), Calls());
    EXPECT_DOUBLE_EQ(60.0, engine->GetDuration());
}

TEST_F(Seeking, OnWineAnObjectOfOursIsUsed) {
    SetWineAnswerForTest(WineAnswer::Forced);
    Open();
    ComPtr<IMediaSeeking> own;
    ASSERT_EQ(S_OK, engine->graph.As(&own));
    EXPECT_NE(own.Get(), engine->seeking.Get());
    EXPECT_TRUE(engine->Seek(4.0));
    ExpectLines(SoughtTo(40'000'000), Calls());
}

TEST_F(Seeking, OnWineTheRateGoesToTheSourceFollowedByASeekToThePosition) {
    Open();
    PlaceAt(7'000);
    EXPECT_TRUE(engine->SetRate(1.5));
    ExpectLines(Join({{L"LAVSplitter.SetRate(1.50)"}, SoughtTo(70'000'000)}), Calls());
    double rate = 0.0;
    EXPECT_EQ(S_OK, engine->seeking->GetRate(&rate));
    EXPECT_DOUBLE_EQ(1.5, rate);
}

TEST_F(Seeking, OnWineSoundAloneTakesItsPositionFromTheClock) {
    SetText("LAVSplitter.pins", L"Audio:audio");
    SetText("LAVSplitter.keyFrames", L"");
    PlaceAt(7'000); // an unconnected renderer is not asked
    Open();
    EXPECT_DOUBLE_EQ(0.0, engine->GetPosition());
    EXPECT_TRUE(engine->Seek(5.0));
    EXPECT_DOUBLE_EQ(5.0, engine->GetPosition());
}

TEST_F(Seeking, OnWineARendererThatCanNotSayLeavesItToTheClock) {
    SetText("LAVSplitter.keyFrames", L"");
    Open();
    EXPECT_TRUE(engine->Seek(6.0));
    EXPECT_DOUBLE_EQ(6.0, engine->GetPosition());
}

TEST_F(Seeking, OnWineASeekFromTheEndMovesAgain) {
    SetText("LAVSplitter.pins", L"Audio:audio");
    SetText("LAVSplitter.keyFrames", L"");
    Open();
    ASSERT_TRUE(engine->Play());
    ComPtr<IMediaEventSink> sink;
    ASSERT_EQ(S_OK, engine->graph.As(&sink));
    for (int renderer = 0; renderer < 2; ++renderer) {
        ASSERT_EQ(S_OK, sink->Notify(EC_COMPLETE, S_OK, 0));
    }
    EXPECT_DOUBLE_EQ(60.0, engine->GetPosition());
    EXPECT_TRUE(engine->Seek(30.0));
    EXPECT_NEAR(30.0, engine->GetPosition(), 1.0);
    OAFilterState state = State_Stopped;
    engine->control->GetState(100, &state);
    EXPECT_EQ(State_Running, state);
}

TEST_F(Seeking, TheSubstituteAnswersTheWholeInterface) {
    SetWineAnswerForTest(WineAnswer::Forced);
    Open();
    PlaceAt(2'000);
    LONGLONG current = 0;
    LONGLONG stop = 0;
    EXPECT_EQ(S_OK, engine->seeking->GetPositions(&current, &stop));
    EXPECT_EQ(20'000'000, current);
    EXPECT_EQ(E_POINTER, engine->seeking->GetCurrentPosition(nullptr));
    EXPECT_EQ(E_POINTER, engine->seeking->GetRate(nullptr));
    ComPtr<IUnknown> unknown;
    EXPECT_EQ(S_OK, engine->seeking.As(&unknown));
    ComPtr<IMediaControl> other;
    EXPECT_EQ(E_NOINTERFACE, engine->seeking.As(&other));
    GUID format{};
    EXPECT_EQ(S_OK, engine->seeking->GetTimeFormat(&format));
}

} // namespace
} // namespace brindlecast::testing
