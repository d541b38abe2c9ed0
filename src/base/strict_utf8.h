#pragma once

#include <string>
#include <string_view>

namespace brindlecast {

// For texts in which a malformed sequence is an error; see utf8.h for the conversions that never fail.

// Converts all bytes, zeros included. Throws std::range_error with the text "bad conversion" when they are
// not well-formed UTF-8: no overlong form, no surrogate, nothing above U+10FFFF, no sequence cut short.
[[nodiscard]] std::wstring StrictUtf8ToWide(std::string_view bytes);

// Whether each surrogate of the text has its partner, so that the text has a form in UTF-8.
[[nodiscard]] bool HasUtf8Form(std::wstring_view text);

} // namespace brindlecast
