#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace brindlecast {

// The uncompressed picture formats that the renderer takes.
enum class PixelFormat { kNv12, kP010, kYv12, kYuy2, kAyuv, kRgb32 };

// Sizes in pixels.
struct PictureSize {
    int width = 0;
    int height = 0;
    bool operator==(const PictureSize&) const = default;
};

// Pixels; `right` and `bottom` lie one beyond the last one.
struct PictureRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    [[nodiscard]] constexpr int Width() const { return right - left; }
    [[nodiscard]] constexpr int Height() const { return bottom - top; }
    [[nodiscard]] constexpr bool Empty() const { return right <= left || bottom <= top; }
    bool operator==(const PictureRect&) const = default;
};

// How one texel of a texture that holds (a part of) a picture is stored.
enum class TexelType { kOne8, kTwo8, kFour8, kFour8Bgr, kOne16, kTwo16 };

[[nodiscard]] constexpr int TexelBytes(TexelType type) {
    switch (type) {
    case TexelType::kOne8: return 1;
    case TexelType::kTwo8:
    case TexelType::kOne16: return 2;
    case TexelType::kFour8:
    case TexelType::kFour8Bgr:
    case TexelType::kTwo16: return 4;
    }
    return 0;
}

// One texture's worth of a picture. `offset` is the first texel's place in the sample, `pitch` the distance
// of two rows in bytes, negative for a picture that is stored bottom-up. `width` and `height` count texels.
struct PicturePlane {
    TexelType texel = TexelType::kOne8;
    std::size_t offset = 0;
    std::ptrdiff_t pitch = 0;
    int width = 0;
    int height = 0;
    bool operator==(const PicturePlane&) const = default;
};

// Where everything of a picture lies in its sample.
struct PictureLayout {
    std::array<PicturePlane, 3> planes{};
    int planeCount = 0;
    // Size of the whole sample.
    std::size_t bytes = 0;
};

// What a media type says about the memory: `stride` is the header's width in pixels, `lines` its height
// without sign, `visible` the part of it that is the picture.
struct PictureMemory {
    PixelFormat format = PixelFormat::kNv12;
    int stride = 0;
    int lines = 0;
    bool bottomUp = false;
    PictureRect visible;
    bool operator==(const PictureMemory&) const = default;
};

// Largest width and height that is taken; Direct3D 11 textures end there.
inline constexpr int kMaxPictureSide = 16384;

// False when the numbers can't describe a picture: a side outside 1..kMaxPictureSide, or a visible part that
// is empty or reaches outside. LayoutOf must only be asked about memory that passed.
[[nodiscard]] bool IsValid(const PictureMemory& memory);

// The textures of a picture. A YUY2 picture is described twice: plane 0 is read for luma alone (first of two
// bytes a pixel), plane 1 for chroma (second and fourth byte of each pair of pixels), so that each is
// filtered in its own resolution. A visible part that begins at an odd place begins one pixel earlier where
// the format has half the chroma.
[[nodiscard]] PictureLayout LayoutOf(const PictureMemory& memory);

// How many luma pixels one chroma texel spans, in each direction (1 or 2).
[[nodiscard]] PictureSize ChromaSpan(PixelFormat format);

// Bits of one pixel for a media type's header.
[[nodiscard]] int BitsPerPixel(PixelFormat format);

} // namespace brindlecast
