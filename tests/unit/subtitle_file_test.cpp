#include "subtitles/subtitle_file.h"

#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brindlecast {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

using testing::TemporaryFolder;

std::vector<std::string> LinesOf(std::string_view content) {
    std::vector<std::string> lines;
    while (!content.empty()) {
        lines.emplace_back(TakeSubtitleLine(content));
    }
    return lines;
}

using Lines = std::vector<std::string>;

TEST(SubtitleFile, IsReadByteForByte) {
    const TemporaryFolder folder;
    std::string bytes = "\xEF\xBB\xBF"
                        "1\r\n\0\x1A\xFF\n\r\n"s;
    EXPECT_EQ(bytes, ReadSubtitleFile(folder.Write(u8"한국어 자막.srt", bytes)));
}

TEST(SubtitleFile, AnEmptyFileIsAFile) {
    const TemporaryFolder folder;
    EXPECT_EQ(""s, ReadSubtitleFile(folder.Write(u8"empty.srt", "")));
}

TEST(SubtitleFile, SizesAroundThatOfABlockAreReadWhole) {
    const TemporaryFolder folder;
    for (const std::size_t size : {65535U, 65536U, 65537U, 1'000'000U}) {
        std::string bytes(size, '\0');
        for (std::size_t i = 0; i < size; ++i) {
            bytes[i] = static_cast<char>(i * 31 + i / 251);
        }
        const auto read = ReadSubtitleFile(folder.Write(u8"large.srt", bytes));
        ASSERT_TRUE(read.has_value());
        EXPECT_TRUE(bytes == *read) << size;
    }
}

TEST(SubtitleFile, WhatCantBeOpenedIsNothing) {
    const TemporaryFolder folder;
    EXPECT_EQ(std::nullopt, ReadSubtitleFile(folder.Path(u8"없음.srt")));
    EXPECT_EQ(std::nullopt, ReadSubtitleFile(folder.Path(u8"no/folder.srt")));
    EXPECT_EQ(std::nullopt, ReadSubtitleFile(L""));
    EXPECT_EQ(std::nullopt, ReadSubtitleFile(folder.Path(u8"")));
}

TEST(Utf8Mark, IsDroppedFromTheStart) {
    EXPECT_EQ("1\n", WithoutUtf8Mark("\xEF\xBB\xBF"
                                     "1\n"));
    EXPECT_EQ("", WithoutUtf8Mark("\xEF\xBB\xBF"));
}

TEST(Utf8Mark, IsDroppedOnceAndNowhereElse) {
    EXPECT_EQ("\xEF\xBB\xBFx", WithoutUtf8Mark("\xEF\xBB\xBF\xEF\xBB\xBFx"));
    EXPECT_EQ(" \xEF\xBB\xBF", WithoutUtf8Mark(" \xEF\xBB\xBF"));
    EXPECT_EQ("\n\xEF\xBB\xBF"
              "1",
              WithoutUtf8Mark("\n\xEF\xBB\xBF"
                              "1"));
}

TEST(Utf8Mark, PartsOfItAndOtherMarksStay) {
    EXPECT_EQ("", WithoutUtf8Mark(""));
    EXPECT_EQ("\xEF", WithoutUtf8Mark("\xEF"));
    EXPECT_EQ("\xEF\xBB", WithoutUtf8Mark("\xEF\xBB"));
    EXPECT_EQ("\xEF\xBB\xBE", WithoutUtf8Mark("\xEF\xBB\xBE"));
    EXPECT_EQ("\xFF\xFE"
              "1\0"sv,
              WithoutUtf8Mark("\xFF\xFE"
                              "1\0"sv));
    EXPECT_EQ("\xFE\xFF\0001"sv, WithoutUtf8Mark("\xFE\xFF\0001"sv));
}

TEST(SubtitleLines, EndAtLineFeeds) {
    EXPECT_EQ((Lines{"a", "b"}), LinesOf("a\nb"));
    EXPECT_EQ((Lines{"a", "b"}), LinesOf("a\nb\n"));
    EXPECT_EQ((Lines{"", "", "a"}), LinesOf("\n\na\n"));
    EXPECT_EQ(Lines{}, LinesOf(""));
}

TEST(SubtitleLines, LoseOneCarriageReturnAtTheirEnd) {
    EXPECT_EQ((Lines{"a", "b"}), LinesOf("a\r\nb\r"));
    EXPECT_EQ((Lines{"a\r", ""}), LinesOf("a\r\r\n\r\n"));
    EXPECT_EQ((Lines{"\ra\rb"}), LinesOf("\ra\rb\r\n"));
    EXPECT_EQ((Lines{"\r"}), LinesOf("\r\r"));
}

TEST(SubtitleLines, HoldAnyOtherByte) {
    EXPECT_EQ((Lines{"a\0b"s, "\v\f\x1A"}), LinesOf("a\0b\n\v\f\x1A"sv));
}

} // namespace
} // namespace brindlecast
