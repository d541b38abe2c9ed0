#include "base/display_scale.h"

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

class DisplayScaleTest : public ::testing::Test {
protected:
    void TearDown() override { SetSystemDpi(96); }
};

TEST_F(DisplayScaleTest, StartsAtOneForAnUnknownScreen) {
    EXPECT_EQ(SystemDpi(), 96);
    EXPECT_EQ(DisplayScale(), 1.0F);
    EXPECT_EQ(Scaled(60), 60);
}

TEST_F(DisplayScaleTest, IsOneAndAHalfAt144Dpi) {
    SetSystemDpi(144);
    EXPECT_EQ(DisplayScale(), 1.5F);
    EXPECT_EQ(Scaled(10), 15);
}

TEST_F(DisplayScaleTest, EachConstantIsTruncatedByItself) {
    SetSystemDpi(144);
    EXPECT_EQ(Scaled(3), 4);
    EXPECT_EQ(Scaled(3) + Scaled(3), 8);
    SetSystemDpi(120);
    EXPECT_EQ(Scaled(3), 3);
    EXPECT_EQ(Scaled(-3), -3);
}

} // namespace
} // namespace brindlecast
