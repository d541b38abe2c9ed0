#pragma once

#include <dshow.h>
#include <string>
#include <windows.h>
#include <wrl/client.h>

namespace brindlecast {

// A filter module loaded from the product's folder, ..\bin beside the test program.
class TestModule {
public:
    // Loads it; a failure ends the test by an exception.
    explicit TestModule(const std::wstring& fileName);
    TestModule(const TestModule&) = delete;
    TestModule& operator=(const TestModule&) = delete;
    ~TestModule();

    // A new filter of that class. A failure ends the test by an exception.
    [[nodiscard]] Microsoft::WRL::ComPtr<IBaseFilter> CreateFilter(REFCLSID clsid) const;
    [[nodiscard]] HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** out) const;
    // DllCanUnloadNow: S_OK when no object of the module lives.
    [[nodiscard]] HRESULT CanUnload() const;

private:
    HMODULE module_;
};

// Windows path of a generated test file, by its name in the media folder.
[[nodiscard]] std::wstring MediaPath(const std::wstring& name);

// Interface of an object, or null.
template <class Interface, class Object>
[[nodiscard]] Microsoft::WRL::ComPtr<Interface> Query(const Object& object, REFIID iid) {
    Microsoft::WRL::ComPtr<Interface> found;
    if (object)
        object->QueryInterface(iid, reinterpret_cast<void**>(found.GetAddressOf()));
    return found;
}

} // namespace brindlecast
