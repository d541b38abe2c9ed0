#include "engine/bitmap_file.h"

#include <gtest/gtest.h>

#include <cstring>
#include <numeric>

namespace brindlecast {
namespace {

using Bytes = std::vector<std::uint8_t>;

void Put16(Bytes& bytes, std::size_t at, unsigned value) {
    bytes[at] = static_cast<std::uint8_t>(value);
    bytes[at + 1] = static_cast<std::uint8_t>(value >> 8);
}

void Put32(Bytes& bytes, std::size_t at, std::int64_t value) {
    for (std::size_t i = 0; i < 4; ++i) {
        bytes[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
    }
}

std::uint32_t Get32(const Bytes& bytes, std::size_t at) {
    return bytes[at] | bytes[at + 1] << 8 | bytes[at + 2] << 16 |
           static_cast<std::uint32_t>(bytes[at + 3]) << 24;
}

// A BITMAPINFOHEADER with `payload` bytes 0, 1, 2 … behind it.
Bytes PackedDib(int width, int height, unsigned bitCount, std::size_t payload) {
    Bytes dib(40 + payload);
    Put32(dib, 0, 40);
    Put32(dib, 4, width);
    Put32(dib, 8, height);
    Put16(dib, 12, 1);
    Put16(dib, 14, bitCount);
    std::iota(dib.begin() + 40, dib.end(), std::uint8_t{0});
    return dib;
}

Bytes Tail(const Bytes& bytes, std::size_t from) {
    return {bytes.begin() + static_cast<std::ptrdiff_t>(from), bytes.end()};
}

BitmapBytes Normalize(const Bytes& bytes) {
    return NormalizeBitmap(bytes.data(), bytes.size());
}

TEST(NormalizeBitmap, TurnsTopDownRowsRound) {
    const BitmapBytes file = Normalize(PackedDib(1, -3, 32, 12));
    ASSERT_NE(nullptr, file);
    ASSERT_EQ(66U, file->size());
    EXPECT_EQ((Bytes{'B', 'M', 66, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0}),
              Bytes(file->begin(), file->begin() + 14));
    EXPECT_EQ(40U, Get32(*file, 14));
    EXPECT_EQ(1U, Get32(*file, 18));
    EXPECT_EQ(3U, Get32(*file, 22)) << "positive height";
    EXPECT_EQ((Bytes{8, 9, 10, 11, 4, 5, 6, 7, 0, 1, 2, 3}), Tail(*file, 54));
}

TEST(NormalizeBitmap, LeavesBottomUpRows) {
    const Bytes dib = PackedDib(1, 3, 32, 12);
    const BitmapBytes file = Normalize(dib);
    ASSERT_NE(nullptr, file);
    EXPECT_EQ(3U, Get32(*file, 22));
    EXPECT_EQ(Tail(dib, 40), Tail(*file, 54));
}

TEST(NormalizeBitmap, RowsAreRoundedUpToFourBytes) {
    // 24 bits by 2 pixels are 6 bytes, a row of 8.
    const BitmapBytes file = Normalize(PackedDib(2, -2, 24, 16));
    ASSERT_NE(nullptr, file);
    EXPECT_EQ((Bytes{8, 9, 10, 11, 12, 13, 14, 15, 0, 1, 2, 3, 4, 5, 6, 7}), Tail(*file, 54));
}

TEST(NormalizeBitmap, KeepsWhatLiesBehindTheRows) {
    const BitmapBytes file = Normalize(PackedDib(1, -2, 32, 10));
    ASSERT_NE(nullptr, file);
    EXPECT_EQ((Bytes{4, 5, 6, 7, 0, 1, 2, 3, 8, 9}), Tail(*file, 54));
}

TEST(NormalizeBitmap, RowsThatDoNotFitAreCopiedUnchanged) {
    const Bytes dib = PackedDib(1, -4, 32, 15);
    const BitmapBytes file = Normalize(dib);
    ASSERT_NE(nullptr, file);
    EXPECT_EQ(4U, Get32(*file, 22));
    EXPECT_EQ(Tail(dib, 40), Tail(*file, 54));
}

TEST(NormalizeBitmap, KeepsThePaletteOfEightBits) {
    const Bytes dib = PackedDib(4, -2, 8, 1024 + 8);
    const BitmapBytes file = Normalize(dib);
    ASSERT_NE(nullptr, file);
    EXPECT_EQ(1078U, Get32(*file, 10));
    EXPECT_EQ(1086U, Get32(*file, 2));
    EXPECT_EQ(Bytes(dib.begin() + 40, dib.begin() + 40 + 1024),
              Bytes(file->begin() + 54, file->begin() + 1078));
    EXPECT_EQ((Bytes{4, 5, 6, 7, 0, 1, 2, 3}), Tail(*file, 1078));
}

TEST(NormalizeBitmap, PaletteGrowsWithTheDepthUpToEightBits) {
    EXPECT_EQ(4U, PaletteBytes(0));
    EXPECT_EQ(8U, PaletteBytes(1));
    EXPECT_EQ(64U, PaletteBytes(4));
    EXPECT_EQ(1024U, PaletteBytes(8));
    EXPECT_EQ(0U, PaletteBytes(9));
    EXPECT_EQ(0U, PaletteBytes(16));
    EXPECT_EQ(0U, PaletteBytes(24));
    EXPECT_EQ(0U, PaletteBytes(32));
}

TEST(NormalizeBitmap, CopiesAFileWhole) {
    Bytes file(60, 7);
    file[0] = 'B';
    file[1] = 'M';
    const BitmapBytes copy = Normalize(file);
    ASSERT_NE(nullptr, copy);
    EXPECT_EQ(file, *copy);
}

TEST(NormalizeBitmap, GivesNothingWithoutAWholeHeader) {
    EXPECT_EQ(nullptr, NormalizeBitmap(nullptr, 100));
    Bytes file(39, 7);
    EXPECT_EQ(nullptr, Normalize(file));
    file[0] = 'B';
    file[1] = 'M';
    EXPECT_EQ(nullptr, Normalize(file)) << "not even for a file";
    EXPECT_NE(nullptr, Normalize(PackedDib(0, 0, 32, 0))) << "40 bytes are enough";
}

TEST(NormalizeBitmap, GivesNothingWhenThePaletteIsCutOff) {
    EXPECT_EQ(nullptr, Normalize(PackedDib(1, 1, 8, 1023)));
    EXPECT_NE(nullptr, Normalize(PackedDib(1, 1, 8, 1024)));
}

TEST(NormalizeBitmap, LyingSizesAreCopiedUnchanged) {
    constexpr int kLargest = 0x7FFFFFFF;
    constexpr int kSmallest = -kLargest - 1;
    for (const int width : {kSmallest, -1, 0, kLargest}) {
        for (const int height : {kSmallest, -kLargest, -1, 0, kLargest}) {
            const Bytes dib = PackedDib(width, height, 65535, 8);
            const BitmapBytes file = Normalize(dib);
            ASSERT_NE(nullptr, file);
            EXPECT_EQ(Tail(dib, 40), Tail(*file, 54)) << width << " by " << height;
        }
    }
}

TEST(BitmapFileFromDib, PutsTheFileHeaderBeforeTheRows) {
    const Bytes dib = PackedDib(1, 2, 32, 8);
    const BitmapBytes file = BitmapFileFromDib(dib);
    ASSERT_NE(nullptr, file);
    EXPECT_EQ((Bytes{'B', 'M', 62, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0}),
              Bytes(file->begin(), file->begin() + 14));
    EXPECT_EQ(dib, Tail(*file, 14));
}

TEST(BitmapFileFromDib, CountsThePalette) {
    const BitmapBytes file = BitmapFileFromDib(PackedDib(1, 1, 8, 1028));
    ASSERT_NE(nullptr, file);
    EXPECT_EQ(1078U, Get32(*file, 10));
}

TEST(BitmapFileFromDib, AHeaderCutOffHasNoPalette) {
    const BitmapBytes file = BitmapFileFromDib(Bytes(15, 0));
    ASSERT_NE(nullptr, file);
    EXPECT_EQ(29U, file->size());
    EXPECT_EQ(54U, Get32(*file, 10));
}

} // namespace
} // namespace brindlecast
