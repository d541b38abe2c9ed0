#include "filters/base/module_exports.h"
#include "filters/include/lav_splitter.h"
#include "filters/splitter/splitter_filter.h"

namespace {

using brindlecast::CreateObject;
using brindlecast::ModuleClass;

const ModuleClass kClasses[] = {
    {&brindlecast::kClsidLavSplitterSource, &CreateObject<brindlecast::SplitterFilter>},
};

} // namespace

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** out) {
    return brindlecast::ModuleGetClassObject(kClasses, clsid, iid, out);
}

STDAPI DllCanUnloadNow() {
    return brindlecast::ModuleCanUnloadNow();
}
