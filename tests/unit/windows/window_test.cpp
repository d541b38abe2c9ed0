#include "ui/window.h"

#include "base/trace.h"
#include "base/win32/geometry.h"
#include "base/win32/unique_handle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace brindlecast {
namespace {

constexpr const wchar_t* kClassName = L"WindowTestClass";
constexpr const wchar_t* kTitle = L"창 시험";

HINSTANCE Instance() {
    return GetModuleHandleW(nullptr);
}

// Keeps which messages come and lets a test answer them.
class TestWindow final : public Window {
public:
    static bool RegisterClassOf(const wchar_t* name, UINT style = 0) {
        return Register(Instance(), {name, style});
    }
    static bool RegisterWithIcons(const wchar_t* name, HICON icon, HICON smallIcon) {
        return Register(Instance(), {name, CS_DBLCLKS, icon, smallIcon});
    }
    // A top-level window that the system asks for its least size before it is there.
    bool Create(const wchar_t* name = kClassName) {
        return CreateHandle(Instance(), {name, 0},
                            {kTitle, WS_POPUP | WS_THICKFRAME, WS_EX_TOOLWINDOW, 120, 90, 300, 200, nullptr});
    }

    std::vector<UINT> seen;
    std::function<LRESULT(UINT message, WPARAM wParam, LPARAM lParam)> answer; // empty: the default

protected:
    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
        seen.push_back(message);
        return answer ? answer(message, wParam, lParam) : Default(message, wParam, lParam);
    }
};

class WindowTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(TestWindow::RegisterClassOf(kClassName)); }
    void TearDown() override {
        EXPECT_EQ(FindWindowW(kClassName, nullptr), nullptr) << "a window was left behind";
    }
    // Throws at that message, and answers all others by default.
    template <class Thrown>
    static std::function<LRESULT(UINT, WPARAM, LPARAM)> ThrowAt(UINT bad, const Thrown& thrown) {
        return [=](UINT message, WPARAM, LPARAM) -> LRESULT {
            if (message == bad) {
                throw Thrown(thrown);
            }
            return message == WM_NCCREATE ? TRUE : 0;
        };
    }
    static LONG_PTR UserDataOf(HWND window) { return GetWindowLongPtrW(window, GWLP_USERDATA); }
};

// Lines that were traced while the object lives.
class TracedLines {
public:
    TracedLines() {
        SetTraceSink([this](std::wstring_view line) { lines.emplace_back(line); });
    }
    TracedLines(const TracedLines&) = delete;
    TracedLines& operator=(const TracedLines&) = delete;
    ~TracedLines() { SetTraceSink({}); }

    std::vector<std::wstring> lines;
};

TEST_F(WindowTest, ItIsMadeAsAskedFor) {
    TestWindow window;
    EXPECT_EQ(window.Handle(), nullptr);
    ASSERT_TRUE(window.Create());
    RECT place{};
    GetWindowRect(window.Handle(), &place);
    EXPECT_EQ(FromRect(place), (Rect{120, 90, 420, 290}));
    wchar_t title[16] = {};
    GetWindowTextW(window.Handle(), title, 16);
    EXPECT_STREQ(title, kTitle);
    EXPECT_NE(GetWindowLongPtrW(window.Handle(), GWL_EXSTYLE) & WS_EX_TOOLWINDOW, 0);
}

TEST_F(WindowTest, ItsClassHasTheArrowCursorAndNoBackground) {
    const HICON icon = LoadIconW(nullptr, IDI_INFORMATION);
    const HICON smallIcon = LoadIconW(nullptr, IDI_WARNING);
    ASSERT_TRUE(TestWindow::RegisterWithIcons(L"WindowTestIconClass", icon, smallIcon));
    WNDCLASSEXW known{};
    known.cbSize = sizeof(known);
    ASSERT_NE(GetClassInfoExW(Instance(), L"WindowTestIconClass", &known), FALSE);
    EXPECT_EQ(known.style, static_cast<UINT>(CS_DBLCLKS));
    EXPECT_EQ(known.hIcon, icon);
    EXPECT_EQ(known.hIconSm, smallIcon);
    EXPECT_EQ(known.hCursor, LoadCursorW(nullptr, IDC_ARROW));
    EXPECT_EQ(known.hbrBackground, nullptr);
}

TEST_F(WindowTest, AnExceptionStaysInTheWindowAndAnswersZero) {
    TestWindow window;
    ASSERT_TRUE(window.Create());
    const TracedLines traced;
    window.answer = ThrowAt(WM_USER + 7, std::runtime_error("broken"));
    EXPECT_EQ(SendMessageW(window.Handle(), WM_USER + 7, 0, 0), 0);
    window.answer = ThrowAt(WM_USER + 8, 42);
    EXPECT_EQ(SendMessageW(window.Handle(), WM_USER + 8, 0, 0), 0);
    EXPECT_EQ(traced.lines,
              (std::vector<std::wstring>{L"[Brindlecast] Exception in a window procedure (message=1031)\n",
                                         L"[Brindlecast] Exception in a window procedure (message=1032)\n"}));
    window.answer = [](UINT, WPARAM wParam, LPARAM lParam) {
        return static_cast<LRESULT>(wParam) + lParam;
    };
    EXPECT_EQ(SendMessageW(window.Handle(), WM_USER + 7, 30, 12), 42) << "the window must live on";
}

TEST_F(WindowTest, AnExceptionInItsCreationLeavesNoWindow) {
    for (const UINT message : {WM_NCCREATE, WM_CREATE}) {
        TestWindow window;
        window.answer = ThrowAt(message, std::bad_alloc());
        EXPECT_FALSE(window.Create()) << message;
        EXPECT_EQ(window.Handle(), nullptr) << message;
        EXPECT_EQ(FindWindowW(kClassName, nullptr), nullptr) << message;
        window.answer = nullptr;
        EXPECT_TRUE(window.Create()) << "the object can be used again";
    }
}

TEST_F(WindowTest, AnExceptionAtItsEndDoesNotKeepTheWindow) {
    TestWindow window;
    ASSERT_TRUE(window.Create());
    window.answer = ThrowAt(WM_DESTROY, 1);
    EXPECT_NE(DestroyWindow(window.Handle()), FALSE);
    EXPECT_EQ(window.Handle(), nullptr);
}

TEST_F(WindowTest, TheObjectHearsFromItsCreationToItsDestructionOnly) {
    TestWindow window;
    HWND during = nullptr;
    window.answer = [&](UINT message, WPARAM, LPARAM) -> LRESULT {
        if (message == WM_NCCREATE) {
            during = window.Handle();
            return TRUE;
        }
        return 0;
    };
    ASSERT_TRUE(window.Create());
    ASSERT_FALSE(window.seen.empty());
    EXPECT_EQ(window.seen.front(), static_cast<UINT>(WM_NCCREATE));
    EXPECT_EQ(during, window.Handle()) << "the handle is known from the first message on";
    DestroyWindow(window.Handle());
    EXPECT_EQ(std::ranges::count(window.seen, static_cast<UINT>(WM_DESTROY)), 1);
    EXPECT_EQ(std::ranges::count(window.seen, static_cast<UINT>(WM_NCDESTROY)), 0);
    EXPECT_EQ(window.Handle(), nullptr);
}

// The window procedure as the class has it, for messages that the system would send by itself.
WNDPROC ProcedureOf(const wchar_t* name) {
    WNDCLASSEXW known{};
    known.cbSize = sizeof(known);
    return GetClassInfoExW(Instance(), name, &known) != FALSE ? known.lpfnWndProc : nullptr;
}

TEST_F(WindowTest, BeforeThereIsAnObjectTheDefaultProcedureAnswers) {
    const UniqueHwnd plain(CreateWindowExW(0, L"STATIC", L"plain", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr,
                                           Instance(), nullptr));
    ASSERT_EQ(UserDataOf(plain.Get()), 0);
    const WNDPROC procedure = ProcedureOf(kClassName);
    ASSERT_NE(procedure, nullptr);
    EXPECT_EQ(CallWindowProcW(procedure, plain.Get(), WM_GETTEXTLENGTH, 0, 0), 5);
    EXPECT_EQ(CallWindowProcW(procedure, plain.Get(), WM_USER + 7, 1, 2), 0);
}

WNDPROC shadowedProcedure = nullptr;
LRESULT answerAfterTheEnd = 0;

// Sends the window one message more when the object has let go of it.
LRESULT CALLBACK SpeakAfterTheEnd(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const LRESULT answer = CallWindowProcW(shadowedProcedure, window, message, wParam, lParam);
    if (message == WM_NCDESTROY) {
        answerAfterTheEnd = CallWindowProcW(shadowedProcedure, window, WM_USER + 7, 0, 0);
    }
    return answer;
}

TEST_F(WindowTest, AfterTheEndTheDefaultProcedureAnswers) {
    TestWindow window;
    ASSERT_TRUE(window.Create());
    window.answer = [](UINT message, WPARAM, LPARAM) -> LRESULT {
        return message == WM_USER + 7 ? 42 : 0;
    };
    EXPECT_EQ(SendMessageW(window.Handle(), WM_USER + 7, 0, 0), 42);
    window.seen.clear();
    answerAfterTheEnd = -1;
    shadowedProcedure = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(window.Handle(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&SpeakAfterTheEnd)));
    DestroyWindow(window.Handle());
    EXPECT_EQ(answerAfterTheEnd, 0);
    EXPECT_EQ(std::ranges::count(window.seen, static_cast<UINT>(WM_USER) + 7), 0);
}

TEST_F(WindowTest, WhatIsNotHandledTheDefaultProcedureAnswers) {
    TestWindow window;
    ASSERT_TRUE(window.Create());
    EXPECT_EQ(SendMessageW(window.Handle(), WM_GETTEXTLENGTH, 0, 0), 4);
    EXPECT_EQ(std::ranges::count(window.seen, static_cast<UINT>(WM_GETTEXTLENGTH)), 1);
}

TEST_F(WindowTest, TheWindowGoesWithItsObjectWhichHearsNothingOfIt) {
    std::vector<UINT> seen;
    HWND handle = nullptr;
    {
        TestWindow window;
        ASSERT_TRUE(window.Create());
        handle = window.Handle();
        window.answer = [&seen](UINT message, WPARAM, LPARAM) -> LRESULT {
            seen.push_back(message);
            return 0;
        };
    }
    EXPECT_EQ(IsWindow(handle), FALSE);
    EXPECT_TRUE(seen.empty());
}

TEST_F(WindowTest, AnObjectMayHaveOneWindowAfterTheOther) {
    TestWindow window;
    for (int time = 0; time < 2; ++time) {
        ASSERT_TRUE(window.Create());
        EXPECT_NE(IsWindow(window.Handle()), FALSE);
        DestroyWindow(window.Handle());
        EXPECT_EQ(window.Handle(), nullptr);
    }
}

TEST_F(WindowTest, AClassServesAnyNumberOfObjects) {
    EXPECT_TRUE(TestWindow::RegisterClassOf(kClassName)) << "a second time";
    TestWindow first;
    TestWindow second;
    ASSERT_TRUE(first.Create());
    ASSERT_TRUE(second.Create());
    EXPECT_NE(first.Handle(), second.Handle());
    first.answer = [](UINT, WPARAM, LPARAM) -> LRESULT {
        return 1;
    };
    second.answer = [](UINT, WPARAM, LPARAM) -> LRESULT {
        return 2;
    };
    EXPECT_EQ(SendMessageW(first.Handle(), WM_USER, 0, 0), 1);
    EXPECT_EQ(SendMessageW(second.Handle(), WM_USER, 0, 0), 2);
}

TEST_F(WindowTest, AClassNameOfSomebodyElseIsRefusedWhileItIsTheirs) {
    // Another one at each repetition: what is registered here stays.
    static int repetition = 0;
    const std::wstring taken = L"WindowTestTakenClass" + std::to_wstring(repetition++);
    WNDCLASSW theirs{};
    theirs.lpfnWndProc = DefWindowProcW;
    theirs.hInstance = Instance();
    theirs.lpszClassName = taken.c_str();
    ASSERT_NE(RegisterClassW(&theirs), 0);
    EXPECT_FALSE(TestWindow::RegisterClassOf(taken.c_str()));
    EXPECT_FALSE(TestWindow::RegisterClassOf(taken.c_str()))
        << "the refusal must not be taken for a registration";
    ASSERT_NE(UnregisterClassW(taken.c_str(), Instance()), FALSE);
    EXPECT_TRUE(TestWindow::RegisterClassOf(taken.c_str()));
    TestWindow window;
    EXPECT_TRUE(window.Create(taken.c_str()));
}

TEST_F(WindowTest, WithoutAClassThereIsNoWindow) {
    TestWindow window;
    EXPECT_FALSE(window.Create(L"WindowTestNoSuchClass"));
    EXPECT_EQ(window.Handle(), nullptr);
    EXPECT_TRUE(window.seen.empty());
}

} // namespace
} // namespace brindlecast
