#pragma once

namespace brindlecast {

struct OverlayState;

// Draws the message with its present opacity into a fresh bitmap of the overlay window's size and hands it to
// that window. Nothing happens without a window, a text and an area, or when there is no memory for the
// bitmap. Main thread only.
void RenderOverlay(const OverlayState& state);

} // namespace brindlecast
