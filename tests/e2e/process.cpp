#include "tests/e2e/process.h"

#include "tests/e2e/waits.h"

#include <tlhelp32.h>

#include <array>
#include <stdexcept>

namespace brindlecast::testing {

namespace {

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

} // namespace

Process::Process(const ProcessStart& start) {
    std::wstring command = L"\"" + start.program + L"\" " + start.arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    if (start.showCommand) {
        startup.dwFlags = STARTF_USESHOWWINDOW;
        startup.wShowWindow = *start.showCommand;
    }
    PROCESS_INFORMATION information{};
    if (CreateProcessW(start.program.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                       &startup, &information) == FALSE) {
        throw std::runtime_error("a program can't be started");
    }
    handle.Reset(information.hProcess);
    const UniqueHandle thread(information.hThread);
    id = information.dwProcessId;
}

Process::~Process() {
    Kill();
}

bool Process::IsRunning() const {
    return WaitForSingleObject(handle.Get(), 0) == WAIT_TIMEOUT;
}

std::optional<DWORD> Process::WaitForEnd(std::chrono::milliseconds limit) const {
    if (WaitForSingleObject(handle.Get(), static_cast<DWORD>(limit.count())) != WAIT_OBJECT_0) {
        return std::nullopt;
    }
    DWORD code = 0;
    GetExitCodeProcess(handle.Get(), &code);
    return code;
}

void Process::Kill() {
    if (IsRunning()) {
        TerminateProcess(handle.Get(), 1);
        WaitForSingleObject(handle.Get(), static_cast<DWORD>(limits::kReaction.count()));
    }
}

HWND Process::FindVisibleWindow(const wchar_t* className) const {
    WindowSearch search{id, className, nullptr};
    EnumWindows(CheckWindow, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

int CountPlayers() {
    const UniqueHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof(entry);
    int count = 0;
    for (BOOL more = Process32FirstW(snapshot.Get(), &entry); more != FALSE;
         more = Process32NextW(snapshot.Get(), &entry)) {
        count += std::wstring(entry.szExeFile).starts_with(L"Brindlecast") ? 1 : 0;
    }
    return count;
}

} // namespace brindlecast::testing
