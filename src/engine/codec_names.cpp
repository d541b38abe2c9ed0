#include "engine/codec_names.h"

namespace brindlecast {

namespace {

constexpr std::uint32_t FourCc(char a, char b, char c, char d) {
    const auto byte = [](char character) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(character));
    };
    return byte(a) | byte(b) << 8 | byte(c) << 16 | byte(d) << 24;
}

constexpr unsigned char UpperCase(unsigned char character) {
    return character >= 'a' && character <= 'z' ? static_cast<unsigned char>(character - 'a' + 'A')
                                                : character;
}

} // namespace

const wchar_t* KnownVideoCodecName(std::uint32_t fourCc) {
    switch (fourCc) {
    case FourCc('H', '2', '6', '4'):
    case FourCc('h', '2', '6', '4'):
    case FourCc('A', 'V', 'C', '1'):
    case FourCc('a', 'v', 'c', '1'): return L"H264";
    case FourCc('H', 'E', 'V', 'C'):
    case FourCc('H', 'V', 'C', '1'): return L"HEVC";
    default: return nullptr;
    }
}

std::string CompressionText(std::uint32_t compression) {
    constexpr std::uint32_t kPlainRgb = 0;
    constexpr std::uint32_t kBitFields = 3;
    std::string text;
    if (compression == kPlainRgb || compression == kBitFields) {
        return text;
    }
    // As a terminated string would be read: a zero byte ends it.
    for (int byte = 0; byte < 4 && (compression >> (8 * byte) & 0xFF) != 0; ++byte) {
        text += static_cast<char>(UpperCase(static_cast<unsigned char>(compression >> (8 * byte))));
    }
    return text;
}

std::wstring UpperCaseCodecName(const char* name) {
    std::wstring wide;
    for (; name != nullptr && *name != '\0'; ++name) {
        wide += static_cast<wchar_t>(UpperCase(static_cast<unsigned char>(*name)));
    }
    return wide;
}

} // namespace brindlecast
