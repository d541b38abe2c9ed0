#include "app/overlay.h"
#include "tests/graph/import_swap.h"
#include "tests/graph/main_window_list_fixture.h"

// What the main window makes of things that fail, come too late or are not there.

namespace brindlecast::testing {
namespace {

using Names = std::vector<std::wstring>;

class MainWindowFailure : public MainWindowListTest {
protected:
    // Leaves the end of the film that runs now in the window's queue.
    void LetFileEndUnheard() {
        HandleMessages();
        LetFilesEnd(true);
        // A seek makes the renderers run anew.
        Send(kMessageStepForward);
        LetFilesEnd(false);
        MSG waiting{};
        ASSERT_NE(
            PeekMessageW(&waiting, window->Handle(), kMessageGraphEvent, kMessageGraphEvent, PM_NOREMOVE),
            FALSE);
    }
};

TEST_F(MainWindowFailure, AFilmThatCannotBePausedIsShownAsPlayingAndCanBePausedLater) {
    Fill({L"one.mkv"});
    Play(0);
    SetNumber("LAVVideo.pause", E_FAIL);
    TogglePlay();
    EXPECT_EQ((Lines{L"Pause"}), StatesOf(L"LAVVideo")) << "it is tried";
    EXPECT_EQ(L"재생", CurrentOverlay()->text);
    EXPECT_TRUE(IsPlaying());
    SetNumber("LAVVideo.pause", 0);
    TogglePlay();
    EXPECT_EQ(L"일시정지", CurrentOverlay()->text);
    ClearCalls();
    TogglePlay();
    EXPECT_EQ(L"재생", CurrentOverlay()->text);
    EXPECT_TRUE(WaitUntilRunning());
}

TEST_F(MainWindowFailure, AnEndThatIsHeardOfAfterTheStopDoesNothing) {
    Fill({L"one.mkv", L"two.mkv"});
    Play(0);
    LetFileEndUnheard();
    Send(kMessageStop);
    ASSERT_FALSE(IsPlaying());
    CurrentOverlay()->text.clear();
    ClearCalls();
    HandleMessages();
    EXPECT_EQ(Lines{}, Calls());
    EXPECT_EQ(0, List().model.currentIndex);
    EXPECT_EQ(L"", CurrentOverlay()->text);
    EXPECT_FALSE(IsPlaying());
}

TEST_F(MainWindowFailure, AnEndThatIsHeardOfInTheNextFileIsNotItsEnd) {
    Fill({L"one.mkv", L"two.mkv", L"three.mkv"});
    Play(0);
    LetFileEndUnheard();
    ClearCalls();
    Send(kMessagePlayItem, 1);
    ASSERT_TRUE(WaitUntilRunning());
    HandleMessages();
    EXPECT_EQ((Names{L"two.mkv"}), Loads());
    EXPECT_EQ(1, List().model.currentIndex);
    EXPECT_EQ(L"two.mkv", CurrentOverlay()->text);
    EXPECT_TRUE(IsPlaying());
    // Its own end still counts.
    LetFileEndOnce();
    EXPECT_EQ((Names{L"three.mkv"}), Loads());
}

TEST_F(MainWindowFailure, EventsThatAreNoEndDoNothing) {
    EXPECT_EQ(0, Send(kMessageGraphEvent)) << "nothing is open";
    Fill({L"one.mkv", L"two.mkv"});
    Play(0);
    HandleMessages();
    ClearCalls();
    EXPECT_EQ(0, Send(kMessageGraphEvent));
    EXPECT_EQ(Lines{}, Calls());
    EXPECT_TRUE(IsPlaying());
}

HWND WINAPI CreateAllButTheList(DWORD extendedStyle, LPCWSTR name, LPCWSTR title, DWORD style, int x, int y,
                                int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                                LPVOID parameter);

// Without a window for the play list: the system refuses to make it.
class MainWindowWithoutList : public MainWindowFailure {
protected:
    void SetUp() override {
        refused = 0;
        const ImportSwap swap("user32.dll", "CreateWindowExW", reinterpret_cast<void*>(CreateAllButTheList));
        original = reinterpret_cast<decltype(&CreateWindowExW)>(swap.Original());
        ASSERT_NE(original, nullptr);
        MainWindowFailure::SetUp();
        ASSERT_EQ(1, refused);
    }

public:
    static inline decltype(&CreateWindowExW) original = nullptr;
    static inline int refused = 0;
};

HWND WINAPI CreateAllButTheList(DWORD extendedStyle, LPCWSTR name, LPCWSTR title, DWORD style, int x, int y,
                                int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                                LPVOID parameter) {
    if (!IS_INTRESOURCE(name) && std::wstring(name) == L"BrindlecastPlaylist") {
        ++MainWindowWithoutList::refused;
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    return MainWindowWithoutList::original(extendedStyle, name, title, style, x, y, width, height, parent,
                                           menu, instance, parameter);
}

TEST_F(MainWindowWithoutList, TheEndOfAFileStops) {
    Drop(PathOf(L"one.mkv"));
    ASSERT_TRUE(WaitUntilRunning());
    EXPECT_EQ(L"Brindlecast - one.mkv", Title());
    LetFileEndOnce();
    EXPECT_EQ(Names{}, Loads());
    EXPECT_FALSE(IsPlaying());
    EXPECT_EQ(L"정지", CurrentOverlay()->text);
}

TEST_F(MainWindowWithoutList, ARepeatFromAGoesOnAllTheSame) {
    constexpr WPARAM kMarkA = 6030;
    Drop(PathOf(L"one.mkv"));
    ASSERT_TRUE(WaitUntilRunning());
    SetNumber("MpcVideoRenderer64.positionMilliseconds", 3'700);
    Send(WM_COMMAND, kMarkA);
    LetFileEndOnce();
    EXPECT_EQ(L"A → 끝 반복", CurrentOverlay()->text);
    EXPECT_TRUE(IsPlaying());
}

TEST_F(MainWindowWithoutList, WhatConcernsTheListDoesNothing) {
    constexpr WPARAM kFullScreen = 6041;
    Drop(PathOf(L"one.mkv"));
    ASSERT_TRUE(WaitUntilRunning());
    ClearCalls();
    settings.values.erase(L"PlaylistVisible");
    EXPECT_EQ(0, Send(kMessageTogglePlaylist));
    EXPECT_FALSE(settings.values.contains(L"PlaylistVisible")) << "there is no visibility to store";
    EXPECT_EQ(0, Send(kMessagePlayItem, 0));
    EXPECT_EQ(0, Send(kMessagePlayItemAt, 0, 1'000));
    RECT place{100, 100, 500, 400};
    Send(WM_ENTERSIZEMOVE);
    EXPECT_EQ(TRUE, Send(WM_MOVING, 0, reinterpret_cast<LPARAM>(&place)));
    SetWindowPos(window->Handle(), nullptr, 120, 90, 700, 500, SWP_NOZORDER | SWP_NOACTIVATE);
    Send(WM_COMMAND, kFullScreen);
    Send(WM_COMMAND, kFullScreen);
    EXPECT_EQ(Names{}, Loads());
    EXPECT_EQ(Lines{}, Seeks());
    EXPECT_TRUE(IsPlaying());
}

} // namespace
} // namespace brindlecast::testing
