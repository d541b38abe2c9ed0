#pragma once

#include "base/time_types.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace brindlecast {

// A text and when it is shown, for the drawing of subtitles that libass has refused.
struct SubtitleCue {
    std::int32_t index = 0; // the number that the file gives it
    Milliseconds startMs = 0;
    Milliseconds endMs = 0;
    std::wstring text; // lines joined by line feeds, tags kept

    bool operator==(const SubtitleCue&) const = default;
};

// Replaces the list by the cues of a file, in the file's order. False when it can't be opened or holds none.
// Throws as ParseSubtitleCues does.
[[nodiscard]] bool LoadSubtitleCues(const std::wstring& path, std::vector<SubtitleCue>& cues);

// Adds the cues in the bytes of a SubRip file, without a byte order mark. Throws std::range_error with the
// text "bad conversion" when a line of text is not UTF-8; the cues finished by then have been added.
void ParseSubtitleCues(std::string_view content, std::vector<SubtitleCue>& cues);

// Reads "h:m:s.ms", with commas for points as well, at the front of a text; the last number counts
// milliseconds whatever its length. 0 when no such time stands there.
[[nodiscard]] Milliseconds ParseCueTime(std::string_view text);

} // namespace brindlecast
