#pragma once

#include <atomic>
#include <new>
#include <objbase.h>
#include <windows.h>
#include <wrl/client.h>

namespace brindlecast {

// Number of live COM objects (and class factory locks) of the module this is linked into. DllCanUnloadNow
// asks it.
[[nodiscard]] long ModuleObjectCount() noexcept;
void AddModuleObject() noexcept;
void RemoveModuleObject() noexcept;

// Reference count of a COM object; starts at 1 and counts the object for its module. A class lists the
// interfaces as its first bases and this one last, overrides FindInterface, and has BRINDLECAST_COM_METHODS
// in its public part.
class RefCounted {
public:
    RefCounted(const RefCounted&) = delete;
    RefCounted& operator=(const RefCounted&) = delete;

    ULONG AddReference() noexcept { return references.fetch_add(1, std::memory_order_relaxed) + 1; }
    ULONG ReleaseReference() noexcept;

protected:
    RefCounted() noexcept { AddModuleObject(); }
    virtual ~RefCounted() { RemoveModuleObject(); }

    // The last reference has gone. Deletes the object unless a class keeps it for later use.
    virtual void OnLastRelease() noexcept { delete this; }
    void ReviveReference() noexcept { references.store(1, std::memory_order_relaxed); }

private:
    std::atomic<ULONG> references{1};
};

// Answers a QueryInterface: `found` is the interface, already of the right base, or null.
template <class Object>
HRESULT AnswerQuery(Object& object, void* found, void** out) noexcept {
    if (out == nullptr) {
        return E_POINTER;
    }
    *out = found;
    if (found == nullptr) {
        return E_NOINTERFACE;
    }
    object.AddReference();
    return S_OK;
}

// A pointer that takes over the reference of a new object. mingw-w64's ComPtr::Attach adds a second one,
// against its documentation, so it is not used.
template <class Object>
[[nodiscard]] Microsoft::WRL::ComPtr<Object> AdoptReference(Object* object) noexcept {
    Microsoft::WRL::ComPtr<Object> pointer;
    *pointer.GetAddressOf() = object;
    return pointer;
}

// The border between our code and a COM caller: an exception becomes an error code.
template <class Action>
HRESULT Guarded(Action&& action) noexcept {
    try {
        return action();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_FAIL;
    }
}

} // namespace brindlecast

// IUnknown for a class with `void* FindInterface(REFIID)`, AddReference and ReleaseReference. A class that
// adds interface bases repeats it, because each of them brings its own three pure methods.
#define BRINDLECAST_COM_METHODS                                                                              \
    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {                                           \
        return ::brindlecast::AnswerQuery(*this, this->FindInterface(iid), out);                             \
    }                                                                                                        \
    STDMETHODIMP_(ULONG) AddRef() override {                                                                 \
        return this->AddReference();                                                                         \
    }                                                                                                        \
    STDMETHODIMP_(ULONG) Release() override {                                                                \
        return this->ReleaseReference();                                                                     \
    }
