#include "subtitles/subtitle_type.h"

#include <gtest/gtest.h>

#include <utility>

namespace brindlecast {
namespace {

TEST(SubtitleType, TheValuesAreFixed) {
    EXPECT_EQ(0, static_cast<int>(SubtitleType::Unknown));
    EXPECT_EQ(1, static_cast<int>(SubtitleType::SubRip));
    EXPECT_EQ(2, static_cast<int>(SubtitleType::Ass));
    EXPECT_EQ(3, static_cast<int>(SubtitleType::Ssa));
    EXPECT_EQ(4, static_cast<int>(SubtitleType::Sub));
    EXPECT_EQ(5, static_cast<int>(SubtitleType::Sami));
    EXPECT_EQ(6, static_cast<int>(SubtitleType::WebVtt));
    EXPECT_EQ(4U, sizeof(SubtitleType));
}

TEST(SubtitleType, EachKnownExtensionHasItsType) {
    const std::pair<const wchar_t*, int> kTable[] = {
        {L"srt", 1}, {L"ass", 2}, {L"ssa", 3}, {L"sub", 4}, {L"smi", 5}, {L"sami", 5}, {L"vtt", 6},
    };
    for (const auto& [extension, type] : kTable) {
        EXPECT_EQ(type, static_cast<int>(SubtitleTypeOf(std::wstring(L"C:\\영화\\자막.") + extension)));
    }
}

TEST(SubtitleType, CapitalsMakeNoDifference) {
    EXPECT_EQ(SubtitleType::SubRip, SubtitleTypeOf(L"a.SRT"));
    EXPECT_EQ(SubtitleType::Ass, SubtitleTypeOf(L"a.AsS"));
    EXPECT_EQ(SubtitleType::Ssa, SubtitleTypeOf(L"a.SSA"));
    EXPECT_EQ(SubtitleType::Sub, SubtitleTypeOf(L"a.Sub"));
    EXPECT_EQ(SubtitleType::Sami, SubtitleTypeOf(L"a.SMI"));
    EXPECT_EQ(SubtitleType::Sami, SubtitleTypeOf(L"a.Sami"));
    EXPECT_EQ(SubtitleType::WebVtt, SubtitleTypeOf(L"a.vTT"));
}

TEST(SubtitleType, LettersThatOnlyResembleTheExtensionDontCount) {
    EXPECT_EQ(SubtitleType::Unknown, SubtitleTypeOf(L"a.SM\u0130")); // capital I with a point
    EXPECT_EQ(SubtitleType::Unknown, SubtitleTypeOf(L"a.sm\u0131")); // small i without
    EXPECT_EQ(SubtitleType::Unknown, SubtitleTypeOf(L"a.\u017Frt")); // long s
    EXPECT_EQ(SubtitleType::Unknown, SubtitleTypeOf(L"a.\uFF33\uFF32\uFF34"));
}

TEST(SubtitleType, OtherExtensionsAreUnknown) {
    for (const wchar_t* path :
         {L"a.idx", L"a.sup", L"a.txt", L"a.srt2", L"a.sr", L"a.srtx", L"a.mkv", L"a.자막"}) {
        EXPECT_EQ(SubtitleType::Unknown, SubtitleTypeOf(path));
    }
}

TEST(SubtitleType, TheExtensionIsComparedWhole) {
    EXPECT_EQ(SubtitleType::Unknown, SubtitleTypeOf(L"a.srt "));
    EXPECT_EQ(SubtitleType::Unknown, SubtitleTypeOf(L"a. srt"));
    EXPECT_EQ(SubtitleType::Unknown, SubtitleTypeOf(std::wstring(L"a.srt") + L'\0'));
}

TEST(SubtitleType, WithoutAPointOrBehindItThereIsNone) {
    EXPECT_EQ(SubtitleType::Unknown, SubtitleTypeOf(L""));
    EXPECT_EQ(SubtitleType::Unknown, SubtitleTypeOf(L"srt"));
    EXPECT_EQ(SubtitleType::Unknown, SubtitleTypeOf(L"C:\\films\\srt"));
    EXPECT_EQ(SubtitleType::Unknown, SubtitleTypeOf(L"a."));
    EXPECT_EQ(SubtitleType::Unknown, SubtitleTypeOf(L"a.srt."));
}

TEST(SubtitleType, TheLastPointOfTheWholePathCounts) {
    EXPECT_EQ(SubtitleType::Ass, SubtitleTypeOf(L"movie.srt.ass"));
    EXPECT_EQ(SubtitleType::SubRip, SubtitleTypeOf(L".srt"));
    EXPECT_EQ(SubtitleType::Unknown, SubtitleTypeOf(L"C:\\season.srt\\movie"));
    EXPECT_EQ(SubtitleType::WebVtt, SubtitleTypeOf(L"C:\\season.srt\\movie.vtt"));
}

} // namespace
} // namespace brindlecast
