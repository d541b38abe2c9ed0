#include "app/overlay_fade.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace brindlecast {
namespace {

constexpr FadeTimes kSecond{5000, 1000, 300};

void ExpectStep(const FadeStep& step, FadeAction action, float opacity) {
    EXPECT_EQ(step.action, action);
    EXPECT_NEAR(step.opacity, opacity, 1e-6F);
}

TEST(OverlayFade, NothingIsDrawnDuringTheHold) {
    ExpectStep(AdvanceFade(kSecond, 5000, 1.0F), FadeAction::Keep, 1.0F);
    ExpectStep(AdvanceFade(kSecond, 5016, 1.0F), FadeAction::Keep, 1.0F);
    ExpectStep(AdvanceFade(kSecond, 5999, 1.0F), FadeAction::Keep, 1.0F);
    // Not even when the opacity is another: the hold leaves it alone.
    ExpectStep(AdvanceFade(kSecond, 5999, 0.25F), FadeAction::Keep, 0.25F);
}

TEST(OverlayFade, TheFadeIsALineFromTheEndOfTheHold) {
    ExpectStep(AdvanceFade(kSecond, 6000, 1.0F), FadeAction::Keep, 1.0F);
    ExpectStep(AdvanceFade(kSecond, 6030, 1.0F), FadeAction::Draw, 0.9F);
    ExpectStep(AdvanceFade(kSecond, 6075, 0.9F), FadeAction::Draw, 0.75F);
    ExpectStep(AdvanceFade(kSecond, 6150, 0.75F), FadeAction::Draw, 0.5F);
    ExpectStep(AdvanceFade(kSecond, 6225, 0.5F), FadeAction::Draw, 0.25F);
    ExpectStep(AdvanceFade(kSecond, 6299, 0.25F), FadeAction::Draw, 1.0F / 300.0F);
}

TEST(OverlayFade, AChangeOfAHundredthIsNotDrawn) {
    ExpectStep(AdvanceFade(kSecond, 6003, 1.0F), FadeAction::Keep, 1.0F);
    ExpectStep(AdvanceFade(kSecond, 6004, 1.0F), FadeAction::Draw, 1.0F - 4.0F / 300.0F);
    ExpectStep(AdvanceFade(kSecond, 6151, 0.5F), FadeAction::Keep, 0.5F);
    ExpectStep(AdvanceFade(kSecond, 6154, 0.5F), FadeAction::Draw, 1.0F - 154.0F / 300.0F);
}

TEST(OverlayFade, ItEndsExactlyWithHoldAndFade) {
    EXPECT_NE(AdvanceFade(kSecond, 6299, 0.0F).action, FadeAction::End);
    EXPECT_EQ(AdvanceFade(kSecond, 6300, 0.0F).action, FadeAction::End);
    EXPECT_EQ(AdvanceFade(kSecond, 6301, 1.0F).action, FadeAction::End) << "also when nothing was drawn";
    EXPECT_EQ(AdvanceFade(kSecond, 4999, 1.0F).action, FadeAction::End) << "the counter went once around";
}

TEST(OverlayFade, TheTickCounterMayStartOver) {
    const FadeTimes times{std::numeric_limits<std::uint32_t>::max() - 499, 1000, 300}; // 500 ms before 0
    ExpectStep(AdvanceFade(times, std::numeric_limits<std::uint32_t>::max(), 1.0F), FadeAction::Keep, 1.0F);
    ExpectStep(AdvanceFade(times, 0, 1.0F), FadeAction::Keep, 1.0F);
    ExpectStep(AdvanceFade(times, 499, 1.0F), FadeAction::Keep, 1.0F);
    ExpectStep(AdvanceFade(times, 650, 1.0F), FadeAction::Draw, 0.5F);
    EXPECT_NE(AdvanceFade(times, 799, 0.5F).action, FadeAction::End);
    EXPECT_EQ(AdvanceFade(times, 800, 0.5F).action, FadeAction::End);
}

TEST(OverlayFade, AMessageInTheFadeOfAnotherHasItsWholeHold) {
    const FadeStep first = AdvanceFade(kSecond, 6150, 1.0F);
    ASSERT_FLOAT_EQ(first.opacity, 0.5F);
    // Shown at that moment, with full opacity.
    const FadeTimes second{6150, 1500, 300};
    ExpectStep(AdvanceFade(second, 6300, 1.0F), FadeAction::Keep, 1.0F);
    ExpectStep(AdvanceFade(second, 7649, 1.0F), FadeAction::Keep, 1.0F);
    ExpectStep(AdvanceFade(second, 7800, 1.0F), FadeAction::Draw, 0.5F);
    EXPECT_EQ(AdvanceFade(second, 7950, 0.5F).action, FadeAction::End);
}

TEST(OverlayFade, AMessageWithoutAHoldFadesAtOnce) {
    const FadeTimes times{100, 0, 300};
    ExpectStep(AdvanceFade(times, 100, 1.0F), FadeAction::Keep, 1.0F);
    ExpectStep(AdvanceFade(times, 250, 1.0F), FadeAction::Draw, 0.5F);
    EXPECT_EQ(AdvanceFade(times, 400, 0.5F).action, FadeAction::End);
}

TEST(OverlayFade, ATimerOfSixteenMillisecondsDrawsNineteenSteps) {
    float opacity = 1.0F;
    int drawn = 0;
    for (std::uint32_t now = 5012;; now += 16) { // meets the fade 4 ms after its begin
        const FadeStep step = AdvanceFade(kSecond, now, opacity);
        if (step.action == FadeAction::End) {
            break;
        }
        if (step.action == FadeAction::Draw) {
            EXPECT_GE(now, 6000U);
            EXPECT_LT(step.opacity, opacity);
            opacity = step.opacity;
            ++drawn;
        }
    }
    EXPECT_EQ(drawn, 19);
    // A faster timer does not draw more than every hundredth.
    opacity = 1.0F;
    drawn = 0;
    for (std::uint32_t now = 5000; now < 6300; ++now) {
        const FadeStep step = AdvanceFade(kSecond, now, opacity);
        opacity = step.opacity;
        drawn += step.action == FadeAction::Draw ? 1 : 0;
    }
    EXPECT_LE(drawn, 99);
}

} // namespace
} // namespace brindlecast
