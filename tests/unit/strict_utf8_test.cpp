#include "base/strict_utf8.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace brindlecast {
namespace {

using namespace std::string_view_literals;

// Whether the conversion is refused in the way that callers look for.
bool Refused(std::string_view bytes) {
    try {
        static_cast<void>(StrictUtf8ToWide(bytes));
    } catch (const std::range_error& error) {
        EXPECT_STREQ("bad conversion", error.what());
        return true;
    }
    return false;
}

TEST(StrictUtf8, WellFormedTextsAreConverted) {
    EXPECT_EQ(L"", StrictUtf8ToWide(""));
    EXPECT_EQ(L"plain", StrictUtf8ToWide("plain"));
    EXPECT_EQ(L"\u00E9", StrictUtf8ToWide("\xC3\xA9"));
    EXPECT_EQ(L"한글 자막", StrictUtf8ToWide("\xED\x95\x9C\xEA\xB8\x80 \xEC\x9E\x90\xEB\xA7\x89"));
    EXPECT_EQ(L"a\U0001F3AC!", StrictUtf8ToWide("a\xF0\x9F\x8E\xAC!"));
}

TEST(StrictUtf8, TheFirstAndLastCodeOfEachLengthAreConverted) {
    EXPECT_EQ(L"\x7F", StrictUtf8ToWide("\x7F"));
    EXPECT_EQ(std::wstring(1, wchar_t{0x80}), StrictUtf8ToWide("\xC2\x80"));
    EXPECT_EQ(std::wstring(1, wchar_t{0x7FF}), StrictUtf8ToWide("\xDF\xBF"));
    EXPECT_EQ(std::wstring(1, wchar_t{0x800}), StrictUtf8ToWide("\xE0\xA0\x80"));
    EXPECT_EQ(std::wstring(1, wchar_t{0xD7FF}), StrictUtf8ToWide("\xED\x9F\xBF"));
    EXPECT_EQ(std::wstring(1, wchar_t{0xE000}), StrictUtf8ToWide("\xEE\x80\x80"));
    EXPECT_EQ(std::wstring(1, wchar_t{0xFFFF}), StrictUtf8ToWide("\xEF\xBF\xBF"));
    EXPECT_EQ(L"\U00010000", StrictUtf8ToWide("\xF0\x90\x80\x80"));
    EXPECT_EQ(L"\U0010FFFF", StrictUtf8ToWide("\xF4\x8F\xBF\xBF"));
}

TEST(StrictUtf8, ZeroBytesAreTextLikeOthers) {
    EXPECT_EQ(std::wstring({L'a', L'\0', L'b'}), StrictUtf8ToWide("a\0b"sv));
}

TEST(StrictUtf8, MalformedSequencesAreRefused) {
    EXPECT_TRUE(Refused("\x80"));             // no lead byte
    EXPECT_TRUE(Refused("a\xBFz"));           // nor here
    EXPECT_TRUE(Refused("\xC0\xAF"));         // overlong, two bytes
    EXPECT_TRUE(Refused("\xC1\xBF"));         //
    EXPECT_TRUE(Refused("\xE0\x9F\xBF"));     // overlong, three
    EXPECT_TRUE(Refused("\xF0\x8F\xBF\xBF")); // overlong, four
    EXPECT_TRUE(Refused("\xED\xA0\x80"));     // surrogates
    EXPECT_TRUE(Refused("\xED\xBF\xBF"));     //
    EXPECT_TRUE(Refused("\xF4\x90\x80\x80")); // above U+10FFFF
    EXPECT_TRUE(Refused("\xF5\x80\x80\x80")); //
    EXPECT_TRUE(Refused("\xFE"));             //
    EXPECT_TRUE(Refused("\xFF"));             //
    EXPECT_TRUE(Refused("\xC3z"));            // an ASCII byte within a sequence
    EXPECT_TRUE(Refused("\xEA\xB0z"));        //
    EXPECT_TRUE(Refused("\xF0\x9F\x8Ez"));    //
    EXPECT_TRUE(Refused("\xEA\xB0\xC0"));     // a lead byte within a sequence
    EXPECT_TRUE(Refused("\xC7\xD1\xB1\xDB")); // Korean in a code page
}

TEST(StrictUtf8, SequencesCutShortAreRefused) {
    EXPECT_TRUE(Refused("\xC3"));
    EXPECT_TRUE(Refused("ok\xEA"));
    EXPECT_TRUE(Refused("ok\xEA\xB0"));
    EXPECT_TRUE(Refused("\xF0\x9F"));
    EXPECT_TRUE(Refused("\xF0\x9F\x8E"));
}

TEST(StrictUtf8, OnlyPairedSurrogatesHaveAForm) {
    const auto high = static_cast<wchar_t>(0xD83C);
    const auto low = static_cast<wchar_t>(0xDFAC);
    EXPECT_TRUE(HasUtf8Form(L""));
    EXPECT_TRUE(HasUtf8Form(L"맑은 고딕"));
    EXPECT_TRUE(HasUtf8Form(std::wstring{high, low}));
    EXPECT_TRUE(HasUtf8Form(std::wstring{high, low, high, low, L'a'}));
    EXPECT_FALSE(HasUtf8Form(std::wstring{high}));
    EXPECT_FALSE(HasUtf8Form(std::wstring{L'a', low}));
    EXPECT_FALSE(HasUtf8Form(std::wstring{high, L'a'}));
    EXPECT_FALSE(HasUtf8Form(std::wstring{high, high, low}));
    EXPECT_FALSE(HasUtf8Form(std::wstring{low, high}));
    EXPECT_FALSE(HasUtf8Form(std::wstring{high, low, low}));
}

} // namespace
} // namespace brindlecast
