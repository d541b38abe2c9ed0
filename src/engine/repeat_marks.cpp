#include "engine/repeat_marks.h"

#include <cstdlib>

namespace brindlecast {

namespace {

// A jump begins this long before B, so that what lies behind it is not heard.
constexpr Time100ns kRepeatLead = 500'000;
constexpr std::uint64_t kRepeatPause = 500; // milliseconds

} // namespace

MarkChange PressMarkA(RepeatMarks& marks, Time100ns position) {
    if (marks.a > 0 && std::abs(position - marks.a) < kUnitsPerSecond) {
        marks = {};
        return MarkChange::Cleared;
    }
    marks.a = position;
    if (marks.b >= 1 && marks.b <= position) {
        marks.b = 0;
    }
    return MarkChange::Set;
}

MarkChange PressMarkB(RepeatMarks& marks, Time100ns position) {
    if (marks.a == 0) {
        marks.a = kRepeatFromStart;
    }
    if (position - marks.a <= kUnitsPerSecond) {
        return MarkChange::None;
    }
    if (marks.b > 0 && std::abs(position - marks.b) <= kUnitsPerSecond) {
        marks.b = 0;
        return MarkChange::Cleared;
    }
    marks.b = position;
    return MarkChange::Set;
}

bool HasRepeat(const RepeatMarks& marks) {
    return marks.a > 0 && marks.b > marks.a;
}

bool ReachesRepeatEnd(const RepeatMarks& marks, Time100ns position) {
    return HasRepeat(marks) && position >= marks.b - kRepeatLead;
}

bool MayRepeatAgain(std::uint64_t lastJumpTick, std::uint64_t now) {
    return now - lastJumpTick >= kRepeatPause;
}

} // namespace brindlecast
