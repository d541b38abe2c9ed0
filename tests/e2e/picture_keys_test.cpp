#include "tests/e2e/fixture.h"
#include "tests/e2e/input.h"
#include "tests/e2e/picture_file.h"
#include "tests/e2e/picture_orientation.h"
#include "tests/e2e/waits.h"

#include <shlobj.h>

#include <array>
#include <chrono>
#include <cwchar>
#include <filesystem>
#include <string>

namespace brindlecast::testing {
namespace {

using std::chrono::milliseconds;

// The numbers as the bars and the menus send them.
constexpr UINT kTurnLeft = 1233;
constexpr UINT kTurnRight = 1234;
constexpr UINT kFlipHorizontal = 1235;
constexpr UINT kFlipVertical = 1236;
constexpr WPARAM kMenuUpright = 5060;
constexpr WPARAM kMenuTurnLeft = 5061;
constexpr WPARAM kMenuTurnRight = 5062;
constexpr WPARAM kMenuFlipHorizontal = 5063;
constexpr WPARAM kMenuFlipVertical = 5064;
constexpr WPARAM kMenuLeft = 5065;
constexpr WPARAM kMenuRight = 5066;
constexpr WPARAM kMenuStop = 5004;
constexpr WPARAM kMenuScreenshot = 5014;

class PictureKeysTest : public ProgramTest {
protected:
    static void Play(Player& player, const Film& film) {
        ASSERT_TRUE(player.Play(film));
        player.Activate();
    }
    static void ExpectAfterKey(const Player& player, WORD key, Orientation expected) {
        PressKey(key);
        EXPECT_TRUE(WaitForOrientation(player, kFilm, expected))
            << static_cast<char>(key) << " gives "
            << ::testing::PrintToString(OrientationOnScreen(player, kFilm));
    }
    static void ExpectAfter(const Player& player, UINT message, WPARAM wParam, Orientation expected) {
        EXPECT_EQ(player.Send(message, wParam), 0);
        EXPECT_TRUE(WaitForOrientation(player, kFilm, expected))
            << message << ", " << wParam << " gives "
            << ::testing::PrintToString(OrientationOnScreen(player, kFilm));
    }
};

TEST_F(PictureKeysTest, KeysTurnThePicture) {
    Player player;
    Play(player, kFilm);
    ASSERT_TRUE(WaitForOrientation(player, kFilm, {0, false}));
    // To a fixed angle.
    ExpectAfterKey(player, 'D', {90, false});
    ExpectAfterKey(player, 'S', {180, false});
    ExpectAfterKey(player, 'A', {270, false});
    ExpectAfterKey(player, 'W', {0, false});
    // By a quarter.
    ExpectAfterKey(player, 'Q', {270, false});
    ExpectAfterKey(player, 'Q', {180, false});
    ExpectAfterKey(player, 'E', {270, false});
    ExpectAfterKey(player, 'R', {0, false});
    ExpectAfterKey(player, 'R', {90, false});
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(PictureKeysTest, KeysFlipThePictureAndWPutsAllBack) {
    Player player;
    Play(player, kFilm);
    ExpectAfterKey(player, 'H', {0, true});
    ExpectAfterKey(player, 'H', {0, false});
    // Upside down is half a turn and a mirror.
    ExpectAfterKey(player, 'V', {180, true});
    ExpectAfterKey(player, 'H', {180, false});
    ExpectAfterKey(player, 'V', {0, true});
    ExpectAfterKey(player, 'D', {90, true});
    ExpectAfterKey(player, 'W', {0, false});
    // Nothing of the flip is left that the next one could undo.
    ExpectAfterKey(player, 'H', {0, true});
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(PictureKeysTest, ATurnWhileUpsideDownDropsTheHalfTurn) {
    Player player;
    Play(player, kFilm);
    ExpectAfterKey(player, 'V', {180, true});
    ExpectAfterKey(player, 'D', {90, true});
    ExpectAfterKey(player, 'V', {90, false});
    ExpectAfterKey(player, 'V', {270, true});
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(PictureKeysTest, MessagesAndMenuCommandsTurnAndFlipLikeTheKeys) {
    Player player;
    Play(player, kFilm);
    ExpectAfter(player, kTurnLeft, 0, {270, false});
    ExpectAfter(player, kTurnRight, 0, {0, false});
    ExpectAfter(player, kFlipHorizontal, 0, {0, true});
    ExpectAfter(player, kFlipVertical, 0, {180, false});
    ExpectAfter(player, WM_COMMAND, kMenuUpright, {0, false});
    ExpectAfter(player, WM_COMMAND, kMenuRight, {90, false});
    ExpectAfter(player, WM_COMMAND, kMenuTurnRight, {180, false});
    ExpectAfter(player, WM_COMMAND, kMenuLeft, {270, false});
    ExpectAfter(player, WM_COMMAND, kMenuTurnLeft, {180, false});
    ExpectAfter(player, WM_COMMAND, kMenuFlipHorizontal, {180, true});
    ExpectAfter(player, WM_COMMAND, kMenuFlipVertical, {0, false});
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(PictureKeysTest, APausedPictureShowsAFlipWithItsNextTurn) {
    Player player;
    Play(player, kFilm);
    PressKey(VK_SPACE);
    ASSERT_TRUE(player.WaitForStandstill(kFilm).has_value());
    PressKey('H');
    LetPlay(milliseconds(500));
    EXPECT_EQ(OrientationOnScreen(player, kFilm), (Orientation{0, false}));
    ExpectAfterKey(player, 'E', {90, true});
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(PictureKeysTest, TheNextFilmStandsUprightAndTurnsOnFromWhereTheLastOneWas) {
    Player player;
    Play(player, kSecondFilm);
    PressKey('D');
    ASSERT_TRUE(WaitForOrientation(player, kSecondFilm, {90, false}));
    Play(player, kFilm);
    EXPECT_EQ(OrientationOnScreen(player, kFilm), (Orientation{0, false}));
    // A quarter is what is still stored, so that nothing changes.
    PressKey('D');
    LetPlay(milliseconds(500));
    EXPECT_EQ(OrientationOnScreen(player, kFilm), (Orientation{0, false}));
    ExpectAfterKey(player, 'E', {180, false});
    EXPECT_EQ(player.Close(), 0U);
}

// Pictures that are taken of the film, in a folder that no earlier test has left.
class ScreenshotKeyTest : public PictureKeysTest {
protected:
    void SetUp() override {
        PictureKeysTest::SetUp();
        PWSTR pictures = nullptr;
        ASSERT_EQ(SHGetKnownFolderPath(FOLDERID_Pictures, 0, nullptr, &pictures), S_OK);
        folder = std::filesystem::path(pictures) / L"Brindlecast";
        CoTaskMemFree(pictures);
        std::filesystem::remove_all(folder);
    }
    void TearDown() override {
        std::filesystem::remove_all(folder);
        PictureKeysTest::TearDown();
    }

    // The one file in the folder, once it is there; empty when there is none, or more.
    [[nodiscard]] std::filesystem::path WaitForPicture(const Player& player) const {
        std::filesystem::path found;
        int count = 0;
        WaitUntil(limits::kReaction, "picture file", [&] {
            count = 0;
            if (std::filesystem::exists(folder)) {
                for (const auto& entry : std::filesystem::directory_iterator(folder)) {
                    found = entry.path();
                    ++count;
                }
            }
            return count > 0;
        });
        return count == 1 && player.Answers() ? found : std::filesystem::path();
    }
    // The name that a picture of the film has that is taken now.
    static std::wstring NameNow() {
        SYSTEMTIME now{};
        GetLocalTime(&now);
        std::array<wchar_t, 64> name{};
        swprintf(name.data(), name.size(), L"film_%04d%02d%02d_%02d%02d%02d.png", now.wYear, now.wMonth,
                 now.wDay, now.wHour, now.wMinute, now.wSecond);
        return name.data();
    }

    std::filesystem::path folder;
};

TEST_F(ScreenshotKeyTest, ControlAndPWriteTheFrameOnTheScreenUnderTheFilmsNameAndTheTime) {
    Player player;
    for (const bool byMenu : {false, true}) {
        SCOPED_TRACE(byMenu);
        std::filesystem::remove_all(folder);
        Play(player, kFilm);
        PressKey(VK_SPACE);
        const auto paused = player.WaitForStandstill(kFilm);
        ASSERT_TRUE(paused.has_value());
        const std::wstring earliest = NameNow();
        if (byMenu) {
            EXPECT_EQ(player.Send(WM_COMMAND, kMenuScreenshot), 0);
        } else {
            PressKeyWith(VK_CONTROL, 'P');
        }
        const std::filesystem::path path = WaitForPicture(player);
        const std::wstring name = path.filename().wstring();
        EXPECT_GE(name, earliest);
        EXPECT_LE(name, NameNow());
        EXPECT_EQ(name.size(), earliest.size());
        const auto file = ReadPictureFile(path.wstring());
        ASSERT_TRUE(file.has_value());
        EXPECT_TRUE(file->isPng);
        EXPECT_EQ(file->picture.width, 320);
        EXPECT_EQ(file->picture.height, 180);
        const PixelRect whole{0, 0, file->picture.width, file->picture.height};
        EXPECT_EQ(ReadFrameMark(file->picture.View(), whole), paused);
        const auto colours = ReadColourPatches(file->picture.View(), whole);
        ASSERT_TRUE(colours.has_value());
        EXPECT_LE(LargestPatchError(*colours), 8);
        EXPECT_EQ(player.FrameOnScreen(kFilm), paused) << "the film must not go on";
    }
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(ScreenshotKeyTest, WithoutAFilmNothingIsWritten) {
    Player player;
    Play(player, kFilm);
    EXPECT_EQ(player.Send(WM_COMMAND, kMenuStop), 0);
    PressKeyWith(VK_CONTROL, 'P');
    LetPlay(milliseconds(500));
    EXPECT_TRUE(player.Answers());
    EXPECT_FALSE(player.IsOpen()) << "the key P alone would play the last film";
    EXPECT_TRUE(!std::filesystem::exists(folder) || std::filesystem::is_empty(folder));
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
