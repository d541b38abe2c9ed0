#pragma once

#include "library/playlist_database.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace brindlecast {

// A file with the place to start at.
struct FavoriteItem {
    std::int32_t id = 0; // row id
    std::int32_t group_id = 0;
    std::wstring file_path; // unique in its group without regard to case
    std::wstring file_name;
    double position = 0;         // seconds; 0 means from the beginning
    std::int32_t sort_order = 0; // as stored, or the place after a move
    bool operator==(const FavoriteItem&) const = default;
};

struct FavoriteGroup {
    std::int32_t id = 0; // row id
    std::wstring name;   // unique
    std::int32_t sort_order = 0;
    std::vector<FavoriteItem> items; // in display order
    bool operator==(const FavoriteGroup&) const = default;
};

// All favorites, in memory and, by a connection of its own, in the library file: each change is written when
// it happens. Groups and items are addressed by their places. Nothing of it fails loudly: without a
// connection nothing can be added or removed. Main thread only.
class FavoritesDatabase {
public:
    static constexpr std::size_t kMaxGroups = 50;
    static constexpr std::size_t kMaxItems = 100; // of one group

    // The process-wide object; the first call makes sure that the library's tables exist and loads all.
    [[nodiscard]] static FavoritesDatabase& Instance();

    // `library`, which makes the tables, must outlive the object. Without a data folder there is no
    // connection.
    FavoritesDatabase(PlaylistDatabase& library, DataFolderQuery dataFolder);

    // The connection, opened at first; null when it can't be opened, and the next call tries again.
    [[nodiscard]] sqlite3* Handle();
    // Reads everything anew.
    void LoadAll();

    // Valid until the groups change; null when there is no such group.
    [[nodiscard]] FavoriteGroup* GroupAt(int group);
    // False for an empty or known name (case counts), when there are 50 groups, and when the row can't be
    // written.
    bool AddGroup(const std::wstring& name);
    // False for an empty name or that of another group. The row is written if it can be.
    bool RenameGroup(int group, const std::wstring& name);
    // With all its items.
    bool DeleteGroup(int group);
    // Sets the position of the item with that path, without regard to case, or appends one; false when the
    // group is full or the row can't be written.
    bool AddOrUpdateItem(int group, const std::wstring& filePath, double position);
    bool RemoveItem(int group, int item);
    // Empties the group in memory even if its rows can't be deleted.
    void ClearGroup(int group);

    std::vector<FavoriteGroup> groups; // in display order

private:
    [[nodiscard]] std::vector<FavoriteItem> LoadItemsOf(std::int32_t groupId);
    [[nodiscard]] std::int32_t InsertItem(const FavoriteItem& item);
    bool UpdateItem(const FavoriteItem& item);
    // Deletes one row; false when there is none to delete or it can't be done.
    [[nodiscard]] bool DeleteRow(const char* sql, std::int32_t id);

    PlaylistDatabase& library;
    DataFolderQuery dataFolder;
    SqliteConnection connection;
};

} // namespace brindlecast
