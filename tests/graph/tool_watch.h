#pragma once

#include "base/text.h"
#include "tests/graph/import_swap.h"

#include <windows.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace brindlecast::testing {

// Keeps what the program asks of the system around a tool that it starts, in order, while it lives; all of it
// happens all the same, but that the wait for the tool may be cut short. One at a time, main thread.
class ToolWatch {
public:
    // How the last tool was started.
    struct Start {
        std::wstring program;
        std::wstring commandLine;
        bool inheritsHandles = true;
        DWORD flags = 0;
        DWORD startFlags = 0;
        WORD show = 0;
        bool hasOwnSurroundings = true; // an environment or a folder
        DWORD processId = 0;
    };

    // `shownAs` turns a path into what a line shows.
    explicit ToolWatch(std::function<std::wstring(std::wstring)> shownAs,
                       std::optional<DWORD> longestWait = std::nullopt)
        : show(std::move(shownAs)), limit(longestWait) {
        Living() = this;
    }
    ToolWatch(const ToolWatch&) = delete;
    ToolWatch& operator=(const ToolWatch&) = delete;
    ~ToolWatch() { Living() = nullptr; }

    [[nodiscard]] const std::vector<std::wstring>& Seen() const { return lines; }
    [[nodiscard]] const std::optional<Start>& LastStart() const { return start; }

private:
    static ToolWatch*& Living() {
        static ToolWatch* living = nullptr;
        return living;
    }
    template <class Function>
    static auto Real(const ImportSwap& swap) {
        return reinterpret_cast<Function>(swap.Original());
    }
    void Add(const wchar_t* what, const wchar_t* path) { lines.push_back(what + show(path)); }

    static DWORD WINAPI TempPath(DWORD size, wchar_t* path) {
        Living()->lines.emplace_back(L"temporary folder");
        return Real<decltype(&::GetTempPathW)>(Living()->tempPath)(size, path);
    }
    static DWORD WINAPI Attributes(const wchar_t* path) {
        Living()->Add(L"attributes of ", path);
        return Real<decltype(&::GetFileAttributesW)>(Living()->attributes)(path);
    }
    static BOOL WINAPI AttributesEx(const wchar_t* path, GET_FILEEX_INFO_LEVELS level, void* facts) {
        Living()->Add(L"size of ", path);
        return Real<decltype(&::GetFileAttributesExW)>(Living()->attributesEx)(path, level, facts);
    }
    static BOOL WINAPI Delete(const wchar_t* path) {
        Living()->Add(L"delete ", path);
        return Real<decltype(&::DeleteFileW)>(Living()->deleteFile)(path);
    }
    static BOOL WINAPI Create(const wchar_t* program, wchar_t* commandLine, SECURITY_ATTRIBUTES* process,
                              SECURITY_ATTRIBUTES* thread, BOOL inherits, DWORD flags, void* environment,
                              const wchar_t* folder, STARTUPINFOW* startup, PROCESS_INFORMATION* started) {
        ToolWatch& watch = *Living();
        watch.lines.emplace_back(L"start");
        watch.start = Start{program != nullptr ? program : L"",
                            commandLine,
                            inherits != FALSE,
                            flags,
                            startup->dwFlags,
                            startup->wShowWindow,
                            environment != nullptr || folder != nullptr,
                            0};
        const BOOL result = Real<decltype(&::CreateProcessW)>(watch.create)(
            program, commandLine, process, thread, inherits, flags, environment, folder, startup, started);
        if (result != FALSE) {
            watch.start->processId = started->dwProcessId;
            watch.processHandle = started->hProcess;
            watch.threadHandle = started->hThread;
        }
        return result;
    }
    static DWORD WINAPI Wait(HANDLE handle, DWORD milliseconds) {
        const auto real = Real<decltype(&::WaitForSingleObject)>(Living()->wait);
        if (handle == nullptr || handle != Living()->processHandle) {
            return real(handle, milliseconds);
        }
        Living()->lines.push_back(FormatText(L"wait %u", milliseconds));
        return real(handle, Living()->limit.value_or(milliseconds));
    }
    static BOOL WINAPI ExitCode(HANDLE handle, DWORD* code) {
        Living()->lines.emplace_back(L"exit code");
        return Real<decltype(&::GetExitCodeProcess)>(Living()->exitCode)(handle, code);
    }
    static BOOL WINAPI Close(HANDLE handle) {
        ToolWatch& watch = *Living();
        for (HANDLE* owned : {&watch.processHandle, &watch.threadHandle}) {
            if (handle != nullptr && handle == *owned) {
                watch.lines.emplace_back(L"close");
                *owned = nullptr;
            }
        }
        return Real<decltype(&::CloseHandle)>(watch.close)(handle);
    }

    std::function<std::wstring(std::wstring)> show;
    std::optional<DWORD> limit;
    std::vector<std::wstring> lines;
    std::optional<Start> start;
    HANDLE processHandle = nullptr; // not owned
    HANDLE threadHandle = nullptr;

    ImportSwap tempPath{"KERNEL32.dll", "GetTempPathW", reinterpret_cast<void*>(&TempPath)};
    ImportSwap attributes{"KERNEL32.dll", "GetFileAttributesW", reinterpret_cast<void*>(&Attributes)};
    ImportSwap attributesEx{"KERNEL32.dll", "GetFileAttributesExW", reinterpret_cast<void*>(&AttributesEx)};
    ImportSwap deleteFile{"KERNEL32.dll", "DeleteFileW", reinterpret_cast<void*>(&Delete)};
    ImportSwap create{"KERNEL32.dll", "CreateProcessW", reinterpret_cast<void*>(&Create)};
    ImportSwap wait{"KERNEL32.dll", "WaitForSingleObject", reinterpret_cast<void*>(&Wait)};
    ImportSwap exitCode{"KERNEL32.dll", "GetExitCodeProcess", reinterpret_cast<void*>(&ExitCode)};
    ImportSwap close{"KERNEL32.dll", "CloseHandle", reinterpret_cast<void*>(&Close)};
};

} // namespace brindlecast::testing
