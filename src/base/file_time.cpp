#include "base/file_time.h"

#include <chrono>

namespace brindlecast {

CalendarDay DayOf(FileTime time) {
    using namespace std::chrono;
    constexpr FileTime kUnitsPerDay = 864'000'000'000;
    constexpr sys_days kBegin = year{1601} / January / 1;
    // At most 21 million days, which fits any counter.
    const year_month_day date(kBegin + days(static_cast<int>(time / kUnitsPerDay)));
    return {static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day()))};
}

} // namespace brindlecast
