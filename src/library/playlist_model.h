#pragma once

#include "base/file_metadata.h"
#include "base/settings_store.h"
#include "library/playlist_database.h"
#include "library/playlist_item.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace brindlecast {

// What the list asks of others. What is referred to must outlive the model.
struct PlaylistServices {
    SettingsStore& settings;
    const FileMetadata& files;
    PlaylistDatabase& database;
    // The target of a shortcut, or the path itself.
    std::function<std::wstring(const std::wstring& path)> resolveShortcut;
    // The series of a file, in play order.
    std::function<std::vector<std::wstring>(const std::wstring& path, int limit)> findSeries;
    // Natural order of names: negative, 0 or positive.
    std::function<int(const std::wstring& left, const std::wstring& right)> compareNames;
};

// What the window that shows the list is told. Each may be empty.
struct PlaylistListener {
    std::function<void(int rowCount)> rowsChanged;
    std::function<void()> repaintNeeded;
    // Scroll this row into view.
    std::function<void(int row)> rowShown;
    // Select, focus and scroll to this row.
    std::function<void(int row)> rowChosen;
};

enum class PlaylistColumn : std::int32_t { Name = 0, Size = 1, Duration = 2, Date = 3 };

// The play list without its window. An index is a place in `items`, which is the order of playing; a row is
// a place in `filteredIndices`, the view that the search leaves. Main thread only.
class PlaylistModel {
public:
    explicit PlaylistModel(PlaylistServices services);

    // Called before the list changes for the first time.
    void SetListener(PlaylistListener newListener) { listener = std::move(newListener); }

    // Takes over the stored list when the setting asks for it; no item is current then.
    void RestoreIfWanted();

    // An item that is read from the disk, without duration and codecs; a missing file makes one too.
    [[nodiscard]] PlaylistItem MakePlaylistItem(const std::wstring& path) const;
    // Appends a file or a shortcut's target; not twice if the setting forbids it. View and table stay.
    void AddFile(const std::wstring& path);
    // View and table stay.
    void Clear();
    // The first index with that path without regard to case, -1 if there is none.
    [[nodiscard]] std::int32_t FindByPath(const std::wstring& path) const;
    // Finds the rows anew by the search text.
    void RebuildView();
    // Writes the whole list to the table.
    void SyncToDatabase();
    // The list becomes the file's series.
    void ReplaceWithSeries(const std::wstring& path);
    // The same for a file that was dropped: nothing is current, and the table is left empty.
    void ReplaceWithSeriesOfDrop(const std::wstring& path);
    // What playing a file has revealed. An empty text keeps the known one.
    void UpdateMediaInfo(const std::wstring& path, double seconds, const std::wstring& codecText);
    // Rows that do not exist are passed over. The answer is the row to select next, -1 for none.
    int RemoveRows(const std::vector<int>& rows);
    // Keeps the first of each path.
    void RemoveDuplicates();
    // The current item stays current.
    void MoveItem(std::int32_t from, std::int32_t to);
    // The index of the current item stays, so its neighbour becomes current.
    void SwapItems(std::int32_t one, std::int32_t other);
    // Does nothing before a column was chosen. Items with equal keys end in any order.
    void SortBy(PlaylistColumn column, bool ascending);
    // A click on a column's header: ascending at first, the other way round when it is clicked again.
    void ChooseColumn(PlaylistColumn column);
    // Moves the rows in front of `dropRow` as one block. The answer is the block's first row, -1 when nothing
    // moved.
    int ReorderRows(std::vector<int> rows, int dropRow);

    // The four moves of one row; the answer is its new row, -1 when it can't move. The table stays.
    int MoveRowToTop(int row);
    int MoveRowUp(int row);
    int MoveRowDown(int row);
    int MoveRowToBottom(int row);

    // Makes an item the one that plays, and shows its row.
    void SetCurrent(std::int32_t index);
    // Goes on to the next item; empty when there is none.
    [[nodiscard]] std::wstring AdvanceCurrent();
    [[nodiscard]] bool HasNext() const;
    // -1 when the search hides it or nothing is current.
    [[nodiscard]] int RowOfCurrent() const;
    [[nodiscard]] int RowCount() const { return static_cast<int>(filteredIndices.size()); }

    std::vector<PlaylistItem> items;
    std::vector<std::int32_t> filteredIndices; // rising
    std::wstring searchText;                   // as typed
    std::int32_t currentIndex = -1;            // of the item that plays
    std::int32_t sortColumn = -1;              // of the last click on a header
    bool sortAscending = true;

private:
    [[nodiscard]] std::int32_t Count() const { return static_cast<std::int32_t>(items.size()); }
    [[nodiscard]] bool IsIndex(std::int32_t index) const { return index >= 0 && index < Count(); }
    [[nodiscard]] bool IsRow(int row) const { return row >= 0 && row < RowCount(); }
    [[nodiscard]] std::int32_t IndexOf(int row) const {
        return filteredIndices[static_cast<std::size_t>(row)];
    }
    [[nodiscard]] std::wstring CurrentPath() const;
    // The index of the path, -1 for an empty one.
    void MakeCurrent(const std::wstring& path);
    void Append(PlaylistItem item);
    [[nodiscard]] std::vector<std::int32_t> IndicesOf(const std::vector<int>& rows) const;
    void Choose(int row) const;

    PlaylistServices services;
    PlaylistListener listener;
};

} // namespace brindlecast
