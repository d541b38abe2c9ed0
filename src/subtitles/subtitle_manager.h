#pragma once

#include "base/com_object.h"
#include "base/settings_store.h"
#include "base/time_types.h"
#include "subtitles/sub_pic.h"
#include "subtitles/subtitle_provider.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace brindlecast {

// A loaded subtitle.
struct SubtitleEntry {
    std::int32_t id = 0;
    std::wstring name;     // of the file
    std::wstring language; // empty when it is not known
    std::wstring path;
};

// All between a subtitle file and the picture of a moment. Loading, switching and shifting happen on the main
// thread; SetRenderSize, IsActive and GetSubPic are called on the renderer's drawing thread. Initialise and
// Shutdown are called while nothing draws.
class SubtitleManager {
public:
    // `settings` must outlive the manager; the look of converted files is read from it.
    SubtitleManager(SettingsStore& theSettings, CueTextDrawing drawing);
    SubtitleManager(const SubtitleManager&) = delete;
    SubtitleManager& operator=(const SubtitleManager&) = delete;
    ~SubtitleManager() { Shutdown(); }

    // Makes everything anew for a video of that size in pixels, 1920 by 1080 where it is not positive.
    bool Initialise(int width, int height);
    void Shutdown();

    // Replaces what is loaded; after false nothing is. Throws what CSubtitleProvider::LoadFile throws; then
    // nothing is listed either.
    [[nodiscard]] bool Load(const std::wstring& path);
    // libass stays up, and the delay stays.
    void Unload();
    // Makes an entry current. False when there is none of that index, or it does not load.
    [[nodiscard]] bool Select(int index);
    [[nodiscard]] int EntryCount() const { return static_cast<int>(entries.size()); }
    // Null when there is none of that index.
    [[nodiscard]] const SubtitleEntry* GetEntry(int index) const;
    // Of an entry; empty when there is none of that index.
    [[nodiscard]] std::wstring NameAt(int index) const;
    [[nodiscard]] std::int32_t CurrentIndex() const { return currentIndex; }

    // A positive delay shows later text sooner.
    void SetDelay(Milliseconds delay);
    // 0 before Initialise.
    [[nodiscard]] Milliseconds Delay() const;
    [[nodiscard]] bool HasProvider() const { return provider != nullptr; }
    // Null before Initialise; gone with Shutdown.
    [[nodiscard]] const CSubtitleProvider* Provider() const { return provider.get(); }

    // Whether there could be a picture at all: pictures are wanted and something is loaded.
    [[nodiscard]] bool IsActive() const;
    // The size of the video on the screen, at which pictures are rendered. Anything not positive is ignored.
    void SetRenderSize(int width, int height);
    // The picture of a time, with a reference for the caller; null when there is nothing to show.
    [[nodiscard]] ComReference<ISubPic> GetSubPic(Time100ns rt);

    // Pictures are delivered only while set. Written by the main thread.
    std::atomic<bool> enabled{true};
    // Told of each picture that is delivered, on the drawing thread. May be empty.
    std::function<void(ISubPic& picture)> onSubPic;

private:
    SettingsStore& settings;
    const CueTextDrawing drawText;
    std::atomic<bool> initialised{false};
    Size videoSize;
    // Written by the drawing thread alone, but for Initialise.
    Size renderSize;
    ComReference<ISubPicAllocator> allocator;
    ComReference<ISubPicQueue> queue;
    ComReference<CSubtitleProvider> provider;
    std::vector<SubtitleEntry> entries; // at most one
    std::int32_t currentIndex = -1;
};

} // namespace brindlecast
