#pragma once

#include <cstdint>

namespace brindlecast {

// A point in time as Windows files carry it: 100 nanosecond units since 1601-01-01 UTC.
using FileTime = std::uint64_t;

// A day of the Gregorian calendar, UTC.
struct CalendarDay {
    int year = 1601;
    int month = 1; // from 1
    int day = 1;   // from 1
    bool operator==(const CalendarDay&) const = default;
};

[[nodiscard]] CalendarDay DayOf(FileTime time);

// Tells the present time. One implementation asks the system, tests have their own.
class Clock {
public:
    virtual ~Clock() = default;
    [[nodiscard]] virtual FileTime Now() const = 0;
};

} // namespace brindlecast
