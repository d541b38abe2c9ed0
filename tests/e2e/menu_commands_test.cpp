#include "tests/e2e/fixture.h"
#include "tests/e2e/input.h"
#include "tests/e2e/message_picture.h"
#include "tests/e2e/sound_recorder.h"
#include "tests/e2e/waits.h"
#include "tests/e2e/window_state.h"

#include <array>
#include <string>
#include <utility>

namespace brindlecast::testing {
namespace {

constexpr UINT kTogglePlay = 1224;
constexpr UINT kSeek = 1230; // wParam: ten-thousandths of the duration

constexpr WPARAM kAudioTrack = 5200; // the first of a hundred
constexpr WPARAM kCompression = 5180;
constexpr WPARAM kMarkA = 5400;
constexpr WPARAM kMarkB = 5401;
constexpr WPARAM kClearMarks = 5402;
constexpr WPARAM kKeyMute = 6020;
constexpr WPARAM kKeySlower = 6022;
constexpr WPARAM kKeyFaster = 6023;

// Three tones of sound, ten seconds, a keyframe every two.
constexpr Film kTracks{L"tracks.mkv", 320, 180, 25.0};

// A command, and the message that it shows.
using Step = std::pair<WPARAM, const wchar_t*>;

// What the entries of the menus do, and what they say: commands that no key gives.
class MenuCommandsTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        static_cast<void>(SoundRecorder::Instance());
    }

    static void Command(const Player& player, WPARAM id) { EXPECT_EQ(player.Send(WM_COMMAND, id), 0); }
    static void ExpectMessages(const Player& player, std::initializer_list<Step> steps) {
        for (const auto& [id, text] : steps) {
            Command(player, id);
            EXPECT_TRUE(WaitForMessage(player, text)) << id;
        }
    }
    // No message may be on show before.
    static void ExpectNoMessage(const Player& player, std::initializer_list<WPARAM> ids) {
        for (const WPARAM id : ids) {
            Command(player, id);
            EXPECT_EQ(VisibleMessageWindow(player), nullptr) << id;
        }
    }
    // Plays the film in a window so narrow that messages stand over black, above the picture.
    static void PlayNarrow(Player& player, const Film& film) {
        ASSERT_TRUE(PutAt(player.MainWindow(), {400, 100, 1100, 900}));
        ASSERT_TRUE(player.Play(film));
    }
    static void PlayNarrowAndPause(Player& player, const Film& film) {
        ASSERT_NO_FATAL_FAILURE(PlayNarrow(player, film));
        EXPECT_EQ(player.Send(kTogglePlay), 0);
        ASSERT_TRUE(player.WaitForStandstill(film).has_value());
        ASSERT_TRUE(player.WaitUntilNoMessageShows());
    }
    static void GoToFrame(const Player& player, const Film& film, WPARAM tenThousandths, int frame) {
        EXPECT_EQ(player.Send(kSeek, tenThousandths), 0);
        EXPECT_TRUE(player.WaitForFrameNumber(film, frame)) << player.FrameOnScreen(film).value_or(-1);
    }
    [[nodiscard]] std::optional<std::uint32_t> Stored(const wchar_t* name) {
        return store.ReadDword(name, TypeCheck::Strict);
    }
};

TEST_F(MenuCommandsTest, AnAudioTrackIsHeardAndNamed) {
    Player player;
    ASSERT_NO_FATAL_FAILURE(PlayNarrow(player, kTracks));
    ASSERT_TRUE(SoundRecorder::Instance().Hears(440.0));
    const struct {
        WPARAM track;
        const wchar_t* message;
        double frequency;
    } rows[] = {
        {1, L"오디오: 영어 음성 [eng] (aac)", 550.0},
        {2, L"오디오: 일본어 음성 [jpn] (aac)", 880.0},
        {0, L"오디오: 한국어 음성 [kor] (aac)", 440.0},
        // Tracks that there are not leave the sound as it is.
        {3, L"오디오: ", 440.0},
        {99, L"오디오: ", 440.0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.track);
        // The film is short.
        EXPECT_EQ(player.Send(kSeek, 0), 0);
        Command(player, kAudioTrack + row.track);
        EXPECT_TRUE(WaitForMessage(player, row.message));
        const int frame = player.WaitForFrame(kTracks).value_or(0);
        EXPECT_TRUE(WaitUntil(limits::kReaction, "the film going on",
                              [&] { return player.FrameOnScreen(kTracks).value_or(0) > frame + 12; }));
        EXPECT_TRUE(SoundRecorder::Instance().Hears(row.frequency));
    }
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MenuCommandsTest, WithoutAFileAnAudioTrackHasNoName) {
    Player player;
    ExpectMessages(player, {{kAudioTrack, L"오디오: "}});
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MenuCommandsTest, CompressionIsTurnedOnAndOffAndStored) {
    Player player;
    ExpectNoMessage(player, {kCompression});
    EXPECT_EQ(Stored(L"LAV_DRCEnabled"), std::nullopt) << "without a file there is nothing to turn on";
    ASSERT_NO_FATAL_FAILURE(PlayNarrow(player, kFilm));
    ExpectMessages(player, {{kCompression, L"DRC ON"}});
    EXPECT_EQ(Stored(L"LAV_DRCEnabled"), 1U);
    EXPECT_EQ(Stored(L"LAV_DRCLevel"), 100U);
    ExpectMessages(player, {{kCompression, L"DRC OFF"}});
    EXPECT_EQ(Stored(L"LAV_DRCEnabled"), 0U);
    ExpectMessages(player, {{kCompression, L"DRC ON"}});
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MenuCommandsTest, AFilmWithoutSoundHasNoCompression) {
    Player player;
    ASSERT_TRUE(player.Play(kSilentFilm));
    ASSERT_TRUE(player.WaitUntilNoMessageShows());
    ExpectNoMessage(player, {kCompression});
    EXPECT_EQ(Stored(L"LAV_DRCEnabled"), std::nullopt);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MenuCommandsTest, SubtitlesAreTurnedOffAndStaySo) {
    constexpr WPARAM kSubtitlesOff = 5350;
    Player player;
    EXPECT_EQ(Stored(L"SubtitleEnabled"), std::nullopt);
    ExpectMessages(player, {{kSubtitlesOff, L"자막 끄기"}});
    EXPECT_EQ(Stored(L"SubtitleEnabled"), 0U);
    store.WriteDword(L"SubtitleEnabled", 1);
    ASSERT_NO_FATAL_FAILURE(PlayNarrow(player, kTracks));
    ExpectMessages(player, {{kSubtitlesOff, L"자막 끄기"}});
    EXPECT_EQ(Stored(L"SubtitleEnabled"), 0U);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MenuCommandsTest, ADialogAsksForASubtitleFileAndCanBeLeft) {
    constexpr WPARAM kOpenSubtitle = 5351;
    constexpr int kFilterBox = 0x470; // of every file dialog
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    player.Activate();
    ASSERT_TRUE(player.WaitUntilNoMessageShows());
    // Posted, because the answer comes only when the dialog is closed.
    PostMessageW(player.MainWindow(), WM_COMMAND, kOpenSubtitle, 0);
    HWND dialog = nullptr;
    ASSERT_TRUE(WaitUntil(limits::kDialog, "subtitle dialog", [&] {
        dialog = player.OwnProcess().FindVisibleWindow(L"#32770");
        return dialog != nullptr && GetForegroundWindow() == dialog;
    }));
    std::array<wchar_t, 128> text{};
    GetWindowTextW(dialog, text.data(), static_cast<int>(text.size()));
    EXPECT_EQ(std::wstring(text.data()), L"자막 파일 열기");
    EXPECT_EQ(GetWindow(dialog, GW_OWNER), player.MainWindow());
    SendMessageW(GetDlgItem(dialog, kFilterBox), WM_GETTEXT, text.size(),
                 reinterpret_cast<LPARAM>(text.data()));
    EXPECT_EQ(std::wstring(text.data()), L"자막 파일 (*.srt;*.ass;*.ssa;*.smi;*.vtt;*.sub;*.idx)");
    PressKey(VK_ESCAPE);
    EXPECT_TRUE(WaitUntil(limits::kDialog, "closing of the subtitle dialog",
                          [&] { return player.OwnProcess().FindVisibleWindow(L"#32770") == nullptr; }));
    EXPECT_TRUE(player.Answers());
    EXPECT_EQ(VisibleMessageWindow(player), nullptr);
    EXPECT_EQ(Stored(L"SubtitleEnabled"), std::nullopt);
    EXPECT_EQ(IsIconic(player.MainWindow()), FALSE) << "the key must not reach the main window";
    EXPECT_EQ(player.Title(), L"Brindlecast - film.mkv");
    EXPECT_TRUE(player.IsOpen());
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MenuCommandsTest, WithoutAFileFixedRatesAreShownAndNotTaken) {
    Player player;
    ExpectMessages(player, {{5030, L"0.25x"},
                            {5031, L"0.50x"},
                            {5032, L"0.75x"},
                            {5033, L"0.90x"},
                            {5034, L"1.00x"},
                            {5035, L"1.10x"},
                            {5036, L"1.25x"},
                            {5037, L"1.50x"},
                            {5038, L"1.75x"},
                            {5039, L"2.00x"},
                            {5040, L"3.00x"},
                            {5041, L"4.00x"},
                            // A quarter more and less than what it is: one, as before.
                            {kKeyFaster, L"1.25x"},
                            {kKeySlower, L"0.75x"}});
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MenuCommandsTest, WithoutAFileTheOtherRatesSayNothing) {
    Player player;
    ExpectNoMessage(player, {5015, 5016, 5017, 5050, 5051, 5052, 5053, 5054, 5055, 5056});
    ExpectMessages(player, {{kKeyFaster, L"1.25x"}});
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MenuCommandsTest, TurnsAndFlipsAreShown) {
    Player player;
    ExpectMessages(player, {{5061, L"회전 270°"},
                            {5061, L"회전 180°"},
                            {5062, L"회전 270°"},
                            {5062, L"회전 0°"},
                            {5063, L"좌우 반전"},
                            {5064, L"상하 반전"},
                            {5063, L"좌우 반전 해제"},
                            {5064, L"상하 반전 해제"},
                            {5065, L"회전 270°"},
                            {5066, L"회전 90°"},
                            {5063, L"좌우 반전"},
                            {5060, L"회전 0°"},
                            // The flip has gone with the turn.
                            {5063, L"좌우 반전"}});
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MenuCommandsTest, MarksAreShownAsTheyAreSetAndCleared) {
    Player player;
    ASSERT_NO_FATAL_FAILURE(PlayNarrowAndPause(player, kFilm));
    GoToFrame(player, kFilm, 2000, 100);
    ExpectMessages(player, {{kMarkA, L"A 지점 설정"},
                            {kMarkB, L"B 지점 해제"}, // too near behind A
                            {kMarkA, L"A 지점 해제"},
                            {kMarkB, L"처음 → B 구간 설정"},
                            {kClearMarks, L"구간 반복 해제"},
                            {kMarkA, L"A 지점 설정"}});
    GoToFrame(player, kFilm, 5000, 250);
    ExpectMessages(player, {{kMarkB, L"B 지점 설정"}, {kMarkB, L"B 지점 해제"}, {kMarkB, L"B 지점 설정"}});
    GoToFrame(player, kFilm, 2000, 100);
    ExpectMessages(player, {{kMarkA, L"A 지점 해제"}, {kClearMarks, L"구간 반복 해제"}});
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MenuCommandsTest, WithoutAFileThereIsNothingToMark) {
    Player player;
    ExpectMessages(player, {{kMarkA, L"A 지점 해제"},
                            {kMarkB, L"B 지점 해제"},
                            {kClearMarks, L"구간 반복 해제"},
                            {kMarkA, L"A 지점 해제"}});
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MenuCommandsTest, StepsOfTheMenuGoFromKeyframeToKeyframeAndSayNothing) {
    constexpr WPARAM kBackward = 5005;
    constexpr WPARAM kForward = 5006;
    Player player;
    ASSERT_NO_FATAL_FAILURE(PlayNarrowAndPause(player, kFilm));
    GoToFrame(player, kFilm, 0, 0);
    ASSERT_TRUE(player.WaitUntilNoMessageShows());
    for (const auto& [command, frame] :
         {std::pair(kForward, 50), std::pair(kForward, 100), std::pair(kBackward, 50)}) {
        ExpectNoMessage(player, {command});
        EXPECT_TRUE(player.WaitForFrameNumber(kFilm, frame)) << player.FrameOnScreen(kFilm).value_or(-1);
    }
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MenuCommandsTest, OnlyTheLowWordIsTheCommand) {
    Player player;
    ExpectMessages(player, {{MAKEWPARAM(kKeyMute, 1), L"음소거"},
                            {MAKEWPARAM(kKeyMute, 0xFFFF), L"음소거 해제"},
                            {0x7FFF'0000'0000 | kKeyMute, L"음소거"}});
    EXPECT_EQ(player.Send(WM_COMMAND, kKeyMute, 12345), 0);
    EXPECT_TRUE(WaitForMessage(player, L"음소거 해제")) << "nor does the other parameter count";
    ASSERT_TRUE(player.WaitUntilNoMessageShows());
    ExpectNoMessage(player, {MAKEWPARAM(0, kKeyMute), MAKEWPARAM(7, kKeyMute)});
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MenuCommandsTest, LettersWithAltAreNoCommands) {
    // Each of these tells by its message what was so before it.
    const std::pair<WORD, const wchar_t*> probes[] = {
        {VK_SPACE, L"일시정지"}, {'C', L"1.25x"},     {'M', L"음소거"},
        {'H', L"좌우 반전"},     {'V', L"상하 반전"}, {'E', L"회전 90°"},
    };
    Player player;
    player.Activate();
    player.Drop({Media(L"song.flac")});
    ASSERT_TRUE(WaitForMessage(player, L"song.flac"));
    ASSERT_TRUE(player.WaitUntilNoMessageShows());
    const Rect place = ScreenRectOf(player.MainWindow());
    for (const WORD key : {'P', 'C', 'M', 'H', 'V', 'D', 'E', 'O', 'F', '1', '6'}) {
        PressKeyWith(VK_MENU, key);
    }
    for (const auto& [key, message] : probes) {
        PressKey(key);
        EXPECT_TRUE(WaitForMessage(player, message)) << "key " << key;
    }
    EXPECT_EQ(ScreenRectOf(player.MainWindow()), place);
    EXPECT_EQ(player.OwnProcess().FindVisibleWindow(L"#32770"), nullptr);
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
