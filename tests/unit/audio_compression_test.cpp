#include "filters/core/audio_converter.h"
#include "filters/core/audio_decoder.h"
#include "tests/unit/video_test_stream.h"

#include <cmath>
#include <cstring>
#include <numbers>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

constexpr int kRate = 48'000;
constexpr int kFrameSamples = 1536;
// A gain word of AC-3 that asks for half the amplitude.
constexpr unsigned kHalf = 0xE0;
constexpr double kHalfDecibels = -6.02;

void Require(bool condition) {
    if (!condition) {
        throw std::runtime_error("encoding sound");
    }
}

// A mono tone as AC-3, which encoders make without gain words.
struct ToneStream {
    ParametersPtr parameters;
    std::vector<std::vector<std::uint8_t>> packets;
};

ToneStream MakeTone(int packets) {
    const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_AC3);
    const CodecContextPtr encoder(avcodec_alloc_context3(codec));
    encoder->sample_fmt = AV_SAMPLE_FMT_FLTP;
    encoder->sample_rate = kRate;
    encoder->bit_rate = 448'000;
    av_channel_layout_default(&encoder->ch_layout, 1);
    encoder->time_base = {1, kRate};
    Require(avcodec_open2(encoder.get(), codec, nullptr) >= 0);
    ToneStream stream;
    const PacketPtr packet(av_packet_alloc());
    for (int i = 0; i < packets; ++i) {
        const FramePtr frame(av_frame_alloc());
        frame->format = AV_SAMPLE_FMT_FLTP;
        frame->sample_rate = kRate;
        frame->nb_samples = kFrameSamples;
        Require(av_channel_layout_copy(&frame->ch_layout, &encoder->ch_layout) >= 0);
        Require(av_frame_get_buffer(frame.get(), 0) >= 0);
        for (int sample = 0; sample < kFrameSamples; ++sample) {
            const double phase = 2.0 * std::numbers::pi * 1000.0 * (i * kFrameSamples + sample) / kRate;
            const auto value = static_cast<float>(0.25 * std::sin(phase));
            std::memcpy(frame->data[0] + static_cast<std::size_t>(sample) * sizeof(value), &value,
                        sizeof(value));
        }
        frame->pts = std::int64_t{i} * kFrameSamples;
        Require(avcodec_send_frame(encoder.get(), frame.get()) >= 0);
        while (avcodec_receive_packet(encoder.get(), packet.get()) == 0) {
            stream.packets.emplace_back(packet->data, packet->data + packet->size);
            av_packet_unref(packet.get());
        }
    }
    stream.parameters.reset(avcodec_parameters_alloc());
    Require(avcodec_parameters_from_context(stream.parameters.get(), encoder.get()) >= 0);
    return stream;
}

class BitReader {
public:
    explicit BitReader(const std::vector<std::uint8_t>& frame) : bytes(frame) {}
    unsigned Take(std::size_t count) {
        unsigned value = 0;
        for (; count > 0; --count, ++place) {
            value = value << 1 | (bytes[place / 8] >> (7 - place % 8) & 1U);
        }
        return value;
    }
    [[nodiscard]] std::size_t Place() const { return place; }

private:
    const std::vector<std::uint8_t>& bytes;
    std::size_t place = 0;
};

// The bit that says whether the first block of a mono frame carries a gain word.
std::size_t PlaceOfGainFlag(const std::vector<std::uint8_t>& frame) {
    BitReader bits(frame);
    bits.Take(16 + 16 + 2 + 6);                  // sync word, checksum, rate, size
    bits.Take(5 + 3);                            // version, service
    Require(bits.Take(3) == 1);                  // channels: centre alone
    bits.Take(1 + 5);                            // low frequencies, dialogue level
    for (const unsigned length : {8U, 8U, 7U}) { // compression, language, production
        bits.Take(bits.Take(1) != 0 ? length : 0);
    }
    bits.Take(2); // rights
    for (int i = 0; i < 2; ++i) {
        bits.Take(bits.Take(1) != 0 ? 14 : 0); // time codes
    }
    if (bits.Take(1) != 0) {
        bits.Take(8 * (bits.Take(6) + 1));
    }
    bits.Take(1 + 1); // block switch and dither of the one channel
    return bits.Place();
}

bool BitAt(const std::vector<std::uint8_t>& bytes, std::size_t place) {
    return (bytes[place / 8] >> (7 - place % 8) & 1U) != 0;
}

// Puts a gain word into a frame; what is pushed out at the end is padding.
std::vector<std::uint8_t> WithGain(const std::vector<std::uint8_t>& frame, unsigned gain) {
    const std::size_t flag = PlaceOfGainFlag(frame);
    Require(!BitAt(frame, flag));
    std::vector<std::uint8_t> changed(frame.size());
    for (std::size_t to = 0; to < frame.size() * 8; ++to) {
        bool bit = false;
        if (to <= flag) {
            bit = to == flag || BitAt(frame, to);
        } else if (to <= flag + 8) {
            bit = (gain >> (flag + 8 - to) & 1U) != 0;
        } else {
            bit = BitAt(frame, to - 8);
        }
        changed[to / 8] = static_cast<std::uint8_t>(changed[to / 8] | (bit ? 0x80U >> to % 8 : 0U));
    }
    return changed;
}

class AudioCompression : public ::testing::Test {
protected:
    const ToneStream stream = MakeTone(30);
    const std::unique_ptr<AudioDecoder> decoder = AudioDecoder::Create(*stream.parameters);

    // Level of the packets `from` to `to` in decibels, with a gain word in each.
    double LevelOf(std::size_t from, std::size_t to, unsigned gain = kHalf) {
        double sum = 0.0;
        std::size_t count = 0;
        const AudioDecoder::Sink sink = [&](AudioBlock&& block) {
            AudioConverter converter({SampleKind::kFloat32, kRate, 1, 4});
            std::vector<std::uint8_t> bytes;
            EXPECT_TRUE(converter.Convert(*block.samples, bytes));
            for (std::size_t at = 0; at < bytes.size(); at += sizeof(float)) {
                float value = 0;
                std::memcpy(&value, bytes.data() + at, sizeof(value));
                sum += static_cast<double>(value) * static_cast<double>(value);
                ++count;
            }
            return true;
        };
        for (std::size_t i = from; i < to; ++i) {
            const auto packet = WithGain(stream.packets[i], gain);
            EXPECT_TRUE(decoder->Decode(
                {packet, LengthOf(static_cast<std::int64_t>(i) * kFrameSamples, kRate)}, sink));
        }
        EXPECT_EQ(0, decoder->BrokenPackets());
        return count > 0 ? 10.0 * std::log10(sum / static_cast<double>(count)) : -200.0;
    }
};

TEST_F(AudioCompression, FollowsTheStreamByItsLevel) {
    ASSERT_TRUE(decoder);
    const double off = LevelOf(2, 8);
    EXPECT_NEAR(20.0 * std::log10(0.25 / std::numbers::sqrt2), off, 0.3) << "off at first";
    ASSERT_TRUE(decoder->SetCompression(1.0));
    static_cast<void>(LevelOf(8, 9)); // still overlaps with the sound before
    EXPECT_NEAR(off + kHalfDecibels, LevelOf(9, 14), 0.1);
    ASSERT_TRUE(decoder->SetCompression(0.5));
    static_cast<void>(LevelOf(14, 15));
    EXPECT_NEAR(off + kHalfDecibels / 2, LevelOf(15, 20), 0.1);
    ASSERT_TRUE(decoder->SetCompression(0.0));
    static_cast<void>(LevelOf(20, 21));
    EXPECT_NEAR(off, LevelOf(21, 26), 0.1);
}

TEST_F(AudioCompression, SoundWithoutGainWordsKeepsItsLevel) {
    ASSERT_TRUE(decoder);
    const double off = LevelOf(2, 8, 0);
    ASSERT_TRUE(decoder->SetCompression(1.0));
    static_cast<void>(LevelOf(8, 9, 0));
    EXPECT_NEAR(off, LevelOf(9, 14, 0), 0.1) << "a word of zero asks for no change";
}

TEST_F(AudioCompression, ASeekKeepsTheLevel) {
    ASSERT_TRUE(decoder);
    ASSERT_TRUE(decoder->SetCompression(1.0));
    static_cast<void>(LevelOf(2, 3));
    const double before = LevelOf(3, 8);
    decoder->StartSegment(1.0);
    static_cast<void>(LevelOf(10, 11));
    EXPECT_NEAR(before, LevelOf(11, 16), 0.1);
}

} // namespace
} // namespace brindlecast
