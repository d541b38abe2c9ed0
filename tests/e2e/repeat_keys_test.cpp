#include "tests/e2e/fixture.h"
#include "tests/e2e/input.h"
#include "tests/e2e/waits.h"
#include "tests/e2e/witness.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <vector>

namespace brindlecast::testing {
namespace {

using std::chrono::milliseconds;

constexpr WORD kMarkA = VK_OEM_4; // [
constexpr WORD kMarkB = VK_OEM_6; // ]
constexpr WORD kClear = VK_OEM_5; // the backslash
constexpr int kFramesPerKeyframe = 50;

// How many frames may go by between the end of the part and the jump: the window looks ten times a second,
// and the seek, the reading and a picture that is shown meanwhile take their time.
constexpr int kLateFrames = 6;

class RepeatKeysTest : public ProgramTest {
protected:
    static void Play(Player& player, const Film& film) {
        ASSERT_TRUE(player.Play(film));
        player.Activate();
    }
    // What is read from the screen for a while: the frames in the order seen, without repetitions.
    static std::vector<int> FramesDuring(const Player& player, const Film& film, milliseconds time) {
        std::vector<int> frames;
        for (const TimedMark& reading : player.Watch(film, time)) {
            if (reading.number && (frames.empty() || frames.back() != *reading.number)) {
                frames.push_back(*reading.number);
            }
        }
        return frames;
    }
    // The frames after which a smaller one came, and those smaller ones.
    struct Jumps {
        std::vector<int> from;
        std::vector<int> to;
    };
    static Jumps JumpsIn(const std::vector<int>& frames) {
        Jumps jumps;
        for (std::size_t i = 1; i < frames.size(); ++i) {
            if (frames[i] < frames[i - 1]) {
                jumps.from.push_back(frames[i - 1]);
                jumps.to.push_back(frames[i]);
            }
        }
        return jumps;
    }
    // Pauses where the condition holds for the frame on the screen; the frame that stays.
    static std::optional<int> PauseWhere(const Player& player, const Film& film,
                                         const std::function<bool(int)>& condition) {
        EXPECT_TRUE(WaitUntil(limits::kPicture, "place", [&] {
            const auto frame = player.FrameOnScreen(film);
            return frame && condition(*frame);
        }));
        PressKey(VK_SPACE);
        return player.WaitForStandstill(film);
    }
    static bool WaitForFrameBehind(const Player& player, const Film& film, int frame) {
        return WaitUntil(limits::kPicture, "later frame",
                         [&] { return player.FrameOnScreen(film).value_or(0) > frame; });
    }
};

TEST_F(RepeatKeysTest, ThePartBetweenAAndBIsRepeatedFromAExactly) {
    Player player;
    Play(player, kFilm);
    // Far from the keyframes on both sides.
    const auto first = PauseWhere(player, kFilm, [](int frame) {
        return frame % kFramesPerKeyframe >= 18 && frame % kFramesPerKeyframe <= 24;
    });
    ASSERT_TRUE(first.has_value());
    PressKey(kMarkA);
    PressKey(VK_SPACE);
    const auto last = PauseWhere(player, kFilm, [&](int frame) { return frame >= *first + 50; });
    ASSERT_TRUE(last.has_value());
    PressKey(kMarkB);
    PressKey(VK_SPACE);
    const Jumps jumps = JumpsIn(FramesDuring(player, kFilm, milliseconds(9000)));
    // The part takes a little over two seconds, a jump less than half of one.
    EXPECT_GE(jumps.to.size(), 3U);
    EXPECT_LE(jumps.to.size(), 5U);
    for (std::size_t jump = 0; jump < jumps.to.size(); ++jump) {
        // A reading can miss the frame of the seek, but not by much: it stands until the clock runs.
        EXPECT_GE(jumps.to[jump], *first);
        EXPECT_LE(jumps.to[jump], *first + 1);
        EXPECT_GE(jumps.from[jump], *last - 2);
        EXPECT_LE(jumps.from[jump], *last + kLateFrames);
    }
    // Cleared, the film goes on beyond.
    PressKey(kClear);
    EXPECT_TRUE(WaitForFrameBehind(player, kFilm, *last + 50));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(RepeatKeysTest, BAloneRepeatsFromTheBeginning) {
    Player player;
    Play(player, kFilm);
    const auto last = PauseWhere(player, kFilm, [](int frame) { return frame >= 50; });
    ASSERT_TRUE(last.has_value());
    PressKey(kMarkB);
    PressKey(VK_SPACE);
    const Jumps jumps = JumpsIn(FramesDuring(player, kFilm, milliseconds(6000)));
    EXPECT_GE(jumps.to.size(), 2U);
    for (std::size_t jump = 0; jump < jumps.to.size(); ++jump) {
        EXPECT_LE(jumps.to[jump], 1);
        EXPECT_LE(jumps.from[jump], *last + kLateFrames);
    }
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(RepeatKeysTest, AAloneRepeatsFromTheKeyframeNearestToItWhenTheFilmEnds) {
    Player player;
    Play(player, kShortFilm);
    const auto first = PauseWhere(player, kShortFilm, [](int frame) { return frame >= 33 && frame <= 40; });
    ASSERT_TRUE(first.has_value());
    ASSERT_LT(*first, kFramesPerKeyframe);
    PressKey(kMarkA);
    PressKey(VK_SPACE);
    const Jumps jumps = JumpsIn(FramesDuring(player, kShortFilm, milliseconds(7000)));
    EXPECT_TRUE(player.IsOpen());
    EXPECT_GE(jumps.to.size(), 2U);
    for (std::size_t jump = 0; jump < jumps.to.size(); ++jump) {
        EXPECT_GE(jumps.to[jump], kFramesPerKeyframe);
        EXPECT_LE(jumps.to[jump], kFramesPerKeyframe + 1);
        EXPECT_GE(jumps.from[jump], 72) << "the film must be shown to its end";
    }
    // Cleared, the end is the end.
    PressKey(kClear);
    EXPECT_TRUE(WaitUntil(limits::kPicture, "end", [&] { return !player.IsOpen(); }));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(RepeatKeysTest, ASecondPressNearAClearsThePart) {
    Player player;
    Play(player, kShortFilm);
    const auto first = PauseWhere(player, kShortFilm, [](int frame) { return frame >= 10; });
    ASSERT_TRUE(first.has_value());
    PressKey(kMarkA);
    PressKey(kMarkA);
    PressKey(VK_SPACE);
    EXPECT_TRUE(WaitUntil(limits::kPicture, "end", [&] { return !player.IsOpen(); }));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(RepeatKeysTest, MenuCommandsMarkAndClearLikeTheKeys) {
    constexpr WPARAM kMenuA = 5400;
    constexpr WPARAM kMenuB = 5401;
    constexpr WPARAM kMenuClear = 5402;
    Player player;
    Play(player, kFilm);
    const auto first = PauseWhere(player, kFilm, [](int frame) { return frame >= 12; });
    ASSERT_TRUE(first.has_value());
    EXPECT_EQ(player.Send(WM_COMMAND, kMenuA), 0);
    PressKey(VK_SPACE);
    const auto last = PauseWhere(player, kFilm, [&](int frame) { return frame >= *first + 30; });
    ASSERT_TRUE(last.has_value());
    EXPECT_EQ(player.Send(WM_COMMAND, kMenuB), 0);
    PressKey(VK_SPACE);
    const Jumps jumps = JumpsIn(FramesDuring(player, kFilm, milliseconds(5000)));
    EXPECT_GE(jumps.to.size(), 2U);
    for (const int frame : jumps.to) {
        EXPECT_GE(frame, *first);
        EXPECT_LE(frame, *first + 1);
    }
    EXPECT_EQ(player.Send(WM_COMMAND, kMenuClear), 0);
    EXPECT_TRUE(WaitForFrameBehind(player, kFilm, *last + 25));
    EXPECT_EQ(player.Close(), 0U);
}

// What the player says of itself while it repeats.
class RepeatWitnessTest : public RepeatKeysTest {
protected:
    static constexpr UINT kCurrentPosition = 1255;

    static std::int64_t Position(const Player& player) {
        return player.Send(kCurrentPosition).value_or(-1); // milliseconds
    }

    const Witness witness;
};

TEST_F(RepeatWitnessTest, TheRepeatGoesOnWithinItsMarks) {
    const milliseconds time = IsLongRun() ? milliseconds(60'000) : milliseconds(10'000);
    Player player({Witness::Program(), L"", std::nullopt});
    Play(player, kFilm);
    ASSERT_TRUE(PauseWhere(player, kFilm, [](int frame) { return frame >= 20; }).has_value());
    PressKey(kMarkA);
    const std::int64_t first = Position(player);
    PressKey(VK_SPACE);
    ASSERT_TRUE(PauseWhere(player, kFilm, [](int frame) { return frame >= 70; }).has_value());
    PressKey(kMarkB);
    const std::int64_t last = Position(player);
    ASSERT_GT(last, first + 1500);
    PressKey(VK_SPACE);
    std::ptrdiff_t falls = 0;
    std::int64_t before = last;
    std::int64_t least = last;
    std::int64_t greatest = first;
    const auto start = std::chrono::steady_clock::now();
    while (std::chrono::steady_clock::now() - start < time) {
        const std::int64_t now = Position(player);
        falls += now < before - 1000 ? 1 : 0;
        least = std::min(least, now);
        greatest = std::max(greatest, now);
        before = now;
        LetPlay(milliseconds(10));
    }
    const auto lines = witness.Lines();
    const auto jumps = std::ranges::count_if(lines, [](const std::wstring& line) {
        return line.starts_with(L"[Brindlecast] AB Repeat: Jump to A (");
    });
    EXPECT_EQ(jumps, falls) << "each jump is one back to A";
    // The part itself, and less than half a second for the window to look and the film to start again.
    EXPECT_GE(jumps, time.count() / (last - first + 500) - 1);
    EXPECT_LE(jumps, time.count() / (last - first - 50) + 1);
    EXPECT_GE(least, first) << "in front of A";
    EXPECT_LE(greatest, last + 250) << "behind B";
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
