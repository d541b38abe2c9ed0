#include "tests/support/frame_mark.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <vector>

namespace brindlecast::testing {
namespace {

struct Bgra {
    Bgra(int imageWidth, int imageHeight, Rgb colour = {0, 0, 0})
        : width(imageWidth), height(imageHeight), bytes(static_cast<std::size_t>(width) * height * 4) {
        for (std::size_t i = 0; i < bytes.size(); i += 4) {
            bytes[i] = colour.blue;
            bytes[i + 1] = colour.green;
            bytes[i + 2] = colour.red;
        }
    }
    [[nodiscard]] BgraView View() const { return {bytes.data(), width, height, std::ptrdiff_t{width} * 4}; }
    [[nodiscard]] PixelRect Whole() const { return {0, 0, width, height}; }
    [[nodiscard]] std::uint8_t* At(int x, int y) {
        return bytes.data() + (static_cast<std::size_t>(y) * width + x) * 4;
    }
    int width;
    int height;
    std::vector<std::uint8_t> bytes;
};

Bgra FromRgb(const std::vector<std::uint8_t>& rgb, int width, int height) {
    Bgra image(width, height);
    for (std::size_t i = 0, j = 0; i < rgb.size(); i += 3, j += 4) {
        image.bytes[j] = rgb[i + 2];
        image.bytes[j + 1] = rgb[i + 1];
        image.bytes[j + 2] = rgb[i];
    }
    return image;
}

// A frame of half-grey with mark and patches.
Bgra Marked(int width, int height, std::uint16_t number) {
    std::vector<std::uint8_t> rgb(static_cast<std::size_t>(width) * height * 3, 90);
    const Rgb24View view{rgb.data(), width, height, std::ptrdiff_t{width} * 3};
    DrawFrameMark(view, number);
    DrawColourPatches(view);
    return FromRgb(rgb, width, height);
}

// Scales `source` by area mean or bilinear into the rectangle of `target`.
void ScaleInto(Bgra& target, const PixelRect& rect, Bgra& source) {
    const double stepX = static_cast<double>(source.width) / rect.width;
    const double stepY = static_cast<double>(source.height) / rect.height;
    for (int y = 0; y < rect.height; ++y) {
        for (int x = 0; x < rect.width; ++x) {
            const double sourceX = std::clamp((x + 0.5) * stepX - 0.5, 0.0, source.width - 1.0);
            const double sourceY = std::clamp((y + 0.5) * stepY - 0.5, 0.0, source.height - 1.0);
            const int left = static_cast<int>(sourceX);
            const int top = static_cast<int>(sourceY);
            const int right = std::min(left + 1, source.width - 1);
            const int bottom = std::min(top + 1, source.height - 1);
            const double fx = sourceX - left;
            const double fy = sourceY - top;
            for (int c = 0; c < 3; ++c) {
                const double upper = source.At(left, top)[c] * (1 - fx) + source.At(right, top)[c] * fx;
                const double lower = source.At(left, bottom)[c] * (1 - fx) + source.At(right, bottom)[c] * fx;
                target.At(rect.left + x, rect.top + y)[c] =
                    static_cast<std::uint8_t>(std::lround(upper * (1 - fy) + lower * fy));
            }
        }
    }
}

void ForEachChannel(Bgra& image, const std::function<double(double)>& change) {
    for (std::size_t i = 0; i < image.bytes.size(); ++i) {
        if (i % 4 != 3) {
            image.bytes[i] =
                static_cast<std::uint8_t>(std::clamp(std::lround(change(image.bytes[i])), 0L, 255L));
        }
    }
}

Bgra Blurred(Bgra& source, int radius) {
    Bgra result(source.width, source.height);
    for (int y = 0; y < source.height; ++y) {
        for (int x = 0; x < source.width; ++x) {
            for (int c = 0; c < 3; ++c) {
                int sum = 0;
                int count = 0;
                for (int dy = -radius; dy <= radius; ++dy) {
                    for (int dx = -radius; dx <= radius; ++dx) {
                        const int px = std::clamp(x + dx, 0, source.width - 1);
                        const int py = std::clamp(y + dy, 0, source.height - 1);
                        sum += source.At(px, py)[c];
                        ++count;
                    }
                }
                result.At(x, y)[c] = static_cast<std::uint8_t>(sum / count);
            }
        }
    }
    return result;
}

TEST(FrameMark, NumbersReadBackAtTheSmallestWidth) {
    // A step prime to 2^16 that sets every bit both ways; all single bits besides.
    std::vector<int> numbers{0, 0xFFFF};
    for (int bit = 0; bit < 16; ++bit) {
        numbers.push_back(1 << bit);
    }
    for (int number = 0; number <= 0xFFFF; number += 47) {
        numbers.push_back(number);
    }
    for (const int number : numbers) {
        const Bgra image = Marked(160, 90, static_cast<std::uint16_t>(number));
        ASSERT_EQ(ReadFrameMark(image.View(), image.Whole()), number);
    }
}

TEST(FrameMark, SurvivesScalingBlurNoiseAndGamma) {
    std::mt19937 random(7);
    std::normal_distribution<double> noise(0, 25);
    const std::array<PixelRect, 4> places{
        {{37, 21, 160, 90}, {0, 0, 213, 120}, {11, 90, 301, 169}, {6, 8, 480, 270}}};
    for (int number = 0; number <= 0xFFFF; number += 4099) {
        Bgra source = Marked(320, 180, static_cast<std::uint16_t>(number));
        for (const PixelRect& place : places) {
            Bgra screen(490, 280, {30, 0, 60});
            ScaleInto(screen, place, source);
            Bgra soft = Blurred(screen, 1);
            const double gamma = 0.5 + static_cast<double>(number % 5) * 0.4;
            ForEachChannel(soft, [&](double value) {
                return 255 * std::pow(value / 255, gamma) * 0.8 + 20 + noise(random);
            });
            ASSERT_EQ(ReadFrameMark(soft.View(), place), number) << place.width << " gamma " << gamma;
        }
    }
}

TEST(FrameMark, ReadsFromPlanarPictures) {
    for (const bool fullRange : {false, true}) {
        constexpr int kWidth = 320;
        constexpr int kHeight = 180;
        std::vector<std::uint8_t> luma(kWidth * kHeight, 60);
        std::vector<std::uint8_t> cb(kWidth * kHeight / 4, 128);
        std::vector<std::uint8_t> cr(cb);
        const PlanarView view{{luma.data(), cb.data(), cr.data()},
                              {kWidth, kWidth / 2, kWidth / 2},
                              kWidth,
                              kHeight,
                              1,
                              1,
                              YuvMatrix::Bt709,
                              fullRange};
        DrawFrameMark(view, 0x1234);
        Bgra image(kWidth, kHeight);
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                std::fill_n(image.At(x, y), 3, luma[static_cast<std::size_t>(y) * kWidth + x]);
            }
        }
        EXPECT_EQ(ReadFrameMark(image.View(), image.Whole()), 0x1234);
        EXPECT_EQ(*std::max_element(luma.begin(), luma.end()), fullRange ? 255 : 235);
        EXPECT_EQ(*std::min_element(luma.begin(), luma.end()), fullRange ? 0 : 16);
    }
}

TEST(FrameMark, KnownYuvValues) {
    using Yuv = std::array<std::uint8_t, 3>;
    EXPECT_EQ(ToYuv({255, 255, 255}, YuvMatrix::Bt709, false), (Yuv{235, 128, 128}));
    EXPECT_EQ(ToYuv({0, 0, 0}, YuvMatrix::Bt601, false), (Yuv{16, 128, 128}));
    EXPECT_EQ(ToYuv({255, 0, 0}, YuvMatrix::Bt601, false), (Yuv{81, 90, 240}));
    EXPECT_EQ(ToYuv({0, 0, 255}, YuvMatrix::Bt601, false), (Yuv{41, 240, 110}));
    EXPECT_EQ(ToYuv({0, 255, 0}, YuvMatrix::Bt709, false), (Yuv{173, 42, 26}));
    EXPECT_EQ(ToYuv({255, 255, 255}, YuvMatrix::Bt709, true), (Yuv{255, 128, 128}));
}

TEST(FrameMark, PicturesWithoutMarkReadAsNothing) {
    for (const Rgb colour : {Rgb{0, 0, 0}, Rgb{255, 255, 255}, Rgb{90, 90, 90}, Rgb{0, 0, 191}}) {
        const Bgra plain(320, 180, colour);
        EXPECT_EQ(ReadFrameMark(plain.View(), plain.Whole()), std::nullopt);
    }
    std::mt19937 random(11);
    int found = 0;
    for (int round = 0; round < 800; ++round) {
        // Blocks of random grey: coarse ones look like cells, fine ones like noise.
        const int block = 1 + round % 40;
        Bgra garbage(320, 180);
        std::vector<std::uint8_t> values(320 * 180);
        std::generate(values.begin(), values.end(), [&] { return static_cast<std::uint8_t>(random()); });
        for (int y = 0; y < 180; ++y) {
            for (int x = 0; x < 320; ++x) {
                const std::uint8_t value = values[static_cast<std::size_t>(y / block) * 320 + x / block];
                std::fill_n(garbage.At(x, y), 3, round % 2 == 0 ? value : value > 127 ? 255 : 0);
            }
        }
        found += ReadFrameMark(garbage.View(), garbage.Whole()) ? 1 : 0;
    }
    EXPECT_EQ(found, 0);
}

TEST(FrameMark, ASingleWrongCellReadsAsNothing) {
    for (int cell = 0; cell < kMarkCells; ++cell) {
        Bgra image = Marked(520, 180, 0x3C5A);
        // 520 pixels make cells 18.4 wide; what falls on the middle of this one is turned.
        const double width = (kMarkArea.right - kMarkArea.left) * 520 / kMarkCells;
        const int left = static_cast<int>(kMarkArea.left * 520 + width * cell);
        for (int y = 54; y < 90; ++y) {
            for (int x = left; x <= left + static_cast<int>(width); ++x) {
                for (int c = 0; c < 3; ++c) {
                    image.At(x, y)[c] = static_cast<std::uint8_t>(255 - image.At(x, y)[c]);
                }
            }
        }
        ASSERT_EQ(ReadFrameMark(image.View(), image.Whole()), std::nullopt) << cell;
    }
}

TEST(FrameMark, TurnedMirroredAndMisplacedPicturesReadAsNothing) {
    for (int number = 0; number <= 0xFFFF; number += 331) {
        Bgra upright = Marked(320, 180, static_cast<std::uint16_t>(number));
        Bgra mirrored(320, 180);
        Bgra flipped(320, 180);
        Bgra turned(320, 180);
        for (int y = 0; y < 180; ++y) {
            for (int x = 0; x < 320; ++x) {
                std::copy_n(upright.At(x, y), 4, mirrored.At(319 - x, y));
                std::copy_n(upright.At(x, y), 4, flipped.At(x, 179 - y));
                std::copy_n(upright.At(x, y), 4, turned.At(319 - x, 179 - y));
            }
        }
        ASSERT_EQ(ReadFrameMark(mirrored.View(), mirrored.Whole()), std::nullopt) << number;
        ASSERT_EQ(ReadFrameMark(flipped.View(), flipped.Whole()), std::nullopt) << number;
        ASSERT_EQ(ReadFrameMark(turned.View(), turned.Whole()), std::nullopt) << number;
        ASSERT_EQ(ReadFrameMark(upright.View(), {40, 40, 240, 135}), std::nullopt) << number;
        ASSERT_EQ(ReadFrameMark(upright.View(), {0, 0, 240, 180}), std::nullopt) << number;
    }
    // The part of this one that remains would pass its check by chance.
    const Bgra lucky = Marked(320, 180, 549);
    EXPECT_EQ(ReadFrameMark(lucky.View(), {0, 0, 240, 180}), std::nullopt);
}

TEST(FrameMark, RectanglesOutsideTheImageReadAsNothing) {
    const Bgra image = Marked(320, 180, 5);
    for (const PixelRect& rect :
         {PixelRect{-1, 0, 320, 180}, PixelRect{0, 1, 320, 180}, PixelRect{0, 0, 321, 180},
          PixelRect{0, 0, 0, 0}, PixelRect{0, 0, -5, 180}}) {
        EXPECT_EQ(ReadFrameMark(image.View(), rect), std::nullopt);
        EXPECT_EQ(ReadColourPatches(image.View(), rect), std::nullopt);
    }
}

TEST(FrameMark, HalfAndHalfBlendOfDistantFramesReadsAsNothing) {
    const Bgra one = Marked(320, 180, 0x5555);
    Bgra blend = Marked(320, 180, 0xAAAA);
    for (std::size_t i = 0; i < blend.bytes.size(); ++i) {
        blend.bytes[i] = static_cast<std::uint8_t>((blend.bytes[i] + one.bytes[i]) / 2);
    }
    EXPECT_EQ(ReadFrameMark(blend.View(), blend.Whole()), std::nullopt);
}

TEST(ColourPatches, ReadBackAndTellErrors) {
    Bgra image = Marked(320, 180, 1);
    const auto right = ReadColourPatches(image.View(), image.Whole());
    ASSERT_TRUE(right);
    EXPECT_EQ(LargestPatchError(*right), 0);
    // Limited range shown as full range lifts black by 16.
    ForEachChannel(image, [](double value) { return 16 + value * 219 / 255; });
    const auto wrong = ReadColourPatches(image.View(), image.Whole());
    ASSERT_TRUE(wrong);
    EXPECT_GE(LargestPatchError(*wrong), 15);
}

TEST(FitPicture, CentresTheLargestRectangle) {
    const auto expect = [](const PixelRect& got, const PixelRect& want) {
        EXPECT_EQ(got.left, want.left);
        EXPECT_EQ(got.top, want.top);
        EXPECT_EQ(got.width, want.width);
        EXPECT_EQ(got.height, want.height);
    };
    expect(FitPicture({10, 20, 640, 480}, 16, 9), {10, 80, 640, 360});
    expect(FitPicture({0, 0, 640, 360}, 4, 3), {80, 0, 480, 360});
    expect(FitPicture({0, 0, 0, 360}, 4, 3), {0, 0, 0, 0});
}

TEST(JudgePlayback, TellsARightRunFromWrongOnes) {
    const std::vector<TimedMark> right{{1.0, 25}, {1.4, 35}, {1.8, 44}, {2.2, 56}};
    const PlaybackVerdict good = JudgePlayback(right, 25, 0.08);
    EXPECT_TRUE(good.inStep);
    EXPECT_EQ(good.distinct, 4);
    EXPECT_NEAR(good.largestLag, 0.04, 1e-9);

    const std::vector<TimedMark> black{{1.0, {}}, {1.4, {}}, {1.8, {}}};
    EXPECT_FALSE(JudgePlayback(black, 25, 0.08).inStep);
    EXPECT_EQ(JudgePlayback(black, 25, 0.08).readable, 0);
    const std::vector<TimedMark> oneBlack{{1.0, 25}, {1.4, {}}, {1.8, 45}};
    EXPECT_FALSE(JudgePlayback(oneBlack, 25, 0.08).inStep);
    const std::vector<TimedMark> frozen{{1.0, 25}, {1.0, 25}, {1.0, 25}};
    EXPECT_FALSE(JudgePlayback(frozen, 25, 0.08).inStep);
    EXPECT_FALSE(JudgePlayback(frozen, 25, 0.08).moving);
    const std::vector<TimedMark> shifted{{1.0, 30}, {1.4, 40}, {1.8, 50}};
    EXPECT_TRUE(JudgePlayback(shifted, 25, 0.08).moving);
    EXPECT_FALSE(JudgePlayback(shifted, 25, 0.08).inStep);
    const std::vector<TimedMark> backwards{{1.8, 45}, {1.4, 35}};
    EXPECT_FALSE(JudgePlayback(backwards, 25, 0.08).moving);
    EXPECT_FALSE(JudgePlayback({}, 25, 0.08).inStep);
}

} // namespace
} // namespace brindlecast::testing
