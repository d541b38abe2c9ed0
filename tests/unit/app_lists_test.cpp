#include "app/accelerators.h"
#include "app/recent_list.h"
#include "app/volume_step.h"

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

TEST(RecentList, ANewPathComesFirst) {
    std::vector<std::wstring> list{L"a", L"b"};
    PutInFront(list, L"c");
    EXPECT_EQ(list, (std::vector<std::wstring>{L"c", L"a", L"b"}));
}

TEST(RecentList, AKnownPathMovesAndCaseMatters) {
    std::vector<std::wstring> list{L"a", L"b", L"c"};
    PutInFront(list, L"b");
    EXPECT_EQ(list, (std::vector<std::wstring>{L"b", L"a", L"c"}));
    PutInFront(list, L"B");
    EXPECT_EQ(list, (std::vector<std::wstring>{L"B", L"b", L"a", L"c"}));
}

TEST(RecentList, HoldsTenEntries) {
    std::vector<std::wstring> list;
    for (int i = 0; i < 11; ++i) {
        PutInFront(list, std::to_wstring(i));
    }
    EXPECT_EQ(list.size(), 10U);
    EXPECT_EQ(list.front(), L"10");
    EXPECT_EQ(list.back(), L"1");
}

TEST(VolumeStep, MovesByATwentiethAndStaysInRange) {
    EXPECT_FLOAT_EQ(StepVolume(0.5F, true), 0.55F);
    EXPECT_FLOAT_EQ(StepVolume(0.5F, false), 0.45F);
    EXPECT_EQ(StepVolume(0.98F, true), 1.0F);
    EXPECT_EQ(StepVolume(0.02F, false), 0.0F);
}

TEST(KeyboardMap, OnlyKeysThatGoDownMayBeAccelerators) {
    EXPECT_TRUE(MayBeAccelerator(0x0100));  // WM_KEYDOWN
    EXPECT_TRUE(MayBeAccelerator(0x0104));  // WM_SYSKEYDOWN
    EXPECT_FALSE(MayBeAccelerator(0x0101)); // WM_KEYUP
    EXPECT_FALSE(MayBeAccelerator(0x0105)); // WM_SYSKEYUP
    EXPECT_FALSE(MayBeAccelerator(0x0102)); // WM_CHAR
    EXPECT_FALSE(MayBeAccelerator(0x0106)); // WM_SYSCHAR
    EXPECT_FALSE(MayBeAccelerator(0x0201)); // WM_LBUTTONDOWN
    EXPECT_FALSE(MayBeAccelerator(0));
}

} // namespace
} // namespace brindlecast
