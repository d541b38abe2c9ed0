#pragma once

#include "base/geometry.h"
#include "subtitles/sub_pic.h"

#include <cstdint>

namespace brindlecast {

// How the text of a cue is drawn that libass does not draw: white letters, a shadow and an outline, at the
// bottom of the picture. All lengths in pixels.
struct CueTextLayout {
    int fontHeight = 0;
    int shadowOffset = 0;  // to the right and down
    int outlineRadius = 0; // of the black letters around the white ones
    Rect measured;         // in which the text is measured
};
[[nodiscard]] CueTextLayout LayOutCueText(Size picture);

// Where the text goes whose height was measured to be that.
[[nodiscard]] Rect PlaceCueText(Size picture, int textHeight);

// Copies the pixels that are not black from a drawing as large as the picture (blue, green, red, unused; rows
// from top to bottom without gaps) to it, opaque, and widens `bbox` to hold them. Black is empty: letters
// drawn in it take away what lies under them.
void CopyWhatIsNotBlack(const std::uint8_t* drawing, const SubPicDesc& picture, Rect& bbox);

} // namespace brindlecast
