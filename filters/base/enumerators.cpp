#include "filters/base/enumerators.h"

#include "filters/base/base_pin.h"

#include <algorithm>

namespace brindlecast {

STDMETHODIMP MediaTypeEnumerator::Next(ULONG count, AM_MEDIA_TYPE** types, ULONG* fetched) {
    if (types == nullptr || (fetched == nullptr && count != 1))
        return E_POINTER;
    ULONG done = 0;
    while (done < count && position_ < types_.size()) {
        types[done] = types_[position_].NewTaskMemCopy();
        if (types[done] == nullptr) {
            while (done > 0)
                MediaType::FreeTaskMem(types[--done]);
            if (fetched != nullptr)
                *fetched = 0;
            return E_OUTOFMEMORY;
        }
        ++done;
        ++position_;
    }
    if (fetched != nullptr)
        *fetched = done;
    return done == count ? S_OK : S_FALSE;
}

STDMETHODIMP MediaTypeEnumerator::Skip(ULONG count) {
    const auto left = static_cast<ULONG>(types_.size()) - position_;
    position_ += std::min(count, left);
    return count <= left ? S_OK : S_FALSE;
}

STDMETHODIMP MediaTypeEnumerator::Reset() {
    position_ = 0;
    return S_OK;
}

STDMETHODIMP MediaTypeEnumerator::Clone(IEnumMediaTypes** copy) {
    return Guarded([&] {
        if (copy == nullptr)
            return E_POINTER;
        *copy = nullptr;
        *copy = new MediaTypeEnumerator(types_, position_);
        return S_OK;
    });
}

PinEnumerator::PinEnumerator(BaseFilter& filter, ULONG position)
    : filter_(filter), version_(0), position_(position) {
    pins_ = filter_.PinSnapshot(version_);
    filter_.AddRef();
}

PinEnumerator::~PinEnumerator() {
    filter_.Release();
}

STDMETHODIMP PinEnumerator::Next(ULONG count, IPin** pins, ULONG* fetched) {
    if (pins == nullptr || (fetched == nullptr && count != 1))
        return E_POINTER;
    if (fetched != nullptr)
        *fetched = 0;
    if (filter_.PinVersion() != version_)
        return VFW_E_ENUM_OUT_OF_SYNC;
    ULONG done = 0;
    while (done < count && position_ < pins_.size()) {
        pins[done] = pins_[position_++];
        pins[done++]->AddRef();
    }
    if (fetched != nullptr)
        *fetched = done;
    return done == count ? S_OK : S_FALSE;
}

STDMETHODIMP PinEnumerator::Skip(ULONG count) {
    if (filter_.PinVersion() != version_)
        return VFW_E_ENUM_OUT_OF_SYNC;
    const auto left = static_cast<ULONG>(pins_.size()) - position_;
    position_ += std::min(count, left);
    return count <= left ? S_OK : S_FALSE;
}

STDMETHODIMP PinEnumerator::Reset() {
    return Guarded([&] {
        pins_ = filter_.PinSnapshot(version_);
        position_ = 0;
        return S_OK;
    });
}

STDMETHODIMP PinEnumerator::Clone(IEnumPins** copy) {
    return Guarded([&]() -> HRESULT {
        if (copy == nullptr)
            return E_POINTER;
        *copy = nullptr;
        if (filter_.PinVersion() != version_)
            return VFW_E_ENUM_OUT_OF_SYNC;
        *copy = new PinEnumerator(filter_, position_);
        return S_OK;
    });
}

} // namespace brindlecast
