#pragma once

#include <functional>
#include <string>
#include <vector>

namespace brindlecast {

// Tells whether a path names an existing file or folder.
using PathExists = std::function<bool(const std::wstring& path)>;

// The subtitle files beside a media file that bear its name, best first: by extension, and within one
// extension the untagged file before the language tags. Always asks for all 66 candidates. A null path gives
// an empty list.
[[nodiscard]] std::vector<std::wstring> FindExternalSubtitles(const wchar_t* mediaPath,
                                                              const PathExists& exists);

} // namespace brindlecast
