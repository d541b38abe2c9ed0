#include "subtitles/win32/cue_text_drawing.h"

#include "base/win32/geometry.h"
#include "base/win32/unique_handle.h"
#include "subtitles/cue_text_layout.h"

namespace brindlecast {

namespace {

constexpr const wchar_t* kFontFamily = L"Malgun Gothic";
constexpr UINT kMeasureFlags = DT_CALCRECT | DT_WORDBREAK | DT_CENTER;
constexpr UINT kDrawFlags = DT_NOCLIP | DT_WORDBREAK | DT_CENTER;
static_assert(kMeasureFlags == 1041 && kDrawFlags == 273);
constexpr COLORREF kShadowColor = RGB(0x20, 0x20, 0x20);
constexpr COLORREF kOutlineColor = RGB(0, 0, 0);
constexpr COLORREF kTextColor = RGB(0xFF, 0xFF, 0xFF);

UniqueBitmap MakeDrawing(HDC context, Size size, void** bits) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = size.width;
    info.bmiHeader.biHeight = -size.height; // rows from top to bottom
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    return UniqueBitmap(CreateDIBSection(context, &info, DIB_RGB_COLORS, bits, nullptr, 0));
}

UniqueFont MakeFont(int height) {
    return UniqueFont(CreateFontW(height, 0, 0, 0, FW_BOLD, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                                  OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY,
                                  DEFAULT_PITCH | FF_SWISS, kFontFamily));
}

// One pass of the text, moved.
void DrawPass(HDC context, const std::wstring& text, const Rect& place, int right, int down, COLORREF color) {
    RECT moved = ToRect(place);
    OffsetRect(&moved, right, down);
    SetTextColor(context, color);
    DrawTextW(context, text.c_str(), -1, &moved, kDrawFlags);
}

// The outline takes away the shadow under it, and is not seen itself: black is no colour here.
void DrawPasses(HDC context, const std::wstring& text, Size picture) {
    const CueTextLayout layout = LayOutCueText(picture);
    const UniqueFont font = MakeFont(layout.fontHeight);
    const SelectGuard selected(context, font.Get());
    SetBkMode(context, TRANSPARENT);
    SetTextColor(context, kTextColor);
    RECT measured = ToRect(layout.measured);
    DrawTextW(context, text.c_str(), -1, &measured, kMeasureFlags);
    const Rect place = PlaceCueText(picture, static_cast<int>(measured.bottom - measured.top));
    DrawPass(context, text, place, layout.shadowOffset, layout.shadowOffset, kShadowColor);
    for (int right = -layout.outlineRadius; right <= layout.outlineRadius; ++right) {
        for (int down = -layout.outlineRadius; down <= layout.outlineRadius; ++down) {
            if (right != 0 || down != 0) {
                DrawPass(context, text, place, right, down, kOutlineColor);
            }
        }
    }
    DrawPass(context, text, place, 0, 0, kTextColor);
}

} // namespace

void DrawCueText(const std::wstring& text, const SubPicDesc& picture, Rect& bbox) {
    const UniqueMemoryDc context(CreateCompatibleDC(nullptr));
    if (!context) {
        return;
    }
    const Size size{picture.width, picture.height};
    void* bits = nullptr;
    const UniqueBitmap drawing = MakeDrawing(context.Get(), size, &bits);
    if (!drawing || bits == nullptr) {
        return;
    }
    const SelectGuard selected(context.Get(), drawing.Get());
    DrawPasses(context.Get(), text, size);
    GdiFlush(); // before the bits are read
    CopyWhatIsNotBlack(static_cast<const std::uint8_t*>(bits), picture, bbox);
}

} // namespace brindlecast
