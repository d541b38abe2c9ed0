#pragma once

#include "base/com_object.h"
#include "subtitles/sub_pic.h"

namespace brindlecast {

// Makes pictures in ordinary memory, 32 bits a pixel. Of no size until it is set. See ISubPicAllocator for
// threads.
class CMemSubPicAllocator final : public ComObject<ISubPicAllocator> {
public:
    CMemSubPicAllocator() = default;

    // Told to whoever asks; limits nothing.
    void SetMaxSize(Size size) { maxSize = size; }

    STDMETHODIMP SetCurSize(Size size) override;
    STDMETHODIMP SetCurVidRect(Rect rect) override;
    STDMETHODIMP GetCurSize(Size* size) override;
    STDMETHODIMP GetCurVidRect(Rect* rect) override;
    bool STDMETHODCALLTYPE IsDynamicWriteOnly() override { return false; }
    STDMETHODIMP AllocDynamic(ISubPic** picture) override;
    STDMETHODIMP GetStatic(ISubPic** picture) override;
    STDMETHODIMP FreeStatic() override;
    STDMETHODIMP Reserved1() override { return S_OK; }
    STDMETHODIMP Reserved2() override { return E_NOTIMPL; }
    Size* STDMETHODCALLTYPE GetMaxSize(Size* result) override;

private:
    ~CMemSubPicAllocator() override = default;
    [[nodiscard]] ISubPic* MakePicture() const;
    [[nodiscard]] bool StaticPicHasCurSize() const;

    Size curSize; // pixels
    Rect curVidRect;
    Size maxSize{4096, 4096};
    std::int32_t bpp = 32;
    std::uint32_t type = 0;
    ComReference<ISubPic> staticPic;
};

} // namespace brindlecast
