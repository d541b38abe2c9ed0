#pragma once

#include "app/main_window.h"
#include "tests/graph/graph_fixture.h"
#include "ui/messages.h"

#include <shlobj.h>

#include <cstring>
#include <memory>
#include <string>

namespace brindlecast::testing {

// The main window over an engine whose modules are fakes.
class MainWindowTest : public GraphTest {
protected:
    static constexpr DWORD kLongestWait = 5000; // milliseconds

    MainWindowTest() {
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
    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
        return SendMessageW(window->Handle(), message, wParam, lParam);
    }
    void TogglePlay() { Send(kMessageTogglePlay); }
    bool IsPlaying() { return Send(kMessageIsPlaying) != 0; }

    void HandleMessages() {
        MSG message{};
        while (PeekMessageW(&message, window->Handle(), 0, 0, PM_REMOVE) != FALSE) {
            DispatchMessageW(&message);
        }
    }
    // Handles messages until the condition holds; false when it does not in time.
    template <class Condition>
    bool HandleMessagesUntil(const Condition& condition) {
        const ULONGLONG begin = GetTickCount64();
        while (!condition()) {
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
    // Whether the renderers of graphs that begin to run from now on report the end of the file at once.
    void LetFilesEnd(bool theyEnd) {
        SetNumber("MpcVideoRenderer64.completes", theyEnd ? 1 : 0);
        SetNumber("AudioRenderer.completes", theyEnd ? 1 : 0);
    }

    std::unique_ptr<MainWindow> window;
};

} // namespace brindlecast::testing
