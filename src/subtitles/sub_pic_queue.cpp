#include "subtitles/sub_pic_queue.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace brindlecast {

namespace {

// How long a picture is kept behind the time that is looked up, for short jumps backwards.
constexpr Time100ns kKeptBehind = kUnitsPerSecond;

// Holds a provider's lock.
class ProviderLock {
public:
    explicit ProviderLock(ISubPicProvider& lockedProvider) : provider(lockedProvider) {
        static_cast<void>(provider.Lock());
    }
    ProviderLock(const ProviderLock&) = delete;
    ProviderLock& operator=(const ProviderLock&) = delete;
    ~ProviderLock() { static_cast<void>(provider.Unlock()); }

private:
    ISubPicProvider& provider;
};

void Clear(const SubPicDesc& desc) {
    if (desc.bits != nullptr && desc.pitch > 0 && desc.height > 0) {
        std::memset(desc.bits, 0,
                    static_cast<std::size_t>(desc.pitch) * static_cast<std::size_t>(desc.height));
    }
}

} // namespace

CSubPicQueue::CSubPicQueue(ISubPicAllocator* pictureAllocator, std::int32_t mostPictures,
                           double framesPerSecond)
    : allocator(AddReferenceTo(pictureAllocator)), maxPictures(mostPictures), fps(framesPerSecond) {}

CSubPicQueue::~CSubPicQueue() {
    InvalidateAll();
    allocator.reset();
    provider.reset();
}

STDMETHODIMP CSubPicQueue::SetSubPicProvider(ISubPicProvider* newProvider) {
    const std::lock_guard lock(mutex);
    provider = AddReferenceTo(newProvider);
    InvalidateAll();
    return S_OK;
}

STDMETHODIMP CSubPicQueue::GetSubPicProvider(ISubPicProvider** result) {
    if (result == nullptr) {
        return E_POINTER;
    }
    const std::lock_guard lock(mutex);
    *result = AddReferenceTo(provider.get()).release();
    return S_OK;
}

void STDMETHODCALLTYPE CSubPicQueue::SetFPS(double newFps) {
    const std::lock_guard lock(mutex);
    fps = newFps;
}

double STDMETHODCALLTYPE CSubPicQueue::GetFPS() {
    const std::lock_guard lock(mutex);
    return fps;
}

void STDMETHODCALLTYPE CSubPicQueue::SetTime(Time100ns newTime) {
    const std::lock_guard lock(mutex);
    time = newTime;
}

Time100ns STDMETHODCALLTYPE CSubPicQueue::GetTime() {
    const std::lock_guard lock(mutex);
    return time;
}

STDMETHODIMP CSubPicQueue::LookupSubPic(Time100ns rt, ISubPic** picture) {
    if (picture == nullptr) {
        return E_POINTER;
    }
    *picture = nullptr;
    try {
        const std::lock_guard lock(mutex);
        if (provider == nullptr || allocator == nullptr) {
            return E_FAIL;
        }
        DropAged(rt);
        ISubPic* found = FindPicture(rt);
        if (found == nullptr) {
            found = RenderPicture(rt);
        }
        *picture = AddReferenceTo(found).release();
    } catch (...) { // no memory to keep one more picture: nothing to show, and the next frame tries again
    }
    return *picture != nullptr ? S_OK : S_FALSE;
}

void STDMETHODCALLTYPE CSubPicQueue::Invalidate(Time100ns rt) {
    const std::lock_guard lock(mutex);
    if (rt < 0) {
        pictures.clear();
        return;
    }
    std::erase_if(pictures, [rt](const Picture& picture) { return picture->GetStart() >= rt; });
}

void STDMETHODCALLTYPE CSubPicQueue::InvalidateAll() {
    const std::lock_guard lock(mutex);
    pictures.clear();
}

std::int32_t STDMETHODCALLTYPE CSubPicQueue::GetQueueCount() {
    const std::lock_guard lock(mutex);
    return static_cast<std::int32_t>(pictures.size());
}

void CSubPicQueue::DropAged(Time100ns rt) {
    // Far in the past nothing can be older.
    if (rt < std::numeric_limits<Time100ns>::min() + kKeptBehind) {
        return;
    }
    while (!pictures.empty() && pictures.front()->GetStop() < rt - kKeptBehind) {
        pictures.pop_front();
    }
}

ISubPic* CSubPicQueue::FindPicture(Time100ns rt) const {
    const auto found = std::find_if(pictures.begin(), pictures.end(), [rt](const Picture& picture) {
        return picture->GetStart() <= rt && rt < picture->GetStop();
    });
    return found != pictures.end() ? found->get() : nullptr;
}

ISubPic* CSubPicQueue::RenderPicture(Time100ns rt) {
    Window window{};
    if (!FindWindow(rt, window)) {
        return nullptr;
    }
    ISubPic* made = nullptr;
    if (FAILED(allocator->AllocDynamic(&made)) || made == nullptr) {
        return nullptr;
    }
    Picture picture(made);
    if (!Draw(*picture, rt)) {
        return nullptr;
    }
    picture->SetStart(window.start);
    picture->SetStop(window.stop);
    return Keep(std::move(picture));
}

// The time of the first event that has not ended, when `rt` lies in it. Between two events that is all that
// happens.
bool CSubPicQueue::FindWindow(Time100ns rt, Window& window) const {
    SubPicPosition position = 0;
    {
        const ProviderLock lock(*provider);
        position = provider->GetStartPosition(rt, fps);
    }
    if (position == 0) {
        return false;
    }
    const ProviderLock lock(*provider);
    window = {provider->GetStart(position, fps), provider->GetStop(position, fps)};
    return window.start <= rt && rt < window.stop;
}

bool CSubPicQueue::Draw(ISubPic& picture, Time100ns rt) const {
    SubPicDesc desc;
    if (FAILED(picture.Lock(desc))) {
        return false;
    }
    Clear(desc);
    Rect bounds = kInvertedRect;
    HRESULT result = S_FALSE;
    {
        const ProviderLock lock(*provider);
        result = provider->Render(desc, rt, fps, bounds);
    }
    const bool drawn = !FAILED(result) && result != S_FALSE;
    static_cast<void>(picture.Unlock(drawn ? &bounds : nullptr));
    return drawn;
}

ISubPic* CSubPicQueue::Keep(Picture picture) {
    if (static_cast<std::int32_t>(pictures.size()) >= maxPictures && !pictures.empty()) {
        pictures.pop_front();
    }
    return pictures.emplace_back(std::move(picture)).get();
}

} // namespace brindlecast
