// Tries out an unpacked program folder: loads its modules, starts the program, waits for its main window,
// closes it as a user would and tells how it ended. Runs under Wine; made and used by scripts/package.
//
//   start_and_close.exe PROGRAM WINDOW_CLASS SECONDS [MODULE…]
//
// Exit code 0 only if every module can be loaded, the window comes up visible, and the process ends with 0.

#include <windows.h>

#include <cstdio>
#include <string>

namespace {

struct Search {
    DWORD processId;
    const wchar_t* className;
    HWND found;
};

BOOL CALLBACK LookAtWindow(HWND window, LPARAM parameter) {
    auto* search = reinterpret_cast<Search*>(parameter);
    DWORD processId = 0;
    GetWindowThreadProcessId(window, &processId);
    wchar_t className[256] = {};
    GetClassNameW(window, className, 256);
    if (processId != search->processId || lstrcmpW(className, search->className) != 0 ||
        !IsWindowVisible(window)) {
        return TRUE;
    }
    search->found = window;
    return FALSE;
}

// Polls, because a process says nothing when its window is there. Ends early when the process does.
HWND WaitForWindow(const PROCESS_INFORMATION& process, const wchar_t* className, DWORD milliseconds) {
    const ULONGLONG end = GetTickCount64() + milliseconds;
    Search search{process.dwProcessId, className, nullptr};
    while (search.found == nullptr && GetTickCount64() < end) {
        EnumWindows(LookAtWindow, reinterpret_cast<LPARAM>(&search));
        if (search.found == nullptr && WaitForSingleObject(process.hProcess, 20) == WAIT_OBJECT_0) {
            break;
        }
    }
    return search.found;
}

bool CloseAndJudge(const PROCESS_INFORMATION& process, HWND window, DWORD milliseconds) {
    RECT area = {};
    GetWindowRect(window, &area);
    std::printf("main window of %ldx%ld\n", area.right - area.left, area.bottom - area.top);
    PostMessageW(window, WM_CLOSE, 0, 0);
    if (WaitForSingleObject(process.hProcess, milliseconds) != WAIT_OBJECT_0) {
        std::printf("the program does not end after WM_CLOSE\n");
        return false;
    }
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    std::printf("the program ended with %lu\n", code);
    return code == 0;
}

bool StartAndClose(const wchar_t* program, const wchar_t* className, DWORD milliseconds) {
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    std::wstring commandLine = std::wstring(L"\"") + program + L"\"";
    if (!CreateProcessW(program, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process)) {
        std::printf("the program does not start: error %lu\n", GetLastError());
        return false;
    }
    bool good = false;
    if (HWND window = WaitForWindow(process, className, milliseconds)) {
        good = CloseAndJudge(process, window, milliseconds);
    } else {
        std::printf("no visible window of class %ls\n", className);
    }
    TerminateProcess(process.hProcess, 1); // does nothing to a process that has ended
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return good;
}

bool LoadModule(const wchar_t* path) {
    const HMODULE module = LoadLibraryExW(path, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (module == nullptr) {
        std::printf("%ls can't be loaded: error %lu\n", path, GetLastError());
        return false;
    }
    FreeLibrary(module);
    return true;
}

} // namespace

int wmain(int count, wchar_t** arguments) {
    if (count < 4) {
        std::printf("usage: start_and_close PROGRAM WINDOW_CLASS SECONDS [MODULE...]\n");
        return 2;
    }
    bool good = true;
    for (int i = 4; i < count; ++i) {
        good = LoadModule(arguments[i]) && good;
    }
    const DWORD milliseconds = 1000 * static_cast<DWORD>(_wtoi(arguments[3]));
    good = StartAndClose(arguments[1], arguments[2], milliseconds) && good;
    return good ? 0 : 1;
}
