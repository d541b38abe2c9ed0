#include "tests/e2e/player.h"

#include "base/win32/geometry.h"
#include "tests/e2e/environment.h"
#include "tests/e2e/input.h"
#include "tests/e2e/waits.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <stdexcept>

namespace brindlecast::testing {

namespace {

constexpr UINT kMessageIsPlaying = WM_USER + 205;

} // namespace

ProcessStart PlayerStart() {
    return {ProgramFolder() + L"\\Brindlecast.exe", L"", std::nullopt};
}

Player::Player(const ProcessStart& start) : process(start) {
    const bool came = WaitUntil(limits::kStart, "start", [this] {
        mainWindow = process.FindVisibleWindow(L"BrindlecastMainWindow");
        return mainWindow != nullptr;
    });
    if (!came) {
        throw std::runtime_error("the main window did not come up");
    }
}

HWND Player::VideoWindow() const {
    return FindWindowExW(mainWindow, nullptr, L"BrindlecastVideoWindow", nullptr);
}

bool Player::Answers() const {
    return Send(WM_NULL).has_value();
}

std::optional<LRESULT> Player::Send(UINT message, WPARAM wParam, LPARAM lParam) const {
    DWORD_PTR answer = 0;
    if (SendMessageTimeoutW(mainWindow, message, wParam, lParam, SMTO_NORMAL,
                            static_cast<UINT>(limits::kReaction.count()), &answer) == 0) {
        return std::nullopt;
    }
    return static_cast<LRESULT>(answer);
}

std::wstring Player::Title() const {
    std::array<wchar_t, 512> text{};
    GetWindowTextW(mainWindow, text.data(), static_cast<int>(text.size()));
    return text.data();
}

void Player::Activate() {
    SetForegroundWindow(mainWindow);
    EXPECT_TRUE(
        WaitUntil(limits::kReaction, "activation", [this] { return GetForegroundWindow() == mainWindow; }));
}

void Player::OpenByDialog(const std::wstring& path) {
    Activate();
    PressKey('O');
    HWND dialog = nullptr;
    ASSERT_TRUE(WaitUntil(limits::kDialog, "open dialog", [&] {
        dialog = process.FindVisibleWindow(L"#32770");
        return dialog != nullptr && GetForegroundWindow() == dialog;
    }));
    TypeText(path);
    PressKey(VK_RETURN);
    EXPECT_TRUE(WaitUntil(limits::kDialog, "closing of the open dialog",
                          [&] { return process.FindVisibleWindow(L"#32770") == nullptr; }));
}

void Player::Drop(const std::vector<std::wstring>& paths) {
    std::wstring names;
    for (const std::wstring& path : paths) {
        names += L" \"" + NativePath(path) + L"\"";
    }
    DropByNames(names);
}

void Player::DropByNames(const std::wstring& names) {
    // The X11 window that stands behind ours: drops come from the host's desktop.
    const auto hostWindow =
        static_cast<unsigned>(reinterpret_cast<UINT_PTR>(GetPropW(mainWindow, L"__wine_x11_whole_window")));
    ASSERT_NE(hostWindow, 0U);
    ASSERT_TRUE(StartNative(NativeTool(L"xdnd_source"), std::to_wstring(hostWindow) + L" " + names));
}

bool Player::Play(const Film& film) {
    Drop({Media(film.name)});
    const std::wstring title = std::wstring(L"Brindlecast - ") + film.name;
    if (!WaitUntil(limits::kPicture, "title", [&] { return Title() == title; })) {
        return false;
    }
    // The first reading may still be the picture of a former film, the second the frame that stands until the
    // clock runs.
    const std::optional<int> first = WaitForFrame(film);
    std::optional<int> second;
    return first &&
           WaitUntil(limits::kReaction, "another picture",
                     [&] {
                         second = FrameOnScreen(film);
                         return second && *second != *first;
                     }) &&
           WaitUntil(limits::kReaction, "moving picture",
                     [&] { return FrameOnScreen(film).value_or(*second) > *second; });
}

std::optional<DWORD> Player::Close() {
    PostMessageW(mainWindow, WM_CLOSE, 0, 0);
    return process.WaitForEnd(limits::kExit);
}

bool Player::WaitUntilNoMessageShows() const {
    return WaitUntil(limits::kReaction, "end of the on-screen message",
                     [&] { return process.FindVisibleWindow(L"BrindlecastOverlay") == nullptr; });
}

std::optional<int> Player::FrameOnScreen(const Film& film) const {
    const Rect video = ScreenRectOf(VideoWindow());
    const Photograph photograph = PhotographScreen(video);
    const PixelRect window{0, 0, photograph.width, photograph.height};
    return ReadFrameMark(photograph.View(), FitPicture(window, film.width, film.height));
}

std::optional<int> Player::WaitForFrame(const Film& film) const {
    std::optional<int> number;
    WaitUntil(limits::kPicture, "first frame", [&] { return (number = FrameOnScreen(film)).has_value(); });
    return number;
}

std::optional<int> Player::WaitForStandstill(const Film& film) const {
    std::optional<int> last;
    const bool stands = WaitUntil(limits::kReaction, "standstill", [&] {
        last = FrameOnScreen(film);
        LetPlay(std::chrono::milliseconds(150));
        return last && FrameOnScreen(film) == last;
    });
    return stands ? last : std::nullopt;
}

bool Player::WaitForFrameNumber(const Film& film, int number) const {
    return WaitUntil(limits::kReaction, "a frame", [&] { return FrameOnScreen(film) == number; });
}

std::vector<TimedMark> Player::Watch(const Film& film, std::chrono::milliseconds time) const {
    using Clock = std::chrono::steady_clock;
    std::vector<TimedMark> readings;
    const auto start = Clock::now();
    double base = 0.0;
    for (auto now = start; now - start < time; now = Clock::now()) {
        const auto number = FrameOnScreen(film);
        const double seconds = std::chrono::duration<double>(now - start).count();
        if (readings.empty() && number) {
            base = *number / film.framesPerSecond - seconds;
        }
        readings.push_back({base + seconds, number});
        LetPlay(std::chrono::milliseconds(20));
    }
    return readings;
}

bool Player::IsOpen() const {
    return Send(kMessageIsPlaying) == 1;
}

Rect Player::PictureOnScreen(const Film& film) const {
    const Rect video = ScreenRectOf(VideoWindow());
    const PixelRect picture =
        FitPicture({video.left, video.top, video.Width(), video.Height()}, film.width, film.height);
    return {picture.left, picture.top, picture.left + picture.width, picture.top + picture.height};
}

} // namespace brindlecast::testing
