#include "filters/core/video_decoder.h"

#include "tests/unit/video_test_stream.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

struct Decoded {
    std::vector<VideoFrame> frames;
    // How many frames had come when the packet of that number had gone in.
    std::vector<std::size_t> countAfterPacket;
};

VideoPacket PacketAt(const EncodedPacket& packet, Time100ns segmentStart) {
    const Time100ns start = packet.start - segmentStart;
    return {packet.bytes, start, start + packet.duration, packet.keyframe};
}

Decoded DecodeFrom(VideoDecoder& decoder, const VideoTestStream& stream, std::size_t firstPacket,
                   Time100ns segmentStart) {
    Decoded decoded;
    const VideoDecoder::Sink sink = [&](VideoFrame&& frame) {
        decoded.frames.push_back(std::move(frame));
        return true;
    };
    for (std::size_t i = firstPacket; i < stream.packets.size(); ++i) {
        EXPECT_TRUE(decoder.Decode(PacketAt(stream.packets[i], segmentStart), sink));
        decoded.countAfterPacket.push_back(decoded.frames.size());
    }
    EXPECT_TRUE(decoder.Drain(sink));
    return decoded;
}

// The frames must be the reference's from `firstPicture` on: same number, times and samples.
void ExpectPictures(const Decoded& decoded, const VideoTestStream& stream, std::size_t firstPicture,
                    Time100ns segmentStart) {
    ASSERT_EQ(decoded.frames.size(), stream.pictures.size() - firstPicture);
    for (std::size_t i = 0; i < decoded.frames.size(); ++i) {
        const AVFrame& expected = *stream.pictures[firstPicture + i];
        EXPECT_EQ(decoded.frames[i].start, expected.pts - segmentStart) << "picture " << i;
        EXPECT_EQ(decoded.frames[i].stop, decoded.frames[i].start + stream.frameDuration) << "picture " << i;
        EXPECT_EQ(PictureContent(*decoded.frames[i].picture), PictureContent(expected)) << "picture " << i;
    }
}

std::vector<std::size_t> KeyframePackets(const VideoTestStream& stream) {
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < stream.packets.size(); ++i) {
        if (stream.packets[i].keyframe) {
            found.push_back(i);
        }
    }
    return found;
}

class VideoDecoderCodecs : public ::testing::TestWithParam<AVCodecID> {
protected:
    void SetUp() override {
        if (!CanEncode(GetParam())) {
            GTEST_SKIP() << "no encoder for " << avcodec_get_name(GetParam())
                         << " in this build of the library";
        }
        stream = MakeVideoTestStream({.codec = GetParam()});
        ASSERT_EQ(stream.pictures.size(), 40U);
        decoder = VideoDecoder::Create(*stream.parameters, stream.frameDuration, 4);
        ASSERT_TRUE(decoder);
    }

    VideoTestStream stream;
    std::unique_ptr<VideoDecoder> decoder;
};

TEST_P(VideoDecoderCodecs, DecodesEveryPictureInOrder) {
    ExpectPictures(DecodeFrom(*decoder, stream, 0, 0), stream, 0, 0);
    EXPECT_EQ(decoder->BrokenPackets(), 0);
}

TEST_P(VideoDecoderCodecs, FirstPictureComesWithTheFirstPacketAfterAStartAndEverySeek) {
    const auto keyframes = KeyframePackets(stream);
    ASSERT_EQ(keyframes.size(), 4U);
    for (const std::size_t packet : {keyframes[0], keyframes[2], keyframes[1]}) {
        const Time100ns start = stream.packets[packet].start;
        decoder->StartSegment(1.0);
        const Decoded decoded = DecodeFrom(*decoder, stream, packet, start);
        EXPECT_EQ(decoded.countAfterPacket.front(), 1U);
        ExpectPictures(decoded, stream, static_cast<std::size_t>(start / stream.frameDuration), start);
    }
}

TEST_P(VideoDecoderCodecs, PicturesBeforeTheSegmentAreDecodedButNotShown) {
    const auto keyframes = KeyframePackets(stream);
    for (const std::size_t picture : {11U, 15U, 19U, 20U}) {
        const Time100ns start = static_cast<Time100ns>(picture) * stream.frameDuration;
        const std::size_t from = picture < 20 ? keyframes[1] : keyframes[2];
        decoder->StartSegment(1.0);
        ExpectPictures(DecodeFrom(*decoder, stream, from, start), stream, picture, start);
    }
}

TEST_P(VideoDecoderCodecs, FlushInTheMiddleLeavesNothingBehind) {
    const auto keyframes = KeyframePackets(stream);
    int shown = 0;
    for (std::size_t i = 0; i < 7; ++i) {
        EXPECT_TRUE(
            decoder->Decode(PacketAt(stream.packets[i], 0), [&](VideoFrame&&) { return ++shown > 0; }));
    }
    EXPECT_GT(shown, 0);
    const Time100ns start = stream.packets[keyframes[3]].start;
    decoder->StartSegment(1.0);
    ExpectPictures(DecodeFrom(*decoder, stream, keyframes[3], start), stream, 30, start);
}

TEST_P(VideoDecoderCodecs, ARefusingSinkEndsTheDelivery) {
    int calls = 0;
    const VideoDecoder::Sink refuse = [&](VideoFrame&&) {
        ++calls;
        return false;
    };
    EXPECT_FALSE(decoder->Decode(PacketAt(stream.packets[0], 0), refuse));
    EXPECT_EQ(calls, 1);
    decoder->StartSegment(1.0);
    ExpectPictures(DecodeFrom(*decoder, stream, 0, 0), stream, 0, 0);
}

TEST_P(VideoDecoderCodecs, BrokenDataCostsPicturesAndNothingElse) {
    std::uint32_t random = 12345;
    auto next = [&] {
        return random = random * 1664525U + 1013904223U;
    };
    std::size_t shown = 0;
    const VideoDecoder::Sink sink = [&](VideoFrame&& frame) {
        EXPECT_GT(frame.picture->width, 0);
        ++shown;
        return true;
    };
    for (int round = 0; round < 20; ++round) {
        decoder->StartSegment(1.0);
        for (EncodedPacket packet : stream.packets) {
            for (int i = 0; i < 3; ++i) {
                packet.bytes[next() % packet.bytes.size()] = static_cast<std::uint8_t>(next() >> 24);
            }
            if (next() % 8 == 0) {
                packet.bytes.resize(1 + next() % packet.bytes.size());
            }
            EXPECT_TRUE(decoder->Decode(PacketAt(packet, 0), sink));
        }
        EXPECT_TRUE(decoder->Drain(sink));
    }
    if (GetParam() == AV_CODEC_ID_MPEG4) {
        return; // Its headers stand in the set-up data alone: a broken copy of them in a packet stays in
                // force.
    }
    decoder->StartSegment(1.0);
    ExpectPictures(DecodeFrom(*decoder, stream, 0, 0), stream, 0, 0);
}

INSTANTIATE_TEST_SUITE_P(Codecs, VideoDecoderCodecs,
                         ::testing::Values(AV_CODEC_ID_H264, AV_CODEC_ID_MPEG4, AV_CODEC_ID_MPEG2VIDEO),
                         [](const auto& codec) { return std::string(avcodec_get_name(codec.param)); });

TEST(VideoDecoder, TimesWithARateAreTheSegmentsOwn) {
    const VideoTestStream stream = MakeVideoTestStream({});
    const auto decoder = VideoDecoder::Create(*stream.parameters, stream.frameDuration, 1);
    ASSERT_TRUE(decoder);
    decoder->StartSegment(2.0);
    std::vector<VideoFrame> frames;
    const VideoDecoder::Sink sink = [&](VideoFrame&& frame) {
        frames.push_back(std::move(frame));
        return true;
    };
    for (const EncodedPacket& packet : stream.packets) {
        ASSERT_TRUE(decoder->Decode({packet.bytes, packet.start / 2, kNoTime, packet.keyframe}, sink));
    }
    ASSERT_TRUE(decoder->Drain(sink));
    ASSERT_EQ(frames.size(), stream.pictures.size());
    for (std::size_t i = 0; i < frames.size(); ++i) {
        EXPECT_EQ(frames[i].start, stream.pictures[i]->pts / 2);
        EXPECT_EQ(frames[i].stop - frames[i].start, stream.frameDuration / 2);
    }
}

TEST(VideoDecoder, PicturesWithoutTimesFollowEachOther) {
    const VideoTestStream stream = MakeVideoTestStream({.bFrames = 0});
    const auto decoder = VideoDecoder::Create(*stream.parameters, stream.frameDuration, 2);
    ASSERT_TRUE(decoder);
    std::vector<Time100ns> starts;
    const VideoDecoder::Sink sink = [&](VideoFrame&& frame) {
        starts.push_back(frame.start);
        return true;
    };
    for (std::size_t i = 0; i < stream.packets.size(); ++i) {
        const Time100ns start = i == 0 ? 0 : kNoTime;
        ASSERT_TRUE(
            decoder->Decode({stream.packets[i].bytes, start, kNoTime, stream.packets[i].keyframe}, sink));
    }
    ASSERT_TRUE(decoder->Drain(sink));
    ASSERT_EQ(starts.size(), stream.pictures.size());
    for (std::size_t i = 0; i < starts.size(); ++i) {
        EXPECT_EQ(starts[i], static_cast<Time100ns>(i) * stream.frameDuration);
    }
}

TEST(VideoDecoder, APictureRoundedToJustBeforeTheSegmentIsShown) {
    const VideoTestStream stream = MakeVideoTestStream({});
    const auto decoder = VideoDecoder::Create(*stream.parameters, stream.frameDuration, 1);
    ASSERT_TRUE(decoder);
    // Containers count milliseconds: the picture meant by a start of 0.4 s may be stamped up to a millisecond
    // earlier.
    const Time100ns start = 10 * stream.frameDuration + 9'999;
    const auto keyframes = KeyframePackets(stream);
    decoder->StartSegment(1.0);
    ExpectPictures(DecodeFrom(*decoder, stream, keyframes[1], start), stream, 10, start);
    decoder->StartSegment(1.0);
    // The next one, as far behind the start, is the first of the segment: nothing stands before it.
    const Time100ns early = 11 * stream.frameDuration - 9'999;
    decoder->StartSegment(1.0);
    ExpectPictures(DecodeFrom(*decoder, stream, keyframes[1], early), stream, 11, early);
}

TEST(VideoDecoder, ThePictureThatStandsWhenTheSegmentStartsIsShownUntilTheNext) {
    const VideoTestStream stream = MakeVideoTestStream({});
    const auto decoder = VideoDecoder::Create(*stream.parameters, stream.frameDuration, 1);
    ASSERT_TRUE(decoder);
    const Time100ns start = 14 * stream.frameDuration + stream.frameDuration / 2;
    decoder->StartSegment(1.0);
    const Decoded decoded = DecodeFrom(*decoder, stream, KeyframePackets(stream)[1], start);
    ExpectPictures(decoded, stream, 14, start);
    EXPECT_EQ(decoded.frames[0].stop, 15 * stream.frameDuration - start);
}

TEST(VideoDecoder, BehindTheLastPictureTheLastOneIsShown) {
    const VideoTestStream stream = MakeVideoTestStream({});
    const auto decoder = VideoDecoder::Create(*stream.parameters, stream.frameDuration, 1);
    ASSERT_TRUE(decoder);
    const auto last = stream.pictures.size() - 1;
    const Time100ns start = static_cast<Time100ns>(last + 5) * stream.frameDuration;
    decoder->StartSegment(1.0);
    const Decoded decoded = DecodeFrom(*decoder, stream, KeyframePackets(stream).back(), start);
    ASSERT_EQ(decoded.frames.size(), 1U);
    EXPECT_EQ(decoded.frames[0].start, stream.pictures[last]->pts - start);
    EXPECT_EQ(decoded.frames[0].stop, 1) << "it is not over yet, or nothing would be shown";
}

TEST(VideoDecoder, RefusesWhatItCanNotDecode) {
    const ParametersPtr parameters(avcodec_parameters_alloc());
    EXPECT_FALSE(VideoDecoder::Create(*parameters, 0, 0));
    parameters->codec_type = AVMEDIA_TYPE_AUDIO;
    parameters->codec_id = AV_CODEC_ID_AAC;
    EXPECT_FALSE(VideoDecoder::Create(*parameters, 0, 0));
}

TEST(VideoDecoder, TakesEmptyPacketsAndDrainsWithoutAny) {
    const VideoTestStream stream = MakeVideoTestStream({.frames = 1});
    const auto decoder = VideoDecoder::Create(*stream.parameters, 0, 0);
    ASSERT_TRUE(decoder);
    int shown = 0;
    const VideoDecoder::Sink sink = [&](VideoFrame&&) {
        return ++shown > 0;
    };
    EXPECT_TRUE(decoder->Drain(sink));
    EXPECT_TRUE(decoder->Decode({}, sink));
    EXPECT_TRUE(decoder->Drain(sink));
    EXPECT_EQ(shown, 0);
    EXPECT_TRUE(decoder->Decode(PacketAt(stream.packets[0], 0), sink));
    EXPECT_TRUE(decoder->Drain(sink));
    EXPECT_EQ(shown, 1);
}

} // namespace
} // namespace brindlecast
