#pragma once

#include <string>
#include <string_view>

namespace brindlecast {

// Lower-casing and case-blind comparison of texts, by the one-to-one mappings of Unicode's basic plane; the
// same on every platform and in every locale. Units of surrogate pairs stay as they are.
[[nodiscard]] wchar_t ToLower(wchar_t unit);
[[nodiscard]] std::wstring ToLower(std::wstring_view text);
// Negative, 0 or positive, unit by unit of the lower-cased texts.
[[nodiscard]] int CompareIgnoringCase(std::wstring_view left, std::wstring_view right);
[[nodiscard]] bool EqualIgnoringCase(std::wstring_view left, std::wstring_view right);

} // namespace brindlecast
