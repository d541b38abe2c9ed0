#include "base/strict_utf8.h"

#include <array>
#include <cstdint>
#include <stdexcept>

namespace brindlecast {

namespace {

// The sequences that begin with one of some lead bytes. The range of the second byte is what shuts out
// overlong forms, surrogates and what lies above U+10FFFF; later bytes always range from 0x80 to 0xBF.
struct SequenceKind {
    std::uint8_t firstLead;
    std::uint8_t lastLead;
    std::uint8_t lowestSecond;
    std::uint8_t highestSecond;
    std::size_t length;
};

constexpr auto kSequenceKinds = std::to_array<SequenceKind>({
    {0xC2, 0xDF, 0x80, 0xBF, 2},
    {0xE0, 0xE0, 0xA0, 0xBF, 3},
    {0xE1, 0xEC, 0x80, 0xBF, 3},
    {0xED, 0xED, 0x80, 0x9F, 3},
    {0xEE, 0xEF, 0x80, 0xBF, 3},
    {0xF0, 0xF0, 0x90, 0xBF, 4},
    {0xF1, 0xF3, 0x80, 0xBF, 4},
    {0xF4, 0xF4, 0x80, 0x8F, 4},
});

[[noreturn]] void RefuseConversion() {
    throw std::range_error("bad conversion");
}

const SequenceKind& KindOf(std::uint8_t lead) {
    for (const SequenceKind& kind : kSequenceKinds) {
        if (lead >= kind.firstLead && lead <= kind.lastLead) {
            return kind;
        }
    }
    RefuseConversion();
}

// Takes a sequence of more than one byte off the front.
char32_t TakeSequence(std::string_view& bytes) {
    const auto lead = static_cast<std::uint8_t>(bytes.front());
    const SequenceKind& kind = KindOf(lead);
    if (bytes.size() < kind.length) {
        RefuseConversion();
    }
    char32_t code = lead & (0x7FU >> kind.length);
    for (std::size_t i = 1; i < kind.length; ++i) {
        const auto next = static_cast<std::uint8_t>(bytes[i]);
        if (next < (i == 1 ? kind.lowestSecond : 0x80) || next > (i == 1 ? kind.highestSecond : 0xBF)) {
            RefuseConversion();
        }
        code = code << 6 | (next & 0x3FU);
    }
    bytes.remove_prefix(kind.length);
    return code;
}

void AppendWide(std::wstring& text, char32_t code) {
    if constexpr (sizeof(wchar_t) == 2) {
        if (code >= 0x10000) {
            text += static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10));
            text += static_cast<wchar_t>(0xDC00 + (code & 0x3FF));
            return;
        }
    }
    text += static_cast<wchar_t>(code);
}

} // namespace

std::wstring StrictUtf8ToWide(std::string_view bytes) {
    std::wstring text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        if (static_cast<std::uint8_t>(bytes.front()) < 0x80) {
            text += static_cast<wchar_t>(bytes.front());
            bytes.remove_prefix(1);
        } else {
            AppendWide(text, TakeSequence(bytes));
        }
    }
    return text;
}

bool HasUtf8Form(std::wstring_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto unit = static_cast<char32_t>(text[i]);
        if (unit < 0xD800 || unit > 0xDFFF) {
            continue;
        }
        const char32_t next = i + 1 < text.size() ? static_cast<char32_t>(text[i + 1]) : 0;
        if (unit > 0xDBFF || next < 0xDC00 || next > 0xDFFF) {
            return false;
        }
        ++i;
    }
    return true;
}

} // namespace brindlecast
