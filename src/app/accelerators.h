#pragma once

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

// The flags of a row, as the platform numbers them: each row names a virtual key.
inline constexpr std::uint8_t kVirtualKey = 0x01;
inline constexpr std::uint8_t kWithShift = 0x04;
inline constexpr std::uint8_t kWithControl = 0x08;

// One row of the keyboard map.
struct KeyBinding {
    std::uint16_t virtualKey;
    std::uint16_t command;
    std::uint8_t flags = kVirtualKey;
};

inline constexpr auto kKeyboardMap = std::to_array<KeyBinding>({
    {0x20, 6001},                             // Space
    {0x25, 6002},                             // Left
    {0x27, 6003},                             // Right
    {0x26, 6004},                             // Up
    {0x28, 6005},                             // Down
    {0x50, 6001},                             // P
    {0x57, 6010},                             // W
    {0x44, 6011},                             // D
    {0x53, 6012},                             // S
    {0x41, 6013},                             // A
    {0x51, 6014},                             // Q
    {0x45, 6015},                             // E
    {0x52, 6015},                             // R
    {0x48, 6016},                             // H
    {0x56, 6017},                             // V
    {0x4D, 6020},                             // M
    {0x5A, 6021},                             // Z
    {0x58, 6022},                             // X
    {0x43, 6023},                             // C
    {0xDB, 6030},                             // [
    {0xDD, 6031},                             // ]
    {0xDC, 6032},                             // backslash
    {0xBC, 6033, kVirtualKey | kWithShift},   // comma
    {0xBC, 6033},                             // comma
    {0xBE, 6034, kVirtualKey | kWithShift},   // period
    {0xBE, 6034},                             // period
    {0xBF, 6035},                             // slash
    {0x4F, 6040},                             // O
    {0x46, 6041},                             // F
    {0x0D, 6041},                             // Enter
    {0x1B, 6042},                             // Esc
    {0x31, 6050},                             // 1
    {0x32, 6051},                             // 2
    {0x33, 6052},                             // 3
    {0x34, 6053},                             // 4
    {0x35, 6054},                             // 5
    {0x36, 6055},                             // 6
    {0x42, 6060, kVirtualKey | kWithControl}, // B
    {0x50, 6061, kVirtualKey | kWithControl}, // P
});

} // namespace brindlecast
