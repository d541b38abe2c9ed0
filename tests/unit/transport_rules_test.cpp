#include "app/next_action.h"
#include "app/screenshot_name.h"

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

TEST(NextAction, EveryStateHasItsFollowUp) {
    const struct {
        EndOfFile end;
        NextAction expected;
    } rows[] = {
        {{}, NextAction::Stop},
        {{.hasPlaylist = true}, NextAction::PlayNextItem},
        {{.hasPlaylist = true, .playsGroup = true}, NextAction::PlayNextFavorite},
        // A alone repeats to the end of the file, whatever else would follow.
        {{.markA = 1}, NextAction::RepeatFromA},
        {{.markA = 50'000'000, .hasPlaylist = true}, NextAction::RepeatFromA},
        {{.markA = 50'000'000, .hasPlaylist = true, .playsGroup = true}, NextAction::RepeatFromA},
        // So does a B that does not lie behind A.
        {{.markA = 50'000'000, .markB = 50'000'000, .hasPlaylist = true}, NextAction::RepeatFromA},
        {{.markA = 50'000'000, .markB = 40'000'000, .hasPlaylist = true}, NextAction::RepeatFromA},
        // With both the end was not that of the repeated part.
        {{.markA = 50'000'000, .markB = 50'000'001, .hasPlaylist = true}, NextAction::PlayNextItem},
        {{.markA = 1, .markB = 2, .hasPlaylist = true, .playsGroup = true}, NextAction::PlayNextFavorite},
        {{.markA = 1, .markB = 2}, NextAction::Stop},
        // B without A means nothing.
        {{.markB = 50'000'000, .hasPlaylist = true}, NextAction::PlayNextItem},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ChooseNextAction(row.end), row.expected) << row.end.markA << ' ' << row.end.markB;
    }
}

TEST(ScreenshotName, IsThatOfTheFileWithTheMoment) {
    const LocalTime moment{2026, 1, 2, 3, 4, 5};
    EXPECT_EQ(ScreenshotName(L"D:\\영화\\나의 영화.2020.mkv", moment), L"나의 영화.2020_20260102_030405.png");
    EXPECT_EQ(ScreenshotName(L"D:/films/film.mkv", moment), L"film_20260102_030405.png");
    EXPECT_EQ(ScreenshotName(L"D:\\films.old\\film", moment), L"film_20260102_030405.png");
    EXPECT_EQ(ScreenshotName(L"D:\\films\\.mkv", moment), L"_20260102_030405.png");
}

TEST(ScreenshotName, WithoutAFileOrItsFolderItHasAnotherName) {
    const LocalTime moment{2026, 11, 21, 23, 59, 59};
    EXPECT_EQ(ScreenshotName(L"", moment), L"Screenshot_20261121_235959.png");
    EXPECT_EQ(ScreenshotName(L"film.mkv", moment), L"Screenshot_20261121_235959.png");
}

} // namespace
} // namespace brindlecast
