#include "tests/e2e/fixture.h"
#include "tests/e2e/sound_recorder.h"
#include "tests/e2e/waits.h"

namespace brindlecast::testing {
namespace {

class OpeningTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        static_cast<void>(SoundRecorder::Instance());
    }

    static bool Hears(double frequency) { return SoundRecorder::Instance().Hears(frequency); }
};

TEST_F(OpeningTest, ByTheDialogOfTheKeyO) {
    Player player;
    player.OpenByDialog(Media(kFilm.name));
    EXPECT_TRUE(player.WaitForFrame(kFilm).has_value());
    EXPECT_TRUE(Hears(440.0));
    EXPECT_TRUE(player.IsOpen());
    EXPECT_EQ(player.Title(), L"Brindlecast - film.mkv");
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(OpeningTest, ByADropWithAKoreanName) {
    Player player;
    player.Drop({Media(kKoreanFilm.name)});
    const auto frame = player.WaitForFrame(kKoreanFilm);
    ASSERT_TRUE(frame.has_value());
    EXPECT_GE(*frame, 10'000);
    EXPECT_LT(*frame, 10'250);
    EXPECT_TRUE(Hears(520.0));
    EXPECT_EQ(player.Title(), L"Brindlecast - 한국어 영화 01화.mkv");
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(OpeningTest, OfSeveralFilesDroppedAtOnceTheFirstPlays) {
    Player player;
    player.Drop({Media(kSecondFilm.name), Media(kFilm.name), Media(kKoreanFilm.name), Media(L"song.flac"),
                 Media(kSilentFilm.name)});
    const auto frame = player.WaitForFrame(kSecondFilm);
    ASSERT_TRUE(frame.has_value());
    EXPECT_GE(*frame, 20'000);
    EXPECT_LT(*frame, 20'300);
    EXPECT_TRUE(Hears(660.0));
    EXPECT_EQ(player.Title(), L"Brindlecast - second.mkv");
    EXPECT_TRUE(player.IsOpen());
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(OpeningTest, ASecondFileReplacesTheFirst) {
    Player player;
    player.Drop({Media(kFilm.name)});
    ASSERT_TRUE(player.WaitForFrame(kFilm).has_value());
    EXPECT_TRUE(Hears(440.0));
    player.Drop({Media(kSecondFilm.name)});
    EXPECT_TRUE(WaitUntil(limits::kPicture, "second film", [&] {
        const auto frame = player.FrameOnScreen(kSecondFilm);
        return frame && *frame >= 20'000;
    }));
    EXPECT_TRUE(Hears(660.0));
    EXPECT_EQ(player.Title(), L"Brindlecast - second.mkv");
    EXPECT_EQ(player.Close(), 0U);
}

struct SoundFile {
    const wchar_t* name;
    double frequency;
};

TEST_F(OpeningTest, FilesOfSoundAlonePlay) {
    Player player;
    for (const SoundFile& file :
         {SoundFile{L"song.mp3", 440.0}, {L"song.flac", 440.0}, {L"song_cover.mp3", 440.0}}) {
        player.Drop({Media(file.name)});
        EXPECT_TRUE(WaitUntil(limits::kPicture, "title",
                              [&] { return player.Title() == std::wstring(L"Brindlecast - ") + file.name; }));
        EXPECT_TRUE(Hears(file.frequency)) << ::testing::PrintToString(std::wstring(file.name));
        EXPECT_TRUE(player.IsOpen());
    }
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(OpeningTest, AFilmWithoutSoundRunsInRealTime) {
    Player player;
    ASSERT_TRUE(player.Play(kSilentFilm));
    const auto readings = player.Watch(kSilentFilm, std::chrono::milliseconds(3000));
    const PlaybackVerdict verdict = JudgePlayback(readings, kSilentFilm.framesPerSecond, kScreenTolerance);
    EXPECT_TRUE(verdict.inStep) << "largest lag " << verdict.largestLag << " s";
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
