#pragma once

#include "filters/base/com_object.h"

#include <span>

namespace brindlecast {

// One class that a module creates. `create` makes an object with one reference and answers the query on it.
struct ModuleClass {
    const CLSID* clsid;
    HRESULT (*create)(REFIID iid, void** out) noexcept;
};

// Makes a ref-counted T (default constructor) and hands out the interface asked for.
template <class T>
HRESULT CreateObject(REFIID iid, void** out) noexcept {
    return Guarded([&] {
        if (out == nullptr) {
            return E_POINTER;
        }
        *out = nullptr;
        T* object = new T();
        const HRESULT result = object->QueryInterface(iid, out);
        object->ReleaseReference();
        return result;
    });
}

// The work of DllGetClassObject over a module's table. CLASS_E_CLASSNOTAVAILABLE for an unknown class. The
// table must outlive every factory: make it static.
[[nodiscard]] HRESULT ModuleGetClassObject(std::span<const ModuleClass> classes, REFCLSID clsid, REFIID iid,
                                           void** out) noexcept;

// The work of DllCanUnloadNow: S_OK when no object of the module lives, else S_FALSE.
[[nodiscard]] HRESULT ModuleCanUnloadNow() noexcept;

} // namespace brindlecast
