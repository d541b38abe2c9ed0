#pragma once

#include "base/file_metadata.h"
#include "base/file_time.h"

namespace brindlecast {

class SystemClock final : public Clock {
public:
    [[nodiscard]] FileTime Now() const override;
};

class WindowsFileMetadata final : public FileMetadata {
public:
    [[nodiscard]] std::optional<FileFacts> Read(const std::wstring& path) const override;
};

class WindowsFolderEnumerator final : public FolderEnumerator {
public:
    [[nodiscard]] bool
    Enumerate(const std::wstring& folder,
              const std::function<bool(std::wstring_view name, bool isFolder)>& entry) const override;
};

} // namespace brindlecast
