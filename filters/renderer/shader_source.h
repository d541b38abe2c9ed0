#pragma once

#include "filters/core/picture_format.h"

#include <string>

namespace brindlecast {

// The shaders are compiled at run time and are straight lines, written out here: no loops, branches,
// functions, nested macros or conditional expressions, because Wine 8 compiles some of those silently wrong
// and others not at all.

// Five floats a vertex: position (three), texture coordinate (two). Passed through.
[[nodiscard]] const char* VertexShaderSource();

// Samples texture slot 0 with sampler slot 0: what the subtitle callback draws with.
[[nodiscard]] const char* CopyShaderSource();

// Turns a picture in `format` into red, green and blue. `taps` (1, 2 or 4) samples along each axis are
// averaged for each output pixel. Constants: three rows of the colour matrix, chroma scale and offset,
// footprint of an output pixel.
[[nodiscard]] std::string PictureShaderSource(PixelFormat format, int taps);

} // namespace brindlecast
