#include "filters/base/module_exports.h"
#include "filters/include/lav_video.h"
#include "filters/video_decoder/video_decoder_filter.h"

namespace {

constexpr brindlecast::ModuleClass kClasses[] = {
    {&brindlecast::kClsidLavVideo, &brindlecast::CreateObject<brindlecast::VideoDecoderFilter>},
};

} // namespace

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** out) {
    return brindlecast::ModuleGetClassObject(kClasses, clsid, iid, out);
}

STDAPI DllCanUnloadNow() {
    return brindlecast::ModuleCanUnloadNow();
}
