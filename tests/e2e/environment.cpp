#include "tests/e2e/environment.h"

#include "base/win32/unique_handle.h"

#include <array>
#include <stdexcept>
#include <utility>

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

std::wstring BuildFolder() {
    return Variable(L"BRINDLECAST_BUILD");
}

std::wstring ProgramFolder() {
    return BuildFolder() + L"\\bin";
}

std::wstring ReportFolder() {
    return Variable(L"BRINDLECAST_REPORTS");
}

bool IsLongRun() {
    return GetEnvironmentVariableW(L"BRINDLECAST_LONG", nullptr, 0) != 0;
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

TemporaryVariable::TemporaryVariable(const wchar_t* variableName, const std::wstring& value)
    : name(variableName) {
    SetEnvironmentVariableW(name, value.c_str());
}

TemporaryVariable::~TemporaryVariable() {
    SetEnvironmentVariableW(name, nullptr);
}

TemporaryRegistryValue::TemporaryRegistryValue(const wchar_t* userKey, const wchar_t* valueName,
                                               std::uint32_t number)
    : key(userKey), name(valueName) {
    KeepOld();
    RegSetKeyValueW(HKEY_CURRENT_USER, key, name, REG_DWORD, &number, sizeof(number));
}

TemporaryRegistryValue::TemporaryRegistryValue(const wchar_t* userKey, const wchar_t* valueName,
                                               const std::wstring& text)
    : key(userKey), name(valueName) {
    KeepOld();
    RegSetKeyValueW(HKEY_CURRENT_USER, key, name, REG_SZ, text.c_str(),
                    static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

TemporaryRegistryValue::~TemporaryRegistryValue() {
    if (oldBytes) {
        RegSetKeyValueW(HKEY_CURRENT_USER, key, name, oldType, oldBytes->data(),
                        static_cast<DWORD>(oldBytes->size()));
    } else {
        RegDeleteKeyValueW(HKEY_CURRENT_USER, key, name);
    }
}

void TemporaryRegistryValue::KeepOld() {
    std::vector<std::uint8_t> bytes(1024);
    DWORD type = REG_NONE;
    auto size = static_cast<DWORD>(bytes.size());
    if (RegGetValueW(HKEY_CURRENT_USER, key, name, RRF_RT_ANY | RRF_NOEXPAND, &type, bytes.data(), &size) ==
        ERROR_SUCCESS) {
        bytes.resize(size);
        oldType = type;
        oldBytes = std::move(bytes);
    }
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
