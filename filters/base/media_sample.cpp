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
    if (iid == IID_IUnknown || iid == IID_IMediaSample)
        return static_cast<IMediaSample*>(this);
    if (iid == kIidSampleSideData)
        return static_cast<ISampleSideData*>(this);
    return nullptr;
}

void MediaSample::OnLastRelease() noexcept {
    SampleAllocator* owner = owner_;
    owner_ = nullptr;
    type_.reset();
    sideData_.clear();
    if (owner == nullptr) {
        delete this;
        return;
    }
    owner->TakeBack(this);
    owner->Release();
}

bool MediaSample::Reserve(LONG size, LONG alignment) noexcept {
    if (size <= capacity_)
        return true;
    // The bytes behind the end let FFmpeg's readers run over it.
    constexpr std::size_t kPadding = 64;
    const auto bytes = static_cast<std::size_t>(size) + kPadding;
    auto* block =
        static_cast<BYTE*>(_aligned_malloc(bytes, static_cast<std::size_t>(std::max<LONG>(alignment, 64))));
    if (block == nullptr)
        return false;
    buffer_.reset(block);
    capacity_ = size;
    return true;
}

void MediaSample::ResetForUse(SampleAllocator& owner) noexcept {
    owner.AddRef();
    owner_ = &owner;
    ReviveReference();
    length_ = capacity_;
    time_.reset();
    mediaTime_.reset();
    syncPoint_ = preroll_ = discontinuity_ = false;
}

STDMETHODIMP MediaSample::GetPointer(BYTE** buffer) {
    if (buffer == nullptr)
        return E_POINTER;
    *buffer = buffer_.get();
    return S_OK;
}

STDMETHODIMP_(LONG) MediaSample::GetSize() {
    return capacity_;
}

STDMETHODIMP MediaSample::GetTime(REFERENCE_TIME* start, REFERENCE_TIME* stop) {
    if (start == nullptr || stop == nullptr)
        return E_POINTER;
    if (!time_)
        return VFW_E_SAMPLE_TIME_NOT_SET;
    *start = time_->start;
    *stop = time_->stop.value_or(time_->start + 1);
    return time_->stop ? S_OK : VFW_S_NO_STOP_TIME;
}

STDMETHODIMP MediaSample::SetTime(REFERENCE_TIME* start, REFERENCE_TIME* stop) {
    if (start == nullptr)
        time_.reset();
    else
        time_ = Span{*start, stop != nullptr ? std::optional<std::int64_t>(*stop) : std::nullopt};
    return S_OK;
}

STDMETHODIMP MediaSample::IsSyncPoint() {
    return syncPoint_ ? S_OK : S_FALSE;
}

STDMETHODIMP MediaSample::SetSyncPoint(BOOL isSyncPoint) {
    syncPoint_ = isSyncPoint != FALSE;
    return S_OK;
}

STDMETHODIMP MediaSample::IsPreroll() {
    return preroll_ ? S_OK : S_FALSE;
}

STDMETHODIMP MediaSample::SetPreroll(BOOL isPreroll) {
    preroll_ = isPreroll != FALSE;
    return S_OK;
}

STDMETHODIMP_(LONG) MediaSample::GetActualDataLength() {
    return length_;
}

STDMETHODIMP MediaSample::SetActualDataLength(LONG length) {
    if (length < 0 || length > capacity_)
        return VFW_E_BUFFER_OVERFLOW;
    length_ = length;
    return S_OK;
}

STDMETHODIMP MediaSample::GetMediaType(AM_MEDIA_TYPE** type) {
    if (type == nullptr)
        return E_POINTER;
    *type = type_ ? type_->NewTaskMemCopy() : nullptr;
    if (!type_)
        return S_FALSE;
    return *type != nullptr ? S_OK : E_OUTOFMEMORY;
}

STDMETHODIMP MediaSample::SetMediaType(AM_MEDIA_TYPE* type) {
    return Guarded([&] {
        if (type == nullptr)
            type_.reset();
        else
            type_ = MediaType(*type);
        return S_OK;
    });
}

STDMETHODIMP MediaSample::IsDiscontinuity() {
    return discontinuity_ ? S_OK : S_FALSE;
}

STDMETHODIMP MediaSample::SetDiscontinuity(BOOL discontinuity) {
    discontinuity_ = discontinuity != FALSE;
    return S_OK;
}

STDMETHODIMP MediaSample::GetMediaTime(LONGLONG* start, LONGLONG* stop) {
    if (start == nullptr || stop == nullptr)
        return E_POINTER;
    if (!mediaTime_)
        return VFW_E_MEDIA_TIME_NOT_SET;
    *start = mediaTime_->start;
    *stop = mediaTime_->stop.value_or(mediaTime_->start);
    return S_OK;
}

STDMETHODIMP MediaSample::SetMediaTime(LONGLONG* start, LONGLONG* stop) {
    if (start == nullptr)
        mediaTime_.reset();
    else if (stop == nullptr)
        return E_POINTER;
    else
        mediaTime_ = Span{*start, *stop};
    return S_OK;
}

STDMETHODIMP MediaSample::SetSideData(REFGUID kind, const BYTE* data, ULONG size) {
    return Guarded([&] {
        if (data == nullptr && size != 0)
            return E_POINTER;
        std::erase_if(sideData_, [&](const SideData& block) { return block.kind == kind; });
        if (size != 0)
            sideData_.push_back({kind, std::vector<BYTE>(data, data + size)});
        return S_OK;
    });
}

STDMETHODIMP MediaSample::GetSideData(REFGUID kind, const BYTE** data, ULONG* size) {
    if (data == nullptr || size == nullptr)
        return E_POINTER;
    *data = nullptr;
    *size = 0;
    for (const SideData& block : sideData_) {
        if (block.kind != kind)
            continue;
        *data = block.bytes.data();
        *size = static_cast<ULONG>(block.bytes.size());
        return S_OK;
    }
    return E_FAIL;
}

STDMETHODIMP_(ULONG) MediaSample::GetSideDataCount() {
    return static_cast<ULONG>(sideData_.size());
}

STDMETHODIMP MediaSample::GetSideDataKind(ULONG index, GUID* kind) {
    if (kind == nullptr)
        return E_POINTER;
    if (index >= sideData_.size())
        return E_INVALIDARG;
    *kind = sideData_[index].kind;
    return S_OK;
}

} // namespace brindlecast
