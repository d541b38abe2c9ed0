#include "base/utf8.h"
#include "library/favorites_database.h"
#include "tests/support/library_fixture.h"

#include <fstream>
#include <memory>
#include <random>

#ifndef _WIN32
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#endif

namespace brindlecast::testing {
namespace {

class LibraryFile : public LibraryTest {
protected:
    static PlaylistItem ItemOf(const std::wstring& path) {
        PlaylistItem item;
        item.file_path = path;
        item.file_name = path;
        item.codec_info = path;
        return item;
    }
    [[nodiscard]] std::string Bytes() const {
        std::ifstream in(File(), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
};

TEST_F(LibraryFile, AFileThatWasWrittenIsOpenedAgainUnchanged) {
    {
        PlaylistDatabase database(clock, DataFolder());
        FavoritesDatabase favorites(database, DataFolder());
        ASSERT_TRUE(database.Open());
        database.InsertItem(ItemOf(L"C:\\영화.mkv"));
        database.AddRecent(L"C:\\영화.mkv");
        ASSERT_TRUE(favorites.AddGroup(L"그룹"));
        ASSERT_TRUE(favorites.AddOrUpdateItem(0, L"C:\\영화.mkv", 1.5));
    }
    const std::string before = Bytes();
    ASSERT_FALSE(before.empty());
    {
        PlaylistDatabase database(clock, DataFolder());
        FavoritesDatabase favorites(database, DataFolder());
        ASSERT_TRUE(database.Open());
        favorites.LoadAll();
        EXPECT_EQ(1U, database.LoadItems().size());
        EXPECT_EQ(1U, database.LoadRecent().size());
        EXPECT_EQ(1U, favorites.groups.size());
    }
    EXPECT_EQ(before, Bytes());
}

// A text of characters from all over Unicode, without what no text holds: zeros and halves of pairs.
std::wstring RandomText(std::mt19937& random) {
    std::string bytes;
    for (int i = 1 + static_cast<int>(random() % 20); i > 0; --i) {
        std::uint32_t code = 0;
        do {
            const std::uint32_t limits[] = {0x80, 0x800, 0x10000, 0x110000};
            code = random() % limits[random() % 4];
        } while (code == 0 || (code >= 0xD800 && code < 0xE000));
        const auto add = [&](std::uint32_t byte) {
            bytes += static_cast<char>(byte);
        };
        if (code < 0x80) {
            add(code);
        } else if (code < 0x800) {
            add(0xC0 | code >> 6);
            add(0x80 | (code & 0x3F));
        } else if (code < 0x10000) {
            add(0xE0 | code >> 12);
            add(0x80 | (code >> 6 & 0x3F));
            add(0x80 | (code & 0x3F));
        } else {
            add(0xF0 | code >> 18);
            add(0x80 | (code >> 12 & 0x3F));
            add(0x80 | (code >> 6 & 0x3F));
            add(0x80 | (code & 0x3F));
        }
    }
    return Utf8ToWide(bytes.c_str());
}

TEST_F(LibraryFile, TextsOfAnyCharactersComeBackAsTheyWere) {
    PlaylistDatabase database(clock, DataFolder());
    FavoritesDatabase favorites(database, DataFolder());
    ASSERT_TRUE(database.Open());
    ASSERT_TRUE(favorites.AddGroup(L"group"));
    sqlite3_exec(database.Connection(), "BEGIN;", nullptr, nullptr, nullptr);
    std::mt19937 random(4);
    std::vector<std::wstring> texts;
    for (int i = 0; i < 1000; ++i) {
        texts.push_back(std::to_wstring(i) + RandomText(random));
        PlaylistItem item = ItemOf(texts.back());
        item.sort_order = i;
        ASSERT_GT(database.InsertItem(item), 0);
    }
    sqlite3_exec(database.Connection(), "COMMIT;", nullptr, nullptr, nullptr);
    const std::vector<PlaylistItem> items = database.LoadItems();
    ASSERT_EQ(texts.size(), items.size());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        ASSERT_EQ(texts[i], items[i].file_path);
        ASSERT_EQ(texts[i], items[i].file_name);
        ASSERT_EQ(texts[i], items[i].codec_info);
    }
    for (int i = 0; i < 20; ++i) {
        const std::wstring name = RandomText(random) + std::to_wstring(i);
        ASSERT_TRUE(favorites.RenameGroup(0, name));
        ASSERT_TRUE(favorites.AddOrUpdateItem(0, name, i));
        PlaylistDatabase other(clock, DataFolder());
        FavoritesDatabase reloaded(other, DataFolder());
        reloaded.LoadAll();
        ASSERT_EQ(favorites.groups, reloaded.groups);
    }
}

#ifndef _WIN32
// Nobody's rights: root, as whom tests may run, is stopped by no permission.
class NobodysRights {
public:
    NobodysRights() : old(geteuid()) {
        constexpr uid_t kNobody = 65534;
        changed = old == 0 && seteuid(kNobody) == 0;
    }
    NobodysRights(const NobodysRights&) = delete;
    NobodysRights& operator=(const NobodysRights&) = delete;
    ~NobodysRights() {
        if (changed) {
            EXPECT_EQ(0, seteuid(old));
        }
    }

private:
    uid_t old;
    bool changed = false;
};

TEST_F(LibraryFile, AReadOnlyFileIsReadAndTakesNothing) {
    {
        PlaylistDatabase database(clock, DataFolder());
        ASSERT_TRUE(database.Open());
        database.InsertItem(ItemOf(L"C:\\영화.mkv"));
    }
    std::filesystem::permissions(File(), std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::remove);
    {
        const NobodysRights rights;
        PlaylistDatabase database(clock, DataFolder());
        EXPECT_TRUE(database.Open()) << "its tables are there";
        EXPECT_EQ(1U, database.LoadItems().size());
        EXPECT_EQ(-1, database.InsertItem(ItemOf(L"other")));
        EXPECT_EQ(-1, database.AddRecent(L"other"));
        EXPECT_FALSE(database.ClearRecent());
        database.ClearItems();
        EXPECT_EQ(1U, database.LoadItems().size());
    }
}

// No file of this process grows beyond the limit while this lives.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : oldHandler(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &old);
        const rlimit limit{bytes, old.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, oldHandler);
    }

private:
    rlimit old{};
    void (*oldHandler)(int);
};

TEST_F(LibraryFile, WithoutSpaceRowsAreLeftOutAndNothingElseIsLost) {
    PlaylistDatabase database(clock, DataFolder());
    FavoritesDatabase favorites(database, DataFolder());
    ASSERT_TRUE(database.Open());
    ASSERT_TRUE(favorites.AddGroup(L"before"));
    ASSERT_GT(database.InsertItem(ItemOf(L"before")), 0);
    {
        const FileSizeLimit limit(std::filesystem::file_size(File()));
        // What needs another page does not fit.
        EXPECT_EQ(-1, database.InsertItem(ItemOf(std::wstring(20'000, L'x'))));
        EXPECT_EQ(-1, database.AddRecent(std::wstring(20'000, L'y')));
        EXPECT_FALSE(favorites.AddGroup(std::wstring(20'000, L'z')));
        EXPECT_EQ(1U, favorites.groups.size());
        EXPECT_EQ(1U, database.LoadItems().size());
    }
    EXPECT_GT(database.InsertItem(ItemOf(L"after")), 0);
    EXPECT_EQ(2U, database.LoadItems().size());
    EXPECT_EQ(std::vector<std::string>{"ok"}, Query("PRAGMA integrity_check"));
}

TEST_F(LibraryFile, OtherProgramsReadTheSameRows) {
    {
        PlaylistDatabase database(clock, DataFolder());
        ASSERT_TRUE(database.Open());
        PlaylistItem item = ItemOf(L"C:\\영화\\첫 화.mkv");
        item.file_name = L"첫 화.mkv";
        item.codec_info.clear();
        item.duration = 12.5;
        database.InsertItem(item);
        database.AddRecent(item.file_path);
    }
    const auto ask = [this](const std::string& sql) {
        const std::string command = "sqlite3 '" + File().string() + "' \"" + sql + "\"";
        const std::unique_ptr<FILE, int (*)(FILE*)> output(popen(command.c_str(), "r"), pclose);
        std::string text;
        for (int unit = std::fgetc(output.get()); unit != EOF; unit = std::fgetc(output.get())) {
            text += static_cast<char>(unit);
        }
        return text;
    };
    EXPECT_EQ("1|C:\\영화\\첫 화.mkv|첫 화.mkv|0|12.5|0||0\n", ask("SELECT * FROM playlist"));
    EXPECT_EQ("C:\\영화\\첫 화.mkv|첫 화.mkv|133000000000000000\n",
              ask("SELECT file_path, file_name, accessed_at FROM recent_files"));
    const std::string schema = ask(".schema");
    EXPECT_NE(std::string::npos, schema.find("CREATE TABLE playlist ("));
    EXPECT_NE(std::string::npos,
              schema.find("CREATE INDEX idx_recent_accessed ON recent_files(accessed_at DESC);"));
}
#endif

} // namespace
} // namespace brindlecast::testing
