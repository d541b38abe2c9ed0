#include "base/utf8.h"
#include "tests/e2e/fixture.h"
#include "tests/e2e/waits.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <string>
#include <vector>

namespace brindlecast::testing {
namespace {

struct Failure {
    std::string step; // as programs/failing_start.cpp knows it
    std::wstring text;
};

void PrintTo(const Failure& failure, std::ostream* out) {
    *out << failure.step;
}

class StartFailureTest : public ProgramTest, public ::testing::WithParamInterface<Failure> {
protected:
    struct Box {
        std::vector<std::wstring> texts; // of its children
        HWND icon = nullptr;
    };

    static std::wstring TextOf(HWND window) {
        std::array<wchar_t, 256> text{};
        SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
        return text.data();
    }

    static BOOL CALLBACK LookAtChild(HWND child, LPARAM parameter) {
        auto* box = reinterpret_cast<Box*>(parameter);
        std::array<wchar_t, 64> className{};
        GetClassNameW(child, className.data(), static_cast<int>(className.size()));
        const bool isStatic = _wcsicmp(className.data(), L"Static") == 0;
        if (isStatic && (GetWindowLongW(child, GWL_STYLE) & SS_TYPEMASK) == SS_ICON) {
            box->icon = child;
        } else {
            box->texts.push_back(TextOf(child));
        }
        return TRUE;
    }

    // The icon of an error is red, those of warnings and questions are not.
    static bool ShowsErrorIcon(HWND icon) {
        const Rect place = ScreenRectOf(icon);
        const Photograph photograph = PhotographScreen(place);
        int red = 0;
        for (int y = 0; y < photograph.height; ++y) {
            for (int x = 0; x < photograph.width; ++x) {
                const Rgb colour = photograph.At({x, y});
                red += colour.red > 140 && colour.green < 90 && colour.blue < 90 ? 1 : 0;
            }
        }
        return red * 5 > photograph.width * photograph.height;
    }
};

TEST_P(StartFailureTest, IsToldInABoxAndEndsWithMinusOne) {
    const TemporaryVariable failing(L"BRINDLECAST_FAILING_STEP", Utf8ToWide(GetParam().step.c_str()));
    const Process process({BuildFolder() + L"\\test_bin\\BrindlecastFailingStart.exe", L"", std::nullopt});
    HWND window = nullptr;
    ASSERT_TRUE(WaitUntil(limits::kStart, "box", [&] {
        window = process.FindVisibleWindow(L"#32770");
        return window != nullptr;
    }));
    EXPECT_EQ(TextOf(window), L"오류");
    EXPECT_EQ(GetWindow(window, GW_OWNER), nullptr);
    Box box;
    EnumChildWindows(window, LookAtChild, reinterpret_cast<LPARAM>(&box));
    EXPECT_EQ(std::ranges::count(box.texts, GetParam().text), 1) << ::testing::PrintToString(box.texts);
    ASSERT_NE(box.icon, nullptr);
    EXPECT_TRUE(WaitUntil(limits::kReaction, "icon", [&] { return ShowsErrorIcon(box.icon); }));
    EXPECT_EQ(process.FindVisibleWindow(L"BrindlecastMainWindow"), nullptr);
    PostMessageW(window, WM_COMMAND, IDOK, 0);
    EXPECT_EQ(process.WaitForEnd(limits::kReaction), 0xFFFFFFFFU);
}

INSTANTIATE_TEST_SUITE_P(Steps, StartFailureTest,
                         ::testing::Values(Failure{"com", L"COM 초기화 실패"},
                                           Failure{"gdiplus", L"GDI+ 초기화 실패"},
                                           Failure{"window", L"메인 윈도우 생성 실패"}),
                         [](const auto& test) { return test.param.step; });

} // namespace
} // namespace brindlecast::testing
