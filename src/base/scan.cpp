#include "base/scan.h"

#include "base/saturate.h"

#include <charconv>
#include <limits>
#include <system_error>

namespace brindlecast {

std::optional<std::int64_t> TakeInteger(std::string_view& text) {
    std::size_t at = 0;
    while (at < text.size() && IsSpace(text[at])) {
        ++at;
    }
    const bool negative = at < text.size() && text[at] == '-';
    // std::from_chars knows a minus sign alone.
    if (at < text.size() && text[at] == '+') {
        ++at;
    }
    const std::size_t firstDigit = negative ? at + 1 : at;
    if (firstDigit >= text.size() || !IsDigit(text[firstDigit])) {
        return std::nullopt;
    }
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data() + at, text.data() + text.size(), value);
    if (error == std::errc::result_out_of_range) {
        using Limits = std::numeric_limits<std::int64_t>;
        value = negative ? Limits::min() : Limits::max();
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return value;
}

std::size_t ScanIntegers(std::string_view text, std::string_view pattern, std::span<int> values) {
    std::size_t stored = 0;
    while (!pattern.empty()) {
        if (pattern.starts_with("%d")) {
            const auto value = stored < values.size() ? TakeInteger(text) : std::nullopt;
            if (!value) {
                break;
            }
            values[stored++] = SaturateToInt(*value);
            pattern.remove_prefix(2);
        } else if (text.starts_with(pattern.front())) {
            text.remove_prefix(1);
            pattern.remove_prefix(1);
        } else {
            break;
        }
    }
    return stored;
}

} // namespace brindlecast
