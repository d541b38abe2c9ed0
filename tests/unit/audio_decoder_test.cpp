#include "filters/core/audio_converter.h"
#include "filters/core/audio_decoder.h"
#include "tests/unit/video_test_stream.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

constexpr int kRate = 48'000;

struct SoundStream {
    ParametersPtr parameters;
    std::vector<EncodedPacket> packets;
    std::vector<std::int16_t> original; // one channel of a signal in which every place is different
};

void Require(bool condition) {
    if (!condition) {
        throw std::runtime_error("encoding sound");
    }
}

// FLAC gives back what went in, so that every sample can be checked at its place.
SoundStream MakeFlac(int frames) {
    const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_FLAC);
    const CodecContextPtr encoder(avcodec_alloc_context3(codec));
    encoder->sample_fmt = AV_SAMPLE_FMT_S16;
    encoder->sample_rate = kRate;
    av_channel_layout_default(&encoder->ch_layout, 1);
    encoder->time_base = {1, kRate};
    Require(avcodec_open2(encoder.get(), codec, nullptr) >= 0);
    SoundStream stream;
    for (int i = 0; i < frames; ++i) {
        const double phase = 2.0 * std::numbers::pi * (300.0 + i * 0.01) * i / kRate;
        stream.original.push_back(static_cast<std::int16_t>(std::lrint(12'000.0 * std::sin(phase))));
    }
    const PacketPtr packet(av_packet_alloc());
    auto receive = [&] {
        while (avcodec_receive_packet(encoder.get(), packet.get()) == 0) {
            const Time100ns start = LengthOf(packet->pts, kRate);
            if (packet->size == 0) { // new set-up data at the end, no sound
                av_packet_unref(packet.get());
                continue;
            }
            stream.packets.push_back({{packet->data, packet->data + packet->size}, start, 0, true});
            av_packet_unref(packet.get());
        }
    };
    for (int at = 0; at < frames; at += encoder->frame_size) {
        const FramePtr frame(av_frame_alloc());
        frame->format = AV_SAMPLE_FMT_S16;
        frame->sample_rate = kRate;
        frame->nb_samples = std::min(encoder->frame_size, frames - at);
        Require(av_channel_layout_copy(&frame->ch_layout, &encoder->ch_layout) >= 0);
        Require(av_frame_get_buffer(frame.get(), 0) >= 0);
        std::memcpy(frame->data[0], stream.original.data() + at,
                    static_cast<std::size_t>(frame->nb_samples) * 2);
        frame->pts = at;
        Require(avcodec_send_frame(encoder.get(), frame.get()) >= 0);
        receive();
    }
    Require(avcodec_send_frame(encoder.get(), nullptr) >= 0);
    receive();
    stream.parameters.reset(avcodec_parameters_alloc());
    Require(avcodec_parameters_from_context(stream.parameters.get(), encoder.get()) >= 0);
    return stream;
}

struct Heard {
    std::vector<std::int16_t> samples;
    std::vector<Time100ns> starts;
    std::vector<bool> discontinuities;
};

AudioDecoder::Sink Into(Heard& heard) {
    return [&heard](AudioBlock&& block) {
        AudioConverter converter({SampleKind::kSigned16, kRate, 1, 4});
        std::vector<std::uint8_t> bytes;
        EXPECT_TRUE(converter.Convert(*block.samples, bytes));
        const std::size_t before = heard.samples.size();
        heard.samples.resize(before + bytes.size() / 2);
        std::memcpy(heard.samples.data() + before, bytes.data(), bytes.size());
        heard.starts.push_back(block.start);
        heard.discontinuities.push_back(block.discontinuity);
        return true;
    };
}

class AudioDecoderFlac : public ::testing::Test {
protected:
    const SoundStream stream = MakeFlac(60'000);
    const std::unique_ptr<AudioDecoder> decoder = AudioDecoder::Create(*stream.parameters);

    void SetUp() override { ASSERT_TRUE(decoder); }

    Heard DecodeAll(Time100ns segmentStart) {
        Heard heard;
        for (const EncodedPacket& packet : stream.packets) {
            EXPECT_TRUE(decoder->Decode({packet.bytes, packet.start - segmentStart}, Into(heard)));
        }
        EXPECT_TRUE(decoder->Drain(Into(heard)));
        return heard;
    }
};

TEST_F(AudioDecoderFlac, EverySampleComesOutAtItsTime) {
    const Heard heard = DecodeAll(0);
    EXPECT_EQ(heard.samples, stream.original);
    ASSERT_EQ(heard.starts.size(), stream.packets.size());
    for (std::size_t i = 0; i < heard.starts.size(); ++i) {
        EXPECT_NEAR(static_cast<double>(heard.starts[i]), static_cast<double>(stream.packets[i].start), 1);
        EXPECT_EQ(heard.discontinuities[i], i == 0);
    }
    EXPECT_EQ(decoder->NaturalFormat(), (AudioFormat{SampleKind::kSigned16, kRate, 1, 4}));
}

TEST_F(AudioDecoderFlac, ASegmentBeginsWithItsFirstSample) {
    for (const int first : {1, 100, 4607, 4608, 4609, 30'001, 59'999}) {
        decoder->StartSegment(1.0);
        const Heard heard = DecodeAll(LengthOf(first, kRate));
        ASSERT_EQ(heard.samples.size(), stream.original.size() - static_cast<std::size_t>(first));
        EXPECT_TRUE(std::equal(heard.samples.begin(), heard.samples.end(), stream.original.begin() + first))
            << first;
        EXPECT_EQ(heard.starts[0], 0);
    }
}

TEST_F(AudioDecoderFlac, RoundedPacketTimesLeaveNoGaps) {
    Heard heard;
    for (const EncodedPacket& packet : stream.packets) {
        const Time100ns rounded = (packet.start + 5'000) / 10'000 * 10'000;
        EXPECT_TRUE(decoder->Decode({packet.bytes, rounded}, Into(heard)));
    }
    for (std::size_t i = 0; i < heard.starts.size(); ++i) {
        EXPECT_NEAR(static_cast<double>(heard.starts[i]), static_cast<double>(stream.packets[i].start), 2);
        EXPECT_EQ(heard.discontinuities[i], i == 0);
    }
}

TEST_F(AudioDecoderFlac, AMissingPacketIsAGap) {
    Heard heard;
    for (std::size_t i = 0; i < stream.packets.size(); ++i) {
        if (i != 4) {
            EXPECT_TRUE(decoder->Decode({stream.packets[i].bytes, stream.packets[i].start}, Into(heard)));
        }
    }
    ASSERT_GT(heard.starts.size(), 5U);
    EXPECT_EQ(heard.starts[4], stream.packets[5].start);
    EXPECT_TRUE(heard.discontinuities[4]);
    EXPECT_FALSE(heard.discontinuities[5]);
}

TEST_F(AudioDecoderFlac, PacketsWithoutTimesFollowEachOther) {
    Heard heard;
    for (const EncodedPacket& packet : stream.packets) {
        EXPECT_TRUE(decoder->Decode({packet.bytes, kNoTime}, Into(heard)));
    }
    EXPECT_EQ(heard.samples, stream.original);
    for (std::size_t i = 0; i < heard.starts.size(); ++i) {
        EXPECT_NEAR(static_cast<double>(heard.starts[i]), static_cast<double>(stream.packets[i].start), 1);
    }
}

TEST_F(AudioDecoderFlac, WhatTheContainerSkipsIsLeftOut) {
    Heard heard;
    for (std::size_t i = 0; i < stream.packets.size(); ++i) {
        AudioPacket packet{stream.packets[i].bytes, stream.packets[i].start};
        packet.skipAtStart = i == 0 ? 1'000 : 0;
        packet.skipAtEnd = i + 1 == stream.packets.size() ? 50 : 0;
        EXPECT_TRUE(decoder->Decode(packet, Into(heard)));
    }
    ASSERT_EQ(heard.samples.size(), stream.original.size() - 1'050);
    EXPECT_TRUE(std::equal(heard.samples.begin(), heard.samples.end(), stream.original.begin() + 1'000));
    EXPECT_NEAR(static_cast<double>(heard.starts[0]), static_cast<double>(LengthOf(1'000, kRate)), 1);
}

TEST_F(AudioDecoderFlac, ARateShortensTheTimes) {
    decoder->StartSegment(2.0);
    Heard heard;
    for (const EncodedPacket& packet : stream.packets) {
        EXPECT_TRUE(decoder->Decode({packet.bytes, packet.start / 2 - 1'000'000}, Into(heard)));
    }
    // A tenth of a second of the segment is two tenths of the sound.
    ASSERT_EQ(heard.samples.size(), stream.original.size() - 9'600);
    EXPECT_TRUE(std::equal(heard.samples.begin(), heard.samples.end(), stream.original.begin() + 9'600));
    for (std::size_t i = 1; i < heard.starts.size(); ++i) {
        const auto packet = stream.packets.size() - heard.starts.size() + i;
        EXPECT_NEAR(static_cast<double>(heard.starts[i]),
                    static_cast<double>(stream.packets[packet].start / 2 - 1'000'000), 3);
    }
}

TEST_F(AudioDecoderFlac, ARefusingSinkEndsTheDeliveryAndBrokenDataDoNot) {
    EXPECT_FALSE(decoder->Decode({stream.packets[0].bytes, 0}, [](AudioBlock&&) { return false; }));
    Heard heard;
    std::uint32_t random = 3;
    for (EncodedPacket packet : stream.packets) {
        for (int i = 0; i < 20; ++i) {
            random = random * 1664525U + 1013904223U;
            packet.bytes[random % packet.bytes.size()] = static_cast<std::uint8_t>(random >> 24);
        }
        EXPECT_TRUE(decoder->Decode({packet.bytes, packet.start}, Into(heard)));
    }
    EXPECT_TRUE(decoder->Decode({}, Into(heard)));
    EXPECT_GT(decoder->BrokenPackets(), 0);
    decoder->StartSegment(1.0);
    EXPECT_EQ(DecodeAll(0).samples, stream.original);
    EXPECT_FALSE(decoder->SetCompression(1.0)) << "FLAC has no compression data";
}

TEST(AudioDecoder, OnlyAc3HasCompressionData) {
    const ParametersPtr parameters(avcodec_parameters_alloc());
    EXPECT_FALSE(AudioDecoder::Create(*parameters));
    parameters->codec_type = AVMEDIA_TYPE_AUDIO;
    parameters->codec_id = AV_CODEC_ID_AC3;
    parameters->sample_rate = kRate;
    const auto decoder = AudioDecoder::Create(*parameters);
    ASSERT_TRUE(decoder);
    EXPECT_TRUE(decoder->SetCompression(0.5));
    parameters->codec_id = AV_CODEC_ID_H264;
    EXPECT_FALSE(AudioDecoder::Create(*parameters));
}

TEST(AudioConverter, TwentyFourBitsPassUnchanged) {
    const AudioFormat format{SampleKind::kSigned24, kRate, 2, 3};
    std::vector<std::uint8_t> source;
    for (int i = 0; i < 600; ++i) {
        source.push_back(static_cast<std::uint8_t>(i * 7));
    }
    AudioConverter same(format);
    std::vector<std::uint8_t> out;
    ASSERT_TRUE(same.Convert(format, source.data(), 100, out));
    EXPECT_EQ(out, source);
    AudioConverter wide({SampleKind::kSigned32, kRate, 2, 3});
    out.clear();
    ASSERT_TRUE(wide.Convert(format, source.data(), 100, out));
    ASSERT_EQ(out.size(), 800U);
    EXPECT_EQ(out[0], 0);
    EXPECT_TRUE(std::equal(source.begin(), source.begin() + 3, out.begin() + 1));
}

TEST(AudioConverter, ARateIsChangedWithoutLosingTheEnd) {
    const AudioFormat source{SampleKind::kFloat32, 44'100, 1, 4};
    AudioConverter converter({SampleKind::kFloat32, kRate, 1, 4});
    std::vector<float> tone(44'100);
    for (std::size_t i = 0; i < tone.size(); ++i) {
        tone[i] = static_cast<float>(
            0.5 * std::sin(2.0 * std::numbers::pi * 440.0 * static_cast<double>(i) / 44'100));
    }
    std::vector<std::uint8_t> out;
    ASSERT_TRUE(converter.Convert(source, reinterpret_cast<const std::uint8_t*>(tone.data()), 44'100, out));
    EXPECT_GT(converter.HeldBack(), 0);
    EXPECT_LT(converter.HeldBack(), 100'000);
    ASSERT_TRUE(converter.Drain(out));
    EXPECT_EQ(converter.HeldBack(), 0);
    EXPECT_NEAR(static_cast<double>(out.size() / 4), 48'000.0, 32.0);
    float middle = 0;
    std::memcpy(&middle, out.data() + 4 * 24'027, 4);
    EXPECT_NEAR(middle, 0.5 * std::sin(2.0 * std::numbers::pi * 440.0 * 24'027 / kRate), 0.005);
}

} // namespace
} // namespace brindlecast
