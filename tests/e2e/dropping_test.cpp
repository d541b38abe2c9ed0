#include "tests/e2e/playlist_fixture.h"

namespace brindlecast::testing {
namespace {

class DroppingTest : public PlaylistTest {
protected:
    // Lets the stored list hold something, so that its emptying shows, and plays that.
    [[nodiscard]] bool PlayStoredFilm(const Player& player) const {
        return OpenRecent(player, 0) && library.PlaylistPaths().size() == 1;
    }
    void PrepareStoredFilm() const { library.AddRecentFiles({Media(kSilentFilm.name)}); }
};

TEST_F(DroppingTest, AnEpisodeBringsItsSeriesAndTheStoredListIsEmptied) {
    folder.AddFilm(L"극 1화.mkv");
    const std::wstring second = folder.AddFilm(L"극 2화.mkv");
    folder.AddFilm(L"극 10화.mkv");
    PrepareStoredFilm();
    {
        Player player;
        ASSERT_TRUE(PlayStoredFilm(player));
        player.Drop({second});
        ASSERT_TRUE(WaitForFile(player, L"극 2화.mkv"));
        EXPECT_EQ(library.PlaylistPaths(), Names{}) << "a drop does not write its list";
        EXPECT_EQ(library.RecentFiles(), (Names{second, Media(kSilentFilm.name)}));
        EXPECT_EQ(ItemsOf(player), (Names{L"극 1화.mkv", L"극 2화.mkv", L"극 10화.mkv"}));
        EXPECT_EQ(library.PlaylistPaths(), Names{});
        EXPECT_EQ(player.Close(), 0U);
    }
    store.WriteDword(L"PlaylistRestoreOnStartup", 1);
    Player player;
    EXPECT_EQ(ItemsOf(player), Names{});
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(DroppingTest, OfSeveralFilesTheFirstPlaysAndTheOthersFollowItsSeries) {
    folder.AddFilm(L"극 1화.mkv");
    const std::wstring second = folder.AddFilm(L"극 2화.mkv");
    folder.AddFilm(L"극 3화.mkv");
    const std::wstring shortcut = folder.AddShortcut(L"영화로.lnk", Media(kKoreanFilm.name));
    Player player;
    player.Drop({second, Media(kFilm.name), shortcut, folder.Path(L"극 1화.mkv"), Media(kSecondFilm.name)});
    ASSERT_TRUE(WaitForFile(player, L"극 2화.mkv"));
    EXPECT_EQ(library.RecentFiles(), Names{second});
    EXPECT_EQ(ItemsOf(player), (Names{L"극 1화.mkv", L"극 2화.mkv", L"극 3화.mkv", kFilm.name,
                                      kKoreanFilm.name, L"극 1화.mkv", kSecondFilm.name}));
    EXPECT_EQ(library.PlaylistPaths(), Names{});
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(DroppingTest, AFileThatIsInTheListIsNotAddedAgainWhereThatIsUnwanted) {
    const std::wstring first = folder.AddFilm(L"Show 1.mkv");
    const std::wstring second = folder.AddFilm(L"Show 2.mkv");
    store.WriteDword(L"PlaylistPreventDuplicates", 1);
    Player player;
    player.Drop({second, first, Media(kFilm.name), second, Media(kFilm.name)});
    ASSERT_TRUE(WaitForFile(player, L"Show 2.mkv"));
    EXPECT_EQ(ItemsOf(player), (Names{L"Show 1.mkv", L"Show 2.mkv", kFilm.name}));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(DroppingTest, TheNextDropReplacesTheWholeList) {
    const std::wstring first = folder.AddFilm(L"극 1화.mkv");
    folder.AddFilm(L"극 2화.mkv");
    Player player;
    player.Drop({first, Media(kFilm.name)});
    ASSERT_TRUE(WaitForFile(player, L"극 1화.mkv"));
    player.Drop({Media(kSecondFilm.name)});
    ASSERT_TRUE(WaitForFile(player, kSecondFilm.name));
    EXPECT_EQ(ItemsOf(player), Names{kSecondFilm.name});
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(DroppingTest, AFolderClosesWhatPlaysAndEmptiesTheList) {
    PrepareStoredFilm();
    Player player;
    ASSERT_TRUE(PlayStoredFilm(player));
    player.Drop({folder.AddFolder(L"묶음")});
    ASSERT_TRUE(WaitForClosing(player));
    EXPECT_EQ(player.Title(), TitleOf(kSilentFilm.name));
    EXPECT_EQ(library.PlaylistPaths(), Names{});
    EXPECT_EQ(ItemsOf(player), Names{});
    EXPECT_EQ(library.RecentFiles(), Names{Media(kSilentFilm.name)});
    EXPECT_EQ(player.OwnProcess().FindVisibleWindow(L"#32770"), nullptr) << "no message is shown";
    ASSERT_TRUE(player.Play(kFilm));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(DroppingTest, AFolderThatIsNamedLikeAFilmDoesNotOpenEither) {
    Player player;
    ASSERT_TRUE(player.Play(kSilentFilm));
    player.Drop({folder.AddFolder(L"극 1화.mkv")});
    ASSERT_TRUE(WaitForClosing(player));
    EXPECT_EQ(player.Title(), TitleOf(kSilentFilm.name));
    ASSERT_TRUE(player.Play(kFilm));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(DroppingTest, AShortcutPlaysItsTargetWhichIsWhatIsRemembered) {
    const std::wstring first = folder.AddFilm(L"극 1화.mkv");
    const std::wstring second = folder.AddFilm(L"극 2화.mkv");
    Player player;
    player.Drop({folder.AddShortcut(L"둘째 화로 가기.LNK", second)});
    ASSERT_TRUE(WaitForFile(player, L"극 2화.mkv"));
    EXPECT_TRUE(player.WaitForFrame(kShortFilm).has_value());
    EXPECT_EQ(library.RecentFiles(), Names{second});
    EXPECT_EQ(library.PlaylistPaths(), (Names{first, second})) << "the target is outside of the dropped list";
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(DroppingTest, AShortcutToNowhereFailsSilently) {
    const std::wstring gone = folder.AddFilm(L"지운 영화.mkv");
    const std::wstring shortcut = folder.AddShortcut(L"지운 영화로.lnk", gone);
    std::filesystem::remove(gone);
    Player player;
    ASSERT_TRUE(player.Play(kSilentFilm));
    player.Drop({shortcut});
    ASSERT_TRUE(WaitForClosing(player));
    EXPECT_EQ(player.Title(), TitleOf(kSilentFilm.name));
    EXPECT_EQ(library.RecentFiles(), Names{Media(kSilentFilm.name)});
    EXPECT_EQ(player.Close(), 0U);
}

// Drops a thousand files, whose names are given relative to the folder: their paths would be too much for one
// command line.
TEST_F(DroppingTest, AThousandFilesAreTaken) {
    constexpr int kCount = 1000;
    std::wstring names;
    for (int i = 0; i < kCount; ++i) {
        const std::wstring name = L"f" + std::to_wstring(10'000 + i) + L".mkv";
        i == 0 || i == kCount - 1 ? folder.AddFilm(name) : folder.AddGarbage(name);
        names += L" " + name;
    }
    Player player;
    const std::filesystem::path former = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path(L""));
    player.DropByNames(names);
    std::filesystem::current_path(former);
    ASSERT_TRUE(WaitForFile(player, L"f10000.mkv"));
    EXPECT_TRUE(player.WaitForFrame(kShortFilm).has_value());
    // A hundred of the series, whichever the folder names first, and all but the first once more.
    EXPECT_EQ(PlayItem(player, 100 + kCount - 2), TitleOf(L"f10999.mkv"));
    EXPECT_EQ(player.Send(kPlayItem, 0), 0);
    EXPECT_TRUE(player.Answers());
    EXPECT_EQ(player.Close(), 0U);
}

class LongPathTest : public DroppingTest {
protected:
    // A film whose path has that many units.
    [[nodiscard]] std::wstring AddFilmOfLength(std::size_t length) const {
        constexpr std::size_t kName = 120;
        const std::wstring parent(length - folder.Path(L"").size() - kName - 1, L'd');
        folder.AddFolder(parent);
        return folder.AddFilm(parent + L"\\" + std::wstring(kName - 4, L'f') + L".mkv");
    }
};

TEST_F(LongPathTest, TheLongestPathThatFitsPlays) {
    const std::wstring path = AddFilmOfLength(259);
    ASSERT_EQ(path.size(), 259U);
    Player player;
    player.Drop({path});
    ASSERT_TRUE(WaitForFile(player, std::filesystem::path(path).filename().wstring()));
    EXPECT_EQ(library.RecentFiles(), Names{path});
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(LongPathTest, ALongerOneIsCutAndOpensNothing) {
    PrepareStoredFilm();
    for (const std::size_t length : {260U, 263U, 300U}) {
        SCOPED_TRACE(length);
        Player player;
        ASSERT_TRUE(PlayStoredFilm(player));
        const std::wstring path = AddFilmOfLength(length);
        ASSERT_EQ(path.size(), length);
        player.Drop({path});
        ASSERT_TRUE(WaitForClosing(player));
        EXPECT_EQ(player.Title(), TitleOf(kSilentFilm.name));
        EXPECT_EQ(library.RecentFiles(), Names{Media(kSilentFilm.name)});
        EXPECT_EQ(ItemsOf(player), Names{});
        EXPECT_EQ(player.Close(), 0U);
        std::filesystem::remove(path);
    }
}

} // namespace
} // namespace brindlecast::testing
