#include "tests/e2e/message_picture.h"

#include "base/win32/gdiplus.h"
#include "tests/e2e/waits.h"

#include <cstdlib>
#include <stdexcept>

namespace brindlecast::testing {

namespace {

constexpr int kStripHeight = 64;

// Of 255: what the compositor may round away.
constexpr int kTolerance = 2;

void StartGdiplusOnce() {
    static const GdiplusSession session;
    if (!session) {
        throw std::runtime_error("GDI+ did not start");
    }
}

bool IsNear(int seen, int expected) {
    return std::abs(seen - expected) <= kTolerance;
}

Photograph Black(Size size) {
    const auto area = static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height);
    return {size.width, size.height, std::vector<std::uint8_t>(area * 4)};
}

} // namespace

Rect MessageStrip(const Player& player) {
    const Rect video = ScreenRectOf(player.VideoWindow());
    return {video.left, video.top, video.right, video.top + kStripHeight};
}

MessagePicture::MessagePicture(const std::wstring& text, Size strip)
    : size(strip), pixels(Black(strip).pixels) {
    StartGdiplusOnce();
    Gdiplus::Bitmap target(size.width, size.height, size.width * 4, PixelFormat32bppPARGB, pixels.data());
    Gdiplus::Graphics graphics(&target);
    graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    graphics.SetTextRenderingHint(Gdiplus::TextRenderingHintAntiAlias);
    const Gdiplus::FontFamily family(L"Segoe UI");
    const Gdiplus::Font font(&family, 32.0F, Gdiplus::FontStyleBold, Gdiplus::UnitPixel);
    const Gdiplus::SolidBrush shadow(Gdiplus::Color(180, 0, 0, 0));
    const Gdiplus::SolidBrush white(Gdiplus::Color(255, 255, 255, 255));
    graphics.DrawString(text.c_str(), -1, &font, Gdiplus::PointF(17.0F, 12.0F), &shadow);
    graphics.DrawString(text.c_str(), -1, &font, Gdiplus::PointF(15.0F, 10.0F), &white);
}

bool MessagePicture::IsOn(const Photograph& photograph) const {
    return IsOver(Black(size), photograph);
}

bool MessagePicture::IsOver(const Photograph& under, const Photograph& photograph) const {
    if (under.pixels.size() != pixels.size() || photograph.pixels.size() != pixels.size()) {
        return false;
    }
    for (std::size_t at = 0; at < pixels.size(); at += 4) {
        const int rest = 255 - pixels[at + 3];
        for (std::size_t channel = at; channel < at + 3; ++channel) {
            const int expected = pixels[channel] + under.pixels[channel] * rest / 255;
            if (!IsNear(photograph.pixels[channel], expected)) {
                return false;
            }
        }
    }
    return true;
}

bool WaitForMessage(const Player& player, const std::wstring& text) {
    return WaitUntil(limits::kReaction, "a message", [&] {
        // Measured each time: what causes the message may change the window.
        const Rect strip = MessageStrip(player);
        return MessagePicture(text, {strip.Width(), strip.Height()}).IsOn(PhotographScreen(strip));
    });
}

HWND VisibleMessageWindow(const Player& player) {
    return player.OwnProcess().FindVisibleWindow(L"BrindlecastOverlay");
}

} // namespace brindlecast::testing
