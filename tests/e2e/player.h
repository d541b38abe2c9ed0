#pragma once

#include "tests/e2e/process.h"
#include "tests/e2e/screen.h"

#include <windows.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace brindlecast::testing {

// The display size of a film, which tells its place in the window.
struct Film {
    const wchar_t* name;
    int width;
    int height;
    double framesPerSecond;
};

// The program as it ships, without arguments.
[[nodiscard]] ProcessStart PlayerStart();

// A running player. Starting waits for its window; going ends the process if a test left it running.
class Player {
public:
    explicit Player(const ProcessStart& start = PlayerStart());

    [[nodiscard]] HWND MainWindow() const { return mainWindow; }
    [[nodiscard]] HWND VideoWindow() const;
    [[nodiscard]] const Process& OwnProcess() const { return process; }
    // Ends it as the task manager does.
    void Kill() { process.Kill(); }
    // True when the window answers a message within the reaction limit.
    [[nodiscard]] bool Answers() const;
    [[nodiscard]] std::wstring Title() const;

    // Brings the main window to the front, as a click would.
    void Activate();
    // Types the path into the dialog that the key O opens.
    void OpenByDialog(const std::wstring& path);
    // Drops files onto the picture as a file manager would.
    void Drop(const std::vector<std::wstring>& paths);
    // The same for files of the current directory, with their names as on a command line.
    void DropByNames(const std::wstring& names);
    // Drops a film and waits until its picture moves.
    [[nodiscard]] bool Play(const Film& film);
    // Sends the main window a message; what it answers, or nothing when it does not within the reaction
    // limit.
    std::optional<LRESULT> Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;
    // Asks the window to close and waits for the process; its exit code, or nothing when it did not end in
    // time.
    [[nodiscard]] std::optional<DWORD> Close();

    // Waits until no on-screen message stands over the picture any more.
    [[nodiscard]] bool WaitUntilNoMessageShows() const;
    // The number in the mark on the screen at this moment.
    [[nodiscard]] std::optional<int> FrameOnScreen(const Film& film) const;
    // Waits until a frame with a readable mark stands on the screen.
    [[nodiscard]] std::optional<int> WaitForFrame(const Film& film) const;
    // Waits until the picture stands; the number of the frame that stays.
    [[nodiscard]] std::optional<int> WaitForStandstill(const Film& film) const;
    // Waits until the number on the screen is that one.
    [[nodiscard]] bool WaitForFrameNumber(const Film& film, int number) const;
    // Readings of the screen for a while, each with the position that the clock asks for.
    [[nodiscard]] std::vector<TimedMark> Watch(const Film& film, std::chrono::milliseconds time) const;
    // Playback state as the main window tells it: not stopped.
    [[nodiscard]] bool IsOpen() const;
    // The picture's place on the screen, whole pixels.
    [[nodiscard]] Rect PictureOnScreen(const Film& film) const;

private:
    Process process;
    HWND mainWindow = nullptr;
};

} // namespace brindlecast::testing
