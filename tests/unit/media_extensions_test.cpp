#include "inspection/media_extensions.h"

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

TEST(MediaExtensions, HoldsItsFortyThreeEntries) {
    EXPECT_EQ(kMediaExtensions.size(), 43U);
    for (const auto* extension :
         {L".mp4",  L".mkv",  L".avi",  L".mov", L".wmv",  L".flv",  L".webm", L".m4v", L".f4v",
          L".ts",   L".m2ts", L".mts",  L".mpg", L".mpeg", L".vob",  L".3gp",  L".3g2", L".wtv",
          L".bdmv", L".mpls", L".iso",  L".ifo", L".mp3",  L".flac", L".wav",  L".aac", L".ogg",
          L".wma",  L".m4a",  L".opus", L".ape", L".wv",   L".tta",  L".tak",  L".dsf", L".dff",
          L".divx", L".xvid", L".rmvb", L".rm",  L".asf",  L".ogv",  L".ogm"}) {
        EXPECT_TRUE(IsMediaExtension(extension)) << std::string(extension, extension + 2);
    }
}

TEST(MediaExtensions, OtherCaseMissingPointAndSubtitlesAreOutside) {
    for (const auto* extension : {L"", L".", L"mkv", L".MKV", L".srt", L".mka", L".txt"}) {
        EXPECT_FALSE(IsMediaExtension(extension));
    }
}

} // namespace
} // namespace brindlecast
