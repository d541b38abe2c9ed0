#pragma once

#include "subtitles/sub_pic.h"

#include <string>

namespace brindlecast {

// Draws a cue's text as it stands, tags included, at the bottom of a picture of 32 bits a pixel, and widens
// `bbox` to hold what it has drawn. Nothing is drawn when the system gives no memory for it.
void DrawCueText(const std::wstring& text, const SubPicDesc& picture, Rect& bbox);

} // namespace brindlecast
