#pragma once

#include "base/settings_store.h"

#include <cstdint>
#include <string>

namespace brindlecast {

// The user's look for subtitles that bring none of their own. Lengths are those of a picture of 1080 lines,
// colours 0xAARRGGBB with an alpha of 0 for opaque.
struct SubtitleStyle {
    std::wstring fontName = L"Malgun Gothic";
    std::int32_t fontSize = 0; // of a script of 288 lines; below 1 for the usual size
    double outline = 2.5;
    double shadow = 1.5;
    bool bold = true;
    bool italic = false;
    std::uint32_t primaryColour = 0x00FFFFFF;
    std::uint32_t outlineColour = 0x00000000;
    std::uint32_t shadowColour = 0x80000000;
    std::int32_t marginBottom = 25;
    std::int32_t alignment = 2; // by the keys of a number pad
};

// The default style with what the store holds laid over it.
[[nodiscard]] SubtitleStyle ReadSubtitleStyle(SettingsStore& store);

} // namespace brindlecast
