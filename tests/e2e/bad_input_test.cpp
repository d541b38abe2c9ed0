#include "tests/e2e/fixture.h"
#include "tests/e2e/waits.h"

namespace brindlecast::testing {
namespace {

class BadInputTest : public ProgramTest {};

TEST_F(BadInputTest, FilesThatCannotBeOpenedLeaveTheProgramIdleAndUsable) {
    Player player;
    for (const wchar_t* name : {L"empty.mkv", L"text.mkv", L"truncated.mp4", L"no such file.mkv"}) {
        player.Drop({Media(name)});
        LetPlay(std::chrono::milliseconds(700));
        EXPECT_TRUE(player.Answers());
        EXPECT_FALSE(player.IsOpen());
    }
    player.Drop({Media(kFilm.name)});
    EXPECT_TRUE(player.WaitForFrame(kFilm).has_value());
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

// Takes the sound driver away for the next process.
class NoSoundDevice {
public:
    NoSoundDevice() { RegSetKeyValueW(HKEY_CURRENT_USER, kKey, L"Audio", REG_SZ, L"", sizeof(wchar_t)); }
    ~NoSoundDevice() { RegDeleteKeyValueW(HKEY_CURRENT_USER, kKey, L"Audio"); }
    NoSoundDevice(const NoSoundDevice&) = delete;
    NoSoundDevice& operator=(const NoSoundDevice&) = delete;

private:
    static constexpr const wchar_t* kKey = L"Software\\Wine\\Drivers";
};

TEST_F(BadInputTest, WithoutASoundDeviceASilentFilmOpensAndOneWithSoundDoesNot) {
    const NoSoundDevice noSound;
    Player player;
    player.Drop({Media(kFilm.name)});
    LetPlay(std::chrono::milliseconds(2500));
    EXPECT_TRUE(player.Answers());
    EXPECT_FALSE(player.IsOpen());
    player.Drop({Media(kSilentFilm.name)});
    EXPECT_TRUE(player.WaitForFrame(kSilentFilm).has_value());
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
