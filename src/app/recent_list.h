#pragma once

#include <string>
#include <vector>

namespace brindlecast {

inline constexpr std::size_t kRecentFileLimit = 10;

// Puts a path at the front of the list of recently opened files, newest first. A path that is there already,
// compared exactly, moves; what lies beyond the limit drops out.
void PutInFront(std::vector<std::wstring>& recentFiles, const std::wstring& path);

} // namespace brindlecast
