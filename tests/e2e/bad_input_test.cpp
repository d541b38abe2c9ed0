#include "tests/e2e/fixture.h"
#include "tests/e2e/waits.h"

namespace brindlecast::testing {
namespace {

class BadInputTest : public ProgramTest {};

TEST_F(BadInputTest, FilesThatCannotBeOpenedEndWhatPlaysAndLeaveTheProgramUsable) {
    Player player;
    for (const wchar_t* name : {L"empty.mkv", L"text.mkv", L"truncated.mp4", L"no such file.mkv"}) {
        SCOPED_TRACE(::testing::PrintToString(std::wstring(name)));
        ASSERT_TRUE(player.Play(kSilentFilm));
        player.Drop({Media(name)});
        // The film is closed before the bad file is tried, so this shows that it arrived.
        EXPECT_TRUE(WaitUntil(limits::kReaction, "closing of the film", [&] { return !player.IsOpen(); }));
        EXPECT_TRUE(player.Answers());
        EXPECT_FALSE(player.IsOpen());
        EXPECT_EQ(player.Title(), L"Brindlecast - silent.mkv") << "a failed opening changes no title";
    }
    ASSERT_TRUE(player.Play(kFilm));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(BadInputTest, AFileCutShortPlaysAsFarAsItGoesAndStops) {
    for (const wchar_t* name : {L"truncated.mkv", L"truncated_faststart.mp4"}) {
        Player player;
        const Film film{name, 320, 180, 25.0};
        player.Drop({Media(name)});
        EXPECT_TRUE(player.WaitForFrame(film).has_value());
        EXPECT_TRUE(WaitUntil(std::chrono::milliseconds(25'000), "end of the cut file",
                              [&] { return !player.IsOpen(); }));
        EXPECT_TRUE(player.Answers());
        EXPECT_EQ(player.Close(), 0U);
    }
}

TEST_F(BadInputTest, WithoutASoundDeviceASilentFilmOpensAndOneWithSoundDoesNot) {
    const TemporaryRegistryValue noDriver(L"Software\\Wine\\Drivers", L"Audio", std::wstring());
    Player player;
    ASSERT_TRUE(player.Play(kSilentFilm));
    player.Drop({Media(kFilm.name)});
    EXPECT_TRUE(WaitUntil(limits::kReaction, "closing of the film", [&] { return !player.IsOpen(); }));
    EXPECT_TRUE(player.Answers());
    EXPECT_FALSE(player.IsOpen());
    ASSERT_TRUE(player.Play(kSilentFilm));
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
