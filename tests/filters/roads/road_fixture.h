#pragma once

#include "engine/player_engine.h"
#include "tests/e2e/screen.h"
#include "tests/media/manifest.h"
#include "tests/support/fake_settings_store.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindlecast::testing {

// The engine with the real modules, a host window on the real desktop, and settings of the test's own, with
// normalisation off and full volume. The test's thread is the window's thread: every wait serves messages.
class RoadTest : public ::testing::Test {
protected:
    using Milliseconds = std::chrono::milliseconds;

    void SetUp() override;
    void TearDown() override;

    // Sizes the host's picture area; films of the tests have 320 by 180 pixels.
    void ShowHost(int width, int height);

    // Opens a file among the test media, with its entry in the manifest.
    [[nodiscard]] bool Open(const wchar_t* name);
    // Opens, starts and pauses, with a picture on the screen.
    void OpenPaused(const wchar_t* name);
    void OpenRunning(const wchar_t* name);

    // Serves messages until the condition holds; false when the limit has passed.
    static bool PumpUntil(Milliseconds limit, const std::function<bool()>& condition);
    static void PumpFor(Milliseconds time);
    // Serves messages until the graph has told its end.
    [[nodiscard]] bool WaitForEnd(Milliseconds limit) const;

    // The number of the frame that the screen shows, counted from the file's first frame.
    [[nodiscard]] std::optional<int> FrameOnScreen() const;
    [[nodiscard]] Photograph PhotographHost() const { return PhotographScreen(ScreenRectOf(host)); }
    // Waits until that frame is on the screen.
    [[nodiscard]] bool WaitForFrame(int number) const;
    // The frame whose time has come at that position.
    [[nodiscard]] int FrameAt(Seconds position) const;

    // How many lines of the trace so far hold that text. The renderer's thread traces as well.
    [[nodiscard]] std::ptrdiff_t CountTraced(std::wstring_view part) const;
    // Whether exactly that line is among them.
    [[nodiscard]] bool Traced(const std::wstring& line) const;

    FakeSettingsStore store;
    HWND host = nullptr;
    std::unique_ptr<PlayerEngine> engine;
    MediaEntry film; // the open file

private:
    [[nodiscard]] std::vector<std::wstring> TracedLines() const;

    mutable std::mutex linesMutex;
    std::vector<std::wstring> lines; // guarded by it
};

} // namespace brindlecast::testing
