#pragma once

#include "filters/base/base_filter.h"

namespace brindlecast {

// An interface of a filter that is implemented in an object of its own: the same COM object, the same
// reference count.
template <class Interface>
class FilterPart : public Interface {
public:
    FilterPart(const FilterPart&) = delete;
    FilterPart& operator=(const FilterPart&) = delete;

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override { return filter.QueryInterface(iid, out); }
    STDMETHODIMP_(ULONG) AddRef() override { return filter.AddRef(); }
    STDMETHODIMP_(ULONG) Release() override { return filter.Release(); }

protected:
    explicit FilterPart(BaseFilter& theFilter) : filter(theFilter) {}
    ~FilterPart() = default;

    [[nodiscard]] BaseFilter& Filter() const noexcept { return filter; }

private:
    BaseFilter& filter;
};

// The same for a dual interface; calls by name are not offered.
template <class Interface>
class DualFilterPart : public FilterPart<Interface> {
public:
    using FilterPart<Interface>::FilterPart;

    STDMETHODIMP GetTypeInfoCount(UINT* count) override {
        if (count == nullptr) {
            return E_POINTER;
        }
        *count = 0;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }
};

} // namespace brindlecast
