#include "tests/support/library_fixture.h"

#include <cstdlib>
#include <fstream>

namespace brindlecast::testing {
namespace {

using Rows = std::vector<std::string>;
using Paths = std::vector<std::wstring>;

class PlaylistDatabaseTest : public LibraryTest {
protected:
    PlaylistItem Item(const std::wstring& path, int order) {
        PlaylistItem item;
        item.file_path = path;
        item.file_name = L"이름.mkv";
        item.file_size = 5'000'000'000;
        item.duration = 59.5;
        item.file_date = 0x01DA'0000'1234'5678;
        item.codec_info = L"H264/AAC";
        item.sort_order = order;
        return item;
    }
    PlaylistDatabase database{clock, DataFolder()};
};

TEST_F(PlaylistDatabaseTest, AFirstRunMakesFolderFileAndFourEmptyTables) {
    ASSERT_TRUE(database.Open());
    EXPECT_TRUE(std::filesystem::exists(File()));
    EXPECT_EQ((Rows{"favorite_groups", "favorite_items", "playlist", "recent_files", "sqlite_sequence"}),
              Query("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name"));
    for (const char* table : {"favorite_groups", "favorite_items", "playlist", "recent_files"}) {
        EXPECT_EQ(Rows{"0"}, Query(std::string("SELECT COUNT(*) FROM ") + table)) << table;
    }
    EXPECT_EQ(Rows{"0"}, Query("PRAGMA user_version"));
}

TEST_F(PlaylistDatabaseTest, TheTablesHaveTheirColumnsWordForWord) {
    ASSERT_TRUE(database.Open());
    const auto sql = [this](const char* name) {
        return Query(std::string("SELECT sql FROM sqlite_master WHERE name = '") + name + "'").at(0);
    };
    const auto holds = [&](const char* table, std::initializer_list<const char*> definitions) {
        std::size_t at = 0;
        for (const char* definition : definitions) {
            const std::size_t found = sql(table).find(definition, at);
            EXPECT_NE(std::string::npos, found) << table << ": " << definition;
            at = found == std::string::npos ? at : found + 1;
        }
    };
    holds("playlist", {"id INTEGER PRIMARY KEY AUTOINCREMENT", "file_path TEXT UNIQUE NOT NULL",
                       "file_name TEXT", "file_size INTEGER DEFAULT 0", "duration REAL DEFAULT 0",
                       "file_date INTEGER DEFAULT 0", "codec_info TEXT", "sort_order INTEGER DEFAULT 0"});
    holds("favorite_groups", {"id INTEGER PRIMARY KEY AUTOINCREMENT", "name TEXT UNIQUE NOT NULL",
                              "sort_order INTEGER DEFAULT 0"});
    holds("favorite_items",
          {"id INTEGER PRIMARY KEY AUTOINCREMENT", "group_id INTEGER NOT NULL", "file_path TEXT NOT NULL",
           "file_name TEXT", "position REAL DEFAULT 0", "sort_order INTEGER DEFAULT 0",
           "FOREIGN KEY (group_id) REFERENCES favorite_groups(id) ON DELETE CASCADE",
           "UNIQUE(group_id, file_path)"});
    holds("recent_files", {"id INTEGER PRIMARY KEY AUTOINCREMENT", "file_path TEXT UNIQUE NOT NULL",
                           "file_name TEXT", "accessed_at INTEGER DEFAULT 0"});
    EXPECT_EQ("CREATE INDEX idx_sort_order ON playlist(sort_order)", sql("idx_sort_order"));
    EXPECT_EQ("CREATE INDEX idx_file_path ON playlist(file_path)", sql("idx_file_path"));
    EXPECT_EQ("CREATE INDEX idx_fav_items_group ON favorite_items(group_id)", sql("idx_fav_items_group"));
    EXPECT_EQ("CREATE INDEX idx_recent_accessed ON recent_files(accessed_at DESC)",
              sql("idx_recent_accessed"));
}

TEST_F(PlaylistDatabaseTest, OpeningAgainChangesNothing) {
    ASSERT_TRUE(database.Open());
    sqlite3* const first = database.Connection();
    database.InsertItem(Item(L"C:\\가.mkv", 0));
    EXPECT_TRUE(database.Open());
    EXPECT_EQ(first, database.Connection());
    EXPECT_EQ(1U, database.LoadItems().size());
    const auto dump = Query("SELECT * FROM sqlite_master");
    PlaylistDatabase second(clock, DataFolder());
    ASSERT_TRUE(second.Open());
    EXPECT_EQ(dump, Query("SELECT * FROM sqlite_master"));
    EXPECT_EQ(1U, second.LoadItems().size());
}

TEST_F(PlaylistDatabaseTest, APathThatCanNotBeOpenedLeavesEverythingEmpty) {
    std::filesystem::create_directories(File()); // a folder in the file's place
    EXPECT_FALSE(database.Open());
    EXPECT_EQ(nullptr, database.Connection());
    EXPECT_TRUE(database.LoadItems().empty());
    EXPECT_TRUE(database.LoadRecent().empty());
    EXPECT_EQ(-1, database.InsertItem(Item(L"C:\\a.mkv", 0)));
    EXPECT_EQ(-1, database.AddRecent(L"C:\\a.mkv"));
    EXPECT_FALSE(database.ClearRecent());
    EXPECT_FALSE(database.RemoveRecent(L"C:\\a.mkv"));
    database.ClearItems();
    database.UpdateDuration(1, 2.0);
    database.UpdateCodecInfo(1, L"x");
}

TEST_F(PlaylistDatabaseTest, AFileThatIsNoDatabaseStaysAsItIs) {
    std::filesystem::create_directories(File().parent_path());
    const std::string text(5000, 'x');
    std::ofstream(File(), std::ios::binary) << text;
    EXPECT_FALSE(database.Open());
    EXPECT_EQ(nullptr, database.Connection());
    std::ifstream in(File(), std::ios::binary);
    EXPECT_EQ(text, std::string(std::istreambuf_iterator<char>(in), {}));
}

TEST_F(PlaylistDatabaseTest, ATruncatedFileIsRefusedOrReadAsFarAsItGoes) {
    ASSERT_TRUE(database.Open());
    for (int i = 0; i < 200; ++i) {
        database.InsertItem(Item(L"C:\\film " + std::to_wstring(i) + L".mkv", i));
    }
    std::filesystem::copy_file(File(), folder / "whole.db");
    const auto size = std::filesystem::file_size(File());
    for (const auto part : {std::uintmax_t{100}, size / 2, size - 1}) {
        const std::filesystem::path other = folder / ("cut" + std::to_string(part));
        std::filesystem::create_directories(other / "Brindlecast");
        std::filesystem::copy_file(folder / "whole.db", other / "Brindlecast" / "playlist.db");
        std::filesystem::resize_file(other / "Brindlecast" / "playlist.db", part);
        PlaylistDatabase cut(clock, [&] { return std::optional(WideName(other)); });
        static_cast<void>(cut.Open());
        EXPECT_LE(cut.LoadItems().size(), 200U);
        static_cast<void>(cut.AddRecent(L"C:\\a.mkv"));
    }
    EXPECT_EQ(200U, database.LoadItems().size());
}

TEST_F(PlaylistDatabaseTest, ALockedFileGivesEmptyResultsAndLosesNothing) {
    ASSERT_TRUE(database.Open());
    database.InsertItem(Item(L"C:\\a.mkv", 0));
    const SqliteConnection locker = OpenDatabase(WideName(File()));
    ASSERT_EQ(SQLITE_OK, sqlite3_exec(locker.get(), "BEGIN EXCLUSIVE;", nullptr, nullptr, nullptr));
    PlaylistDatabase second(clock, DataFolder());
    EXPECT_FALSE(second.Open());
    EXPECT_EQ(-1, database.InsertItem(Item(L"C:\\b.mkv", 1)));
    EXPECT_EQ(-1, database.AddRecent(L"C:\\b.mkv"));
    EXPECT_TRUE(database.LoadItems().empty());
    ASSERT_EQ(SQLITE_OK, sqlite3_exec(locker.get(), "ROLLBACK;", nullptr, nullptr, nullptr));
    EXPECT_EQ(1U, database.LoadItems().size());
    EXPECT_TRUE(second.Open());
}

TEST_F(PlaylistDatabaseTest, WithoutADataFolderTheFileLiesInTheCurrentFolder) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder);
    LoseDataFolder();
    EXPECT_TRUE(database.Open());
    EXPECT_EQ(L"playlist.db", database.Path());
    EXPECT_TRUE(std::filesystem::exists(folder / "playlist.db"));
    std::filesystem::current_path(before);
}

TEST_F(PlaylistDatabaseTest, AnItemIsStoredColumnByColumn) {
    ASSERT_TRUE(database.Open());
    EXPECT_EQ(1, database.InsertItem(Item(L"D:\\영화\\첫 화.mkv", 7)));
    EXPECT_EQ(
        Rows{"1|D:\\영화\\첫 화.mkv|이름.mkv|5000000000|59.5|133419139266270840|H264/AAC|7"},
        Query("SELECT id, file_path, file_name, file_size, duration, file_date, codec_info, sort_order FROM "
              "playlist"));
    PlaylistItem expected = Item(L"D:\\영화\\첫 화.mkv", 7);
    expected.id = 1;
    EXPECT_EQ(std::vector<PlaylistItem>{expected}, database.LoadItems());
}

TEST_F(PlaylistDatabaseTest, EmptyTextsAreStoredAsTextsAndNullIsReadAsEmpty) {
    ASSERT_TRUE(database.Open());
    PlaylistItem item;
    item.file_path = L"a";
    database.InsertItem(item);
    EXPECT_EQ(Rows{"text|text"}, Query("SELECT typeof(file_name), typeof(codec_info) FROM playlist"));
    Run("INSERT INTO playlist (file_path, file_name, codec_info, sort_order) VALUES ('b', NULL, NULL, 1)");
    const auto items = database.LoadItems();
    ASSERT_EQ(2U, items.size());
    EXPECT_EQ(L"", items[1].file_name);
    EXPECT_EQ(L"", items[1].codec_info);
}

TEST_F(PlaylistDatabaseTest, ItemsComeInTheirOrderAndATableOfNoRowsIsEmpty) {
    ASSERT_TRUE(database.Open());
    EXPECT_TRUE(database.LoadItems().empty());
    database.InsertItem(Item(L"second", 2));
    database.InsertItem(Item(L"first", 1));
    database.InsertItem(Item(L"zeroth", 0));
    const auto items = database.LoadItems();
    ASSERT_EQ(3U, items.size());
    EXPECT_EQ(L"zeroth", items[0].file_path);
    EXPECT_EQ(L"second", items[2].file_path);
}

TEST_F(PlaylistDatabaseTest, TheSamePathStandsOnceAndAnotherCaseTwice) {
    ASSERT_TRUE(database.Open());
    EXPECT_EQ(1, database.InsertItem(Item(L"C:\\a.mkv", 0)));
    EXPECT_EQ(1, database.InsertItem(Item(L"C:\\a.mkv", 1))) << "the id of an earlier insert";
    EXPECT_GT(database.InsertItem(Item(L"C:\\A.MKV", 2)), 1);
    EXPECT_EQ(2U, database.LoadItems().size());
}

TEST_F(PlaylistDatabaseTest, IdsAreNeverUsedAgain) {
    ASSERT_TRUE(database.Open());
    database.InsertItem(Item(L"a", 0));
    database.InsertItem(Item(L"b", 1));
    database.ClearItems();
    EXPECT_TRUE(database.LoadItems().empty());
    EXPECT_EQ(3, database.InsertItem(Item(L"a", 0)));
}

TEST_F(PlaylistDatabaseTest, AnIdIsCutToItsLowHalf) {
    ASSERT_TRUE(database.Open());
    Run("INSERT INTO playlist (id, file_path) VALUES (4294967300, 'far')");
    EXPECT_EQ(5, database.InsertItem(Item(L"next", 1)));
    EXPECT_EQ(4, database.LoadItems()[0].id);
}

TEST_F(PlaylistDatabaseTest, UpdatesGoByIdAndAnIdBelowOneDoesNothing) {
    ASSERT_TRUE(database.Open());
    database.InsertItem(Item(L"a", 0));
    database.UpdateDuration(1, 12.25);
    database.UpdateCodecInfo(1, L"HEVC/OPUS");
    EXPECT_EQ(Rows{"12.25|HEVC/OPUS"}, Query("SELECT duration, codec_info FROM playlist"));
    for (const std::int32_t id : {0, -1, 99}) {
        database.UpdateDuration(id, 1.0);
        database.UpdateCodecInfo(id, L"x");
    }
    EXPECT_EQ(Rows{"12.25|HEVC/OPUS"}, Query("SELECT duration, codec_info FROM playlist"));
}

TEST_F(PlaylistDatabaseTest, ARecentFileIsOneRowThatGetsNewer) {
    ASSERT_TRUE(database.Open());
    EXPECT_EQ(1, database.AddRecent(L"C:\\영화\\a.mkv"));
    EXPECT_EQ(2, database.AddRecent(L"b.mkv"));
    EXPECT_EQ((Paths{L"b.mkv", L"C:\\영화\\a.mkv"}), database.LoadRecent());
    database.AddRecent(L"C:\\영화\\a.mkv");
    EXPECT_EQ((Paths{L"C:\\영화\\a.mkv", L"b.mkv"}), database.LoadRecent());
    EXPECT_EQ((Rows{"1|C:\\영화\\a.mkv|a.mkv|133000000000000002", "2|b.mkv|b.mkv|133000000000000001"}),
              Query("SELECT id, file_path, file_name, accessed_at FROM recent_files ORDER BY id"));
}

TEST_F(PlaylistDatabaseTest, ReadingGivesTheTenNewestAndTheTableKeepsAll) {
    ASSERT_TRUE(database.Open());
    for (int i = 0; i < 15; ++i) {
        database.AddRecent(L"film " + std::to_wstring(i));
    }
    const Paths paths = database.LoadRecent();
    ASSERT_EQ(10U, paths.size());
    EXPECT_EQ(L"film 14", paths.front());
    EXPECT_EQ(L"film 5", paths.back());
    EXPECT_EQ(Rows{"15"}, Query("SELECT COUNT(*) FROM recent_files"));
    EXPECT_TRUE(database.RemoveRecent(L"film 14"));
    EXPECT_EQ(L"film 4", database.LoadRecent().back());
    EXPECT_TRUE(database.ClearRecent());
    EXPECT_EQ(Rows{"0"}, Query("SELECT COUNT(*) FROM recent_files"));
    EXPECT_TRUE(database.ClearRecent()) << "also when it is empty";
}

TEST_F(PlaylistDatabaseTest, RecentFilesAreComparedExactly) {
    ASSERT_TRUE(database.Open());
    database.AddRecent(L"C:\\a.mkv");
    database.AddRecent(L"C:\\A.mkv");
    EXPECT_EQ(2U, database.LoadRecent().size());
    EXPECT_TRUE(database.RemoveRecent(L"c:\\a.mkv")) << "nothing matches, which is no failure";
    EXPECT_EQ(2U, database.LoadRecent().size());
    EXPECT_FALSE(database.RemoveRecent(L""));
    EXPECT_EQ(-1, database.AddRecent(L""));
}

} // namespace
} // namespace brindlecast::testing
