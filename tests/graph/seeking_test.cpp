#include "tests/graph/seeking_fixture.h"

#include <algorithm>
#include <cmath>

namespace brindlecast::testing {
namespace {

class Seeking : public SeekingTest {};

TEST_F(Seeking, WithoutGraphNothingMoves) {
    EXPECT_FALSE(engine->Seek(1.0));
    EXPECT_FALSE(engine->SeekRelative(1.0));
    EXPECT_FALSE(engine->SeekPreviousKeyFrame());
    EXPECT_FALSE(engine->SeekNextKeyFrame());
    EXPECT_FALSE(engine->SetRate(1.0));
    EXPECT_DOUBLE_EQ(0.0, engine->GetPosition());
    EXPECT_DOUBLE_EQ(0.0, engine->GetDuration());
    EXPECT_EQ(Lines{}, Calls());
}

TEST_F(Seeking, WithoutControlNothingIsSought) {
    Open();
    engine->control.Reset();
    EXPECT_FALSE(engine->Seek(2.0));
    EXPECT_EQ(Lines{}, Calls());
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
    EXPECT_TRUE(engine->Seek(1.23456789));
    ExpectLines(Join({SoughtTo(29'000'000), SoughtTo(12'345'678)}), Calls());
}

TEST_F(Seeking, ARefusedSeekIsReported) {
    Open();
    SetNumber("LAVSplitter.setPositions", E_FAIL);
    EXPECT_FALSE(engine->Seek(2.0));
}

TEST_F(Seeking, ARunningGraphIsToldOnceToRunOn) {
    Open();
    engine->state = kEngineRunning;
    const ControlSwap control(*engine);
    EXPECT_TRUE(engine->Seek(2.0)) << "a graph that does not run on is no failed seek";
    EXPECT_EQ(SoughtTo(20'000'000), Calls());
    EXPECT_EQ(1, control.Runs());
    EXPECT_EQ(0, control.Others());
    EXPECT_EQ(2U, engine->state);
}

TEST_F(Seeking, ARefusedSeekIsNotFollowedByARun) {
    Open();
    engine->state = kEngineRunning;
    SetNumber("LAVSplitter.setPositions", E_FAIL);
    const ControlSwap control(*engine);
    EXPECT_FALSE(engine->Seek(2.0));
    EXPECT_EQ(0, control.Runs());
    EXPECT_EQ(0, control.Others());
}

TEST_F(Seeking, AGraphThatDoesNotRunIsNotToldTo) {
    Open();
    const ControlSwap control(*engine);
    for (const std::uint32_t state : {kEngineStopped, kEnginePaused}) {
        engine->state = state;
        EXPECT_TRUE(engine->Seek(2.0));
        EXPECT_EQ(state, engine->state);
    }
    EXPECT_EQ(0, control.Runs());
    EXPECT_EQ(0, control.Others());
}

// The same with the platform's own control.
TEST_F(Seeking, TheGraphKeepsItsState) {
    Open();
    EXPECT_TRUE(engine->Seek(2.0));
    EXPECT_EQ(Lines{}, StatesOf(L"MpcVideoRenderer64"));
    ASSERT_TRUE(SUCCEEDED(engine->control->Pause()));
    engine->state = kEnginePaused;
    ClearCalls();
    EXPECT_TRUE(engine->Seek(2.0));
    EXPECT_EQ(0, std::ranges::count(StatesOf(L"MpcVideoRenderer64"), L"Run"));
    ASSERT_TRUE(engine->Play());
    EXPECT_TRUE(engine->Seek(4.0));
    EXPECT_EQ(L"Run", StatesOf(L"MpcVideoRenderer64").back());
}

TEST_F(Seeking, SecondsOfPositionAndDuration) {
    Open();
    PlaceAt(12'345);
    SetNumber("LAVSplitter.durationMilliseconds", 61'500);
    EXPECT_DOUBLE_EQ(12.345, engine->GetPosition());
    EXPECT_DOUBLE_EQ(61.5, engine->GetDuration());
}

TEST_F(Seeking, APositionThatCanNotBeReadIsZero) {
    Open();
    engine->seeking = MakeLostSeeking();
    EXPECT_DOUBLE_EQ(0.0, engine->GetPosition());
    EXPECT_DOUBLE_EQ(0.0, engine->GetDuration());
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
    Open();
    PlaceAt(10'000);
    SetNumber("LAVSplitter.durationMilliseconds", 0);
    EXPECT_TRUE(engine->SeekRelative(5.0));
    SetNumber("LAVSplitter.durationMilliseconds", 60'000);
    SetNumber("LAVSplitter.durationResult", E_FAIL);
    EXPECT_TRUE(engine->SeekRelative(5.0));
    EXPECT_TRUE(engine->SeekRelative(-5.0));
    ExpectLines(Join({SoughtTo(0), SoughtTo(0), SoughtTo(0)}), Calls());
}

TEST_F(Seeking, RelativeSeeksSnapToo) {
    Open();
    PlaceAt(2'000);
    EXPECT_TRUE(engine->SeekRelative(1.9));
    ExpectLines(SoughtTo(40'000'000), Calls());
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

TEST_F(Seeking, BehindTheLastKeyFrameTheEndOfTheFileIsAskedFor) {
    // A file that is shorter than its table shows which of the two it was.
    SetNumber("LAVSplitter.durationMilliseconds", 2'200);
    Open();
    PlaceAt(4'000);
    EXPECT_TRUE(engine->SeekNextKeyFrame());
    ExpectLines(SoughtTo(20'000'000), Calls());
}

TEST_F(Seeking, BehindTheLastKeyFrameOfUnknownDurationTheStepOnGoesToTheFirst) {
    SetText("LAVSplitter.keyFrames", L"230000,20000000");
    SetNumber("LAVSplitter.durationResult", E_FAIL);
    Open();
    PlaceAt(2'000);
    EXPECT_TRUE(engine->SeekNextKeyFrame());
    ExpectLines(SoughtTo(230'000), Calls());
}

TEST_F(Seeking, NearTheFirstKeyFrameTheStepBackGoesThere) {
    // The second one is nearer to the position, so that it was not the position that was sought.
    SetText("LAVSplitter.keyFrames", L"230000,4000000,20000000");
    Open();
    PlaceAt(500);
    EXPECT_TRUE(engine->SeekPreviousKeyFrame());
    ExpectLines(SoughtTo(230'000), Calls());
}

TEST_F(Seeking, RepeatedStepsMakeProgress) {
    Open();
    // Half a second around a keyframe still belongs to it.
    PlaceAt(2'500);
    EXPECT_TRUE(engine->SeekPreviousKeyFrame());
    PlaceAt(2'501);
    EXPECT_TRUE(engine->SeekPreviousKeyFrame());
    PlaceAt(1'500);
    EXPECT_TRUE(engine->SeekNextKeyFrame());
    PlaceAt(1'499);
    EXPECT_TRUE(engine->SeekNextKeyFrame());
    ExpectLines(Join({SoughtTo(0), SoughtTo(20'000'000), SoughtTo(40'000'000), SoughtTo(20'000'000)}),
                Calls());
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

TEST_F(Seeking, TheTableIsReplacedWithTheFile) {
    Open();
    SetText("LAVSplitter.keyFrames", L"50000000");
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((std::vector<Time100ns>{50'000'000}), engine->keyFrames);
    SetNumber("LAVSplitter.noKeyFrameInfo", 1);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_TRUE(engine->keyFrames.empty());
}

TEST_F(Seeking, TheFirstTwentyTimesAreShown) {
    std::wstring times = L"0";
    std::wstring shown = L"> Keyframes: 0.00";
    for (int second = 1; second < 20; ++second) {
        times += L"," + std::to_wstring(second) + L"0000000";
        shown += L", " + std::to_wstring(second) + L".00";
    }
    SetText("LAVSplitter.keyFrames", times.c_str());
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"> Keyframes found: 20", shown}), CallsOf(L"> Keyframes"));
    SetText("LAVSplitter.keyFrames", (times + L",250000000").c_str());
    ClearCalls();
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"> Keyframes found: 21", shown + L", ..."}), CallsOf(L"> Keyframes"));
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
    EXPECT_TRUE(engine->SetRate(1.5));
    ClearCalls();
    for (const double refused : {0.2, 0.2499, 4.0001, 4.1, 0.0, -1.0, std::nan("")}) {
        EXPECT_FALSE(engine->SetRate(refused)) << refused;
    }
    EXPECT_DOUBLE_EQ(1.5, engine->rate);
    EXPECT_EQ(Lines{}, Calls());
    EXPECT_TRUE(engine->SetRate(0.25));
    EXPECT_DOUBLE_EQ(0.25, engine->rate);
    EXPECT_TRUE(engine->SetRate(4.0));
    EXPECT_DOUBLE_EQ(4.0, engine->rate);
    EXPECT_EQ((Lines{L"LAVSplitter.SetRate(0.25)", L"LAVSplitter.SetRate(4.00)"}),
              CallsOf(L"LAVSplitter.SetRate"));
}

TEST_F(Seeking, ARefusedRateIsNotStored) {
    Open();
    SetNumber("LAVSplitter.setRate", E_NOTIMPL);
    EXPECT_FALSE(engine->SetRate(2.0));
    EXPECT_DOUBLE_EQ(1.0, engine->rate);
}

TEST_F(Seeking, TheRateSurvivesItsFileAndIsNotSentToTheNext) {
    Open();
    EXPECT_TRUE(engine->SetRate(2.0));
    ClearCalls();
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_DOUBLE_EQ(2.0, engine->rate);
    EXPECT_EQ(Lines{}, CallsOf(L"LAVSplitter.SetRate"));
}

} // namespace
} // namespace brindlecast::testing
