#pragma once

#include <cstdint>
#include <string_view>

namespace brindlecast {

// How a subtitle file is read, and once it is, how it is drawn: Ass and Ssa through libass, all others as a
// list of cues.
enum class SubtitleType : std::int32_t {
    Unknown = 0,
    SubRip = 1, // also a file of any kind that is held as a list of cues
    Ass = 2,    // also a file of any kind that libass has taken
    Ssa = 3,
    Sub = 4,
    Sami = 5,
    WebVtt = 6,
};

// The type by what follows the last point of the whole path, in capital or small letters. The content is
// never looked at.
[[nodiscard]] SubtitleType SubtitleTypeOf(std::wstring_view path);

} // namespace brindlecast
