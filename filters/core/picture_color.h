#pragma once

#include "filters/core/picture_format.h"

#include <array>
#include <cstdint>

namespace brindlecast {

enum class YuvMatrixKind { kUnknown, kBt601, kBt709, kSmpte240, kBt2020 };
enum class NominalRange { kUnknown, kFull, kLimited };

// Where chroma samples lie between luma samples. With "cosited" a chroma sample lies on the first of the
// luma samples that it spans, else in their middle.
struct ChromaSiting {
    bool horizontallyCosited = true;
    bool verticallyCosited = false;
    bool operator==(const ChromaSiting&) const = default;
};

// What a media type says about its colours.
struct ColorInfo {
    YuvMatrixKind matrix = YuvMatrixKind::kUnknown;
    NominalRange range = NominalRange::kUnknown;
    ChromaSiting siting;
    bool operator==(const ColorInfo&) const = default;
};

// Reads the 32 bits of a VIDEOINFOHEADER2's control flags, which hold colour information only where the flag
// for it is set.
[[nodiscard]] ColorInfo ColorFromControlFlags(std::uint32_t controlFlags);

// The same with every unknown filled in: limited range, and the matrix by the picture's size (BT.601 up to
// 1024 x 576, else BT.709). RGB stays as it is.
[[nodiscard]] ColorInfo WithDefaults(ColorInfo color, PictureSize size);

// Three rows that turn (first, second, third, 1) into red, green, blue in 0..1.
using ColorMatrix = std::array<std::array<float, 4>, 3>;

// The matrix for the texture values of `format` (0..1 over the texel's whole range), given in the order
// Y, U, V or R, G, B. `color` must have its unknowns filled in.
[[nodiscard]] ColorMatrix MatrixFor(PixelFormat format, const ColorInfo& color);

// Scale and offset from the picture's texture coordinate (0..1 over the visible part) to that of its chroma
// texture, siting included.
struct ChromaMapping {
    float scaleX = 1;
    float scaleY = 1;
    float offsetX = 0;
    float offsetY = 0;
};

// `size` is that of the luma texture.
[[nodiscard]] ChromaMapping ChromaMappingFor(PixelFormat format, PictureSize size,
                                             const ChromaSiting& siting);

} // namespace brindlecast
