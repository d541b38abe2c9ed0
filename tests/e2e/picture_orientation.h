#pragma once

#include "tests/e2e/player.h"

#include <optional>
#include <ostream>

namespace brindlecast::testing {

// How a picture lies on the screen: turned clockwise, then mirrored left to right.
struct Orientation {
    int rotation = 0; // degrees: 0, 90, 180 or 270
    bool mirrored = false;
    bool operator==(const Orientation&) const = default;
};

inline void PrintTo(const Orientation& orientation, std::ostream* out) {
    *out << orientation.rotation << " degrees" << (orientation.mirrored ? ", mirrored" : "");
}

// The one of the eight orientations in which the film's mark and colour patches are read right; nothing when
// there is none, or no picture.
[[nodiscard]] std::optional<Orientation> OrientationOnScreen(const Player& player, const Film& film);
// Waits until the picture lies so; false when it does not.
[[nodiscard]] bool WaitForOrientation(const Player& player, const Film& film, Orientation wanted);

} // namespace brindlecast::testing
