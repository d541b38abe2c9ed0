#include "subtitles/mem_sub_pic.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <new>
#include <utility>

namespace brindlecast {

namespace {

constexpr std::int64_t kRowAlignment = 16; // bytes
constexpr std::int32_t kPixelBytes = 4;

bool IsEmpty(const Rect& rect) {
    return rect.left >= rect.right || rect.top >= rect.bottom;
}

bool HasFourBytesAPixel(const SubPicDesc& desc) {
    return desc.bpp >= 8 * kPixelBytes && desc.bpp < 8 * (kPixelBytes + 1);
}

// Along one axis: offsets into two stretches.
struct Offsets {
    std::int64_t first;
    std::int64_t last; // exclusive
};

// As far as the shorter stretch reaches and each lies within its picture. 64 bits wide, because a rectangle
// may span more than 32 bits hold.
Offsets CommonOffsets(std::int64_t from, std::int64_t fromEnd, std::int64_t fromLimit, std::int64_t onto,
                      std::int64_t ontoEnd, std::int64_t ontoLimit) {
    return {std::max({std::int64_t{0}, -from, -onto}),
            std::min({fromEnd - from, ontoEnd - onto, fromLimit - from, ontoLimit - onto})};
}

std::uint8_t* PixelAt(const SubPicDesc& desc, std::int64_t x, std::int64_t y) {
    return desc.bits + static_cast<std::ptrdiff_t>(y * desc.pitch + x * kPixelBytes);
}

void BlendStraight(const std::uint8_t* from, std::uint8_t* onto) {
    const int alpha = from[3];
    if (alpha == 0) {
        return;
    }
    if (alpha == 255) {
        std::copy_n(from, kPixelBytes, onto);
        return;
    }
    const int rest = 255 - alpha;
    for (int i = 0; i < 3; ++i) {
        onto[i] = static_cast<std::uint8_t>((rest * onto[i] + alpha * from[i]) / 255);
    }
    onto[3] = static_cast<std::uint8_t>(rest * onto[3] / 255 + alpha);
}

} // namespace

CMemSubPic* CMemSubPic::Make(Size size, Rect videoRect, std::int32_t bpp, std::uint32_t type) {
    const std::int64_t rowBytes = std::int64_t{bpp} * size.width / 8;
    const std::int64_t pitch = (rowBytes + kRowAlignment - 1) / kRowAlignment * kRowAlignment;
    if (std::min({size.width, size.height, bpp}) < 0 || pitch > std::numeric_limits<std::int32_t>::max()) {
        return nullptr;
    }
    // The system's fresh pages are zero already, which calloc knows and a vector would not.
    const auto bytes = static_cast<std::size_t>(pitch) * static_cast<std::size_t>(size.height);
    Pixels pixels(static_cast<std::uint8_t*>(std::calloc(std::max<std::size_t>(bytes, 1), 1)));
    if (pixels == nullptr) {
        return nullptr;
    }
    const SubPicDesc memory{type,         size.width, size.height, bpp, static_cast<std::int32_t>(pitch),
                            pixels.get(), videoRect};
    return new (std::nothrow) CMemSubPic(memory, std::move(pixels));
}

CMemSubPic::CMemSubPic(const SubPicDesc& memory, Pixels owned)
    : CSubPicImpl({memory.width, memory.height}, memory.videoRect), desc(memory), pixels(std::move(owned)) {}

STDMETHODIMP CMemSubPic::Lock(SubPicDesc& result) {
    if (locked) {
        return E_FAIL;
    }
    locked = true;
    result = desc;
    return S_OK;
}

STDMETHODIMP CMemSubPic::Unlock(const Rect* drawn) {
    if (!locked) {
        return E_FAIL;
    }
    locked = false;
    if (drawn != nullptr) {
        const Rect clipped = {std::max(drawn->left, 0), std::max(drawn->top, 0),
                              std::min(drawn->right, desc.width), std::min(drawn->bottom, desc.height)};
        if (!IsEmpty(clipped)) {
            static_cast<void>(SetDirtyRect(&clipped));
        }
    }
    return S_OK;
}

STDMETHODIMP CMemSubPic::AlphaBlt(const Rect* src, const Rect* dst, SubPicDesc* target) {
    if (src == nullptr || dst == nullptr || target == nullptr || target->bits == nullptr) {
        return E_POINTER;
    }
    if (IsEmpty(*src) || IsEmpty(*dst)) {
        return S_FALSE;
    }
    if (!HasFourBytesAPixel(desc) || !HasFourBytesAPixel(*target)) {
        return E_NOTIMPL;
    }
    const Offsets columns =
        CommonOffsets(src->left, src->right, desc.width, dst->left, dst->right, target->width);
    const Offsets rows =
        CommonOffsets(src->top, src->bottom, desc.height, dst->top, dst->bottom, target->height);
    for (std::int64_t y = rows.first; y < rows.last; ++y) {
        for (std::int64_t x = columns.first; x < columns.last; ++x) {
            BlendStraight(PixelAt(desc, src->left + x, src->top + y),
                          PixelAt(*target, dst->left + x, dst->top + y));
        }
    }
    return S_OK;
}

} // namespace brindlecast
