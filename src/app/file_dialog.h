#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace brindlecast {

// Asks the user for an existing file. `filter`: pairs of display text and pattern, each ended by a zero, the
// list by an empty text. Nothing when the user leaves the dialog, or chooses a path of 260 characters or
// more. Runs its own message loop.
[[nodiscard]] std::optional<std::wstring> AskForFile(HWND owner, const wchar_t* title, const wchar_t* filter);

} // namespace brindlecast
