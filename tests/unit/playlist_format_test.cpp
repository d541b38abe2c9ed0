#include "library/playlist_format.h"

#include <gtest/gtest.h>

#include <limits>

namespace brindlecast {
namespace {

TEST(PlaylistFormat, SizesByPowersOf1024) {
    EXPECT_EQ(L"0 B", FormatFileSize(0));
    EXPECT_EQ(L"1023 B", FormatFileSize(1023));
    EXPECT_EQ(L"1.0 KB", FormatFileSize(1024));
    EXPECT_EQ(L"1.5 KB", FormatFileSize(1536));
    EXPECT_EQ(L"1024.0 KB", FormatFileSize(1'048'575));
    EXPECT_EQ(L"1.0 MB", FormatFileSize(1'048'576));
    EXPECT_EQ(L"1024.0 MB", FormatFileSize(1'073'741'823));
    EXPECT_EQ(L"1.0 GB", FormatFileSize(1'073'741'824));
    EXPECT_EQ(L"17179869184.0 GB", FormatFileSize(0xFFFF'FFFF'FFFF'FFFF));
}

TEST(PlaylistFormat, DurationsAreCutToSeconds) {
    EXPECT_EQ(L"--:--", FormatDuration(0.0));
    EXPECT_EQ(L"--:--", FormatDuration(-5.0));
    EXPECT_EQ(L"--:--", FormatDuration(std::numeric_limits<double>::quiet_NaN()));
    EXPECT_EQ(L"0:00", FormatDuration(0.9));
    EXPECT_EQ(L"0:59", FormatDuration(59.9));
    EXPECT_EQ(L"1:00", FormatDuration(60.0));
    EXPECT_EQ(L"59:59", FormatDuration(3599.9));
    EXPECT_EQ(L"1:00:00", FormatDuration(3600.0));
    EXPECT_EQ(L"25:01:01", FormatDuration(90061.0));
    EXPECT_FALSE(FormatDuration(std::numeric_limits<double>::infinity()).empty());
}

TEST(PlaylistFormat, DatesAreDaysInUtc) {
    EXPECT_EQ(L"01/01/01", FormatFileDate(0));
    // 2026-11-14 00:00:00 UTC and its last moment.
    constexpr FileTime kDay = 134'390'880'000'000'000;
    EXPECT_EQ(L"26/11/14", FormatFileDate(kDay));
    EXPECT_EQ(L"26/11/14", FormatFileDate(kDay + 863'999'999'999));
    EXPECT_EQ(L"26/11/15", FormatFileDate(kDay + 864'000'000'000));
    EXPECT_EQ(L"26/11/13", FormatFileDate(kDay - 1));
    EXPECT_FALSE(FormatFileDate(0xFFFF'FFFF'FFFF'FFFF).empty());
}

TEST(PlaylistFormat, CodecsAreJoinedByASlash) {
    EXPECT_EQ(L"H264/AAC", FormatCodecInfo(L"H264", L"AAC"));
    EXPECT_EQ(L"H264", FormatCodecInfo(L"H264", L""));
    EXPECT_EQ(L"/MP3", FormatCodecInfo(L"", L"MP3"));
    EXPECT_EQ(L"", FormatCodecInfo(L"", L""));
}

} // namespace
} // namespace brindlecast
