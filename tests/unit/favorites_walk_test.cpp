#include "playlist_ui/favorites_walk.h"

#include "library/favorites_database.h"
#include "tests/support/library_fixture.h"

namespace brindlecast::testing {
namespace {

using Rows = std::vector<std::int32_t>;

TEST(FavoritesWalk, WhatIsNotActiveStaysAsItIs) {
    FavoritesWalk walk{false, 1};
    EXPECT_EQ(std::nullopt, AdvanceWalk(walk, {0, 1, 2}, 3));
    EXPECT_EQ((FavoritesWalk{false, 1}), walk);
}

TEST(FavoritesWalk, ItGoesFromRowToRowAndEndsBehindTheLast) {
    FavoritesWalk walk{true, 0};
    EXPECT_EQ(1U, AdvanceWalk(walk, {0, 1, 2}, 3));
    EXPECT_EQ((FavoritesWalk{true, 1}), walk);
    EXPECT_EQ(2U, AdvanceWalk(walk, {0, 1, 2}, 3));
    EXPECT_EQ((FavoritesWalk{true, 2}), walk);
    EXPECT_EQ(std::nullopt, AdvanceWalk(walk, {0, 1, 2}, 3));
    EXPECT_EQ((FavoritesWalk{false, -1}), walk);
}

TEST(FavoritesWalk, WithoutARowItEnds) {
    for (const std::int32_t row : {-1, -2}) {
        FavoritesWalk walk{true, row};
        EXPECT_EQ(std::nullopt, AdvanceWalk(walk, {0, 1, 2}, 3));
        EXPECT_EQ((FavoritesWalk{false, -1}), walk);
    }
}

TEST(FavoritesWalk, RowsThatHaveGoneEndIt) {
    FavoritesWalk empty{true, 0};
    EXPECT_EQ(std::nullopt, AdvanceWalk(empty, {}, 3));
    EXPECT_EQ((FavoritesWalk{false, -1}), empty);
    FavoritesWalk far{true, 2'147'483'647};
    EXPECT_EQ(std::nullopt, AdvanceWalk(far, {0, 1, 2}, 3));
    EXPECT_EQ((FavoritesWalk{false, -1}), far);
}

TEST(FavoritesWalk, ARowWithoutItsItemIsReachedAndGivesNothing) {
    FavoritesWalk walk{true, 0};
    EXPECT_EQ(std::nullopt, AdvanceWalk(walk, {0, 1, 2}, 1)) << "fewer items than rows";
    EXPECT_EQ((FavoritesWalk{true, 1}), walk);
    EXPECT_EQ(std::nullopt, AdvanceWalk(walk, {0, 1, -1}, 3));
    EXPECT_EQ((FavoritesWalk{true, 2}), walk);
    FavoritesWalk without{true, 0};
    EXPECT_EQ(std::nullopt, AdvanceWalk(without, {0, 1}, 0)) << "no such group";
    EXPECT_EQ((FavoritesWalk{true, 1}), without);
}

TEST(FavoritesWalk, TheRowTellsTheItem) {
    FavoritesWalk walk{true, 0};
    EXPECT_EQ(5U, AdvanceWalk(walk, {3, 5}, 6));
}

class StoredFavoritesWalk : public LibraryTest {};

TEST_F(StoredFavoritesWalk, AGroupIsWalkedInItsOrderAndSurvivesTheRemovalOfItsLastItem) {
    PlaylistDatabase library(clock, DataFolder());
    FavoritesDatabase favorites(library, DataFolder());
    ASSERT_TRUE(favorites.AddGroup(L"영화"));
    const int group = static_cast<int>(favorites.groups.size()) - 1;
    ASSERT_TRUE(favorites.AddOrUpdateItem(group, L"C:\\films\\a.mkv", 0));
    ASSERT_TRUE(favorites.AddOrUpdateItem(group, L"C:\\films\\b.mkv", 12.5));
    ASSERT_TRUE(favorites.AddOrUpdateItem(group, L"C:\\films\\c.mkv", 0));
    const std::vector<FavoriteItem>& items = favorites.GroupAt(group)->items;
    const Rows rows{0, 1, 2};
    FavoritesWalk walk{true, 0};
    const auto second = AdvanceWalk(walk, rows, items.size());
    ASSERT_TRUE(second.has_value());
    EXPECT_EQ(L"C:\\films\\b.mkv", items[*second].file_path);
    EXPECT_EQ(12.5, items[*second].position);
    ASSERT_TRUE(favorites.RemoveItem(group, 2));
    EXPECT_EQ(std::nullopt, AdvanceWalk(walk, rows, items.size()));
    EXPECT_EQ((FavoritesWalk{true, 2}), walk);
}

} // namespace
} // namespace brindlecast::testing
