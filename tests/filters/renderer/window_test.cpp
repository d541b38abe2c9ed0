#include "tests/filters/renderer/renderer_bench.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace brindlecast::test {
namespace {

const HostWindow::Message* Find(const HostWindow& host, UINT message) {
    const auto found = std::find_if(host.messages.begin(), host.messages.end(),
                                    [message](const auto& entry) { return entry.message == message; });
    return found == host.messages.end() ? nullptr : &*found;
}

TEST(WindowTest, ExistsWhileItHasAnOwner) {
    PictureKind kind;
    RendererBench bench(kind, 320, 200);
    EXPECT_EQ(GetWindow(bench.host.Handle(), GW_CHILD), nullptr);
    EXPECT_EQ(bench.videoWindow->put_Visible(OATRUE), E_UNEXPECTED);
    EXPECT_EQ(bench.videoWindow->SetWindowPosition(0, 0, 10, 10), E_UNEXPECTED);
    // Another child is there first; the renderer's comes before it.
    const HWND other = CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 5, 5, bench.host.Handle(), nullptr,
                                       nullptr, nullptr);
    bench.AttachWindow();
    const HWND window = bench.RendererWindow();
    ASSERT_NE(window, nullptr);
    EXPECT_NE(window, other);
    EXPECT_EQ(GetParent(window), bench.host.Handle());
    EXPECT_EQ(GetWindowThreadProcessId(window, nullptr), GetCurrentThreadId());
    const LONG style = GetWindowLongW(window, GWL_STYLE);
    EXPECT_NE(style & WS_CHILD, 0);
    EXPECT_EQ(style & WS_CAPTION, 0);
    EXPECT_TRUE(IsWindowVisible(window));
    ASSERT_EQ(bench.videoWindow->put_Visible(OAFALSE), S_OK);
    bench.ShowPaused(MakePicture(kind, kRed));
    Pump(100);
    EXPECT_FALSE(IsWindowVisible(window)) << "it does not show itself";
    ASSERT_EQ(bench.videoWindow->put_Visible(OATRUE), S_OK);
    EXPECT_LE(Distance(bench.WaitForColor(160, 100, kRed), kRed), 2);
    ASSERT_EQ(bench.videoWindow->put_Owner(0), S_OK);
    EXPECT_FALSE(IsWindow(window));
    OAHWND owner = 1;
    ASSERT_EQ(bench.videoWindow->get_Owner(&owner), S_OK);
    EXPECT_EQ(owner, 0);
    DestroyWindow(other);
}

TEST(WindowTest, OwnerMayGoFirst) {
    PictureKind kind;
    RendererBench bench(kind);
    {
        HostWindow brief(100, 100);
        ASSERT_EQ(bench.videoWindow->put_Owner(reinterpret_cast<OAHWND>(brief.Handle())), S_OK);
        bench.ShowPaused(MakePicture(kind, kRed));
    }
    EXPECT_EQ(bench.Push(MakePicture(kind, kBlue), 400'000, 800'000), S_OK);
    ASSERT_TRUE(SUCCEEDED(bench.graph->Run()));
    Pump(200);
    bench.AttachWindow();
    bench.options->Flt_SetBool("cmd_redraw", true);
    EXPECT_LE(Distance(bench.WaitForColor(200, 150, kBlue), kBlue), 2);
}

TEST(WindowTest, InputGoesToTheDrain) {
    PictureKind kind;
    RendererBench bench(kind, 300, 200);
    bench.AttachWindow();
    ASSERT_EQ(bench.videoWindow->SetWindowPosition(50, 30, 200, 100), S_OK);
    const HWND window = bench.RendererWindow();
    PostMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 7));
    Pump(50);
    EXPECT_EQ(Find(bench.host, WM_LBUTTONDOWN), nullptr) << "no drain yet";
    ASSERT_EQ(bench.videoWindow->put_MessageDrain(reinterpret_cast<OAHWND>(bench.host.Handle())), S_OK);
    PostMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 7));
    PostMessageW(window, WM_MOUSEWHEEL, MAKEWPARAM(0, 120), MAKELPARAM(90, 80));
    PostMessageW(window, WM_KEYDOWN, VK_SPACE, 1);
    ASSERT_TRUE(PumpUntil([&] { return Find(bench.host, WM_KEYDOWN) != nullptr; }, 2000));
    const auto* press = Find(bench.host, WM_LBUTTONDOWN);
    ASSERT_NE(press, nullptr);
    EXPECT_EQ(press->lParam, MAKELPARAM(55, 37)) << "in the drain's coordinates";
    const auto* wheel = Find(bench.host, WM_MOUSEWHEEL);
    ASSERT_NE(wheel, nullptr);
    EXPECT_EQ(wheel->lParam, MAKELPARAM(90, 80)) << "screen coordinates stay";
    EXPECT_EQ(Find(bench.host, WM_KEYDOWN)->wParam, static_cast<WPARAM>(VK_SPACE));
    EXPECT_EQ(GetClassLongW(window, GCL_STYLE) & CS_DBLCLKS, 0U) << "every press arrives as one";
}

TEST(WindowTest, PausedPictureFollowsTheWindow) {
    PictureKind kind;
    RendererBench bench(kind, 500, 400);
    bench.AttachWindow();
    bench.Place(200, 200, {0, 44, 200, 156});
    bench.ShowPaused(MakePicture(kind, kGreen));
    EXPECT_LE(Distance(bench.WaitForColor(100, 100, kGreen), kGreen), 2);
    bench.Place(500, 400, {0, 60, 500, 341});
    EXPECT_LE(Distance(bench.WaitForColor(480, 330, kGreen), kGreen), 2);
    EXPECT_EQ(bench.WaitForColor(480, 20, kBlack, 0), kBlack);
    // Without any command of the application: WM_SIZE alone, with the default destination.
    ASSERT_EQ(bench.basicVideo->SetDefaultDestinationPosition(), S_OK);
    ASSERT_EQ(bench.videoWindow->SetWindowPosition(0, 0, 300, 390), S_OK);
    EXPECT_LE(Distance(bench.WaitForColor(290, 380, kGreen), kGreen), 2);
}

TEST(WindowTest, UncoveredPictureIsPaintedAgain) {
    PictureKind kind;
    RendererBench bench(kind, 300, 200);
    bench.AttachWindow();
    bench.ShowPaused(MakePicture(kind, kGreen));
    EXPECT_LE(Distance(bench.WaitForColor(150, 100, kGreen), kGreen), 2);
    const auto smear = [&] {
        const HDC context = GetDC(bench.RendererWindow());
        RECT all{0, 0, 300, 200};
        FillRect(context, &all, static_cast<HBRUSH>(GetStockObject(LTGRAY_BRUSH)));
        ReleaseDC(bench.RendererWindow(), context);
        InvalidateRect(bench.RendererWindow(), nullptr, FALSE);
    };
    smear();
    EXPECT_LE(Distance(bench.WaitForColor(150, 100, kGreen), kGreen), 2) << "paused";
    bench.graph->Stop();
    smear();
    EXPECT_LE(Distance(bench.WaitForColor(150, 100, kGreen), kGreen), 2) << "stopped";
}

TEST(WindowTest, BlackBeforeTheFirstPicture) {
    PictureKind kind;
    RendererBench bench(kind, 300, 200);
    bench.AttachWindow();
    EXPECT_EQ(bench.WaitForColor(150, 100, kBlack, 0), kBlack);
}

TEST(WindowTest, PositionAndStyleAnswers) {
    PictureKind kind;
    RendererBench bench(kind, 300, 200);
    bench.AttachWindow();
    ASSERT_EQ(bench.videoWindow->SetWindowPosition(10, 20, 100, 80), S_OK);
    LONG left = 0;
    LONG top = 0;
    LONG width = 0;
    LONG height = 0;
    ASSERT_EQ(bench.videoWindow->GetWindowPosition(&left, &top, &width, &height), S_OK);
    EXPECT_EQ(left, 10);
    EXPECT_EQ(top, 20);
    EXPECT_EQ(width, 100);
    EXPECT_EQ(height, 80);
    ASSERT_EQ(bench.videoWindow->put_Width(120), S_OK);
    ASSERT_EQ(bench.videoWindow->get_Width(&width), S_OK);
    EXPECT_EQ(width, 120);
    EXPECT_EQ(bench.videoWindow->put_WindowStyle(WS_DISABLED), E_INVALIDARG);
    ASSERT_EQ(bench.videoWindow->put_WindowStyle(WS_OVERLAPPEDWINDOW & ~(WS_MAXIMIZE | WS_MINIMIZE)), S_OK);
    const LONG style = GetWindowLongW(bench.RendererWindow(), GWL_STYLE);
    EXPECT_NE(style & WS_CHILD, 0);
    EXPECT_EQ(style & WS_CAPTION, 0);
    EXPECT_EQ(bench.videoWindow->put_FullScreenMode(OATRUE), E_NOTIMPL);
    LONG value = 0;
    ASSERT_EQ(bench.videoWindow->HideCursor(OATRUE), S_OK);
    ASSERT_EQ(bench.videoWindow->IsCursorHidden(&value), S_OK);
    EXPECT_EQ(value, OATRUE);
}

} // namespace
} // namespace brindlecast::test
