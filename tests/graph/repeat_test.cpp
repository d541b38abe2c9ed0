#include "tests/graph/seeking_fixture.h"

#include "engine/repeat_marks.h"

namespace brindlecast::testing {
namespace {

class Repeat : public SeekingTest {};

TEST_F(Repeat, MarksAreSetAndCleared) {
    Open();
    PlaceAt(3'000);
    engine->SetMarkA();
    PlaceAt(9'000);
    engine->SetMarkB();
    EXPECT_EQ(30'000'000, engine->markA);
    EXPECT_EQ(90'000'000, engine->markB);
    ExpectLines({L"> AB Repeat: Mark A set at 3.00 sec", L"> AB Repeat: Mark B set at 9.00 sec (A=3.00)"},
                Calls());
    ClearCalls();
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
    EXPECT_EQ(Lines{}, Calls());
}

TEST_F(Repeat, ANewAClearsBothWhenItIsNearTheOld) {
    Open();
    engine->markA = 30'000'000;
    engine->markB = 90'000'000;
    PlaceAt(2'001);
    engine->SetMarkA();
    EXPECT_EQ(0, engine->markA);
    EXPECT_EQ(0, engine->markB);
}

TEST_F(Repeat, AnABehindBClearsB) {
    Open();
    PlaceAt(3'000);
    engine->SetMarkA();
    PlaceAt(9'000);
    engine->SetMarkB();
    ClearCalls();
    PlaceAt(12'000);
    engine->SetMarkA();
    EXPECT_EQ(120'000'000, engine->markA);
    EXPECT_EQ(0, engine->markB);
    ExpectLines({L"> AB Repeat: Mark A set at 12.00 sec"}, Calls());
}

TEST_F(Repeat, ABWithinASecondOfAStaysUnset) {
    Open();
    PlaceAt(3'000);
    engine->SetMarkA();
    ClearCalls();
    engine->lastRepeatJumpTick = 77;
    for (const long place : {4'000, 3'000, 1'000}) {
        PlaceAt(place);
        engine->SetMarkB();
        EXPECT_EQ(30'000'000, engine->markA) << place;
        EXPECT_EQ(0, engine->markB) << place;
    }
    EXPECT_EQ(77U, engine->lastRepeatJumpTick);
    EXPECT_EQ(Lines{}, Calls());
    PlaceAt(4'001);
    engine->SetMarkB();
    EXPECT_EQ(40'010'000, engine->markB);
}

TEST_F(Repeat, ANewBForgetsTheLastJump) {
    Open();
    engine->markA = 30'000'000;
    engine->lastRepeatJumpTick = 77;
    PlaceAt(9'000);
    engine->SetMarkB();
    EXPECT_EQ(0U, engine->lastRepeatJumpTick);
}

TEST_F(Repeat, ABNearTheStartLeavesTheStartMarked) {
    Open();
    PlaceAt(900);
    engine->SetMarkB();
    EXPECT_EQ(1, engine->markA);
    EXPECT_EQ(0, engine->markB);
    EXPECT_EQ(Lines{}, Calls());
}

TEST_F(Repeat, WithoutPositionTheMarksStay) {
    engine->SetMarkA(); // nothing is open
    engine->SetMarkB();
    EXPECT_EQ(0, engine->markA);
    EXPECT_EQ(0, engine->markB);
    Open();
    const auto lost = MakeLostSeeking();
    engine->seeking = lost;
    engine->SetMarkB();
    EXPECT_EQ(0, engine->markA) << "not even the start";
    EXPECT_EQ(0, engine->markB);
    engine->SetMarkA();
    EXPECT_EQ(0, engine->markA);
    // So near the start that a position of 0 would have reached them.
    engine->markA = 1;
    engine->markB = 2;
    engine->state = kEngineRunning;
    engine->RepeatBetweenMarks(10'000);
    EXPECT_TRUE(lost->targets.empty());
    EXPECT_EQ(0U, engine->lastRepeatJumpTick);
    EXPECT_EQ(Lines{}, Calls());
}

TEST_F(Repeat, MarkBAloneRepeatsFromTheStart) {
    Open();
    PlaceAt(5'000);
    engine->SetMarkB();
    EXPECT_EQ(1, engine->markA);
    EXPECT_EQ(50'000'000, engine->markB);
    ExpectLines({L"> AB Repeat: Mark B set at 5.00 sec (A=0.00)"}, Calls());
    engine->lastRepeatJumpTick = 77;
    engine->ClearMarks();
    EXPECT_EQ(0, engine->markA);
    EXPECT_EQ(0, engine->markB);
    EXPECT_EQ(0U, engine->lastRepeatJumpTick);
}

TEST_F(Repeat, ARunningFileAtBJumpsExactlyToA) {
    Open();
    ASSERT_TRUE(engine->Play());
    engine->markA = 23'456'789; // between two keyframes
    engine->markB = 90'000'000;
    PlaceAt(8'949);
    ClearCalls();
    engine->RepeatBetweenMarks(10'000);
    EXPECT_EQ(Lines{}, Calls());
    EXPECT_EQ(0U, engine->lastRepeatJumpTick);
    PlaceAt(8'950);
    engine->RepeatBetweenMarks(10'000);
    ExpectLines(Join({SoughtTo(23'456'789), {L"> AB Repeat: Jump to A (2.35 sec)"}}), Calls());
    EXPECT_EQ(10'000U, engine->lastRepeatJumpTick);
}

TEST_F(Repeat, TwoJumpsToAAreHalfASecondApart) {
    Open();
    ASSERT_TRUE(engine->Play());
    engine->markA = 10'000'000;
    engine->markB = 30'000'000;
    PlaceAt(4'000);
    ClearCalls();
    engine->RepeatBetweenMarks(10'000);
    engine->RepeatBetweenMarks(10'100);
    engine->RepeatBetweenMarks(10'499);
    EXPECT_EQ(1U, CountOf(Calls(), L"> AB Repeat: Jump to A (1.00 sec)"));
    engine->RepeatBetweenMarks(10'500);
    EXPECT_EQ(2U, CountOf(Calls(), L"> AB Repeat: Jump to A (1.00 sec)"));
}

TEST_F(Repeat, OnlyARunningFileRepeats) {
    engine->RepeatBetweenMarks(10'000); // nothing is open
    Open();
    engine->markA = 10'000'000;
    engine->markB = 30'000'000;
    PlaceAt(4'000);
    for (const std::uint32_t state : {kEngineStopped, kEnginePaused}) {
        engine->state = state;
        engine->RepeatBetweenMarks(10'000);
    }
    EXPECT_EQ(Lines{}, Calls());
    EXPECT_EQ(0U, engine->lastRepeatJumpTick);
}

TEST_F(Repeat, AJumpThatFailsIsNotToldAndStillCountsAsOne) {
    Open();
    ASSERT_TRUE(engine->Play());
    engine->markA = 10'000'000;
    engine->markB = 30'000'000;
    PlaceAt(4'000);
    SetNumber("LAVSplitter.setPositions", E_FAIL);
    ClearCalls();
    engine->RepeatBetweenMarks(10'000);
    EXPECT_EQ(Lines{}, CallsOf(L"> "));
    EXPECT_EQ(10'000U, engine->lastRepeatJumpTick);
}

TEST_F(Repeat, AJumpDoesNotRunTheGraphAgain) {
    Open();
    engine->state = kEngineRunning;
    engine->markA = kRepeatFromStart;
    engine->markB = 30'000'000;
    PlaceAt(4'000);
    const ControlSwap control(*engine);
    engine->RepeatBetweenMarks(10'000);
    ExpectLines(Join({SoughtTo(1), {L"> AB Repeat: Jump to A (0.00 sec)"}}), Calls());
    EXPECT_EQ(0, control.Runs());
    EXPECT_EQ(0, control.Others());
}

TEST_F(Repeat, WithoutControlNothingRepeats) {
    Open();
    engine->state = kEngineRunning;
    engine->markA = 10'000'000;
    engine->markB = 30'000'000;
    PlaceAt(4'000);
    engine->control.Reset();
    engine->RepeatBetweenMarks(10'000);
    EXPECT_EQ(Lines{}, Calls());
}

TEST_F(Repeat, ThePositionIsAskedForOnlyWhenBothMarksStandInOrder) {
    Open();
    engine->state = kEngineRunning;
    PlaceAt(4'000);
    struct Marks {
        Time100ns a, b;
    };
    for (const Marks marks : {Marks{0, 0}, Marks{10'000'000, 0}, Marks{0, 30'000'000},
                              Marks{30'000'000, 30'000'000}, Marks{40'000'000, 30'000'000}}) {
        engine->markA = marks.a;
        engine->markB = marks.b;
        engine->RepeatBetweenMarks(10'000);
    }
    EXPECT_EQ(Lines{}, QueriesOf(L"MpcVideoRenderer64.GetCurrentPosition"));
    EXPECT_EQ(Lines{}, Calls());
    engine->markA = 10'000'000;
    engine->markB = 300'000'000;
    engine->RepeatBetweenMarks(10'000);
    EXPECT_EQ((Lines{L"MpcVideoRenderer64.GetCurrentPosition"}),
              QueriesOf(L"MpcVideoRenderer64.GetCurrentPosition"));
}

} // namespace
} // namespace brindlecast::testing
