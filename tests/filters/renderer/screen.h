#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <ostream>
#include <vector>

namespace brindlecast::test {

struct Color {
    int red = 0;
    int green = 0;
    int blue = 0;
    bool operator==(const Color&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Color& color);

// Largest difference of a channel.
[[nodiscard]] int Distance(const Color& a, const Color& b);

// A rectangle of pixels.
class Image {
public:
    Image() = default;
    Image(int width, int height)
        : width_(width), height_(height), pixels_(static_cast<std::size_t>(width * height)) {}

    [[nodiscard]] int Width() const { return width_; }
    [[nodiscard]] int Height() const { return height_; }
    [[nodiscard]] Color At(int x, int y) const;
    // 0x00RRGGBB from the top left.
    [[nodiscard]] std::uint32_t* Data() { return pixels_.data(); }

private:
    int width_ = 0;
    int height_ = 0;
    std::vector<std::uint32_t> pixels_;
};

// What the real screen shows in the client area of a window.
[[nodiscard]] Image ReadScreen(HWND window);

// Serves this thread's messages until the condition holds; false when the time ran out.
[[nodiscard]] bool PumpUntil(const std::function<bool()>& condition, int milliseconds = 5000);
// Serves messages for that long.
void Pump(int milliseconds);

// A top-level window that receives what a message drain receives.
class HostWindow {
public:
    HostWindow(int width, int height);
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;
    ~HostWindow();

    [[nodiscard]] HWND Handle() const { return window_; }
    void Resize(int width, int height) const;

    struct Message {
        UINT message;
        WPARAM wParam;
        LPARAM lParam;
    };
    // Mouse and key messages that arrived.
    std::vector<Message> messages;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    HWND window_ = nullptr;
};

} // namespace brindlecast::test
