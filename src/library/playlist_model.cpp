#include "library/playlist_model.h"

#include "app/settings.h"
#include "base/case_fold.h"
#include "base/paths.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace brindlecast {

namespace {

constexpr int kSeriesLimit = 100;
constexpr std::wstring_view kShortcutExtension = L".lnk";

} // namespace

PlaylistModel::PlaylistModel(PlaylistServices theServices) : services(std::move(theServices)) {}

void PlaylistModel::RestoreIfWanted() {
    if (ReadSetting(services.settings, settings::kPlaylistRestoreOnStartup) == 0) {
        return;
    }
    items = services.database.LoadItems();
    RebuildView();
}

PlaylistItem PlaylistModel::MakePlaylistItem(const std::wstring& path) const {
    PlaylistItem item;
    item.file_path = path;
    item.file_name = FileNameOf(path);
    if (const auto facts = services.files.Read(path)) {
        item.file_size = facts->size;
        item.file_date = facts->lastWriteTime;
    }
    return item;
}

void PlaylistModel::Append(PlaylistItem item) {
    item.sort_order = Count();
    items.push_back(std::move(item));
}

void PlaylistModel::AddFile(const std::wstring& path) {
    const bool isShortcut =
        path.size() >= kShortcutExtension.size() && ToLower(path).ends_with(kShortcutExtension);
    const std::wstring file = isShortcut ? services.resolveShortcut(path) : path;
    const bool once = ReadSetting(services.settings, settings::kPlaylistPreventDuplicates) != 0;
    if (once && FindByPath(file) >= 0) {
        return;
    }
    Append(MakePlaylistItem(file));
}

void PlaylistModel::Clear() {
    items.clear();
    currentIndex = -1;
}

std::int32_t PlaylistModel::FindByPath(const std::wstring& path) const {
    const auto found = std::ranges::find_if(
        items, [&](const PlaylistItem& item) { return EqualIgnoringCase(item.file_path, path); });
    return found != items.end() ? static_cast<std::int32_t>(found - items.begin()) : -1;
}

void PlaylistModel::RebuildView() {
    filteredIndices.clear();
    const std::wstring wanted = ToLower(searchText);
    for (std::int32_t index = 0; index < Count(); ++index) {
        const std::wstring& name = items[static_cast<std::size_t>(index)].file_name;
        if (wanted.empty() || ToLower(name).find(wanted) != std::wstring::npos) {
            filteredIndices.push_back(index);
        }
    }
    if (listener.rowsChanged) {
        listener.rowsChanged(RowCount());
    }
}

void PlaylistModel::SyncToDatabase() {
    services.database.ClearItems();
    for (std::int32_t index = 0; index < Count(); ++index) {
        PlaylistItem& item = items[static_cast<std::size_t>(index)];
        item.sort_order = index;
        // The new row's id is not taken over: items keep the one that they were loaded with.
        services.database.InsertItem(item);
    }
}

void PlaylistModel::Choose(int row) const {
    if (listener.rowChosen) {
        listener.rowChosen(row);
    }
}

void PlaylistModel::ReplaceWithSeries(const std::wstring& path) {
    Clear();
    for (const std::wstring& file : services.findSeries(path, kSeriesLimit)) {
        Append(MakePlaylistItem(file));
    }
    currentIndex = FindByPath(path);
    RebuildView();
    SyncToDatabase();
    if (currentIndex >= 0) {
        Choose(currentIndex); // as a row, whatever the search hides
    }
}

void PlaylistModel::ReplaceWithSeriesOfDrop(const std::wstring& path) {
    const std::vector<std::wstring> series = services.findSeries(path, kSeriesLimit);
    Clear();
    RebuildView();
    SyncToDatabase();
    for (const std::wstring& file : series) {
        AddFile(file);
    }
    RebuildView();
}

void PlaylistModel::UpdateMediaInfo(const std::wstring& path, double seconds, const std::wstring& codecText) {
    const std::int32_t index = FindByPath(path);
    if (index < 0) {
        return;
    }
    PlaylistItem& item = items[static_cast<std::size_t>(index)];
    item.duration = seconds;
    if (!codecText.empty()) {
        item.codec_info = codecText;
    }
    if (listener.repaintNeeded) {
        listener.repaintNeeded();
    }
    services.database.UpdateDuration(item.id, seconds);
    if (!codecText.empty()) {
        services.database.UpdateCodecInfo(item.id, codecText);
    }
}

std::vector<std::int32_t> PlaylistModel::IndicesOf(const std::vector<int>& rows) const {
    std::vector<std::int32_t> indices;
    for (const int row : rows) {
        if (IsRow(row)) {
            indices.push_back(IndexOf(row));
        }
    }
    std::ranges::sort(indices);
    indices.erase(std::unique(indices.begin(), indices.end()), indices.end());
    return indices;
}

int PlaylistModel::RemoveRows(const std::vector<int>& rows) {
    const std::vector<std::int32_t> removed = IndicesOf(rows);
    const auto place = std::ranges::lower_bound(removed, currentIndex);
    if (place != removed.end() && *place == currentIndex) {
        currentIndex = -1;
    } else if (currentIndex >= 0) {
        currentIndex -= static_cast<std::int32_t>(place - removed.begin());
    }
    // In one pass: erasing one by one would move the rest of a long list each time.
    std::vector<PlaylistItem> kept;
    kept.reserve(items.size() - removed.size());
    auto next = removed.begin();
    for (std::int32_t index = 0; index < Count(); ++index) {
        if (next != removed.end() && *next == index) {
            ++next;
        } else {
            kept.push_back(std::move(items[static_cast<std::size_t>(index)]));
        }
    }
    items = std::move(kept);
    RebuildView();
    SyncToDatabase();
    return rows.empty() ? -1 : std::min(rows.front(), RowCount() - 1);
}

std::wstring PlaylistModel::CurrentPath() const {
    return IsIndex(currentIndex) ? items[static_cast<std::size_t>(currentIndex)].file_path : std::wstring();
}

void PlaylistModel::MakeCurrent(const std::wstring& path) {
    currentIndex = path.empty() ? -1 : FindByPath(path);
}

void PlaylistModel::RemoveDuplicates() {
    if (items.empty()) {
        return;
    }
    const std::wstring current = CurrentPath();
    std::unordered_set<std::wstring> seen;
    std::erase_if(items,
                  [&](const PlaylistItem& item) { return !seen.insert(ToLower(item.file_path)).second; });
    MakeCurrent(current);
    RebuildView();
    SyncToDatabase();
}

void PlaylistModel::MoveItem(std::int32_t from, std::int32_t to) {
    if (!IsIndex(from) || !IsIndex(to) || from == to) {
        return;
    }
    const auto first = items.begin();
    if (from < to) {
        std::rotate(first + from, first + from + 1, first + to + 1);
    } else {
        std::rotate(first + to, first + from, first + from + 1);
    }
    if (currentIndex == from) {
        currentIndex = to;
    } else if (from < to && currentIndex > from && currentIndex <= to) {
        --currentIndex;
    } else if (from > to && currentIndex >= to && currentIndex < from) {
        ++currentIndex;
    }
}

void PlaylistModel::SwapItems(std::int32_t one, std::int32_t other) {
    std::swap(items[static_cast<std::size_t>(one)], items[static_cast<std::size_t>(other)]);
}

void PlaylistModel::ChooseColumn(PlaylistColumn column) {
    const auto number = static_cast<std::int32_t>(column);
    sortAscending = number == sortColumn ? !sortAscending : true;
    sortColumn = number;
    SortBy(column, sortAscending);
}

void PlaylistModel::SortBy(PlaylistColumn column, bool ascending) {
    if (sortColumn < 0 || items.empty()) {
        return;
    }
    const std::wstring current = CurrentPath();
    const auto comesBefore = [&](const PlaylistItem& left, const PlaylistItem& right) {
        switch (column) {
        case PlaylistColumn::Name: return services.compareNames(left.file_name, right.file_name) < 0;
        case PlaylistColumn::Size: return left.file_size < right.file_size;
        case PlaylistColumn::Duration: return left.duration < right.duration;
        case PlaylistColumn::Date: return left.file_date < right.file_date;
        }
        return false;
    };
    // Merging stays within the list whatever a comparison answers, which the usual sort does not.
    if (ascending) {
        std::ranges::stable_sort(items, comesBefore);
    } else {
        std::ranges::stable_sort(items, [&](const PlaylistItem& left, const PlaylistItem& right) {
            return comesBefore(right, left);
        });
    }
    if (!current.empty()) {
        MakeCurrent(current);
    }
    RebuildView();
    SyncToDatabase();
}

int PlaylistModel::ReorderRows(std::vector<int> rows, int dropRow) {
    if (rows.empty() || dropRow < 0 || Count() < 2) {
        return -1;
    }
    std::ranges::sort(rows);
    const bool adjacent = rows.back() - rows.front() + 1 == static_cast<int>(rows.size());
    if (dropRow > rows.front() && dropRow <= rows.back() + 1 && adjacent) {
        return -1; // there already
    }
    const std::vector<std::int32_t> moved = IndicesOf(rows);
    if (moved.empty()) {
        return -1;
    }
    const std::wstring current = CurrentPath();
    const std::int32_t target = dropRow >= RowCount() ? Count() : IndexOf(dropRow);
    std::vector<PlaylistItem> block;
    std::vector<PlaylistItem> rest;
    std::size_t insertion = 0;
    auto next = moved.begin();
    for (std::int32_t index = 0; index < Count(); ++index) {
        PlaylistItem& item = items[static_cast<std::size_t>(index)];
        if (next != moved.end() && *next == index) {
            block.push_back(std::move(item));
            ++next;
        } else {
            rest.push_back(std::move(item));
            insertion += index < target ? 1 : 0;
        }
    }
    rest.insert(rest.begin() + static_cast<std::ptrdiff_t>(insertion), std::move_iterator(block.begin()),
                std::move_iterator(block.end()));
    items = std::move(rest);
    if (!current.empty()) {
        MakeCurrent(current);
    }
    RebuildView();
    SyncToDatabase();
    return static_cast<int>(insertion);
}

int PlaylistModel::MoveRowToTop(int row) {
    if (row <= 0 || !IsRow(row)) {
        return -1;
    }
    MoveItem(IndexOf(row), 0);
    RebuildView();
    Choose(0);
    return 0;
}

int PlaylistModel::MoveRowUp(int row) {
    if (row <= 0 || !IsRow(row)) {
        return -1;
    }
    SwapItems(IndexOf(row), IndexOf(row - 1));
    RebuildView();
    Choose(row - 1);
    return row - 1;
}

int PlaylistModel::MoveRowDown(int row) {
    if (row < 0 || row >= RowCount() - 1) {
        return -1;
    }
    SwapItems(IndexOf(row), IndexOf(row + 1));
    RebuildView();
    Choose(row + 1);
    return row + 1;
}

int PlaylistModel::MoveRowToBottom(int row) {
    if (row < 0 || row >= RowCount() - 1) {
        return -1;
    }
    MoveItem(IndexOf(row), Count() - 1);
    RebuildView();
    Choose(RowCount() - 1);
    return RowCount() - 1;
}

void PlaylistModel::SetCurrent(std::int32_t index) {
    currentIndex = index;
    if (listener.repaintNeeded) {
        listener.repaintNeeded();
    }
    if (const int row = RowOfCurrent(); row >= 0 && listener.rowShown) {
        listener.rowShown(row);
    }
}

bool PlaylistModel::HasNext() const {
    return currentIndex >= 0 && currentIndex < Count() - 1;
}

std::wstring PlaylistModel::AdvanceCurrent() {
    if (!HasNext()) {
        return {};
    }
    SetCurrent(currentIndex + 1);
    return items[static_cast<std::size_t>(currentIndex)].file_path;
}

int PlaylistModel::RowOfCurrent() const {
    const auto found = std::ranges::find(filteredIndices, currentIndex);
    return found != filteredIndices.end() ? static_cast<int>(found - filteredIndices.begin()) : -1;
}

} // namespace brindlecast
