#include "tests/e2e/stored_library.h"

#include "library/playlist_database.h"
#include "tests/support/library_fakes.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace brindlecast::testing {

StoredLibrary::StoredLibrary(const std::wstring& file)
    : dataFolder(std::filesystem::path(file).parent_path().parent_path().wstring()) {}

void StoredLibrary::With(const std::function<void(PlaylistDatabase&)>& access) const {
    const FakeClock clock; // of days long before the program's own entries
    PlaylistDatabase library(clock, [this]() -> std::optional<std::wstring> { return dataFolder; });
    ASSERT_TRUE(library.Open());
    access(library);
}

std::vector<std::wstring> StoredLibrary::RecentFiles() const {
    std::vector<std::wstring> paths;
    With([&](PlaylistDatabase& library) { paths = library.LoadRecent(); });
    return paths;
}

std::vector<PlaylistItem> StoredLibrary::Playlist() const {
    std::vector<PlaylistItem> items;
    With([&](PlaylistDatabase& library) { items = library.LoadItems(); });
    return items;
}

std::vector<std::wstring> StoredLibrary::PlaylistPaths() const {
    std::vector<std::wstring> paths;
    for (const PlaylistItem& item : Playlist()) {
        paths.push_back(item.file_path);
    }
    return paths;
}

void StoredLibrary::AddRecentFiles(const std::vector<std::wstring>& newestFirst) const {
    With([&](PlaylistDatabase& library) {
        for (auto path = newestFirst.rbegin(); path != newestFirst.rend(); ++path) {
            EXPECT_GE(library.AddRecent(*path), 0);
        }
    });
}

void StoredLibrary::ClearPlaylist() const {
    With([](PlaylistDatabase& library) { library.ClearItems(); });
}

} // namespace brindlecast::testing
