#include "base/text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace brindlecast {
namespace {

TEST(FormatText, IntegersOfEverySizeAndSign) {
    EXPECT_EQ(FormatText(L"%d|%d|%u", 7, -7, 7U), L"7|-7|7");
    EXPECT_EQ(FormatText(L"%lld", std::numeric_limits<std::int64_t>::min()), L"-9223372036854775808");
    EXPECT_EQ(FormatText(L"%zu", std::size_t{18446744073709551615U}), L"18446744073709551615");
    EXPECT_EQ(FormatText(L"%d", true), L"1");
}

TEST(FormatText, AnUnsignedConversionShowsTheBitsOfANegativeNumber) {
    EXPECT_EQ(FormatText(L"0x%08X", static_cast<std::int32_t>(0x80040217)), L"0x80040217");
    EXPECT_EQ(FormatText(L"%u", -1), L"4294967295");
}

TEST(FormatText, WidthAndFlags) {
    EXPECT_EQ(FormatText(L"%d:%02d:%02d", 1, 2, 3), L"1:02:03");
    EXPECT_EQ(FormatText(L"[%5d][%-5d][%+d][% d]", 42, 42, 42, 42), L"[   42][42   ][+42][ 42]");
    EXPECT_EQ(FormatText(L"%05d", -42), L"-0042");
    EXPECT_EQ(FormatText(L"%.3d", 7), L"007");
}

TEST(FormatText, RealNumbersRoundToTheirPrecision) {
    EXPECT_EQ(FormatText(L"%.2fx", 1.25), L"1.25x");
    EXPECT_EQ(FormatText(L"%+.1f", -0.5), L"-0.5");
    EXPECT_EQ(FormatText(L"%+.1f", 0.5), L"+0.5");
    EXPECT_EQ(FormatText(L"%.0f", 2.5), L"2");
    EXPECT_EQ(FormatText(L"%f", 1.0), L"1.000000");
    EXPECT_EQ(FormatText(L"%.1f", std::numeric_limits<double>::infinity()), L"inf");
    EXPECT_EQ(FormatText(L"%.1000f", std::numeric_limits<double>::max()).size(), 309U + 1U + 1000U);
}

TEST(FormatText, GeneralRealNumbersHaveSixSignificantDigitsAndNoZerosBehind) {
    EXPECT_EQ(FormatText(L"%g", 0.0), L"0");
    EXPECT_EQ(FormatText(L"%g", -0.0), L"-0");
    EXPECT_EQ(FormatText(L"%g", 2.5), L"2.5");
    EXPECT_EQ(FormatText(L"%g", 0.4), L"0.4");
    EXPECT_EQ(FormatText(L"%g", 2.0 / 3.0), L"0.666667");
    EXPECT_EQ(FormatText(L"%g", -2.0 / 3.0), L"-0.666667");
    EXPECT_EQ(FormatText(L"%g", 123456.0), L"123456");
    EXPECT_EQ(FormatText(L"%g", 12345.678), L"12345.7");
    EXPECT_EQ(FormatText(L"%g", 0.0001), L"0.0001");
}

TEST(FormatText, GeneralRealNumbersTakeAnExponentOutsideTheirDigits) {
    EXPECT_EQ(FormatText(L"%g", 999999.4), L"999999");
    EXPECT_EQ(FormatText(L"%g", 999999.5), L"1e+06");
    EXPECT_EQ(FormatText(L"%g", 1234567.0), L"1.23457e+06");
    EXPECT_EQ(FormatText(L"%g", 0.00001), L"1e-05");
    EXPECT_EQ(FormatText(L"%g", -0.000012345), L"-1.2345e-05");
    EXPECT_EQ(FormatText(L"%g", 1e100), L"1e+100");
    EXPECT_EQ(FormatText(L"%g", std::numeric_limits<double>::max()), L"1.79769e+308");
    EXPECT_EQ(FormatText(L"%g", std::numeric_limits<double>::min()), L"2.22507e-308");
    EXPECT_EQ(FormatText(L"%g", -std::numeric_limits<double>::infinity()), L"-inf");
}

TEST(FormatText, GeneralRealNumbersTakeWidthFlagsAndPrecision) {
    EXPECT_EQ(FormatText(L"%.3g|%.0g|%.2g", 1234.5, 2.0, 0.5), L"1.23e+03|2|0.5");
    EXPECT_EQ(FormatText(L"[%6g][%-6g][%+g][%06g]", 2.5, 2.5, 2.5, -2.5), L"[   2.5][2.5   ][+2.5][-002.5]");
    EXPECT_EQ(FormatText(L"%.1000g", std::numeric_limits<double>::max()).size(), 309U);
    EXPECT_EQ(FormatText(L"%g", 1), L"%g");
}

TEST(FormatText, TextsAndANullPointer) {
    const wchar_t* none = nullptr;
    EXPECT_EQ(FormatText(L"%s|%s", L"한국어", none), L"한국어|(null)");
    EXPECT_EQ(FormatText(L"%.2s|%4s", std::wstring(L"abc"), L"x"), L"ab|   x");
}

TEST(FormatText, PointersHaveSixteenDigits) {
    EXPECT_EQ(FormatText(L"0x%p", reinterpret_cast<const void*>(std::uintptr_t{0xABCD})),
              L"0x000000000000ABCD");
}

TEST(FormatText, PercentSignsAndMistakesStandAsWritten) {
    EXPECT_EQ(FormatText(L"볼륨 %d%%", 55), L"볼륨 55%");
    EXPECT_EQ(FormatText(L"%d %d", 1), L"1 %d");
    EXPECT_EQ(FormatText(L"%s", 1), L"%s");
    EXPECT_EQ(FormatText(L"%d", L"text"), L"%d");
    EXPECT_EQ(FormatText(L"100%"), L"100%");
    EXPECT_EQ(FormatText(L"%q", 1), L"%q");
}

TEST(FormatText, HugeWidthsAreLimited) {
    EXPECT_EQ(FormatText(L"%999999999999d", 1).size(), 1000U);
}

} // namespace
} // namespace brindlecast
