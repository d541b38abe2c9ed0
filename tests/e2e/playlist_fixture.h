#pragma once

#include "tests/e2e/film_folder.h"
#include "tests/e2e/fixture.h"
#include "tests/e2e/stored_library.h"
#include "tests/e2e/waits.h"

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace brindlecast::testing {

using Names = std::vector<std::wstring>;

// Tests of what plays, in which order, and what of it is stored.
class PlaylistTest : public ProgramTest {
protected:
    static constexpr UINT kPlayItem = WM_USER + 220;   // wParam: index
    static constexpr UINT kPlayItemAt = WM_USER + 221; // wParam: index, lParam: milliseconds
    static constexpr WPARAM kOpenNewestRecent = 5100;
    static constexpr WPARAM kClearRecent = 5110;

    static std::wstring TitleOf(const std::wstring& name) { return L"Brindlecast - " + name; }

    // Waits until the file of that name has been opened and all is stored.
    [[nodiscard]] static bool WaitForFile(const Player& player, const std::wstring& name,
                                          std::chrono::milliseconds limit = limits::kPicture) {
        return WaitUntil(limit, "title", [&] { return player.Title() == TitleOf(name); }) && player.Answers();
    }
    // Waits until what played has been closed and the attempt that closed it is over.
    [[nodiscard]] static bool WaitForClosing(const Player& player,
                                             std::chrono::milliseconds limit = limits::kPicture) {
        return WaitUntil(limit, "closing", [&] { return !player.IsOpen(); }) && player.Answers();
    }
    // Opens the recent file at that place, 0 being the newest; true when a file plays then.
    [[nodiscard]] static bool OpenRecent(const Player& player, WPARAM place) {
        EXPECT_EQ(player.Send(WM_COMMAND, kOpenNewestRecent + place), 0);
        return player.IsOpen();
    }
    // Has the item at that index played; the title that stands then.
    [[nodiscard]] static std::wstring PlayItem(const Player& player, std::ptrdiff_t index) {
        EXPECT_EQ(player.Send(kPlayItem, static_cast<WPARAM>(index)), 0);
        return player.Title();
    }
    // The names of the items in the player's list, found by having each played; all of them must open.
    [[nodiscard]] static Names ItemsOf(const Player& player) {
        constexpr std::ptrdiff_t kMore = 30; // than any test puts in
        Names names;
        for (std::ptrdiff_t index = 0; index < kMore; ++index) {
            player.Send(kStop);
            EXPECT_FALSE(player.IsOpen());
            const std::wstring title = PlayItem(player, index);
            if (!player.IsOpen()) {
                break;
            }
            names.push_back(title.substr(TitleOf({}).size()));
        }
        return names;
    }
    [[nodiscard]] static bool IsBlack(const Player& player) {
        const Rect video = ScreenRectOf(player.VideoWindow());
        return WaitUntil(limits::kReaction, "black picture", [&] {
            return PhotographScreen(video).BlackShare({0, 0, video.Width(), video.Height()}) == 1.0;
        });
    }

    FilmFolder folder;
    StoredLibrary library{LibraryFile()};

private:
    static constexpr UINT kStop = WM_USER + 201;
};

} // namespace brindlecast::testing
