#pragma once

#include "engine/bitmap_file.h"

#include <string>

namespace brindlecast {

// Writes the picture in the format of `mimeType` ("image/png", "image/jpeg" with quality 95). False when
// there is no encoder of that type, the bytes are no picture, or the file can't be written. Starts GDI+ for
// itself; one thread at a time per path.
[[nodiscard]] bool EncodeImageFile(const BitmapBytes& bytes, const std::wstring& path,
                                   const std::wstring& mimeType);

// Writes the bytes as they are, over what `path` held. True only when every byte was written.
[[nodiscard]] bool WriteBytesToFile(const std::vector<std::uint8_t>& bytes, const std::wstring& path);

} // namespace brindlecast
