#include "filters/base/module_exports.h"

namespace brindlecast {
namespace {

class ClassFactory final : public IClassFactory, public RefCounted {
public:
    explicit ClassFactory(const ModuleClass& theEntry) noexcept : entry(theEntry) {}

    BRINDLECAST_COM_METHODS

    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
        if (out == nullptr) {
            return E_POINTER;
        }
        *out = nullptr;
        return outer != nullptr ? CLASS_E_NOAGGREGATION : entry.create(iid, out);
    }

    STDMETHODIMP LockServer(BOOL lock) override {
        if (lock) {
            AddModuleObject();
        } else {
            RemoveModuleObject();
        }
        return S_OK;
    }

private:
    void* FindInterface(REFIID iid) noexcept {
        return iid == IID_IUnknown || iid == IID_IClassFactory ? static_cast<IClassFactory*>(this) : nullptr;
    }

    const ModuleClass& entry;
};

} // namespace

HRESULT ModuleGetClassObject(std::span<const ModuleClass> classes, REFCLSID clsid, REFIID iid,
                             void** out) noexcept {
    return Guarded([&]() -> HRESULT {
        if (out == nullptr) {
            return E_POINTER;
        }
        *out = nullptr;
        for (const ModuleClass& entry : classes) {
            if (*entry.clsid != clsid) {
                continue;
            }
            auto* factory = new ClassFactory(entry);
            const HRESULT result = factory->QueryInterface(iid, out);
            factory->ReleaseReference();
            return result;
        }
        return CLASS_E_CLASSNOTAVAILABLE;
    });
}

HRESULT ModuleCanUnloadNow() noexcept {
    return ModuleObjectCount() == 0 ? S_OK : S_FALSE;
}

} // namespace brindlecast
