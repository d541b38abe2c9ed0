#include "ui/frame_cursor.h"

#include "base/display_scale.h"
#include "base/win32/unique_handle.h"

#include <gtest/gtest.h>

#include <utility>

namespace brindlecast {
namespace {

TEST(FrameCursor, EachZoneHasItsHitTestCode) {
    const std::pair<FrameZone, LRESULT> rows[] = {
        {FrameZone::Inside, 0},  {FrameZone::Left, 10},       {FrameZone::Right, 11},
        {FrameZone::Top, 12},    {FrameZone::TopLeft, 13},    {FrameZone::TopRight, 14},
        {FrameZone::Bottom, 15}, {FrameZone::BottomLeft, 16}, {FrameZone::BottomRight, 17},
    };
    for (const auto& [zone, code] : rows) {
        EXPECT_EQ(HitTestCode(zone), code) << static_cast<int>(zone);
    }
}

TEST(FrameCursor, EdgesAndCornersHaveASizingCursorAndNothingElseHas) {
    // By number, since the names of the system's cursors are no texts.
    const auto cursor = [](LRESULT code) {
        return reinterpret_cast<UINT_PTR>(SizingCursor(code));
    };
    constexpr UINT_PTR kNwse = 32642;
    constexpr UINT_PTR kNesw = 32643;
    constexpr UINT_PTR kWe = 32644;
    constexpr UINT_PTR kNs = 32645;
    const UINT_PTR expected[] = {kWe, kWe, kNs, kNwse, kNesw, kNs, kNesw, kNwse}; // from the left edge on
    for (LRESULT code = -2; code <= 21; ++code) {
        const bool sizes = code >= 10 && code <= 17;
        EXPECT_EQ(cursor(code), sizes ? expected[code - 10] : 0U) << code;
    }
}

class FrameZoneOnScreenTest : public ::testing::Test {
protected:
    void TearDown() override { SetSystemDpi(96); }
    [[nodiscard]] FrameZone At(int x, int y) const { return FrameZoneOnScreen(window.Get(), {x, y}); }

    // The frame of the system takes part in the outer rectangle.
    UniqueHwnd window{CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_THICKFRAME, -100, -50, 400, 300,
                                      nullptr, nullptr, nullptr, nullptr)};
};

TEST_F(FrameZoneOnScreenTest, ZonesGoByTheOuterRectangleOnTheScreen) {
    EXPECT_EQ(At(-100, -50), FrameZone::TopLeft);
    EXPECT_EQ(At(-95, 100), FrameZone::Left);
    EXPECT_EQ(At(-94, 100), FrameZone::Inside);
    EXPECT_EQ(At(294, 100), FrameZone::Inside);
    EXPECT_EQ(At(295, 100), FrameZone::Right);
    EXPECT_EQ(At(100, -45), FrameZone::Top);
    EXPECT_EQ(At(100, -44), FrameZone::Inside);
    EXPECT_EQ(At(100, 245), FrameZone::Bottom);
    EXPECT_EQ(At(299, 249), FrameZone::BottomRight);
}

TEST_F(FrameZoneOnScreenTest, TheBandIsScaled) {
    SetSystemDpi(144);
    EXPECT_EQ(At(-92, 100), FrameZone::Left);
    EXPECT_EQ(At(-91, 100), FrameZone::Inside);
    EXPECT_EQ(At(291, 100), FrameZone::Inside);
    EXPECT_EQ(At(292, 100), FrameZone::Right);
}

} // namespace
} // namespace brindlecast
