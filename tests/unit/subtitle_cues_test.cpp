#include "subtitles/subtitle_cues.h"

#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace brindlecast {

void PrintTo(const SubtitleCue& cue, std::ostream* out) {
    *out << cue.index << ": " << cue.startMs << " to " << cue.endMs << ' '
         << ::testing::PrintToString(cue.text);
}

namespace {

using namespace std::string_view_literals;

using Cues = std::vector<SubtitleCue>;

Cues Parse(std::string_view content) {
    Cues cues;
    ParseSubtitleCues(content, cues);
    return cues;
}

// The cues of a file with this text behind its one timing line.
Cues ParseText(std::string_view text) {
    return Parse(std::string("1\n00:00:01,000 --> 00:00:02,000\n").append(text));
}

// The cues of a file whose one cue has this first line.
Cues ParseNumber(std::string_view number) {
    return Parse(std::string(number).append("\n00:00:01,000 --> 00:00:02,000\na\n"));
}

// The one cue that such files make.
Cues One(std::wstring_view text, int index = 1) {
    return {{index, 1000, 2000, std::wstring(text)}};
}

TEST(ParseSubtitleCues, FillsTheList) {
    EXPECT_EQ((Cues{{1, 1000, 2500, L"안녕하세요\n<i>world</i>"}, {2, 3'723'456, 3'725'000, L"Second"}}),
              Parse("1\r\n"
                    "00:00:01,000 --> 00:00:02,500\r\n"
                    "안녕하세요\r\n"
                    "<i>world</i>\r\n"
                    "\r\n"
                    "2\r\n"
                    "01:02:03,456 --> 01:02:05,000\r\n"
                    "Second\r\n"
                    "\r\n"));
}

TEST(ParseSubtitleCues, AddsToTheList) {
    Cues cues = {{7, 1, 2, L"before"}};
    ParseSubtitleCues("1\n00:00:01,000 --> 00:00:02,000\na\n", cues);
    EXPECT_EQ((Cues{{7, 1, 2, L"before"}, {1, 1000, 2000, L"a"}}), cues);
}

TEST(ParseSubtitleCues, TheLastCueNeedsNoBlankLine) {
    EXPECT_EQ(One(L"a"), ParseText("a"));
    EXPECT_EQ(One(L"a"), ParseText("a\n"));
    EXPECT_EQ(One(L"a"), ParseText("a\n\n\n"));
    EXPECT_EQ(One(L"a"), ParseText("a\r"));
}

TEST(ParseSubtitleCues, FilesWithoutCuesLeaveTheListEmpty) {
    for (const std::string_view content :
         {""sv, "\n"sv, "\r\n\r\n"sv, "1"sv, "1\n00:00:01,000 --> 00:00:02,000"sv,
          "1\n00:00:01,000 --> 00:00:02,000\n\n"sv, "WEBVTT\n"sv, "\0\0\0"sv, "<SAMI>\n<BODY>\n"sv,
          "\xFF\xFE\x31"sv, "{1}{25}Frame text\n"sv, "# VobSub index file, v7\nsize: 720x480\n"sv}) {
        EXPECT_EQ(Cues{}, Parse(content));
    }
}

// The number.

TEST(ParseSubtitleCues, TheNumberBecomesTheIndex) {
    EXPECT_EQ(One(L"a", 42), ParseNumber("42"));
    EXPECT_EQ(One(L"a", 7), ParseNumber(" \t\v\f\r007"));
    EXPECT_EQ(One(L"a", 7), ParseNumber("7 dwarfs"));
    EXPECT_EQ(One(L"a", -7), ParseNumber("-7"));
    EXPECT_EQ(One(L"a", 7), ParseNumber("+7"));
    EXPECT_EQ(One(L"a", 0), ParseNumber("0x10"));
    EXPECT_EQ(One(L"a", 5), ParseNumber("5\0x"sv));
    EXPECT_EQ(One(L"a", 5), ParseNumber("5\r"));
    EXPECT_EQ(One(L"a", 2147483647), ParseNumber("2147483647"));
    EXPECT_EQ(One(L"a", -2147483647 - 1), ParseNumber("-2147483648"));
}

TEST(ParseSubtitleCues, ANumberTooLargeIsSkippedLikeNone) {
    for (const std::string_view number : {"2147483648", "-2147483649", "9999999999", "9223372036854775808",
                                          "-99999999999999999999999", "x", "-", "+-1", "- 1", "   ",
                                          "\xEF\xBB\xBF"
                                          "1"}) {
        // The timing line is then the next that holds a number, and what follows holds no timing.
        EXPECT_EQ(Cues{}, ParseNumber(number)) << number;
    }
}

TEST(ParseSubtitleCues, LinesWithoutANumberAreSkippedUntilOneComes) {
    EXPECT_EQ(One(L"a", 3), ParseNumber("title\n\nmore\n99999999999\n\n3"));
}

// The timing line.

TEST(ParseSubtitleCues, ANumberWithoutATimingLineBehindItIsAbandoned) {
    EXPECT_EQ(One(L"b", 2), Parse("1\nno timing\n2\n00:00:01,000 --> 00:00:02,000\nb\n"));
    // The line that abandons a cue is no number itself.
    EXPECT_EQ(Cues{}, Parse("1\n2\n00:00:01,000 --> 00:00:02,000\nb\n"));
    EXPECT_EQ(Cues{}, Parse("1\n\n00:00:01,000 --> 00:00:02,000\nb\n"));
    EXPECT_EQ(One(L"b", 2), Parse("1\n\n2\n00:00:01,000 --> 00:00:02,000\nb\n"));
}

TEST(ParseSubtitleCues, TheArrowNeedsNoBlanks) {
    for (const std::string_view line :
         {"00:00:01,000-->00:00:02,000", "00:00:01,000 -->00:00:02,000", "00:00:01,000--> 00:00:02,000",
          " 00:00:01.000 \t --> \t 00:00:02.000 ", "00:00:01,000 --> 00:00:02,000 X1:40 Y1:20",
          "00:00:01,000 --> 00:00:02,000 --> 00:00:03,000", "00:00:01,000--->00:00:02,000"}) {
        EXPECT_EQ(One(L"a"), Parse(std::string("1\n").append(line).append("\na\n"))) << line;
    }
    EXPECT_EQ((Cues{{1, 0, 0, L"a"}}), Parse("1\n-->\na\n"));
    EXPECT_EQ(Cues{}, Parse("1\n->\na\n"));
    EXPECT_EQ(Cues{}, Parse("1\n00:00:01,000 -> 00:00:02,000\na\n"));
}

TEST(ParseSubtitleCues, TimesThatCantBeReadAreZero) {
    EXPECT_EQ((Cues{{1, 0, 2000, L"a"}}), Parse("1\nsoon --> 00:00:02,000\na\n"));
    EXPECT_EQ((Cues{{1, 1000, 0, L"a"}}), Parse("1\n00:00:01,000 --> later\na\n"));
    EXPECT_EQ((Cues{{1, 5000, 2000, L"a"}}), Parse("1\n00:00:05,000 --> 00:00:02,000\na\n"));
}

// The text.

TEST(ParseSubtitleCues, LinesAreJoinedByLineFeedsAndTagsStay) {
    EXPECT_EQ(One(L"a\nb\nc"), ParseText("a\r\nb\r\nc\r\n"));
    EXPECT_EQ(One(L"<b>a</b> {\\an8} &lt; <"), ParseText("<b>a</b> {\\an8} &lt; <"));
    EXPECT_EQ(One(L" \n "), ParseText(" \n \n"));
}

TEST(ParseSubtitleCues, OneCarriageReturnIsLostAtTheEndOfALine) {
    EXPECT_EQ(One(L"a\r\nb"), ParseText("a\r\r\nb\n"));
    EXPECT_EQ(One(L"a\n\r\nb"), ParseText("a\r\n\r\r\nb\r\n"));
    EXPECT_EQ(One(L"a\rb"), ParseText("a\rb"));
}

TEST(ParseSubtitleCues, AZeroByteIsText) {
    EXPECT_EQ(One(std::wstring_view(L"a\0b", 3)), ParseText("a\0b\n"sv));
}

TEST(ParseSubtitleCues, ACueWithoutTextIsDropped) {
    EXPECT_EQ(One(L"b", 2),
              Parse("1\n00:00:09,000 --> 00:00:10,000\n\n2\n00:00:01,000 --> 00:00:02,000\nb\n"));
}

TEST(ParseSubtitleCues, WithoutABlankLineTheNextCueIsText) {
    EXPECT_EQ(One(L"a\n2\n00:00:03,000 --> 00:00:04,000\nb"),
              ParseText("a\n2\n00:00:03,000 --> 00:00:04,000\nb\n"));
}

TEST(ParseSubtitleCues, CuesKeepTheOrderOfTheFile) {
    EXPECT_EQ((Cues{{2, 8000, 9000, L"late"}, {1, 1000, 9500, L"early"}, {1, 1000, 9500, L"early"}}),
              Parse("2\n00:00:08,000 --> 00:00:09,000\nlate\n\n"
                    "1\n00:00:01,000 --> 00:00:09,500\nearly\n\n"
                    "1\n00:00:01,000 --> 00:00:09,500\nearly\n"));
}

TEST(ParseSubtitleCues, TextOutsideTheBasicPlaneIsConverted) {
    EXPECT_EQ(One(L"영화 \U0001F3AC"), ParseText("영화 \U0001F3AC\n"));
}

TEST(ParseSubtitleCues, WebVttGoesTheSameWay) {
    EXPECT_EQ((Cues{{1, 1000, 2000, L"first"}, {2, 0, 0, L"<v Ann>second</v>"}}),
              Parse("WEBVTT - title\n\n"
                    "1\n00:00:01.000 --> 00:00:02.000 align:start\nfirst\n\n"
                    "2\n00:03.000 --> 00:04.000\n<v Ann>second</v>\n"));
    // The timing lines hold numbers themselves, and behind those no timing follows.
    EXPECT_EQ(Cues{}, Parse("WEBVTT\n\n00:00:01.000 --> 00:00:02.000\nfirst\n\n"
                            "00:00:03.000 --> 00:00:04.000\nsecond\n\n"
                            "00:00:05.000 --> 00:00:06.000\nthird\n"));
}

TEST(ParseSubtitleCues, AHundredThousandCuesAreAllTaken) {
    std::string content;
    for (int i = 0; i < 100'000; ++i) {
        content += std::to_string(i) + "\n" + std::to_string(i) + ":00:01,000 --> 0:00:00," +
                   std::to_string(i) + "\n자막\n\n";
    }
    const Cues cues = Parse(content);
    ASSERT_EQ(100'000U, cues.size());
    for (int i = 0; i < 100'000; ++i) {
        ASSERT_EQ((SubtitleCue{i, std::int64_t{i} * 3'600'000 + 1000, i, L"자막"}),
                  cues[static_cast<std::size_t>(i)]);
    }
}

// Malformed text.

TEST(ParseSubtitleCues, MalformedTextEndsItAndKeepsTheCuesBefore) {
    Cues cues;
    try {
        ParseSubtitleCues("1\n00:00:01,000 --> 00:00:02,000\nfirst\n\n"
                          "2\n00:00:03,000 --> 00:00:04,000\nsecond\n\n"
                          "3\n00:00:05,000 --> 00:00:06,000\ngood\n\xC7\xD1\xB1\xDB\n\n"
                          "4\n00:00:07,000 --> 00:00:08,000\nfourth\n",
                          cues);
        FAIL() << "nothing was raised";
    } catch (const std::range_error& error) {
        EXPECT_STREQ("bad conversion", error.what());
    }
    EXPECT_EQ((Cues{{1, 1000, 2000, L"first"}, {2, 3000, 4000, L"second"}}), cues);
}

TEST(ParseSubtitleCues, EachLineMustBeWellFormedByItself) {
    EXPECT_THROW(ParseText("\xFF"), std::range_error);
    EXPECT_THROW(ParseText("ok\xEA\xB0"), std::range_error);       // cut short by the end of the file
    EXPECT_THROW(ParseText("\xEA\xB0\n\x80\n"), std::range_error); // and by the end of the line
    EXPECT_THROW(ParseText("\xED\xA0\x80"), std::range_error);
}

TEST(ParseSubtitleCues, MalformedBytesOutsideTheTextDontMatter) {
    EXPECT_EQ(One(L"a"), Parse("\xFF\xFE\n1 \xFF\n00:00:01,000 --> 00:00:02,000 \xC7\xD1\na\n\n\xFF\xFF\n"));
    EXPECT_EQ(Cues{}, Parse("1\n\xFF\xFF\xFF\n\xFF\n"));
}

// Times.

TEST(CueTime, IsReadWithACommaOrAPoint) {
    EXPECT_EQ(0, ParseCueTime("00:00:00,000"));
    EXPECT_EQ(3'723'456, ParseCueTime("01:02:03,456"));
    EXPECT_EQ(3'723'456, ParseCueTime("01:02:03.456"));
    EXPECT_EQ(1005, ParseCueTime("0:0:1,5"));
    EXPECT_EQ(360'000'000, ParseCueTime("100:00:00,000"));
    EXPECT_EQ(5'999'000, ParseCueTime("0:99:59,0"));
}

TEST(CueTime, SignsAndSpaceBeforeNumbersAreAllowed) {
    EXPECT_EQ(-3'541'005, ParseCueTime("  -1: +1:\t-1,-5"));
}

TEST(CueTime, WhatFollowsDoesntMatter) {
    EXPECT_EQ(2000, ParseCueTime("00:00:02,000,5 X1:40"));
    EXPECT_EQ(2000, ParseCueTime("00:00:02,000\0x"sv));
}

TEST(CueTime, WhatDoesntMatchIsZero) {
    for (const std::string_view text :
         {""sv, "x"sv, "01:02.500"sv, "01,02,03,004"sv, "00:00:01"sv, "00:00:01,"sv, "00:00:01 ,500"sv,
          "00:00:01\0,500"sv, ",00:00:01,500"sv}) {
        EXPECT_EQ(0, ParseCueTime(text)) << text;
    }
}

TEST(CueTime, HugeNumbersSaturateAndTheirSumIsExact) {
    EXPECT_EQ(7'730'941'129'200'000, ParseCueTime("2147483648:00:00,000"));
    EXPECT_EQ(7'861'939'779'150'647,
              ParseCueTime("99999999999:99999999999999999999:9999999999,999999999999999999999999"));
    EXPECT_EQ(-7'861'939'782'811'648,
              ParseCueTime("-99999999999:-99999999999999999999:-9999999999,-999999999999999999999999"));
}

// From a file.

class LoadSubtitleCuesFromFile : public ::testing::Test {
protected:
    [[nodiscard]] std::wstring Write(std::string_view bytes) const {
        return folder.Write(u8"자막.srt", bytes);
    }

    testing::TemporaryFolder folder;
    Cues cues = {{7, 1, 2, L"of the file before"}};
};

TEST_F(LoadSubtitleCuesFromFile, ReplacesTheList) {
    EXPECT_TRUE(LoadSubtitleCues(Write("1\r\n00:00:01,000 --> 00:00:02,000\r\n자막\r\n"), cues));
    EXPECT_EQ(One(L"자막"), cues);
}

TEST_F(LoadSubtitleCuesFromFile, DropsTheMark) {
    EXPECT_TRUE(LoadSubtitleCues(Write("\xEF\xBB\xBF"
                                       "1\n00:00:01,000 --> 00:00:02,000\na"),
                                 cues));
    EXPECT_EQ(One(L"a"), cues);
}

TEST_F(LoadSubtitleCuesFromFile, AFileWithoutCuesIsAFailureAndEmptiesTheList) {
    EXPECT_FALSE(LoadSubtitleCues(Write("\xEF\xBB\xBF"), cues));
    EXPECT_EQ(Cues{}, cues);
}

TEST_F(LoadSubtitleCuesFromFile, AFileThatCantBeOpenedIsAFailureAndEmptiesTheList) {
    EXPECT_FALSE(LoadSubtitleCues(folder.Path(u8"없음.srt"), cues));
    EXPECT_EQ(Cues{}, cues);
}

TEST_F(LoadSubtitleCuesFromFile, MalformedTextIsRaisedAndTheCuesBeforeStay) {
    const std::wstring path =
        Write("1\n00:00:01,000 --> 00:00:02,000\na\n\n2\n00:00:01,000 --> 00:00:02,000\n\xFF\n");
    EXPECT_THROW(static_cast<void>(LoadSubtitleCues(path, cues)), std::range_error);
    EXPECT_EQ(One(L"a"), cues);
}

} // namespace
} // namespace brindlecast
