#include "app/position_text.h"

#include "app/command_texts.h"
#include "base/bounded_text.h"

#include <cstdint>

namespace brindlecast {

namespace {

// Far beyond any film, and far from what a 64-bit number does not hold.
constexpr Seconds kLongestPosition = 1e9;
constexpr std::int64_t kSecondsPerMinute = 60;
constexpr std::int64_t kSecondsPerHour = 3600;

} // namespace

std::wstring FormatPosition(Seconds position) {
    const std::int64_t total =
        position > 0.0 ? static_cast<std::int64_t>(position < kLongestPosition ? position : kLongestPosition)
                       : 0;
    const std::int64_t hours = total / kSecondsPerHour;
    const std::int64_t minutes = total % kSecondsPerHour / kSecondsPerMinute;
    const std::int64_t seconds = total % kSecondsPerMinute;
    return hours > 0 ? FormatBounded<texts::kPositionTextCapacity>(texts::kPositionWithHours, hours, minutes,
                                                                   seconds)
                     : FormatBounded<texts::kPositionTextCapacity>(texts::kPosition, minutes, seconds);
}

} // namespace brindlecast
