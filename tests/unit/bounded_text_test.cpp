#include "base/bounded_text.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>

namespace brindlecast {
namespace {

// How a process ends whose text does not fit.
bool EndedForInvalidParameter(int exitCode) {
#ifdef _WIN32
    return ::testing::ExitedWithCode(static_cast<int>(0xC0000417))(exitCode);
#else
    return ::testing::KilledBySignal(SIGABRT)(exitCode);
#endif
}

std::wstring Letters(std::size_t count) {
    return std::wstring(count, L'x');
}

TEST(FormatBounded, FormatsLikeTheFormatterWithoutALimit) {
    EXPECT_EQ(FormatBounded<32>(L"볼륨 %d%%", 55), L"볼륨 55%");
    EXPECT_EQ(FormatBounded<128>(L"자막: %s", L"한국어"), L"자막: 한국어");
    EXPECT_EQ(FormatBounded<1>(L""), L"");
}

TEST(FormatBounded, ATextThatLeavesRoomForItsTerminatorIsWhole) {
    EXPECT_EQ(FormatBounded<32>(L"%s", Letters(31)), Letters(31));
    EXPECT_EQ(FormatBounded<270>(L"&%d. %s", 1, Letters(265)), L"&1. " + Letters(265));
}

TEST(FormatBoundedDeathTest, ATextWithoutRoomForItsTerminatorEndsTheProcess) {
    EXPECT_EXIT((void)FormatBounded<32>(L"%s", Letters(32)), EndedForInvalidParameter, "");
    EXPECT_EXIT((void)FormatBounded<270>(L"&%d. %s", 1, Letters(266)), EndedForInvalidParameter, "");
    EXPECT_EXIT((void)FormatBounded<1>(L"x"), EndedForInvalidParameter, "");
}

TEST(FormatBoundedDeathTest, RoomIsCountedInUnitsOfThePlatform) {
    // A clef takes two units of UTF-16.
    constexpr std::size_t kUnits = sizeof(wchar_t) == 2 ? 2 : 1;
    EXPECT_EQ((FormatBounded<kUnits + 1>(L"%s", L"\U0001D11E")), L"\U0001D11E");
    EXPECT_EXIT((void)(FormatBounded<kUnits>(L"%s", L"\U0001D11E")), EndedForInvalidParameter, "");
}

} // namespace
} // namespace brindlecast
