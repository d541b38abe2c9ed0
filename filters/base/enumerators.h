#pragma once

#include "filters/base/base_filter.h"

#include <vector>

namespace brindlecast {

// Walks a fixed list of media types. Any thread may hold it, one at a time may use it.
class MediaTypeEnumerator final : public IEnumMediaTypes, public RefCounted {
public:
    explicit MediaTypeEnumerator(std::vector<MediaType> theTypes, ULONG startPosition = 0) noexcept
        : types(std::move(theTypes)), position(startPosition) {}

    BRINDLECAST_COM_METHODS

    STDMETHODIMP Next(ULONG count, AM_MEDIA_TYPE** out, ULONG* fetched) override;
    STDMETHODIMP Skip(ULONG count) override;
    STDMETHODIMP Reset() override;
    STDMETHODIMP Clone(IEnumMediaTypes** copy) override;

private:
    void* FindInterface(REFIID iid) noexcept {
        return iid == IID_IUnknown || iid == IID_IEnumMediaTypes ? static_cast<IEnumMediaTypes*>(this)
                                                                 : nullptr;
    }

    const std::vector<MediaType> types;
    ULONG position;
};

// Walks a filter's pins as they were at its creation or last Reset; when pins have changed since, Next and
// Skip answer VFW_E_ENUM_OUT_OF_SYNC.
class PinEnumerator final : public IEnumPins, public RefCounted {
public:
    PinEnumerator(BaseFilter& theFilter, ULONG startPosition);

    BRINDLECAST_COM_METHODS

    STDMETHODIMP Next(ULONG count, IPin** out, ULONG* fetched) override;
    STDMETHODIMP Skip(ULONG count) override;
    STDMETHODIMP Reset() override;
    STDMETHODIMP Clone(IEnumPins** copy) override;

private:
    ~PinEnumerator() override;
    void* FindInterface(REFIID iid) noexcept {
        return iid == IID_IUnknown || iid == IID_IEnumPins ? static_cast<IEnumPins*>(this) : nullptr;
    }

    BaseFilter& filter; // referenced
    std::vector<BasePin*> pins;
    int version = 0;
    ULONG position;
};

} // namespace brindlecast
