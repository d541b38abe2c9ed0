#include "playlist_ui/playlist_window.h"

#include "base/win32/geometry.h"
#include "playlist_ui/playlist_services.h"
#include "tests/support/fake_settings_store.h"
#include "tests/support/library_fixture.h"
#include "ui/messages.h"

#include <array>

namespace brindlecast::testing {
namespace {

class PlaylistWindowTest : public LibraryTest {
protected:
    PlaylistWindowTest() {
        owner.Reset(CreateWindowExW(0, L"STATIC", L"owner", WS_POPUP, 100, 50, 800, 600, nullptr, nullptr,
                                    GetModuleHandleW(nullptr), nullptr));
        RECT area{};
        SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
        work = FromRect(area);
    }
    [[nodiscard]] bool Create() { return window.Create(owner.Get(), GetModuleHandleW(nullptr)); }
    void PlaceOwner(int left, int top, int width, int height) const {
        SetWindowPos(owner.Get(), nullptr, left, top, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
    }
    [[nodiscard]] Rect PlaceOfWindow() const {
        RECT rect{};
        GetWindowRect(window.Handle(), &rect);
        return FromRect(rect);
    }
    // Puts a film into the stored list, as a former run does.
    void StoreFilm() const {
        PlaylistDatabase former(clock, DataFolder());
        ASSERT_TRUE(former.Open());
        PlaylistItem item;
        item.file_path = L"C:\\영화\\1화.mkv";
        item.file_name = L"1화.mkv";
        item.duration = 12;
        EXPECT_GT(former.InsertItem(item), 0);
    }
    // How often the owner was told that the list has hidden itself, since it was asked last.
    [[nodiscard]] int TimesTold() const {
        int count = 0;
        MSG message{};
        while (PeekMessageW(&message, owner.Get(), kMessagePlaylistHidden, kMessagePlaylistHidden,
                            PM_REMOVE) != FALSE) {
            ++count;
        }
        return count;
    }

    UniqueHwnd owner;
    Rect work;
    FakeSettingsStore settings;
    FakeFileMetadata files;
    PlaylistDatabase database{clock, DataFolder()};
    PlaylistWindow window{{settings, files, database, nullptr, nullptr, nullptr}};
};

TEST_F(PlaylistWindowTest, TheWindowComesUpHiddenAndOwned) {
    ASSERT_TRUE(Create());
    EXPECT_FALSE(window.IsVisible());
    EXPECT_EQ(owner.Get(), GetWindow(window.Handle(), GW_OWNER));
    std::array<wchar_t, 64> text{};
    GetClassNameW(window.Handle(), text.data(), static_cast<int>(text.size()));
    EXPECT_STREQ(L"BrindlecastPlaylist", text.data());
    GetWindowTextW(window.Handle(), text.data(), static_cast<int>(text.size()));
    EXPECT_STREQ(L"Playlist", text.data());
    // What the system adds of itself: siblings are always cut out of a top-level window.
    EXPECT_EQ(0x82040000U, static_cast<DWORD>(GetWindowLongPtrW(window.Handle(), GWL_STYLE)) &
                               ~static_cast<DWORD>(WS_CLIPSIBLINGS));
    EXPECT_NE(0, GetWindowLongPtrW(window.Handle(), GWL_EXSTYLE) & WS_EX_TOOLWINDOW);
    EXPECT_EQ(0, GetWindowLongPtrW(window.Handle(), GWL_EXSTYLE) & WS_EX_APPWINDOW);
    EXPECT_EQ(static_cast<ULONG_PTR>(CS_HREDRAW | CS_VREDRAW), GetClassLongPtrW(window.Handle(), GCL_STYLE));
    EXPECT_EQ(420, PlaceOfWindow().Width());
    EXPECT_EQ(500, PlaceOfWindow().Height());
}

TEST_F(PlaylistWindowTest, AllOfItIsClientArea) {
    ASSERT_TRUE(Create());
    RECT client{};
    GetClientRect(window.Handle(), &client);
    EXPECT_EQ((Size{420, 500}), SizeOf(client));
}

TEST_F(PlaylistWindowTest, ItIsPaintedDarkInABlackFrame) {
    ASSERT_TRUE(Create());
    PlaceOwner(100, 50, 800, 600);
    window.DockToMainWindow();
    ShowWindow(window.Handle(), SW_SHOWNOACTIVATE);
    UpdateWindow(window.Handle());
    const HDC context = GetDC(window.Handle());
    const auto inside = RGB(0x2B, 0x2B, 0x2B);
    const auto black = RGB(0, 0, 0);
    EXPECT_EQ(inside, GetPixel(context, 210, 300));
    EXPECT_EQ(inside, GetPixel(context, 3, 3));
    EXPECT_EQ(inside, GetPixel(context, 416, 596));
    for (const POINT point :
         {POINT{2, 300}, POINT{417, 300}, POINT{210, 2}, POINT{210, 597}, POINT{0, 0}, POINT{419, 599}}) {
        EXPECT_EQ(black, GetPixel(context, point.x, point.y)) << point.x << ", " << point.y;
    }
    ReleaseDC(window.Handle(), context);
}

TEST_F(PlaylistWindowTest, ItDocksToTheRightWhereItFits) {
    ASSERT_TRUE(Create());
    PlaceOwner(work.right - 420 - 700, 40, 700, 600);
    window.DockToMainWindow();
    EXPECT_EQ((Rect{work.right - 420, 40, work.right, 640}), PlaceOfWindow());
    EXPECT_TRUE(window.docked);
    EXPECT_EQ(DockSide::Right, window.dockSide);
    EXPECT_FALSE(window.IsVisible()) << "placing does not show it";
}

TEST_F(PlaylistWindowTest, ItDocksToTheLeftWhereTheRightIsTooNarrow) {
    ASSERT_TRUE(Create());
    PlaceOwner(work.right - 420 - 700 + 1, 40, 700, 600);
    window.DockToMainWindow();
    const int edge = work.right - 420 - 700 + 1;
    EXPECT_EQ((Rect{edge - 420, 40, edge, 640}), PlaceOfWindow());
    EXPECT_TRUE(window.docked);
    EXPECT_EQ(DockSide::Left, window.dockSide);
}

TEST_F(PlaylistWindowTest, ItStandsUndockedAtTheLeftEdgeWhereNeitherFits) {
    ASSERT_TRUE(Create());
    PlaceOwner(work.left + 100, 40, work.Width() - 200, 600);
    window.docked = true;
    window.dockSide = DockSide::Right;
    window.DockToMainWindow();
    EXPECT_EQ((Rect{work.left, 40, work.left + 420, 640}), PlaceOfWindow());
    EXPECT_FALSE(window.docked);
    EXPECT_EQ(DockSide::None, window.dockSide);
}

TEST_F(PlaylistWindowTest, TheDockStateFollowsWhereTheWindowsStand) {
    ASSERT_TRUE(Create());
    PlaceOwner(600, 40, 700, 600);
    const auto stateAt = [this](int left, int top) {
        SetWindowPos(window.Handle(), nullptr, left, top, 420, 600, SWP_NOZORDER | SWP_NOACTIVATE);
        window.UpdateDockState();
        return std::pair(window.docked, window.dockSide);
    };
    EXPECT_EQ(std::pair(true, DockSide::Right), stateAt(1300 + 4, 40 - 4));
    EXPECT_EQ(std::pair(false, DockSide::None), stateAt(1300 + 5, 40));
    EXPECT_EQ(std::pair(true, DockSide::Left), stateAt(600 - 420 - 4, 40 + 4));
    EXPECT_EQ(std::pair(false, DockSide::None), stateAt(600 - 420, 40 + 5));
}

TEST_F(PlaylistWindowTest, ClosingHidesItAndTellsTheOwnerLater) {
    ASSERT_TRUE(Create());
    ShowWindow(window.Handle(), SW_SHOWNOACTIVATE);
    ASSERT_TRUE(window.IsVisible());
    EXPECT_EQ(0, TimesTold());
    SendMessageW(window.Handle(), WM_CLOSE, 0, 0);
    EXPECT_FALSE(window.IsVisible());
    ASSERT_NE(nullptr, window.Handle()) << "hidden, not destroyed";
    EXPECT_EQ(1, TimesTold());
    EXPECT_EQ(WM_USER + 222, static_cast<int>(kMessagePlaylistHidden));
}

TEST_F(PlaylistWindowTest, ItIsNeverSmallerThanThreeHundredPixels) {
    ASSERT_TRUE(Create());
    MINMAXINFO info{};
    SendMessageW(window.Handle(), WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&info));
    EXPECT_EQ(300, info.ptMinTrackSize.x);
    EXPECT_EQ(300, info.ptMinTrackSize.y);
}

TEST_F(PlaylistWindowTest, ItHasNoSystemFrameToActivateOrErase) {
    ASSERT_TRUE(Create());
    EXPECT_EQ(1, SendMessageW(window.Handle(), WM_NCACTIVATE, FALSE, 0));
    EXPECT_EQ(1, SendMessageW(window.Handle(), WM_ERASEBKGND, 0, 0));
    RECT proposed{10, 20, 400, 500};
    EXPECT_EQ(0, SendMessageW(window.Handle(), WM_NCCALCSIZE, FALSE, reinterpret_cast<LPARAM>(&proposed)));
    EXPECT_EQ((Rect{10, 20, 400, 500}), FromRect(proposed));
}

TEST_F(PlaylistWindowTest, CreatingItOpensTheLibraryAndTakesOverTheStoredListIfWanted) {
    StoreFilm();
    settings.values[L"PlaylistRestoreOnStartup"] = std::uint32_t{1};
    ASSERT_TRUE(Create());
    EXPECT_NE(nullptr, database.Connection());
    ASSERT_EQ(1U, window.model.items.size());
    EXPECT_EQ(L"C:\\영화\\1화.mkv", window.model.items[0].file_path);
    EXPECT_EQ(12, window.model.items[0].duration);
    EXPECT_EQ(std::vector<std::int32_t>{0}, window.model.filteredIndices);
    EXPECT_EQ(-1, window.model.currentIndex);
}

TEST_F(PlaylistWindowTest, WithoutTheSettingTheListBeginsEmptyAndTheTableStays) {
    StoreFilm();
    ASSERT_TRUE(Create());
    EXPECT_TRUE(window.model.items.empty());
    EXPECT_EQ(1U, database.LoadItems().size());
}

TEST_F(PlaylistWindowTest, WithoutAWalkThereIsNoNextFavorite) {
    ASSERT_TRUE(Create());
    window.groupQueuePosition = 0;
    window.favoriteRows = {0, 1};
    EXPECT_TRUE(window.AdvanceFavorite().path.empty());
    EXPECT_EQ(0, window.groupQueuePosition);
    EXPECT_FALSE(window.groupQueueActive);
}

TEST_F(PlaylistWindowTest, TheWindowGoesWithItsObjectOrItsOwner) {
    HWND handle = nullptr;
    {
        PlaylistWindow shortLived({settings, files, database, nullptr, nullptr, nullptr});
        ASSERT_TRUE(shortLived.Create(owner.Get(), GetModuleHandleW(nullptr)));
        handle = shortLived.Handle();
    }
    EXPECT_EQ(FALSE, IsWindow(handle));
    ASSERT_TRUE(Create()) << "the class serves the next window";
    handle = window.Handle();
    owner.Reset();
    EXPECT_EQ(FALSE, IsWindow(handle));
    EXPECT_EQ(nullptr, window.Handle());
    EXPECT_FALSE(window.IsVisible());
}

TEST(PlaylistServices, TheProgramsListFindsFilesInTheirFolder) {
    FakeSettingsStore settings;
    const PlaylistServices services = SystemPlaylistServices(settings);
    EXPECT_EQ(&PlaylistDatabase::Instance(), &services.database);
    EXPECT_EQ(&settings, &services.settings);
    EXPECT_TRUE(services.files.Read(L"C:\\windows\\system32\\kernel32.dll").has_value());
    EXPECT_FALSE(services.files.Read(L"C:\\no such file").has_value());
    EXPECT_EQ(L"C:\\a.mkv", services.resolveShortcut(L"C:\\a.mkv"));
    EXPECT_LT(services.compareNames(L"2.mkv", L"10.mkv"), 0);

    const auto folder = std::filesystem::temp_directory_path() / L"재생목록 시험";
    std::filesystem::create_directories(folder);
    for (const wchar_t* name : {L"극 02화.mkv", L"극 01화.mkv", L"딴것.mkv"}) {
        UniqueFile(CreateFileW((folder / name).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                               FILE_ATTRIBUTE_NORMAL, nullptr));
    }
    EXPECT_EQ(
        (std::vector<std::wstring>{(folder / L"극 01화.mkv").wstring(), (folder / L"극 02화.mkv").wstring()}),
        services.findSeries((folder / L"극 02화.mkv").wstring(), 100));
    std::filesystem::remove_all(folder);
}

} // namespace
} // namespace brindlecast::testing
