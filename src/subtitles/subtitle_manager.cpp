#include "subtitles/subtitle_manager.h"

#include "base/trace.h"
#include "subtitles/mem_sub_pic_allocator.h"
#include "subtitles/sub_pic_queue.h"

namespace brindlecast {

namespace {

constexpr Size kDefaultSize{1920, 1080};
constexpr std::int32_t kMostPictures = 10;
constexpr double kFramesPerSecond = 25.0; // passed on, and never used

// What follows the last backslash; only without one does a slash count.
std::wstring NameOf(const std::wstring& path) {
    std::size_t separator = path.rfind(L'\\');
    if (separator == std::wstring::npos) {
        separator = path.rfind(L'/');
    }
    return separator == std::wstring::npos ? path : path.substr(separator + 1);
}

} // namespace

SubtitleManager::SubtitleManager(SettingsStore& theSettings, CueTextDrawing drawing)
    : settings(theSettings), drawText(drawing) {}

bool SubtitleManager::Initialise(int width, int height) {
    if (initialised) {
        Shutdown();
    }
    videoSize = {width < 1 ? kDefaultSize.width : width, height < 1 ? kDefaultSize.height : height};
    Trace(L"[Brindlecast] Subtitle video size: %dx%d\n", videoSize.width, videoSize.height);
    ComReference<CMemSubPicAllocator> newAllocator(new CMemSubPicAllocator);
    newAllocator->SetCurSize(videoSize);
    newAllocator->SetCurVidRect({0, 0, videoSize.width, videoSize.height});
    newAllocator->SetMaxSize(videoSize);
    allocator = std::move(newAllocator);
    provider.reset(new CSubtitleProvider(ReadSubtitleStyle(settings), drawText));
    provider->SetVideoSize(videoSize);
    queue.reset(new CSubPicQueue(allocator.get(), kMostPictures, kFramesPerSecond));
    queue->SetSubPicProvider(provider.get());
    initialised = true;
    return true;
}

void SubtitleManager::Shutdown() {
    queue.reset();
    provider.reset();
    allocator.reset();
    entries.clear();
    currentIndex = -1;
    initialised = false;
}

bool SubtitleManager::Load(const std::wstring& path) {
    if (!initialised || path.empty()) {
        return false;
    }
    entries.clear();
    currentIndex = -1;
    queue->InvalidateAll();
    if (!provider->LoadFile(path)) {
        return false;
    }
    entries.push_back({0, NameOf(path), {}, path});
    currentIndex = 0;
    return true;
}

void SubtitleManager::Unload() {
    if (!initialised) {
        return;
    }
    provider->Clear();
    queue->InvalidateAll();
    entries.clear();
    currentIndex = -1;
}

bool SubtitleManager::Select(int index) {
    const SubtitleEntry* entry = GetEntry(index);
    if (entry == nullptr) {
        return false;
    }
    if (index == currentIndex) {
        return true;
    }
    if (!entry->path.empty() && !provider->LoadFile(entry->path)) {
        return false;
    }
    currentIndex = index;
    if (queue != nullptr) {
        queue->InvalidateAll();
    }
    return true;
}

const SubtitleEntry* SubtitleManager::GetEntry(int index) const {
    return index >= 0 && index < EntryCount() ? &entries[static_cast<std::size_t>(index)] : nullptr;
}

std::wstring SubtitleManager::NameAt(int index) const {
    const SubtitleEntry* entry = GetEntry(index);
    return entry != nullptr ? entry->name : std::wstring();
}

// The provider's mutex is free again when the queue takes its own, which comes first in the order.
void SubtitleManager::SetDelay(Milliseconds delay) {
    if (provider != nullptr) {
        provider->SetDelay(delay);
        queue->InvalidateAll();
    }
}

Milliseconds SubtitleManager::Delay() const {
    return provider != nullptr ? provider->Delay() : 0;
}

bool SubtitleManager::IsActive() const {
    return initialised && enabled && provider != nullptr && provider->HasContent();
}

void SubtitleManager::SetRenderSize(int width, int height) {
    const Size size{width, height};
    if (width <= 0 || height <= 0 || size == renderSize) {
        return;
    }
    renderSize = size;
    Trace(L"[Brindlecast] SetRenderSize: %dx%d\n", width, height);
    if (!initialised) {
        return;
    }
    auto& pictures = static_cast<CMemSubPicAllocator&>(*allocator);
    pictures.SetCurSize(size);
    pictures.SetCurVidRect({0, 0, width, height});
    pictures.SetMaxSize(size);
    provider->SetVideoSize(size);
    queue->InvalidateAll();
}

ComReference<ISubPic> SubtitleManager::GetSubPic(Time100ns rt) {
    if (!IsActive()) {
        return nullptr;
    }
    ISubPic* found = nullptr;
    if (queue->LookupSubPic(rt, &found) != S_OK || found == nullptr) {
        return nullptr;
    }
    ComReference<ISubPic> picture(found);
    if (onSubPic) {
        onSubPic(*picture);
    }
    return picture;
}

} // namespace brindlecast
