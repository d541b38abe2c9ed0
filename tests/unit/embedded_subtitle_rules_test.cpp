#include "engine/embedded_subtitle_rules.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brindlecast {
namespace {

struct TrackName {
    std::wstring name;
    bool toolRefuses;
    bool grabberRefuses;
};

TEST(EmbeddedSubtitleRule, PicturesAreRefusedByTheirNames) {
    const std::vector<TrackName> names = {
        // The words alone.
        {L"pgs", true, true},
        {L"PGS", true, true},
        {L"hdmv", true, true},
        {L"HDMV", true, false},
        {L"dvdsub", true, true},
        {L"dvd_subtitle", true, false},
        // Anywhere in a name.
        {L"English [hdmv_pgs_subtitle]", true, true},
        {L"S: Commentary PGS 2", true, true},
        {L"HDMV text", true, false},
        {L"Korean [dvd_subtitle]", true, false},
        {L"xdvdsubx", true, true},
        {L"epgso", true, true},
        // The case counts.
        {L"Pgs", false, false},
        {L"pGS", false, false},
        {L"Hdmv", false, false},
        {L"DVDSUB", false, false},
        {L"Dvdsub", false, false},
        {L"DVD_SUBTITLE", false, false},
        // Parts of the words, and words apart.
        {L"pg", false, false},
        {L"p gs", false, false},
        {L"hdm v", false, false},
        {L"dvd_sub", false, false},
        {L"dvd subtitle", false, false},
        // Texts.
        {L"", false, false},
        {L"한국어 자막 [subrip] (kor)", false, false},
        {L"Japanese [ass]", false, false},
        {L"vobsub", false, false},
    };
    for (const TrackName& track : names) {
        EXPECT_EQ(track.toolRefuses, IsPictureTrackForTool(track.name)) << track.name.c_str();
        EXPECT_EQ(track.grabberRefuses, IsPictureTrackForGrabber(track.name)) << track.name.c_str();
    }
}

struct Format {
    std::wstring name;
    bool isAss;
};

TEST(EmbeddedSubtitleRule, AdvancedTextIsToldByTheName) {
    const std::vector<Format> formats = {
        {L"ass", true},
        {L"ASS", true},
        {L"ssa", true},
        {L"SSA", true},
        {L"일본어 자막 [ass]", true},
        {L"S: English, SSA", true},
        // A bare search: the word need not be one of its own.
        {L"Classic", true},
        {L"Message", true},
        {L"TASSEL", true},
        {L"MESSAGE", true},
        {L"Ass", false},
        {L"aSS", false},
        {L"Ssa", false},
        {L"sSA", false},
        {L"as s", false},
        {L"", false},
        {L"subrip", false},
        {L"한국어 자막 [subrip]", false},
    };
    for (const Format& format : formats) {
        EXPECT_EQ(format.isAss, IsAssTrack(format.name)) << format.name.c_str();
        EXPECT_EQ(format.isAss ? L"Brindlecast_embedded_sub.ass" : L"Brindlecast_embedded_sub.srt",
                  ExtractedFileName(format.name))
            << format.name.c_str();
    }
}

TEST(EmbeddedSubtitleRule, TheToolIsToldItsFilesInQuotes) {
    EXPECT_EQ(L"\"C:\\Program Files\\Brindlecast\\ffmpeg.exe\" -y -i \"D:\\영화\\한국어 100%s.mkv\" "
              L"-map 0:s:2 -c:s copy \"C:\\Temp\\Brindlecast_embedded_sub.srt\"",
              ExtractionCommandLine(L"C:\\Program Files\\Brindlecast\\ffmpeg.exe",
                                    L"D:\\영화\\한국어 100%s.mkv", 2,
                                    L"C:\\Temp\\Brindlecast_embedded_sub.srt"));
    EXPECT_EQ(L"\"\" -y -i \"\" -map 0:s:0 -c:s copy \"\"", ExtractionCommandLine(L"", L"", 0, L""));
    EXPECT_EQ(L"\"t\" -y -i \"f\" -map 0:s:2147483647 -c:s copy \"o\"",
              ExtractionCommandLine(L"t", L"f", 2147483647, L"o"));
}

} // namespace
} // namespace brindlecast
