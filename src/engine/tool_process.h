#pragma once

#include <windows.h>

#include <string>

namespace brindlecast {

// Runs a program without a window and waits for its end, for at most `limit` milliseconds. True when it has
// ended with the exit code 0. A program that takes longer is left running.
[[nodiscard]] bool RunTool(const std::wstring& program, std::wstring commandLine, DWORD limit);

} // namespace brindlecast
