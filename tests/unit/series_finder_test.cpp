#include "inspection/series_finder.h"

#include "base/utf8.h"
#include "inspection/series_pattern.h"
#include "tests/support/library_fixture.h"

#include <algorithm>

namespace brindlecast::testing {
namespace {

using Paths = std::vector<std::wstring>;

constexpr SeriesMode kCode = SeriesMode::CodeNumber;
constexpr SeriesMode kEpisode = SeriesMode::EpisodeNumber;
constexpr SeriesMode kLetter = SeriesMode::Letter;

Paths Find(const std::wstring& name, std::initializer_list<const wchar_t*> entries) {
    FakeFolder folder;
    for (const wchar_t* entry : entries) {
        folder.entries.push_back({entry, false});
    }
    Paths names = FindSeriesFiles(folder, L"C:\\영화\\" + name, 100);
    for (std::wstring& path : names) {
        EXPECT_EQ(L"C:\\영화\\", path.substr(0, 6));
        path.erase(0, 6);
    }
    return names;
}

TEST(SeriesFinder, WhatIsNoMediaFileInAFolderHasNoSeries) {
    const FakeFolder folder;
    EXPECT_EQ(Paths{}, FindSeriesFiles(folder, L"film 1.mkv", 100)) << "no folder";
    EXPECT_EQ(Paths{}, FindSeriesFiles(folder, L"C:\\film 1", 100)) << "no point";
    EXPECT_EQ(Paths{}, FindSeriesFiles(folder, L"C:\\film 1.txt", 100));
    EXPECT_EQ(Paths{}, FindSeriesFiles(folder, L"C:\\film 1.", 100));
    EXPECT_EQ(Paths{}, FindSeriesFiles(folder, L"", 100));
    EXPECT_TRUE(folder.asked.empty());
}

TEST(SeriesFinder, AFolderThatCanNotBeReadGivesNothing) {
    FakeFolder folder;
    folder.readable = false;
    EXPECT_EQ(Paths{}, FindSeriesFiles(folder, L"C:\\a\\film 1.mkv", 100));
    EXPECT_EQ(Paths{L"C:\\a\\"}, folder.asked);
}

TEST(SeriesFinder, AFileWithoutNumberOrLetterStandsAloneAndNothingIsRead) {
    const FakeFolder folder;
    EXPECT_EQ(Paths{L"C:\\Movie.mkv"}, FindSeriesFiles(folder, L"C:\\Movie.mkv", 100));
    EXPECT_TRUE(folder.asked.empty());
}

TEST(SeriesFinder, SlashesSeparateToo) {
    FakeFolder folder;
    folder.entries = {{L"e2.mp4"}, {L"e1.MKV"}};
    EXPECT_EQ((Paths{L"C:/a/e1.MKV", L"C:/a/e2.mp4"}), FindSeriesFiles(folder, L"C:/a/e1.MKV", 100));
}

TEST(SeriesFinder, FoldersOtherKindsAndPointlessNamesArePassedOver) {
    FakeFolder folder;
    folder.entries = {{L"Show 3.mkv", true}, {L"Show 2.txt"}, {L"Show 2"}, {L"Show 1.mkv"}, {L"Show 2.AVI"}};
    EXPECT_EQ((Paths{L"d\\Show 1.mkv", L"d\\Show 2.AVI"}), FindSeriesFiles(folder, L"d\\Show 1.mkv", 100));
}

TEST(SeriesFinder, NumbersAreComparedAsNumbers) {
    EXPECT_EQ((Paths{L"Show 2.mkv", L"Show 9.mkv", L"Show 010.mkv", L"Show 11.mkv"}),
              Find(L"Show 9.mkv", {L"Show 010.mkv", L"Show 11.mkv", L"Show 2.mkv", L"Show 9.mkv"}));
}

TEST(SeriesFinder, OnlyTheFirstHundredThatTheSystemNamesAreTaken) {
    FakeFolder folder;
    for (int i = 150; i > 0; --i) {
        folder.entries.push_back({L"Show " + std::to_wstring(i) + L".mkv"});
    }
    const Paths found = FindSeriesFiles(folder, L"d\\Show 1.mkv", 5);
    ASSERT_EQ(100U, found.size()) << "whatever limit is given";
    EXPECT_EQ(L"d\\Show 51.mkv", found.front());
    EXPECT_EQ(L"d\\Show 150.mkv", found.back());
    EXPECT_EQ(100, folder.given);
}

TEST(SeriesFinder, CaseCountsInNamesAndNotInExtensions) {
    EXPECT_EQ((Paths{L"show 1.mkv", L"show 2.MKV"}),
              Find(L"show 1.mkv", {L"show 1.mkv", L"Show 2.mkv", L"show 2.MKV"}));
}

TEST(SeriesFinder, LetteredPartsAreFound) {
    EXPECT_EQ((Paths{L"Film A.mkv", L"Film B.avi"}),
              Find(L"Film A.mkv",
                   {L"Film B.avi", L"Film C Extended.mkv", L"Film a.mkv", L"Film AB.mkv", L"Film A.mkv"}));
}

TEST(SeriesFinder, CodesGoOnWithAnyTitle) {
    EXPECT_EQ((Paths{L"ABC-12 Foo.mkv", L"ABC-13 Bar.mp4"}),
              Find(L"ABC-12 Foo.mkv",
                   {L"ABC-13 Bar.mp4", L"ABC-14x.mkv", L"ABC-12 Foo.mkv", L"ABC-.mkv", L"AB-1.mkv"}));
}

TEST(SeriesFinder, ALetterBehindACodeVariesAndTheNumberStays) {
    EXPECT_EQ((Paths{L"ABC-123-A.mkv", L"ABC-123-B.mkv"}),
              Find(L"ABC-123-A.mkv", {L"ABC-123-B.mkv", L"ABC-124-A.mkv", L"ABC-123-A.mkv", L"ABC-123.mkv"}));
}

TEST(SeriesFinder, ZeroIsANumberToo) {
    EXPECT_EQ((Paths{L"Show 0.mkv", L"Show 1.mkv"}), Find(L"Show 0.mkv", {L"Show 1.mkv", L"Show 0.mkv"}));
}

struct PatternRow {
    const wchar_t* stem;
    SeriesMode mode;
    const wchar_t* prefix;
    const wchar_t* suffix;
};

TEST(SeriesPattern, WhatVariesInANameIsFoundByTheRules) {
    for (const PatternRow& row : std::initializer_list<PatternRow>{
             // Codes.
             {L"ABC-123", kCode, L"ABC-", L""},
             {L"AB-12-3", kCode, L"AB-12-", L""},
             {L"ABC-123 Title", kCode, L"ABC-", L""},
             {L"ABC-123.1080p", kCode, L"ABC-", L""},
             {L"x-1.", kCode, L"x-", L""},
             {L"720p-01", kCode, L"720p-", L""},
             {L"2019-11-05 Trip", kCode, L"2019-11-", L""},
             {L"ABC-123 B", kLetter, L"ABC-123 ", L""},
             {L"ABC-007_C", kLetter, L"ABC-007_", L""},
             {L"ABC-123 Disc B", kLetter, L"ABC-123 Disc ", L""},
             {L"*@999999999999-O", kLetter, L"*@999999999999-", L""}, // beyond 32 bits
             // Too short, empty runs, a hyphen at the end, letters behind the number.
             {L"a-1", kEpisode, L"a-", L""},
             {L"ABC-123A", kEpisode, L"ABC-", L"A"},
             {L"ABC-123-A", kLetter, L"ABC-123-", L""},
             {L"ABC--123", kEpisode, L"ABC--", L""},
             {L"ABC-123-", kEpisode, L"ABC-", L"-"},
             {L"[Sub] Show-03", kEpisode, L"[Sub] Show-", L""},
             // Episodes.
             {L"Show.S01E05.1080p", kEpisode, L"Show.S01E", L".1080p"},
             {L"Show.S01E05.1080p.WEB-DL.H264-GRP", kEpisode, L"Show.S01E", L".1080p.WEB-DL.H264-GRP"},
             {L"드라마 ep12", kEpisode, L"드라마 ep", L""},
             {L"드라마 제12화", kEpisode, L"드라마 제", L"화"},
             {L"드라마.E07.240105.720p", kEpisode, L"드라마.E", L".240105.720p"},
             {L"[자막] 만화 [07] (1080p)", kEpisode, L"[자막] 만화 [", L"] (1080p)"},
             {L"アニメ 第03話", kEpisode, L"アニメ 第", L"話"},
             {L"Show #4 special", kEpisode, L"Show #", L" special"},
             {L"Film 2019 part 2", kEpisode, L"Film 2019 part ", L""},
             {L"Movie 4K 3", kEpisode, L"Movie 4K ", L""},
             {L"Show 12", kEpisode, L"Show ", L""},
             {L"01", kEpisode, L"", L""},
             {L"Show 05 B", kLetter, L"Show 05 ", L""},
             {L"Show 1 part B", kLetter, L"Show 1 part ", L""},
             // A better token wins, an equal one further left.
             {L"Show 3 [07]", kEpisode, L"Show 3 [", L"]"},
             {L"Show 3 4", kEpisode, L"Show ", L" 4"},
             {L"Show 200 4", kEpisode, L"Show 200 ", L""},
             {L"Show 1000 4", kEpisode, L"Show 1000 ", L""},
             {L"(03) Show e4", kEpisode, L"(03) Show e", L""},
             // Letters alone.
             {L"Film A", kLetter, L"Film ", L""},
             {L"Film 1080p_B", kLetter, L"Film 1080p_", L""},
             {L"Film-Z", kLetter, L"Film-", L""},
         }) {
        const auto pattern = FindSeriesPattern(row.stem);
        ASSERT_TRUE(pattern.has_value()) << WideToUtf8(row.stem);
        EXPECT_EQ(row.mode, pattern->mode) << WideToUtf8(row.stem);
        EXPECT_EQ(std::wstring(row.prefix), pattern->prefix) << WideToUtf8(row.stem);
        EXPECT_EQ(std::wstring(row.suffix), pattern->suffix) << WideToUtf8(row.stem);
    }
}

TEST(SeriesPattern, NamesWithoutNumberOrPartLetterHaveNone) {
    for (const wchar_t* stem :
         {L"", L"Movie", L"Movie 1080p", L"Movie (2019)", L"Movie 1999 720p", L"Movie a", L"MovieA", L"A",
          L"Movie.A", L"영화 2160p HDR", L"4k", L"p7", L"480", L"7P"}) {
        EXPECT_FALSE(FindSeriesPattern(stem).has_value()) << WideToUtf8(stem);
    }
}

struct ScoreRow {
    const wchar_t* stem;
    std::size_t begin;
    std::int32_t number;
    std::int32_t score;
};

TEST(SeriesPattern, TokensAreScoredByWhatStandsAroundThem) {
    for (const ScoreRow& row : std::initializer_list<ScoreRow>{
             {L"x E05", 3, 5, 2},
             {L"x ep12", 4, 12, -3},
             {L"x EP12", 4, 12, -3},
             {L"x [07]", 3, 7, 7},
             {L"x (07)", 3, 7, 7},
             {L"x 12", 2, 12, 92},
             {L"x 123", 2, 123, 95},
             {L"x 12 and thirty characters behind...", 2, 12, 95},
             {L"x 12.............................", 2, 12, 92},  // 29 behind
             {L"x 12..............................", 2, 12, 95}, // 30 behind
             {L"x #3", 3, 3, 2},
             {L"x 0", 2, 0, 97},
             {L"x 1000", 2, 1000, 97},
             {L"x 99", 2, 99, 92},
             {L"x 100", 2, 100, 95},
             {L"x 999", 2, 999, 95},
             {L"x [07)", 3, 7, 92}, // brackets of different kinds
             {L"12]", 0, 12, 92},   // nothing before
             {L"e12", 1, 12, 2},
             {L"x E[7]", 4, 7, 7}, // brackets override
             {L"x 99999999999", 2, 2147483647, 97},
             {L"x 1899", 2, 1899, 97},
             {L"x 2100", 2, 2100, 97},
         }) {
        const auto token = FindEpisodeNumber(row.stem);
        ASSERT_TRUE(token.has_value()) << WideToUtf8(row.stem);
        EXPECT_EQ(row.begin, token->begin) << WideToUtf8(row.stem);
        EXPECT_EQ(row.number, token->number) << WideToUtf8(row.stem);
        EXPECT_EQ(row.score, token->score) << WideToUtf8(row.stem);
    }
}

TEST(SeriesPattern, YearsResolutionsAndNeighboursOfPAndKDoNotCount) {
    for (const wchar_t* stem :
         {L"x 480", L"x 720", L"x 1080", L"x 2160", L"x 4320", L"x 576", L"x 1440", L"x 1900", L"x 2099",
          L"x 2024", L"x 4k", L"x 4K", L"x p3", L"x P3", L"x 5p", L"x K5", L"x 00720", L"no digits"}) {
        EXPECT_FALSE(FindEpisodeNumber(stem).has_value()) << WideToUtf8(stem);
    }
}

TEST(SeriesPattern, PlacesInACodeSeries) {
    const SeriesPattern pattern{kCode, L"ABC-", L""};
    EXPECT_EQ(13, PlaceInSeries(pattern, L"ABC-13"));
    EXPECT_EQ(13, PlaceInSeries(pattern, L"ABC-0013 Bar"));
    EXPECT_EQ(13, PlaceInSeries(pattern, L"ABC-13-B"));
    EXPECT_EQ(13, PlaceInSeries(pattern, L"ABC-13가"));
    EXPECT_EQ(std::nullopt, PlaceInSeries(pattern, L"ABC-13x"));
    EXPECT_EQ(std::nullopt, PlaceInSeries(pattern, L"ABC-"));
    EXPECT_EQ(std::nullopt, PlaceInSeries(pattern, L"ABC- 13"));
    EXPECT_EQ(std::nullopt, PlaceInSeries(pattern, L"abc-13"));
}

TEST(SeriesPattern, PlacesInAnEpisodeSeries) {
    const SeriesPattern pattern{kEpisode, L"Show ", L" HD"};
    EXPECT_EQ(3, PlaceInSeries(pattern, L"Show 3 HD"));
    EXPECT_EQ(0, PlaceInSeries(pattern, L"Show 000 HD"));
    EXPECT_EQ(std::nullopt, PlaceInSeries(pattern, L"Show  HD"));
    EXPECT_EQ(std::nullopt, PlaceInSeries(pattern, L"Show 3"));
    EXPECT_EQ(std::nullopt, PlaceInSeries(pattern, L"Show 3a HD"));
    EXPECT_EQ(std::nullopt, PlaceInSeries(pattern, L"Show HD"));
    const SeriesPattern overlapping{kEpisode, L"aa", L"aa"};
    EXPECT_EQ(std::nullopt, PlaceInSeries(overlapping, L"aaa")) << "prefix and suffix don't share characters";
}

TEST(SeriesPattern, PlacesInALetterSeries) {
    const SeriesPattern pattern{kLetter, L"Film ", L""};
    EXPECT_EQ(L'A', PlaceInSeries(pattern, L"Film A"));
    EXPECT_EQ(L'Z', PlaceInSeries(pattern, L"Film Z"));
    EXPECT_EQ(std::nullopt, PlaceInSeries(pattern, L"Film a"));
    EXPECT_EQ(std::nullopt, PlaceInSeries(pattern, L"Film AB"));
    EXPECT_EQ(std::nullopt, PlaceInSeries(pattern, L"Film "));
    EXPECT_EQ(std::nullopt, PlaceInSeries(pattern, L"Film 1"));
}

} // namespace
} // namespace brindlecast::testing
