#include "filters/audio_decoder/audio_decoder_filter.h"
#include "filters/base/module_exports.h"
#include "filters/include/lav_audio.h"

namespace {

constexpr brindlecast::ModuleClass kClasses[] = {
    {&brindlecast::kClsidLavAudio, &brindlecast::CreateObject<brindlecast::AudioDecoderFilter>},
};

} // namespace

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** out) {
    return brindlecast::ModuleGetClassObject(kClasses, clsid, iid, out);
}

STDAPI DllCanUnloadNow() {
    return brindlecast::ModuleCanUnloadNow();
}
