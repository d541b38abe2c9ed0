#include "tests/e2e/input.h"
#include "tests/e2e/playlist_fixture.h"

#include <array>

namespace brindlecast::testing {
namespace {

class RecentTest : public PlaylistTest {
protected:
    // Presses Space, and then what shows that it has acted: the key that opens the dialog, which is left.
    static void PressSpaceAndWait(Player& player) {
        player.Activate();
        PressKey(VK_SPACE);
        PressKey('O');
        HWND dialog = nullptr;
        EXPECT_TRUE(WaitUntil(limits::kDialog, "open dialog", [&] {
            dialog = player.OwnProcess().FindVisibleWindow(L"#32770");
            return dialog != nullptr && GetForegroundWindow() == dialog;
        }));
        PressKey(VK_ESCAPE);
        EXPECT_TRUE(WaitUntil(limits::kDialog, "closing of the open dialog",
                              [&] { return player.OwnProcess().FindVisibleWindow(L"#32770") == nullptr; }));
    }
    static std::wstring TextOf(HWND window) {
        std::array<wchar_t, 256> text{};
        GetWindowTextW(window, text.data(), static_cast<int>(text.size()));
        return text.data();
    }
    // The texts in a message box.
    static Names LinesOf(HWND box) {
        Names lines;
        for (HWND line = nullptr; (line = FindWindowExW(box, line, L"Static", nullptr)) != nullptr;) {
            if (const std::wstring text = TextOf(line); !text.empty()) {
                lines.push_back(text);
            }
        }
        return lines;
    }
    // Picks a recent file that is gone, and answers the message box that says so.
    void PickMissing(Player& player, WPARAM place) {
        // Posted, because the answer comes only when the box is closed.
        PostMessageW(player.MainWindow(), WM_COMMAND, kOpenNewestRecent + place, 0);
        HWND box = nullptr;
        ASSERT_TRUE(WaitUntil(limits::kDialog, "message box", [&] {
            box = player.OwnProcess().FindVisibleWindow(L"#32770");
            return box != nullptr && GetForegroundWindow() == box;
        }));
        EXPECT_EQ(TextOf(box), L"오류");
        EXPECT_EQ(LinesOf(box), Names{L"파일을 찾을 수 없습니다."});
        PressKey(VK_RETURN);
        EXPECT_TRUE(WaitUntil(limits::kDialog, "closing of the message box",
                              [&] { return player.OwnProcess().FindVisibleWindow(L"#32770") == nullptr; }));
    }
};

TEST_F(RecentTest, SpaceWithoutAnyRecentFileDoesNothing) {
    Player player;
    PressSpaceAndWait(player);
    EXPECT_FALSE(player.IsOpen());
    EXPECT_EQ(player.Title(), L"Brindlecast");
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(RecentTest, SpaceDoesNothingWhenTheNewestFileIsGoneAndItsEntryStays) {
    const std::wstring gone = folder.Path(L"지운 영화.mkv");
    const std::wstring film = folder.AddFilm(L"영화.mkv");
    library.AddRecentFiles({gone, film});
    Player player;
    PressSpaceAndWait(player);
    EXPECT_FALSE(player.IsOpen());
    EXPECT_EQ(player.Title(), L"Brindlecast");
    EXPECT_EQ(library.RecentFiles(), (Names{gone, film}));
    EXPECT_EQ(library.PlaylistPaths(), Names{}) << "nothing was tried";
    EXPECT_TRUE(OpenRecent(player, 1)) << "the entry stays in the program's own list too";
    EXPECT_EQ(player.Title(), TitleOf(L"영화.mkv"));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(RecentTest, ARestartKeepsTheOrder) {
    const std::wstring first = folder.AddFilm(L"가.mkv");
    const std::wstring second = folder.AddFilm(L"나.mkv");
    const std::wstring third = folder.AddFilm(L"다.mkv");
    {
        Player player;
        for (const std::wstring& film : {first, second, third, first}) {
            player.Drop({film});
            ASSERT_TRUE(WaitForFile(player, std::filesystem::path(film).filename().wstring()));
        }
        EXPECT_EQ(player.Close(), 0U);
    }
    EXPECT_EQ(library.RecentFiles(), (Names{first, third, second}));
    Player player;
    ASSERT_TRUE(OpenRecent(player, 1));
    EXPECT_EQ(player.Title(), TitleOf(L"다.mkv"));
    ASSERT_TRUE(OpenRecent(player, 2));
    EXPECT_EQ(player.Title(), TitleOf(L"나.mkv"));
    EXPECT_EQ(library.RecentFiles(), (Names{second, third, first}));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(RecentTest, TenFilesCanBePickedAndAnEleventhPushesTheOldestOut) {
    Names films;
    for (int i = 0; i < 11; ++i) {
        films.push_back(folder.AddFilm(std::wstring(1, static_cast<wchar_t>(L'a' + i)) + L"x.mkv"));
    }
    const std::wstring eleventh = films.back();
    library.AddRecentFiles({films.begin(), films.end() - 1});
    Player player;
    ASSERT_TRUE(OpenRecent(player, 9));
    EXPECT_EQ(player.Title(), TitleOf(L"jx.mkv"));
    player.Drop({eleventh});
    ASSERT_TRUE(WaitForFile(player, L"kx.mkv"));
    ASSERT_TRUE(OpenRecent(player, 9));
    EXPECT_EQ(player.Title(), TitleOf(L"hx.mkv")) << "ix.mkv is no longer among the ten";
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(RecentTest, APickedFileThatIsGoneIsToldOfAndForgotten) {
    const std::wstring film = folder.AddFilm(L"영화.mkv");
    const std::wstring gone = folder.AddFilm(L"지운 영화.mkv");
    const std::wstring other = folder.AddFilm(L"다른 영화.mkv");
    library.AddRecentFiles({film, gone, other});
    Player player;
    ASSERT_TRUE(OpenRecent(player, 0));
    std::filesystem::remove(gone);
    player.Activate();
    PickMissing(player, 1);
    EXPECT_EQ(library.RecentFiles(), (Names{film, other}));
    EXPECT_TRUE(player.IsOpen()) << "what plays goes on";
    EXPECT_EQ(player.Title(), TitleOf(L"영화.mkv"));
    ASSERT_TRUE(OpenRecent(player, 1));
    EXPECT_EQ(player.Title(), TitleOf(L"다른 영화.mkv")) << "the place is the next file's";
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(RecentTest, ClearingForgetsAllOfThem) {
    library.AddRecentFiles({folder.AddFilm(L"가.mkv"), folder.AddFilm(L"나.mkv")});
    Player player;
    EXPECT_EQ(player.Send(WM_COMMAND, kClearRecent), 0);
    EXPECT_EQ(library.RecentFiles(), Names{});
    for (WPARAM place = 0; place < 10; ++place) {
        EXPECT_FALSE(OpenRecent(player, place)) << place;
    }
    PressSpaceAndWait(player);
    EXPECT_FALSE(player.IsOpen());
    EXPECT_EQ(player.Close(), 0U);
    EXPECT_EQ(library.RecentFiles(), Names{});
}

} // namespace
} // namespace brindlecast::testing
