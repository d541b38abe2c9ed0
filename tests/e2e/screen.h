#pragma once

#include "base/geometry.h"
#include "tests/support/frame_mark.h"

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace brindlecast::testing {

// A photograph of a part of the screen: what the user sees there, whichever window drew it. Rows from top to
// bottom.
struct Photograph {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels; // B, G, R, unused

    [[nodiscard]] BgraView View() const;
    [[nodiscard]] Rgb At(Point point) const;
    // The share of pixels in the rectangle with every channel at most `limit`.
    [[nodiscard]] double BlackShare(const Rect& rect, int limit = 8) const;
    void Save(const std::wstring& path) const; // as .bmp
};

[[nodiscard]] Photograph PhotographScreen(const Rect& screenRect);

// Where the window's client area stands on the screen.
[[nodiscard]] Rect ScreenRectOf(HWND window);

} // namespace brindlecast::testing
