#include "filters/base/media_sample.h"

#include "filters/base/sample_allocator.h"

#include <algorithm>
#include <malloc.h>

namespace brindlecast {

void MediaSample::AlignedFree::operator()(BYTE* block) const noexcept {
    _aligned_free(block);
}

MediaSample::MediaSample() = default;

void* MediaSample::FindInterface(REFIID iid) noexcept {
    if (iid == IID_IUnknown || iid == IID_IMediaSample) {
        return static_cast<IMediaSample*>(this);
    }
    if (iid == kIidSampleSideData) {
        return static_cast<ISampleSideData*>(this);
    }
    return nullptr;
}

void MediaSample::OnLastRelease() noexcept {
    SampleAllocator* allocator = owner;
    owner = nullptr;
    typeChange.reset();
    sideData.clear();
    if (allocator == nullptr) {
        delete this;
        return;
    }
    allocator->TakeBack(this);
    allocator->Release();
}

bool MediaSample::Reserve(LONG size, LONG alignment) noexcept {
    if (size <= capacity) {
        return true;
    }
    // The bytes behind the end let FFmpeg's readers run over it.
    constexpr std::size_t kPadding = 64;
    const auto bytes = static_cast<std::size_t>(size) + kPadding;
    auto* block =
        static_cast<BYTE*>(_aligned_malloc(bytes, static_cast<std::size_t>(std::max<LONG>(alignment, 64))));
    if (block == nullptr) {
        return false;
    }
    buffer.reset(block);
    capacity = size;
    return true;
}

void MediaSample::ResetForUse(SampleAllocator& newOwner) noexcept {
    newOwner.AddRef();
    owner = &newOwner;
    ReviveReference();
    length = capacity;
    time.reset();
    mediaTime.reset();
    syncPoint = preroll = discontinuity = false;
}

STDMETHODIMP MediaSample::GetPointer(BYTE** out) {
    if (out == nullptr) {
        return E_POINTER;
    }
    *out = buffer.get();
    return S_OK;
}

STDMETHODIMP_(LONG) MediaSample::GetSize() {
    return capacity;
}

STDMETHODIMP MediaSample::GetTime(REFERENCE_TIME* start, REFERENCE_TIME* stop) {
    if (start == nullptr || stop == nullptr) {
        return E_POINTER;
    }
    if (!time) {
        return VFW_E_SAMPLE_TIME_NOT_SET;
    }
    *start = time->start;
    *stop = time->stop.value_or(time->start + 1);
    return time->stop ? S_OK : VFW_S_NO_STOP_TIME;
}

STDMETHODIMP MediaSample::SetTime(REFERENCE_TIME* start, REFERENCE_TIME* stop) {
    if (start == nullptr) {
        time.reset();
    } else {
        time = Span{*start, stop != nullptr ? std::optional<std::int64_t>(*stop) : std::nullopt};
    }
    return S_OK;
}

STDMETHODIMP MediaSample::IsSyncPoint() {
    return syncPoint ? S_OK : S_FALSE;
}

STDMETHODIMP MediaSample::SetSyncPoint(BOOL isSyncPoint) {
    syncPoint = isSyncPoint != FALSE;
    return S_OK;
}

STDMETHODIMP MediaSample::IsPreroll() {
    return preroll ? S_OK : S_FALSE;
}

STDMETHODIMP MediaSample::SetPreroll(BOOL isPreroll) {
    preroll = isPreroll != FALSE;
    return S_OK;
}

STDMETHODIMP_(LONG) MediaSample::GetActualDataLength() {
    return length;
}

STDMETHODIMP MediaSample::SetActualDataLength(LONG newLength) {
    if (newLength < 0 || newLength > capacity) {
        return VFW_E_BUFFER_OVERFLOW;
    }
    length = newLength;
    return S_OK;
}

STDMETHODIMP MediaSample::GetMediaType(AM_MEDIA_TYPE** type) {
    if (type == nullptr) {
        return E_POINTER;
    }
    *type = typeChange ? typeChange->NewTaskMemCopy() : nullptr;
    if (!typeChange) {
        return S_FALSE;
    }
    return *type != nullptr ? S_OK : E_OUTOFMEMORY;
}

STDMETHODIMP MediaSample::SetMediaType(AM_MEDIA_TYPE* type) {
    return Guarded([&] {
        if (type == nullptr) {
            typeChange.reset();
        } else {
            typeChange = MediaType(*type);
        }
        return S_OK;
    });
}

STDMETHODIMP MediaSample::IsDiscontinuity() {
    return discontinuity ? S_OK : S_FALSE;
}

STDMETHODIMP MediaSample::SetDiscontinuity(BOOL isDiscontinuity) {
    discontinuity = isDiscontinuity != FALSE;
    return S_OK;
}

STDMETHODIMP MediaSample::GetMediaTime(LONGLONG* start, LONGLONG* stop) {
    if (start == nullptr || stop == nullptr) {
        return E_POINTER;
    }
    if (!mediaTime) {
        return VFW_E_MEDIA_TIME_NOT_SET;
    }
    *start = mediaTime->start;
    *stop = mediaTime->stop.value_or(mediaTime->start);
    return S_OK;
}

STDMETHODIMP MediaSample::SetMediaTime(LONGLONG* start, LONGLONG* stop) {
    if (start == nullptr) {
        mediaTime.reset();
    } else if (stop == nullptr) {
        return E_POINTER;
    } else {
        mediaTime = Span{*start, *stop};
    }
    return S_OK;
}

STDMETHODIMP MediaSample::SetSideData(REFGUID kind, const BYTE* data, ULONG size) {
    return Guarded([&] {
        if (data == nullptr && size != 0) {
            return E_POINTER;
        }
        std::erase_if(sideData, [&](const SideData& block) { return block.kind == kind; });
        if (size != 0) {
            sideData.push_back({kind, std::vector<BYTE>(data, data + size)});
        }
        return S_OK;
    });
}

STDMETHODIMP MediaSample::GetSideData(REFGUID kind, const BYTE** data, ULONG* size) {
    if (data == nullptr || size == nullptr) {
        return E_POINTER;
    }
    *data = nullptr;
    *size = 0;
    for (const SideData& block : sideData) {
        if (block.kind != kind) {
            continue;
        }
        *data = block.bytes.data();
        *size = static_cast<ULONG>(block.bytes.size());
        return S_OK;
    }
    return E_FAIL;
}

STDMETHODIMP_(ULONG) MediaSample::GetSideDataCount() {
    return static_cast<ULONG>(sideData.size());
}

STDMETHODIMP MediaSample::GetSideDataKind(ULONG index, GUID* kind) {
    if (kind == nullptr) {
        return E_POINTER;
    }
    if (index >= sideData.size()) {
        return E_INVALIDARG;
    }
    *kind = sideData[index].kind;
    return S_OK;
}

} // namespace brindlecast
