#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>

namespace brindlecast {

// One argument of FormatText. Holds a view of texts: it must not outlive the full expression that made it.
class FormatArgument {
public:
    template <std::integral Number>
    FormatArgument(Number number) {
        if constexpr (std::is_signed_v<Number>) {
            kind = Kind::Signed;
            signedValue = number;
        } else {
            kind = Kind::Unsigned;
            unsignedValue = number;
        }
        byteCount = sizeof(Number);
    }
    template <class Enumeration>
    requires std::is_enum_v<Enumeration> FormatArgument(Enumeration value)
        : FormatArgument(static_cast<std::underlying_type_t<Enumeration>>(value)) {}
    FormatArgument(double number) : kind(Kind::Real), realValue(number) {}
    // A null pointer is shown as "(null)".
    FormatArgument(const wchar_t* characters);
    FormatArgument(const std::wstring& string) : kind(Kind::Text), text(string) {}
    FormatArgument(std::wstring_view string) : kind(Kind::Text), text(string) {}
    FormatArgument(const void* address)
        : kind(Kind::Unsigned), unsignedValue(reinterpret_cast<std::uintptr_t>(address)) {}

    enum class Kind { Signed, Unsigned, Real, Text };
    Kind kind = Kind::Signed;
    unsigned byteCount = 8;
    std::int64_t signedValue = 0;
    std::uint64_t unsignedValue = 0;
    double realValue = 0.0;
    std::wstring_view text;
};

// Formats with the printf conversions d, i, u, x, X, c, f, g, s, p and %%, the flags '-', '+', ' ' and '0',
// width and precision; length modifiers are read and passed over, because an argument knows its own size. The
// result is the same on every platform and in every locale. A conversion without an argument, or with one of
// another kind, stands in the result as it is written, so that a mistake shows and nothing is undefined. A
// width or precision above 1000 counts as 1000.
[[nodiscard]] std::wstring FormatArguments(std::wstring_view format,
                                           std::initializer_list<FormatArgument> arguments);

template <class... Arguments>
[[nodiscard]] std::wstring FormatText(std::wstring_view format, const Arguments&... arguments) {
    return FormatArguments(format, {FormatArgument(arguments)...});
}

} // namespace brindlecast
