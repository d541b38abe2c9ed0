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
