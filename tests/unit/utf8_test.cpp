#include "base/utf8.h"

#include <gtest/gtest.h>

#include <string>

namespace brindlecast {
namespace {

TEST(Utf8, EmptyInputsGiveEmptyResults) {
    EXPECT_EQ(WideToUtf8(L""), "");
    EXPECT_EQ(Utf8ToWide(""), L"");
    EXPECT_EQ(Utf8ToWide(nullptr), L"");
}

TEST(Utf8, TextsGoThereAndBack) {
    const std::wstring text = L"C:\\영화\\한국어 영화 01화.mkv é \U0001F3AC";
    EXPECT_EQ(Utf8ToWide(WideToUtf8(text).c_str()), text);
    EXPECT_EQ(WideToUtf8(L"가"), "\xEA\xB0\x80");
}

TEST(Utf8, AnUnpairedSurrogateBecomesTheReplacementCharacter) {
    const std::wstring lone = {L'a', static_cast<wchar_t>(0xD800), L'b'};
    EXPECT_EQ(WideToUtf8(lone), "a\xEF\xBF\xBD"
                                "b");
}

TEST(Utf8, MalformedSequencesBecomeReplacementCharacters) {
    EXPECT_EQ(Utf8ToWide("a\xFF"
                         "b"),
              L"a\xFFFD"
              L"b");
    EXPECT_EQ(Utf8ToWide("\xC0\xAF"), L"\xFFFD\xFFFD");        // overlong
    EXPECT_EQ(Utf8ToWide("a\xEA\xB0"), L"a\xFFFD");            // ends inside a sequence
    EXPECT_EQ(Utf8ToWide("\xF5\x80").substr(0, 1), L"\xFFFD"); // above U+10FFFF
}

} // namespace
} // namespace brindlecast
