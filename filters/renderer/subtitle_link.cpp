#include "filters/renderer/subtitle_link.h"

namespace brindlecast {

SubtitleLink::~SubtitleLink() {
    SetCallback(nullptr);
}

void SubtitleLink::SetCallback(ISubRender11Callback* callback) {
    ComPtr<ISubRender11Callback> old; // released after the lock: its last release is foreign code
    const ComPtr<ISubRender11Callback> next(callback);
    const std::lock_guard lock(mutex_);
    ReleaseDevice();
    old = callback_;
    callback_ = next;
}

void SubtitleLink::DeviceGone() {
    const std::lock_guard lock(mutex_);
    ReleaseDevice();
}

void SubtitleLink::ReleaseDevice() {
    if (callback_ != nullptr && told_ != nullptr) {
        callback_->SetDevice11(nullptr);
    }
    told_ = nullptr;
}

void SubtitleLink::TellDevice(ID3D11Device* device) {
    if (told_ != device) {
        ReleaseDevice();
        // A callback that can't use the device is not asked again for it on every frame; it refuses to draw
        // itself.
        callback_->SetDevice11(device);
        told_ = device;
    }
}

} // namespace brindlecast
