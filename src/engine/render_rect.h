#pragma once

#include "base/geometry.h"

#include <cstdint>

namespace brindlecast {

// A placed rectangle: corner and size in pixels of the host window.
struct RenderRect {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    bool operator==(const RenderRect&) const = default;
};

// The largest rectangle of the video's shape inside the host, centred. All zero when a side of the video is
// below 1.
[[nodiscard]] RenderRect LetterboxRect(Size video, Size host);

// A rotation in degrees, made positive, taken modulo 360 and rounded down to a quarter turn.
[[nodiscard]] std::uint32_t NormalizeRotation(int degrees);

} // namespace brindlecast
