#pragma once

#include "base/time_types.h"

#include <cstdint>

namespace brindlecast {

// The ends of the repeated part. 0 means unset; `a` = kRepeatFromStart stands for the start of the file.
struct RepeatMarks {
    Time100ns a = 0;
    Time100ns b = 0;
    bool operator==(const RepeatMarks&) const = default;
};

inline constexpr Time100ns kRepeatFromStart = 1;

enum class MarkChange { None, Set, Cleared };

// What pressing A at `position` does: sets A, which drops a B that no longer lies behind it, or, less than a
// second from A, clears both.
[[nodiscard]] MarkChange PressMarkA(RepeatMarks& marks, Time100ns position);

// What pressing B at `position` does. Without A the start of the file becomes A, also when B itself stays
// unset because it would lie at most one second behind A. Within a second of B, clears B alone.
[[nodiscard]] MarkChange PressMarkB(RepeatMarks& marks, Time100ns position);

// Whether both marks are set, in order.
[[nodiscard]] bool HasRepeat(const RepeatMarks& marks);

// Whether `position` has come near enough to B (or passed it) to go back to A. False without both marks.
[[nodiscard]] bool ReachesRepeatEnd(const RepeatMarks& marks, Time100ns position);

// Whether enough time has passed since the last jump, in milliseconds of the system's tick count; near marks
// would else jump at every look.
[[nodiscard]] bool MayRepeatAgain(std::uint64_t lastJumpTick, std::uint64_t now);

} // namespace brindlecast
