#pragma once

#include "base/time_types.h"
#include "subtitles/subtitle_style.h"

#include <string>
#include <string_view>

namespace brindlecast {

// Rewrites the bytes of a SubRip file, without a byte order mark, as an ASS script of one style, "Default". A
// WebVTT file goes the same way, line for line: without numbers before its timing lines it loses every second
// cue. Tags in angle brackets are dropped, and all else of a text is kept as it stands. Nothing fails; a file
// without cues gives a script without events.
[[nodiscard]] std::string ConvertSrtToAss(std::string_view content, const SubtitleStyle& style);

// "h:mm:ss.cc", cut off to hundredths. A negative time has the sign in each part that isn't 0; hours saturate
// at the limits of 32 bits.
[[nodiscard]] std::string FormatAssTime(Milliseconds time);

// Reads "h:m:s,ms" or "h:m:s.ms" at the front of a text; the last number counts milliseconds whatever its
// length. 0 when neither stands there.
[[nodiscard]] Milliseconds ParseSrtTime(std::string_view text);

} // namespace brindlecast
