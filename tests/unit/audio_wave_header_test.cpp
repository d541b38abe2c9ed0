#include "filters/core/audio_wave_header.h"

#include <vector>

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

TEST(AudioWaveHeader, TheShortFormIsWrittenByteByByte) {
    const std::vector<std::uint8_t> expected = {1,    0, 2, 0, 0x80, 0xBB, 0, 0, 0x00,
                                                0xEE, 2, 0, 4, 0,    16,   0, 0, 0};
    EXPECT_EQ(WriteWaveHeader({SampleKind::kSigned16, 48'000, 2, 3}), expected);
}

TEST(AudioWaveHeader, TheLongFormIsWrittenByteByByte) {
    const std::vector<std::uint8_t> expected = {
        0xFE, 0xFF, 6, 0, 0x44, 0xAC, 0, 0, 0x60, 0x26, 0x10, 0, 24,   0, 32, 0,    22, 0,    32,   0,
        0x3F, 0,    0, 0, 3,    0,    0, 0, 0,    0,    0x10, 0, 0x80, 0, 0,  0xAA, 0,  0x38, 0x9B, 0x71};
    EXPECT_EQ(WriteWaveHeader({SampleKind::kFloat32, 44'100, 6, 0x3F}), expected);
}

TEST(AudioWaveHeader, EveryFormatComesBack) {
    for (const SampleKind kind : {SampleKind::kUnsigned8, SampleKind::kSigned16, SampleKind::kSigned24,
                                  SampleKind::kSigned32, SampleKind::kFloat32}) {
        for (int channels = 1; channels <= kMaxAudioChannels; ++channels) {
            for (const int rate : {8'000, 44'100, 192'000}) {
                const AudioFormat format{kind, rate, channels, UsualChannelMask(channels)};
                EXPECT_EQ(ReadWaveHeader(WriteWaveHeader(format)), format) << channels;
            }
        }
    }
    const AudioFormat unusual{SampleKind::kSigned16, 48'000, 2, 0x600};
    EXPECT_EQ(ReadWaveHeader(WriteWaveHeader(unusual)), unusual);
}

TEST(AudioWaveHeader, TheOldestFormHasNoExtensionSize) {
    auto bytes = WriteWaveHeader({SampleKind::kSigned16, 48'000, 1, 4});
    bytes.resize(16);
    EXPECT_TRUE(ReadWaveHeader(bytes));
    bytes.resize(15);
    EXPECT_FALSE(ReadWaveHeader(bytes));
}

TEST(AudioWaveHeader, ContradictionsAreRefused) {
    const auto good = WriteWaveHeader({SampleKind::kSigned24, 48'000, 6, 0x3F});
    ASSERT_TRUE(ReadWaveHeader(good));
    struct Change {
        std::size_t at;
        std::uint8_t value;
    };
    // Tag, channels (none, too many), rate, block size, bits, extension size, speakers, subformat.
    for (const Change& change :
         {Change{0, 0x55}, Change{2, 0}, Change{2, 9}, Change{6, 0xFF}, Change{12, 17}, Change{14, 20},
          Change{16, 21}, Change{20, 0x1F}, Change{24, 2}, Change{39, 0}}) {
        auto bytes = good;
        bytes[change.at] = change.value;
        EXPECT_FALSE(ReadWaveHeader(bytes)) << change.at;
    }
    for (std::size_t size = 0; size < good.size(); ++size) {
        EXPECT_FALSE(ReadWaveHeader(std::span(good).first(size))) << size;
    }
    auto noRate = good;
    noRate[4] = noRate[5] = noRate[6] = noRate[7] = 0;
    EXPECT_FALSE(ReadWaveHeader(noRate));
}

} // namespace
} // namespace brindlecast
