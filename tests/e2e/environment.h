#pragma once

#include <string>

namespace brindlecast::testing {

// Folders of the run, from the environment, as Windows paths without a trailing separator.
[[nodiscard]] std::wstring ProgramFolder(); // the executable and its modules
[[nodiscard]] std::wstring ReportFolder();
// The path of a file among the test media.
[[nodiscard]] std::wstring Media(const wchar_t* name);
// The path of a native helper program, and of any file, as the host system writes it.
[[nodiscard]] std::wstring NativeTool(const wchar_t* name);
[[nodiscard]] std::wstring NativePath(const std::wstring& windowsPath);

// Starts a program of the host system, which has no process handle here; it ends by itself or with the
// desktop.
[[nodiscard]] bool StartNative(const std::wstring& windowsPath, const std::wstring& arguments);

} // namespace brindlecast::testing
