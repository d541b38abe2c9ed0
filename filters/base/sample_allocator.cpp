#include "filters/base/sample_allocator.h"

#include <algorithm>

namespace brindlecast {

SampleAllocator::~SampleAllocator() {
    DestroyFreeSamples();
}

void* SampleAllocator::FindInterface(REFIID iid) noexcept {
    if (iid == IID_IUnknown || iid == IID_IMemAllocator) {
        return static_cast<IMemAllocator*>(this);
    }
    if (iid == kIidGrowingAllocator) {
        return static_cast<IGrowingAllocator*>(this);
    }
    return nullptr;
}

STDMETHODIMP SampleAllocator::SetProperties(ALLOCATOR_PROPERTIES* request, ALLOCATOR_PROPERTIES* actual) {
    if (request == nullptr || actual == nullptr) {
        return E_POINTER;
    }
    const std::lock_guard lock(mutex);
    if (committed) {
        return VFW_E_ALREADY_COMMITTED;
    }
    if (created != 0) {
        return VFW_E_BUFFERS_OUTSTANDING;
    }
    if (request->cBuffers < 0 || request->cbBuffer < 0 || request->cbPrefix != 0) {
        return E_INVALIDARG;
    }
    const LONG align = std::max<LONG>(request->cbAlign, 1);
    if ((align & (align - 1)) != 0) {
        return VFW_E_BADALIGN;
    }
    properties = {request->cBuffers, request->cbBuffer, align, 0};
    *actual = properties;
    return S_OK;
}

STDMETHODIMP SampleAllocator::GetProperties(ALLOCATOR_PROPERTIES* out) {
    if (out == nullptr) {
        return E_POINTER;
    }
    const std::lock_guard lock(mutex);
    *out = properties;
    return S_OK;
}

STDMETHODIMP SampleAllocator::Commit() {
    return Guarded([&]() -> HRESULT {
        const std::lock_guard lock(mutex);
        if (properties.cBuffers <= 0) {
            return VFW_E_SIZENOTSET;
        }
        free.reserve(static_cast<std::size_t>(std::max(properties.cBuffers, created)));
        committed = true;
        return S_OK;
    });
}

STDMETHODIMP SampleAllocator::Decommit() {
    const std::lock_guard lock(mutex);
    committed = false;
    DestroyFreeSamples();
    freed.notify_all();
    return S_OK;
}

STDMETHODIMP SampleAllocator::GetBuffer(IMediaSample** sample, REFERENCE_TIME*, REFERENCE_TIME*,
                                        DWORD flags) {
    return GetBufferOfSize(0, sample, flags);
}

STDMETHODIMP SampleAllocator::GetBufferOfSize(LONG size, IMediaSample** sample, DWORD flags) {
    return Guarded([&]() -> HRESULT {
        if (sample == nullptr) {
            return E_POINTER;
        }
        *sample = nullptr;
        std::unique_lock lock(mutex);
        for (;;) {
            if (!committed) {
                return VFW_E_NOT_COMMITTED;
            }
            if (!free.empty() || created < properties.cBuffers) {
                break;
            }
            if ((flags & AM_GBF_NOWAIT) != 0) {
                return VFW_E_TIMEOUT;
            }
            freed.wait(lock);
        }
        if (free.empty()) {
            free.push_back(new MediaSample());
            ++created;
        }
        MediaSample* taken = free.back();
        if (!taken->Reserve(std::max(size, properties.cbBuffer), properties.cbAlign)) {
            return E_OUTOFMEMORY;
        }
        free.pop_back();
        taken->ResetForUse(*this);
        *sample = taken;
        return S_OK;
    });
}

STDMETHODIMP SampleAllocator::GrowBuffers(LONG size) {
    const std::lock_guard lock(mutex);
    properties.cbBuffer = std::max(properties.cbBuffer, size);
    return S_OK;
}

STDMETHODIMP SampleAllocator::ReleaseBuffer(IMediaSample* sample) {
    if (sample == nullptr) {
        return E_POINTER;
    }
    sample->Release();
    return S_OK;
}

void SampleAllocator::TakeBack(MediaSample* sample) noexcept {
    const std::lock_guard lock(mutex);
    free.push_back(sample);
    if (!committed) {
        DestroyFreeSamples();
    }
    freed.notify_one();
}

void SampleAllocator::DestroyFreeSamples() noexcept {
    for (MediaSample* sample : free) {
        delete sample;
        --created;
    }
    free.clear();
}

} // namespace brindlecast
