#pragma once

#include "tests/support/capture/thumbnail.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace brindlecast::testing {

// Compares what the screen showed with what ffmpeg decodes from the same file. Pure; times are in seconds.

// The film at a fixed frame rate from its beginning.
struct ReferenceFilm {
    std::vector<Thumbnail> frames;
    double framesPerSecond = 0;
    int displayWidth = 0; // only the shape counts
    int displayHeight = 0;
};

// What the screen showed where the window was.
struct Grab {
    double time; // since the file was handed over
    BgraView window;
};

struct PictureVerdict {
    bool seen = false;        // everything below is as it should be
    std::string complaint;    // why not
    double decibels = 0;      // PSNR of the pictures against the film at its own pace
    double delay = 0;         // from the hand-over to the moment when the film's beginning was shown
    double hesitation = 0;    // how far a picture was off its place at most
    bool delayIsSure = false; // no other delay explains the pictures nearly as well
    bool still = false;       // the film itself does not move in the part that was compared
    int compared = 0;         // pictures that were compared
    PixelRect place; // in the window: where, of what bars and a frame around leave, it fits the film best
};

// The longest that opening a file may take.
inline constexpr double kLongestDelay = 8.0;

// Whether the pictures are the film, running at its own pace: one single delay must explain all of them.
[[nodiscard]] PictureVerdict JudgePicture(std::span<const Grab> grabs, const ReferenceFilm& film);

} // namespace brindlecast::testing
