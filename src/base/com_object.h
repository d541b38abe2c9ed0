#pragma once

#include "base/com.h"

#include <atomic>
#include <memory>

namespace brindlecast {

inline constexpr GUID kIidUnknown = {0, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// An object of one interface, which names its identifier as `Interface::kIid`. It starts with one reference
// and deletes itself with the last, on whichever thread gives that back. The destructor stands behind the
// interface's methods in the table of functions.
template <class Interface>
class ComObject : public Interface {
public:
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        if (out == nullptr) {
            return E_POINTER;
        }
        if (iid != kIidUnknown && iid != Interface::kIid) {
            *out = nullptr;
            return E_NOINTERFACE;
        }
        *out = static_cast<Interface*>(this);
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return references.fetch_add(1, std::memory_order_relaxed) + 1; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = references.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left == 0) {
            delete this;
        }
        return left;
    }

protected:
    ComObject() = default;
    virtual ~ComObject() = default;

private:
    std::atomic<ULONG> references{1};
};

struct ReleaseReference {
    void operator()(IUnknown* object) const { object->Release(); }
};

// Owns one reference; made from a pointer it takes that pointer's reference over.
template <class Interface>
using ComReference = std::unique_ptr<Interface, ReleaseReference>;

// One more reference to `object`, which may be null.
template <class Interface>
[[nodiscard]] ComReference<Interface> AddReferenceTo(Interface* object) {
    if (object != nullptr) {
        object->AddRef();
    }
    return ComReference<Interface>(object);
}

} // namespace brindlecast
