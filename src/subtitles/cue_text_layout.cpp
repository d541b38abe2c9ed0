#include "subtitles/cue_text_layout.h"

#include <algorithm>
#include <cstddef>

namespace brindlecast {

namespace {

constexpr int kMargin = 20;
constexpr int kLeastFontHeight = 16;
constexpr int kRowsPerPicture = 20; // rows of text as high as the font
constexpr int kLeastShadow = 2;
constexpr int kFontPerShadow = 12;
constexpr int kFontPerOutline = 20;
constexpr int kWidestOutline = 3;
constexpr std::size_t kBytesPerPixel = 4;
constexpr std::uint8_t kOpaque = 255;

} // namespace

CueTextLayout LayOutCueText(Size picture) {
    CueTextLayout layout;
    layout.fontHeight = std::max(picture.height / kRowsPerPicture, kLeastFontHeight);
    layout.shadowOffset = std::max(layout.fontHeight / kFontPerShadow, kLeastShadow);
    layout.outlineRadius = std::clamp(layout.fontHeight / kFontPerOutline, 1, kWidestOutline);
    layout.measured = {kMargin, 0, picture.width - kMargin, picture.height - kMargin};
    return layout;
}

Rect PlaceCueText(Size picture, int textHeight) {
    const int bottom = picture.height - kMargin;
    return {kMargin, bottom - textHeight, picture.width - kMargin, bottom};
}

void CopyWhatIsNotBlack(const std::uint8_t* drawing, const SubPicDesc& picture, Rect& bbox) {
    for (int y = 0; y < picture.height; ++y) {
        std::uint8_t* target = picture.bits + static_cast<std::ptrdiff_t>(y) * picture.pitch;
        for (int x = 0; x < picture.width; ++x, drawing += kBytesPerPixel, target += kBytesPerPixel) {
            if (drawing[0] == 0 && drawing[1] == 0 && drawing[2] == 0) {
                continue;
            }
            std::copy_n(drawing, 3, target);
            target[3] = kOpaque;
            bbox = {std::min(bbox.left, x), std::min(bbox.top, y), std::max(bbox.right, x + 1),
                    std::max(bbox.bottom, y + 1)};
        }
    }
}

} // namespace brindlecast
