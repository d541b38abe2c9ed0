#include "app/overlay.h"

#include "base/win32/gdiplus.h"
#include "base/win32/geometry.h"
#include "tests/graph/import_swap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace brindlecast::testing {
namespace {

constexpr const wchar_t* kOwnerClass = L"OverlayTestOwner";
constexpr Rect kMainPlace{200, 150, 840, 550};

// What the window was given to show. The pixels are B, G, R, alpha, the colours multiplied with alpha.
struct LayerUpdate {
    HWND window = nullptr;
    Point corner;
    Size size;
    Point source;
    BLENDFUNCTION blend{};
    DWORD flags = 0;
    std::vector<std::uint32_t> pixels;
};

std::vector<LayerUpdate> updates;
void* originalUpdate = nullptr;

BOOL WINAPI RecordUpdate(HWND window, HDC screen, POINT* corner, SIZE* size, HDC source, POINT* from,
                         COLORREF key, BLENDFUNCTION* blend, DWORD flags) {
    LayerUpdate update{window, {}, {}, {}, *blend, flags, {}};
    update.corner = {static_cast<int>(corner->x), static_cast<int>(corner->y)};
    update.size = {static_cast<int>(size->cx), static_cast<int>(size->cy)};
    update.source = {static_cast<int>(from->x), static_cast<int>(from->y)};
    DIBSECTION section{};
    if (GetObjectW(GetCurrentObject(source, OBJ_BITMAP), sizeof(section), &section) == sizeof(section)) {
        const auto* bits = static_cast<const std::uint32_t*>(section.dsBm.bmBits);
        update.pixels.assign(bits, bits + static_cast<std::ptrdiff_t>(section.dsBm.bmWidth) *
                                              section.dsBm.bmHeight);
    }
    updates.push_back(std::move(update));
    return reinterpret_cast<decltype(&UpdateLayeredWindow)>(originalUpdate)(window, screen, corner, size,
                                                                            source, from, key, blend, flags);
}

std::uint32_t AlphaOf(std::uint32_t pixel) {
    return pixel >> 24;
}

// The greatest share of white in a pixel, 255 being all of it.
std::uint32_t GreatestWhite(const LayerUpdate& update) {
    std::uint32_t greatest = 0;
    for (const std::uint32_t pixel : update.pixels) {
        greatest = std::max(greatest, pixel & 0xFF);
    }
    return greatest;
}

// The greatest alpha of a pixel that has no white in it and is the shadow's alone.
std::uint32_t GreatestShadow(const LayerUpdate& update) {
    std::uint32_t greatest = 0;
    for (const std::uint32_t pixel : update.pixels) {
        if ((pixel & 0xFFFFFF) == 0) {
            greatest = std::max(greatest, AlphaOf(pixel));
        }
    }
    return greatest;
}

// The message as it must look, drawn here.
std::vector<std::uint32_t> Drawn(const std::wstring& text, Size size, BYTE textAlpha, BYTE shadowAlpha) {
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(size.width) *
                                      static_cast<std::size_t>(size.height));
    Gdiplus::Bitmap target(size.width, size.height, size.width * 4, PixelFormat32bppPARGB,
                           reinterpret_cast<BYTE*>(pixels.data()));
    Gdiplus::Graphics graphics(&target);
    graphics.SetSmoothingMode(static_cast<Gdiplus::SmoothingMode>(4));
    graphics.SetTextRenderingHint(static_cast<Gdiplus::TextRenderingHint>(4));
    const Gdiplus::FontFamily family(L"Segoe UI");
    const Gdiplus::Font font(&family, 32.0F, Gdiplus::FontStyleBold, Gdiplus::UnitPixel);
    const Gdiplus::SolidBrush black(Gdiplus::Color(shadowAlpha, 0, 0, 0));
    const Gdiplus::SolidBrush white(Gdiplus::Color(textAlpha, 255, 255, 255));
    graphics.DrawString(text.c_str(), -1, &font, Gdiplus::PointF(17.0F, 12.0F), &black);
    graphics.DrawString(text.c_str(), -1, &font, Gdiplus::PointF(15.0F, 10.0F), &white);
    return pixels;
}

void PumpMessages() {
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
        DispatchMessageW(&message);
    }
}

HWND FindOverlay() {
    return FindWindowW(L"BrindlecastOverlay", nullptr);
}

Rect PlaceOf(HWND window) {
    RECT bounds{};
    GetWindowRect(window, &bounds);
    return FromRect(bounds);
}

// A main window with a video window in it, as the overlay finds them in the program.
class OverlayTest : public ::testing::Test {
protected:
    void SetUp() override {
        WNDCLASSW description{};
        description.lpfnWndProc = DefWindowProcW;
        description.hInstance = instance;
        description.lpszClassName = kOwnerClass;
        RegisterClassW(&description);
        mainWindow.Reset(CreateWindowExW(0, kOwnerClass, L"", WS_POPUP | WS_VISIBLE, kMainPlace.left,
                                         kMainPlace.top, kMainPlace.Width(), kMainPlace.Height(), nullptr,
                                         nullptr, instance, nullptr));
        ASSERT_TRUE(static_cast<bool>(mainWindow));
        video = CreateWindowExW(0, kOwnerClass, L"", WS_CHILD | WS_VISIBLE, 3, 35, 634, 302, mainWindow.Get(),
                                nullptr, instance, nullptr);
        ASSERT_NE(video, nullptr);
        originalUpdate = layerUpdates.Original();
        ASSERT_NE(originalUpdate, nullptr);
        updates.clear();
        PumpMessages();
    }
    void TearDown() override {
        ReleaseOverlay();
        EXPECT_EQ(FindOverlay(), nullptr);
        UnregisterClassW(L"BrindlecastOverlay", instance);
        PumpMessages();
    }

    // Lets the message on show be that much older.
    static void Age(DWORD milliseconds) { CurrentOverlay()->startTick -= milliseconds; }
    void MoveMainWindow(Point corner) const {
        SetWindowPos(mainWindow.Get(), nullptr, corner.x, corner.y, 0, 0,
                     SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    }

    HINSTANCE instance = GetModuleHandleW(nullptr);
    UniqueHwnd mainWindow;
    HWND video = nullptr;
    GdiplusSession ownGdiplus; // for what the test itself draws
    ImportSwap layerUpdates{"user32.dll", "UpdateLayeredWindow", reinterpret_cast<void*>(RecordUpdate)};
};

TEST_F(OverlayTest, TheRecordBeginsWithNothingOnShow) {
    EXPECT_EQ(CurrentOverlay(), nullptr);
    CreateOverlay(video, instance);
    const OverlayState* state = CurrentOverlay();
    ASSERT_NE(state, nullptr);
    EXPECT_EQ(state->owner, video);
    EXPECT_EQ(state->overlay.Get(), nullptr);
    EXPECT_EQ(state->text, L"");
    EXPECT_FALSE(state->active);
    EXPECT_EQ(state->startTick, 0U);
    EXPECT_EQ(state->holdMs, 2000U);
    EXPECT_EQ(state->fadeMs, 300U);
    EXPECT_EQ(state->opacity, 1.0F);
    EXPECT_EQ(state->fontSize, 32.0F);
    EXPECT_EQ(state->textX, 15.0F);
    EXPECT_EQ(state->textY, 10.0F);
    EXPECT_FALSE(IsOverlayActive());
    EXPECT_EQ(FindOverlay(), nullptr) << "the window waits for the first message";
    ReleaseOverlay();
    EXPECT_EQ(CurrentOverlay(), nullptr);
}

TEST_F(OverlayTest, WithoutARecordNothingHappens) {
    ShowOverlayMessage(L"볼륨 50%", 1000);
    TickOverlay();
    ReleaseOverlay();
    EXPECT_FALSE(IsOverlayActive());
    EXPECT_EQ(CurrentOverlay(), nullptr);
    EXPECT_EQ(FindOverlay(), nullptr);
    EXPECT_TRUE(updates.empty());
}

TEST_F(OverlayTest, TheWindowIsALayerOverTheOwnerThatTakesNeitherClicksNorActivation) {
    CreateOverlay(video, instance);
    const DWORD before = GetTickCount();
    ShowOverlayMessage(L"볼륨 50%", 1000);
    const HWND overlay = CurrentOverlay()->overlay.Get();
    ASSERT_NE(overlay, nullptr);
    EXPECT_EQ(FindOverlay(), overlay);
    EXPECT_EQ(GetWindowLongW(overlay, GWL_EXSTYLE), 0x080800A8);
    EXPECT_EQ(GetWindowLongW(overlay, GWL_STYLE) & ~(WS_VISIBLE | WS_CLIPSIBLINGS),
              static_cast<LONG>(WS_POPUP));
    EXPECT_NE(IsWindowVisible(overlay), FALSE);
    EXPECT_EQ(GetParent(overlay), nullptr);
    EXPECT_EQ(GetWindow(overlay, GW_OWNER), nullptr);
    EXPECT_EQ(PlaceOf(overlay), (Rect{203, 185, 837, 487}));
    EXPECT_TRUE(IsOverlayActive());
    EXPECT_EQ(CurrentOverlay()->text, L"볼륨 50%");
    EXPECT_EQ(CurrentOverlay()->holdMs, 1000U);
    EXPECT_LE(CurrentOverlay()->startTick - before, 5000U);

    WNDCLASSW description{};
    ASSERT_NE(GetClassInfoW(instance, L"BrindlecastOverlay", &description), FALSE);
    EXPECT_EQ(description.style, 3U);
    EXPECT_EQ(description.lpfnWndProc, &DefWindowProcW);
    EXPECT_EQ(description.hCursor, LoadCursorW(nullptr, IDC_ARROW));
    EXPECT_EQ(description.hbrBackground, nullptr);
}

TEST_F(OverlayTest, AMessageIsWhiteOnItsShadowInTheUpperLeftCorner) {
    CreateOverlay(video, instance);
    ShowOverlayMessage(L"볼륨 50%", 1000);
    ASSERT_EQ(updates.size(), 1U);
    const LayerUpdate& update = updates.front();
    EXPECT_EQ(update.window, CurrentOverlay()->overlay.Get());
    EXPECT_EQ(update.corner, (Point{203, 185}));
    EXPECT_EQ(update.size, (Size{634, 302}));
    EXPECT_EQ(update.source, (Point{0, 0}));
    EXPECT_EQ(update.blend.BlendOp, AC_SRC_OVER);
    EXPECT_EQ(update.blend.SourceConstantAlpha, 255);
    EXPECT_EQ(update.blend.AlphaFormat, AC_SRC_ALPHA);
    EXPECT_EQ(update.flags, static_cast<DWORD>(ULW_ALPHA));
    EXPECT_EQ(GreatestWhite(update), 255U);
    EXPECT_EQ(GreatestShadow(update), 180U);
    EXPECT_EQ(update.pixels, Drawn(L"볼륨 50%", {634, 302}, 255, 180));
    EXPECT_NE(update.pixels, Drawn(L"볼륨 55%", {634, 302}, 255, 180)) << "the comparison sees nothing";
    EXPECT_EQ(AlphaOf(update.pixels.back()), 0U);
}

TEST_F(OverlayTest, ALongMessageStaysOnOneLine) {
    CreateOverlay(video, instance);
    ShowOverlayMessage(std::wstring(100, L'W') + L" " + std::wstring(100, L'W'), 1000);
    ASSERT_EQ(updates.size(), 1U);
    const std::vector<std::uint32_t>& pixels = updates.front().pixels;
    EXPECT_NE(std::count_if(pixels.begin(), pixels.begin() + 60 * 634, AlphaOf), 0);
    EXPECT_EQ(std::count_if(pixels.begin() + 60 * 634, pixels.end(), AlphaOf), 0);
}

TEST_F(OverlayTest, DuringTheHoldNothingIsDrawnAndTheOverlayStaysWhereItWas) {
    CreateOverlay(video, instance);
    ShowOverlayMessage(L"음소거", 60'000);
    MoveMainWindow({300, 250});
    Age(59'000);
    TickOverlay();
    EXPECT_EQ(updates.size(), 1U);
    EXPECT_EQ(PlaceOf(CurrentOverlay()->overlay.Get()), (Rect{203, 185, 837, 487}));
    EXPECT_TRUE(IsOverlayActive());
}

TEST_F(OverlayTest, WhileFadingItFollowsTheOwnerAndGrowsFainter) {
    CreateOverlay(video, instance);
    // A slow fade, so that a busy machine does not move it on.
    CurrentOverlay()->fadeMs = 3'000'000;
    ShowOverlayMessage(L"음소거", 1000);
    MoveMainWindow({300, 250});
    Age(1000 + 1'500'000);
    TickOverlay();
    EXPECT_NEAR(CurrentOverlay()->opacity, 0.5F, 0.005F);
    ASSERT_EQ(updates.size(), 2U);
    EXPECT_EQ(GreatestWhite(updates.back()), 127U);
    EXPECT_EQ(GreatestShadow(updates.back()), 89U);
    EXPECT_EQ(updates.back().pixels, Drawn(L"음소거", {634, 302}, 127, 89));
    EXPECT_EQ(PlaceOf(CurrentOverlay()->overlay.Get()), (Rect{303, 285, 937, 587}));
    TickOverlay();
    EXPECT_EQ(updates.size(), 2U) << "too small a change to draw";
    EXPECT_TRUE(IsOverlayActive());
}

TEST_F(OverlayTest, AtTheEndTheWindowIsHiddenAndKept) {
    CreateOverlay(video, instance);
    ShowOverlayMessage(L"음소거", 1000);
    const HWND overlay = CurrentOverlay()->overlay.Get();
    Age(1300);
    TickOverlay();
    EXPECT_FALSE(IsOverlayActive());
    EXPECT_EQ(CurrentOverlay()->text, L"");
    EXPECT_EQ(IsWindowVisible(overlay), FALSE);
    EXPECT_EQ(updates.size(), 1U);
    ShowOverlayMessage(L"음소거 해제", 1000);
    EXPECT_EQ(CurrentOverlay()->overlay.Get(), overlay);
    EXPECT_NE(IsWindowVisible(overlay), FALSE);
    EXPECT_TRUE(IsOverlayActive());
}

TEST_F(OverlayTest, ASecondMessageInTheFadeBeginsAnewAndLiesOverTheOwner) {
    CreateOverlay(video, instance);
    CurrentOverlay()->fadeMs = 3'000'000;
    ShowOverlayMessage(L"음소거", 1000);
    Age(1000 + 1'500'000);
    TickOverlay();
    ASSERT_LT(CurrentOverlay()->opacity, 0.6F);
    MoveMainWindow({300, 250});
    ShowOverlayMessage(L"음소거 해제", 60'000);
    EXPECT_EQ(CurrentOverlay()->opacity, 1.0F);
    EXPECT_EQ(CurrentOverlay()->holdMs, 60'000U);
    EXPECT_EQ(PlaceOf(CurrentOverlay()->overlay.Get()), (Rect{303, 285, 937, 587}));
    ASSERT_EQ(updates.size(), 3U);
    EXPECT_EQ(updates.back().pixels, Drawn(L"음소거 해제", {634, 302}, 255, 180));
    Age(50'000);
    TickOverlay();
    EXPECT_EQ(CurrentOverlay()->opacity, 1.0F) << "the whole hold runs again";
    EXPECT_EQ(updates.size(), 3U);
}

TEST_F(OverlayTest, AnEmptyMessageIsOnShowButDrawsNothing) {
    CreateOverlay(video, instance);
    ShowOverlayMessage(L"", 1000);
    EXPECT_TRUE(IsOverlayActive());
    EXPECT_NE(IsWindowVisible(CurrentOverlay()->overlay.Get()), FALSE);
    ShowOverlayMessage(L"음소거", 1000);
    EXPECT_EQ(updates.size(), 1U);
    ShowOverlayMessage(L"", 1000);
    Age(1150);
    TickOverlay();
    EXPECT_LT(CurrentOverlay()->opacity, 1.0F);
    EXPECT_EQ(updates.size(), 1U);
    Age(150);
    TickOverlay();
    EXPECT_FALSE(IsOverlayActive());
}

TEST_F(OverlayTest, AnOwnerWithoutAnAreaGetsNothingDrawn) {
    CreateOverlay(video, instance);
    MoveWindow(video, 3, 35, 634, 0, FALSE);
    ShowOverlayMessage(L"음소거", 1000);
    EXPECT_TRUE(IsOverlayActive());
    EXPECT_TRUE(updates.empty());
}

TEST_F(OverlayTest, WithoutAnOwnerThereIsNoWindow) {
    CreateOverlay(nullptr, instance);
    ShowOverlayMessage(L"음소거", 1000);
    EXPECT_TRUE(IsOverlayActive());
    EXPECT_EQ(CurrentOverlay()->overlay.Get(), nullptr);
    EXPECT_EQ(FindOverlay(), nullptr);
    Age(1300);
    TickOverlay();
    EXPECT_FALSE(IsOverlayActive());
}

TEST_F(OverlayTest, ClicksGoThroughToTheVideo) {
    CreateOverlay(video, instance);
    ShowOverlayMessage(L"████████", 60'000);
    PumpMessages();
    const POINT onText{260, 215};
    EXPECT_EQ(WindowFromPoint(onText), video);
    EXPECT_EQ(WindowFromPoint({700, 400}), video);
    // The layer itself does lie above the video there.
    HWND higher = GetWindow(mainWindow.Get(), GW_HWNDPREV);
    while (higher != nullptr && higher != CurrentOverlay()->overlay.Get()) {
        higher = GetWindow(higher, GW_HWNDPREV);
    }
    EXPECT_NE(higher, nullptr);
}

TEST_F(OverlayTest, ForegroundAndFocusStayWhereTheyWere) {
    CreateOverlay(video, instance);
    SetForegroundWindow(mainWindow.Get());
    SetFocus(video);
    ShowOverlayMessage(L"음소거", 1000);
    PumpMessages();
    EXPECT_EQ(GetForegroundWindow(), mainWindow.Get());
    EXPECT_EQ(GetFocus(), video);
}

// A window that takes the keyboard as soon as the overlay is placed, as a system may have it.
HWND thief = nullptr;
void* originalPlacement = nullptr;

BOOL WINAPI PlaceAndSteal(HWND window, HWND after, int x, int y, int width, int height, UINT flags) {
    const BOOL placed = reinterpret_cast<decltype(&SetWindowPos)>(originalPlacement)(window, after, x, y,
                                                                                     width, height, flags);
    if (thief != nullptr) {
        SetForegroundWindow(thief);
        SetFocus(thief);
    }
    return placed;
}

TEST_F(OverlayTest, AKeyboardThatWentAwayIsPutBack) {
    CreateOverlay(video, instance);
    const UniqueHwnd other(CreateWindowExW(0, kOwnerClass, L"", WS_POPUP | WS_VISIBLE, 900, 600, 50, 50,
                                           nullptr, nullptr, instance, nullptr));
    SetForegroundWindow(mainWindow.Get());
    SetFocus(video);
    const ImportSwap placement("user32.dll", "SetWindowPos", reinterpret_cast<void*>(PlaceAndSteal));
    originalPlacement = placement.Original();
    thief = other.Get();
    ShowOverlayMessage(L"음소거", 1000);
    EXPECT_EQ(GetForegroundWindow(), mainWindow.Get());
    EXPECT_EQ(GetFocus(), video);
    // The test must be able to see a theft.
    SetWindowPos(mainWindow.Get(), nullptr, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER);
    EXPECT_EQ(GetForegroundWindow(), other.Get());
    thief = nullptr;
}

Gdiplus::Status WINAPI FailToStart(ULONG_PTR*, const Gdiplus::GdiplusStartupInput*,
                                   Gdiplus::GdiplusStartupOutput*) {
    return Gdiplus::GenericError;
}

TEST_F(OverlayTest, WithoutGdiplusMessagesDoNotAppear) {
    {
        const ImportSwap failing("gdiplus.dll", "GdiplusStartup", reinterpret_cast<void*>(FailToStart));
        ASSERT_NE(failing.Original(), nullptr);
        CreateOverlay(video, instance);
    }
    WNDCLASSW description{};
    EXPECT_EQ(GetClassInfoW(instance, L"BrindlecastOverlay", &description), FALSE);
    ShowOverlayMessage(L"음소거", 1000);
    EXPECT_TRUE(IsOverlayActive());
    EXPECT_EQ(CurrentOverlay()->overlay.Get(), nullptr);
    EXPECT_TRUE(updates.empty());
    Age(1300);
    TickOverlay();
    EXPECT_FALSE(IsOverlayActive());
}

// Starts and shut-downs of GDI+, in the order of the calls, and whether a window was still there.
std::vector<std::string> gdiplusCalls;
void* originalStart = nullptr;
void* originalShutdown = nullptr;

Gdiplus::Status WINAPI RecordStart(ULONG_PTR* token, const Gdiplus::GdiplusStartupInput* input,
                                   Gdiplus::GdiplusStartupOutput* output) {
    gdiplusCalls.emplace_back("start");
    return reinterpret_cast<decltype(&Gdiplus::GdiplusStartup)>(originalStart)(token, input, output);
}

void WINAPI RecordShutdown(ULONG_PTR token) {
    gdiplusCalls.emplace_back(FindOverlay() != nullptr ? "shut down before the window" : "shut down");
    reinterpret_cast<decltype(&Gdiplus::GdiplusShutdown)>(originalShutdown)(token);
}

TEST_F(OverlayTest, GdiplusIsStartedForTheRecordAndShutDownAfterTheWindow) {
    const ImportSwap starts("gdiplus.dll", "GdiplusStartup", reinterpret_cast<void*>(RecordStart));
    const ImportSwap shutdowns("gdiplus.dll", "GdiplusShutdown", reinterpret_cast<void*>(RecordShutdown));
    originalStart = starts.Original();
    originalShutdown = shutdowns.Original();
    gdiplusCalls.clear();
    for (int round = 0; round < 2; ++round) {
        CreateOverlay(video, instance);
        ShowOverlayMessage(L"음소거", 1000);
        ReleaseOverlay();
    }
    EXPECT_EQ(gdiplusCalls, (std::vector<std::string>{"start", "shut down", "start", "shut down"}));
}

} // namespace
} // namespace brindlecast::testing
