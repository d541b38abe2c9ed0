#include "tests/filters/renderer/renderer_bench.h"

#include <gtest/gtest.h>

namespace brindlecast::test {
namespace {

class ColorTest : public ::testing::TestWithParam<PictureKind> {};

// Flat areas of every format, matrix and range come to the screen within 2 of what they were made from.
TEST_P(ColorTest, BarsOnScreen) {
    const PictureKind kind = GetParam();
    RendererBench bench(kind, kind.width, kind.height);
    bench.AttachWindow();
    bench.ShowPaused(MakePicture(kind, [&](int x, int) { return BarAt(x, kind.width); }));
    const int barWidth = kind.width / 8;
    EXPECT_LE(Distance(bench.WaitForColor(barWidth / 2, kind.height / 2, BarColors()[0]), BarColors()[0]), 2);
    const Image screen = bench.Screen();
    for (int bar = 0; bar < 8; ++bar) {
        for (const int y : {2, kind.height / 2, kind.height - 3}) {
            const Color seen = screen.At(bar * barWidth + barWidth / 2, y);
            EXPECT_LE(Distance(seen, BarColors()[static_cast<std::size_t>(bar)]), 2)
                << kind << " bar " << bar << " row " << y << " seen " << seen;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Formats, ColorTest,
    ::testing::Values(
        PictureKind{Format::Nv12, Matrix::Bt709, false}, PictureKind{Format::Nv12, Matrix::Bt601, false},
        PictureKind{Format::Nv12, Matrix::Bt709, true}, PictureKind{Format::Nv12, Matrix::Bt601, true},
        PictureKind{Format::P010, Matrix::Bt709, false}, PictureKind{Format::P010, Matrix::Bt2020, false},
        PictureKind{Format::P010, Matrix::Bt2020, true}, PictureKind{Format::Yv12, Matrix::Bt601, false},
        PictureKind{Format::Yv12, Matrix::Bt709, true}, PictureKind{Format::Yuy2, Matrix::Bt709, false},
        PictureKind{Format::Yuy2, Matrix::Bt601, true}, PictureKind{Format::Ayuv, Matrix::Bt709, false},
        PictureKind{Format::Ayuv, Matrix::Bt601, true}, PictureKind{Format::Rgb32},
        PictureKind{Format::Rgb32TopDown}));

} // namespace
} // namespace brindlecast::test
