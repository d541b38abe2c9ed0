#pragma once

#include "base/com_object.h"
#include "subtitles/sub_pic.h"

#include <deque>
#include <mutex>

namespace brindlecast {

// Keeps the last few rendered pictures and renders one where a lookup finds none, on the thread that looks
// up: there is no thread of its own and nothing is rendered ahead. A picture stands for the whole time of the
// first event that has not ended, whatever else is shown in it. From any thread.
class CSubPicQueue final : public ComObject<ISubPicQueue> {
public:
    // Keeps a reference to the allocator, which may be null: then nothing is ever found. `mostPictures` are
    // kept, at least one; `framesPerSecond` is handed on to the provider.
    CSubPicQueue(ISubPicAllocator* pictureAllocator, std::int32_t mostPictures, double framesPerSecond);

    STDMETHODIMP SetSubPicProvider(ISubPicProvider* newProvider) override;
    STDMETHODIMP GetSubPicProvider(ISubPicProvider** result) override;
    void STDMETHODCALLTYPE SetFPS(double newFps) override;
    double STDMETHODCALLTYPE GetFPS() override;
    void STDMETHODCALLTYPE SetTime(Time100ns newTime) override;
    Time100ns STDMETHODCALLTYPE GetTime() override;
    STDMETHODIMP LookupSubPic(Time100ns rt, ISubPic** picture) override;
    void STDMETHODCALLTYPE Invalidate(Time100ns rt) override;
    void STDMETHODCALLTYPE InvalidateAll() override;
    std::int32_t STDMETHODCALLTYPE GetQueueCount() override;

private:
    using Picture = ComReference<ISubPic>;
    struct Window {
        Time100ns start;
        Time100ns stop;
    };

    ~CSubPicQueue() override;
    // With the mutex held:
    void DropAged(Time100ns rt);
    [[nodiscard]] ISubPic* FindPicture(Time100ns rt) const;
    [[nodiscard]] ISubPic* RenderPicture(Time100ns rt);
    [[nodiscard]] bool FindWindow(Time100ns rt, Window& window) const;
    [[nodiscard]] bool Draw(ISubPic& picture, Time100ns rt) const;
    [[nodiscard]] ISubPic* Keep(Picture picture);

    // Held over a whole lookup with its rendering, and therefore taken before the provider's own lock:
    // whoever holds that one alone calls nothing here. Guards everything below.
    std::recursive_mutex mutex;
    ComReference<ISubPicAllocator> allocator;
    ComReference<ISubPicProvider> provider;
    std::deque<Picture> pictures; // in the order they were rendered, the oldest in front
    std::int32_t maxPictures;
    double fps;
    Time100ns time = 0; // stored for whoever asks
};

} // namespace brindlecast
