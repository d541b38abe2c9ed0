#include "tests/e2e/environment.h"

#include "base/win32/unique_handle.h"

#include <array>
#include <stdexcept>

namespace brindlecast::testing {

namespace {

std::wstring Variable(const wchar_t* name) {
    std::array<wchar_t, 1024> value{};
    if (GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size())) == 0) {
        throw std::runtime_error(
            "an environment variable of the test run is missing; start it with ./test e2e");
    }
    return value.data();
}

} // namespace

std::wstring ProgramFolder() {
    return Variable(L"BRINDLECAST_BUILD") + L"\\bin";
}

std::wstring ReportFolder() {
    return Variable(L"BRINDLECAST_REPORTS");
}

std::wstring Media(const wchar_t* name) {
    return Variable(L"BRINDLECAST_MEDIA") + L"\\" + name;
}

std::wstring NativeTool(const wchar_t* name) {
    return Variable(L"BRINDLECAST_TOOLS") + L"\\" + name;
}

std::wstring NativePath(const std::wstring& windowsPath) {
    std::wstring path = windowsPath.substr(2); // the drive Z: is the host's root
    for (wchar_t& unit : path) {
        unit = unit == L'\\' ? L'/' : unit;
    }
    return path;
}

bool StartNative(const std::wstring& windowsPath, const std::wstring& arguments) {
    std::wstring command = L"\"" + windowsPath + L"\" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (CreateProcessW(windowsPath.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                       &startup, &process) == FALSE) {
        return false;
    }
    const UniqueHandle processHandle(process.hProcess);
    const UniqueHandle threadHandle(process.hThread);
    return true;
}

} // namespace brindlecast::testing
