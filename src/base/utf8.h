#pragma once

#include <string>
#include <string_view>

namespace brindlecast {

// The only conversions between wide strings and UTF-8. Nothing fails: an unpaired surrogate and a malformed
// sequence become U+FFFD. An empty input gives an empty result.
[[nodiscard]] std::string WideToUtf8(std::wstring_view text);
// Reads up to the terminating zero; a null pointer gives an empty result.
[[nodiscard]] std::wstring Utf8ToWide(const char* text);

} // namespace brindlecast
