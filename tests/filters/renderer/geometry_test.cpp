#include "tests/filters/renderer/renderer_bench.h"

#include <gtest/gtest.h>

namespace brindlecast::test {
namespace {

std::vector<std::uint8_t> Quadrants(const PictureKind& kind) {
    return MakePicture(kind, [&](int x, int y) { return QuadrantAt(x, y, kind.width, kind.height); });
}

// The four quadrants as they stand on the screen, from top left by rows.
std::vector<Color> SeenQuadrants(const RendererBench& bench) {
    const Image screen = bench.Screen();
    const int w = screen.Width();
    const int h = screen.Height();
    return {screen.At(w / 4, h / 4), screen.At(3 * w / 4, h / 4), screen.At(w / 4, 3 * h / 4),
            screen.At(3 * w / 4, 3 * h / 4)};
}

bool Near(const std::vector<Color>& seen, const std::vector<Color>& expected) {
    for (std::size_t i = 0; i < expected.size(); ++i) {
        if (Distance(seen[i], expected[i]) > 2) {
            return false;
        }
    }
    return true;
}

struct Turn {
    int rotation;
    bool flip;
    std::vector<Color> expected;
    LONG width;
    LONG height;
};

TEST(GeometryTest, RotationAndFlip) {
    PictureKind kind;
    RendererBench bench(kind, 300, 300);
    bench.AttachWindow();
    bench.ShowPaused(Quadrants(kind));
    const std::vector<Turn> turns{{0, false, {kRed, kGreen, kBlue, kWhite}, 320, 180},
                                  {90, false, {kBlue, kRed, kWhite, kGreen}, 180, 320},
                                  {180, false, {kWhite, kBlue, kGreen, kRed}, 320, 180},
                                  {270, false, {kGreen, kWhite, kRed, kBlue}, 180, 320},
                                  {0, true, {kGreen, kRed, kWhite, kBlue}, 320, 180},
                                  {90, true, {kRed, kBlue, kGreen, kWhite}, 180, 320},
                                  {180, true, {kBlue, kWhite, kRed, kGreen}, 320, 180},
                                  {270, true, {kWhite, kGreen, kBlue, kRed}, 180, 320}};
    for (const Turn& turn : turns) {
        ASSERT_EQ(bench.options->Flt_SetInt("rotation", turn.rotation), S_OK);
        ASSERT_EQ(bench.options->Flt_SetBool("flip", turn.flip), S_OK);
        LONG width = 0;
        LONG height = 0;
        ASSERT_EQ(bench.basicVideo->GetVideoSize(&width, &height), S_OK);
        EXPECT_EQ(width, turn.width);
        EXPECT_EQ(height, turn.height);
        ASSERT_EQ(bench.options->Flt_SetBool("cmd_redraw", true), S_OK);
        EXPECT_TRUE(PumpUntil([&] { return Near(SeenQuadrants(bench), turn.expected); }, 2000))
            << turn.rotation << " " << turn.flip << " " << SeenQuadrants(bench)[0];
    }
}

// Rotation and flip by themselves leave a paused picture as it is.
TEST(GeometryTest, OptionsDoNotRepaint) {
    PictureKind kind;
    RendererBench bench(kind, 300, 300);
    bench.AttachWindow();
    bench.ShowPaused(Quadrants(kind));
    const std::vector<Color> upright{kRed, kGreen, kBlue, kWhite};
    ASSERT_TRUE(PumpUntil([&] { return Near(SeenQuadrants(bench), upright); }));
    ASSERT_EQ(bench.options->Flt_SetInt("rotation", 180), S_OK);
    ASSERT_EQ(bench.options->Flt_SetBool("flip", true), S_OK);
    Pump(250);
    EXPECT_TRUE(Near(SeenQuadrants(bench), upright));
    ASSERT_EQ(bench.Push(Quadrants(kind), 400'000, 800'000), S_OK);
    ASSERT_TRUE(SUCCEEDED(bench.graph->Run()));
    EXPECT_TRUE(PumpUntil([&] {
        return Near(SeenQuadrants(bench), {kBlue, kWhite, kRed, kGreen});
    })) << "the next frame shows them";
}

TEST(GeometryTest, BlackOutsideThePicture) {
    PictureKind kind;
    RendererBench bench(kind, 400, 300);
    bench.AttachWindow();
    bench.ShowPaused(MakePicture(kind, kWhite));
    EXPECT_LE(Distance(bench.WaitForColor(200, 10, kWhite), kWhite), 2) << "all of the window at first";
    bench.Place(400, 300, {0, 37, 400, 262});
    EXPECT_EQ(bench.WaitForColor(200, 10, kBlack, 0), kBlack) << "nothing of the larger picture is left";
    EXPECT_EQ(bench.WaitForColor(200, 150, kWhite), kWhite);
    const Image screen = bench.Screen();
    EXPECT_EQ(screen.At(200, 36), kBlack);
    EXPECT_LE(Distance(screen.At(200, 37), kWhite), 2);
    EXPECT_LE(Distance(screen.At(200, 261), kWhite), 2);
    EXPECT_EQ(screen.At(200, 262), kBlack);
    EXPECT_LE(Distance(screen.At(0, 150), kWhite), 2);
    EXPECT_LE(Distance(screen.At(399, 150), kWhite), 2);
}

TEST(GeometryTest, PictureMayReachBeyondTheWindow) {
    PictureKind kind;
    RendererBench bench(kind, 300, 200);
    bench.AttachWindow();
    bench.Place(300, 200, {-100, -50, 200, 150}); // its middle stands at 50, 50
    bench.ShowPaused(Quadrants(kind));
    EXPECT_LE(Distance(bench.WaitForColor(20, 20, kRed), kRed), 2);
    const Image screen = bench.Screen();
    EXPECT_LE(Distance(screen.At(80, 20), kGreen), 2);
    EXPECT_LE(Distance(screen.At(20, 80), kBlue), 2);
    EXPECT_LE(Distance(screen.At(190, 140), kWhite), 2);
    EXPECT_EQ(screen.At(210, 160), kBlack);
}

struct Shape {
    int width, height, aspectX, aspectY, rotation;
    LONG shownWidth, shownHeight;
};

class CircleTest : public ::testing::TestWithParam<Shape> {};

// A circle stays one whatever the sample aspect and the rotation.
TEST_P(CircleTest, StaysRound) {
    const Shape shape = GetParam();
    PictureKind kind{Format::Nv12, Matrix::Bt601, false,        shape.width,
                     shape.height, shape.aspectX, shape.aspectY};
    RendererBench bench(kind, 400, 400);
    bench.AttachWindow();
    ASSERT_EQ(bench.options->Flt_SetInt("rotation", shape.rotation), S_OK);
    LONG width = 0;
    LONG height = 0;
    ASSERT_EQ(bench.basicVideo->GetVideoSize(&width, &height), S_OK);
    EXPECT_EQ(width, shape.shownWidth);
    EXPECT_EQ(height, shape.shownHeight);
    const double scale = std::min(400.0 / static_cast<double>(width), 400.0 / static_cast<double>(height));
    const LONG shownWidth = static_cast<LONG>(scale * static_cast<double>(width));
    const LONG shownHeight = static_cast<LONG>(scale * static_cast<double>(height));
    bench.Place(
        400, 400,
        {(400 - shownWidth) / 2, (400 - shownHeight) / 2, (400 + shownWidth) / 2, (400 + shownHeight) / 2});
    const double pixelAspect =
        shape.aspectX == 0 ? 1.0
                           : static_cast<double>(shape.aspectX) / shape.aspectY * shape.height / shape.width;
    bench.ShowPaused(MakePicture(kind, [&](int x, int y) {
        const double dx = (x + 0.5 - shape.width / 2.0) * pixelAspect;
        const double dy = y + 0.5 - shape.height / 2.0;
        const double radius = shape.height * 0.4;
        return dx * dx + dy * dy < radius * radius ? kWhite : kBlack;
    }));
    EXPECT_LE(Distance(bench.WaitForColor(200, 200, kWhite), kWhite), 2);
    const Image screen = bench.Screen();
    int across = 0;
    int down = 0;
    for (int i = 0; i < 400; ++i) {
        across += screen.At(i, 200).green > 128 ? 1 : 0;
        down += screen.At(200, i).green > 128 ? 1 : 0;
    }
    EXPECT_GT(across, 100);
    EXPECT_NEAR(across, down, 2);
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, CircleTest,
    ::testing::Values(Shape{320, 180, 0, 0, 0, 320, 180}, Shape{320, 180, 0, 0, 90, 180, 320},
                      Shape{360, 288, 16, 9, 0, 512, 288}, Shape{360, 288, 16, 9, 270, 288, 512},
                      Shape{352, 240, 4, 3, 0, 320, 240}, Shape{352, 240, 4, 3, 90, 240, 320}));

// A fine pattern that is made much smaller becomes its mean; every second pixel alone would be white or
// black.
TEST(GeometryTest, ReductionAverages) {
    PictureKind kind{Format::Rgb32, Matrix::Bt709, false, 1280, 720};
    RendererBench bench(kind, 200, 200);
    bench.AttachWindow();
    bench.Place(200, 200, {0, 0, 160, 90}); // by 8
    bench.ShowPaused(MakePicture(kind, [](int x, int) { return x % 8 < 4 ? Color{200, 200, 200} : kBlack; }));
    EXPECT_LE(Distance(bench.WaitForColor(80, 45, {100, 100, 100}, 4), {100, 100, 100}), 4);
}

} // namespace
} // namespace brindlecast::test
