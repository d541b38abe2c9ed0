#pragma once

#include "filters/include/mpc_video_renderer.h"
#include "filters/renderer/d3d_device.h"

#include <mutex>

namespace brindlecast {

// The application's subtitle callback. The drawing thread calls it under the lock, so that no call is under
// way any more when SetCallback has returned. The callback must not call back into the renderer.
class SubtitleLink {
public:
    ~SubtitleLink();

    // Any thread. The old callback is told to release everything of the device.
    void SetCallback(ISubRender11Callback* newCallback);

    // What Render11 is told about one frame.
    struct Frame {
        REFERENCE_TIME start = 0;
        REFERENCE_TIME stop = 0;
        REFERENCE_TIME duration = 0;
        RECT video{};
        RECT originalVideo{};
        RECT viewport{};
    };
    // Drawing thread: `bind()` puts the promised state on the context, then the callback draws. Nothing
    // happens without a callback. True when something may have been drawn.
    template <class Bind>
    bool Render(ID3D11Device* device, const Frame& frame, Bind&& bind) {
        const std::lock_guard lock(mutex);
        if (callback == nullptr) {
            return false;
        }
        TellDevice(device);
        bind();
        callback->Render11(frame.start, frame.stop, frame.duration, frame.video, frame.originalVideo,
                           frame.viewport, 1.0, 0, 0);
        return true;
    }
    // Drawing thread: the device is about to go.
    void DeviceGone();

private:
    void TellDevice(ID3D11Device* device);
    void ReleaseDevice();

    std::mutex mutex;
    ComPtr<ISubRender11Callback> callback;
    ID3D11Device* told = nullptr; // the device that the callback holds; compared, never used
};

} // namespace brindlecast
