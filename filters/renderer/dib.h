#pragma once

#include "filters/renderer/frame_painter.h"

namespace brindlecast {

// Bytes of a 32-bit DIB (BITMAPINFOHEADER and pixels) of that size.
[[nodiscard]] std::size_t DibBytes(PictureSize size);

// Writes the picture as a bottom-up DIB; `out` has room for DibBytes(image.size).
void WriteDib(const CapturedImage& image, void* out);

} // namespace brindlecast
