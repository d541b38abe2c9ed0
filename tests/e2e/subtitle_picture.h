#pragma once

#include "base/geometry.h"
#include "tests/e2e/player.h"
#include "tests/e2e/screen.h"

#include <optional>
#include <string>
#include <vector>

namespace brindlecast::testing {

// A rectangle of one colour that a subtitle shows instead of a text: its place on the screen and its colour
// are known to the pixel.
struct BlockCue {
    int start; // milliseconds, whole hundredths of a second
    int stop;
    Rect place; // in a picture of 320 by 180
    Rgb colour;
    int transparency = 0; // 0 to 255
};

// Colours that the films' lower third doesn't have.
inline constexpr Rgb kMagenta{255, 0, 255};
inline constexpr Rgb kCyan{0, 255, 255};
inline constexpr Rgb kRed{255, 0, 0};
inline constexpr Rgb kBlue{0, 0, 255};
inline constexpr Rgb kWhite{255, 255, 255};

// The content of an .ass file with these cues.
[[nodiscard]] std::string AssWith(const std::vector<BlockCue>& cues);
// The content of an .srt file with one cue; times in milliseconds.
[[nodiscard]] std::string SrtWith(int start, int stop, const std::string& text);
// A text for it that draws a block of that colour at the bottom left.
[[nodiscard]] std::string SrtBlock(Rgb colour);

// What a user sees of the film at one moment.
struct Sight {
    std::optional<int> frame;
    Photograph picture; // the film alone, without the black beside it

    // The part that holds all pixels of a colour, below the film's own patches; empty when there are none.
    [[nodiscard]] Rect PlaceOf(Rgb colour) const;
    [[nodiscard]] bool Shows(Rgb colour) const { return PlaceOf(colour) != Rect{}; }
    // Whether the block's colour fills its place, and is found nowhere else.
    [[nodiscard]] bool ShowsJust(const BlockCue& block) const;
    // Where a rectangle of a picture of 320 by 180 lies in this one.
    [[nodiscard]] Rect Scaled(const Rect& rect) const;
    // The first pixel that isn't that of the other picture with the block over it, as text; empty without
    // one.
    [[nodiscard]] std::string DifferenceFrom(const Sight& without, const BlockCue& block) const;
};

[[nodiscard]] Sight LookAt(const Player& player, const Film& film);

} // namespace brindlecast::testing
