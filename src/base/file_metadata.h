#pragma once

#include "base/file_time.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace brindlecast {

struct FileFacts {
    std::uint64_t size = 0;     // bytes
    FileTime lastWriteTime = 0; // UTC
};

// Asks the file system about one path.
class FileMetadata {
public:
    virtual ~FileMetadata() = default;
    // Nothing when the path can't be asked.
    [[nodiscard]] virtual std::optional<FileFacts> Read(const std::wstring& path) const = 0;
};

// Looks through one folder.
class FolderEnumerator {
public:
    virtual ~FolderEnumerator() = default;
    // Calls `entry` with name and kind of each entry of the folder, in the order of the system, until it
    // answers false. `folder` ends with its separator. False when the enumeration can't start.
    [[nodiscard]] virtual bool
    Enumerate(const std::wstring& folder,
              const std::function<bool(std::wstring_view name, bool isFolder)>& entry) const = 0;
};

} // namespace brindlecast
