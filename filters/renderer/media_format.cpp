#include "filters/renderer/media_format.h"

#include <algorithm>
#include <cstdlib>

namespace brindlecast {

namespace {

constexpr GUID FourCc(std::uint32_t code) {
    return {code, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
}

constexpr GUID kNv12 = FourCc(0x3231564E);
constexpr GUID kP010 = FourCc(0x30313050);
constexpr GUID kYv12 = FourCc(0x32315659);
constexpr GUID kYuy2 = FourCc(0x32595559);
constexpr GUID kAyuv = FourCc(0x56555941);

// What both kinds of header have.
struct Header {
    const BITMAPINFOHEADER* bitmap;
    RECT source;
    REFERENCE_TIME frameDuration;
};

std::optional<PictureMemory> MemoryOf(PixelFormat format, const Header& header) {
    const BITMAPINFOHEADER& bitmap = *header.bitmap;
    if (bitmap.biHeight == INT32_MIN || bitmap.biWidth > kMaxPictureSide) {
        return std::nullopt;
    }
    PictureMemory memory;
    memory.format = format;
    memory.stride = bitmap.biWidth;
    memory.lines = std::abs(bitmap.biHeight);
    // Only RGB is stored bottom-up when the height is positive; the sign of YUV heights means nothing.
    memory.bottomUp = format == PixelFormat::kRgb32 && bitmap.biHeight > 0;
    memory.visible = {header.source.left, header.source.top, header.source.right, header.source.bottom};
    if (memory.visible.Empty()) {
        memory.visible = {0, 0, memory.stride, memory.lines};
    }
    return IsValid(memory) ? std::optional(memory) : std::nullopt;
}

const AcceptedSubtype* FindSubtype(const GUID& subtype) {
    const auto& accepted = AcceptedSubtypes();
    const auto found = std::find_if(accepted.begin(), accepted.end(),
                                    [&](const AcceptedSubtype& entry) { return *entry.subtype == subtype; });
    return found == accepted.end() ? nullptr : &*found;
}

} // namespace

const std::array<AcceptedSubtype, 7>& AcceptedSubtypes() {
    static const std::array<AcceptedSubtype, 7> kAccepted{{{&kNv12, PixelFormat::kNv12},
                                                           {&kP010, PixelFormat::kP010},
                                                           {&kYv12, PixelFormat::kYv12},
                                                           {&kYuy2, PixelFormat::kYuy2},
                                                           {&kAyuv, PixelFormat::kAyuv},
                                                           {&MEDIASUBTYPE_RGB32, PixelFormat::kRgb32},
                                                           {&MEDIASUBTYPE_ARGB32, PixelFormat::kRgb32}}};
    return kAccepted;
}

std::optional<PictureFormat> PictureFormatOf(const AM_MEDIA_TYPE& type) {
    const AcceptedSubtype* const accepted = FindSubtype(type.subtype);
    if (type.majortype != MEDIATYPE_Video || accepted == nullptr) {
        return std::nullopt;
    }
    PictureFormat format;
    Header header{};
    std::uint32_t controlFlags = 0;
    if (const auto* second = MediaType::FormatOf<VIDEOINFOHEADER2>(type, FORMAT_VideoInfo2)) {
        header = {&second->bmiHeader, second->rcSource, second->AvgTimePerFrame};
        format.aspectX = static_cast<int>(std::min<DWORD>(second->dwPictAspectRatioX, INT32_MAX));
        format.aspectY = static_cast<int>(std::min<DWORD>(second->dwPictAspectRatioY, INT32_MAX));
        controlFlags = second->dwControlFlags;
    } else if (const auto* first = MediaType::FormatOf<VIDEOINFOHEADER>(type, FORMAT_VideoInfo)) {
        header = {&first->bmiHeader, first->rcSource, first->AvgTimePerFrame};
    } else {
        return std::nullopt;
    }
    const std::optional<PictureMemory> memory = MemoryOf(accepted->format, header);
    if (!memory) {
        return std::nullopt;
    }
    format.memory = *memory;
    format.frameDuration = std::max<REFERENCE_TIME>(header.frameDuration, 0);
    format.color = WithDefaults(ColorFromControlFlags(controlFlags), format.Size());
    return format;
}

} // namespace brindlecast
