#include "chrome/double_click.h"

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

constexpr DoubleClickLimits kLimits{500, 4, 4};

TEST(DoubleClick, TwoPressesOnOnePixelInTimeCount) {
    EXPECT_TRUE(IsDoubleClick({10'000, {50, 50}}, {10'200, {50, 50}}, kLimits));
}

TEST(DoubleClick, TimeAndDistanceMustStayBelowTheirLimits) {
    EXPECT_TRUE(IsDoubleClick({10'000, {50, 50}}, {10'499, {53, 47}}, kLimits));
    EXPECT_FALSE(IsDoubleClick({10'000, {50, 50}}, {10'500, {50, 50}}, kLimits));
    EXPECT_FALSE(IsDoubleClick({10'000, {50, 50}}, {10'100, {54, 50}}, kLimits));
    EXPECT_FALSE(IsDoubleClick({10'000, {50, 50}}, {10'100, {50, 46}}, kLimits));
}

TEST(DoubleClick, AThirdPressRightAfterDoesNotCountAgain) {
    // Counting a double click sets the former tick to 0.
    EXPECT_FALSE(IsDoubleClick({0, {50, 50}}, {10'300, {50, 50}}, kLimits));
}

TEST(DoubleClick, TheTickMayWrapBetweenThePresses) {
    EXPECT_TRUE(IsDoubleClick({0xFFFFFFF0, {50, 50}}, {0x10, {50, 50}}, kLimits));
}

} // namespace
} // namespace brindlecast
