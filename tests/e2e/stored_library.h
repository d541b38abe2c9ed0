#pragma once

#include "library/playlist_item.h"

#include <functional>
#include <string>
#include <vector>

namespace brindlecast {
class PlaylistDatabase;
}

namespace brindlecast::testing {

// The program's library file as a test reads and prepares it: each access has a connection of its own that is
// closed at once. The program gives up a row that it can't write while such a connection reads, so nothing
// is read while it opens a file.
class StoredLibrary {
public:
    explicit StoredLibrary(const std::wstring& file);

    // Newest first, ten at most.
    [[nodiscard]] std::vector<std::wstring> RecentFiles() const;
    [[nodiscard]] std::vector<PlaylistItem> Playlist() const;
    [[nodiscard]] std::vector<std::wstring> PlaylistPaths() const;

    // As if these had been opened, the last one of them first, before the program starts.
    void AddRecentFiles(const std::vector<std::wstring>& newestFirst) const;
    void ClearPlaylist() const;

private:
    // Fails the test when the file can't be opened.
    void With(const std::function<void(PlaylistDatabase&)>& access) const;

    std::wstring dataFolder;
};

} // namespace brindlecast::testing
