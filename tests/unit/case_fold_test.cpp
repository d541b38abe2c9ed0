#include "base/case_fold.h"

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

TEST(CaseFold, LowersLettersOfManyScripts) {
    EXPECT_EQ(L"abc 한글.mkv", ToLower(L"ABC 한글.MKV"));
    EXPECT_EQ(L"straße äöü éèñ", ToLower(L"STRAßE ÄÖÜ ÉÈÑ"));
    EXPECT_EQ(L"ελληνικα", ToLower(L"ΕΛΛΗΝΙΚΑ"));
    EXPECT_EQ(L"кино ёж", ToLower(L"КИНО ЁЖ"));
    EXPECT_EQ(L"ａｂｃ", ToLower(L"ＡＢＣ"));
    EXPECT_EQ(L"āēğīłńőšž", ToLower(L"ĀĒĞĪŁŃŐŠŽ"));
    EXPECT_EQ(L"日本語", ToLower(L"日本語"));
    EXPECT_EQ(L"", ToLower(L""));
}

TEST(CaseFold, LeavesSmallLettersAndWhatLiesBetweenTheCapitals) {
    for (int code = 0; code < 0x10000; ++code) {
        const auto unit = static_cast<wchar_t>(code);
        EXPECT_EQ(ToLower(unit), ToLower(ToLower(unit))) << code;
    }
    for (const wchar_t unit : std::wstring(L"@[`{az×÷ßÿđıłžƀǆ가힣")) {
        EXPECT_EQ(unit, ToLower(unit));
    }
}

TEST(CaseFold, ComparesWithoutRegardToCase) {
    EXPECT_TRUE(EqualIgnoringCase(L"C:\\Films\\ÄRGER.mkv", L"c:\\films\\ärger.MKV"));
    EXPECT_FALSE(EqualIgnoringCase(L"a", L"ab"));
    EXPECT_FALSE(EqualIgnoringCase(L"a", L"b"));
    EXPECT_EQ(0, CompareIgnoringCase(L"Abc", L"aBC"));
    EXPECT_LT(CompareIgnoringCase(L"abc", L"ABD"), 0);
    EXPECT_GT(CompareIgnoringCase(L"abd", L"ABC"), 0);
    EXPECT_LT(CompareIgnoringCase(L"ab", L"ABC"), 0);
    EXPECT_GT(CompareIgnoringCase(L"abc", L"AB"), 0);
}

} // namespace
} // namespace brindlecast
