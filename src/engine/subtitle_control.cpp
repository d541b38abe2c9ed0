#include "app/settings.h"
#include "base/trace.h"
#include "engine/player_engine.h"
#include "subtitles/external_subtitles.h"
#include "subtitles/subtitle_manager.h"
#include "subtitles/win32/cue_text_drawing.h"

#include <shlwapi.h>

#include <exception>

namespace brindlecast {

namespace {

constexpr long kDefaultWidth = 1920;
constexpr long kDefaultHeight = 1080;

} // namespace

void PlayerEngine::EnsureSubtitleManager() {
    if (subtitleManager != nullptr) {
        return;
    }
    long width = kDefaultWidth;
    long height = kDefaultHeight;
    if (basicVideo != nullptr) {
        basicVideo->GetVideoSize(&width, &height);
    }
    subtitleManager = std::make_unique<SubtitleManager>(settings, DrawCueText);
    subtitleManager->Initialise(static_cast<int>(width), static_cast<int>(height));
    subtitleManager->enabled = ReadSetting(settings, settings::kSubtitleEnabled) != 0;
}

bool PlayerEngine::LoadSubtitle(const std::wstring& path) {
    EnsureSubtitleManager();
    if (subtitleCallback != nullptr) {
        subtitleCallback->manager = subtitleManager.get();
    }
    try {
        return subtitleManager->Load(path);
    } catch (const std::exception&) {
        // A text that can't be read, or no memory for it.
        return false;
    }
}

bool PlayerEngine::SelectSubtitle(int index) {
    try {
        return subtitleManager != nullptr && subtitleManager->Select(index);
    } catch (const std::exception&) {
        return false;
    }
}

void PlayerEngine::FindSubtitlesOfCurrentFile() {
    try {
        const auto found = FindExternalSubtitles(currentFile.c_str(), [](const std::wstring& candidate) {
            return PathFileExistsW(candidate.c_str()) != FALSE;
        });
        if (!found.empty()) {
            Trace(L"[Brindlecast] Found %zu subtitle(s): %s\n", found.size(), found.front());
            static_cast<void>(LoadSubtitle(found.front()));
        }
    } catch (...) {
        // A film plays without its subtitles rather than not at all.
    }
}

void PlayerEngine::SetSubtitleEnabled(bool enabled) {
    if (subtitleManager != nullptr) {
        subtitleManager->enabled = enabled;
    }
    settings.WriteDword(settings::kSubtitleEnabled.name, enabled ? 1 : 0);
}

Milliseconds PlayerEngine::GetSubtitleDelay() const {
    return subtitleManager != nullptr ? subtitleManager->Delay() : 0;
}

void PlayerEngine::AdjustSubtitleDelay(Milliseconds delta) {
    if (subtitleManager != nullptr) {
        subtitleManager->SetDelay(subtitleManager->Delay() + delta);
    }
}

void PlayerEngine::ResetSubtitleDelay() {
    if (subtitleManager != nullptr) {
        subtitleManager->SetDelay(0);
    }
}

} // namespace brindlecast
