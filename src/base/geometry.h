#pragma once

namespace brindlecast {

// Plain geometry for code that is free of the window system. Units are pixels; `right` and `bottom` lie one
// beyond the last pixel, as in the platform's RECT.
struct Point {
    int x = 0;
    int y = 0;
    bool operator==(const Point&) const = default;
};

struct Size {
    int width = 0;
    int height = 0;
    bool operator==(const Size&) const = default;
};

struct Rect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    [[nodiscard]] constexpr int Width() const { return right - left; }
    [[nodiscard]] constexpr int Height() const { return bottom - top; }
    [[nodiscard]] constexpr bool Contains(Point point) const {
        return point.x >= left && point.x < right && point.y >= top && point.y < bottom;
    }
    bool operator==(const Rect&) const = default;
};

} // namespace brindlecast
