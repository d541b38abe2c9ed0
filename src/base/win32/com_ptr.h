#pragma once

#include <unknwn.h>
#include <wrl/client.h>

namespace brindlecast {

using Microsoft::WRL::ComPtr;

// As `object` = what call(address) hands out, with two habits of foreign modules undone: a failed call leaves
// the pointer null whatever it has written, and a success that hands nothing out becomes E_UNEXPECTED.
template <class Interface, class Call>
[[nodiscard]] HRESULT Obtain(ComPtr<Interface>& object, const Call& call) {
    Interface* given = nullptr;
    const HRESULT result = call(&given);
    // Not Attach: that of the compiler's ComPtr adds a reference.
    *object.ReleaseAndGetAddressOf() = SUCCEEDED(result) ? given : nullptr;
    return SUCCEEDED(result) && given == nullptr ? E_UNEXPECTED : result;
}

// The interface of `object`; null when it is not offered, and for a null object.
template <class Interface>
[[nodiscard]] ComPtr<Interface> QueryFor(IUnknown* object) {
    ComPtr<Interface> found;
    if (object == nullptr || FAILED(Obtain(found, [object](Interface** out) {
            return object->QueryInterface(__uuidof(Interface), reinterpret_cast<void**>(out));
        }))) {
        return nullptr;
    }
    return found;
}

} // namespace brindlecast
