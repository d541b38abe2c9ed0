#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace brindlecast {

// Reading numbers out of texts of bytes, the same on every platform and in every locale.

// A decimal digit of ASCII.
[[nodiscard]] constexpr bool IsDigit(char byte) {
    return byte >= '0' && byte <= '9';
}
// Space, tabulators, line feed, form feed and carriage return.
[[nodiscard]] constexpr bool IsSpace(char byte) {
    return byte == ' ' || (byte >= '\t' && byte <= '\r');
}

// Reads a decimal number off the front of `text`: white space is passed over, and one sign may stand before
// the digits. A number beyond 64 bits is the end of their range. Nothing when no number stands there; `text`
// is then left as it was.
[[nodiscard]] std::optional<std::int64_t> TakeInteger(std::string_view& text);

// Reads numbers by a pattern, as scanf does: each "%d" stands for a number as TakeInteger reads it, saturated
// at the limits of int, and every other character for itself. Stops at the first that doesn't match, when
// `values` is full, or at the pattern's end; what follows in the text doesn't matter. Returns how many values
// were stored.
[[nodiscard]] std::size_t ScanIntegers(std::string_view text, std::string_view pattern,
                                       std::span<int> values);

} // namespace brindlecast
