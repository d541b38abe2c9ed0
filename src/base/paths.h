#pragma once

#include <string>
#include <string_view>

namespace brindlecast {

// The place of the last "\" or "/", std::wstring_view::npos without one.
[[nodiscard]] constexpr std::size_t LastSeparator(std::wstring_view path) {
    return path.find_last_of(L"\\/");
}

// What follows the last separator, or the whole path.
[[nodiscard]] constexpr std::wstring_view FileNameOf(std::wstring_view path) {
    const std::size_t separator = LastSeparator(path);
    return separator == std::wstring_view::npos ? path : path.substr(separator + 1);
}

} // namespace brindlecast
