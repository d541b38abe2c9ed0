#pragma once

#include "filters/core/audio_video_types.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace brindlecast {

struct EncodedPacket {
    std::vector<std::uint8_t> bytes;
    Time100ns start = 0;
    Time100ns duration = 0;
    bool keyframe = false;
};

// A stream made by one of the library's own encoders, and what the library decodes of it by itself with one
// thread.
struct VideoTestStream {
    ParametersPtr parameters;
    std::vector<EncodedPacket> packets; // in decoding order
    std::vector<FramePtr> pictures;     // in presentation order, pts in 100 ns
    Time100ns frameDuration = 0;
};

struct VideoTestStreamOptions {
    AVCodecID codec = AV_CODEC_ID_MPEG4;
    int width = 64;
    int height = 48;
    int frames = 40;
    int keyframeDistance = 10;
    int bFrames = 2;
    AVPixelFormat format = AV_PIX_FMT_YUV420P;
};

[[nodiscard]] bool CanEncode(AVCodecID codec);

// 25 pictures a second, each different from the others. Throws std::runtime_error when the encoder fails.
[[nodiscard]] VideoTestStream MakeVideoTestStream(const VideoTestStreamOptions& options);

// A picture of that format with a pattern in which no two rows, columns or planes are equal; `seed` moves
// it.
[[nodiscard]] FramePtr MakeTestPicture(AVPixelFormat format, int width, int height, int seed);

// All samples of the visible picture, plane by plane, without padding.
[[nodiscard]] std::vector<std::uint8_t> PictureContent(const AVFrame& picture);

} // namespace brindlecast
