#include "filters/audio_switcher/audio_switcher_filter.h"
#include "filters/base/module_exports.h"
#include "filters/include/audio_switcher.h"

namespace {

constexpr brindlecast::ModuleClass kClasses[] = {
    {&brindlecast::kClsidAudioSwitcher, &brindlecast::CreateObject<brindlecast::AudioSwitcherFilter>},
};

} // namespace

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** out) {
    return brindlecast::ModuleGetClassObject(kClasses, clsid, iid, out);
}

STDAPI DllCanUnloadNow() {
    return brindlecast::ModuleCanUnloadNow();
}
