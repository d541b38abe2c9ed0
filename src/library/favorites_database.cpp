#include "library/favorites_database.h"

#include "base/case_fold.h"
#include "base/paths.h"

#include <algorithm>
#include <utility>

namespace brindlecast {

namespace {

template <class Array>
bool IsPlaceIn(const Array& array, int place) {
    return place >= 0 && static_cast<std::size_t>(place) < array.size();
}

// The value of a query for the highest order, NULL as 0, plus 1; 0 when it can't be asked.
std::int32_t NextOrder(SqliteStatement& highest) {
    if (!highest) {
        return 0;
    }
    return (highest.StepToRow() ? highest.IntAt(0) : 0) + 1;
}

} // namespace

FavoritesDatabase::FavoritesDatabase(PlaylistDatabase& theLibrary, DataFolderQuery theDataFolder)
    : library(theLibrary), dataFolder(std::move(theDataFolder)) {}

sqlite3* FavoritesDatabase::Handle() {
    if (connection == nullptr) {
        if (library.Connection() == nullptr) {
            library.Open();
        }
        if (const std::optional<std::wstring> folder = dataFolder()) {
            connection = OpenDatabase(LibraryFilePath(*folder));
        }
    }
    return connection.get();
}

void FavoritesDatabase::LoadAll() {
    groups.clear();
    SqliteStatement select(Handle(), "SELECT id, name, sort_order FROM favorite_groups ORDER BY sort_order;");
    while (select && select.StepToRow()) {
        FavoriteGroup group{select.IntAt(0), select.TextAt(1), select.IntAt(2), {}};
        group.items = LoadItemsOf(group.id);
        groups.push_back(std::move(group));
    }
}

std::vector<FavoriteItem> FavoritesDatabase::LoadItemsOf(std::int32_t groupId) {
    std::vector<FavoriteItem> items;
    SqliteStatement select(connection.get(), "SELECT id, file_path, file_name, position, sort_order FROM "
                                             "favorite_items WHERE group_id = ? ORDER BY sort_order;");
    if (!select) {
        return items;
    }
    select.BindInt(1, groupId);
    while (select.StepToRow()) {
        items.push_back({select.IntAt(0), groupId, select.TextAt(1), select.TextAt(2), select.DoubleAt(3),
                         select.IntAt(4)});
    }
    return items;
}

FavoriteGroup* FavoritesDatabase::GroupAt(int group) {
    return IsPlaceIn(groups, group) ? &groups[static_cast<std::size_t>(group)] : nullptr;
}

bool FavoritesDatabase::AddGroup(const std::wstring& name) {
    if (name.empty() || groups.size() >= kMaxGroups ||
        std::ranges::find(groups, name, &FavoriteGroup::name) != groups.end()) {
        return false;
    }
    SqliteStatement highest(Handle(), "SELECT MAX(sort_order) FROM favorite_groups;");
    FavoriteGroup group;
    group.name = name;
    group.sort_order = NextOrder(highest);
    SqliteStatement insert(connection.get(), "INSERT INTO favorite_groups (name, sort_order) VALUES (?, ?);");
    if (!insert) {
        return false;
    }
    insert.BindText(1, name);
    insert.BindInt(2, group.sort_order);
    group.id = insert.StepToEnd() ? LastRowId(connection.get()) : -1;
    if (group.id <= 0) {
        return false;
    }
    groups.push_back(std::move(group));
    return true;
}

bool FavoritesDatabase::RenameGroup(int index, const std::wstring& name) {
    FavoriteGroup* const group = GroupAt(index);
    if (group == nullptr || name.empty()) {
        return false;
    }
    if (std::ranges::any_of(
            groups, [&](const FavoriteGroup& other) { return &other != group && other.name == name; })) {
        return false;
    }
    group->name = name;
    if (group->id >= 1) {
        SqliteStatement update(Handle(), "UPDATE favorite_groups SET name = ?, sort_order = ? WHERE id = ?;");
        if (update) {
            update.BindText(1, name);
            update.BindInt(2, group->sort_order);
            update.BindInt(3, group->id);
            static_cast<void>(update.StepToEnd());
        }
    }
    return true;
}

bool FavoritesDatabase::DeleteRow(const char* sql, std::int32_t id) {
    if (id < 1) {
        return false;
    }
    SqliteStatement remove(Handle(), sql);
    if (!remove) {
        return false;
    }
    remove.BindInt(1, id);
    return remove.StepToEnd();
}

bool FavoritesDatabase::DeleteGroup(int index) {
    const FavoriteGroup* const group = GroupAt(index);
    // The rows of its items go with it by the foreign key.
    if (group == nullptr || !DeleteRow("DELETE FROM favorite_groups WHERE id = ?;", group->id)) {
        return false;
    }
    groups.erase(groups.begin() + index);
    return true;
}

bool FavoritesDatabase::AddOrUpdateItem(int index, const std::wstring& filePath, double position) {
    FavoriteGroup* const group = GroupAt(index);
    if (group == nullptr) {
        return false;
    }
    const auto known = std::ranges::find_if(
        group->items, [&](const FavoriteItem& item) { return EqualIgnoringCase(item.file_path, filePath); });
    if (known != group->items.end()) {
        known->position = position;
        UpdateItem(*known);
        return true;
    }
    if (group->items.size() >= kMaxItems) {
        return false;
    }
    SqliteStatement highest(Handle(), "SELECT MAX(sort_order) FROM favorite_items WHERE group_id = ?;");
    if (highest) {
        highest.BindInt(1, group->id);
    }
    FavoriteItem item{0,        group->id,         filePath, std::wstring(FileNameOf(filePath)),
                      position, NextOrder(highest)};
    item.id = InsertItem(item);
    if (item.id <= 0) {
        return false;
    }
    group->items.push_back(std::move(item));
    return true;
}

std::int32_t FavoritesDatabase::InsertItem(const FavoriteItem& item) {
    SqliteStatement insert(
        Handle(), "INSERT INTO favorite_items (group_id, file_path, file_name, position, sort_order) "
                  "VALUES (?, ?, ?, ?, ?);");
    if (!insert) {
        return -1;
    }
    insert.BindInt(1, item.group_id);
    insert.BindText(2, item.file_path);
    insert.BindText(3, item.file_name);
    insert.BindDouble(4, item.position);
    insert.BindInt(5, item.sort_order);
    return insert.StepToEnd() ? LastRowId(connection.get()) : -1;
}

bool FavoritesDatabase::UpdateItem(const FavoriteItem& item) {
    if (item.id < 1) {
        return false;
    }
    SqliteStatement update(Handle(), "UPDATE favorite_items SET position = ?, sort_order = ? WHERE id = ?;");
    if (!update) {
        return false;
    }
    update.BindDouble(1, item.position);
    update.BindInt(2, item.sort_order);
    update.BindInt(3, item.id);
    return update.StepToEnd();
}

bool FavoritesDatabase::RemoveItem(int index, int item) {
    FavoriteGroup* const group = GroupAt(index);
    if (group == nullptr || !IsPlaceIn(group->items, item) ||
        !DeleteRow("DELETE FROM favorite_items WHERE id = ?;",
                   group->items[static_cast<std::size_t>(item)].id)) {
        return false;
    }
    group->items.erase(group->items.begin() + item);
    return true;
}

void FavoritesDatabase::ClearGroup(int index) {
    FavoriteGroup* const group = GroupAt(index);
    if (group == nullptr) {
        return;
    }
    static_cast<void>(DeleteRow("DELETE FROM favorite_items WHERE group_id = ?;", group->id));
    group->items.clear();
}

} // namespace brindlecast
