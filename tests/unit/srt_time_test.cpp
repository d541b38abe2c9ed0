#include "subtitles/srt_to_ass.h"

#include <gtest/gtest.h>

#include <limits>

namespace brindlecast {
namespace {

using namespace std::string_view_literals;

TEST(AssTime, HasHundredthsThatAreCutOff) {
    EXPECT_EQ("0:00:00.00", FormatAssTime(0));
    EXPECT_EQ("0:00:00.00", FormatAssTime(9));
    EXPECT_EQ("0:00:00.01", FormatAssTime(10));
    EXPECT_EQ("0:00:01.99", FormatAssTime(1999));
    EXPECT_EQ("0:00:59.99", FormatAssTime(59'999));
    EXPECT_EQ("0:01:00.00", FormatAssTime(60'000));
    EXPECT_EQ("0:59:59.99", FormatAssTime(3'599'999));
    EXPECT_EQ("1:00:00.00", FormatAssTime(3'600'000));
    EXPECT_EQ("1:02:03.45", FormatAssTime(3'723'456));
    EXPECT_EQ("9:59:59.99", FormatAssTime(35'999'999));
    EXPECT_EQ("10:00:00.00", FormatAssTime(36'000'000));
    EXPECT_EQ("100:00:00.00", FormatAssTime(360'000'000));
}

TEST(AssTime, ANegativeTimeIsNegativeInEachOfItsParts) {
    EXPECT_EQ("0:00:00.00", FormatAssTime(-9));
    EXPECT_EQ("0:00:00.-1", FormatAssTime(-10));
    EXPECT_EQ("0:00:-1.-99", FormatAssTime(-1999));
    EXPECT_EQ("-1:-2:-3.-45", FormatAssTime(-3'723'456));
    EXPECT_EQ("-1:00:00.00", FormatAssTime(-3'600'000));
}

TEST(AssTime, HoursSaturateAtTheirLimit) {
    EXPECT_EQ("2147483647:59:59.99", FormatAssTime(7'730'941'132'799'999));
    EXPECT_EQ("2147483647:00:00.00", FormatAssTime(7'730'941'132'800'000));
    EXPECT_EQ("2147483647:12:55.80", FormatAssTime(std::numeric_limits<Milliseconds>::max()));
    EXPECT_EQ("-2147483648:-12:-55.-80", FormatAssTime(std::numeric_limits<Milliseconds>::min()));
}

TEST(SrtTime, IsReadWithACommaOrAPoint) {
    EXPECT_EQ(0, ParseSrtTime("00:00:00,000"));
    EXPECT_EQ(1, ParseSrtTime("00:00:00,001"));
    EXPECT_EQ(3'723'456, ParseSrtTime("01:02:03,456"));
    EXPECT_EQ(3'723'456, ParseSrtTime("01:02:03.456"));
    EXPECT_EQ(360'000'000, ParseSrtTime("100:00:00,000"));
    EXPECT_EQ(86'399'999, ParseSrtTime("23:59:59,999"));
}

TEST(SrtTime, TheLastNumberCountsMillisecondsWhateverItsLength) {
    EXPECT_EQ(1005, ParseSrtTime("0:0:1,5"));
    EXPECT_EQ(1005, ParseSrtTime("0:0:1.5"));
    EXPECT_EQ(1050, ParseSrtTime("0:0:1,050"));
    EXPECT_EQ(1'001'000, ParseSrtTime("0:0:1,1000000"));
}

TEST(SrtTime, PartsMayPassTheirUsualLimits) {
    EXPECT_EQ(99 * 60'000 + 99 * 1000, ParseSrtTime("0:99:99,0"));
    EXPECT_EQ(3'600'000 * 1000LL, ParseSrtTime("1000:0:0,0"));
}

TEST(SrtTime, SpaceBeforeNumbersAndSignsAreAllowed) {
    EXPECT_EQ(1002, ParseSrtTime(" \t 00:00: 01,\v 002"));
    EXPECT_EQ(1002, ParseSrtTime("\r00:00:01,002"));
    EXPECT_EQ(-3'600'000 + 60'000 - 1000 + 5, ParseSrtTime("-1:+1:-1,+5"));
}

TEST(SrtTime, WhatFollowsDoesntMatter) {
    EXPECT_EQ(2000, ParseSrtTime("00:00:02,000  X1:40 X2:600 Y1:20 Y2:50"));
    EXPECT_EQ(2000, ParseSrtTime("00:00:02.000 align:start position:10%"));
    EXPECT_EQ(2000, ParseSrtTime("00:00:02,000abc"));
    EXPECT_EQ(2000, ParseSrtTime("00:00:02,000,500"));
    EXPECT_EQ(2000, ParseSrtTime("00:00:02,000\0x"sv));
}

TEST(SrtTime, WhatDoesntMatchIsZero) {
    for (const std::string_view text :
         {""sv, "   "sv, "x"sv, "01:02.500"sv, "01:02,500"sv, "00:00:01"sv, "00:00:01,"sv, "00:00:01;500"sv,
          "00:00:01 ,500"sv, "00 :00:01,500"sv, "00:00:,500"sv, "a00:00:01,500"sv, "00:00:01:500"sv,
          "00-00-01,500"sv, "00:00:01\0,500"sv,
          "\xEF\xBB\xBF"
          "00:00:01,500"sv,
          "--1:00:00,000"sv}) {
        EXPECT_EQ(0, ParseSrtTime(text)) << text;
    }
}

TEST(SrtTime, HugeNumbersSaturateAndTheirSumIsExact) {
    EXPECT_EQ(7'730'941'129'200'000, ParseSrtTime("2147483647:00:00,000"));
    EXPECT_EQ(7'730'941'129'200'000, ParseSrtTime("2147483648:00:00,000"));
    EXPECT_EQ(7'861'939'779'150'647,
              ParseSrtTime("99999999999:99999999999999999999:9999999999,999999999999999999999999"));
    EXPECT_EQ(-7'861'939'782'811'648,
              ParseSrtTime("-99999999999:-99999999999999999999:-9999999999,-999999999999999999999999"));
}

} // namespace
} // namespace brindlecast
