#pragma once

#include "base/win32/registry_settings_store.h"
#include "base/win32/wine.h"
#include "tests/e2e/environment.h"
#include "tests/e2e/player.h"

#include <gtest/gtest.h>

namespace brindlecast::testing {

inline constexpr Film kFilm{L"film.mkv", 320, 180, 25.0};
inline constexpr Film kFilmMp4{L"film.mp4", 320, 180, 25.0};
inline constexpr Film kSecondFilm{L"second.mkv", 320, 180, 30.0};
inline constexpr Film kShortFilm{L"short.mkv", 320, 180, 25.0};
inline constexpr Film kSilentFilm{L"silent.mkv", 320, 180, 25.0};
inline constexpr Film kKoreanFilm{L"한국어 영화 01화.mkv", 320, 180, 25.0};

// Display sizes, not those of the coded frames.
inline constexpr Film kAnamorphicFilm{L"anamorphic.mp4", 320, 180, 25.0};
inline constexpr Film kRotatedFilm{L"rotated.mp4", 180, 320, 25.0};

// How far a reading of the screen may lie from the clock, in seconds: one frame of the film, one of the
// reading, and the time that a photograph takes.
inline constexpr double kScreenTolerance = 0.12;

// Every test begins without a library and with an empty registry key, but for the sound's settings: full
// volume and no normalisation, so that levels are those of the files. Since that wipes the settings of
// whoever is logged in, nothing runs outside of Wine, where the prefix belongs to the tests.
class ProgramTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(IsRunningUnderWine()) << "these tests would wipe the settings of the user";
        RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Brindlecast");
        DeleteFileW(LibraryFile().c_str());
        store.WriteDword(L"Volume", 100);
        store.WriteDword(L"AudioNormalize", 0);
    }
    void TearDown() override { EXPECT_EQ(CountPlayers(), 0) << "a process of the player was left behind"; }

    [[nodiscard]] static std::wstring LibraryFile() {
        wchar_t folder[MAX_PATH] = {};
        GetEnvironmentVariableW(L"APPDATA", folder, MAX_PATH);
        return std::wstring(folder) + L"\\Brindlecast\\playlist.db";
    }

    RegistrySettingsStore store;
};

} // namespace brindlecast::testing
