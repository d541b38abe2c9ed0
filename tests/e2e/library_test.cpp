#include "library/sqlite.h"
#include "tests/e2e/fixture.h"
#include "tests/e2e/input.h"
#include "tests/e2e/stored_library.h"
#include "tests/e2e/waits.h"

#include <filesystem>
#include <fstream>

namespace brindlecast::testing {
namespace {

class LibraryFileTest : public ProgramTest {
protected:
    static std::vector<std::wstring> RecentFiles() { return StoredLibrary(LibraryFile()).RecentFiles(); }
    static void Break(const std::string& content) {
        std::filesystem::create_directories(std::filesystem::path(LibraryFile()).parent_path());
        std::ofstream(std::filesystem::path(LibraryFile()), std::ios::binary) << content;
    }
};

TEST_F(LibraryFileTest, OpenedFilesAreRememberedNewestFirst) {
    {
        Player player;
        ASSERT_TRUE(player.Play(kShortFilm));
        ASSERT_TRUE(player.Play(kKoreanFilm));
        EXPECT_EQ(player.Close(), 0U);
    }
    EXPECT_EQ((std::vector<std::wstring>{Media(kKoreanFilm.name), Media(kShortFilm.name)}), RecentFiles());
}

TEST_F(LibraryFileTest, SpaceAtTheNextStartPlaysTheLastFile) {
    {
        Player player;
        ASSERT_TRUE(player.Play(kKoreanFilm));
        EXPECT_EQ(player.Close(), 0U);
    }
    Player player;
    player.Activate();
    PressKey(VK_SPACE);
    EXPECT_TRUE(player.WaitForFrame(kKoreanFilm).has_value());
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(LibraryFileTest, AFileThatIsNoDatabaseStaysAndFilmsPlayAllTheSame) {
    const std::string content(3000, 'x');
    Break(content);
    Player player;
    ASSERT_TRUE(player.Play(kShortFilm));
    EXPECT_EQ(player.Close(), 0U);
    std::ifstream in(std::filesystem::path(LibraryFile()), std::ios::binary);
    EXPECT_EQ(content, std::string(std::istreambuf_iterator<char>(in), {}));
}

TEST_F(LibraryFileTest, ALockedLibraryCostsNothingButTheEntry) {
    static_cast<void>(RecentFiles()); // makes the file
    const SqliteConnection locker = OpenDatabase(LibraryFile());
    ASSERT_EQ(SQLITE_OK, sqlite3_exec(locker.get(), "BEGIN EXCLUSIVE;", nullptr, nullptr, nullptr));
    Player player;
    ASSERT_TRUE(player.Play(kShortFilm));
    EXPECT_EQ(player.Close(), 0U);
    ASSERT_EQ(SQLITE_OK, sqlite3_exec(locker.get(), "ROLLBACK;", nullptr, nullptr, nullptr));
    EXPECT_TRUE(RecentFiles().empty());
}

} // namespace
} // namespace brindlecast::testing
