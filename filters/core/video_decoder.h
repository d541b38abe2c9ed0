#pragma once

#include "filters/core/audio_video_types.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

namespace brindlecast {

// A block of data beside a packet, as the library defines it for its type. The bytes are not kept.
struct CodecSideData {
    AVPacketSideDataType type = AV_PKT_DATA_NB;
    std::span<const std::uint8_t> bytes;
};

// One compressed picture. The bytes need no padding and are not kept.
struct VideoPacket {
    std::span<const std::uint8_t> data;
    // Presentation time on the segment's time line (already divided by its rate), kNoTime when unknown.
    Time100ns start = kNoTime;
    // End of the presentation, kNoTime when unknown.
    Time100ns stop = kNoTime;
    bool keyframe = false;
    std::span<const CodecSideData> sideData = {};
};

// One decoded picture. Times are on the segment's time line; `stop` is never before `start`.
struct VideoFrame {
    FramePtr picture;
    Time100ns start = 0;
    Time100ns stop = 0;
};

// Software decoding of one video stream: packets in, pictures in order of presentation out. Pictures whose
// time lies before the start of the segment (time 0) are decoded and kept back. One thread at a time.
class VideoDecoder {
public:
    // Takes a picture; false ends the delivery (the graph is flushing or has stopped).
    using Sink = std::function<bool(VideoFrame&&)>;

    // `frameDuration` is the length of a picture on the stream's own time line, 0 when unknown; `threads` 0
    // means as many as the library thinks fit. Null when there is no decoder for the stream or it refuses
    // the set-up data.
    [[nodiscard]] static std::unique_ptr<VideoDecoder> Create(const AVCodecParameters& parameters,
                                                              Time100ns frameDuration, int threads);

    // Starts a segment: forgets everything that was decoded; `rate` is the factor that packet times were
    // divided by.
    void StartSegment(double rate);

    // Forgets everything that was decoded; the segment goes on.
    void Flush();

    // Decodes one packet. Broken data yields no picture and is no failure. False when the sink refused a
    // picture.
    bool Decode(const VideoPacket& packet, const Sink& sink);

    // Hands out the pictures that wait for others to come. The next packet starts afresh.
    bool Drain(const Sink& sink);

    // Packets that the library called broken since creation.
    [[nodiscard]] std::int64_t brokenPackets() const { return brokenPackets_; }
    [[nodiscard]] const AVCodecContext& context() const { return *context_; }

private:
    explicit VideoDecoder(CodecContextPtr context, Time100ns frameDuration);

    bool SendAndReceive(const AVPacket* packet, const Sink& sink);
    bool ReceiveAll(const Sink& sink);
    bool ShowFirstAtOnce(const AVPacket& packet, const Sink& sink);
    bool Emit(FramePtr picture, const Sink& sink);
    [[nodiscard]] Time100ns LengthOf(const AVFrame& picture) const;
    [[nodiscard]] Time100ns Tolerance() const;
    [[nodiscard]] bool IsBeforeSegment(Time100ns start) const { return start < -Tolerance(); }

    CodecContextPtr context_;
    PacketPtr packet_;
    Time100ns frameDuration_;
    double rate_ = 1.0;
    // No packet has gone in since the start or the last flush.
    bool fresh_ = true;
    // Pictures up to this time were shown ahead of the regular decoding.
    Time100ns shownUntil_ = kNoTime;
    // Where the next picture without a time of its own goes.
    Time100ns nextStart_ = 0;
    std::int64_t brokenPackets_ = 0;
};

} // namespace brindlecast
