#pragma once

namespace brindlecast {

// Dots per inch of the screen at start-up (96 when unknown) and that number divided by 96. Written once, by
// the main thread before any window exists; constant afterwards, also when a window moves to another monitor.
[[nodiscard]] int SystemDpi();
[[nodiscard]] float DisplayScale();
void SetSystemDpi(int dpi);

// A length of the layout in device pixels: the constant times DisplayScale, in single precision, truncated
// towards zero. Each constant is scaled by itself, never a sum of constants.
[[nodiscard]] int Scaled(int unscaledPixels);

} // namespace brindlecast
