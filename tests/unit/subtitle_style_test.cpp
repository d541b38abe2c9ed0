#include "subtitles/subtitle_style.h"

#include "tests/support/fake_settings_store.h"

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

using testing::FakeSettingsStore;

SubtitleStyle Read(const wchar_t* name, std::uint32_t value) {
    FakeSettingsStore store;
    store.values[name] = value;
    return ReadSubtitleStyle(store);
}

void ExpectDefaults(const SubtitleStyle& style) {
    EXPECT_EQ(L"Malgun Gothic", style.fontName);
    EXPECT_EQ(0, style.fontSize);
    EXPECT_EQ(2.5, style.outline);
    EXPECT_EQ(1.5, style.shadow);
    EXPECT_TRUE(style.bold);
    EXPECT_FALSE(style.italic);
    EXPECT_EQ(0x00FFFFFFU, style.primaryColour);
    EXPECT_EQ(0U, style.outlineColour);
    EXPECT_EQ(0x80000000U, style.shadowColour);
    EXPECT_EQ(25, style.marginBottom);
    EXPECT_EQ(2, style.alignment);
}

TEST(SubtitleStyle, HasDefaultsByItself) {
    ExpectDefaults(SubtitleStyle{});
}

TEST(SubtitleStyle, AnEmptyStoreLeavesTheDefaults) {
    FakeSettingsStore store;
    ExpectDefaults(ReadSubtitleStyle(store));
}

TEST(SubtitleStyle, EachValueIsAskedForOnceAndNothingIsWritten) {
    FakeSettingsStore store;
    static_cast<void>(ReadSubtitleStyle(store));
    EXPECT_EQ((std::vector<std::wstring>{L"SubFontName", L"SubFontSize", L"SubOutline", L"SubShadow",
                                         L"SubBold", L"SubItalic", L"SubPrimaryColor", L"SubOutlineColor",
                                         L"SubShadowColor", L"SubMarginBottom", L"SubAlignment"}),
              store.reads);
    EXPECT_EQ(std::vector<std::wstring>{}, store.writes);
}

TEST(SubtitleStyle, EveryValueReachesItsField) {
    FakeSettingsStore store;
    store.values = {{L"SubFontName", L"나눔고딕"},
                    {L"SubFontSize", 30U},
                    {L"SubOutline", 37U},
                    {L"SubShadow", 4U},
                    {L"SubBold", 0U},
                    {L"SubItalic", 1U},
                    {L"SubPrimaryColor", 0x11223344U},
                    {L"SubOutlineColor", 0x55667788U},
                    {L"SubShadowColor", 0x99AABBCCU},
                    {L"SubMarginBottom", 60U},
                    {L"SubAlignment", 8U}};
    const SubtitleStyle style = ReadSubtitleStyle(store);
    EXPECT_EQ(L"나눔고딕", style.fontName);
    EXPECT_EQ(30, style.fontSize);
    EXPECT_EQ(3.7, style.outline);
    EXPECT_EQ(0.4, style.shadow);
    EXPECT_FALSE(style.bold);
    EXPECT_TRUE(style.italic);
    EXPECT_EQ(0x11223344U, style.primaryColour);
    EXPECT_EQ(0x55667788U, style.outlineColour);
    EXPECT_EQ(0x99AABBCCU, style.shadowColour);
    EXPECT_EQ(60, style.marginBottom);
    EXPECT_EQ(8, style.alignment);
}

TEST(SubtitleStyle, AnyNumberButZeroSetsAFlag) {
    EXPECT_TRUE(Read(L"SubBold", 2).bold);
    EXPECT_TRUE(Read(L"SubBold", 0xFFFFFFFF).bold);
    EXPECT_FALSE(Read(L"SubBold", 0).bold);
    EXPECT_TRUE(Read(L"SubItalic", 0x100).italic);
    EXPECT_FALSE(Read(L"SubItalic", 0).italic);
}

TEST(SubtitleStyle, SignedFieldsTakeTheBitsAsTheyStand) {
    EXPECT_EQ(-1, Read(L"SubFontSize", 0xFFFFFFFF).fontSize);
    EXPECT_EQ(-25, Read(L"SubMarginBottom", static_cast<std::uint32_t>(-25)).marginBottom);
    EXPECT_EQ(-2147483647 - 1, Read(L"SubAlignment", 0x80000000).alignment);
}

TEST(SubtitleStyle, WidthsAreTenthsOfAnUnsignedNumber) {
    EXPECT_EQ(0.0, Read(L"SubOutline", 0).outline);
    EXPECT_EQ(0.1, Read(L"SubOutline", 1).outline);
    EXPECT_EQ(429496729.5, Read(L"SubOutline", 0xFFFFFFFF).outline);
    EXPECT_EQ(0.0, Read(L"SubShadow", 0).shadow);
    EXPECT_EQ(12.3, Read(L"SubShadow", 123).shadow);
}

TEST(SubtitleStyle, AnEmptyFontNameIsAName) {
    FakeSettingsStore store;
    store.values[L"SubFontName"] = std::wstring();
    EXPECT_EQ(L"", ReadSubtitleStyle(store).fontName);
}

TEST(SubtitleStyle, ValuesOfAnotherKindLeaveTheDefaults) {
    FakeSettingsStore store;
    store.values[L"SubFontName"] = 7U;
    for (const wchar_t* name : {L"SubFontSize", L"SubOutline", L"SubShadow", L"SubBold", L"SubItalic"}) {
        store.values[name] = std::wstring(L"40");
    }
    for (const wchar_t* name :
         {L"SubPrimaryColor", L"SubOutlineColor", L"SubShadowColor", L"SubMarginBottom", L"SubAlignment"}) {
        store.values[name] = FakeSettingsStore::Bytes{9, 0, 0, 0, 0, 0, 0, 0};
    }
    ExpectDefaults(ReadSubtitleStyle(store));
}

} // namespace
} // namespace brindlecast
