#include "tests/e2e/subtitle_fixture.h"

#include <array>
#include <chrono>
#include <optional>
#include <string>

namespace brindlecast::testing {
namespace {

using std::chrono::milliseconds;

constexpr WORD kComma = 0xBC;
constexpr WORD kPeriod = 0xBE;
constexpr WORD kSlash = 0xBF;
constexpr WPARAM kOpenSubtitle = 5351;

constexpr BlockCue kCue{4000, 6000, {40, 130, 120, 166}, kMagenta};

class SubtitleKeysTest : public SubtitleTest {
protected:
    // Types the path into the dialog for subtitle files.
    static void Open(const Player& player, const std::wstring& path) {
        PostMessageW(player.MainWindow(), WM_COMMAND, kOpenSubtitle, 0);
        HWND dialog = nullptr;
        ASSERT_TRUE(WaitUntil(limits::kDialog, "subtitle dialog", [&] {
            dialog = player.OwnProcess().FindVisibleWindow(L"#32770");
            return dialog != nullptr && GetForegroundWindow() == dialog;
        }));
        std::array<wchar_t, 64> title{};
        GetWindowTextW(dialog, title.data(), static_cast<int>(title.size()));
        EXPECT_EQ(std::wstring(title.data()), L"자막 파일 열기");
        TypeText(path);
        PressKey(VK_RETURN);
        EXPECT_TRUE(WaitUntil(limits::kDialog, "closing of the subtitle dialog",
                              [&] { return player.OwnProcess().FindVisibleWindow(L"#32770") == nullptr; }));
    }
    static void ExpectAfterKey(const Player& player, WORD key, const std::wstring& text) {
        ExpectMessage(player, text, [key] { PressKey(key); });
    }
    static void ExpectAfterCommand(const Player& player, WPARAM command, const std::wstring& text) {
        ExpectMessage(player, text, [&] { EXPECT_EQ(player.Send(WM_COMMAND, command), 0); });
    }
    [[nodiscard]] std::optional<std::uint32_t> StoredSwitch() {
        return store.ReadDword(L"SubtitleEnabled", TypeCheck::Strict);
    }
};

TEST_F(SubtitleKeysTest, CommaPeriodAndSlashShiftTheTextsByHalfASecond) {
    const Film film = AddFilm(L"film.mp4");
    // Around the keyframes at 2, 4, 6 and 8 seconds.
    const BlockCue soon{2300, 2600, {20, 130, 60, 170}, kRed};
    const BlockCue now{3900, 4300, {80, 130, 120, 170}, kMagenta};
    const BlockCue next{4400, 8000, {140, 130, 180, 170}, kCyan};
    AddText(L"film.ass", AssWith({soon, now, next}));
    const auto shown = [&](const Player& player, int frame) {
        const Sight sight = SightAt(player, film, frame);
        return std::string(sight.ShowsJust(soon) ? "soon " : "") + (sight.ShowsJust(now) ? "now " : "") +
               (sight.ShowsJust(next) ? "next " : "");
    };
    Player player;
    ASSERT_TRUE(PlayLargeAndPause(player, film));
    EXPECT_EQ(shown(player, 50), "");
    EXPECT_EQ(shown(player, 100), "now ");
    EXPECT_EQ(shown(player, 150), "next ");
    EXPECT_EQ(shown(player, 200), "");
    ExpectAfterKey(player, kPeriod, L"자막 딜레이 +0.5초");
    EXPECT_EQ(shown(player, 50), "") << "only while a text of the file's own times stands there is a picture";
    EXPECT_EQ(shown(player, 100), "next ") << "the picture holds what the file has half a second later";
    EXPECT_EQ(shown(player, 150), "next ");
    EXPECT_EQ(shown(player, 200), "");
    ExpectAfterKey(player, kSlash, L"자막 딜레이 초기화");
    EXPECT_EQ(shown(player, 100), "now ");
    ExpectAfterKey(player, kComma, L"자막 딜레이 -0.5초");
    EXPECT_EQ(shown(player, 100), "");
    EXPECT_EQ(shown(player, 150), "next ");
    EXPECT_EQ(shown(player, 200), "") << "the file's own stop counts";
    ExpectAfterKey(player, kComma, L"자막 딜레이 -1.0초");
    EXPECT_EQ(shown(player, 150), "next ");
    ExpectMessage(player, L"자막 딜레이 -1.5초", [] { PressKeyWith(VK_SHIFT, kComma); });
    EXPECT_EQ(shown(player, 150), "next ");
    ExpectAfterKey(player, kComma, L"자막 딜레이 -2.0초");
    EXPECT_EQ(shown(player, 150), "now ");
    ExpectMessage(player, L"자막 딜레이 -1.5초", [] { PressKeyWith(VK_SHIFT, kPeriod); });
    EXPECT_EQ(shown(player, 150), "next ");
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SubtitleKeysTest, ADelayStandsForTheNextFileAndFilm) {
    const Film film = AddFilm(L"film.mp4");
    AddText(L"film.ass", AssWith({kCue}));
    const Film second = AddFilm(L"second.mp4");
    AddText(L"second.ass", AssWith({{3900, 4300, {40, 130, 120, 166}, kRed}, kCue}));
    Player player;
    ASSERT_TRUE(PlayLargeAndPause(player, film));
    ExpectAfterKey(player, kPeriod, L"자막 딜레이 +0.5초");
    ASSERT_TRUE(PlayLargeAndPause(player, second));
    const Sight sight = SightAt(player, second, 100);
    EXPECT_FALSE(sight.Shows(kRed));
    EXPECT_TRUE(sight.ShowsJust(kCue));
    ExpectAfterKey(player, kPeriod, L"자막 딜레이 +1.0초");
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SubtitleKeysTest, TheMenuSwitchesSubtitlesOffAndTheLoadedFileOnAgain) {
    const Film film = AddFilm(L"한국어 영화.mp4");
    AddText(L"한국어 영화.ass", AssWith({kCue}));
    Player player;
    ASSERT_TRUE(PlayLargeAndPause(player, film));
    EXPECT_TRUE(SightAt(player, film, 100).ShowsJust(kCue));
    EXPECT_NE(StoredSwitch(), 0U);
    ExpectAfterCommand(player, kSubtitlesOff, L"자막 끄기");
    EXPECT_EQ(StoredSwitch(), 0U);
    EXPECT_FALSE(SightAt(player, film, 100).Shows(kMagenta));
    ExpectAfterCommand(player, kFirstSubtitle, L"자막: 한국어 영화.ass");
    EXPECT_EQ(StoredSwitch(), 1U);
    EXPECT_TRUE(SightAt(player, film, 100).ShowsJust(kCue));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SubtitleKeysTest, AFilmWithoutSubtitlesHasNoneOfTheFormerToChoose) {
    const Film film = AddFilm(L"film.mp4");
    AddText(L"film.ass", AssWith({kCue}));
    const Film alone = AddFilm(L"alone.mp4");
    Player player;
    ASSERT_TRUE(PlayLargeAndPause(player, film));
    ASSERT_TRUE(SightAt(player, film, 100).ShowsJust(kCue));
    ASSERT_TRUE(PlayLargeAndPause(player, alone));
    EXPECT_FALSE(SightAt(player, alone, 100).Shows(kMagenta));
    ExpectAfterCommand(player, kFirstSubtitle, L"자막: ");
    EXPECT_FALSE(SightAt(player, alone, 100).Shows(kMagenta));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SubtitleKeysTest, SwitchedOffTheyAreGoneFromARunningFilmAtOnce) {
    const Film film = AddFilm(L"film.mp4");
    AddText(L"film.ass", AssWith({{0, 20'000, {40, 130, 120, 166}, kMagenta}}));
    Player player;
    ASSERT_TRUE(Play(player, film));
    const auto shows = [&](bool wanted) {
        return WaitUntil(limits::kReaction, "switching", [&] {
            const Sight sight = LookAt(player, film);
            return sight.frame && sight.Shows(kMagenta) == wanted;
        });
    };
    EXPECT_TRUE(shows(true));
    EXPECT_EQ(player.Send(WM_COMMAND, kSubtitlesOff), 0);
    EXPECT_TRUE(shows(false));
    EXPECT_EQ(player.Send(WM_COMMAND, kFirstSubtitle), 0);
    EXPECT_TRUE(shows(true));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SubtitleKeysTest, TheDialogOpensAFileInPlaceOfTheFormer) {
    store.WriteDword(L"SubtitleEnabled", 0);
    const Film film = AddFilm(L"film.mp4");
    AddText(L"film.srt", SrtWith(4000, 6000, SrtBlock(kRed)));
    const std::wstring other = AddText(L"다른 자막.ass", AssWith({kCue}));
    Player player;
    ASSERT_TRUE(PlayLargeAndPause(player, film));
    EXPECT_FALSE(SightAt(player, film, 100).Shows(kRed)) << "they are switched off";
    ExpectMessage(player, L"자막 켜기", [&] { Open(player, other); });
    EXPECT_EQ(StoredSwitch(), 1U);
    const Sight sight = SightAt(player, film, 100);
    EXPECT_TRUE(sight.ShowsJust(kCue));
    EXPECT_FALSE(sight.Shows(kRed));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SubtitleKeysTest, TheDialogOpensAFileForAFilmThatHasNone) {
    const Film film = AddFilm(L"film.mp4");
    const std::wstring other = AddText(L"other.srt", SrtWith(4000, 6000, SrtBlock(kBlue)));
    Player player;
    ASSERT_TRUE(PlayLargeAndPause(player, film));
    EXPECT_FALSE(SightAt(player, film, 100).Shows(kBlue));
    ExpectMessage(player, L"자막 켜기", [&] { Open(player, other); });
    EXPECT_TRUE(SightAt(player, film, 100).Shows(kBlue));
    ExpectAfterCommand(player, kFirstSubtitle, L"자막: other.srt");
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SubtitleKeysTest, AFileThatIsNoSubtitleShowsNothingAndTakesTheFormerAway) {
    const Film film = AddFilm(L"film.mp4");
    AddText(L"film.ass", AssWith({kCue}));
    const std::wstring garbage = AddText(L"garbage.smi", "<SAMI><BODY><SYNC Start=4000>HHHH</BODY></SAMI>\n");
    const std::wstring noText = AddText(L"no text.smi", SrtWith(1000, 18'000, "\xFF\xFE\x80"));
    Player player;
    for (const std::wstring& path : {garbage, noText}) {
        SCOPED_TRACE(::testing::PrintToString(path));
        ASSERT_TRUE(PlayLargeAndPause(player, film));
        ASSERT_TRUE(SightAt(player, film, 100).ShowsJust(kCue));
        ASSERT_TRUE(player.WaitUntilNoMessageShows());
        Open(player, path);
        for (int i = 0; i < 25; ++i) {
            ASSERT_EQ(VisibleMessageWindow(player), nullptr);
            LetPlay(milliseconds(20));
        }
        const Sight sight = SightAt(player, film, 100);
        EXPECT_FALSE(sight.Shows(kMagenta));
        EXPECT_FALSE(sight.Shows(kWhite));
    }
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
