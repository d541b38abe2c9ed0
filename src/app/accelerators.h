#pragma once

#include "ui/command_ids.h"

#include <array>
#include <cstdint>

namespace brindlecast {

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
