#include "tests/graph/fakes/fake_filter.h"

#include <cstdint>

namespace brindlecast::testing {
namespace {

class FakeFactory final : public IClassFactory {
public:
    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        if (iid != __uuidof(IUnknown) && iid != __uuidof(IClassFactory)) {
            *out = nullptr;
            return E_NOINTERFACE;
        }
        *out = static_cast<IClassFactory*>(this);
        return S_OK;
    }
    // One static object, never destroyed.
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP CreateInstance(IUnknown* /*outer*/, REFIID iid, void** out) override {
        *out = nullptr;
        const std::string name = kFakeName;
        if (const long failure = RecorderNumber((name + ".create").c_str(), 0); failure != 0) {
            return failure;
        }
        if (RecorderNumber((name + ".createIsNull").c_str(), 0) != 0) {
            return S_OK;
        }
        if (RecorderNumber((name + ".createWrites").c_str(), 0) != 0) {
            *out = reinterpret_cast<void*>(std::uintptr_t{0x10});
            return E_FAIL;
        }
        ComPtr<FakeFilter> filter;
        // Not Attach: that of the compiler's ComPtr adds a reference.
        *filter.ReleaseAndGetAddressOf() = MakeFakeFilter();
        return filter->QueryInterface(iid, out);
    }
    STDMETHODIMP LockServer(BOOL) override { return S_OK; }
};

} // namespace
} // namespace brindlecast::testing

extern "C" __declspec(dllexport) HRESULT STDAPICALLTYPE
    DllGetClassObject(REFCLSID clsid, REFIID iid, void** out) {
    using namespace brindlecast::testing;
    static FakeFactory factory;
    *out = nullptr;
    const long failure = RecorderNumber((std::string(kFakeName) + ".classObject").c_str(), 0);
    if (failure != 0) {
        return failure;
    }
    if (RecorderNumber((std::string(kFakeName) + ".classObjectIsNull").c_str(), 0) != 0) {
        return S_OK;
    }
    return clsid == kFakeClass ? factory.QueryInterface(iid, out) : CLASS_E_CLASSNOTAVAILABLE;
}
