#pragma once

#include "base/time_types.h"

#include <cstdint>

namespace brindlecast {

// The moment at which a file has come to its end.
struct EndOfFile {
    Time100ns markA = 0; // 0 unset
    Time100ns markB = 0; // 0 unset
    bool hasPlaylist = false;
    // A group of favorites is being played, instead of the list.
    bool playsGroup = false;
};

enum class NextAction : std::uint8_t {
    RepeatFromA,  // back to A and on
    PlayNextItem, // of the list, or stop behind the last
    PlayNextFavorite,
    Stop
};

// What follows the end of a file. A repeat to the end of the file needs A alone: with B behind A the file
// ends outside the repeated part.
[[nodiscard]] NextAction ChooseNextAction(const EndOfFile& end);

} // namespace brindlecast
