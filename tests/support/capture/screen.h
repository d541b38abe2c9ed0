#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace brindlecast::testing {

// The screen of an X11 display as a camera sees it: with everything that a compositor painted. One thread
// only.
class Screen {
public:
    struct Window {
        unsigned long id;
        int left; // root coordinates, pixels
        int top;
        int width;
        int height;
    };

    // 4 bytes a pixel in the order B, G, R, unused; rows without gaps.
    struct Picture {
        int width;
        int height;
        std::vector<std::uint8_t> bytes;
    };

    // Opens the display of the environment. Throws std::runtime_error when there is none, or it is not of 24
    // bits.
    Screen();
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    // The largest visible top-level window whose title contains `title`.
    [[nodiscard]] std::optional<Window> FindWindow(const std::string& title) const;

    // Where a window is now; nothing once it is gone or hidden.
    [[nodiscard]] std::optional<Window> Locate(unsigned long id) const;

    // The part of the screen that the rectangle covers. Nothing unless it lies wholly on the screen.
    [[nodiscard]] std::optional<Picture> Grab(int left, int top, int width, int height) const;

    // Asks the window to close, as its close button would.
    void AskToClose(unsigned long id) const;

private:
    struct Connection;
    std::unique_ptr<Connection> connection_;
};

} // namespace brindlecast::testing
