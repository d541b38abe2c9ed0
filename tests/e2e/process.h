#pragma once

#include "base/win32/unique_handle.h"

#include <windows.h>

#include <chrono>
#include <optional>
#include <string>

namespace brindlecast::testing {

// What a process is started from.
struct ProcessStart {
    std::wstring program; // path of the executable
    std::wstring arguments;
    // The show command that the starter asks for, as a shortcut does; none leaves it to the system.
    std::optional<WORD> showCommand;
};

// One running process, which is ended by force when the object goes. Throws when it can't be started.
class Process {
public:
    explicit Process(const ProcessStart& start);
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process();

    [[nodiscard]] DWORD Id() const { return id; }
    [[nodiscard]] bool IsRunning() const;
    // Its exit code, or nothing when it did not end by itself within the time.
    [[nodiscard]] std::optional<DWORD> WaitForEnd(std::chrono::milliseconds limit) const;
    // Ends it without giving it a chance to do anything, and waits for that.
    void Kill();
    // A visible top-level window of that class, or null.
    [[nodiscard]] HWND FindVisibleWindow(const wchar_t* className) const;

private:
    UniqueHandle handle;
    DWORD id = 0;
};

// How many processes run the player or a program made of it.
[[nodiscard]] int CountPlayers();

} // namespace brindlecast::testing
