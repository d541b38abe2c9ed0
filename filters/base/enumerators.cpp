#include "filters/base/enumerators.h"

#include "filters/base/base_pin.h"

#include <algorithm>

namespace brindlecast {

STDMETHODIMP MediaTypeEnumerator::Next(ULONG count, AM_MEDIA_TYPE** out, ULONG* fetched) {
    if (out == nullptr || (fetched == nullptr && count != 1)) {
        return E_POINTER;
    }
    ULONG done = 0;
    while (done < count && position < types.size()) {
        out[done] = types[position].NewTaskMemCopy();
        if (out[done] == nullptr) {
            while (done > 0) {
                MediaType::FreeTaskMem(out[--done]);
            }
            if (fetched != nullptr) {
                *fetched = 0;
            }
            return E_OUTOFMEMORY;
        }
        ++done;
        ++position;
    }
    if (fetched != nullptr) {
        *fetched = done;
    }
    return done == count ? S_OK : S_FALSE;
}

STDMETHODIMP MediaTypeEnumerator::Skip(ULONG count) {
    const auto left = static_cast<ULONG>(types.size()) - position;
    position += std::min(count, left);
    return count <= left ? S_OK : S_FALSE;
}

STDMETHODIMP MediaTypeEnumerator::Reset() {
    position = 0;
    return S_OK;
}

STDMETHODIMP MediaTypeEnumerator::Clone(IEnumMediaTypes** copy) {
    return Guarded([&] {
        if (copy == nullptr) {
            return E_POINTER;
        }
        *copy = nullptr;
        *copy = new MediaTypeEnumerator(types, position);
        return S_OK;
    });
}

PinEnumerator::PinEnumerator(BaseFilter& theFilter, ULONG startPosition)
    : filter(theFilter), position(startPosition) {
    pins = filter.PinSnapshot(version);
    filter.AddRef();
}

PinEnumerator::~PinEnumerator() {
    filter.Release();
}

STDMETHODIMP PinEnumerator::Next(ULONG count, IPin** out, ULONG* fetched) {
    if (out == nullptr || (fetched == nullptr && count != 1)) {
        return E_POINTER;
    }
    if (fetched != nullptr) {
        *fetched = 0;
    }
    if (filter.PinVersion() != version) {
        return VFW_E_ENUM_OUT_OF_SYNC;
    }
    ULONG done = 0;
    while (done < count && position < pins.size()) {
        out[done] = pins[position++];
        out[done++]->AddRef();
    }
    if (fetched != nullptr) {
        *fetched = done;
    }
    return done == count ? S_OK : S_FALSE;
}

STDMETHODIMP PinEnumerator::Skip(ULONG count) {
    if (filter.PinVersion() != version) {
        return VFW_E_ENUM_OUT_OF_SYNC;
    }
    const auto left = static_cast<ULONG>(pins.size()) - position;
    position += std::min(count, left);
    return count <= left ? S_OK : S_FALSE;
}

STDMETHODIMP PinEnumerator::Reset() {
    return Guarded([&] {
        pins = filter.PinSnapshot(version);
        position = 0;
        return S_OK;
    });
}

STDMETHODIMP PinEnumerator::Clone(IEnumPins** copy) {
    return Guarded([&]() -> HRESULT {
        if (copy == nullptr) {
            return E_POINTER;
        }
        *copy = nullptr;
        if (filter.PinVersion() != version) {
            return VFW_E_ENUM_OUT_OF_SYNC;
        }
        *copy = new PinEnumerator(filter, position);
        return S_OK;
    });
}

} // namespace brindlecast
