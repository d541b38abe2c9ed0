#include "base/utf8.h"
#include "tests/unit/playlist_model_fixture.h"

namespace brindlecast::testing {
namespace {

TEST_F(PlaylistModelTest, AnItemIsReadFromTheDisk) {
    files.facts[L"D:\\영화/첫 화.mkv"] = {5'000'000'000, 133'000'000'000'000'000};
    const PlaylistItem item = model.MakePlaylistItem(L"D:\\영화/첫 화.mkv");
    EXPECT_EQ((PlaylistItem{0, L"D:\\영화/첫 화.mkv", L"첫 화.mkv", 5'000'000'000, 0, 133'000'000'000'000'000,
                            L"", 0}),
              item);
    EXPECT_EQ((PlaylistItem{0, L"missing.mkv", L"missing.mkv", 0, 0, 0, L"", 0}),
              model.MakePlaylistItem(L"missing.mkv"));
}

TEST_F(PlaylistModelTest, AnEmptyListStaysAsItIs) {
    model.RemoveDuplicates();
    model.sortColumn = 0;
    model.SortBy(PlaylistColumn::Name, true);
    EXPECT_EQ(L"", model.AdvanceCurrent());
    EXPECT_EQ(-1, model.FindByPath(L"a"));
    EXPECT_EQ(-1, model.RowOfCurrent());
    EXPECT_EQ(-1, model.ReorderRows({0}, 0));
    EXPECT_FALSE(model.HasNext());
    EXPECT_EQ(Names{}, told);
}

TEST_F(PlaylistModelTest, TheSamePathStandsTwiceUnlessTheSettingForbidsIt) {
    model.AddFile(L"C:\\a.mkv");
    model.AddFile(L"C:\\a.mkv");
    EXPECT_EQ(2U, model.items.size());
    settings.values[L"PlaylistPreventDuplicates"] = 1U;
    model.AddFile(L"c:\\A.MKV");
    EXPECT_EQ(2U, model.items.size());
    model.AddFile(L"C:\\b.mkv");
    EXPECT_EQ(3U, model.items.size());
    settings.values[L"PlaylistPreventDuplicates"] = 0U;
    model.AddFile(L"C:\\b.mkv");
    EXPECT_EQ(4U, model.items.size());
    EXPECT_EQ(3, model.items[3].sort_order);
    EXPECT_TRUE(model.filteredIndices.empty()) << "the view is the caller's";
    EXPECT_EQ(L"", StoredLetters());
}

TEST_F(PlaylistModelTest, ShortcutsAreFollowedByTheirEnding) {
    model.AddFile(L"C:\\a.LNK");
    EXPECT_EQ(L"target of C:\\a.LNK", model.items[0].file_path);
    for (const wchar_t* path : {L"lnk", L"C:\\a.lnk.mkv", L"C:\\folder.lnk\\"}) {
        model.AddFile(path);
        EXPECT_EQ(path, model.items.back().file_path);
    }
    model.AddFile(L".lnk");
    EXPECT_EQ(L"target of .lnk", model.items.back().file_path);
}

TEST_F(PlaylistModelTest, FilesAreFoundWithoutRegardToCase) {
    Fill(L"ab");
    EXPECT_EQ(1, model.FindByPath(L"c:\\FILMS\\B.mkv"));
    EXPECT_EQ(-1, model.FindByPath(L"B.mkv"));
}

TEST_F(PlaylistModelTest, TheSearchLooksAtNamesAlone) {
    for (const wchar_t* path :
         {L"C:\\x\\abc.mkv", L"C:\\x\\xABCy.mp4", L"C:\\abc\\other.mkv", L"C:\\x\\한글 영화.mkv"}) {
        model.AddFile(path);
    }
    model.searchText = L"ABC";
    model.RebuildView();
    EXPECT_EQ((Indices{0, 1}), model.filteredIndices);
    model.searchText = L"글 영";
    model.RebuildView();
    EXPECT_EQ(Indices{3}, model.filteredIndices);
    model.searchText = L" abc";
    model.RebuildView();
    EXPECT_EQ(Indices{}, model.filteredIndices) << "nothing is trimmed";
    model.searchText.clear();
    model.RebuildView();
    EXPECT_EQ((Indices{0, 1, 2, 3}), model.filteredIndices);
    EXPECT_EQ((Names{L"rows 2", L"rows 1", L"rows 0", L"rows 4"}), told);
}

TEST_F(PlaylistModelTest, WhatBecomesCurrentIsRepaintedAndShownUnlessTheSearchHidesIt) {
    Fill(L"abc");
    model.SetCurrent(2);
    EXPECT_EQ(2, model.currentIndex);
    EXPECT_EQ((Names{L"repaint", L"show 2"}), told);
    told.clear();
    model.searchText = L"a";
    model.RebuildView();
    told.clear();
    model.SetCurrent(1);
    EXPECT_EQ(1, model.currentIndex);
    EXPECT_EQ((Names{L"repaint"}), told);
}

TEST_F(PlaylistModelTest, RemovingKeepsTheCurrentFile) {
    Fill(L"abcdef");
    model.currentIndex = 3;
    EXPECT_EQ(1, model.RemoveRows({1}));
    EXPECT_EQ(L"acdef", Letters());
    EXPECT_EQ(2, model.currentIndex);
    EXPECT_EQ(3, model.RemoveRows({4})) << "the last row, since the given one is gone";
    EXPECT_EQ(L"acde", Letters());
    EXPECT_EQ(2, model.currentIndex);
    EXPECT_EQ(1, model.RemoveRows({2, 0, 0, 99, -1}));
    EXPECT_EQ(L"ce", Letters());
    EXPECT_EQ(-1, model.currentIndex) << "the current one was among them";
    EXPECT_EQ(Letters(), StoredLetters());
    EXPECT_EQ(-1, model.RemoveRows({0, 1}));
    EXPECT_TRUE(model.items.empty());
    ExpectInvariants();
}

TEST_F(PlaylistModelTest, RemovingUnderAFilterTakesTheRowsThatAreSeen) {
    Fill(L"abab");
    model.searchText = L"b";
    model.RebuildView();
    EXPECT_EQ(0, model.RemoveRows({1}));
    EXPECT_EQ(L"aba", Letters());
}

TEST_F(PlaylistModelTest, DuplicatesGoAndTheFirstStays) {
    for (const wchar_t* path : {L"C:\\a", L"C:\\B", L"c:\\A", L"C:\\b", L"C:\\c"}) {
        model.AddFile(path);
    }
    model.currentIndex = 3;
    model.RemoveDuplicates();
    ASSERT_EQ(3U, model.items.size());
    EXPECT_EQ(L"C:\\a", model.items[0].file_path);
    EXPECT_EQ(L"C:\\B", model.items[1].file_path);
    EXPECT_EQ(1, model.currentIndex);
    EXPECT_EQ(3U, database.LoadItems().size());
    model.currentIndex = -1;
    model.RemoveDuplicates();
    EXPECT_EQ(-1, model.currentIndex);
}

TEST_F(PlaylistModelTest, AMoveKeepsTheCurrentFileCurrent) {
    struct Row {
        std::int32_t from;
        std::int32_t to;
        const wchar_t* letters;
    };
    for (const Row& row : {Row{1, 3, L"acdbe"}, Row{3, 1, L"adbce"}, Row{0, 4, L"bcdea"}, Row{4, 0, L"eabcd"},
                           Row{2, 2, L"abcde"}, Row{-1, 2, L"abcde"}, Row{2, 5, L"abcde"}}) {
        for (std::int32_t current = -1; current < 5; ++current) {
            model.items.clear();
            Fill(L"abcde");
            model.currentIndex = current;
            model.MoveItem(row.from, row.to);
            EXPECT_EQ(row.letters, Letters());
            const wchar_t expected = current < 0 ? L'-' : static_cast<wchar_t>(L'a' + current);
            const wchar_t got =
                model.currentIndex < 0 ? L'-' : Letters()[static_cast<std::size_t>(model.currentIndex)];
            EXPECT_EQ(expected, got) << row.from << " to " << row.to << " with " << current;
        }
    }
}

TEST_F(PlaylistModelTest, TheFourMovesChooseTheirRowAndLeaveTheTable) {
    Fill(L"abcd");
    model.currentIndex = 2;
    EXPECT_EQ(1, model.MoveRowUp(2));
    EXPECT_EQ(L"acbd", Letters());
    EXPECT_EQ(2, model.currentIndex) << "now the neighbour";
    EXPECT_EQ(2, model.MoveRowDown(1));
    EXPECT_EQ(L"abcd", Letters());
    EXPECT_EQ(0, model.MoveRowToTop(2));
    EXPECT_EQ(L"cabd", Letters());
    EXPECT_EQ(0, model.currentIndex) << "the same file";
    EXPECT_EQ(3, model.MoveRowToBottom(0));
    EXPECT_EQ(L"abdc", Letters());
    EXPECT_EQ(L"abcd", StoredLetters());
    EXPECT_EQ((Names{L"rows 4", L"choose 1", L"rows 4", L"choose 2", L"rows 4", L"choose 0", L"rows 4",
                     L"choose 3"}),
              told);
    told.clear();
    EXPECT_EQ(-1, model.MoveRowUp(0));
    EXPECT_EQ(-1, model.MoveRowToTop(0));
    EXPECT_EQ(-1, model.MoveRowDown(3));
    EXPECT_EQ(-1, model.MoveRowToBottom(3));
    for (const int row : {-1, 4}) {
        EXPECT_EQ(-1, model.MoveRowUp(row));
        EXPECT_EQ(-1, model.MoveRowToTop(row));
        EXPECT_EQ(-1, model.MoveRowDown(row));
        EXPECT_EQ(-1, model.MoveRowToBottom(row));
    }
    EXPECT_EQ(Names{}, told);
}

TEST_F(PlaylistModelTest, UnderAFilterVisibleNeighboursChangePlaces) {
    Fill(L"axbxc");
    model.searchText = L"x";
    model.RebuildView();
    EXPECT_EQ((Indices{1, 3}), model.filteredIndices);
    model.items[1].file_name = L"x1";
    model.items[3].file_name = L"x2";
    EXPECT_EQ(0, model.MoveRowUp(1));
    EXPECT_EQ(L"x2", model.items[1].file_name);
    EXPECT_EQ(L"x1", model.items[3].file_name);
}

TEST_F(PlaylistModelTest, EachColumnSortsBothWays) {
    Fill(L"bca");
    const std::vector<std::uint64_t> sizes = {0xFFFF'FFFF'FFFF'FFFF, 1, 2};
    const std::vector<double> durations = {1.0, 3.0, 2.0};
    const std::vector<FileTime> dates = {3, 1, 2};
    for (std::size_t i = 0; i < 3; ++i) {
        model.items[i].file_size = sizes[i];
        model.items[i].duration = durations[i];
        model.items[i].file_date = dates[i];
    }
    struct Row {
        PlaylistColumn column;
        const wchar_t* ascending;
        const wchar_t* descending;
    };
    for (const Row& row :
         {Row{PlaylistColumn::Name, L"abc", L"cba"}, Row{PlaylistColumn::Size, L"cab", L"bac"},
          Row{PlaylistColumn::Duration, L"bac", L"cab"}, Row{PlaylistColumn::Date, L"cab", L"bac"}}) {
        model.ChooseColumn(row.column);
        EXPECT_EQ(row.ascending, Letters());
        EXPECT_TRUE(model.sortAscending);
        EXPECT_EQ(static_cast<std::int32_t>(row.column), model.sortColumn);
        model.ChooseColumn(row.column);
        EXPECT_EQ(row.descending, Letters());
        EXPECT_FALSE(model.sortAscending);
        EXPECT_EQ(row.descending, StoredLetters());
        model.ChooseColumn(row.column);
        EXPECT_TRUE(model.sortAscending) << "and back";
    }
}

TEST_F(PlaylistModelTest, SortingKeepsTheCurrentFileAndSortsWhatIsHiddenToo) {
    Fill(L"cbxa");
    model.currentIndex = 1;
    model.searchText = L"x";
    model.RebuildView();
    model.ChooseColumn(PlaylistColumn::Name);
    EXPECT_EQ(L"abcx", Letters());
    EXPECT_EQ(1, model.currentIndex);
    EXPECT_EQ(Indices{3}, model.filteredIndices);
}

TEST_F(PlaylistModelTest, BeforeAColumnWasChosenNothingIsSorted) {
    Fill(L"ba");
    model.SortBy(PlaylistColumn::Name, true);
    EXPECT_EQ(L"ba", Letters());
    EXPECT_EQ(Names{}, told);
}

TEST_F(PlaylistModelTest, ADragMovesItsRowsAsABlock) {
    struct Row {
        std::vector<int> rows;
        int drop;
        const wchar_t* letters;
        int first;
    };
    for (const Row& row : std::initializer_list<Row>{
             {{0}, 3, L"bcadef", 2},
             {{3}, 1, L"adbcef", 1},
             {{0}, 6, L"bcdefa", 5},
             {{0}, 99, L"bcdefa", 5},
             {{5}, 0, L"fabcde", 0},
             {{1, 2}, 5, L"adebcf", 3},
             {{2, 1}, 5, L"adebcf", 3},
             {{0, 2, 4}, 6, L"bdface", 3},
             {{0, 2, 4}, 3, L"bacedf", 1},
             {{1, 3}, 2, L"abdcef", 1},
             {{1, 3, 99, -5}, 0, L"bdacef", 0},
             // Where it lies already.
             {{2}, 2, L"abcdef", 2},
             {{2}, 3, L"abcdef", -1},
             {{1, 2, 3}, 4, L"abcdef", -1},
             {{1, 2, 3}, 2, L"abcdef", -1},
             {{1, 2, 3}, 1, L"abcdef", 1},
             // Nothing to do.
             {{}, 2, L"abcdef", -1},
             {{1}, -1, L"abcdef", -1},
             {{99}, 2, L"abcdef", -1},
         }) {
        model.items.clear();
        Fill(L"abcdef");
        model.currentIndex = 1;
        EXPECT_EQ(row.first, model.ReorderRows(row.rows, row.drop)) << WideToUtf8(row.letters);
        EXPECT_EQ(row.letters, Letters());
        EXPECT_EQ(L'b', Letters()[static_cast<std::size_t>(model.currentIndex)]);
        EXPECT_EQ(row.letters, StoredLetters());
        ExpectInvariants();
    }
    model.items.clear();
    Fill(L"a");
    EXPECT_EQ(-1, model.ReorderRows({0}, 1)) << "one item has nowhere to go";
}

TEST_F(PlaylistModelTest, TheNextFileIsTheNextItem) {
    Fill(L"abc");
    EXPECT_FALSE(model.HasNext()) << "nothing is current";
    model.currentIndex = 0;
    EXPECT_TRUE(model.HasNext());
    EXPECT_EQ(L"C:\\films\\b.mkv", model.AdvanceCurrent());
    EXPECT_EQ(1, model.currentIndex);
    EXPECT_EQ((Names{L"repaint", L"show 1"}), told);
    model.searchText = L"a";
    model.RebuildView();
    told.clear();
    EXPECT_EQ(L"C:\\films\\c.mkv", model.AdvanceCurrent());
    EXPECT_EQ(Names{L"repaint"}, told) << "its row is hidden";
    EXPECT_EQ(-1, model.RowOfCurrent());
    EXPECT_FALSE(model.HasNext());
    EXPECT_EQ(L"", model.AdvanceCurrent());
    EXPECT_EQ(2, model.currentIndex);
}

} // namespace
} // namespace brindlecast::testing
