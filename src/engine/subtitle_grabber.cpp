#include "engine/subtitle_grabber.h"

#include <utility>

namespace brindlecast {

STDMETHODIMP CSubtitleGrabberCallback::QueryInterface(REFIID iid, void** out) {
    if (out == nullptr) {
        return E_POINTER;
    }
    if (iid != __uuidof(IUnknown) && iid != __uuidof(ISampleGrabberCB)) {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    *out = static_cast<ISampleGrabberCB*>(this);
    AddRef();
    return S_OK;
}

STDMETHODIMP_(ULONG) CSubtitleGrabberCallback::AddRef() {
    return ++refCount;
}

STDMETHODIMP_(ULONG) CSubtitleGrabberCallback::Release() {
    const ULONG left = --refCount;
    if (left == 0) {
        delete this;
    }
    return left;
}

STDMETHODIMP CSubtitleGrabberCallback::SampleCB(double /*time*/, IMediaSample* sample) {
    if (sample == nullptr) {
        return E_POINTER;
    }
    try {
        const std::lock_guard guard(lock);
        GrabbedSample grabbed;
        sample->GetTime(&grabbed.start, &grabbed.stop);
        const long length = sample->GetActualDataLength();
        BYTE* bytes = nullptr;
        if (SUCCEEDED(sample->GetPointer(&bytes)) && bytes != nullptr && length > 0) {
            grabbed.data.assign(bytes, bytes + length);
            samples.push_back(std::move(grabbed));
        }
    } catch (...) {
        // No memory. The film goes on.
    }
    return S_OK;
}

STDMETHODIMP CSubtitleGrabberCallback::BufferCB(double /*time*/, BYTE* /*buffer*/, LONG /*length*/) {
    return S_OK;
}

void CSubtitleGrabberCallback::Clear() {
    const std::lock_guard guard(lock);
    samples.clear();
    text.clear();
    reservedFirst = 0;
    reservedSecond = 0;
    isAss = false;
}

} // namespace brindlecast
