#include "app/settings.h"
#include "tests/e2e/fixture.h"
#include "tests/e2e/waits.h"

#include <map>
#include <utility>
#include <vector>

namespace brindlecast::testing {
namespace {

// What the program leaves in its key, and how it takes what somebody else left there.
class StoredSettingsTest : public ProgramTest {
protected:
    using Value = std::pair<DWORD, std::vector<BYTE>>; // type and bytes

    static std::map<std::wstring, Value> AllValues() {
        std::map<std::wstring, Value> values;
        const SettingsKey key(SettingsKey::Access::Read);
        for (DWORD index = 0;; ++index) {
            std::wstring name(256, L'\0');
            std::vector<BYTE> bytes(2048);
            auto nameLength = static_cast<DWORD>(name.size());
            auto size = static_cast<DWORD>(bytes.size());
            DWORD type = REG_NONE;
            if (RegEnumValueW(key.Get(), index, name.data(), &nameLength, nullptr, &type, bytes.data(),
                              &size) != ERROR_SUCCESS) {
                return values;
            }
            name.resize(nameLength);
            bytes.resize(size);
            values[name] = {type, bytes};
        }
    }

    // Starts, shows a film and ends well with what the store holds.
    static void ExpectToPlay() {
        Player player;
        player.Drop({Media(kFilm.name)});
        EXPECT_TRUE(player.WaitForFrame(kFilm).has_value());
        EXPECT_TRUE(player.IsOpen());
        EXPECT_EQ(player.Close(), 0U);
    }
};

TEST_F(StoredSettingsTest, AFirstExitWritesTheSettingsAndRemembersThePlace) {
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Brindlecast");
    {
        Player player;
        SetWindowPos(player.MainWindow(), nullptr, 200, 150, 900, 640, SWP_NOZORDER);
        EXPECT_EQ(player.Close(), 0U);
    }
    EXPECT_EQ(store.ReadDword(L"RememberWindowPos", TypeCheck::Strict), 1U);
    EXPECT_EQ(store.ReadDword(L"WindowX", TypeCheck::Strict), 200U);
    EXPECT_EQ(store.ReadDword(L"WindowY", TypeCheck::Strict), 150U);
    EXPECT_EQ(store.ReadDword(L"WindowW", TypeCheck::Strict), 900U);
    EXPECT_EQ(store.ReadDword(L"WindowH", TypeCheck::Strict), 640U);
    EXPECT_EQ(store.ReadDword(L"WindowMaximized", TypeCheck::Strict), 0U);
    EXPECT_EQ(store.ReadDword(L"SeekbarThumbnailPreview", TypeCheck::Strict), 0U);
    EXPECT_EQ(store.ReadString(L"WelcomeMsg"), L"브린들캐스트 - 동영상 플레이어");
    Player again;
    EXPECT_EQ(ScreenRectOf(again.MainWindow()), (Rect{200, 150, 1100, 790}));
    EXPECT_EQ(again.Close(), 0U);
}

TEST_F(StoredSettingsTest, WithoutRememberingAllFiveValuesOfThePlaceStayUntouched) {
    store.WriteDword(L"RememberWindowPos", 0);
    store.WriteDword(L"WindowX", 77);
    store.WriteDword(L"WindowY", 88);
    store.WriteDword(L"WindowW", 500);
    store.WriteDword(L"WindowH", 400);
    store.WriteDword(L"WindowMaximized", 1);
    {
        Player player;
        EXPECT_EQ(ScreenRectOf(player.MainWindow()).Width(), 1200);
        EXPECT_EQ(IsZoomed(player.MainWindow()), FALSE);
        SetWindowPos(player.MainWindow(), nullptr, 200, 150, 900, 640, SWP_NOZORDER);
        EXPECT_EQ(player.Close(), 0U);
    }
    EXPECT_EQ(store.ReadDword(L"RememberWindowPos", TypeCheck::Strict), 0U);
    EXPECT_EQ(store.ReadDword(L"WindowX", TypeCheck::Strict), 77U);
    EXPECT_EQ(store.ReadDword(L"WindowY", TypeCheck::Strict), 88U);
    EXPECT_EQ(store.ReadDword(L"WindowW", TypeCheck::Strict), 500U);
    EXPECT_EQ(store.ReadDword(L"WindowH", TypeCheck::Strict), 400U);
    EXPECT_EQ(store.ReadDword(L"WindowMaximized", TypeCheck::Strict), 1U);
}

TEST_F(StoredSettingsTest, TheWelcomeTextSurvivesStartAndExit) {
    store.WriteString(L"WelcomeMsg", L"어서 오세요, 漢字와 😀");
    {
        Player player;
        EXPECT_EQ(player.Close(), 0U);
    }
    EXPECT_EQ(store.ReadString(L"WelcomeMsg"), L"어서 오세요, 漢字와 😀");
}

TEST_F(StoredSettingsTest, AnUnreadableWelcomeTextIsReplaced) {
    // Longer than what is read.
    store.WriteString(L"WelcomeMsg", std::wstring(600, L'가'));
    {
        Player player;
        EXPECT_EQ(player.Close(), 0U);
    }
    EXPECT_EQ(store.ReadString(L"WelcomeMsg"), L"브린들캐스트 - 동영상 플레이어");
}

TEST_F(StoredSettingsTest, AKilledProcessWritesNothing) {
    const auto before = AllValues();
    ASSERT_EQ(before.size(), 2U) << "what the fixture wrote";
    Player player;
    SetWindowPos(player.MainWindow(), nullptr, 200, 150, 900, 640, SWP_NOZORDER);
    EXPECT_TRUE(player.Answers());
    player.Kill();
    EXPECT_EQ(AllValues(), before);
}

TEST_F(StoredSettingsTest, ValuesOfWrongTypesAreHarmless) {
    for (const SettingInfo& row : settings::kAll) {
        if (row.type == SettingType::Dword) {
            store.WriteString(row.name, L"이것은 숫자가 아닙니다");
        } else {
            store.WriteDword(row.name, 7);
        }
    }
    ExpectToPlay();
}

TEST_F(StoredSettingsTest, NumbersOfOnlyOnesEverywhereAreHarmless) {
    for (const SettingInfo& row : settings::kAll) {
        store.WriteDword(row.name, 0xFFFFFFFF);
    }
    ExpectToPlay();
}

TEST_F(StoredSettingsTest, APlaceBeyondAllScreensIsPutBackOnOne) {
    store.WriteDword(L"WindowX", 0x7FFFFFFF);
    store.WriteDword(L"WindowY", 0x80000000);
    store.WriteDword(L"WindowW", 900);
    store.WriteDword(L"WindowH", 640);
    Player player;
    const int x = (GetSystemMetrics(SM_CXSCREEN) - 900) / 2;
    const int y = (GetSystemMetrics(SM_CYSCREEN) - 640) / 2;
    EXPECT_EQ(ScreenRectOf(player.MainWindow()), (Rect{x, y, x + 900, y + 640}));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(StoredSettingsTest, AnEnormousStoredWindowIsHarmless) {
    store.WriteDword(L"WindowX", 0x7FFFFFFF);
    store.WriteDword(L"WindowY", 0x7FFFFFFF);
    store.WriteDword(L"WindowW", 0x7FFFFFFF);
    store.WriteDword(L"WindowH", 0x7FFFFFFF);
    Player player;
    EXPECT_TRUE(player.Answers());
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
