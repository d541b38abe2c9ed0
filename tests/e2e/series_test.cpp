#include "tests/e2e/input.h"
#include "tests/e2e/playlist_fixture.h"

namespace brindlecast::testing {
namespace {

// Three seconds, and what may be lost around them.
constexpr std::chrono::milliseconds kEpisode{10'000};

class SeriesTest : public PlaylistTest {
protected:
    // The name of a film that was opened is gone before the film ends.
    static bool ShowsMessage(const Player& player) {
        return player.OwnProcess().FindVisibleWindow(L"BrindlecastOverlay") != nullptr;
    }
};

TEST_F(SeriesTest, AnEpisodeOpenedByTheDialogStoresItsSeriesInTheOrderOfItsNumbers) {
    const std::wstring tenth = folder.AddFilm(L"극 10화.mkv");
    const std::wstring ninth = folder.AddFilm(L"극 9화.mkv");
    const std::wstring second = folder.AddGarbage(L"극 2화.mp4");
    folder.AddFilm(L"딴것 3화.mkv");
    folder.AddGarbage(L"극 4화.txt");
    Player player;
    player.OpenByDialog(ninth);
    ASSERT_TRUE(WaitForFile(player, L"극 9화.mkv"));
    const std::vector<PlaylistItem> items = library.Playlist();
    ASSERT_EQ(items.size(), 3U);
    EXPECT_EQ(library.PlaylistPaths(), (Names{second, ninth, tenth}));
    for (int i = 0; i < 3; ++i) {
        const PlaylistItem& item = items[static_cast<std::size_t>(i)];
        EXPECT_EQ(item.sort_order, i);
        EXPECT_EQ(item.file_name, std::filesystem::path(item.file_path).filename().wstring());
        EXPECT_EQ(item.file_size, std::filesystem::file_size(item.file_path));
        EXPECT_NE(item.file_date, 0U);
        EXPECT_EQ(item.duration, 0.0) << "what playing reveals comes after the list was written";
        EXPECT_EQ(item.codec_info, L"");
    }
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SeriesTest, TheEndOfAFileGoesOnPastBadFilesAndStopsAfterTheLast) {
    const std::wstring first = folder.AddFilm(L"연속극 01화.mkv");
    folder.AddGarbage(L"연속극 02화.mkv");
    folder.AddGarbage(L"연속극 03화.mkv");
    const std::wstring fourth = folder.AddFilm(L"연속극 04화.mkv");
    const std::wstring fifth = folder.AddFilm(L"연속극 05화.mkv");
    Player player;
    player.Drop({first});
    ASSERT_TRUE(WaitForFile(player, L"연속극 01화.mkv"));
    Names titles{player.Title()};
    EXPECT_TRUE(WaitUntil(3 * kEpisode, "end of the series", [&] {
        if (const std::wstring title = player.Title(); title != titles.back()) {
            titles.push_back(title);
        }
        return !player.IsOpen();
    }));
    EXPECT_EQ(titles,
              (Names{TitleOf(L"연속극 01화.mkv"), TitleOf(L"연속극 04화.mkv"), TitleOf(L"연속극 05화.mkv")}));
    EXPECT_TRUE(WaitUntil(limits::kReaction, "message", [&] { return ShowsMessage(player); }))
        << "it tells of the stop";
    EXPECT_EQ(player.Title(), TitleOf(L"연속극 05화.mkv")) << "the title keeps the last name";
    EXPECT_TRUE(IsBlack(player));
    EXPECT_EQ(library.RecentFiles(), (Names{fifth, fourth, first}));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SeriesTest, EachFileOfASeriesShowsItsPictures) {
    const std::wstring first = folder.AddFilm(L"그림 1화.mkv");
    folder.AddFilm(L"그림 2화.mkv");
    Player player;
    player.Drop({first});
    ASSERT_TRUE(WaitForFile(player, L"그림 2화.mkv", 2 * kEpisode));
    // The former film stands at its end at first.
    EXPECT_TRUE(WaitUntil(limits::kReaction, "the second film's pictures",
                          [&] { return player.FrameOnScreen(kShortFilm).value_or(74) < 25; }));
    EXPECT_TRUE(WaitUntil(limits::kReaction, "its second half",
                          [&] { return player.FrameOnScreen(kShortFilm).value_or(0) > 40; }));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SeriesTest, WhenNothingAfterAFileOpensPlaybackEnds) {
    const std::wstring first = folder.AddFilm(L"끝 1화.mkv");
    folder.AddGarbage(L"끝 2화.mkv");
    folder.AddGarbage(L"끝 3화.mkv");
    Player player;
    player.Drop({first});
    ASSERT_TRUE(WaitForFile(player, L"끝 1화.mkv"));
    ASSERT_TRUE(WaitForClosing(player, kEpisode));
    EXPECT_FALSE(ShowsMessage(player)) << "what did not open has nothing to stop";
    EXPECT_EQ(player.Title(), TitleOf(L"끝 1화.mkv"));
    EXPECT_TRUE(IsBlack(player));
    EXPECT_EQ(library.RecentFiles(), (Names{first}));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SeriesTest, ABadFileThatStandsInTheListTwiceIsPassedOverTwice) {
    const std::wstring first = folder.AddFilm(L"처음.mkv");
    const std::wstring bad = folder.AddGarbage(L"깨진 것.mkv");
    const std::wstring last = folder.AddFilm(L"마지막.mkv");
    Player player;
    player.Drop({first, bad, bad, bad, last});
    ASSERT_TRUE(WaitForFile(player, L"처음.mkv"));
    EXPECT_TRUE(WaitForFile(player, L"마지막.mkv", kEpisode));
    EXPECT_EQ(library.RecentFiles(), (Names{last, first}));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SeriesTest, WithThePointASetTheEndGoesBackThereUntilItIsCleared) {
    const std::wstring first = folder.AddFilm(L"반복 1화.mkv");
    folder.AddFilm(L"반복 2화.mkv");
    Player player;
    player.Drop({first});
    ASSERT_TRUE(WaitForFile(player, L"반복 1화.mkv"));
    player.Activate();
    ASSERT_TRUE(WaitUntil(limits::kPicture, "a later picture",
                          [&] { return player.FrameOnScreen(kShortFilm).value_or(0) > 5; }));
    PressKey(VK_OEM_4); // [
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(WaitUntil(kEpisode, "the end",
                              [&] { return player.FrameOnScreen(kShortFilm).value_or(0) > 65; }));
        ASSERT_TRUE(WaitUntil(kEpisode, "the repeat",
                              [&] { return player.FrameOnScreen(kShortFilm).value_or(99) < 60; }));
        EXPECT_EQ(player.Title(), TitleOf(L"반복 1화.mkv"));
        EXPECT_TRUE(player.IsOpen());
        EXPECT_TRUE(ShowsMessage(player));
    }
    PressKey(VK_OEM_5); // backslash
    EXPECT_TRUE(WaitForFile(player, L"반복 2화.mkv", kEpisode));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SeriesTest, AFileOfTheListKeepsTheListAndOneOutsideReplacesIt) {
    const std::wstring first = folder.AddFilm(L"Show 1.mkv");
    const std::wstring second = folder.AddFilm(L"Show 2.mkv");
    const std::wstring outside = folder.AddFilm(L"영화.mkv");
    const std::wstring sameInCapitals = folder.Path(L"SHOW 1.MKV");
    library.AddRecentFiles({second, first, sameInCapitals, outside});
    Player player;
    ASSERT_TRUE(OpenRecent(player, 0));
    EXPECT_EQ(library.PlaylistPaths(), (Names{first, second}));
    // Emptied behind the program's back, so that writing it anew would show.
    library.ClearPlaylist();
    ASSERT_TRUE(OpenRecent(player, 1));
    EXPECT_EQ(player.Title(), TitleOf(L"Show 1.mkv"));
    EXPECT_EQ(library.PlaylistPaths(), Names{});
    ASSERT_TRUE(OpenRecent(player, 2));
    EXPECT_EQ(player.Title(), TitleOf(L"SHOW 1.MKV"));
    EXPECT_EQ(library.PlaylistPaths(), Names{}) << "case does not matter";
    EXPECT_EQ(ItemsOf(player), (Names{L"Show 1.mkv", L"Show 2.mkv"}));
    ASSERT_TRUE(OpenRecent(player, 3));
    EXPECT_EQ(library.PlaylistPaths(), Names{outside});
    EXPECT_EQ(ItemsOf(player), Names{L"영화.mkv"});
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SeriesTest, AFileOutsideThatDoesNotOpenHasReplacedTheListAllTheSame) {
    const std::wstring film = folder.AddFilm(L"극 1화.mkv");
    const std::wstring bad = folder.AddGarbage(L"깨진 영화.mkv");
    const std::wstring noFilm = folder.AddGarbage(L"글.txt");
    library.AddRecentFiles({film, bad, noFilm});
    Player player;
    ASSERT_TRUE(OpenRecent(player, 0));
    ASSERT_EQ(library.PlaylistPaths(), Names{film});
    EXPECT_FALSE(OpenRecent(player, 1));
    EXPECT_EQ(player.Title(), TitleOf(L"극 1화.mkv"));
    EXPECT_EQ(library.PlaylistPaths(), Names{bad});
    EXPECT_FALSE(OpenRecent(player, 2));
    EXPECT_EQ(player.Title(), TitleOf(L"극 1화.mkv"));
    EXPECT_EQ(library.PlaylistPaths(), Names{}) << "what is no media file has no series";
    EXPECT_EQ(library.RecentFiles(), (Names{film, bad, noFilm})) << "what does not open changes no order";
    EXPECT_EQ(player.OwnProcess().FindVisibleWindow(L"#32770"), nullptr) << "no message is shown";
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SeriesTest, TheStoredListComesBackWhereItIsWantedAndLearnsWhatPlays) {
    const std::wstring first = folder.AddFilm(L"극 1화.mkv");
    const std::wstring second = folder.AddFilm(L"극 2화.mkv");
    library.AddRecentFiles({second});
    {
        Player player;
        ASSERT_TRUE(OpenRecent(player, 0));
        EXPECT_EQ(player.Close(), 0U);
    }
    store.WriteDword(L"PlaylistRestoreOnStartup", 1);
    Player player;
    EXPECT_EQ(player.Title(), L"Brindlecast");
    EXPECT_FALSE(player.IsOpen()) << "nothing is opened by itself";
    EXPECT_EQ(PlayItem(player, 1), TitleOf(L"극 2화.mkv"));
    const std::vector<PlaylistItem> items = library.Playlist();
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0].file_path, first);
    EXPECT_EQ(items[0].duration, 0.0);
    EXPECT_EQ(items[1].file_path, second);
    EXPECT_NEAR(items[1].duration, 3.0, 0.1);
    EXPECT_EQ(items[1].codec_info, L"H264/AAC");
    EXPECT_EQ(ItemsOf(player), (Names{L"극 1화.mkv", L"극 2화.mkv"}));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SeriesTest, OtherwiseTheListBeginsEmptyAndTheStoredOneStays) {
    const std::wstring first = folder.AddFilm(L"극 1화.mkv");
    const std::wstring second = folder.AddFilm(L"극 2화.mkv");
    library.AddRecentFiles({second});
    {
        Player player;
        ASSERT_TRUE(OpenRecent(player, 0));
        EXPECT_EQ(player.Close(), 0U);
    }
    Player player;
    EXPECT_EQ(ItemsOf(player), Names{});
    EXPECT_EQ(player.Title(), L"Brindlecast");
    EXPECT_EQ(library.PlaylistPaths(), (Names{first, second}));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SeriesTest, AChosenItemThatDoesNotOpenIsPassedOver) {
    folder.AddFilm(L"극 1화.mkv");
    folder.AddGarbage(L"극 2화.mkv");
    const std::wstring third = folder.AddFilm(L"극 3화.mkv");
    folder.AddGarbage(L"극 4화.mkv");
    library.AddRecentFiles({third});
    Player player;
    ASSERT_TRUE(OpenRecent(player, 0));
    EXPECT_EQ(PlayItem(player, 0), TitleOf(L"극 1화.mkv"));
    EXPECT_EQ(PlayItem(player, 1), TitleOf(L"극 3화.mkv"));
    EXPECT_TRUE(player.IsOpen());
    for (const std::ptrdiff_t index : {-1, 4, 1'000'000}) {
        EXPECT_EQ(PlayItem(player, index), TitleOf(L"극 3화.mkv")) << index;
        EXPECT_TRUE(player.IsOpen()) << "an index outside the list disturbs nothing";
    }
    EXPECT_EQ(PlayItem(player, 3), TitleOf(L"극 3화.mkv"));
    EXPECT_FALSE(player.IsOpen()) << "nothing follows the last";
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SeriesTest, AnItemCanBeginAtAPositionAndIsNotPassedOver) {
    library.AddRecentFiles({Media(kFilm.name)});
    Player player;
    ASSERT_TRUE(OpenRecent(player, 0));
    EXPECT_EQ(player.Send(kPlayItemAt, 0, 12'000), 0);
    EXPECT_TRUE(WaitUntil(limits::kReaction, "the later picture",
                          [&] { return player.FrameOnScreen(kFilm).value_or(0) >= 300; }));
    EXPECT_LT(player.FrameOnScreen(kFilm).value_or(0), 450);
    EXPECT_EQ(player.Close(), 0U);

    folder.AddGarbage(L"극 1화.mkv");
    const std::wstring second = folder.AddFilm(L"극 2화.mkv");
    library.AddRecentFiles({second}); // older than what was just opened
    Player other;
    ASSERT_TRUE(OpenRecent(other, 1));
    EXPECT_EQ(other.Send(kPlayItemAt, 0, 1000), 0);
    EXPECT_FALSE(other.IsOpen());
    EXPECT_EQ(other.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
