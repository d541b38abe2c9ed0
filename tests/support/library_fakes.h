#pragma once

#include "base/file_metadata.h"

#include <map>
#include <string>
#include <vector>

namespace brindlecast::testing {

// Each question takes a tick.
class FakeClock final : public Clock {
public:
    [[nodiscard]] FileTime Now() const override { return now++; }
    mutable FileTime now = 133'000'000'000'000'000;
};

// Knows the files that a test names.
class FakeFileMetadata final : public FileMetadata {
public:
    [[nodiscard]] std::optional<FileFacts> Read(const std::wstring& path) const override {
        const auto found = facts.find(path);
        return found != facts.end() ? std::optional(found->second) : std::nullopt;
    }
    std::map<std::wstring, FileFacts> facts;
};

// Names entries in the order in which a test has put them.
class FakeFolder final : public FolderEnumerator {
public:
    struct Entry {
        std::wstring name;
        bool isFolder = false;
    };
    [[nodiscard]] bool
    Enumerate(const std::wstring& folder,
              const std::function<bool(std::wstring_view name, bool isFolder)>& entry) const override {
        asked.push_back(folder);
        if (!readable) {
            return false;
        }
        for (const Entry& each : entries) {
            ++given;
            if (!entry(each.name, each.isFolder)) {
                break;
            }
        }
        return true;
    }
    std::vector<Entry> entries;
    bool readable = true;
    mutable std::vector<std::wstring> asked;
    mutable int given = 0;
};

} // namespace brindlecast::testing
