#pragma once

#include "base/file_time.h"
#include "library/playlist_item.h"
#include "library/sqlite.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace brindlecast {

// The user's folder of application data, without a separator at its end; nothing when there is none.
using DataFolderQuery = std::function<std::optional<std::wstring>()>;

// The library file below the folder of application data.
[[nodiscard]] std::wstring LibraryFilePath(const std::wstring& dataFolder);

// The play list and the recent files in the library file, whose tables it makes. Nothing of it fails
// loudly: without a connection every operation answers -1, false or nothing. Main thread only.
class PlaylistDatabase {
public:
    // The process-wide object; its file is opened by Open.
    [[nodiscard]] static PlaylistDatabase& Instance();

    // `clock` must outlive the object.
    PlaylistDatabase(const Clock& clock, DataFolderQuery dataFolder);

    // True when the file is open and has its tables; opens it at first. Without a data folder the file lies
    // in the current directory.
    bool Open();
    [[nodiscard]] sqlite3* Connection() const { return connection.get(); }
    // As the last Open found it.
    [[nodiscard]] const std::wstring& Path() const { return path; }

    // The play list. The table is rewritten whole by clearing it and inserting every item.

    // The row's id, or -1. A path that the table holds already is dropped, and the answer then means nothing.
    std::int32_t InsertItem(const PlaylistItem& item);
    [[nodiscard]] std::vector<PlaylistItem> LoadItems();
    void ClearItems();
    // Nothing happens for an id below 1.
    void UpdateDuration(std::int32_t id, double seconds);
    void UpdateCodecInfo(std::int32_t id, const std::wstring& codecInfo);

    // The recent files. The table keeps all of them, reading gives the newest ten.

    // The row's id, or -1. A known path moves to the front.
    std::int32_t AddRecent(const std::wstring& filePath);
    [[nodiscard]] std::vector<std::wstring> LoadRecent();
    bool ClearRecent();
    bool RemoveRecent(const std::wstring& filePath);

private:
    const Clock& clock;
    DataFolderQuery dataFolder;
    SqliteConnection connection;
    std::wstring path;
};

} // namespace brindlecast
