#include "app/main_window.h"
#include "tests/graph/graph_fixture.h"
#include "ui/messages.h"

#include <shlobj.h>

#include <cstring>

// The main window over an engine whose graph is rebuilt while it starts to play.

namespace brindlecast::testing {
namespace {

constexpr DWORD kLongestWait = 5000; // milliseconds

class MainWindowTransport : public GraphTest {
protected:
    MainWindowTransport() {
        settings.values[L"LAV_HWAccel"] = std::uint32_t{3};
        SetNumber("MpcVideoRenderer64.makesWindow", 1);
        window = std::make_unique<MainWindow>(settings);
    }
    void SetUp() override { ASSERT_TRUE(window->Create(GetModuleHandleW(nullptr))); }
    void TearDown() override {
        window.reset();
        // What the window leaves in the queue is nobody's.
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
        }
        GraphTest::TearDown();
    }

    // Opens a file as if it had been dropped on the window.
    void Drop(const std::wstring& path) {
        const std::size_t bytes = sizeof(DROPFILES) + (path.size() + 2) * sizeof(wchar_t);
        // Freed by whoever it is dropped on.
        const HGLOBAL drop = GlobalAlloc(GHND, bytes);
        auto* const files = static_cast<DROPFILES*>(GlobalLock(drop));
        files->pFiles = sizeof(DROPFILES);
        files->fWide = TRUE;
        std::memcpy(files + 1, path.data(), path.size() * sizeof(wchar_t));
        GlobalUnlock(drop);
        SendMessageW(window->Handle(), WM_DROPFILES, reinterpret_cast<WPARAM>(drop), 0);
    }
    // The film stays open and stopped.
    void DropWithoutPlaying() {
        SetNumber("LAVVideo.pause", E_FAIL);
        Drop(kFilm);
        ASSERT_FALSE(IsPlaying());
        SetNumber("LAVVideo.pause", 0);
    }
    void TogglePlay() { SendMessageW(window->Handle(), kMessageTogglePlay, 0, 0); }
    bool IsPlaying() { return SendMessageW(window->Handle(), kMessageIsPlaying, 0, 0) != 0; }

    void HandleMessages() {
        MSG message{};
        while (PeekMessageW(&message, window->Handle(), 0, 0, PM_REMOVE) != FALSE) {
            DispatchMessageW(&message);
        }
    }
    // Handles messages until the window is no longer playing.
    bool StopsByItself() {
        const ULONGLONG begin = GetTickCount64();
        while (IsPlaying()) {
            const ULONGLONG passed = GetTickCount64() - begin;
            if (passed >= kLongestWait) {
                return false;
            }
            MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(kLongestWait - passed),
                                      QS_ALLINPUT);
            HandleMessages();
        }
        return true;
    }
    // Lets the graph that runs now report its end, of which only its own message tells the window.
    bool StopsAtItsEnd() {
        HandleMessages();
        EXPECT_TRUE(IsPlaying());
        LetFilesEnd();
        // A seek makes the renderers run anew.
        SendMessageW(window->Handle(), kMessageStepForward, 0, 0);
        return StopsByItself();
    }
    // Whether the frame of the main window can be taken hold of over the renderer's window.
    bool FrameLiesOverThePicture() {
        const HWND videoHost = FindWindowExW(window->Handle(), nullptr, L"BrindlecastVideoWindow", nullptr);
        const HWND child = GetWindow(videoHost, GW_CHILD);
        EXPECT_NE(nullptr, child);
        RECT frame{};
        GetWindowRect(window->Handle(), &frame);
        return SendMessageW(child, WM_NCHITTEST, 0, MAKELPARAM(frame.left, frame.top)) == HTTRANSPARENT;
    }
    static Lines Given() { return CallsOf(L"LAVVideo.SetHWAccel("); }
    // The renderers of graphs that begin to run from now on report the end of the file at once.
    void LetFilesEnd() {
        SetNumber("MpcVideoRenderer64.completes", 1);
        SetNumber("AudioRenderer.completes", 1);
    }

    std::unique_ptr<MainWindow> window;
};

TEST_F(MainWindowTransport, AFileThatEndsIsStopped) {
    Drop(kFilm);
    EXPECT_EQ((Lines{L"LAVVideo.SetHWAccel(3)"}), Given());
    EXPECT_TRUE(StopsAtItsEnd());
}

TEST_F(MainWindowTransport, AFileWhoseGraphWasRebuiltIsStoppedAtItsEndToo) {
    SetNumber("LAVVideo.pauseExceptMethod5", E_OUTOFMEMORY);
    Drop(kFilm);
    EXPECT_EQ((Lines{L"LAVVideo.SetHWAccel(3)", L"LAVVideo.SetHWAccel(5)"}), Given());
    EXPECT_TRUE(StopsAtItsEnd());
}

TEST_F(MainWindowTransport, TheFrameLiesOverTheRebuiltPicture) {
    SetNumber("LAVVideo.pauseExceptMethod5", E_OUTOFMEMORY);
    Drop(kFilm);
    EXPECT_EQ((Lines{L"LAVVideo.SetHWAccel(3)", L"LAVVideo.SetHWAccel(5)"}), Given());
    EXPECT_TRUE(IsPlaying());
    EXPECT_TRUE(FrameLiesOverThePicture());
}

TEST_F(MainWindowTransport, PlayingOnTakesARebuiltGraphOver) {
    DropWithoutPlaying();
    SetNumber("LAVVideo.pauseExceptMethod5", E_OUTOFMEMORY);
    ClearCalls();
    TogglePlay();
    EXPECT_EQ((Lines{L"LAVVideo.SetHWAccel(5)"}), Given());
    EXPECT_TRUE(IsPlaying());
    EXPECT_TRUE(FrameLiesOverThePicture());
    EXPECT_TRUE(StopsAtItsEnd());
}

TEST_F(MainWindowTransport, WhatEndedBeforeTheWindowWasNamedIsNotMissed) {
    DropWithoutPlaying();
    HandleMessages();
    SetNumber("LAVVideo.pauseExceptMethod5", E_OUTOFMEMORY);
    LetFilesEnd();
    TogglePlay();
    EXPECT_TRUE(StopsByItself());
}

TEST_F(MainWindowTransport, AfterStopTheNewestFileIsOpenedAgain) {
    // It must exist; the modules do.
    const std::wstring first = ModulePath(L"LAVVideo.ax");
    const std::wstring second = ModulePath(L"LAVAudio.ax");
    Drop(first);
    Drop(second);
    for (int time = 0; time < 2; ++time) {
        SendMessageW(window->Handle(), kMessageStop, 0, 0);
        ASSERT_FALSE(IsPlaying());
        ClearCalls();
        TogglePlay();
        EXPECT_EQ((Lines{L"LAVSplitter.Load(<dir>\\LAVAudio.ax, null)"}), CallsOf(L"LAVSplitter.Load"));
        wchar_t title[64] = {};
        GetWindowTextW(window->Handle(), title, 64);
        EXPECT_STREQ(L"Brindlecast - LAVAudio.ax", title);
        EXPECT_TRUE(IsPlaying());
    }
}

} // namespace
} // namespace brindlecast::testing
