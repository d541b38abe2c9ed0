#include "tests/graph/seeking_fixture.h"

#include "base/win32/wine.h"

#include <evcode.h>

namespace brindlecast::testing {
namespace {

// The two objects that stand behind `seeking`.
class GraphSeeking : public SeekingTest {};

TEST_F(GraphSeeking, OnWindowsTheGraphsOwnObjectIsUsed) {
    SetWineAnswerForTest(WineAnswer::Denied);
    Open();
    ComPtr<IMediaSeeking> own;
    ASSERT_EQ(S_OK, engine->graph.As(&own));
    EXPECT_EQ(own.Get(), engine->seeking.Get());
    EXPECT_TRUE(engine->Seek(4.0));
    ExpectLines(SoughtTo(40'000'000), Calls());
    EXPECT_DOUBLE_EQ(60.0, engine->GetDuration());
}

TEST_F(GraphSeeking, OnWineAnObjectOfOursIsUsed) {
    SetWineAnswerForTest(WineAnswer::Forced);
    Open();
    ComPtr<IMediaSeeking> own;
    ASSERT_EQ(S_OK, engine->graph.As(&own));
    EXPECT_NE(own.Get(), engine->seeking.Get());
    EXPECT_TRUE(engine->Seek(4.0));
    ExpectLines(SoughtTo(40'000'000), Calls());
}

TEST_F(GraphSeeking, OnWineTheRateGoesToTheSourceFollowedByASeekToThePosition) {
    Open();
    PlaceAt(7'000);
    EXPECT_TRUE(engine->SetRate(1.5));
    ExpectLines(Join({{L"LAVSplitter.SetRate(1.50)"}, SoughtTo(70'000'000)}), Calls());
    double rate = 0.0;
    EXPECT_EQ(S_OK, engine->seeking->GetRate(&rate));
    EXPECT_DOUBLE_EQ(1.5, rate);
}

TEST_F(GraphSeeking, OnWineAnUnchangedRateIsNotSent) {
    Open();
    PlaceAt(7'000);
    EXPECT_TRUE(engine->SetRate(1.0));
    EXPECT_EQ(Lines{}, Calls());
    EXPECT_TRUE(engine->SetRate(1.5));
    ClearCalls();
    EXPECT_TRUE(engine->SetRate(1.5));
    EXPECT_EQ(Lines{}, Calls());
}

TEST_F(GraphSeeking, OnWineTheSourceGetsItsRateBackWhenTheSeekFails) {
    Open();
    PlaceAt(7'000);
    EXPECT_TRUE(engine->SetRate(1.5));
    ClearCalls();
    SetNumber("LAVSplitter.setPositions", E_FAIL);
    EXPECT_FALSE(engine->SetRate(2.0));
    ExpectLines(Join({{L"LAVSplitter.SetRate(2.00)"}, SoughtTo(70'000'000), {L"LAVSplitter.SetRate(1.50)"}}),
                Calls());
    double rate = 0.0;
    EXPECT_EQ(S_OK, engine->seeking->GetRate(&rate));
    EXPECT_DOUBLE_EQ(1.5, rate);
    EXPECT_DOUBLE_EQ(1.5, engine->rate);
}

TEST_F(GraphSeeking, OnWineARateThatTheSourceRefusesIsNotFollowedByASeek) {
    Open();
    PlaceAt(7'000);
    SetNumber("LAVSplitter.setRate", E_FAIL);
    EXPECT_FALSE(engine->SetRate(2.0));
    ExpectLines({L"LAVSplitter.SetRate(2.00)"}, Calls());
    double rate = 0.0;
    EXPECT_EQ(S_OK, engine->seeking->GetRate(&rate));
    EXPECT_DOUBLE_EQ(1.0, rate);
}

TEST_F(GraphSeeking, OnWineASourceThatCanNotSeekHasNoRate) {
    SetNumber("LAVSplitter.noSeeking", 1);
    Open();
    EXPECT_FALSE(engine->SetRate(2.0));
    EXPECT_DOUBLE_EQ(1.0, engine->rate);
    EXPECT_EQ(Lines{}, Calls());
}

TEST_F(GraphSeeking, OnWineAPositionBeyondTheEndsIsTheEnd) {
    SetText("LAVSplitter.pins", L"Audio:audio");
    SetText("LAVSplitter.keyFrames", L"");
    Open();
    EXPECT_TRUE(engine->Seek(100.0));
    EXPECT_DOUBLE_EQ(60.0, engine->GetPosition());
    EXPECT_TRUE(engine->Seek(-5.0));
    EXPECT_DOUBLE_EQ(0.0, engine->GetPosition());
}

TEST_F(GraphSeeking, OnWineSoundAloneTakesItsPositionFromTheClock) {
    SetText("LAVSplitter.pins", L"Audio:audio");
    SetText("LAVSplitter.keyFrames", L"");
    PlaceAt(7'000); // an unconnected renderer is not asked
    Open();
    EXPECT_DOUBLE_EQ(0.0, engine->GetPosition());
    EXPECT_TRUE(engine->Seek(5.0));
    EXPECT_DOUBLE_EQ(5.0, engine->GetPosition());
}

TEST_F(GraphSeeking, OnWineARendererThatCanNotSayLeavesItToTheClock) {
    SetText("LAVSplitter.keyFrames", L"");
    Open();
    EXPECT_TRUE(engine->Seek(6.0));
    EXPECT_DOUBLE_EQ(6.0, engine->GetPosition());
}

TEST_F(GraphSeeking, OnWineASeekFromTheEndMovesAgain) {
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

TEST_F(GraphSeeking, TheSubstituteAnswersTheWholeInterface) {
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
