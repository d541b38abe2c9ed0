#pragma once

#include "ui/command_ids.h"

#include <array>
#include <cstdint>

namespace brindlecast {

// Whether a message of that number may be a key of the map: WM_KEYDOWN and WM_SYSKEYDOWN, nothing else. What
// is let go or has become a character acts no more.
[[nodiscard]] constexpr bool MayBeAccelerator(std::uint32_t message) {
    constexpr std::uint32_t kKeyDown = 0x0100;
    constexpr std::uint32_t kSystemKeyDown = 0x0104;
    return message == kKeyDown || message == kSystemKeyDown;
}

// One row of the keyboard map: a virtual key that gives a command.
struct KeyBinding {
    std::uint16_t virtualKey;
    CommandId command;
};

inline constexpr std::array kKeyboardMap = {
    KeyBinding{0x20, kCommandKeyTogglePlay},   // Space
    KeyBinding{0x25, kCommandKeyStepBackward}, // Left
    KeyBinding{0x27, kCommandKeyStepForward},  // Right
    KeyBinding{0x50, kCommandKeyTogglePlay},   // P
    KeyBinding{0x4F, kCommandKeyOpen},         // O
    KeyBinding{0x1B, kCommandKeyEscape},       // Esc
};

} // namespace brindlecast
