#include "library/favorites_database.h"
#include "tests/support/library_fixture.h"

namespace brindlecast::testing {
namespace {

using Rows = std::vector<std::string>;

class FavoritesDatabaseTest : public LibraryTest {
protected:
    std::wstring Numbered(const wchar_t* text, int number) { return text + std::to_wstring(number); }
    // What a new run would load.
    std::vector<FavoriteGroup> Reloaded() {
        PlaylistDatabase nextLibrary(clock, DataFolder());
        FavoritesDatabase next(nextLibrary, DataFolder());
        next.LoadAll();
        return next.groups;
    }
    PlaylistDatabase library{clock, DataFolder()};
    FavoritesDatabase favorites{library, DataFolder()};
};

TEST_F(FavoritesDatabaseTest, AFreshFileHasNoGroupAndGetsItsTables) {
    favorites.LoadAll();
    EXPECT_TRUE(favorites.groups.empty());
    EXPECT_NE(nullptr, library.Connection()) << "it makes the tables";
    EXPECT_NE(library.Connection(), favorites.Handle()) << "a connection of its own";
}

TEST_F(FavoritesDatabaseTest, GroupsAreNumberedFromOne) {
    EXPECT_TRUE(favorites.AddGroup(L"기본 그룹"));
    EXPECT_TRUE(favorites.AddGroup(L"영화"));
    EXPECT_EQ((Rows{"1|기본 그룹|1", "2|영화|2"}), Query("SELECT id, name, sort_order FROM favorite_groups"));
    ASSERT_EQ(2U, favorites.groups.size());
    EXPECT_EQ((FavoriteGroup{2, L"영화", 2, {}}), favorites.groups[1]);
    EXPECT_EQ(favorites.groups, Reloaded());
}

TEST_F(FavoritesDatabaseTest, AnEmptyOrKnownNameIsRefusedAndCaseCounts) {
    EXPECT_FALSE(favorites.AddGroup(L""));
    EXPECT_TRUE(favorites.AddGroup(L"Films"));
    EXPECT_FALSE(favorites.AddGroup(L"Films"));
    EXPECT_TRUE(favorites.AddGroup(L"FILMS"));
    EXPECT_EQ(2U, favorites.groups.size());
}

TEST_F(FavoritesDatabaseTest, TheFiftyFirstGroupIsRefused) {
    for (int i = 0; i < 50; ++i) {
        ASSERT_TRUE(favorites.AddGroup(Numbered(L"그룹 ", i)));
    }
    EXPECT_FALSE(favorites.AddGroup(L"one more"));
    EXPECT_EQ(50U, favorites.groups.size());
    EXPECT_EQ(Rows{"50"}, Query("SELECT COUNT(*) FROM favorite_groups"));
}

TEST_F(FavoritesDatabaseTest, ARefusedRowLeavesNoGroup) {
    ASSERT_TRUE(favorites.AddGroup(L"a"));
    Run("INSERT INTO favorite_groups (name, sort_order) VALUES ('b', 9)"); // by another run
    EXPECT_FALSE(favorites.AddGroup(L"b"));
    EXPECT_EQ(1U, favorites.groups.size());
}

TEST_F(FavoritesDatabaseTest, RenamingKeepsTheOrderAndRefusesOthersNames) {
    ASSERT_TRUE(favorites.AddGroup(L"a"));
    ASSERT_TRUE(favorites.AddGroup(L"b"));
    EXPECT_TRUE(favorites.RenameGroup(0, L"a")) << "its own name";
    EXPECT_FALSE(favorites.RenameGroup(0, L"b"));
    EXPECT_FALSE(favorites.RenameGroup(0, L""));
    EXPECT_FALSE(favorites.RenameGroup(2, L"c"));
    EXPECT_FALSE(favorites.RenameGroup(-1, L"c"));
    EXPECT_TRUE(favorites.RenameGroup(1, L"새 이름"));
    EXPECT_EQ(L"새 이름", favorites.groups[1].name);
    EXPECT_EQ((Rows{"a|1", "새 이름|2"}), Query("SELECT name, sort_order FROM favorite_groups ORDER BY id"));
}

TEST_F(FavoritesDatabaseTest, ItemsAreNumberedWithinTheirGroup) {
    ASSERT_TRUE(favorites.AddGroup(L"a"));
    ASSERT_TRUE(favorites.AddGroup(L"b"));
    EXPECT_TRUE(favorites.AddOrUpdateItem(0, L"C:\\영화\\첫 화.mkv", 83.5));
    EXPECT_TRUE(favorites.AddOrUpdateItem(0, L"둘째.mkv", 0.0));
    EXPECT_TRUE(favorites.AddOrUpdateItem(1, L"C:\\영화\\첫 화.mkv", 1.0));
    EXPECT_EQ((Rows{"1|1|C:\\영화\\첫 화.mkv|첫 화.mkv|83.5|1", "2|1|둘째.mkv|둘째.mkv|0.0|2",
                    "3|2|C:\\영화\\첫 화.mkv|첫 화.mkv|1.0|1"}),
              Query("SELECT id, group_id, file_path, file_name, position, sort_order FROM favorite_items"));
    EXPECT_EQ(favorites.groups, Reloaded());
    EXPECT_FALSE(favorites.AddOrUpdateItem(2, L"x", 0.0));
    EXPECT_FALSE(favorites.AddOrUpdateItem(-1, L"x", 0.0));
}

TEST_F(FavoritesDatabaseTest, AKnownPathInAnotherCaseGetsTheNewPosition) {
    ASSERT_TRUE(favorites.AddGroup(L"a"));
    ASSERT_TRUE(favorites.AddOrUpdateItem(0, L"C:\\Film.mkv", 10.0));
    ASSERT_TRUE(favorites.AddOrUpdateItem(0, L"other", 1.0));
    EXPECT_TRUE(favorites.AddOrUpdateItem(0, L"c:\\FILM.MKV", 20.0));
    ASSERT_EQ(2U, favorites.groups[0].items.size());
    EXPECT_EQ(L"C:\\Film.mkv", favorites.groups[0].items[0].file_path) << "place and path stay";
    EXPECT_EQ(20.0, favorites.groups[0].items[0].position);
    EXPECT_EQ((Rows{"C:\\Film.mkv|20.0|1", "other|1.0|2"}),
              Query("SELECT file_path, position, sort_order FROM favorite_items ORDER BY id"));
}

TEST_F(FavoritesDatabaseTest, TheHundredAndFirstItemIsRefusedAndUpdatingStillWorks) {
    ASSERT_TRUE(favorites.AddGroup(L"a"));
    for (int i = 0; i < 100; ++i) {
        ASSERT_TRUE(favorites.AddOrUpdateItem(0, Numbered(L"film ", i), 0.0));
    }
    EXPECT_FALSE(favorites.AddOrUpdateItem(0, L"one more", 0.0));
    EXPECT_TRUE(favorites.AddOrUpdateItem(0, L"FILM 99", 7.0));
    EXPECT_EQ(100U, favorites.groups[0].items.size());
    EXPECT_EQ(Rows{"100|7.0"}, Query("SELECT COUNT(*), MAX(position) FROM favorite_items"));
}

TEST_F(FavoritesDatabaseTest, DeletingAGroupTakesItsItemsAlong) {
    ASSERT_TRUE(favorites.AddGroup(L"a"));
    ASSERT_TRUE(favorites.AddGroup(L"b"));
    ASSERT_TRUE(favorites.AddOrUpdateItem(0, L"x", 0.0));
    ASSERT_TRUE(favorites.AddOrUpdateItem(1, L"y", 0.0));
    EXPECT_TRUE(favorites.DeleteGroup(0));
    ASSERT_EQ(1U, favorites.groups.size());
    EXPECT_EQ(L"b", favorites.groups[0].name);
    EXPECT_EQ(Rows{"y"}, Query("SELECT file_path FROM favorite_items"));
    EXPECT_FALSE(favorites.DeleteGroup(1));
    EXPECT_FALSE(favorites.DeleteGroup(-1));
}

TEST_F(FavoritesDatabaseTest, ItemsAreRemovedAndGroupsEmptied) {
    ASSERT_TRUE(favorites.AddGroup(L"a"));
    for (const wchar_t* path : {L"x", L"y", L"z"}) {
        ASSERT_TRUE(favorites.AddOrUpdateItem(0, path, 0.0));
    }
    EXPECT_TRUE(favorites.RemoveItem(0, 1));
    EXPECT_FALSE(favorites.RemoveItem(0, 2));
    EXPECT_FALSE(favorites.RemoveItem(0, -1));
    EXPECT_FALSE(favorites.RemoveItem(1, 0));
    EXPECT_EQ((Rows{"x", "z"}), Query("SELECT file_path FROM favorite_items ORDER BY id"));
    favorites.ClearGroup(5);
    favorites.ClearGroup(0);
    EXPECT_TRUE(favorites.groups[0].items.empty());
    EXPECT_EQ(Rows{"0"}, Query("SELECT COUNT(*) FROM favorite_items"));
}

TEST_F(FavoritesDatabaseTest, AnOrderMadeByMovingIsGoneWithTheRun) {
    ASSERT_TRUE(favorites.AddGroup(L"a"));
    ASSERT_TRUE(favorites.AddOrUpdateItem(0, L"x", 0.0));
    ASSERT_TRUE(favorites.AddOrUpdateItem(0, L"y", 0.0));
    auto& items = favorites.groups[0].items;
    std::swap(items[0], items[1]);
    items[0].sort_order = 0;
    items[1].sort_order = 1;
    EXPECT_EQ(L"x", Reloaded()[0].items[0].file_path);
    // Until an update writes the new value of that very item.
    ASSERT_TRUE(favorites.AddOrUpdateItem(0, L"y", 5.0));
    EXPECT_EQ((Rows{"y|0", "x|1"}),
              Query("SELECT file_path, sort_order FROM favorite_items ORDER BY sort_order"));
}

TEST_F(FavoritesDatabaseTest, AGroupIsFoundByItsPlace) {
    ASSERT_TRUE(favorites.AddGroup(L"a"));
    EXPECT_EQ(&favorites.groups[0], favorites.GroupAt(0));
    EXPECT_EQ(nullptr, favorites.GroupAt(1));
    EXPECT_EQ(nullptr, favorites.GroupAt(-1));
}

TEST_F(FavoritesDatabaseTest, NullTextsLoadAsEmptyAndRowsComeInTheirOrder) {
    ASSERT_TRUE(library.Open());
    Run("INSERT INTO favorite_groups (id, name, sort_order) VALUES (1, 'late', 5), (2, 'early', 2)");
    Run("INSERT INTO favorite_items (group_id, file_path, file_name, sort_order) VALUES (1, 'b', NULL, 2), "
        "(1, "
        "'a', NULL, 1)");
    favorites.LoadAll();
    ASSERT_EQ(2U, favorites.groups.size());
    EXPECT_EQ(L"early", favorites.groups[0].name);
    ASSERT_EQ(2U, favorites.groups[1].items.size());
    EXPECT_EQ(L"a", favorites.groups[1].items[0].file_path);
    EXPECT_EQ(L"", favorites.groups[1].items[0].file_name);
    EXPECT_EQ(1, favorites.groups[1].items[0].group_id);
}

TEST_F(FavoritesDatabaseTest, WithoutADataFolderNothingIsAddedAndANextCallTriesAgain) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder);
    LoseDataFolder();
    favorites.LoadAll();
    EXPECT_EQ(nullptr, favorites.Handle());
    EXPECT_FALSE(favorites.AddGroup(L"a"));
    EXPECT_TRUE(std::filesystem::exists(folder / "playlist.db"))
        << "the library falls back, favorites do not";
    favorites.groups = {{3, L"in memory", 1, {{4, 3, L"x", L"x", 0.0, 1}}}};
    EXPECT_TRUE(favorites.RenameGroup(0, L"renamed"));
    EXPECT_EQ(L"renamed", favorites.groups[0].name);
    EXPECT_TRUE(favorites.AddOrUpdateItem(0, L"X", 3.0)) << "the position changes in memory";
    EXPECT_EQ(3.0, favorites.groups[0].items[0].position);
    EXPECT_FALSE(favorites.AddOrUpdateItem(0, L"new", 0.0));
    EXPECT_FALSE(favorites.RemoveItem(0, 0));
    EXPECT_FALSE(favorites.DeleteGroup(0));
    favorites.ClearGroup(0);
    EXPECT_TRUE(favorites.groups[0].items.empty());
    std::filesystem::current_path(before);
    known = true;
    std::filesystem::create_directories(File().parent_path());
    EXPECT_NE(nullptr, favorites.Handle());
}

} // namespace
} // namespace brindlecast::testing
