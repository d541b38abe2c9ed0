#include "base/scan.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>

namespace brindlecast {
namespace {

constexpr const char* kTime = "%d:%d:%d,%d";

// The numbers that were stored, by four.
struct Scanned {
    std::size_t count;
    std::array<int, 4> values;
    bool operator==(const Scanned&) const = default;
};

Scanned Scan(std::string_view text, std::string_view pattern = kTime) {
    Scanned scanned{0, {-9, -9, -9, -9}};
    scanned.count = ScanIntegers(text, pattern, scanned.values);
    return scanned;
}

void PrintTo(const Scanned& scanned, std::ostream* out) {
    *out << scanned.count << " values:";
    for (const int value : scanned.values) {
        *out << ' ' << value;
    }
}

TEST(Scan, SpacesAreThoseOfAscii) {
    std::string spaces;
    for (int byte = 0; byte < 256; ++byte) {
        if (IsSpace(static_cast<char>(byte))) {
            spaces += static_cast<char>(byte);
        }
    }
    EXPECT_EQ("\t\n\v\f\r ", spaces);
}

TEST(Scan, DigitsAreThoseOfAscii) {
    std::string digits;
    for (int byte = 0; byte < 256; ++byte) {
        if (IsDigit(static_cast<char>(byte))) {
            digits += static_cast<char>(byte);
        }
    }
    EXPECT_EQ("0123456789", digits);
}

TEST(TakeInteger, ReadsOffTheFront) {
    std::string_view text = " \t\n\v\f\r42 rest";
    EXPECT_EQ(42, TakeInteger(text));
    EXPECT_EQ(" rest", text);
}

TEST(TakeInteger, OneSignMayStandBeforeTheDigits) {
    for (const auto& [written, value] : {std::pair{"-7", -7}, {"+7", 7}, {"-0", 0}, {" -007", -7}}) {
        std::string_view text = written;
        EXPECT_EQ(value, TakeInteger(text)) << written;
        EXPECT_EQ("", text);
    }
}

TEST(TakeInteger, WithoutDigitsNothingIsTaken) {
    for (const std::string_view written :
         {"", "   ", "-", "+", " - 5", "--5", "+-5", "-+5", "++5", "a5", ":5"}) {
        std::string_view text = written;
        EXPECT_EQ(std::nullopt, TakeInteger(text)) << written;
        EXPECT_EQ(written, text);
    }
}

TEST(TakeInteger, OtherBasesAreNotKnown) {
    std::string_view text = "0x10";
    EXPECT_EQ(0, TakeInteger(text));
    EXPECT_EQ("x10", text);
    text = "010";
    EXPECT_EQ(10, TakeInteger(text));
}

TEST(TakeInteger, BeyondSixtyFourBitsTheLimitIsTakenAndTheDigitsAreGone) {
    std::string_view text = "9223372036854775807,";
    EXPECT_EQ(9223372036854775807, TakeInteger(text));
    text = "9223372036854775808,";
    EXPECT_EQ(9223372036854775807, TakeInteger(text));
    EXPECT_EQ(",", text);
    text = "-9223372036854775808,";
    EXPECT_EQ(std::numeric_limits<std::int64_t>::min(), TakeInteger(text));
    text = "-99999999999999999999999999999999999999,";
    EXPECT_EQ(std::numeric_limits<std::int64_t>::min(), TakeInteger(text));
    EXPECT_EQ(",", text);
}

TEST(ScanIntegers, AWholePatternGivesAllItsNumbers) {
    EXPECT_EQ((Scanned{4, {1, 2, 3, 4}}), Scan("1:2:3,4"));
    EXPECT_EQ((Scanned{4, {12, 34, 56, 789}}), Scan("12:34:56,789 X1:40"));
}

TEST(ScanIntegers, SpaceIsPassedOverBeforeANumberAlone) {
    EXPECT_EQ((Scanned{4, {1, 2, 3, 4}}), Scan("  1: 2:\t3,\r4"));
    EXPECT_EQ((Scanned{1, {1, -9, -9, -9}}), Scan("1 :2:3,4"));
    EXPECT_EQ((Scanned{3, {1, 2, 3, -9}}), Scan("1:2:3 ,4"));
}

TEST(ScanIntegers, SignsAreAllowedInEveryPlace) {
    EXPECT_EQ((Scanned{4, {-1, 2, -3, 4}}), Scan("-1:+2:-3,+4"));
}

TEST(ScanIntegers, StopsAtTheFirstMismatchAndKeepsWhatItHas) {
    EXPECT_EQ((Scanned{0, {-9, -9, -9, -9}}), Scan(""));
    EXPECT_EQ((Scanned{0, {-9, -9, -9, -9}}), Scan("x"));
    EXPECT_EQ((Scanned{1, {1, -9, -9, -9}}), Scan("1"));
    EXPECT_EQ((Scanned{1, {1, -9, -9, -9}}), Scan("1:"));
    EXPECT_EQ((Scanned{2, {1, 2, -9, -9}}), Scan("1:2.3"));
    EXPECT_EQ((Scanned{3, {1, 2, 3, -9}}), Scan("1:2:3.4"));
    EXPECT_EQ((Scanned{3, {1, 2, 3, -9}}), Scan("1:2:3,"));
    EXPECT_EQ((Scanned{3, {1, 2, 3, -9}}), Scan("1:2:3,-"));
}

TEST(ScanIntegers, NumbersSaturateAtTheLimitsOfInt) {
    EXPECT_EQ((Scanned{4, {2147483647, 2147483647, -2147483647 - 1, -2147483647 - 1}}),
              Scan("2147483647:2147483648:-2147483648,-2147483649"));
    EXPECT_EQ((Scanned{4, {2147483647, -2147483647 - 1, 3, 4}}),
              Scan("99999999999999999999999:-99999999999999999999999:3,4"));
}

TEST(ScanIntegers, ReadsNothingBeyondItsTextAndNoMoreThanItMayStore) {
    const std::string whole = "1:2:3,45";
    EXPECT_EQ((Scanned{4, {1, 2, 3, 4}}), Scan(std::string_view(whole).substr(0, 7)));
    EXPECT_EQ((Scanned{3, {1, 2, 3, -9}}), Scan(std::string_view(whole).substr(0, 6)));
    std::array<int, 2> two{};
    EXPECT_EQ(2U, ScanIntegers("1:2:3,4", kTime, two));
    EXPECT_EQ((std::array{1, 2}), two);
    EXPECT_EQ(0U, ScanIntegers("1", kTime, {}));
}

TEST(ScanIntegers, AZeroByteMatchesNothing) {
    using namespace std::string_view_literals;
    EXPECT_EQ((Scanned{2, {1, 2, -9, -9}}), Scan("1:2\0:3,4"sv));
    EXPECT_EQ((Scanned{4, {1, 2, 3, 4}}), Scan("1:2:3,4\0005"sv));
}

TEST(ScanIntegers, APatternMayEndWithOrConsistOfCharacters) {
    EXPECT_EQ((Scanned{1, {7, -9, -9, -9}}), Scan("n7;", "n%d;"));
    EXPECT_EQ((Scanned{0, {-9, -9, -9, -9}}), Scan("abc", "abc"));
    EXPECT_EQ((Scanned{1, {7, -9, -9, -9}}), Scan("7%", "%d%"));
}

} // namespace
} // namespace brindlecast
