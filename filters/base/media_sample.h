#pragma once

#include "filters/base/com_object.h"
#include "filters/base/media_type.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace brindlecast {

inline constexpr GUID kIidSampleSideData = {
    0x8f0b7f54, 0x2a6e, 0x4d0b, {0xa6, 0x1d, 0x42, 0x52, 0x4e, 0x44, 0x53, 0x44}};

// Extra data on a media sample: any number of blocks, each under a GUID that says what it is. Samples of
// SampleAllocator offer it through QueryInterface. Whoever holds the sample may call; no locking, like the
// rest of a sample.
struct ISampleSideData : public IUnknown {
    // Stores a copy, in place of an earlier block of that kind; a size of 0 removes it.
    virtual HRESULT STDMETHODCALLTYPE SetSideData(REFGUID kind, const BYTE* data, ULONG size) = 0;
    // Gives the block, which the sample keeps and which lives until the sample is released or changed.
    // E_FAIL without a block of that kind.
    virtual HRESULT STDMETHODCALLTYPE GetSideData(REFGUID kind, const BYTE** data, ULONG* size) = 0;
    // Number of blocks.
    virtual ULONG STDMETHODCALLTYPE GetSideDataCount() = 0;
    // Kind of a block by its number. E_INVALIDARG beyond the count.
    virtual HRESULT STDMETHODCALLTYPE GetSideDataKind(ULONG index, GUID* kind) = 0;
};

class SampleAllocator;

// A media sample of SampleAllocator. Its buffer grows on demand, within what its user asks of Reserve.
class MediaSample final : public IMediaSample, public ISampleSideData, public RefCounted {
public:
    MediaSample();

    BRINDLECAST_COM_METHODS

    STDMETHODIMP GetPointer(BYTE** out) override;
    STDMETHODIMP_(LONG) GetSize() override;
    STDMETHODIMP GetTime(REFERENCE_TIME* start, REFERENCE_TIME* stop) override;
    STDMETHODIMP SetTime(REFERENCE_TIME* start, REFERENCE_TIME* stop) override;
    STDMETHODIMP IsSyncPoint() override;
    STDMETHODIMP SetSyncPoint(BOOL isSyncPoint) override;
    STDMETHODIMP IsPreroll() override;
    STDMETHODIMP SetPreroll(BOOL isPreroll) override;
    STDMETHODIMP_(LONG) GetActualDataLength() override;
    STDMETHODIMP SetActualDataLength(LONG newLength) override;
    STDMETHODIMP GetMediaType(AM_MEDIA_TYPE** type) override;
    STDMETHODIMP SetMediaType(AM_MEDIA_TYPE* type) override;
    STDMETHODIMP IsDiscontinuity() override;
    STDMETHODIMP SetDiscontinuity(BOOL isDiscontinuity) override;
    STDMETHODIMP GetMediaTime(LONGLONG* start, LONGLONG* stop) override;
    STDMETHODIMP SetMediaTime(LONGLONG* start, LONGLONG* stop) override;

    STDMETHODIMP SetSideData(REFGUID kind, const BYTE* data, ULONG size) override;
    STDMETHODIMP GetSideData(REFGUID kind, const BYTE** data, ULONG* size) override;
    STDMETHODIMP_(ULONG) GetSideDataCount() override;
    STDMETHODIMP GetSideDataKind(ULONG index, GUID* kind) override;

private:
    friend class SampleAllocator;

    struct AlignedFree {
        void operator()(BYTE* block) const noexcept;
    };
    struct SideData {
        GUID kind;
        std::vector<BYTE> bytes;
    };
    struct Span {
        std::int64_t start;
        std::optional<std::int64_t> stop;
    };

    ~MediaSample() override = default;
    void* FindInterface(REFIID iid) noexcept;
    void OnLastRelease() noexcept override;
    // Makes the buffer at least that large; false when memory runs out. Old content is lost on growth.
    bool Reserve(LONG size, LONG alignment) noexcept;
    void ResetForUse(SampleAllocator& newOwner) noexcept;

    SampleAllocator* owner = nullptr; // referenced while the sample is out, else null
    std::unique_ptr<BYTE, AlignedFree> buffer;
    LONG capacity = 0;
    LONG length = 0;
    std::optional<Span> time;
    std::optional<Span> mediaTime;
    std::optional<MediaType> typeChange;
    std::vector<SideData> sideData;
    bool syncPoint = false;
    bool preroll = false;
    bool discontinuity = false;
};

} // namespace brindlecast
