#include "engine/repeat_marks.h"

#include <cstdlib>

namespace brindlecast {

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

} // namespace brindlecast
