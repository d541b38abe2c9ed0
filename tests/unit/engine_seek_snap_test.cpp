#include "engine/seek_snap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <vector>

namespace brindlecast {
namespace {

constexpr Time100ns kLargest = std::numeric_limits<Time100ns>::max();
constexpr Time100ns kSmallest = std::numeric_limits<Time100ns>::min();

// Keyframes at 1, 3 and 7 seconds.
const std::vector<Time100ns> kTable = {10'000'000, 30'000'000, 70'000'000};

TEST(SeekSnap, WithoutTableTheTargetStays) {
    EXPECT_EQ(12'345'678, SnapToKeyFrame({}, 12'345'678));
    EXPECT_EQ(-5, SnapToKeyFrame({}, -5));
}

TEST(SeekSnap, GoesToTheNearestKeyFrame) {
    EXPECT_EQ(10'000'000, SnapToKeyFrame(kTable, 19'999'999));
    EXPECT_EQ(30'000'000, SnapToKeyFrame(kTable, 20'000'001));
    EXPECT_EQ(30'000'000, SnapToKeyFrame(kTable, 49'999'999));
    EXPECT_EQ(70'000'000, SnapToKeyFrame(kTable, 50'000'001));
}

TEST(SeekSnap, HalfWayGoesToTheEarlierKeyFrame) {
    EXPECT_EQ(10'000'000, SnapToKeyFrame(kTable, 20'000'000));
    EXPECT_EQ(30'000'000, SnapToKeyFrame(kTable, 50'000'000));
}

TEST(SeekSnap, AKeyFrameIsItsOwnTarget) {
    for (const Time100ns keyFrame : kTable) {
        EXPECT_EQ(keyFrame, SnapToKeyFrame(kTable, keyFrame));
    }
}

TEST(SeekSnap, BeyondTheEndsGoesToTheFirstAndLast) {
    EXPECT_EQ(10'000'000, SnapToKeyFrame(kTable, 0));
    EXPECT_EQ(10'000'000, SnapToKeyFrame(kTable, kSmallest));
    EXPECT_EQ(70'000'000, SnapToKeyFrame(kTable, 70'000'001));
    EXPECT_EQ(70'000'000, SnapToKeyFrame(kTable, kLargest));
}

TEST(SeekSnap, OneKeyFrameDrawsEverythingToItself) {
    const std::vector<Time100ns> table = {20'000'000};
    for (const Time100ns target : {Time100ns{0}, Time100ns{20'000'000}, Time100ns{900'000'000}}) {
        EXPECT_EQ(20'000'000, SnapToKeyFrame(table, target));
    }
}

TEST(SeekSnap, AgreesWithALookAtEveryEntry) {
    std::uint32_t random = 5;
    const auto next = [&random] {
        random = random * 1664525U + 1013904223U;
        return static_cast<Time100ns>(random >> 12);
    };
    std::vector<Time100ns> table(1000);
    std::ranges::generate(table, next);
    std::ranges::sort(table);
    for (int i = 0; i < 5000; ++i) {
        const Time100ns target = next() - 1000;
        // The first of the nearest, as the table ascends.
        const auto nearest = std::ranges::min_element(
            table, {}, [target](Time100ns keyFrame) { return std::abs(keyFrame - target); });
        ASSERT_EQ(*nearest, SnapToKeyFrame(table, target)) << target;
    }
}

TEST(SeekSnap, DistancesBeyondTheSignedRangeAreCompared) {
    const std::vector<Time100ns> ends = {kSmallest, kLargest};
    EXPECT_EQ(kLargest, SnapToKeyFrame(ends, 5));
    EXPECT_EQ(kSmallest, SnapToKeyFrame(ends, -5));
}

TEST(SeekSnap, StepBackSkipsTheHalfSecondBeforeThePosition) {
    EXPECT_EQ(10'000'000, KeyFrameBefore(kTable, 35'000'000)); // 3.0 s is not before 3.0 s
    EXPECT_EQ(30'000'000, KeyFrameBefore(kTable, 35'000'001));
    EXPECT_EQ(std::nullopt, KeyFrameBefore(kTable, 15'000'000));
    EXPECT_EQ(10'000'000, KeyFrameBefore(kTable, 15'000'001));
    EXPECT_EQ(std::nullopt, KeyFrameBefore(kTable, 0));
    EXPECT_EQ(std::nullopt, KeyFrameBefore(kTable, kSmallest));
}

TEST(SeekSnap, StepOnSkipsTheHalfSecondAfterThePosition) {
    EXPECT_EQ(70'000'000, KeyFrameAfter(kTable, 25'000'000)); // 3.0 s is not after 3.0 s
    EXPECT_EQ(30'000'000, KeyFrameAfter(kTable, 24'999'999));
    EXPECT_EQ(10'000'000, KeyFrameAfter(kTable, 0));
    EXPECT_EQ(std::nullopt, KeyFrameAfter(kTable, 65'000'000));
    EXPECT_EQ(70'000'000, KeyFrameAfter(kTable, 64'999'999));
    EXPECT_EQ(std::nullopt, KeyFrameAfter(kTable, kLargest));
}

TEST(SeekSnap, RelativeSeeksStayInTheFile) {
    EXPECT_DOUBLE_EQ(15.0, RelativeSeekTarget(10.0, 5.0, 60.0));
    EXPECT_DOUBLE_EQ(0.0, RelativeSeekTarget(3.0, -5.0, 60.0));
    EXPECT_DOUBLE_EQ(60.0, RelativeSeekTarget(58.0, 5.0, 60.0));
}

TEST(SeekSnap, WithUnknownDurationRelativeSeeksGoToTheStart) {
    EXPECT_DOUBLE_EQ(0.0, RelativeSeekTarget(10.0, 5.0, 0.0));
    EXPECT_DOUBLE_EQ(0.0, RelativeSeekTarget(10.0, -5.0, 0.0));
}

TEST(SeekSnap, SecondsAreTruncatedToUnits) {
    EXPECT_EQ(15'000'000, SecondsToUnits(1.5));
    EXPECT_EQ(1, SecondsToUnits(0.00000019));
    EXPECT_EQ(-1, SecondsToUnits(-0.00000019));
    EXPECT_EQ(kLargest, SecondsToUnits(1e300));
    EXPECT_EQ(kSmallest, SecondsToUnits(-1e300));
    EXPECT_EQ(kLargest, SecondsToUnits(std::numeric_limits<double>::infinity()));
    EXPECT_EQ(0, SecondsToUnits(std::numeric_limits<double>::quiet_NaN()));
}

TEST(SeekSnap, PreviewShowsTwentyTimes) {
    std::vector<Time100ns> table;
    EXPECT_EQ(L"", KeyFramePreview(table));
    table = {0, 12'300'000};
    EXPECT_EQ(L"0.00, 1.23", KeyFramePreview(table));
    table.assign(20, 10'000'000);
    std::wstring expected = L"1.00";
    for (int i = 1; i < 20; ++i) {
        expected += L", 1.00";
    }
    EXPECT_EQ(expected, KeyFramePreview(table));
    table.push_back(20'000'000);
    EXPECT_EQ(expected + L", ...", KeyFramePreview(table));
}

} // namespace
} // namespace brindlecast
