#include "base/win32/unique_handle.h"

#include <windows.h>

#include <shellapi.h>

#include <array>
#include <cstdlib>
#include <string>

// Stands in for ffmpeg.exe. What it does is told in its environment:
//   BRINDLECAST_TOOL_LOG     the file that its command line is added to, as a line of UTF-16
//   BRINDLECAST_TOOL_GIVES   the file whose content it writes into its output; without it there is no output
//   BRINDLECAST_TOOL_AWAITS  the name of the event that it waits for at last, for a minute at most
//   BRINDLECAST_TOOL_EXIT    its exit code; 0 without it

namespace brindlecast::testing {
namespace {

constexpr DWORD kLongestWait = 60000; // milliseconds
constexpr int kUnusable = 99;         // an exit code

// Empty when it is not set.
std::wstring Variable(const wchar_t* name) {
    std::array<wchar_t, 1024> value{};
    const DWORD length = GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size()));
    return length < value.size() ? std::wstring(value.data(), length) : std::wstring();
}

bool LogCommandLine() {
    const UniqueFile log(CreateFileW(Variable(L"BRINDLECAST_TOOL_LOG").c_str(), FILE_APPEND_DATA, 0, nullptr,
                                     OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    const std::wstring line = std::wstring(GetCommandLineW()) + L'\n';
    DWORD written = 0;
    return log && WriteFile(log.Get(), line.data(), static_cast<DWORD>(line.size() * sizeof(wchar_t)),
                            &written, nullptr) != FALSE;
}

bool WriteOutput(const std::wstring& content) {
    int count = 0;
    wchar_t** const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    const bool isCopied =
        arguments != nullptr && count > 1 && CopyFileW(content.c_str(), arguments[count - 1], FALSE) != FALSE;
    LocalFree(arguments);
    return isCopied;
}

int Run() {
    if (!LogCommandLine()) {
        return kUnusable;
    }
    const std::wstring content = Variable(L"BRINDLECAST_TOOL_GIVES");
    if (!content.empty() && !WriteOutput(content)) {
        return kUnusable;
    }
    if (const std::wstring awaited = Variable(L"BRINDLECAST_TOOL_AWAITS"); !awaited.empty()) {
        const UniqueHandle event(OpenEventW(SYNCHRONIZE, FALSE, awaited.c_str()));
        WaitForSingleObject(event.Get(), kLongestWait);
    }
    return static_cast<int>(std::wcstol(Variable(L"BRINDLECAST_TOOL_EXIT").c_str(), nullptr, 10));
}

} // namespace
} // namespace brindlecast::testing

int main() {
    return brindlecast::testing::Run();
}
