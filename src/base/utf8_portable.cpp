#include "base/utf8.h"

#include <cstdint>

namespace brindlecast {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

void AppendUtf8(std::string& out, char32_t code) {
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (code >> 18));
        out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

struct LeadByte {
    int following;
    std::uint8_t
        lowest; // of the second byte: shuts out overlong forms, surrogates and what lies above U+10FFFF
    std::uint8_t highest;
    char32_t bits;
};

LeadByte Classify(std::uint8_t lead) {
    if (lead >= 0xC2 && lead <= 0xDF) {
        return {1, 0x80, 0xBF, static_cast<char32_t>(lead & 0x1F)};
    }
    if (lead >= 0xE0 && lead <= 0xEF) {
        return {2, static_cast<std::uint8_t>(lead == 0xE0 ? 0xA0 : 0x80),
                static_cast<std::uint8_t>(lead == 0xED ? 0x9F : 0xBF), static_cast<char32_t>(lead & 0x0F)};
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        return {3, static_cast<std::uint8_t>(lead == 0xF0 ? 0x90 : 0x80),
                static_cast<std::uint8_t>(lead == 0xF4 ? 0x8F : 0xBF), static_cast<char32_t>(lead & 0x07)};
    }
    return {0, 0, 0, kReplacement};
}

// Reads one code point and moves on; a malformed sequence gives one replacement for its longest valid
// beginning.
char32_t ReadCode(const char*& text) {
    const auto lead = static_cast<std::uint8_t>(*text++);
    if (lead < 0x80) {
        return lead;
    }
    const LeadByte kind = Classify(lead);
    char32_t code = kind.bits;
    for (int i = 0; i < kind.following; ++i, ++text) {
        const auto next = static_cast<std::uint8_t>(*text);
        const bool valid =
            i == 0 ? next >= kind.lowest && next <= kind.highest : next >= 0x80 && next <= 0xBF;
        if (!valid) {
            return kReplacement;
        }
        code = (code << 6) | (next & 0x3F);
    }
    return code;
}

} // namespace

std::string WideToUtf8(std::wstring_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        auto code = static_cast<char32_t>(text[i]);
        if (IsHighSurrogate(code) && i + 1 < text.size() &&
            IsLowSurrogate(static_cast<char32_t>(text[i + 1]))) {
            code = 0x10000 + ((code - 0xD800) << 10) + (static_cast<char32_t>(text[++i]) - 0xDC00);
        } else if (IsHighSurrogate(code) || IsLowSurrogate(code) || code > 0x10FFFF) {
            code = kReplacement;
        }
        AppendUtf8(result, code);
    }
    return result;
}

std::wstring Utf8ToWide(const char* text) {
    std::wstring result;
    while (text != nullptr && *text != '\0') {
        result += static_cast<wchar_t>(ReadCode(text));
    }
    return result;
}

} // namespace brindlecast
