#include "base/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>

namespace brindlecast {

namespace {

constexpr int kLargestField = 1000;

struct Conversion {
    bool left = false;
    bool plus = false;
    bool space = false;
    bool zero = false;
    int width = 0;
    std::optional<int> precision;
    wchar_t letter = 0;
};

std::wstring Widen(const char* first, const char* last) {
    return {first, last};
}

int ReadNumber(std::wstring_view format, std::size_t& at) {
    int value = 0;
    for (; at < format.size() && format[at] >= L'0' && format[at] <= L'9'; ++at) {
        value = std::min(value * 10 + static_cast<int>(format[at] - L'0'), kLargestField);
    }
    return value;
}

void ReadFlags(std::wstring_view format, std::size_t& at, Conversion& conversion) {
    for (; at < format.size(); ++at) {
        switch (format[at]) {
        case L'-': conversion.left = true; break;
        case L'+': conversion.plus = true; break;
        case L' ': conversion.space = true; break;
        case L'0': conversion.zero = true; break;
        default: return;
        }
    }
}

// Reads what stands behind a '%'; nothing when the format ends inside it.
std::optional<Conversion> ReadConversion(std::wstring_view format, std::size_t& at) {
    Conversion conversion;
    ReadFlags(format, at, conversion);
    conversion.width = ReadNumber(format, at);
    if (at < format.size() && format[at] == L'.') {
        ++at;
        conversion.precision = ReadNumber(format, at);
    }
    while (at < format.size() && std::wstring_view(L"hlLqjzt").find(format[at]) != std::wstring_view::npos) {
        ++at;
    }
    if (at >= format.size()) {
        return std::nullopt;
    }
    conversion.letter = format[at++];
    return conversion;
}

std::wstring Pad(const Conversion& conversion, const std::wstring& sign, const std::wstring& body,
                 bool mayZeroFill) {
    const auto length = static_cast<int>(sign.size() + body.size());
    if (length >= conversion.width) {
        return sign + body;
    }
    const auto missing = static_cast<std::size_t>(conversion.width - length);
    if (conversion.left) {
        return sign + body + std::wstring(missing, L' ');
    }
    if (conversion.zero && mayZeroFill) {
        return sign + std::wstring(missing, L'0') + body;
    }
    return std::wstring(missing, L' ') + sign + body;
}

std::wstring Sign(const Conversion& conversion, bool negative) {
    if (negative) {
        return L"-";
    }
    return conversion.plus ? L"+" : conversion.space ? L" " : L"";
}

std::wstring Digits(const Conversion& conversion, std::uint64_t magnitude, int base) {
    std::array<char, 32> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), magnitude, base).ptr;
    std::wstring digits = Widen(buffer.data(), end);
    if (conversion.letter == L'X') {
        std::ranges::transform(digits, digits.begin(), [](wchar_t c) {
            return c >= L'a' ? static_cast<wchar_t>(c - L'a' + L'A') : c;
        });
    }
    if (conversion.precision && static_cast<int>(digits.size()) < *conversion.precision) {
        digits.insert(0, static_cast<std::size_t>(*conversion.precision) - digits.size(), L'0');
    }
    return digits;
}

// The argument's bits as an unsigned number of its own size, which is what an unsigned conversion shows of a
// signed one.
std::uint64_t Unsigned(const FormatArgument& argument) {
    if (argument.kind == FormatArgument::Kind::Unsigned) {
        return argument.unsignedValue;
    }
    const auto bits = static_cast<std::uint64_t>(argument.signedValue);
    return argument.byteCount >= 8 ? bits : bits & ((std::uint64_t{1} << (argument.byteCount * 8)) - 1);
}

std::wstring FormatInteger(const Conversion& conversion, const FormatArgument& argument) {
    const bool signedConversion = conversion.letter == L'd' || conversion.letter == L'i';
    const bool negative =
        signedConversion && argument.kind == FormatArgument::Kind::Signed && argument.signedValue < 0;
    const std::uint64_t magnitude =
        negative ? ~static_cast<std::uint64_t>(argument.signedValue) + 1 : Unsigned(argument);
    const int base = conversion.letter == L'x' || conversion.letter == L'X' ? 16 : 10;
    return Pad(conversion, signedConversion ? Sign(conversion, negative) : L"",
               Digits(conversion, magnitude, base), !conversion.precision);
}

std::wstring FormatReal(const Conversion& conversion, double value) {
    const bool negative = std::signbit(value);
    const double magnitude = negative ? -value : value;
    if (!std::isfinite(magnitude)) {
        return Pad(conversion, Sign(conversion, negative), std::isnan(magnitude) ? L"nan" : L"inf", false);
    }
    // The largest double has 309 digits before the point.
    std::array<char, 320 + kLargestField> buffer{};
    const auto form = conversion.letter == L'g' ? std::chars_format::general : std::chars_format::fixed;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), magnitude, form,
                                   conversion.precision.value_or(6))
                         .ptr;
    return Pad(conversion, Sign(conversion, negative), Widen(buffer.data(), end), true);
}

std::wstring FormatPointer(const Conversion& conversion, const FormatArgument& argument) {
    Conversion digits = conversion;
    digits.letter = L'X';
    digits.precision = 16;
    return Pad(conversion, L"", Digits(digits, Unsigned(argument), 16), false);
}

// Nothing when the letter is no conversion or the argument is of another kind.
std::optional<std::wstring> Format(const Conversion& conversion, const FormatArgument& argument) {
    using Kind = FormatArgument::Kind;
    const bool integer = argument.kind == Kind::Signed || argument.kind == Kind::Unsigned;
    switch (conversion.letter) {
    case L'd':
    case L'i':
    case L'u':
    case L'x':
    case L'X': return integer ? std::optional(FormatInteger(conversion, argument)) : std::nullopt;
    case L'p': return integer ? std::optional(FormatPointer(conversion, argument)) : std::nullopt;
    case L'c':
        return integer ? std::optional(Pad(conversion, L"",
                                           std::wstring(1, static_cast<wchar_t>(Unsigned(argument))), false))
                       : std::nullopt;
    case L'f':
    case L'g':
        return argument.kind == Kind::Real ? std::optional(FormatReal(conversion, argument.realValue))
                                           : std::nullopt;
    case L's':
        if (argument.kind == Kind::Text) {
            const auto length = static_cast<std::size_t>(
                conversion.precision.value_or(static_cast<int>(argument.text.size())));
            return Pad(conversion, L"", std::wstring(argument.text.substr(0, length)), false);
        }
        return std::nullopt;
    default: return std::nullopt;
    }
}

} // namespace

FormatArgument::FormatArgument(const wchar_t* characters)
    : kind(Kind::Text),
      text(characters != nullptr ? std::wstring_view(characters) : std::wstring_view(L"(null)")) {}

std::wstring FormatArguments(std::wstring_view format, std::initializer_list<FormatArgument> arguments) {
    std::wstring result;
    const FormatArgument* argument = arguments.begin();
    std::size_t at = 0;
    while (at < format.size()) {
        const std::size_t percent = format.find(L'%', at);
        result += format.substr(at, percent - at);
        if (percent == std::wstring_view::npos) {
            break;
        }
        at = percent + 1;
        const auto conversion = ReadConversion(format, at);
        if (conversion && conversion->letter == L'%') {
            result += L'%';
            continue;
        }
        std::optional<std::wstring> text;
        if (conversion && argument != arguments.end()) {
            text = Format(*conversion, *argument++);
        }
        result += text ? *text : std::wstring(format.substr(percent, at - percent));
    }
    return result;
}

} // namespace brindlecast
