#pragma once

#include "tests/support/capture/thumbnail.h"

#include <limits>
#include <span>
#include <vector>

namespace brindlecast::testing {

// Where in a player's window the picture may stand: within bars above and below and a frame around, all in
// pixels.
struct Place {
    PixelRect rect;
    int frame = 0;
    int top = 0;
    int bottom = 0;
    double meanSquare = std::numeric_limits<double>::max(); // against the nearest frames
};

// Heights of the bars and width of the frame: from, to and in steps of.
struct PlaceRange {
    int frameFrom, frameTo, frameStep;
    int topFrom, topTo, topStep;
    int bottomFrom, bottomTo, bottomStep;
};

// One view of the window, and the frames of which it may show one.
struct Witness {
    BgraView window;
    std::vector<Thumbnail> frames;
};

// What one wrong picture may weigh at most, so that the others decide.
[[nodiscard]] double Capped(double meanSquare);

// For every height of the upper bar the place whose content is nearest to the frames; the best ones first.
// All windows are of one size and all frames of one size; the shape is that in which they are to appear.
[[nodiscard]] std::vector<Place> BestPlaces(std::span<const Witness> witnesses, int shapeWidth,
                                            int shapeHeight, const PlaceRange& range);

} // namespace brindlecast::testing
