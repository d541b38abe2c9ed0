#include "tests/e2e/subtitle_picture.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

namespace brindlecast::testing {

namespace {

// Of 255: what the compositor and the blending may round away.
constexpr int kTolerance = 2;

// Of 255: shapes are placed with an accuracy of a fraction of a pixel, which shows in those at their edges.
constexpr int kEdgeTolerance = 16;

// Height of the part above that the film uses for its mark and patches, and the program for its messages.
constexpr double kOwnPart = 0.68;

bool IsNear(Rgb seen, Rgb expected, int tolerance) {
    return std::abs(seen.red - expected.red) <= tolerance &&
           std::abs(seen.green - expected.green) <= tolerance &&
           std::abs(seen.blue - expected.blue) <= tolerance;
}

bool IsIn(const Rect& rect, int x, int y) {
    return x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
}

// What a pixel of the rectangle, or beside it, may differ by.
int ToleranceAt(const Rect& rect, int x, int y) {
    const bool isInside = IsIn({rect.left + 1, rect.top + 1, rect.right - 1, rect.bottom - 1}, x, y);
    const bool isOutside = !IsIn({rect.left - 1, rect.top - 1, rect.right + 1, rect.bottom + 1}, x, y);
    return isInside || isOutside ? kTolerance : kEdgeTolerance;
}

std::string TimeText(const char* format, int milliseconds, int fraction) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), format, milliseconds / 3'600'000, milliseconds / 60'000 % 60,
                  milliseconds / 1000 % 60, fraction);
    return text.data();
}

std::string AssTime(int milliseconds) {
    return TimeText("%d:%02d:%02d.%02d", milliseconds, milliseconds % 1000 / 10);
}

std::string SrtTime(int milliseconds) {
    return TimeText("%02d:%02d:%02d,%03d", milliseconds, milliseconds % 1000);
}

// Tags and shape of a block without border and shadow, the place being its top left corner.
std::string Drawing(Point place, Size size, Rgb colour, int transparency) {
    std::array<char, 256> text{};
    std::snprintf(text.data(), text.size(),
                  R"({\an7\pos(%d,%d)\bord0\shad0\1c&H%02X%02X%02X&\1a&H%02X&\p1}m 0 0 l %d 0 %d %d 0 %d)",
                  place.x, place.y, colour.blue, colour.green, colour.red, transparency, size.width,
                  size.width, size.height, size.height);
    return text.data();
}

std::string Text(Rgb colour) {
    return std::to_string(colour.red) + " " + std::to_string(colour.green) + " " +
           std::to_string(colour.blue);
}

} // namespace

std::string AssWith(const std::vector<BlockCue>& cues) {
    std::string text = "[Script Info]\nScriptType: v4.00+\nPlayResX: 320\nPlayResY: 180\n\n"
                       "[V4+ Styles]\n"
                       "Format: Name, Fontname, Fontsize, PrimaryColour, Alignment, Encoding\n"
                       "Style: Default,Malgun Gothic,20,&H00FFFFFF,2,1\n\n"
                       "[Events]\n"
                       "Format: Layer, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\n";
    for (const BlockCue& cue : cues) {
        text += "Dialogue: 0," + AssTime(cue.start) + "," + AssTime(cue.stop) + ",Default,,0,0,0,," +
                Drawing({cue.place.left, cue.place.top}, {cue.place.Width(), cue.place.Height()}, cue.colour,
                        cue.transparency) +
                "\n";
    }
    return text;
}

std::string SrtWith(int start, int stop, const std::string& text) {
    return "1\r\n" + SrtTime(start) + " --> " + SrtTime(stop) + "\r\n" + text + "\r\n\r\n";
}

std::string SrtBlock(Rgb colour) {
    return Drawing({20, 220}, {60, 40}, colour, 0);
}

Rect Sight::PlaceOf(Rgb colour) const {
    Rect place;
    for (int y = static_cast<int>(picture.height * kOwnPart); y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            if (!IsNear(picture.At({x, y}), colour, kEdgeTolerance)) {
                continue;
            }
            const bool first = place == Rect{};
            place.left = first ? x : std::min(place.left, x);
            place.top = first ? y : place.top;
            place.right = std::max(place.right, x + 1);
            place.bottom = y + 1;
        }
    }
    return place;
}

bool Sight::ShowsJust(const BlockCue& block) const {
    const Rect place = Scaled(block.place);
    if (PlaceOf(block.colour) != place) {
        return false;
    }
    for (int y = place.top; y < place.bottom; ++y) {
        for (int x = place.left; x < place.right; ++x) {
            if (!IsNear(picture.At({x, y}), block.colour, ToleranceAt(place, x, y))) {
                return false;
            }
        }
    }
    return true;
}

Rect Sight::Scaled(const Rect& rect) const {
    return {rect.left * picture.width / 320, rect.top * picture.height / 180,
            rect.right * picture.width / 320, rect.bottom * picture.height / 180};
}

std::string Sight::DifferenceFrom(const Sight& without, const BlockCue& block) const {
    if (picture.width != without.picture.width || picture.height != without.picture.height) {
        return "another size";
    }
    const Rect place = Scaled(block.place);
    const auto over = [&block](std::uint8_t colour, std::uint8_t under) {
        return static_cast<std::uint8_t>((colour * (255 - block.transparency) + under * block.transparency) /
                                         255);
    };
    for (int y = static_cast<int>(picture.height * kOwnPart); y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            Rgb expected = without.picture.At({x, y});
            if (IsIn(place, x, y)) {
                expected = {over(block.colour.red, expected.red), over(block.colour.green, expected.green),
                            over(block.colour.blue, expected.blue)};
            }
            if (const Rgb seen = picture.At({x, y}); !IsNear(seen, expected, ToleranceAt(place, x, y))) {
                return std::to_string(x) + ", " + std::to_string(y) + ": " + Text(seen) + " instead of " +
                       Text(expected);
            }
        }
    }
    return {};
}

Sight LookAt(const Player& player, const Film& film) {
    Sight sight;
    sight.picture = PhotographScreen(player.PictureOnScreen(film));
    sight.frame = ReadFrameMark(sight.picture.View(), {0, 0, sight.picture.width, sight.picture.height});
    return sight;
}

} // namespace brindlecast::testing
