#include "filters/core/picture_format.h"

namespace brindlecast {

namespace {

int Half(int value) {
    return (value + 1) / 2;
}

// Bytes of one row of the first (or only) plane.
std::ptrdiff_t FirstPitch(const PictureMemory& memory) {
    switch (memory.format) {
    case PixelFormat::kNv12:
    case PixelFormat::kYv12: return memory.stride;
    case PixelFormat::kP010: return std::ptrdiff_t{memory.stride} * 2;
    case PixelFormat::kYuy2: return std::ptrdiff_t{Half(memory.stride)} * 4;
    case PixelFormat::kAyuv:
    case PixelFormat::kRgb32: return std::ptrdiff_t{memory.stride} * 4;
    }
    return 0;
}

PicturePlane MakePlane(TexelType texel, std::size_t base, std::ptrdiff_t pitch, const PictureRect& part) {
    PicturePlane plane;
    plane.texel = texel;
    plane.pitch = pitch;
    plane.width = part.Width();
    plane.height = part.Height();
    plane.offset = base + static_cast<std::size_t>(part.top * pitch) +
                   static_cast<std::size_t>(part.left) * static_cast<std::size_t>(TexelBytes(texel));
    return plane;
}

PictureLayout SemiPlanar(const PictureMemory& memory, TexelType luma, TexelType chroma,
                         const PictureRect& part, const PictureRect& half) {
    const std::ptrdiff_t pitch = FirstPitch(memory);
    const std::size_t lumaBytes = static_cast<std::size_t>(pitch) * static_cast<std::size_t>(memory.lines);
    // An odd number of pixels needs one byte pair more than the luma row has bytes.
    const std::ptrdiff_t chromaPitch = std::ptrdiff_t{Half(memory.stride)} * TexelBytes(chroma);
    PictureLayout layout;
    layout.planeCount = 2;
    layout.planes[0] = MakePlane(luma, 0, pitch, part);
    layout.planes[1] = MakePlane(chroma, lumaBytes, chromaPitch, half);
    layout.bytes =
        lumaBytes + static_cast<std::size_t>(chromaPitch) * static_cast<std::size_t>(Half(memory.lines));
    return layout;
}

PictureLayout Planar(const PictureMemory& memory, const PictureRect& part, const PictureRect& half) {
    const std::ptrdiff_t chromaPitch = Half(memory.stride);
    const std::size_t lumaBytes =
        static_cast<std::size_t>(memory.stride) * static_cast<std::size_t>(memory.lines);
    const std::size_t chromaBytes =
        static_cast<std::size_t>(chromaPitch) * static_cast<std::size_t>(Half(memory.lines));
    PictureLayout layout;
    layout.planeCount = 3;
    layout.planes[0] = MakePlane(TexelType::kOne8, 0, memory.stride, part);
    // V stands before U in this format; the planes here are Y, U, V.
    layout.planes[1] = MakePlane(TexelType::kOne8, lumaBytes + chromaBytes, chromaPitch, half);
    layout.planes[2] = MakePlane(TexelType::kOne8, lumaBytes, chromaPitch, half);
    layout.bytes = lumaBytes + 2 * chromaBytes;
    return layout;
}

PictureLayout Packed(const PictureMemory& memory, TexelType texel, const PictureRect& part) {
    std::ptrdiff_t pitch = FirstPitch(memory);
    PictureLayout layout;
    layout.bytes = static_cast<std::size_t>(pitch) * static_cast<std::size_t>(memory.lines);
    std::size_t base = 0;
    if (memory.bottomUp) {
        base = layout.bytes - static_cast<std::size_t>(pitch);
        pitch = -pitch;
    }
    layout.planeCount = 1;
    layout.planes[0] = MakePlane(texel, base, pitch, part);
    return layout;
}

} // namespace

bool IsValid(const PictureMemory& memory) {
    const auto sane = [](int side) {
        return side >= 1 && side <= kMaxPictureSide;
    };
    return sane(memory.stride) && sane(memory.lines) && !memory.visible.Empty() && memory.visible.left >= 0 &&
           memory.visible.top >= 0 && memory.visible.right <= memory.stride &&
           memory.visible.bottom <= memory.lines;
}

PictureSize ChromaSpan(PixelFormat format) {
    switch (format) {
    case PixelFormat::kNv12:
    case PixelFormat::kP010:
    case PixelFormat::kYv12: return {2, 2};
    case PixelFormat::kYuy2: return {2, 1};
    case PixelFormat::kAyuv:
    case PixelFormat::kRgb32: break;
    }
    return {1, 1};
}

int BitsPerPixel(PixelFormat format) {
    switch (format) {
    case PixelFormat::kNv12:
    case PixelFormat::kYv12: return 12;
    case PixelFormat::kP010: return 24;
    case PixelFormat::kYuy2: return 16;
    case PixelFormat::kAyuv:
    case PixelFormat::kRgb32: break;
    }
    return 32;
}

PictureLayout LayoutOf(const PictureMemory& memory) {
    const PictureSize span = ChromaSpan(memory.format);
    PictureRect part = memory.visible;
    part.left -= part.left % span.width;
    part.top -= part.top % span.height;
    const PictureRect half{part.left / 2, part.top / 2, Half(part.right), Half(part.bottom)};
    switch (memory.format) {
    case PixelFormat::kNv12: return SemiPlanar(memory, TexelType::kOne8, TexelType::kTwo8, part, half);
    case PixelFormat::kP010: return SemiPlanar(memory, TexelType::kOne16, TexelType::kTwo16, part, half);
    case PixelFormat::kYv12: return Planar(memory, part, half);
    case PixelFormat::kYuy2: {
        PictureLayout layout = Packed(memory, TexelType::kTwo8, part);
        layout.planes[1] = MakePlane(TexelType::kFour8, 0, 0, {half.left, part.top, half.right, part.bottom});
        layout.planes[1].pitch = layout.planes[0].pitch;
        layout.planes[1].offset = layout.planes[0].offset;
        layout.planeCount = 2;
        return layout;
    }
    case PixelFormat::kAyuv: return Packed(memory, TexelType::kFour8, part);
    case PixelFormat::kRgb32: return Packed(memory, TexelType::kFour8Bgr, part);
    }
    return {};
}

} // namespace brindlecast
