#include "app/settings.h"

#include "tests/support/fake_settings_store.h"

#include <gtest/gtest.h>

#include <set>

namespace brindlecast {
namespace {

using testing::FakeSettingsStore;

TEST(Settings, AFirstRunKeepsEveryDefault) {
    FakeSettingsStore store;
    AppSettings settings;
    LoadSettings(settings, store);
    EXPECT_TRUE(settings.rememberWindowPos);
    EXPECT_EQ(settings.windowX, -1);
    EXPECT_EQ(settings.windowY, -1);
    EXPECT_EQ(settings.windowW, -1);
    EXPECT_EQ(settings.windowH, -1);
    EXPECT_FALSE(settings.windowMaximized);
    EXPECT_FALSE(settings.seekbarThumbnailPreview);
    EXPECT_EQ(settings.welcomeMsg, L"브린들캐스트 - 동영상 플레이어");
}

TEST(Settings, WhatCantBeReadLeavesItsFieldAsItWas) {
    AppSettings before;
    before.windowX = 1;
    before.windowY = 2;
    before.windowW = 3;
    before.windowH = 4;
    before.windowMaximized = true;
    before.seekbarThumbnailPreview = true;
    before.welcomeMsg = L"이전";
    // First a store that can't be opened, then one in which every value has the wrong type.
    FakeSettingsStore unusable;
    for (const wchar_t* name : {L"RememberWindowPos", L"WindowX", L"WindowY", L"WindowW", L"WindowH",
                                L"WindowMaximized", L"SeekbarThumbnailPreview"}) {
        unusable.values[name] = std::wstring(L"1234");
    }
    unusable.values[L"WelcomeMsg"] = 7U;
    FakeSettingsStore absent;
    for (FakeSettingsStore* store : {&absent, &unusable}) {
        AppSettings settings = before;
        LoadSettings(settings, *store);
        EXPECT_TRUE(settings.rememberWindowPos);
        EXPECT_EQ(settings.windowX, 1);
        EXPECT_EQ(settings.windowY, 2);
        EXPECT_EQ(settings.windowW, 3);
        EXPECT_EQ(settings.windowH, 4);
        EXPECT_TRUE(settings.windowMaximized);
        EXPECT_TRUE(settings.seekbarThumbnailPreview);
        EXPECT_EQ(settings.welcomeMsg, L"이전");
    }
}

TEST(Settings, LoadReadsEachValueInItsOrder) {
    FakeSettingsStore store;
    store.values = {{L"RememberWindowPos", 1U},
                    {L"WindowX", 10U},
                    {L"WindowY", 0xFFFFFFECU},
                    {L"WindowW", 640U},
                    {L"WindowH", 480U},
                    {L"WindowMaximized", 2U},
                    {L"SeekbarThumbnailPreview", 1U},
                    {L"WelcomeMsg", std::wstring(L"안녕")}};
    AppSettings settings;
    LoadSettings(settings, store);
    EXPECT_EQ(settings.windowX, 10);
    EXPECT_EQ(settings.windowY, -20);
    EXPECT_EQ(settings.windowW, 640);
    EXPECT_EQ(settings.windowH, 480);
    EXPECT_TRUE(settings.windowMaximized);
    EXPECT_TRUE(settings.seekbarThumbnailPreview);
    EXPECT_EQ(settings.welcomeMsg, L"안녕");
    EXPECT_EQ(store.reads,
              (std::vector<std::wstring>{L"RememberWindowPos", L"WindowX", L"WindowY", L"WindowW", L"WindowH",
                                         L"WindowMaximized", L"SeekbarThumbnailPreview", L"WelcomeMsg"}));
}

TEST(Settings, WithoutRememberingThePlacementIsNeitherReadNorWritten) {
    FakeSettingsStore store;
    store.values = {{L"RememberWindowPos", 0U}, {L"WindowX", 10U},  {L"WindowY", 20U},
                    {L"WindowW", 640U},         {L"WindowH", 480U}, {L"WindowMaximized", 1U}};
    AppSettings settings;
    LoadSettings(settings, store);
    EXPECT_FALSE(settings.rememberWindowPos);
    EXPECT_EQ(settings.windowX, -1);
    EXPECT_EQ(settings.windowY, -1);
    EXPECT_EQ(settings.windowW, -1);
    EXPECT_EQ(settings.windowH, -1);
    EXPECT_FALSE(settings.windowMaximized);
    EXPECT_EQ(store.reads,
              (std::vector<std::wstring>{L"RememberWindowPos", L"SeekbarThumbnailPreview", L"WelcomeMsg"}));
    const auto before = store.values;
    settings.windowX = 99;
    SaveSettings(settings, store);
    for (const wchar_t* name : {L"WindowX", L"WindowY", L"WindowW", L"WindowH", L"WindowMaximized"}) {
        EXPECT_EQ(store.values[name], before.at(name));
    }
    EXPECT_EQ(store.writes,
              (std::vector<std::wstring>{L"RememberWindowPos", L"SeekbarThumbnailPreview", L"WelcomeMsg"}));
}

TEST(Settings, SaveWritesEachValueInItsOrder) {
    FakeSettingsStore store;
    AppSettings settings;
    settings.windowX = -5;
    settings.windowMaximized = true;
    SaveSettings(settings, store);
    EXPECT_EQ(store.writes,
              (std::vector<std::wstring>{L"RememberWindowPos", L"WindowX", L"WindowY", L"WindowW", L"WindowH",
                                         L"WindowMaximized", L"SeekbarThumbnailPreview", L"WelcomeMsg"}));
    EXPECT_EQ(std::get<std::uint32_t>(store.values[L"WindowX"]), 0xFFFFFFFBU);
    EXPECT_EQ(std::get<std::uint32_t>(store.values[L"WindowMaximized"]), 1U);
    EXPECT_EQ(std::get<std::wstring>(store.values[L"WelcomeMsg"]), L"브린들캐스트 - 동영상 플레이어");
}

TEST(Settings, ARefusedValueDoesNotKeepTheNextFromBeingTried) {
    FakeSettingsStore store;
    store.refusesWrites = true;
    SaveSettings(AppSettings{}, store);
    EXPECT_EQ(store.writes.size(), 8U);
}

TEST(Settings, AVolumeStoredAsTextIsIgnored) {
    FakeSettingsStore store;
    store.values = {{L"Volume", std::wstring(L"80")}};
    EXPECT_EQ(ReadSetting(store, settings::kVolume), 50U);
}

TEST(Settings, AMagnetDistanceOfAnotherTypeIsTakenByItsFirstFourBytes) {
    FakeSettingsStore store;
    store.values = {{L"MagnetDistance", FakeSettingsStore::Bytes{7, 0, 0, 0, 9, 9}}};
    EXPECT_EQ(ReadSetting(store, settings::kMagnetDistance), 7U);
}

TEST(Settings, APresentEmptyTextIsPresent) {
    FakeSettingsStore store;
    EXPECT_EQ(ReadTextSetting(store, settings::kPreferredLanguages), L"kor,eng,jpn");
    store.values = {{L"LAV_PreferredLanguages", std::wstring()}};
    EXPECT_EQ(ReadTextSetting(store, settings::kPreferredLanguages), L"");
    std::wstring text = L"before";
    EXPECT_TRUE(ReadStringSetting(store, L"LAV_PreferredLanguages", text));
    EXPECT_EQ(text, L"");
    EXPECT_FALSE(ReadStringSetting(store, L"Absent", text));
}

struct ExpectedRow {
    const wchar_t* name;
    SettingType type;
    TypeCheck check;
    bool hasDefault;
    std::uint32_t number;
    const wchar_t* text;
};

constexpr auto kNumber = SettingType::Dword;
constexpr auto kText = SettingType::String;
constexpr auto kStrict = TypeCheck::Strict;
constexpr auto kLoose = TypeCheck::Loose;

const ExpectedRow kExpected[] = {
    {L"RememberWindowPos", kNumber, kStrict, true, 1, nullptr},
    {L"WindowX", kNumber, kStrict, true, 0xFFFFFFFF, nullptr},
    {L"WindowY", kNumber, kStrict, true, 0xFFFFFFFF, nullptr},
    {L"WindowW", kNumber, kStrict, true, 0xFFFFFFFF, nullptr},
    {L"WindowH", kNumber, kStrict, true, 0xFFFFFFFF, nullptr},
    {L"WindowMaximized", kNumber, kStrict, true, 0, nullptr},
    {L"SeekbarThumbnailPreview", kNumber, kStrict, true, 0, nullptr},
    {L"WelcomeMsg", kText, kStrict, true, 0, L"브린들캐스트 - 동영상 플레이어"},
    {L"MagnetDistance", kNumber, kLoose, true, 10, nullptr},
    {L"Volume", kNumber, kStrict, true, 50, nullptr},
    {L"Muted", kNumber, kStrict, true, 0, nullptr},
    {L"SubtitleEnabled", kNumber, kLoose, true, 1, nullptr},
    {L"PlaylistVisible", kNumber, kLoose, true, 0, nullptr},
    {L"PlaylistRestoreOnStartup", kNumber, kLoose, true, 0, nullptr},
    {L"PlaylistPreventDuplicates", kNumber, kLoose, true, 0, nullptr},
    {L"LAV_HWAccel", kNumber, kStrict, true, 5, nullptr},
    {L"HWAccelFallback", kNumber, kLoose, true, 1, nullptr},
    {L"LAV_HWAccel_H264", kNumber, kStrict, true, 1, nullptr},
    {L"LAV_HWAccel_HEVC", kNumber, kStrict, true, 1, nullptr},
    {L"LAV_HWAccel_VP9", kNumber, kStrict, true, 1, nullptr},
    {L"LAV_HWAccel_AV1", kNumber, kStrict, true, 1, nullptr},
    {L"LAV_NumThreads", kNumber, kStrict, true, 0, nullptr},
    {L"LAV_DeintMode", kNumber, kStrict, false, 0, nullptr},
    {L"LAV_HWResFlags", kNumber, kStrict, true, 7, nullptr},
    {L"LAV_TrayIcon", kNumber, kStrict, true, 0, nullptr},
    {L"LAV_PreferredLanguages", kText, kStrict, true, 0, L"kor,eng,jpn"},
    {L"LAV_PreferredSubLanguages", kText, kStrict, false, 0, nullptr},
    {L"LAV_SubtitleMode", kNumber, kStrict, false, 0, nullptr},
    {L"LAV_AudioMixing", kNumber, kStrict, false, 0, nullptr},
    {L"LAV_MixingLayout", kNumber, kStrict, false, 0, nullptr},
    {L"LAV_DRCEnabled", kNumber, kStrict, true, 0, nullptr},
    {L"LAV_DRCLevel", kNumber, kLoose, true, 100, nullptr},
    {L"LAV_ExpandMono", kNumber, kStrict, false, 0, nullptr},
    {L"AudioNormalize", kNumber, kLoose, true, 1, nullptr},
    {L"AudioNormalizeRecover", kNumber, kLoose, true, 1, nullptr},
    {L"AudioMaxNormFactor", kNumber, kLoose, true, 300, nullptr},
    {L"AudioBoost", kNumber, kLoose, true, 0, nullptr},
    {L"EmbeddedSubtitleMethod", kNumber, kLoose, true, 0, nullptr},
    {L"ScreenshotMethod", kNumber, kLoose, true, 0, nullptr},
    {L"ScreenshotFormat", kNumber, kLoose, true, 0, nullptr},
    {L"SubFontName", kText, kStrict, true, 0, L"Malgun Gothic"},
    {L"SubFontSize", kNumber, kStrict, true, 0, nullptr},
    {L"SubOutline", kNumber, kStrict, true, 25, nullptr},
    {L"SubShadow", kNumber, kStrict, true, 15, nullptr},
    {L"SubBold", kNumber, kStrict, true, 1, nullptr},
    {L"SubItalic", kNumber, kStrict, true, 0, nullptr},
    {L"SubPrimaryColor", kNumber, kStrict, true, 0xFFFFFF, nullptr},
    {L"SubOutlineColor", kNumber, kStrict, true, 0, nullptr},
    {L"SubShadowColor", kNumber, kStrict, true, 0x80000000, nullptr},
    {L"SubMarginBottom", kNumber, kStrict, true, 25, nullptr},
    {L"SubAlignment", kNumber, kStrict, true, 2, nullptr},
};

TEST(SettingsTable, EveryRowHasItsNameTypeCheckAndDefault) {
    ASSERT_EQ(settings::kAll.size(), std::size(kExpected));
    for (std::size_t i = 0; i < settings::kAll.size(); ++i) {
        const SettingInfo& row = settings::kAll[i];
        const ExpectedRow& expected = kExpected[i];
        SCOPED_TRACE(i);
        EXPECT_EQ(std::wstring(row.name), expected.name);
        EXPECT_EQ(row.type, expected.type);
        EXPECT_EQ(row.check, expected.check);
        EXPECT_EQ(row.hasDefault, expected.hasDefault);
        EXPECT_EQ(row.number, expected.number);
        EXPECT_EQ(row.text == nullptr, expected.text == nullptr);
        if (row.text != nullptr && expected.text != nullptr) {
            EXPECT_EQ(std::wstring(row.text), expected.text);
        }
    }
}

} // namespace
} // namespace brindlecast
