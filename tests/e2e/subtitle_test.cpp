#include "tests/e2e/subtitle_fixture.h"

#include <chrono>
#include <map>
#include <string>

namespace brindlecast::testing {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kFilmTime{20'000};
constexpr WPARAM kNormalRate = 5034;
constexpr WPARAM kDoubleRate = 5039;

// From frame 100 on, up to 149: the start belongs to a cue, the stop doesn't.
constexpr BlockCue kFirst{4000, 6000, {40, 130, 120, 166}, kMagenta};
// From the middle of frame 199 to the middle of frame 249.
constexpr BlockCue kSecond{7990, 9990, {180, 126, 300, 176}, kCyan};

class SubtitlePictureTest : public SubtitleTest {
protected:
    // Plays on from a frame until another and holds every picture against the frames that the cue covers.
    // Where it begins and ends, the photograph may hold parts of two frames.
    static void ExpectCueWhilePlaying(const Player& player, const Film& film, const BlockCue& cue,
                                      int firstFrame, int stopFrame) {
        std::map<int, Sight> seen;
        EXPECT_TRUE(WaitUntil(kFilmTime, "the end of the cue", [&] {
            const Sight sight = LookAt(player, film);
            if (sight.frame) {
                seen[*sight.frame] = sight;
            }
            return sight.frame.value_or(0) > stopFrame + 20;
        }));
        int before = 0;
        int during = 0;
        int after = 0;
        std::string wrong;
        for (const auto& [frame, sight] : seen) {
            if (frame < firstFrame - 1 || frame > stopFrame) {
                wrong += sight.Shows(cue.colour) ? " " + std::to_string(frame) : "";
                before += frame < firstFrame ? 1 : 0;
                after += frame > stopFrame ? 1 : 0;
            } else if (frame > firstFrame && frame < stopFrame - 1) {
                wrong += sight.ShowsJust(cue) ? "" : " " + std::to_string(frame);
                ++during;
            }
        }
        EXPECT_EQ(wrong, "");
        EXPECT_GE(before, 5);
        EXPECT_GE(during, 10);
        EXPECT_GE(after, 5);
    }
};

TEST_F(SubtitlePictureTest, ACueStandsOnTheFramesFromItsStartUpToItsStop) {
    const Film film = AddFilm(L"film.mp4");
    AddText(L"film.ass", AssWith({kFirst, kSecond}));
    Player player;
    ASSERT_TRUE(PlayLargeAndPause(player, film));
    for (const int frame : {0, 50, 100, 150, 200, 250, 300, 100, 50}) {
        SCOPED_TRACE(frame);
        const Sight sight = SightAt(player, film, frame);
        EXPECT_EQ(sight.ShowsJust(kFirst), frame == 100);
        EXPECT_EQ(sight.Shows(kMagenta), frame == 100);
        EXPECT_EQ(sight.ShowsJust(kSecond), frame == 200);
        EXPECT_EQ(sight.Shows(kCyan), frame == 200);
    }
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SubtitlePictureTest, ACueComesAndGoesWithTheClockAtAnyRateAndAfterASeek) {
    const Film film = AddFilm(L"film.mp4");
    // Frames 113 to 166.
    const BlockCue cue{4520, 6680, {100, 130, 220, 166}, kMagenta};
    AddText(L"film.ass", AssWith({cue}));
    Player player;
    ASSERT_TRUE(Play(player, film));
    EXPECT_EQ(player.Send(WM_COMMAND, kTwiceTheSize), 0);
    ExpectCueWhilePlaying(player, film, cue, 113, 167);
    for (const WPARAM rate : {kDoubleRate, kNormalRate}) {
        SCOPED_TRACE(rate);
        EXPECT_EQ(player.Send(WM_COMMAND, rate), 0);
        EXPECT_EQ(player.Send(kSeek, 1000), 0);
        ASSERT_TRUE(WaitUntil(limits::kReaction, "seek",
                              [&] { return player.FrameOnScreen(film).value_or(500) < 100; }));
        ExpectCueWhilePlaying(player, film, cue, 113, 167);
    }
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SubtitlePictureTest, SubtitlesAreDrawnInTheSizeThatTheFilmHasOnTheScreen) {
    const Film film = AddFilm(L"film.mp4");
    const BlockCue half{8000, 10000, {40, 130, 120, 166}, kMagenta, 128};
    AddText(L"film.ass", AssWith({kFirst, half}));
    Player player;
    ASSERT_TRUE(PlayAndPause(player, film));
    for (const auto& [key, width] : {std::pair{'4', 320}, {'5', 480}, {'6', 640}}) {
        SCOPED_TRACE(key);
        static_cast<void>(SightAt(player, film, 100));
        PressKey(static_cast<WORD>(key));
        // The picture that stands is drawn anew, and its subtitle with it.
        EXPECT_TRUE(WaitUntil(limits::kReaction, "the block in its new size", [&] {
            const Sight sight = LookAt(player, film);
            return sight.picture.width == width && sight.ShowsJust(kFirst);
        }));
        EXPECT_EQ(LookAt(player, film).frame, 100);
        const Sight whole = SightAt(player, film, 100);
        const Sight faint = SightAt(player, film, 200);
        EXPECT_EQ(player.Send(WM_COMMAND, kSubtitlesOff), 0);
        const Sight without = SightAt(player, film, 100);
        EXPECT_FALSE(without.Shows(kMagenta));
        EXPECT_EQ(whole.DifferenceFrom(without, kFirst), "");
        EXPECT_EQ(faint.DifferenceFrom(SightAt(player, film, 200), half), "");
        EXPECT_EQ(player.Send(WM_COMMAND, kFirstSubtitle), 0);
    }
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SubtitlePictureTest, ATextOfSubRipStandsInWhiteAtTheBottom) {
    const Film film = AddFilm(L"film.mp4");
    AddText(L"film.srt", SrtWith(4000, 6000, "HHHHHHHH"));
    Player player;
    ASSERT_TRUE(PlayAndPause(player, film));
    EXPECT_FALSE(SightAt(player, film, 50).Shows(kWhite));
    const Sight sight = SightAt(player, film, 100);
    const Rect text = sight.PlaceOf(kWhite);
    EXPECT_NEAR(text.left + text.right, sight.picture.width, 4) << "not in the middle";
    // Letters of the size 24 of 288, 6 of 288 above the edge.
    EXPECT_GT(text.Height(), sight.picture.height / 288.0 * 12);
    EXPECT_LT(text.Height(), sight.picture.height / 288.0 * 24);
    EXPECT_LT(text.bottom, sight.picture.height / 288.0 * (288 - 6));
    EXPECT_GT(text.bottom, sight.picture.height / 288.0 * (288 - 6 - 12));
    EXPECT_FALSE(SightAt(player, film, 150).Shows(kWhite));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SubtitlePictureTest, OfTheFilesBesideTheFilmTheFirstInOrderIsShown) {
    const Film both = AddFilm(L"both.mp4");
    AddText(L"both.srt", SrtWith(4000, 6000, SrtBlock(kRed)));
    AddText(L"both.ko.srt", SrtWith(4000, 6000, SrtBlock(kBlue)));
    AddText(L"both.ass", AssWith({kFirst}));
    const Film korean = AddFilm(L"한국어 영화.mp4");
    AddText(L"한국어 영화.ko.srt", SrtWith(4000, 6000, SrtBlock(kBlue)));
    AddText(L"한국어 영화.ass", AssWith({kFirst}));
    const Film substation = AddFilm(L"substation.mp4");
    AddText(L"substation.ass", AssWith({kFirst}));
    AddText(L"other.srt", SrtWith(4000, 6000, SrtBlock(kRed)));
    const Film none = AddFilm(L"none.mp4");
    Player player;
    for (const auto& [film, colour] : {std::pair{both, std::optional(kRed)},
                                       {korean, kBlue},
                                       {substation, kMagenta},
                                       {none, std::nullopt},
                                       {both, kRed}}) {
        SCOPED_TRACE(::testing::PrintToString(std::wstring(film.name)));
        ASSERT_TRUE(PlayAndPause(player, film));
        const Sight sight = SightAt(player, film, 100);
        for (const Rgb other : {kRed, kBlue, kMagenta, kWhite}) {
            EXPECT_EQ(sight.Shows(other), other == colour);
        }
    }
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SubtitlePictureTest, ATextThatOnlyThePlainReaderTakesIsDrawnAsWell) {
    const Film film = AddFilm(L"film.mp4");
    AddText(L"film.smi", SrtWith(4000, 6000, "HHHHHHHH"));
    Player player;
    ASSERT_TRUE(PlayAndPause(player, film));
    EXPECT_FALSE(SightAt(player, film, 50).Shows(kWhite));
    const Sight sight = SightAt(player, film, 100);
    const Rect text = sight.PlaceOf(kWhite);
    EXPECT_NEAR(text.left + text.right, sight.picture.width, 6) << "not in the middle";
    EXPECT_LT(text.bottom, sight.picture.height - 20);
    EXPECT_GT(text.bottom, sight.picture.height - 20 - sight.picture.height / 20);
    EXPECT_FALSE(SightAt(player, film, 150).Shows(kWhite));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(SubtitlePictureTest, SubtitlesSwitchedOffInTheSettingsStayHidden) {
    store.WriteDword(L"SubtitleEnabled", 0);
    const Film film = AddFilm(L"film.mp4");
    AddText(L"film.ass", AssWith({kFirst}));
    Player player;
    ASSERT_TRUE(PlayAndPause(player, film));
    EXPECT_FALSE(SightAt(player, film, 100).Shows(kMagenta));
    EXPECT_EQ(player.Close(), 0U);
}

// Files beside the film that hold no subtitle.
class BadSubtitleTest : public SubtitlePictureTest {
protected:
    // The film plays all the same, through and after the first seconds, and shows nothing but itself.
    void ExpectFilmAlone(const Film& film) const {
        Player player;
        ASSERT_TRUE(Play(player, film));
        const auto readings = player.Watch(film, milliseconds(1500));
        EXPECT_TRUE(JudgePlayback(readings, film.framesPerSecond, kScreenTolerance).inStep);
        player.Activate();
        PressKey(VK_SPACE);
        ASSERT_TRUE(player.WaitForStandstill(film).has_value());
        for (const int frame : {50, 100}) {
            EXPECT_FALSE(SightAt(player, film, frame).Shows(kWhite));
        }
        EXPECT_EQ(player.Close(), 0U);
    }
};

TEST_F(BadSubtitleTest, BytesThatAreNoTextDoNotStopTheFilm) {
    const Film film = AddFilm(L"film.mp4");
    AddText(L"film.smi", SrtWith(1000, 18000, "\xFF\xFE\x80") + SrtWith(1000, 18000, "HHHH"));
    ExpectFilmAlone(film);
}

TEST_F(BadSubtitleTest, GarbageDoesNotStopTheFilm) {
    const Film film = AddFilm(L"film.mp4");
    folder.AddGarbage(L"film.srt");
    ExpectFilmAlone(film);
}

TEST_F(BadSubtitleTest, AFileThatCannotBeOpenedDoesNotStopTheFilm) {
    const Film film = AddFilm(L"film.mp4");
    folder.AddFolder(L"film.srt");
    // It was the first in order, and the next isn't tried.
    AddText(L"film.vtt", SrtWith(1000, 18000, "HHHH"));
    ExpectFilmAlone(film);
}

TEST_F(BadSubtitleTest, FiftyMegabytesOfSubtitlesDoNotStopTheFilm) {
    constexpr std::size_t kBytes = 50'000'000;
    const Film film = AddFilm(L"film.mp4");
    std::string text = SrtWith(4000, 6000, SrtBlock(kMagenta));
    // An hour after the film's end, and each as long as what people write.
    const std::string late = SrtWith(3'600'000, 3'601'000, std::string(500, 'H'));
    text.reserve(kBytes + late.size());
    while (text.size() < kBytes) {
        text += late;
    }
    AddText(L"film.srt", text);
    Player player;
    ASSERT_TRUE(Play(player, film));
    const auto readings = player.Watch(film, milliseconds(1500));
    EXPECT_TRUE(JudgePlayback(readings, film.framesPerSecond, kScreenTolerance).inStep);
    player.Activate();
    PressKey(VK_SPACE);
    ASSERT_TRUE(player.WaitForStandstill(film).has_value());
    EXPECT_FALSE(SightAt(player, film, 50).Shows(kMagenta));
    EXPECT_TRUE(SightAt(player, film, 100).Shows(kMagenta));
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
