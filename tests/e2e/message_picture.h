#pragma once

#include "tests/e2e/player.h"
#include "tests/e2e/screen.h"

#include <cstdint>
#include <string>
#include <vector>

namespace brindlecast::testing {

// The part of the screen that messages appear in: the top of the video area, over its whole width.
[[nodiscard]] Rect MessageStrip(const Player& player);

// A message as it must look, drawn here: the colours of its pixels are multiplied with their alpha.
class MessagePicture {
public:
    MessagePicture(const std::wstring& text, Size strip);

    // Whether a photograph shows just this message over black, and nothing else.
    [[nodiscard]] bool IsOn(const Photograph& photograph) const;
    // The same over what another photograph shows of the place.
    [[nodiscard]] bool IsOver(const Photograph& under, const Photograph& photograph) const;

private:
    Size size;
    std::vector<std::uint8_t> pixels; // B, G, R, alpha
};

// Waits until the message stands alone over a black video area.
[[nodiscard]] bool WaitForMessage(const Player& player, const std::wstring& text);

// The player's window for messages while one is on show, or null.
[[nodiscard]] HWND VisibleMessageWindow(const Player& player);

} // namespace brindlecast::testing
