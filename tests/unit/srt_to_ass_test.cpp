#include "subtitles/srt_to_ass.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace brindlecast {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

constexpr std::string_view kHead =
    "[Script Info]\n"
    "ScriptType: v4.00+\n"
    "WrapStyle: 0\n"
    "ScaledBorderAndShadow: yes\n"
    "PlayResX: 384\n"
    "PlayResY: 288\n"
    "\n"
    "[V4+ Styles]\n"
    "Format: Name, Fontname, Fontsize, PrimaryColour, SecondaryColour, OutlineColour, BackColour, Bold, "
    "Italic, "
    "Underline, StrikeOut, ScaleX, ScaleY, Spacing, Angle, BorderStyle, Outline, Shadow, Alignment, MarginL, "
    "MarginR, MarginV, Encoding\n";
constexpr std::string_view kDefaultStyle =
    "Style: Default,Malgun "
    "Gothic,24,&H00FFFFFF,&H000000FF,&H00000000,&H80000000,-1,0,0,0,100,100,0,0,1,0.666667,0.4,2,5,5,6,1\n";
constexpr std::string_view kEventsHead =
    "\n"
    "[Events]\n"
    "Format: Layer, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\n";

std::string DefaultHead() {
    return std::string(kHead).append(kDefaultStyle).append(kEventsHead);
}

// What stands behind the head that every text with the default style must have.
std::string Events(std::string_view content) {
    const std::string ass = ConvertSrtToAss(content, SubtitleStyle{});
    const std::string head = DefaultHead();
    if (!ass.starts_with(head)) {
        return "another head: " + ass;
    }
    return ass.substr(head.size());
}

// The events of one cue of a second with this text behind the timing line.
std::string EventsOfText(std::string_view text) {
    return Events(std::string("1\n00:00:01,000 --> 00:00:02,000\n").append(text));
}

std::string Event(std::string_view text) {
    return std::string("Dialogue: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,").append(text).append("\n");
}

std::string StyleLine(const SubtitleStyle& style) {
    const std::string ass = ConvertSrtToAss("", style);
    if (!ass.starts_with(kHead) || !ass.ends_with(kEventsHead)) {
        return "another head: " + ass;
    }
    return ass.substr(kHead.size(), ass.size() - kHead.size() - kEventsHead.size());
}

// The fields of the style line by their places, from 1.
std::string StyleField(const SubtitleStyle& style, int place) {
    std::string line = StyleLine(style);
    for (; place > 1; --place) {
        line.erase(0, line.find(',') + 1);
    }
    return line.substr(0, line.find_first_of(",\n"));
}

// The whole text.

TEST(ConvertSrtToAss, AnEmptyFileGivesTheHeadAlone) {
    EXPECT_EQ(
        "[Script Info]\n"
        "ScriptType: v4.00+\n"
        "WrapStyle: 0\n"
        "ScaledBorderAndShadow: yes\n"
        "PlayResX: 384\n"
        "PlayResY: 288\n"
        "\n"
        "[V4+ Styles]\n"
        "Format: Name, Fontname, Fontsize, PrimaryColour, SecondaryColour, OutlineColour, BackColour, Bold, "
        "Italic, Underline, StrikeOut, ScaleX, ScaleY, Spacing, Angle, BorderStyle, Outline, Shadow, "
        "Alignment, "
        "MarginL, MarginR, MarginV, Encoding\n"
        "Style: Default,Malgun Gothic,24,&H00FFFFFF,&H000000FF,&H00000000,&H80000000,-1,0,0,0,100,100,0,0,1,"
        "0.666667,0.4,2,5,5,6,1\n"
        "\n"
        "[Events]\n"
        "Format: Layer, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\n",
        ConvertSrtToAss("", SubtitleStyle{}));
}

TEST(ConvertSrtToAss, AFileOfTwoCuesGivesTheWholeText) {
    EXPECT_EQ(DefaultHead() + "Dialogue: 0,0:00:01.00,0:00:02.50,Default,,0,0,0,,안녕하세요\\Nworld\n"
                              "Dialogue: 0,1:02:03.45,1:02:05.00,Default,,0,0,0,,Second\n",
              ConvertSrtToAss("1\r\n"
                              "00:00:01,000 --> 00:00:02,500\r\n"
                              "안녕하세요\r\n"
                              "<i>world</i>\r\n"
                              "\r\n"
                              "2\r\n"
                              "01:02:03,456 --> 01:02:05,000\r\n"
                              "Second\r\n"
                              "\r\n",
                              SubtitleStyle{}));
}

TEST(ConvertSrtToAss, NoCarriageReturnIsEverAdded) {
    EXPECT_EQ(std::string::npos,
              ConvertSrtToAss("1\r\n00:00:01,000 --> 00:00:02,000\r\na\r\nb\r\n\r\n", {}).find('\r'));
}

// The style line.

TEST(AssStyleLine, HasEveryFieldOfTheStyle) {
    const SubtitleStyle style{L"나눔고딕", 30,          10.0,        3.7, false, true,
                              0x11223344U, 0x55667788U, 0x99AABBCCU, 100, 8};
    EXPECT_EQ("Style: Default,나눔고딕,30,&H11443322,&H000000FF,&H55887766,&H99CCBBAA,0,-1,0,0,100,100,0,0,1,"
              "2.66667,0.986667,8,5,5,26,1\n",
              StyleLine(style));
}

TEST(AssStyleLine, ASizeBelowOneStandsForTwentyFourAndNoneIsScaled) {
    const std::pair<int, const char*> kTable[] = {
        {0, "24"},  {-1, "24"},   {-2147483647 - 1, "24"},   {1, "1"}, {24, "24"},
        {30, "30"}, {288, "288"}, {2147483647, "2147483647"}};
    for (const auto& [size, written] : kTable) {
        SubtitleStyle style;
        style.fontSize = size;
        EXPECT_EQ(written, StyleField(style, 3));
    }
}

TEST(AssStyleLine, AColourKeepsItsTopByteAndTurnsTheRestRound) {
    SubtitleStyle style;
    style.primaryColour = 0x01020304U;
    style.outlineColour = 0xFF000000U;
    style.shadowColour = 0x00ABCDEFU;
    EXPECT_EQ("&H01040302", StyleField(style, 4));
    EXPECT_EQ("&H000000FF", StyleField(style, 5));
    EXPECT_EQ("&HFF000000", StyleField(style, 6));
    EXPECT_EQ("&H00EFCDAB", StyleField(style, 7));
}

TEST(AssStyleLine, FlagsAreMinusOneOrZero) {
    SubtitleStyle style;
    style.bold = false;
    style.italic = false;
    EXPECT_EQ("0", StyleField(style, 8));
    EXPECT_EQ("0", StyleField(style, 9));
    style.bold = true;
    style.italic = true;
    EXPECT_EQ("-1", StyleField(style, 8));
    EXPECT_EQ("-1", StyleField(style, 9));
}

TEST(AssStyleLine, WidthsAreScaledFromATallPicture) {
    const std::pair<double, const char*> kTable[] = {{0.0, "0"},
                                                     {2.5, "0.666667"},
                                                     {1.5, "0.4"},
                                                     {3.0, "0.8"},
                                                     {3.75, "1"},
                                                     {0.1, "0.0266667"},
                                                     {1000.0, "266.667"},
                                                     {429496729.5, "1.14532e+08"},
                                                     {0.0001, "2.66667e-05"}};
    for (const auto& [width, written] : kTable) {
        SubtitleStyle style;
        style.outline = width;
        EXPECT_EQ(written, StyleField(style, 17));
        EXPECT_EQ("0.4", StyleField(style, 18));
        style = {};
        style.shadow = width;
        EXPECT_EQ("0.666667", StyleField(style, 17));
        EXPECT_EQ(written, StyleField(style, 18));
    }
}

TEST(AssStyleLine, TheAlignmentIsCopied) {
    SubtitleStyle style;
    style.alignment = -7;
    EXPECT_EQ("-7", StyleField(style, 19));
    style.alignment = 99;
    EXPECT_EQ("99", StyleField(style, 19));
}

TEST(AssStyleLine, TheBottomMarginIsScaledAndCutTowardsZero) {
    const std::pair<int, const char*> kTable[] = {{0, "0"},
                                                  {25, "6"},
                                                  {3, "0"},
                                                  {4, "1"},
                                                  {1080, "288"},
                                                  {-25, "-6"},
                                                  {-3, "0"},
                                                  {-4, "-1"},
                                                  {2147483647, "572662305"},
                                                  {-2147483647 - 1, "-572662306"}};
    for (const auto& [margin, written] : kTable) {
        SubtitleStyle style;
        style.marginBottom = margin;
        EXPECT_EQ(written, StyleField(style, 22));
    }
}

TEST(AssStyleLine, TheFontNameIsWrittenAsItStands) {
    SubtitleStyle style;
    style.fontName = L"";
    EXPECT_EQ("", StyleField(style, 2));
    style.fontName = L"맑은 고딕 \U0001F3AC";
    EXPECT_EQ("맑은 고딕 \U0001F3AC", StyleField(style, 2));
    style.fontName = L"%s%d,x";
    EXPECT_TRUE(StyleLine(style).starts_with("Style: Default,%s%d,x,24,&H00FFFFFF,"));
}

TEST(AssStyleLine, AFontNameWithoutAFormInUtf8IsLeftOut) {
    SubtitleStyle style;
    style.fontName = {L'A', static_cast<wchar_t>(0xD800), L'B'};
    EXPECT_EQ("", StyleField(style, 2));
    EXPECT_EQ("24", StyleField(style, 3));
}

// From lines to cues.

TEST(SrtCues, TheLastCueNeedsNoBlankLine) {
    EXPECT_EQ(Event("Hi"), EventsOfText("Hi"));
    EXPECT_EQ(Event("Hi"), EventsOfText("Hi\n"));
    EXPECT_EQ(Event("Hi"), EventsOfText("Hi\n\n"));
    EXPECT_EQ(Event("Hi"), EventsOfText("Hi\n\n\n\n"));
    EXPECT_EQ(Event("Hi"), EventsOfText("Hi\r\n"));
    EXPECT_EQ(Event("Hi"), EventsOfText("Hi\r"));
}

TEST(SrtCues, TextLinesAreJoined) {
    EXPECT_EQ(Event("a\\Nb"), EventsOfText("a\nb"));
    EXPECT_EQ(Event("a\\Nb\\Nc"), EventsOfText("a\r\nb\r\nc\r\n\r\n"));
    EXPECT_EQ(Event("a\\N \\Nb"), EventsOfText("a\n \nb\n")); // a blank is no empty line
}

TEST(SrtCues, ACueWithoutTextGivesNoEventAndTheNextNumberBeginsACue) {
    EXPECT_EQ(Event("b"),
              Events("1\n00:00:09,000 --> 00:00:10,000\n\n2\n00:00:01,000 --> 00:00:02,000\nb\n"));
    EXPECT_EQ("", Events("1\n00:00:01,000 --> 00:00:02,000\n\n"));
    EXPECT_EQ("", Events("1\n00:00:01,000 --> 00:00:02,000\n"));
    EXPECT_EQ("", Events("1\n00:00:01,000 --> 00:00:02,000"));
}

TEST(SrtCues, TextAfterABlankLineIsPassedOver) {
    EXPECT_EQ(Event("a"), EventsOfText("a\n\nlost\nlost too\n"));
}

TEST(SrtCues, WithoutABlankLineTheNextCueIsText) {
    EXPECT_EQ(Event("a\\N2\\N00:00:03,000 --> 00:00:04,000\\Nb"),
              EventsOfText("a\n2\n00:00:03,000 --> 00:00:04,000\nb\n"));
}

TEST(SrtCues, ACueBeginsWithAnyLineThatBeginsWithADigit) {
    constexpr std::string_view kRest = "\n00:00:01,000 --> 00:00:02,000\na\n";
    for (const std::string_view number :
         {"0", "1", "9", "7 dwarfs", "99999999999999999999", "5\r", "0x", "1\tb"}) {
        EXPECT_EQ(Event("a"), Events(std::string(number).append(kRest))) << number;
    }
    for (const std::string_view number : {"", " 1", "-1", "+1", "a1", "\r",
                                          "\xEF\xBB\xBF"
                                          "1",
                                          "\xEF\xBC\x91", "\t1"}) {
        // The timing line then counts as the number, and no timing line follows.
        EXPECT_EQ("", Events(std::string(number).append(kRest))) << number;
    }
}

TEST(SrtCues, ATimingLineIsAwaitedAcrossAnyOthers) {
    EXPECT_EQ(Event("a"), Events("1\n\nnonsense\n2\n\n\n00:00:01,000 --> 00:00:02,000\na\n"));
    EXPECT_EQ("", Events("1\nno timing here\n\n2\nnor here\n"));
}

TEST(SrtCues, OnlyAnArrowBetweenBlanksMakesATimingLine) {
    for (const std::string_view line :
         {"00:00:01,000-->00:00:02,000", "00:00:01,000 -->00:00:02,000", "00:00:01,000--> 00:00:02,000",
          "00:00:01,000 -> 00:00:02,000", "-->", " -->", "--> ", "00:00:01,000\t-->\t00:00:02,000"}) {
        EXPECT_EQ("", Events(std::string("1\n").append(line).append("\na\n"))) << line;
    }
    EXPECT_EQ("Dialogue: 0,0:00:00.00,0:00:00.00,Default,,0,0,0,,a\n", Events("1\n --> \na\n"));
}

TEST(SrtCues, TheFirstArrowOfALineParts) {
    EXPECT_EQ(Event("a"), Events("1\n00:00:01,000 --> 00:00:02,000 --> 00:00:03,000\na\n"));
}

TEST(SrtCues, SuffixesBehindTheTimesAreDropped) {
    EXPECT_EQ(Event("a"), Events("1\n00:00:01,000 --> 00:00:02,000  X1:100 X2:200 Y1:10 Y2:20\na\n"));
    EXPECT_EQ(Event("a"), Events("1\n00:00:01.000 --> 00:00:02.000 line:0 position:50% align:center\na\n"));
    EXPECT_EQ(Event("a"), Events("1\n  00:00:01,000   -->   00:00:02,000  \na\n"));
}

TEST(SrtCues, TimesThatCantBeReadAreZero) {
    EXPECT_EQ("Dialogue: 0,0:00:00.00,0:00:02.00,Default,,0,0,0,,a\n",
              Events("1\nsoon --> 00:00:02,000\na\n"));
    EXPECT_EQ("Dialogue: 0,0:00:01.00,0:00:00.00,Default,,0,0,0,,a\n",
              Events("1\n00:00:01,000 --> later\na\n"));
}

TEST(SrtCues, ACueThatEndsBeforeItsStartIsWrittenAsItStands) {
    EXPECT_EQ("Dialogue: 0,0:00:05.00,0:00:02.00,Default,,0,0,0,,a\n",
              Events("1\n00:00:05,000 --> 00:00:02,000\na\n"));
}

TEST(SrtCues, NegativeAndHugeTimesAreWrittenAsTheyAreRead) {
    EXPECT_EQ("Dialogue: 0,0:00:-1.-50,2147483647:52:30.64,Default,,0,0,0,,a\n",
              Events("1\n00:00:-1,-500 --> 9999999999:9999999999:9999999999,9999999999\na\n"));
}

TEST(SrtCues, EventsKeepTheOrderOfTheFile) {
    EXPECT_EQ("Dialogue: 0,0:00:08.00,0:00:09.00,Default,,0,0,0,,late\n"
              "Dialogue: 0,0:00:01.00,0:00:09.50,Default,,0,0,0,,early\n"
              "Dialogue: 0,0:00:01.00,0:00:09.50,Default,,0,0,0,,early\n",
              Events("2\n00:00:08,000 --> 00:00:09,000\nlate\n\n"
                     "1\n00:00:01,000 --> 00:00:09,500\nearly\n\n"
                     "1\n00:00:01,000 --> 00:00:09,500\nearly\n\n"));
}

TEST(SrtCues, ALineMayLoseOneCarriageReturnAlone) {
    EXPECT_EQ(Event("a\r\\Nb"), EventsOfText("a\r\r\nb\n"));
    EXPECT_EQ(Event("a\rb"), EventsOfText("a\rb\n"));
    // A line of two is not empty once one is gone, so it does not end the cue.
    EXPECT_EQ(Event("a\\N\r\\Nb"), EventsOfText("a\r\n\r\r\nb\r\n"));
}

TEST(SrtCues, CarriageReturnsAloneMakeNoLines) {
    EXPECT_EQ("", Events("1\r00:00:01,000 --> 00:00:02,000\ra\r\r"));
}

TEST(SrtCues, AFileOfOtherThingsHasNoEvents) {
    for (const std::string_view content :
         {"\n"sv, "\r\n\r\n"sv, "WEBVTT\n"sv, "no subtitles at all"sv, "1"sv, "1\n"sv, "\0\0\0\0"sv,
          "\xFF\xFE"
          "1\0\n\0"sv,
          "{1}{25}Frame text|more\n"sv, "<SAMI><BODY>\n"sv}) {
        EXPECT_EQ("", Events(content));
    }
}

TEST(SrtCues, AMarkThatIsStillThereHidesTheFirstNumber) {
    EXPECT_EQ("", Events("\xEF\xBB\xBF"
                         "1\n00:00:01,000 --> 00:00:02,000\na\n"));
}

// The text of an event.

TEST(SrtText, TagsAreStripped) {
    EXPECT_EQ(Event("a"), EventsOfText("<i>a</i>"));
    EXPECT_EQ(Event("abc"), EventsOfText("<b>a</b><u>b</u><font color=\"#FF0000\">c</font>"));
    EXPECT_EQ(Event(" "), EventsOfText("<word> <c.yellow>"));
    EXPECT_EQ(Event("xy"), EventsOfText("x<>y"));
}

TEST(SrtText, ATagMayReachAcrossLines) {
    EXPECT_EQ(Event("ab"), EventsOfText("a<font\ncolor=red>b"));
    EXPECT_EQ(Event("a\\Nb"), EventsOfText("<i>a\nb</i>"));
}

TEST(SrtText, FromTheFirstAngleToTheNextClosingOneAllIsGone) {
    EXPECT_EQ(Event("ad"), EventsOfText("a<b<c>d"));
    EXPECT_EQ(Event(">"), EventsOfText("<<i>>"));
    EXPECT_EQ(Event("i>b"), EventsOfText("<a>i>b"));
    EXPECT_EQ(Event("3 > 2"), EventsOfText("3 > 2"));
    EXPECT_EQ(Event(">a"), EventsOfText(">a<b>"));
}

TEST(SrtText, AnAngleThatNothingClosesStaysWithAllBehindIt) {
    EXPECT_EQ(Event("a < b"), EventsOfText("a < b"));
    EXPECT_EQ(Event("<"), EventsOfText("<"));
    EXPECT_EQ(Event("a<b"), EventsOfText("<i>a</i><b"));
    EXPECT_EQ(Event("a> < b <c"), EventsOfText("a> < b <c"));
}

TEST(SrtText, ATextOfTagsAloneIsAnEmptyEvent) {
    EXPECT_EQ(Event(""), EventsOfText("<i></i>"));
    EXPECT_EQ(Event("\\N"), EventsOfText("<i>\n</i>"));
}

TEST(SrtText, NothingElseIsRewritten) {
    EXPECT_EQ(Event("{\\an8}top {b}"), EventsOfText("{\\an8}top {b}"));
    EXPECT_EQ(Event("&lt;i&gt; &amp; &nbsp;"), EventsOfText("&lt;i&gt; &amp; &nbsp;"));
    EXPECT_EQ(Event("a,b\\Nc\\h\\n"), EventsOfText("a,b\\Nc\\h\\n"));
    EXPECT_EQ(Event("  a\t "), EventsOfText("  a\t "));
    EXPECT_EQ(Event("%s %d %%"), EventsOfText("%s %d %%"));
}

TEST(SrtText, BytesGoThroughWhateverTheirEncoding) {
    EXPECT_EQ(Event("한국어 자막 \U0001F3AC"), EventsOfText("한국어 자막 \U0001F3AC"));
    EXPECT_EQ(Event("\xC7\xD1\xB1\xDB \xFF\xFE\x80"), EventsOfText("\xC7\xD1\xB1\xDB \xFF\xFE\x80"));
    EXPECT_EQ(Event("a\0b"sv), EventsOfText("a\0b"sv));
    EXPECT_EQ(Event("\0"sv), EventsOfText("\0\n"sv));
    EXPECT_EQ(Event("\x1A\v\f"), EventsOfText("\x1A\v\f"));
}

// WebVTT takes the same road.

TEST(WebVtt, CuesWithNumbersAreAllTaken) {
    EXPECT_EQ("Dialogue: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,first\n"
              "Dialogue: 0,0:00:03.00,0:00:04.00,Default,,0,0,0,,second\n",
              Events("WEBVTT - title\nKind: captions\n\n"
                     "NOTE a remark\n\n"
                     "1\n00:00:01.000 --> 00:00:02.000 align:start\nfirst\n\n"
                     "2\n00:00:03.000 --> 00:00:04.000\n<v Ann>second</v>\n"));
}

TEST(WebVtt, WithoutNumbersEverySecondCueIsLost) {
    EXPECT_EQ("Dialogue: 0,0:00:03.00,0:00:04.00,Default,,0,0,0,,second\n"
              "Dialogue: 0,0:00:07.00,0:00:08.00,Default,,0,0,0,,fourth\n",
              Events("WEBVTT\n\n"
                     "00:00:01.000 --> 00:00:02.000\nfirst\n\n"
                     "00:00:03.000 --> 00:00:04.000\nsecond\n\n"
                     "00:00:05.000 --> 00:00:06.000\nthird\n\n"
                     "00:00:07.000 --> 00:00:08.000\nfourth\n\n"
                     "00:00:09.000 --> 00:00:10.000\nfifth\n"));
}

TEST(WebVtt, NamesInPlaceOfNumbersCountAsNone) {
    EXPECT_EQ("Dialogue: 0,0:00:03.00,0:00:04.00,Default,,0,0,0,,second\n",
              Events("WEBVTT\n\n"
                     "intro\n00:00:01.000 --> 00:00:02.000\nfirst\n\n"
                     "outro\n00:00:03.000 --> 00:00:04.000\nsecond\n"));
}

TEST(WebVtt, TimesWithoutHoursAreZero) {
    EXPECT_EQ("Dialogue: 0,0:00:00.00,0:00:00.00,Default,,0,0,0,,first\n",
              Events("WEBVTT\n\n1\n01:02.500 --> 01:04.000\nfirst\n"));
    EXPECT_EQ("Dialogue: 0,0:00:00.00,0:00:00.00,Default,,0,0,0,,second\n",
              Events("WEBVTT\n\n00:01.000 --> 00:02.000\nfirst\n\n00:03.000 --> 00:04.000\nsecond\n"));
}

// Size.

TEST(ConvertSrtToAss, AHundredThousandCuesAreAllWritten) {
    std::string content;
    std::string expected = DefaultHead();
    for (int i = 0; i < 100'000; ++i) {
        const std::string second = std::string(i % 60 < 10 ? "0" : "") + std::to_string(i % 60);
        const std::string minute = std::string(i / 60 % 60 < 10 ? "0" : "") + std::to_string(i / 60 % 60);
        const std::string time = ":" + minute + ":" + second;
        const std::string hour = std::to_string(i / 3600);
        content += std::to_string(i + 1) + "\r\n" + hour + time + ",120 --> " + hour + time +
                   ",980\r\n<i>자막</i> " + std::to_string(i) + "\r\n\r\n";
        expected += "Dialogue: 0," + hour + time + ".12," + hour + time + ".98,Default,,0,0,0,,자막 " +
                    std::to_string(i) + "\n";
    }
    EXPECT_TRUE(expected == ConvertSrtToAss(content, SubtitleStyle{}));
}

TEST(ConvertSrtToAss, ATextOfAMillionTagsIsConverted) {
    std::string text;
    for (int i = 0; i < 1'000'000; ++i) {
        text += "<b>";
    }
    EXPECT_EQ(Event("x"), EventsOfText(text + "x"));
    EXPECT_EQ(Event("x" + std::string(1'000'000, '<')), EventsOfText("x" + std::string(1'000'000, '<')));
}

} // namespace
} // namespace brindlecast
