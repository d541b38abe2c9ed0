#include "filters/renderer/subtitle_link.h"

namespace brindlecast {

SubtitleLink::~SubtitleLink() {
    SetCallback(nullptr);
}

void SubtitleLink::SetCallback(ISubRender11Callback* newCallback) {
    ComPtr<ISubRender11Callback> old; // released after the lock: its last release is foreign code
    const ComPtr<ISubRender11Callback> next(newCallback);
    const std::lock_guard lock(mutex);
    ReleaseDevice();
    old = callback;
    callback = next;
}

void SubtitleLink::DeviceGone() {
    const std::lock_guard lock(mutex);
    ReleaseDevice();
}

void SubtitleLink::ReleaseDevice() {
    if (callback != nullptr && told != nullptr) {
        callback->SetDevice11(nullptr);
    }
    told = nullptr;
}

void SubtitleLink::TellDevice(ID3D11Device* device) {
    if (told != device) {
        ReleaseDevice();
        // A callback that can't use the device is not asked again for it on every frame; it refuses to draw
        // itself.
        callback->SetDevice11(device);
        told = device;
    }
}

} // namespace brindlecast
