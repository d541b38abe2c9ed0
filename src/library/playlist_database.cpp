#include "library/playlist_database.h"

#include "base/paths.h"
#include "base/utf8.h"
#include "library/playlist_schema.h"

#include <filesystem>
#include <utility>

namespace brindlecast {

namespace {

#ifdef _WIN32
constexpr const wchar_t* kProgramFolder = L"\\Brindlecast";
constexpr const wchar_t* kFileInFolder = L"\\playlist.db";
#else
constexpr const wchar_t* kProgramFolder = L"/Brindlecast";
constexpr const wchar_t* kFileInFolder = L"/playlist.db";
#endif
constexpr const wchar_t* kFileAlone = L"playlist.db";
constexpr std::int32_t kRecentShown = 10;

std::wstring PrepareLibraryPath(const DataFolderQuery& dataFolder) {
    const std::optional<std::wstring> folder = dataFolder();
    if (!folder) {
        return kFileAlone;
    }
    // That it is there already is no failure, and without it the opening fails.
    std::error_code ignored;
    const std::string name = WideToUtf8(*folder + kProgramFolder);
    std::filesystem::create_directory(std::u8string(name.begin(), name.end()), ignored);
    return LibraryFilePath(*folder);
}

bool MakeTables(sqlite3* connection) {
    char* message = nullptr;
    const bool made = sqlite3_exec(connection, kLibrarySchema, nullptr, nullptr, &message) == SQLITE_OK;
    sqlite3_free(message);
    return made;
}

} // namespace

std::wstring LibraryFilePath(const std::wstring& dataFolder) {
    return dataFolder + kProgramFolder + kFileInFolder;
}

PlaylistDatabase::PlaylistDatabase(const Clock& theClock, DataFolderQuery theDataFolder)
    : clock(theClock), dataFolder(std::move(theDataFolder)) {}

bool PlaylistDatabase::Open() {
    if (connection != nullptr) {
        return true;
    }
    path = PrepareLibraryPath(dataFolder);
    connection = OpenDatabase(path);
    if (connection != nullptr && !MakeTables(connection.get())) {
        connection.reset();
    }
    return connection != nullptr;
}

std::int32_t PlaylistDatabase::InsertItem(const PlaylistItem& item) {
    SqliteStatement insert(
        connection.get(),
        "INSERT OR IGNORE INTO playlist (file_path, file_name, file_size, duration, file_date, codec_info, "
        "sort_order) VALUES (?, ?, ?, ?, ?, ?, ?);");
    if (!insert) {
        return -1;
    }
    insert.BindText(1, item.file_path);
    insert.BindText(2, item.file_name);
    insert.BindInt64(3, static_cast<std::int64_t>(item.file_size));
    insert.BindDouble(4, item.duration);
    insert.BindInt64(5, static_cast<std::int64_t>(item.file_date));
    insert.BindText(6, item.codec_info);
    insert.BindInt(7, item.sort_order);
    return insert.StepToEnd() ? LastRowId(connection.get()) : -1;
}

std::vector<PlaylistItem> PlaylistDatabase::LoadItems() {
    std::vector<PlaylistItem> items;
    SqliteStatement select(connection.get(),
                           "SELECT id, file_path, file_name, file_size, duration, file_date, codec_info, "
                           "sort_order FROM playlist ORDER BY sort_order;");
    while (select && select.StepToRow()) {
        items.push_back({select.IntAt(0), select.TextAt(1), select.TextAt(2),
                         static_cast<std::uint64_t>(select.Int64At(3)), select.DoubleAt(4),
                         static_cast<FileTime>(select.Int64At(5)), select.TextAt(6), select.IntAt(7)});
    }
    return items;
}

void PlaylistDatabase::ClearItems() {
    if (connection != nullptr) {
        sqlite3_exec(connection.get(), "DELETE FROM playlist;", nullptr, nullptr, nullptr);
    }
}

void PlaylistDatabase::UpdateDuration(std::int32_t id, double seconds) {
    if (id < 1) {
        return;
    }
    if (SqliteStatement update(connection.get(), "UPDATE playlist SET duration = ? WHERE id = ?;"); update) {
        update.BindDouble(1, seconds);
        update.BindInt(2, id);
        static_cast<void>(update.StepToEnd());
    }
}

void PlaylistDatabase::UpdateCodecInfo(std::int32_t id, const std::wstring& codecInfo) {
    if (id < 1) {
        return;
    }
    if (SqliteStatement update(connection.get(), "UPDATE playlist SET codec_info = ? WHERE id = ?;");
        update) {
        update.BindText(1, codecInfo);
        update.BindInt(2, id);
        static_cast<void>(update.StepToEnd());
    }
}

std::int32_t PlaylistDatabase::AddRecent(const std::wstring& filePath) {
    if (filePath.empty()) {
        return -1;
    }
    SqliteStatement insert(connection.get(),
                           "INSERT INTO recent_files (file_path, file_name, accessed_at) VALUES (?, ?, ?) "
                           "ON CONFLICT(file_path) DO UPDATE SET file_name = excluded.file_name, "
                           "accessed_at = excluded.accessed_at;");
    if (!insert) {
        return -1;
    }
    insert.BindText(1, filePath);
    insert.BindText(2, std::wstring(FileNameOf(filePath)));
    insert.BindInt64(3, static_cast<std::int64_t>(clock.Now()));
    return insert.StepToEnd() ? LastRowId(connection.get()) : -1;
}

std::vector<std::wstring> PlaylistDatabase::LoadRecent() {
    std::vector<std::wstring> paths;
    SqliteStatement select(connection.get(),
                           "SELECT file_path FROM recent_files ORDER BY accessed_at DESC LIMIT ?;");
    if (!select) {
        return paths;
    }
    select.BindInt(1, kRecentShown);
    while (select.StepToRow()) {
        if (!select.IsNull(0)) {
            paths.push_back(select.TextAt(0));
        }
    }
    return paths;
}

bool PlaylistDatabase::ClearRecent() {
    return connection != nullptr && sqlite3_exec(connection.get(), "DELETE FROM recent_files;", nullptr,
                                                 nullptr, nullptr) == SQLITE_OK;
}

bool PlaylistDatabase::RemoveRecent(const std::wstring& filePath) {
    if (filePath.empty()) {
        return false;
    }
    SqliteStatement remove(connection.get(), "DELETE FROM recent_files WHERE file_path = ?;");
    if (!remove) {
        return false;
    }
    remove.BindText(1, filePath);
    return remove.StepToEnd();
}

} // namespace brindlecast
