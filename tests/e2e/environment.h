#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace brindlecast::testing {

// Folders of the run, from the environment, as Windows paths without a trailing separator.
[[nodiscard]] std::wstring BuildFolder();
[[nodiscard]] std::wstring ProgramFolder(); // the executable and its modules
[[nodiscard]] std::wstring ReportFolder();
// Whether the long form of tests that have one is asked for.
[[nodiscard]] bool IsLongRun();
// The path of a file among the test media.
[[nodiscard]] std::wstring Media(const wchar_t* name);
// The path of a native helper program, and of any file, as the host system writes it.
[[nodiscard]] std::wstring NativeTool(const wchar_t* name);
[[nodiscard]] std::wstring NativePath(const std::wstring& windowsPath);

// Sets an environment variable for processes that are started from now on, and takes it away again.
class TemporaryVariable {
public:
    TemporaryVariable(const wchar_t* variableName, const std::wstring& value);
    TemporaryVariable(const TemporaryVariable&) = delete;
    TemporaryVariable& operator=(const TemporaryVariable&) = delete;
    ~TemporaryVariable();

private:
    const wchar_t* name;
};

// Sets a value under a key of the current user and puts back what was there. The texts must outlive it.
class TemporaryRegistryValue {
public:
    TemporaryRegistryValue(const wchar_t* keyPath, const wchar_t* valueName, std::uint32_t number);
    TemporaryRegistryValue(const wchar_t* keyPath, const wchar_t* valueName, const std::wstring& text);
    TemporaryRegistryValue(const TemporaryRegistryValue&) = delete;
    TemporaryRegistryValue& operator=(const TemporaryRegistryValue&) = delete;
    ~TemporaryRegistryValue();

private:
    void KeepOld();

    const wchar_t* key;
    const wchar_t* name;
    std::uint32_t oldType = 0;
    std::optional<std::vector<std::uint8_t>> oldBytes;
};

// Starts a program of the host system, which has no process handle here; it ends by itself or with the
// desktop.
[[nodiscard]] bool StartNative(const std::wstring& windowsPath, const std::wstring& arguments);

} // namespace brindlecast::testing
