#include "subtitles/external_subtitles.h"

#include <gtest/gtest.h>

#include <set>

namespace brindlecast {
namespace {

using Paths = std::vector<std::wstring>;

// Records every question; only the given paths exist.
struct FakeFiles {
    std::set<std::wstring> present;
    Paths asked;

    Paths Find(const wchar_t* mediaPath) {
        return FindExternalSubtitles(mediaPath, [this](const std::wstring& path) {
            asked.push_back(path);
            return present.contains(path);
        });
    }
};

const Paths kAllOfMovie = {
    L"m.srt",          L"m.ko.srt",       L"m.en.srt",       L"m.jp.srt",       L"m.ja.srt",
    L"m.cn.srt",       L"m.zh.srt",       L"m.korean.srt",   L"m.english.srt",  L"m.japanese.srt",
    L"m.chinese.srt",  L"m.ass",          L"m.ko.ass",       L"m.en.ass",       L"m.jp.ass",
    L"m.ja.ass",       L"m.cn.ass",       L"m.zh.ass",       L"m.korean.ass",   L"m.english.ass",
    L"m.japanese.ass", L"m.chinese.ass",  L"m.ssa",          L"m.ko.ssa",       L"m.en.ssa",
    L"m.jp.ssa",       L"m.ja.ssa",       L"m.cn.ssa",       L"m.zh.ssa",       L"m.korean.ssa",
    L"m.english.ssa",  L"m.japanese.ssa", L"m.chinese.ssa",  L"m.sub",          L"m.ko.sub",
    L"m.en.sub",       L"m.jp.sub",       L"m.ja.sub",       L"m.cn.sub",       L"m.zh.sub",
    L"m.korean.sub",   L"m.english.sub",  L"m.japanese.sub", L"m.chinese.sub",  L"m.smi",
    L"m.ko.smi",       L"m.en.smi",       L"m.jp.smi",       L"m.ja.smi",       L"m.cn.smi",
    L"m.zh.smi",       L"m.korean.smi",   L"m.english.smi",  L"m.japanese.smi", L"m.chinese.smi",
    L"m.vtt",          L"m.ko.vtt",       L"m.en.vtt",       L"m.jp.vtt",       L"m.ja.vtt",
    L"m.cn.vtt",       L"m.zh.vtt",       L"m.korean.vtt",   L"m.english.vtt",  L"m.japanese.vtt",
    L"m.chinese.vtt",
};

TEST(ExternalSubtitles, AsksForAllCandidatesInOrder) {
    FakeFiles files;
    EXPECT_EQ(Paths{}, files.Find(L"m.mkv"));
    EXPECT_EQ(66U, files.asked.size());
    EXPECT_EQ(kAllOfMovie, files.asked);
}

TEST(ExternalSubtitles, AHitDoesNotEndTheSearch) {
    FakeFiles files{{kAllOfMovie.begin(), kAllOfMovie.end()}, {}};
    EXPECT_EQ(kAllOfMovie, files.Find(L"m.mp4"));
}

TEST(ExternalSubtitles, EachCandidateIsFoundByItself) {
    for (const std::wstring& candidate : kAllOfMovie) {
        FakeFiles files{{candidate}, {}};
        EXPECT_EQ(Paths{candidate}, files.Find(L"m.mkv"));
        EXPECT_EQ(kAllOfMovie, files.asked);
    }
}

TEST(ExternalSubtitles, OfTwoTheEarlierCandidateWins) {
    for (std::size_t earlier = 0; earlier < kAllOfMovie.size(); ++earlier) {
        for (std::size_t later = earlier + 1; later < kAllOfMovie.size(); ++later) {
            FakeFiles files{{kAllOfMovie[later], kAllOfMovie[earlier]}, {}};
            EXPECT_EQ((Paths{kAllOfMovie[earlier], kAllOfMovie[later]}), files.Find(L"m.mkv"));
        }
    }
}

TEST(ExternalSubtitles, OtherSubtitleFilesAreNoCandidates) {
    FakeFiles files{
        {L"m.sami", L"m.idx", L"m.sup", L"m.txt", L"m.fr.srt", L"m.ko.en.srt", L"m.mkv.srt", L"other.srt"},
        {}};
    EXPECT_EQ(Paths{}, files.Find(L"m.mkv"));
}

TEST(ExternalSubtitles, TheNameKeepsItsLetters) {
    FakeFiles files{{L"Movie.srt", L"movie.srt", L"Movie.SRT", L"Movie.KO.srt"}, {}};
    EXPECT_EQ((Paths{L"Movie.srt"}), files.Find(L"Movie.MKV"));
}

TEST(ExternalSubtitles, AnyExtensionIsCutOffEvenASubtitles) {
    FakeFiles files{{L"m.srt", L"m.ko.srt"}, {}};
    EXPECT_EQ((Paths{L"m.srt", L"m.ko.srt"}), files.Find(L"m.srt"));
    EXPECT_EQ((Paths{L"m.srt", L"m.ko.srt"}), files.Find(L"m."));
}

TEST(ExternalSubtitles, ATaggedSubRipFileBeatsTheAssFile) {
    FakeFiles files{{L"m.mkv", L"m.ass", L"m.en.srt"}, {}};
    EXPECT_EQ((Paths{L"m.en.srt", L"m.ass"}), files.Find(L"m.mkv"));
}

TEST(ExternalSubtitles, ATaggedSmiFileBeatsThePlainVttFile) {
    FakeFiles files{{L"m.ko.smi", L"m.vtt"}, {}};
    EXPECT_EQ((Paths{L"m.ko.smi", L"m.vtt"}), files.Find(L"m.mkv"));
}

TEST(ExternalSubtitles, ThePlainFileBeatsTheKoreanOne) {
    FakeFiles files{{L"m.ko.srt", L"m.srt"}, {}};
    EXPECT_EQ((Paths{L"m.srt", L"m.ko.srt"}), files.Find(L"m.mkv"));
}

TEST(ExternalSubtitles, WithoutExtensionThePathIsCutInTheFolderName) {
    FakeFiles files{{L"C:\\a.srt", L"C:\\a.b\\movie.srt"}, {}};
    EXPECT_EQ((Paths{L"C:\\a.srt"}), files.Find(L"C:\\a.b\\movie"));
}

TEST(ExternalSubtitles, WithoutAnyPointThePathIsTheBase) {
    FakeFiles files{{L"C:\\films\\movie.ko.srt"}, {}};
    EXPECT_EQ((Paths{L"C:\\films\\movie.ko.srt"}), files.Find(L"C:\\films\\movie"));
}

TEST(ExternalSubtitles, ANameWithTwoPointsIsCutAtTheLast) {
    FakeFiles files{{L"영화.1080p.srt", L"영화.srt"}, {}};
    EXPECT_EQ((Paths{L"영화.1080p.srt"}), files.Find(L"영화.1080p.mkv"));
}

TEST(ExternalSubtitles, ANullPathHasNone) {
    FakeFiles files;
    EXPECT_EQ(Paths{}, files.Find(nullptr));
    EXPECT_EQ(Paths{}, files.asked);
}

TEST(ExternalSubtitles, AnEmptyPathAsksForBareExtensions) {
    FakeFiles files{{L".ko.srt"}, {}};
    EXPECT_EQ((Paths{L".ko.srt"}), files.Find(L""));
}

} // namespace
} // namespace brindlecast
