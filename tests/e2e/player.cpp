#include "tests/e2e/player.h"

#include "base/win32/geometry.h"
#include "tests/e2e/environment.h"
#include "tests/e2e/input.h"
#include "tests/e2e/waits.h"

#include <gtest/gtest.h>

#include <tlhelp32.h>

#include <array>
#include <chrono>
#include <stdexcept>

namespace brindlecast::testing {

namespace {

constexpr const wchar_t* kProgram = L"Brindlecast.exe";
constexpr UINT kMessageIsPlaying = WM_USER + 205;

struct WindowSearch {
    DWORD processId;
    const wchar_t* className;
    HWND found;
};

BOOL CALLBACK CheckWindow(HWND window, LPARAM parameter) {
    auto* search = reinterpret_cast<WindowSearch*>(parameter);
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    std::array<wchar_t, 64> name{};
    GetClassNameW(window, name.data(), static_cast<int>(name.size()));
    if (owner == search->processId && IsWindowVisible(window) != FALSE &&
        std::wstring(search->className) == name.data()) {
        search->found = window;
        return FALSE;
    }
    return TRUE;
}

HWND FindVisibleWindow(DWORD processId, const wchar_t* className) {
    WindowSearch search{processId, className, nullptr};
    EnumWindows(CheckWindow, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

} // namespace

Player::Player(const std::wstring& arguments) {
    const std::wstring program = ProgramFolder() + L"\\" + kProgram;
    std::wstring command = L"\"" + program + L"\" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION information{};
    if (CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                       &startup, &information) == FALSE) {
        throw std::runtime_error("the program can't be started");
    }
    process.Reset(information.hProcess);
    const UniqueHandle thread(information.hThread);
    processId = information.dwProcessId;
    const bool came = WaitUntil(limits::kStart, "start", [this] {
        mainWindow = FindVisibleWindow(processId, L"BrindlecastMainWindow");
        return mainWindow != nullptr;
    });
    if (!came) {
        throw std::runtime_error("the main window did not come up");
    }
}

Player::~Player() {
    if (::testing::Test::HasFailure()) {
        const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
        Keep(test != nullptr ? std::string(test->test_suite_name()) + "." + test->name() : "failure");
    }
    if (IsRunning()) {
        TerminateProcess(process.Get(), 1);
        WaitForSingleObject(process.Get(), static_cast<DWORD>(limits::kReaction.count()));
    }
}

HWND Player::VideoWindow() const {
    return FindWindowExW(mainWindow, nullptr, L"BrindlecastVideoWindow", nullptr);
}

bool Player::IsRunning() const {
    return WaitForSingleObject(process.Get(), 0) == WAIT_TIMEOUT;
}

bool Player::Answers() const {
    DWORD_PTR answer = 0;
    return SendMessageTimeoutW(mainWindow, WM_NULL, 0, 0, SMTO_NORMAL,
                               static_cast<UINT>(limits::kReaction.count()), &answer) != 0;
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
        dialog = FindVisibleWindow(processId, L"#32770");
        return dialog != nullptr && GetForegroundWindow() == dialog;
    }));
    TypeText(path);
    PressKey(VK_RETURN);
    EXPECT_TRUE(WaitUntil(limits::kDialog, "closing of the open dialog",
                          [&] { return FindVisibleWindow(processId, L"#32770") == nullptr; }));
}

void Player::Drop(const std::vector<std::wstring>& paths) {
    // The X11 window that stands behind ours: drops come from the host's desktop.
    const auto hostWindow =
        static_cast<unsigned>(reinterpret_cast<UINT_PTR>(GetPropW(mainWindow, L"__wine_x11_whole_window")));
    ASSERT_NE(hostWindow, 0U);
    std::wstring arguments = std::to_wstring(hostWindow);
    for (const std::wstring& path : paths) {
        arguments += L" \"" + NativePath(path) + L"\"";
    }
    ASSERT_TRUE(StartNative(NativeTool(L"xdnd_source"), arguments));
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
    if (WaitForSingleObject(process.Get(), static_cast<DWORD>(limits::kExit.count())) != WAIT_OBJECT_0) {
        return std::nullopt;
    }
    DWORD code = 0;
    GetExitCodeProcess(process.Get(), &code);
    return code;
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
    DWORD_PTR answer = 0;
    return SendMessageTimeoutW(mainWindow, kMessageIsPlaying, 0, 0, SMTO_NORMAL,
                               static_cast<UINT>(limits::kReaction.count()), &answer) != 0 &&
           answer == 1;
}

Rect Player::PictureOnScreen(const Film& film) const {
    const Rect video = ScreenRectOf(VideoWindow());
    const PixelRect picture =
        FitPicture({video.left, video.top, video.Width(), video.Height()}, film.width, film.height);
    return {picture.left, picture.top, picture.left + picture.width, picture.top + picture.height};
}

void Player::Keep(const std::string& name) const {
    const Rect screen{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    PhotographScreen(screen).Save(ReportFolder() + L"\\" + std::wstring(name.begin(), name.end()) + L".bmp");
}

int CountPlayers() {
    const UniqueHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof(entry);
    int count = 0;
    for (BOOL more = Process32FirstW(snapshot.Get(), &entry); more != FALSE;
         more = Process32NextW(snapshot.Get(), &entry)) {
        count += std::wstring(entry.szExeFile) == kProgram ? 1 : 0;
    }
    return count;
}

} // namespace brindlecast::testing
