#include "filters/base/module_exports.h"
#include "filters/renderer/renderer_filter.h"

namespace {

constexpr brindlecast::ModuleClass kClasses[] = {
    {&brindlecast::kClsidMpcVideoRenderer, brindlecast::CreateObject<brindlecast::RendererFilter>}};

} // namespace

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** out) {
    return brindlecast::ModuleGetClassObject(kClasses, clsid, iid, out);
}

STDAPI DllCanUnloadNow() {
    const HRESULT result = brindlecast::ModuleCanUnloadNow();
    if (result == S_OK) {
        brindlecast::DropKeptResources();
        brindlecast::VideoWindow::ReleaseClass();
    }
    return result;
}
