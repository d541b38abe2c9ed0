#include "base/utf8.h"
#include "tests/unit/playlist_model_fixture.h"

namespace brindlecast::testing {
namespace {

TEST_F(PlaylistModelTest, TheTableIsRewrittenWithTheOrderOfTheList) {
    Fill(L"abc");
    EXPECT_EQ(L"abc", StoredLetters());
    std::swap(model.items[0], model.items[2]);
    model.SyncToDatabase();
    EXPECT_EQ(L"cba", StoredLetters());
    EXPECT_EQ(0, model.items[0].sort_order);
    EXPECT_EQ(0, model.items[0].id) << "ids are not taken over";
    EXPECT_EQ((std::vector<std::string>{"4|0", "5|1", "6|2"}), Query("SELECT id, sort_order FROM playlist"));
}

// Which change reaches the table by itself; where none does, the next rewrite takes it along.
TEST_F(PlaylistModelTest, TheTableIsRewrittenAtTheseChangesAndNoOthers) {
    const auto expect = [&](const wchar_t* change, bool rewritten, const std::function<void()>& make) {
        model.searchText.clear();
        model.items.clear();
        model.currentIndex = 0;
        Fill(L"cabb");
        make();
        model.items.front().codec_info = L"changed in memory";
        EXPECT_EQ(rewritten ? Letters() : L"cab", StoredLetters().substr(0, rewritten ? Letters().size() : 3))
            << WideToUtf8(change);
    };
    series = {L"C:\\s\\z.mkv"};
    expect(L"adding", false, [&] { model.AddFile(L"C:\\d"); });
    expect(L"adding and rewriting", true, [&] {
        model.RemoveRows({3});
        model.AddFile(L"C:\\d");
        model.RebuildView();
        model.SyncToDatabase();
    });
    expect(L"series", true, [&] { model.ReplaceWithSeries(L"C:\\s\\z.mkv"); });
    expect(L"removing", true, [&] { model.RemoveRows({0, 3}); });
    expect(L"duplicates", true, [&] { model.RemoveDuplicates(); });
    expect(L"to top", false, [&] { model.MoveRowToTop(2); });
    expect(L"up", false, [&] { model.MoveRowUp(2); });
    expect(L"down", false, [&] { model.MoveRowDown(0); });
    expect(L"to bottom", false, [&] { model.MoveRowToBottom(0); });
    expect(L"sorting", true, [&] {
        model.RemoveRows({3});
        model.ChooseColumn(PlaylistColumn::Name);
    });
    expect(L"dragging", true, [&] {
        model.RemoveRows({3});
        model.ReorderRows({0}, 3);
    });
    expect(L"what playing reveals", false, [&] { model.UpdateMediaInfo(L"C:\\films\\c.mkv", 1.0, L"x"); });
    expect(L"advancing", false, [&] { static_cast<void>(model.AdvanceCurrent()); });
}

TEST_F(PlaylistModelTest, TheSeriesOfADropReplacesTheListAndLeavesTheTableEmpty) {
    Fill(L"ab");
    model.currentIndex = 1;
    model.searchText = L"y";
    series = {L"C:\\s\\x.mkv", L"C:\\s\\y.mkv"};
    model.ReplaceWithSeriesOfDrop(L"C:\\s\\y.mkv");
    EXPECT_EQ(L"xy", Letters());
    EXPECT_EQ(-1, model.currentIndex);
    EXPECT_EQ((std::vector<std::int32_t>{1}), model.filteredIndices);
    EXPECT_EQ((Names{L"rows 0", L"rows 1"}), told);
    EXPECT_EQ(L"", StoredLetters());
    series = {};
    model.ReplaceWithSeriesOfDrop(L"C:\\folder");
    EXPECT_EQ(L"", Letters());
}

TEST_F(PlaylistModelTest, TheSeriesOfADropIsAddedLikeAnyFile) {
    settings.values[L"PlaylistPreventDuplicates"] = 1U;
    series = {L"C:\\s\\x.mkv", L"C:\\S\\X.mkv"};
    model.ReplaceWithSeriesOfDrop(L"C:\\s\\x.mkv");
    EXPECT_EQ(L"x", Letters());
}

TEST_F(PlaylistModelTest, AListThatIsClearedAndStoredStaysEmptyInTheTableUntilTheNextRewrite) {
    Fill(L"ab");
    model.currentIndex = 1;
    model.Clear();
    model.RebuildView();
    model.SyncToDatabase();
    EXPECT_EQ(-1, model.currentIndex);
    model.AddFile(L"C:\\films\\c.mkv");
    model.RebuildView();
    EXPECT_EQ(L"", StoredLetters());
    model.SyncToDatabase();
    EXPECT_EQ(L"c", StoredLetters());
}

TEST_F(PlaylistModelTest, AnOpenedFileBringsItsSeries) {
    Fill(L"xy");
    model.currentIndex = 1;
    series = {L"C:\\s\\1.mkv", L"C:\\s\\2.lnk", L"C:\\s\\2.lnk"};
    settings.values[L"PlaylistPreventDuplicates"] = 1U;
    model.ReplaceWithSeries(L"c:\\S\\2.LNK");
    ASSERT_EQ(3U, model.items.size()) << "neither shortcuts nor duplicates are looked at";
    EXPECT_EQ(L"C:\\s\\2.lnk", model.items[1].file_path);
    EXPECT_EQ(2, model.items[2].sort_order);
    EXPECT_EQ(1, model.currentIndex);
    EXPECT_EQ((Names{L"rows 3", L"choose 1"}), told);
    EXPECT_EQ(2U, database.LoadItems().size());
    told.clear();
    series.clear();
    model.ReplaceWithSeries(L"other");
    EXPECT_TRUE(model.items.empty());
    EXPECT_EQ(-1, model.currentIndex);
    EXPECT_EQ(Names{L"rows 0"}, told);
}

TEST_F(PlaylistModelTest, WhatPlayingRevealsIsKept) {
    Fill(L"ab");
    model.UpdateMediaInfo(L"C:\\FILMS\\b.mkv", 61.5, L"H264/AAC");
    EXPECT_EQ(61.5, model.items[1].duration);
    EXPECT_EQ(L"H264/AAC", model.items[1].codec_info);
    EXPECT_EQ(Names{L"repaint"}, told);
    model.UpdateMediaInfo(L"C:\\films\\b.mkv", 0.0, L"");
    EXPECT_EQ(0.0, model.items[1].duration);
    EXPECT_EQ(L"H264/AAC", model.items[1].codec_info);
    model.UpdateMediaInfo(L"nothing", 5.0, L"x");
    EXPECT_EQ((std::vector<std::string>{"0.0|", "0.0|"}), Query("SELECT duration, codec_info FROM playlist"))
        << "items of this run have no id";
}

TEST_F(PlaylistModelTest, ALoadedItemIsUpdatedInTheTableUntilTheRewrite) {
    Fill(L"ab");
    settings.values[L"PlaylistRestoreOnStartup"] = 1U;
    model.RestoreIfWanted();
    EXPECT_GT(model.items[0].id, 0);
    model.UpdateMediaInfo(L"C:\\films\\a.mkv", 7.0, L"HEVC");
    EXPECT_EQ((std::vector<std::string>{"7.0|HEVC", "0.0|"}),
              Query("SELECT duration, codec_info FROM playlist"));
    model.SyncToDatabase();
    model.UpdateMediaInfo(L"C:\\films\\a.mkv", 9.0, L"AV1");
    EXPECT_EQ((std::vector<std::string>{"7.0|HEVC", "0.0|"}),
              Query("SELECT duration, codec_info FROM playlist"))
        << "the old id matches no row any more";
}

TEST_F(PlaylistModelTest, TheStoredListComesBackOnlyWhenAskedFor) {
    Fill(L"ab");
    PlaylistModel next({settings, files, database, {}, {}, {}});
    next.RestoreIfWanted();
    EXPECT_TRUE(next.items.empty());
    settings.values[L"PlaylistRestoreOnStartup"] = 1U;
    next.RestoreIfWanted();
    EXPECT_EQ(2U, next.items.size());
    EXPECT_EQ((Indices{0, 1}), next.filteredIndices);
    EXPECT_EQ(-1, next.currentIndex);
}

} // namespace
} // namespace brindlecast::testing
