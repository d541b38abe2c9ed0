#pragma once

#include "tests/e2e/fixture.h"
#include "tests/e2e/input.h"
#include "tests/e2e/waits.h"
#include "tests/e2e/window_state.h"

#include <cstdint>
#include <ostream>

namespace brindlecast::testing {

// What the system adds to the style of every window that is no child.
inline constexpr std::uint32_t kAddedStyle = WS_CLIPSIBLINGS;

// The main window as it must be found again after full screen.
struct Shape {
    explicit Shape(const Player& player)
        : place(ScreenRectOf(player.MainWindow())), style(StyleOf(player.MainWindow())),
          extendedStyle(ExtendedStyleOf(player.MainWindow())),
          isMaximised(IsZoomed(player.MainWindow()) != FALSE), video(ScreenRectOf(player.VideoWindow())) {}
    bool operator==(const Shape&) const = default;

    Rect place;
    std::uint32_t style;
    std::uint32_t extendedStyle;
    bool isMaximised;
    Rect video;
};

inline void PrintTo(const Shape& shape, std::ostream* out) {
    *out << TextOf(shape.place) << ", styles " << std::hex << shape.style << " and " << shape.extendedStyle
         << std::dec << (shape.isMaximised ? ", maximised" : "") << ", video " << TextOf(shape.video);
}

class FullScreenTest : public ProgramTest {
protected:
    static constexpr Rect kPlace{300, 120, 1300, 820};

    static Point MiddleOf(const Rect& rect) {
        return {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
    }

    static bool IsFull(const Player& player) {
        return ScreenRectOf(player.VideoWindow()) == MonitorOf(player.MainWindow());
    }
    static bool WaitForFull(const Player& player) {
        return WaitUntil(limits::kReaction, "full screen", [&] { return IsFull(player); }) &&
               player.Answers();
    }

    // In front, at its place, with the cursor where no bar shows.
    static void Prepare(Player& player) {
        player.Activate();
        ASSERT_TRUE(PutAt(player.MainWindow(), kPlace));
        MoveCursor(MiddleOf(MonitorOf(player.MainWindow())));
    }

    static void Enter(const Player& player) {
        PressKey('F');
        ASSERT_TRUE(WaitForFull(player));
    }

    static void ExpectShape(const Player& player, const Shape& expected) {
        WaitUntil(limits::kReaction, "the shape from before", [&] { return Shape(player) == expected; });
        EXPECT_EQ(Shape(player), expected);
    }
};

} // namespace brindlecast::testing
