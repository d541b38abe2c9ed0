#pragma once

#include <cstdint>
#include <limits>
#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
}

namespace brindlecast {

// Times in units of 100 ns.
using Time100ns = std::int64_t;
inline constexpr Time100ns kTime100nsPerSecond = 10'000'000;
// Stands for a time that is not known.
inline constexpr Time100ns kNoTime = std::numeric_limits<Time100ns>::min();
inline constexpr AVRational kTimebase100ns = {1, static_cast<int>(kTime100nsPerSecond)};
static_assert(kNoTime == AV_NOPTS_VALUE);

struct FrameDeleter {
    void operator()(AVFrame* frame) const noexcept { av_frame_free(&frame); }
};
struct PacketDeleter {
    void operator()(AVPacket* packet) const noexcept { av_packet_free(&packet); }
};
struct CodecContextDeleter {
    void operator()(AVCodecContext* context) const noexcept { avcodec_free_context(&context); }
};
struct ParametersDeleter {
    void operator()(AVCodecParameters* parameters) const noexcept { avcodec_parameters_free(&parameters); }
};

using FramePtr = std::unique_ptr<AVFrame, FrameDeleter>;
using PacketPtr = std::unique_ptr<AVPacket, PacketDeleter>;
using CodecContextPtr = std::unique_ptr<AVCodecContext, CodecContextDeleter>;
using ParametersPtr = std::unique_ptr<AVCodecParameters, ParametersDeleter>;

} // namespace brindlecast
