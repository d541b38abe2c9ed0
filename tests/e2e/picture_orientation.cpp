#include "tests/e2e/picture_orientation.h"

#include "tests/e2e/waits.h"

#include <algorithm>

namespace brindlecast::testing {

namespace {

constexpr int kPatchTolerance = 8;

// Where a point of an upright picture of that size lies once it is turned and mirrored.
Point Turned(Point point, Size upright, Orientation orientation) {
    const bool sideways = orientation.rotation % 180 != 0;
    Point turned = point;
    switch (orientation.rotation) {
    case 90: turned = {upright.height - 1 - point.y, point.x}; break;
    case 180: turned = {upright.width - 1 - point.x, upright.height - 1 - point.y}; break;
    case 270: turned = {point.y, upright.width - 1 - point.x}; break;
    default: break;
    }
    if (orientation.mirrored) {
        turned.x = (sideways ? upright.height : upright.width) - 1 - turned.x;
    }
    return turned;
}

// The part of the photograph that a film lying so would fill, turned back.
Photograph Upright(const Photograph& video, const Film& film, Orientation orientation) {
    const bool sideways = orientation.rotation % 180 != 0;
    const PixelRect place = FitPicture({0, 0, video.width, video.height}, sideways ? film.height : film.width,
                                       sideways ? film.width : film.height);
    Photograph upright;
    upright.width = sideways ? place.height : place.width;
    upright.height = sideways ? place.width : place.height;
    upright.pixels.reserve(static_cast<std::size_t>(upright.width) *
                           static_cast<std::size_t>(upright.height) * 4);
    for (int y = 0; y < upright.height; ++y) {
        for (int x = 0; x < upright.width; ++x) {
            const Point from = Turned({x, y}, {upright.width, upright.height}, orientation);
            const Rgb colour = video.At({place.left + from.x, place.top + from.y});
            upright.pixels.insert(upright.pixels.end(), {colour.blue, colour.green, colour.red, 255});
        }
    }
    return upright;
}

bool IsUpright(const Photograph& picture) {
    const PixelRect whole{0, 0, picture.width, picture.height};
    const auto colours = ReadColourPatches(picture.View(), whole);
    return ReadFrameMark(picture.View(), whole).has_value() && colours &&
           LargestPatchError(*colours) <= kPatchTolerance;
}

} // namespace

std::optional<Orientation> OrientationOnScreen(const Player& player, const Film& film) {
    const Photograph video = PhotographScreen(ScreenRectOf(player.VideoWindow()));
    for (const int rotation : {0, 90, 180, 270}) {
        for (const bool mirrored : {false, true}) {
            if (IsUpright(Upright(video, film, {rotation, mirrored}))) {
                return Orientation{rotation, mirrored};
            }
        }
    }
    return std::nullopt;
}

bool WaitForOrientation(const Player& player, const Film& film, Orientation wanted) {
    return WaitUntil(limits::kReaction, "turning",
                     [&] { return OrientationOnScreen(player, film) == wanted; });
}

} // namespace brindlecast::testing
