#include "app/window_sizing.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>

namespace brindlecast {
namespace {

constexpr MainWindowMetrics kPlain{3, 32, 60};
constexpr WindowChrome kChrome{6, 98};
constexpr Size kFullHd{1920, 1080};
constexpr Rect kWork{0, 0, 1920, 1040};
constexpr int kMost = std::numeric_limits<int>::max();
constexpr int kLeast = std::numeric_limits<int>::min();

TEST(WindowChrome, IsTheFrameOnBothSidesAndTheBarsBesides) {
    EXPECT_EQ(ChromeOf(kPlain), kChrome);
    EXPECT_EQ(ChromeOf({4, 48, 90}), (WindowChrome{8, 146}));
}

TEST(WindowForVideo, TheChromeComesOnTopOfTheWantedPartOfTheVideo) {
    EXPECT_EQ(WindowForVideoPercent(kFullHd, 50, kChrome), (Size{966, 638}));
    EXPECT_EQ(WindowForVideoPercent(kFullHd, 25, kChrome), (Size{486, 368}));
    EXPECT_EQ(WindowForVideoPercent(kFullHd, 75, kChrome), (Size{1446, 908}));
    EXPECT_EQ(WindowForVideoPercent(kFullHd, 100, kChrome), (Size{1926, 1178}));
    EXPECT_EQ(WindowForVideoPercent(kFullHd, 150, kChrome), (Size{2886, 1718}));
    EXPECT_EQ(WindowForVideoPercent(kFullHd, 200, kChrome), (Size{3846, 2258}));
    EXPECT_EQ(WindowForVideoPercent(kFullHd, 50, {8, 146}), (Size{968, 686}));
}

TEST(WindowForVideo, PartsOfPixelsAreCutOff) {
    EXPECT_EQ(WindowForVideoPercent({853, 479}, 25, kChrome), (Size{213 + 6, 119 + 98}));
    EXPECT_EQ(WindowForVideoPercent({853, 479}, 75, kChrome), (Size{639 + 6, 359 + 98}));
    EXPECT_EQ(WindowForVideoPercent({3, 1}, 25, kChrome), (Size{0 + 6, 0 + 98}));
}

TEST(WindowForVideo, WithoutAVideoSizeThereIsNoWindowSize) {
    for (const Size video : {Size{0, 0}, Size{0, 1080}, Size{1920, 0}, Size{-1, 1080}, Size{1920, -1}}) {
        EXPECT_EQ(WindowForVideoPercent(video, 100, kChrome), std::nullopt)
            << video.width << "x" << video.height;
        EXPECT_EQ(WindowForMonitorPercent(video, 75, kWork, kChrome), std::nullopt)
            << video.width << "x" << video.height;
    }
    EXPECT_EQ(WindowForVideoPercent({1, 1}, 100, kChrome), (Size{7, 99}));
}

TEST(WindowForVideo, TheLargestVideoEndsAtTheRangeOfNumbers) {
    EXPECT_EQ(WindowForVideoPercent({30'000'000, 40'000'000}, 200, kChrome), (Size{60'000'006, 80'000'098}));
    EXPECT_EQ(WindowForVideoPercent({kMost, 1080}, 200, kChrome), (Size{kMost, 2258}));
    EXPECT_EQ(WindowForVideoPercent({1920, kMost}, 100, kChrome), (Size{1926, kMost}));
}

TEST(WindowForMonitor, TheHeightDecidesForAPictureThatIsLessWideThanItsRoom) {
    // 75 percent of the work area is 1440 by 780: 1434 by 682 for the picture, which is wider than 4 to 3.
    EXPECT_EQ(WindowForMonitorPercent({640, 480}, 75, kWork, kChrome), (Size{909 + 6, 682 + 98}));
    EXPECT_EQ(WindowForMonitorPercent(kFullHd, 30, kWork, kChrome), (Size{380 + 6, 214 + 98}));
    EXPECT_EQ(WindowForMonitorPercent(kFullHd, 45, kWork, kChrome), (Size{657 + 6, 370 + 98}));
    EXPECT_EQ(WindowForMonitorPercent(kFullHd, 60, kWork, kChrome), (Size{935 + 6, 526 + 98}));
    EXPECT_EQ(WindowForMonitorPercent(kFullHd, 75, kWork, kChrome), (Size{1212 + 6, 682 + 98}));
}

TEST(WindowForMonitor, TheWidthDecidesForAPictureThatIsWiderThanItsRoom) {
    EXPECT_EQ(WindowForMonitorPercent({1920, 800}, 60, kWork, kChrome), (Size{1146 + 6, 477 + 98}));
    EXPECT_EQ(WindowForMonitorPercent({1920, 800}, 75, kWork, kChrome), (Size{1434 + 6, 597 + 98}));
    EXPECT_EQ(WindowForMonitorPercent(kFullHd, 75, {0, 0, 1080, 1880}, kChrome), (Size{804 + 6, 452 + 98}));
}

TEST(WindowForMonitor, ThePartIsThatOfTheWorkAreaWhereverItStands) {
    EXPECT_EQ(WindowForMonitorPercent({640, 480}, 75, {-1920, -1080, 0, -40}, kChrome), (Size{915, 780}));
    // 75 percent of 1367 by 733 are 1025.25 by 549.75.
    EXPECT_EQ(WindowForMonitorPercent({640, 480}, 75, {0, 0, 1367, 733}, kChrome), (Size{601 + 6, 549}));
}

TEST(WindowForMonitor, ALargerScaleLeavesLessForThePicture) {
    EXPECT_EQ(WindowForMonitorPercent({640, 480}, 75, kWork, {8, 146}), (Size{845 + 8, 634 + 146}));
}

TEST(WindowForMonitor, AWorkAreaWithoutRoomForThePictureIsHarmless) {
    // Room of -3 by -68, of 0 by 0, of 24 by 0 and of 24 by -38.
    EXPECT_EQ(WindowForMonitorPercent(kFullHd, 30, {0, 0, 10, 100}, kChrome), (Size{3, 97}));
    EXPECT_EQ(WindowForMonitorPercent(kFullHd, 100, {0, 0, 6, 98}, kChrome), (Size{6, 98}));
    EXPECT_EQ(WindowForMonitorPercent(kFullHd, 100, {0, 0, 30, 98}, kChrome), (Size{6, 98}));
    EXPECT_EQ(WindowForMonitorPercent(kFullHd, 30, {0, 0, 100, 200}, kChrome), (Size{30, 111}));
    EXPECT_EQ(WindowForMonitorPercent({1, kMost}, 75, kWork, kChrome), (Size{0 + 6, 682 + 98}));
    EXPECT_EQ(WindowForMonitorPercent({kMost, 1}, 75, kWork, kChrome), (Size{1434 + 6, 0 + 98}));
    // Room of 20 by -50, in which the width decides.
    EXPECT_EQ(WindowForMonitorPercent({1, kMost}, 100, {0, 0, 26, 48}, kChrome), (Size{26, kMost}));
}

constexpr Rect kStart{360, 132, 1560, 948};

TEST(PlaceAroundCentre, TheCentreStays) {
    EXPECT_EQ(PlaceAroundCentre(kStart, {966, 638}, kWork), (Rect{477, 221, 1443, 859}));
    EXPECT_EQ(PlaceAroundCentre(kStart, {967, 639}, kWork), (Rect{477, 221, 1444, 860}));
}

TEST(PlaceAroundCentre, HalvesAreCutOffTowardsZero) {
    // The centre of -1001 and -500 is -750, that of 101 and 400 is 250.
    EXPECT_EQ(PlaceAroundCentre({-1001, 101, -500, 400}, {301, 201}, {-1920, 0, 0, 1040}),
              (Rect{-900, 150, -599, 351}));
}

TEST(PlaceAroundCentre, TheWindowStaysInsideTheWorkArea) {
    EXPECT_EQ(PlaceAroundCentre({0, 0, 200, 100}, {966, 638}, kWork), (Rect{0, 0, 966, 638}));
    EXPECT_EQ(PlaceAroundCentre({1800, 900, 1900, 1000}, {966, 638}, kWork), (Rect{954, 402, 1920, 1040}));
    EXPECT_EQ(PlaceAroundCentre({2000, 100, 2200, 200}, {600, 400}, {1920, 60, 3200, 900}),
              (Rect{1920, 60, 2520, 460}));
}

TEST(PlaceAroundCentre, ALargeWindowStandsOutAtTheLeftAndTheTop) {
    EXPECT_EQ(PlaceAroundCentre(kStart, {3846, 2258}, kWork), (Rect{-1926, -1218, 1920, 1040}));
    EXPECT_EQ(PlaceAroundCentre(kStart, {3846, 638}, kWork), (Rect{-1926, 221, 1920, 859}));
    EXPECT_EQ(PlaceAroundCentre(kStart, {966, 2258}, kWork), (Rect{477, -1218, 1443, 1040}));
    EXPECT_EQ(PlaceAroundCentre(kStart, {1920, 1040}, kWork), kWork);
}

TEST(PlaceAroundCentre, EdgesBeyondTheRangeOfNumbersEndThere) {
    EXPECT_EQ(PlaceAroundCentre({kMost - 2, kMost - 2, kMost, kMost}, {100, 100}, kWork),
              (Rect{1820, 940, 1920, 1040}));
    EXPECT_EQ(PlaceAroundCentre({kLeast, kLeast, kLeast + 2, kLeast + 2}, {100, 100}, kWork),
              (Rect{0, 0, 100, 100}));
    EXPECT_EQ(PlaceAroundCentre(kStart, {kMost, kMost}, {-1920, -1080, 0, -40}),
              (Rect{-kMost, kLeast, 0, -40}));
}

TEST(VideoArea, IsWhatTheFrameAndTheBarsLeave) {
    EXPECT_EQ(VideoAreaOf({1200, 816}, kPlain), (Size{1194, 718}));
    EXPECT_EQ(VideoAreaOf({1200, 816}, {4, 48, 90}), (Size{1192, 670}));
    EXPECT_EQ(VideoAreaOf({1, 1}, kPlain), (Size{-5, -97}));
}

TEST(VideoArea, IsTheSizeOfTheVideoInAWindowMadeForIt) {
    EXPECT_EQ(VideoAreaOf(WindowForVideoPercent(kFullHd, 100, kChrome).value(), kPlain), kFullHd);
}

TEST(VideoArea, TheMessageNamesWidthAndHeight) {
    EXPECT_EQ(VideoSizeText({1194, 718}), L"1194 × 718");
    EXPECT_EQ(VideoSizeText({-5, -97}), L"-5 × -97");
}

} // namespace
} // namespace brindlecast
