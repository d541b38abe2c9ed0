#include "subtitles/sub_pic_impl.h"

namespace brindlecast {

STDMETHODIMP CSubPicImpl::GetDirtyRect(Rect* rect) {
    if (rect == nullptr) {
        return E_POINTER;
    }
    *rect = dirtyRect;
    return S_OK;
}

STDMETHODIMP CSubPicImpl::SetDirtyRect(const Rect* rect) {
    if (rect == nullptr) {
        return E_POINTER;
    }
    dirtyRect = *rect;
    return S_OK;
}

STDMETHODIMP CSubPicImpl::GetSize(Size* result) {
    if (result == nullptr) {
        return E_POINTER;
    }
    *result = size;
    return S_OK;
}

STDMETHODIMP CSubPicImpl::GetMaxSize(Size* result) {
    if (result == nullptr) {
        return E_POINTER;
    }
    *result = maxSize;
    return S_OK;
}

} // namespace brindlecast
