#pragma once

#include "filters/core/codec_session.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
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

// Software decoding of one video stream: packets in, pictures in order of presentation out. Of the pictures
// that begin before the start of the segment (time 0) only the last is handed out, if it still stands when
// the segment starts: that is the picture of that time. One thread at a time.
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
    void StartSegment(double newRate);

    // Forgets everything that was decoded; the segment goes on.
    void Flush();

    // Decodes one packet. Broken data yields no picture and is no failure. False when the sink refused a
    // picture.
    bool Decode(const VideoPacket& packet, const Sink& sink);

    // Hands out the pictures that wait for others to come. The next packet starts afresh.
    bool Drain(const Sink& sink);

    // Packets that the library called broken since creation.
    [[nodiscard]] std::int64_t BrokenPackets() const { return session.BrokenPackets(); }
    [[nodiscard]] const AVCodecContext& Context() const { return session.Context(); }

private:
    VideoDecoder(CodecSession openSession, Time100ns frameDuration);

    bool Send(const AVPacket* packet, const Sink& sink);
    bool ShowFirstAtOnce(const AVPacket& packet, const Sink& sink);
    bool Emit(FramePtr picture, const Sink& sink);
    bool EmitStanding(Time100ns until, const Sink& sink);
    [[nodiscard]] Time100ns LengthOf(const AVFrame& picture) const;
    [[nodiscard]] Time100ns Tolerance() const;
    [[nodiscard]] bool IsBeforeSegment(Time100ns start) const { return start < -Tolerance(); }

    CodecSession session;
    Time100ns nominalDuration;
    double rate = 1.0;
    // No packet has gone in since the start or the last flush.
    bool fresh = true;
    // The latest picture from before the segment, until one of the segment has come.
    std::optional<VideoFrame> standing;
    // Pictures up to this time were shown ahead of the regular decoding.
    Time100ns shownUntil = kNoTime;
    // Where the next picture without a time of its own goes.
    Time100ns nextStart = 0;
};

} // namespace brindlecast
