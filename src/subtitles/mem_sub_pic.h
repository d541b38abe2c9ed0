#pragma once

#include "subtitles/sub_pic_impl.h"

#include <cstdlib>
#include <memory>

namespace brindlecast {

// A picture in ordinary memory.
class CMemSubPic final : public CSubPicImpl {
public:
    // A picture of zero bytes with one reference for the caller. Null when the memory can't be had, when a
    // row has more bytes than fit in the description, and for a negative size.
    [[nodiscard]] static CMemSubPic* Make(Size size, Rect videoRect, std::int32_t bpp, std::uint32_t type);

    STDMETHODIMP Lock(SubPicDesc& result) override;
    STDMETHODIMP Unlock(const Rect* drawn) override;
    // What lies outside of either picture is left out.
    STDMETHODIMP AlphaBlt(const Rect* src, const Rect* dst, SubPicDesc* target) override;

private:
    struct FreeMemory {
        void operator()(void* memory) const { std::free(memory); }
    };
    using Pixels = std::unique_ptr<std::uint8_t, FreeMemory>;

    CMemSubPic(const SubPicDesc& memory, Pixels owned);
    ~CMemSubPic() override = default;

    SubPicDesc desc;
    Pixels pixels;
    bool locked = false;
};

} // namespace brindlecast
