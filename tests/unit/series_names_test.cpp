#include "base/utf8.h"
#include "inspection/series_finder.h"
#include "tests/support/library_fakes.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace brindlecast::testing {
namespace {

// Folders as users have them. Names are separated by "|"; the first is the file that is opened. Those that
// belong to its series stand in play order; a "!" marks what does not belong to it.
constexpr const wchar_t* kFolders[] = {
    // Western releases.
    L"Show.S01E01.mkv|Show.S01E02.mkv|Show.S01E10.mkv|!Show.S02E01.mkv|!Show.mkv",
    L"Show.S01E05.1080p.mkv|Show.S01E06.1080p.mkv|!Show.S01E06.720p.mkv",
    L"Show.S01E05.1080p.WEB-DL.DD5.1.H.264-GRP.mkv|Show.S01E06.1080p.WEB-DL.DD5.1.H.264-GRP.mkv",
    L"show.s02e03.hdtv.mp4|show.s02e04.hdtv.mp4|!Show.s02e05.hdtv.mp4",
    L"Show S01E01 Pilot.mkv|!Show S01E02 Second.mkv",
    L"Show - 01x02 - Title.avi|!Show - 01x03 - Title.avi|Show - 02x02 - Title.avi|!Show - 02x02 - Other.avi",
    L"Show Episode 1.mp4|Show Episode 2.mp4|Show Episode 11.mp4|!Show Episode Special.mp4",
    L"Show ep1.mkv|Show ep2.mkv|!Show ep2 end.mkv",
    L"Show EP07 END.mkv|Show EP08 END.mkv|!Show EP09.mkv",
    L"Show Ep.3.mkv|Show Ep.4.mkv|!Show Ep4.mkv",
    L"E01.mkv|E02.mkv|!e03.mkv",
    L"ep10.mp4|ep11.mp4|ep101.mp4",
    L"01.mkv|02.mkv|3.mkv|!04 extra.mkv",
    L"1.mp4|2.mp4|10.mp4|100.mp4",
    L"001 - Start.mkv|!002 - Middle.mkv",
    L"1080.mkv|!720.mkv|!01.mkv",
    L"720p.mkv|!1080p.mkv",
    L"Show #1.mkv|Show #2.mkv|!Show 3.mkv",
    L"Show #12 (2010).mkv|Show #13 (2010).mkv|!Show #14 (2011).mkv",
    L"Show part 1.mp4|Show part 2.mp4",
    L"Show pt3.mp4|Show pt4.mp4",
    L"Movie CD1.avi|Movie CD2.avi|!Movie CD.avi",
    L"Movie.2005.cd1.avi|Movie.2005.cd2.avi|!Movie.2006.cd1.avi",
    L"Movie (2019) Disc 1.mkv|Movie (2019) Disc 2.mkv|!Movie (2020) Disc 1.mkv",
    L"Movie (2019).mkv|!Movie (2020).mkv|!Movie (2019) 2.mkv",
    L"Movie.1999.1080p.BluRay.mkv|!Movie.2000.1080p.BluRay.mkv",
    L"Movie 1899.mkv|Movie 1900.mkv|Movie 2100.mkv|!Movie.mkv",
    L"Movie 2100.mkv|Movie 2101.mkv",
    L"Movie 2.mkv|Movie 3.mkv|!Movie.mkv|!Movie II.mkv",
    L"Movie 4K 3.mkv|Movie 4K 4.mkv|!Movie 8K 3.mkv",
    L"Movie 2160p HDR10.mkv|Movie 2160p HDR11.mkv|!Movie 1080p HDR10.mkv",
    L"Movie 576.mkv|!Movie 577.mkv",
    L"Movie 577.mkv|Movie 578.mkv|Movie 1440.mkv",
    L"Movie [1080p].mkv|!Movie [720p].mkv",
    L"Movie [07].mkv|Movie [08].mkv|!Movie (09).mkv|!Movie 10.mkv",
    L"Movie (3).mkv|Movie (4).mkv|!Movie [5].mkv",
    L"Movie (3) [1080p].mkv|Movie (4) [1080p].mkv|!Movie (4) [720p].mkv",
    L"Movie 3 [07].mkv|Movie 3 [08].mkv|!Movie 4 [07].mkv",
    L"Movie 3 4.mkv|Movie 4 4.mkv|!Movie 3 5.mkv",
    L"Movie 200 4.mkv|Movie 200 5.mkv|!Movie 201 4.mkv",
    L"Show 100.mkv|Show 101.mkv|Show 1000.mkv",
    L"Show 999.mkv|Show 1000.mkv",
    L"Show v2 05.mkv|Show v3 05.mkv|!Show v2 06.mkv",
    L"Show 05v2.mkv|Show 06v2.mkv|!Show 06.mkv|!Show 05v3.mkv",
    L"Show.105.avi|Show.106.avi|!Show.avi",
    L"Show S1 - 05.mkv|!Show S1 - 06.mkv|Show S2 - 05.mkv",
    L"Show_01_of_12.mkv|Show_02_of_12.mkv|!Show_01_of_13.mkv",
    L"Documentary 1of6.avi|Documentary 2of6.avi|!Documentary 1of7.avi",
    L"Lecture 3 (720p).mp4|Lecture 4 (720p).mp4",
    L"Lecture03.mp4|Lecture04.mp4|Lecture10.mp4|!Lecture.mp4|!lecture05.mp4",
    L"GOPR0123.MP4|GOPR0124.MP4|!GOPR.MP4|!GP010123.MP4",
    L"MVI_0001.AVI|MVI_0002.AVI|MVI_0010.AVI",
    L"VID_20200101_120000.mp4|VID_20200102_120000.mp4|!VID_20200101_120001.mp4",
    L"Trip 2018 day 1.mov|Trip 2018 day 2.mov|!Trip 2019 day 1.mov",
    L"Trip 0.mov|Trip 1.mov",
    L"00001.m2ts|00002.m2ts|00010.m2ts",
    L"00000.mpls|00001.mpls|00002.m2ts",
    L"VTS_01_1.VOB|!VTS_01_2.VOB|VTS_02_1.VOB",
    L"song 1.mp3|song 2.flac|song 3.m4a|!song 4.txt|!song 5.jpg",
    L"01 Track.mp3|!02 Other.mp3",
    L"Track 01.ogg|Track 02.opus|Track 03.wma",
    L"a1.ts|a2.ts|!b1.ts",
    L"x264 test 1.mkv|x264 test 2.mkv|!x265 test 1.mkv",
    L"Show.S01.E01.mkv|Show.S01.E02.mkv|!Show.S02.E01.mkv",
    L"Show S01 E01.mkv|Show S01 E02.mkv",
    L"Show s1e1.mkv|Show s1e2.mkv|!Show s2e1.mkv",
    L"[Grp] Show - 03 [720p].mkv|[Grp] Show - 04 [720p].mkv|![Grp] Show - 04 [1080p].mkv|!Show - 03 "
    L"[720p].mkv",
    L"[Grp] Show - 03 (1080p) [A1B2C3D4].mkv|!Show - 04 (1080p) [A1B2C3D4].mkv",
    L"[Grp] Show - 12v2.mkv|[Grp] Show - 13v2.mkv|!Show - 14.mkv",
    L"[Grp]_Show_07_(720p).mkv|[Grp]_Show_08_(720p).mkv",
    L"[Grp] Show [03][1080p].mkv|[Grp] Show [04][1080p].mkv",
    L"[Grp][Show][05][GB].mp4|[Grp][Show][06][GB].mp4|![Grp][Show][06][BIG5].mp4",
    L"Show OVA 1.mkv|Show OVA 2.mkv|!Show 1.mkv",
    L"Show NCOP1.mkv|!Show NCED1.mkv|!Show 1.mkv",
    L"Show SP1.mkv|!Show SP2.mkv",
    L"Show S01E01E02.mkv|Show S01E03E02.mkv|!Show S01E03E04.mkv",
    L"Show 1-2.mkv|Show 3-2.mkv|!Show 1-3.mkv",
    L"Show.1.2.3.mkv|Show.2.2.3.mkv|!Show.1.2.4.mkv",
    // Codes.
    L"ABC-123.mp4|ABC-124.mp4|ABC-1000.mkv|!ABD-123.mp4|!ABC-.mp4|!ABC.mp4",
    L"ABC-123 Title.mp4|ABC-124 Other.avi|!ABC-125x.mp4|!XABC-126.mp4",
    L"ABC-001.avi|ABC-2.avi|ABC-03.avi",
    L"AB-12-3.mp4|AB-12-4.mp4|!AB-13-3.mp4",
    L"ABC-123_HD.mp4|ABC-124_4K.mp4|ABC-125.mp4",
    L"ABC-123.1080p.mp4|ABC-124.720p.mp4",
    L"abc-1.mp4|abc-2.mp4|!ABC-3.mp4",
    L"S01-05.mkv|S01-06.mkv|!S02-05.mkv",
    L"2019-11-05.mp4|2019-11-06.mp4|!2019-12-05.mp4|!2020-11-05.mp4",
    L"2019-11-05 Trip.mp4|2019-11-06 Home.mp4",
    L"T28-557.mp4|T28-558.mp4|!T29-557.mp4",
    L"ABC-123A.mp4|ABC-124A.mp4|!ABC-123B.mp4|!ABC-124.mp4",
    L"ABC-123-A.mp4|ABC-123-B.mp4|ABC-123-C.mkv|!ABC-124-A.mp4|!ABC-123.mp4",
    L"ABC-123 A.mp4|ABC-123 B.mp4|!ABC-124 A.mp4",
    L"ABC-007_C.mp4|ABC-007_D.mp4|!ABC-7_D.mp4|!ABC-008_C.mp4",
    L"ABC-123-.mp4|ABC-124-.mp4|!ABC-125.mp4",
    L"ABC--123.mp4|ABC--124.mp4|!ABC-123.mp4",
    L"-123.mp4|-124.mp4|!123.mp4",
    L"A-1.mp4|A-2.mp4|!B-1.mp4",
    L"AB-1.mp4|AB-2.mp4|AB-3 x.mp4|!AC-1.mp4",
    L"x-1 B.mp4|x-1 C.mp4|!x-2 B.mp4",
    L"Show-03.mkv|Show-04.mkv|Show-05 end.mkv|!Show-05end.mkv",
    L"Show-Name-03.mkv|Show-Name-04.mkv|!Show-Other-03.mkv",
    L"Show Name-03.mkv|Show Name-04.mkv|!Show Name-05 end.mkv",
    // Letters.
    L"Film A.mkv|Film B.mkv|!Film C Extended.mkv|!Film a.mkv|!Film 1.mkv",
    L"Film-A.mkv|Film-B.avi|!Film_C.mkv",
    L"Film_A.mkv|Film_B.mkv|Film_Z.mkv|!Film_AA.mkv",
    L"Film A.mkv|!Film.mkv|!Film  B.mkv",
    L"FilmA.mkv|!FilmB.mkv",
    L"Film a.mkv|!Film b.mkv",
    L"Film 1080p A.mkv|Film 1080p B.mkv|!Film 720p A.mkv",
    L"Film (2019) A.mkv|Film (2019) B.mkv|!Film (2020) A.mkv",
    L"Film 05 B.mkv|Film 05 C.mkv|!Film 06 B.mkv|!Film 5 D.mkv",
    L"Film 5 Part B.mkv|Film 5 Part C.mkv|!Film 6 Part B.mkv",
    L"Film E05 A.mkv|Film E05 B.mkv|!Film E06 A.mkv",
    L"Film 2.A.mkv|Film 3.A.mkv|!Film 2.B.mkv",
    L"Disc A.iso|Disc B.iso|!Disc.iso",
    // Korean.
    L"드라마 01화.mp4|드라마 02화.mp4|드라마 10화.mp4|!드라마 예고.mp4",
    L"드라마 1회.mp4|드라마 2회.mp4|!드라마 2회 재방.mp4",
    L"드라마 제12화.mkv|드라마 제13화.mkv|!드라마 제13회.mkv",
    L"드라마.E07.240105.720p-NEXT.mp4|!드라마.E08.240106.720p-NEXT.mp4|드라마.E08.240105.720p-NEXT.mp4",
    L"드라마.E01.1080p.mp4|드라마.E02.1080p.mp4|드라마.E16.1080p.mp4",
    L"예능 240105.mp4|예능 240112.mp4|!예능.mp4",
    L"예능 제1편.mp4|예능 제2편.mp4",
    L"영화 1부.mkv|영화 2부.mkv|!영화 완결.mkv",
    L"영화 상.mkv|!영화 하.mkv",
    L"영화 2 (2021).mkv|영화 3 (2021).mkv|!영화 3 (2023).mkv",
    L"영화(2021).mkv|!영화(2022).mkv",
    L"[자막] 만화 [07] (1080p).mkv|[자막] 만화 [08] (1080p).mkv|!만화 [07] (1080p).mkv",
    L"만화 시즌2 05화.mkv|!만화 시즌2 06화.mkv|만화 시즌3 05화.mkv",
    L"만화 S2 E05.mkv|만화 S2 E06.mkv|!만화 S3 E05.mkv",
    L"강의 03강.mp4|강의 04강.mp4|강의 12강.mp4",
    L"강의_3주차_1교시.mp4|강의_4주차_1교시.mp4|!강의_3주차_2교시.mp4",
    L"한국어 영화 01화.mkv|한국어 영화 02화.avi|!한국어 영화 02.mkv",
    L"뉴스 9.mp4|뉴스 10.mp4|!뉴스 9 특집.mp4",
    L"무한 #3.mp4|무한 #4.mp4",
    L"드라마ep12.mp4|드라마ep13.mp4|!드라마 ep14.mp4",
    L"드라마 A.mp4|드라마 B.mp4|!드라마 가.mp4",
    L"드라마-A.mp4|드라마-B.mp4",
    L"스포츠 2024 1.mp4|스포츠 2024 2.mp4|!스포츠 2023 1.mp4",
    L"드라마 4k 1화.mp4|드라마 4k 2화.mp4|!드라마 8k 1화.mp4",
    // Japanese and Chinese.
    L"アニメ 第03話.mkv|アニメ 第04話.mkv|アニメ 第12話.mkv|!アニメ 総集編.mkv",
    L"アニメ 03.mkv|アニメ 04.mkv|!アニメ 03 予告.mkv",
    L"アニメ #05 「題」.mkv|アニメ #06 「題」.mkv|!アニメ #06 「別」.mkv",
    L"[組] アニメ - 05 [1080p].mkv|[組] アニメ - 06 [1080p].mkv",
    L"映画 前編.mkv|!映画 後編.mkv",
    L"映画 A.mkv|映画 B.mkv",
    L"第1話.mp4|第2話.mp4|第10話.mp4",
    L"連続ドラマ(3).mp4|連続ドラマ(4).mp4|!連続ドラマ3.mp4",
    L"剧集 第01集.mp4|剧集 第02集.mp4|!剧集 第02期.mp4",
    L"剧集.EP05.mp4|剧集.EP06.mp4|!剧集.E05.mp4",
    L"アニメ０３.mkv|!アニメ０４.mkv",
    // Odd ones.
    L"Movie.mkv|!Movie 2.mkv|!Other.mkv",
    L".mkv|!1.mkv",
    L"1..mkv|2..mkv|!1.mkv",
    L"Show 1 .mkv|Show 2 .mkv|!Show 1.mkv",
    L"Show 5.mkv|Show 99999999999.mkv|!Show.mkv",
    L"Show 0.mkv|Show 1.mkv|Show 02.mkv",
    L"Show 3.5.mkv|Show 4.5.mkv|!Show 3.6.mkv",
    L"Show 1.mkv|Show 2.MKV|Show 3.Mp4|!Show 4.srt",
    L"Show.Part.1.mkv|Show.Part.2.mkv|!Show.Part.One.mkv",
    L"1 2 3.mkv|2 2 3.mkv|!1 2 4.mkv",
    L"p1.mkv|!p2.mkv",
    L"Show 5p.mkv|!Show 6p.mkv",
    L"K2.mkv|!K3.mkv",
    L"E1 E2.mkv|E3 E2.mkv|!E1 E3.mkv",
    L"Show e5 and thirty more characters here ok.mkv|Show e6 and thirty more characters here ok.mkv",
    L"Show 5 and a very long title that goes on (2).mkv|Show 5 and a very long title that goes on (3).mkv|"
    L"!Show 6 and a very long title that goes on (2).mkv",
};

std::vector<std::wstring> Split(const std::wstring& text) {
    std::vector<std::wstring> parts;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find(L'|', at), text.size());
        parts.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return parts;
}

TEST(SeriesNames, FoldersOfManyKindsGiveTheirSeriesInOrder) {
    static_assert(std::size(kFolders) >= 150);
    for (const wchar_t* text : kFolders) {
        FakeFolder folder;
        std::vector<std::wstring> expected;
        for (std::wstring name : Split(text)) {
            const bool belongs = name.front() != L'!';
            if (!belongs) {
                name.erase(0, 1);
            }
            folder.entries.push_back({name});
            if (belongs) {
                expected.push_back(name);
            }
        }
        const std::wstring opened = expected.front();
        // In another order than that of playing.
        std::ranges::reverse(folder.entries);
        std::vector<std::wstring> found = FindSeriesFiles(folder, L"C:\\" + opened, 100);
        for (std::wstring& path : found) {
            path.erase(0, 3);
        }
        EXPECT_EQ(expected, found) << WideToUtf8(text);
    }
}

} // namespace
} // namespace brindlecast::testing
