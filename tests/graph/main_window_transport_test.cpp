#include "tests/graph/main_window_fixture.h"

// The main window over an engine whose graph is rebuilt while it starts to play.

namespace brindlecast::testing {
namespace {

class MainWindowTransport : public MainWindowTest {
protected:
    MainWindowTransport() { settings.values[L"LAV_HWAccel"] = std::uint32_t{3}; }

    // The film stays open and stopped.
    void DropWithoutPlaying() {
        SetNumber("LAVVideo.pause", E_FAIL);
        Drop(kFilm);
        ASSERT_FALSE(IsPlaying());
        SetNumber("LAVVideo.pause", 0);
    }
    // Handles messages until the window is no longer playing.
    bool StopsByItself() {
        return HandleMessagesUntil([this] { return !IsPlaying(); });
    }
    // Lets the graph that runs now report its end, of which only its own message tells the window.
    bool StopsAtItsEnd() {
        HandleMessages();
        EXPECT_TRUE(IsPlaying());
        LetFilesEnd(true);
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
    LetFilesEnd(true);
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
