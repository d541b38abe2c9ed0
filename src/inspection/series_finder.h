#pragma once

#include "base/file_metadata.h"

#include <string>
#include <vector>

namespace brindlecast {

// The files in the folder of `path` that belong to its numbered or lettered series, in play order, at most
// 100: of a longer series those that the system names first. The file alone when its name belongs to none,
// and nothing when it has no folder, no media extension, or the folder can't be read. `limit` changes
// nothing.
[[nodiscard]] std::vector<std::wstring> FindSeriesFiles(const FolderEnumerator& folders,
                                                        const std::wstring& path, int limit);

} // namespace brindlecast
