#include "engine/tool_process.h"

#include "base/win32/unique_handle.h"

namespace brindlecast {

bool RunTool(const std::wstring& program, std::wstring commandLine, DWORD limit) {
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_HIDE;
    PROCESS_INFORMATION started{};
    // The system writes into the command line, so it has to be ours.
    if (CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW,
                       nullptr, nullptr, &startup, &started) == FALSE) {
        return false;
    }
    const UniqueHandle process(started.hProcess);
    const UniqueHandle thread(started.hThread);
    DWORD exitCode = STILL_ACTIVE;
    return WaitForSingleObject(process.Get(), limit) == WAIT_OBJECT_0 &&
           GetExitCodeProcess(process.Get(), &exitCode) != FALSE && exitCode == 0;
}

} // namespace brindlecast
