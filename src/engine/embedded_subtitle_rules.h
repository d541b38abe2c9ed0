#pragma once

#include <string>
#include <string_view>

namespace brindlecast {

// What is known of a subtitle track inside a file before it is taken out: nothing but its stream's name, in
// which words are looked for anywhere and by case.

// Whether the track holds pictures, which can't be shown. The two ways of taking a track out know different
// words.
[[nodiscard]] bool IsPictureTrackForTool(std::wstring_view name);
[[nodiscard]] bool IsPictureTrackForGrabber(std::wstring_view name);

// Whether the track is one of ASS or SSA. A bare search: "Classic" is one too.
[[nodiscard]] bool IsAssTrack(std::wstring_view name);

// The file that such a track is written to; one name for all tracks of a format.
[[nodiscard]] std::wstring ExtractedFileName(std::wstring_view trackName);

// How ffmpeg (`tool`, a path) is started to copy a subtitle track of `film` into `target`. `ordinal` counts
// subtitle tracks alone, from 0.
[[nodiscard]] std::wstring ExtractionCommandLine(const std::wstring& tool, const std::wstring& film,
                                                 int ordinal, const std::wstring& target);

} // namespace brindlecast
