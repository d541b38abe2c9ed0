#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace brindlecast {

// What all readers of subtitle text begin with: the file's bytes and their lines. The bytes are taken as they
// are, whatever their encoding.

// The whole file. Nothing when it can't be opened or read.
[[nodiscard]] std::optional<std::string> ReadSubtitleFile(const std::wstring& path);

// The bytes behind UTF-8's byte order mark, if they begin with one. Other marks are not known.
[[nodiscard]] std::string_view WithoutUtf8Mark(std::string_view bytes);

// Takes the first line off `content`: what stands before the next line feed, or all that is left, less one
// carriage return at its end.
[[nodiscard]] std::string_view TakeSubtitleLine(std::string_view& content);

} // namespace brindlecast
