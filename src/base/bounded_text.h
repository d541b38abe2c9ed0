#pragma once

#include "base/invalid_parameter.h"
#include "base/text.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace brindlecast {

// Formats a text that the user will see (see FormatText for the conversions). With its terminator it must fit
// in `Capacity` units of wchar_t; one that does not is never shown cut but ends the process. The units are
// those of the platform: UTF-16 on Windows, whole code points where wchar_t has 32 bits, so that characters
// beyond U+FFFF count twice on Windows only.
template <std::size_t Capacity, class... Arguments>
[[nodiscard]] std::wstring FormatBounded(std::wstring_view format, const Arguments&... arguments) {
    static_assert(Capacity > 0, "there is no room for the terminator");
    std::wstring text = FormatText(format, arguments...);
    if (text.size() >= Capacity) {
        EndForInvalidParameter();
    }
    return text;
}

} // namespace brindlecast
