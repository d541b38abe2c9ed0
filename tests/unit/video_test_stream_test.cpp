#include "tests/unit/video_test_stream.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include <gtest/gtest.h>

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

namespace brindlecast {
namespace {

constexpr int kFramesPerSecond = 25;

void Require(bool condition, const char* what) {
    if (!condition) {
        throw std::runtime_error(what);
    }
}

void Receive(AVCodecContext& encoder, std::vector<EncodedPacket>& packets) {
    const PacketPtr packet(av_packet_alloc());
    while (avcodec_receive_packet(&encoder, packet.get()) == 0) {
        const Time100ns length = kTime100nsPerSecond / kFramesPerSecond;
        packets.push_back({{packet->data, packet->data + packet->size},
                           packet->pts * length,
                           length,
                           (packet->flags & AV_PKT_FLAG_KEY) != 0});
        av_packet_unref(packet.get());
    }
}

void DecodeAll(VideoTestStream& stream) {
    const CodecContextPtr decoder(avcodec_alloc_context3(avcodec_find_decoder(stream.parameters->codec_id)));
    Require(avcodec_parameters_to_context(decoder.get(), stream.parameters.get()) >= 0, "parameters");
    decoder->pkt_timebase = kTimebase100ns;
    decoder->thread_count = 1;
    Require(avcodec_open2(decoder.get(), nullptr, nullptr) >= 0, "reference decoder");
    const PacketPtr packet(av_packet_alloc());
    auto receive = [&] {
        for (;;) {
            FramePtr picture(av_frame_alloc());
            if (avcodec_receive_frame(decoder.get(), picture.get()) < 0) {
                return;
            }
            picture->pts = picture->best_effort_timestamp;
            stream.pictures.push_back(std::move(picture));
        }
    };
    for (const EncodedPacket& encoded : stream.packets) {
        Require(av_new_packet(packet.get(), static_cast<int>(encoded.bytes.size())) >= 0, "packet");
        std::memcpy(packet->data, encoded.bytes.data(), encoded.bytes.size());
        packet->pts = encoded.start;
        Require(avcodec_send_packet(decoder.get(), packet.get()) >= 0, "reference packet");
        av_packet_unref(packet.get());
        receive();
    }
    avcodec_send_packet(decoder.get(), nullptr);
    receive();
}

} // namespace

bool CanEncode(AVCodecID codec) {
    return avcodec_find_encoder(codec) != nullptr;
}

FramePtr MakeTestPicture(AVPixelFormat format, int width, int height, int seed) {
    FramePtr picture(av_frame_alloc());
    picture->format = format;
    picture->width = width;
    picture->height = height;
    Require(av_frame_get_buffer(picture.get(), 0) >= 0, "picture memory");
    const AVPixFmtDescriptor* description = av_pix_fmt_desc_get(format);
    const int planes = av_pix_fmt_count_planes(format);
    const int depth = description->comp[0].depth;
    for (int plane = 0; plane < planes; ++plane) {
        const bool chroma = plane == 1 || plane == 2;
        const int rows = chroma ? AV_CEIL_RSHIFT(height, description->log2_chroma_h) : height;
        const int bytes = av_image_get_linesize(format, width, plane);
        for (int row = 0; row < rows; ++row) {
            std::uint8_t* to = picture->data[plane] + std::ptrdiff_t{row} * picture->linesize[plane];
            if (depth <= 8) {
                for (int x = 0; x < bytes; ++x) {
                    to[x] = static_cast<std::uint8_t>(40 + (2 * x + 3 * row + 50 * plane + 7 * seed) % 160);
                }
            } else {
                for (int x = 0; x < bytes / 2; ++x) {
                    const auto value = static_cast<std::uint16_t>(
                        (160 + 9 * x + 13 * row + 200 * plane + 29 * seed) % ((1 << depth) - 300) + 100);
                    std::memcpy(to + 2 * x, &value, sizeof value);
                }
            }
        }
    }
    return picture;
}

VideoTestStream MakeVideoTestStream(const VideoTestStreamOptions& options) {
    const AVCodec* codec = avcodec_find_encoder(options.codec);
    Require(codec != nullptr, "encoder");
    const CodecContextPtr encoder(avcodec_alloc_context3(codec));
    encoder->width = options.width;
    encoder->height = options.height;
    encoder->pix_fmt = options.format;
    encoder->time_base = {1, kFramesPerSecond};
    encoder->framerate = {kFramesPerSecond, 1};
    encoder->gop_size = options.keyframeDistance;
    encoder->max_b_frames = options.bFrames;
    encoder->bit_rate = 2'000'000;
    // Closed groups of pictures that begin every `keyframeDistance` pictures whatever is in them.
    encoder->flags = AV_CODEC_FLAG_GLOBAL_HEADER | AV_CODEC_FLAG_CLOSED_GOP;
    av_opt_set(encoder->priv_data, "sc_threshold", "1000000000", 0);
    av_opt_set(encoder->priv_data, "x264-params", "scenecut=0:open-gop=0:keyint=10:min-keyint=10", 0);
    Require(avcodec_open2(encoder.get(), codec, nullptr) >= 0, "open encoder");

    VideoTestStream stream;
    stream.frameDuration = kTime100nsPerSecond / kFramesPerSecond;
    for (int i = 0; i < options.frames; ++i) {
        const FramePtr picture = MakeTestPicture(options.format, options.width, options.height, i);
        picture->pts = i;
        Require(avcodec_send_frame(encoder.get(), picture.get()) >= 0, "encode");
        Receive(*encoder, stream.packets);
    }
    Require(avcodec_send_frame(encoder.get(), nullptr) >= 0, "end of encoding");
    Receive(*encoder, stream.packets);
    stream.parameters.reset(avcodec_parameters_alloc());
    Require(avcodec_parameters_from_context(stream.parameters.get(), encoder.get()) >= 0, "parameters");
    DecodeAll(stream);
    return stream;
}

std::vector<std::uint8_t> PictureContent(const AVFrame& picture) {
    const auto format = static_cast<AVPixelFormat>(picture.format);
    const int size = av_image_get_buffer_size(format, picture.width, picture.height, 1);
    std::vector<std::uint8_t> content(static_cast<std::size_t>(std::max(size, 0)));
    Require(av_image_copy_to_buffer(content.data(), size, picture.data, picture.linesize, format,
                                    picture.width, picture.height, 1) >= 0,
            "copy");
    return content;
}

namespace {

TEST(VideoTestStream, PicturesDifferAndKeyframesStandWhereTheyWereAskedFor) {
    const VideoTestStream stream = MakeVideoTestStream({.frames = 25});
    ASSERT_EQ(stream.pictures.size(), 25U);
    for (std::size_t i = 1; i < stream.pictures.size(); ++i) {
        EXPECT_NE(PictureContent(*stream.pictures[i]), PictureContent(*stream.pictures[i - 1]));
    }
    std::vector<Time100ns> keyframes;
    bool reordered = false;
    for (std::size_t i = 0; i < stream.packets.size(); ++i) {
        if (stream.packets[i].keyframe) {
            keyframes.push_back(stream.packets[i].start / stream.frameDuration);
        }
        reordered = reordered || (i > 0 && stream.packets[i].start < stream.packets[i - 1].start);
    }
    EXPECT_EQ(keyframes, (std::vector<Time100ns>{0, 10, 20}));
    EXPECT_TRUE(reordered);
}

} // namespace
} // namespace brindlecast
