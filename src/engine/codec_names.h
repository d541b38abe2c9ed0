#pragma once

#include <cstdint>
#include <string>

namespace brindlecast {

// "H264" or "HEVC" for the four-character codes that mean one of them, null for any other code. The first
// character of a code is its lowest byte.
[[nodiscard]] const wchar_t* KnownVideoCodecName(std::uint32_t fourCc);

// The four bytes of a compression code, lowest first, ASCII letters in upper case; empty for the two codes
// (0 and 3) that mean uncompressed pictures.
[[nodiscard]] std::string CompressionText(std::uint32_t compression);

// A codec's name widened byte by byte, its letters a to z in upper case; empty for null.
[[nodiscard]] std::wstring UpperCaseCodecName(const char* name);

} // namespace brindlecast
