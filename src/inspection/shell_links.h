#pragma once

#include <string>

namespace brindlecast {

// Shows a file in the system's file manager, or its folder when the file is missing. False when there is not
// even a folder in the path; whether the system did it is not looked at. Main thread.
bool RevealInExplorer(const std::wstring& path);

// The target of a shortcut, told by the ending ".lnk" in any case; the path itself when it is none or can't
// be read. A shortcut to a shortcut is not followed further. The thread must have entered COM.
[[nodiscard]] std::wstring ResolveShortcut(const std::wstring& path);

} // namespace brindlecast
