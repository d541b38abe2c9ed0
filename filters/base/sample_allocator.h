#pragma once

#include "filters/base/media_sample.h"

#include <condition_variable>
#include <mutex>

namespace brindlecast {

inline constexpr GUID kIidGrowingAllocator = {
    0x3b7e6f0c, 0x51d4, 0x4c8e, {0x9f, 0x20, 0x42, 0x52, 0x4e, 0x44, 0x47, 0x41}};

// An allocator whose buffers may become larger while it is committed and samples are out.
struct IGrowingAllocator : public IUnknown {
    // Like IMemAllocator::GetBuffer without times, for a sample of at least `size` bytes.
    virtual HRESULT STDMETHODCALLTYPE GetBufferOfSize(LONG size, IMediaSample** sample, DWORD flags) = 0;
    // Buffers handed out from now on hold at least that much.
    virtual HRESULT STDMETHODCALLTYPE GrowBuffers(LONG size) = 0;
};

// A pool of MediaSample. GetBuffer blocks until a sample is free; Decommit ends every wait with
// VFW_E_NOT_COMMITTED, and the memory goes when the last sample has come back. Any thread.
class SampleAllocator final : public IMemAllocator, public IGrowingAllocator, public RefCounted {
public:
    SampleAllocator() = default;

    BRINDLECAST_COM_METHODS

    STDMETHODIMP SetProperties(ALLOCATOR_PROPERTIES* request, ALLOCATOR_PROPERTIES* actual) override;
    STDMETHODIMP GetProperties(ALLOCATOR_PROPERTIES* out) override;
    STDMETHODIMP Commit() override;
    STDMETHODIMP Decommit() override;
    STDMETHODIMP GetBuffer(IMediaSample** sample, REFERENCE_TIME* start, REFERENCE_TIME* stop,
                           DWORD flags) override;
    STDMETHODIMP ReleaseBuffer(IMediaSample* sample) override;

    STDMETHODIMP GetBufferOfSize(LONG size, IMediaSample** sample, DWORD flags) override;
    STDMETHODIMP GrowBuffers(LONG size) override;

    // Called by a sample whose last reference went.
    void TakeBack(MediaSample* sample) noexcept;

private:
    ~SampleAllocator() override;
    void* FindInterface(REFIID iid) noexcept;
    void DestroyFreeSamples() noexcept;

    std::mutex mutex;
    std::condition_variable freed;
    ALLOCATOR_PROPERTIES properties{0, 0, 1, 0};
    std::vector<MediaSample*> free; // capacity for all samples is reserved by Commit: TakeBack can't fail
    LONG created = 0;
    bool committed = false;
};

} // namespace brindlecast
