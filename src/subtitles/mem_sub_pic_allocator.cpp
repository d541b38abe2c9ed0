#include "subtitles/mem_sub_pic_allocator.h"

#include "subtitles/mem_sub_pic.h"

namespace brindlecast {

STDMETHODIMP CMemSubPicAllocator::SetCurSize(Size size) {
    curSize = size;
    return S_OK;
}

STDMETHODIMP CMemSubPicAllocator::SetCurVidRect(Rect rect) {
    curVidRect = rect;
    return S_OK;
}

STDMETHODIMP CMemSubPicAllocator::GetCurSize(Size* size) {
    if (size == nullptr) {
        return E_POINTER;
    }
    *size = curSize;
    return S_OK;
}

STDMETHODIMP CMemSubPicAllocator::GetCurVidRect(Rect* rect) {
    if (rect == nullptr) {
        return E_POINTER;
    }
    *rect = curVidRect;
    return S_OK;
}

STDMETHODIMP CMemSubPicAllocator::AllocDynamic(ISubPic** picture) {
    if (picture == nullptr) {
        return E_POINTER;
    }
    *picture = MakePicture();
    return *picture != nullptr ? S_OK : E_OUTOFMEMORY;
}

STDMETHODIMP CMemSubPicAllocator::GetStatic(ISubPic** picture) {
    if (picture == nullptr) {
        return E_POINTER;
    }
    if (!StaticPicHasCurSize()) {
        staticPic.reset(); // before the new one, so that both are never there at once
        staticPic.reset(MakePicture());
    }
    *picture = AddReferenceTo(staticPic.get()).release();
    return *picture != nullptr ? S_OK : E_OUTOFMEMORY;
}

STDMETHODIMP CMemSubPicAllocator::FreeStatic() {
    staticPic.reset();
    return S_OK;
}

Size* STDMETHODCALLTYPE CMemSubPicAllocator::GetMaxSize(Size* result) {
    *result = maxSize;
    return result;
}

ISubPic* CMemSubPicAllocator::MakePicture() const {
    return CMemSubPic::Make(curSize, curVidRect, bpp, type);
}

bool CMemSubPicAllocator::StaticPicHasCurSize() const {
    Size size;
    return staticPic != nullptr && staticPic->GetSize(&size) == S_OK && size == curSize;
}

} // namespace brindlecast
