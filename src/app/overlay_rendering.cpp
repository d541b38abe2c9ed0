#include "app/overlay_rendering.h"

#include "app/overlay.h"
#include "base/win32/gdiplus.h"
#include "base/win32/geometry.h"

namespace brindlecast {

namespace {

constexpr const wchar_t* kFontFamily = L"Segoe UI";
constexpr float kShadowOffset = 2.0F; // pixels, to the right and down
constexpr float kShadowAlpha = 180.0F;
constexpr float kTextAlpha = 255.0F;

// A memory context with a bitmap whose pixels carry alpha; all of them start out transparent.
class AlphaCanvas {
public:
    explicit AlphaCanvas(Size wanted) : size(wanted), context(CreateCompatibleDC(nullptr)) {
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof(info.bmiHeader);
        info.bmiHeader.biWidth = size.width;
        info.bmiHeader.biHeight = -size.height; // rows from top to bottom
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        info.bmiHeader.biCompression = BI_RGB;
        bitmap.Reset(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    }

    [[nodiscard]] bool IsValid() const { return context && bitmap && bits != nullptr; }
    [[nodiscard]] Size Extent() const { return size; }
    [[nodiscard]] int Stride() const { return size.width * 4; }
    [[nodiscard]] BYTE* Bits() const { return static_cast<BYTE*>(bits); }
    [[nodiscard]] HDC Context() const { return context.Get(); }
    [[nodiscard]] HBITMAP Bitmap() const { return bitmap.Get(); }

private:
    Size size;
    UniqueMemoryDc context;
    UniqueBitmap bitmap;
    void* bits = nullptr;
};

// An opacity of 0 to 1 as part of the greatest alpha value, cut to a whole number.
BYTE Alpha(float opacity, float greatest) {
    return static_cast<BYTE>(opacity * greatest);
}

void DrawTextOn(const AlphaCanvas& canvas, const OverlayState& state) {
    // Over the bits and not over the context, because text that goes through GDI leaves alpha as it is.
    Gdiplus::Bitmap target(canvas.Extent().width, canvas.Extent().height, canvas.Stride(),
                           PixelFormat32bppPARGB, canvas.Bits());
    Gdiplus::Graphics graphics(&target);
    graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    graphics.SetTextRenderingHint(Gdiplus::TextRenderingHintAntiAlias);
    const Gdiplus::FontFamily family(kFontFamily);
    const Gdiplus::Font font(&family, state.fontSize, Gdiplus::FontStyleBold, Gdiplus::UnitPixel);
    const Gdiplus::SolidBrush shadow(Gdiplus::Color(Alpha(state.opacity, kShadowAlpha), 0, 0, 0));
    graphics.DrawString(state.text.c_str(), -1, &font,
                        Gdiplus::PointF(state.textX + kShadowOffset, state.textY + kShadowOffset), &shadow);
    const Gdiplus::SolidBrush white(Gdiplus::Color(Alpha(state.opacity, kTextAlpha), 255, 255, 255));
    graphics.DrawString(state.text.c_str(), -1, &font, Gdiplus::PointF(state.textX, state.textY), &white);
}

void ShowOn(HWND window, const Rect& place, const AlphaCanvas& canvas) {
    const SelectGuard selected(canvas.Context(), canvas.Bitmap());
    POINT corner{place.left, place.top};
    SIZE size{canvas.Extent().width, canvas.Extent().height};
    POINT source{0, 0};
    BLENDFUNCTION blend{AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
    UpdateLayeredWindow(window, nullptr, &corner, &size, canvas.Context(), &source, 0, &blend, ULW_ALPHA);
}

} // namespace

void RenderOverlay(const OverlayState& state) {
    const HWND window = state.overlay.Get();
    RECT bounds{};
    if (window == nullptr || state.text.empty() || GetWindowRect(window, &bounds) == FALSE) {
        return;
    }
    const Rect place = FromRect(bounds);
    if (place.Width() <= 0 || place.Height() <= 0) {
        return;
    }
    const AlphaCanvas canvas({place.Width(), place.Height()});
    if (!canvas.IsValid()) {
        return;
    }
    DrawTextOn(canvas, state);
    ShowOn(window, place, canvas);
}

} // namespace brindlecast
