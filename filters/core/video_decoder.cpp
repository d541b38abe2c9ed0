#include "filters/core/video_decoder.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <utility>

namespace brindlecast {
namespace {

// Containers round times to a millisecond: a picture that close before the start of the segment is meant.
constexpr Time100ns kContainerRounding = 10'000;
constexpr Time100ns kAssumedFrameDuration = kTime100nsPerSecond / 25;

// Frame threads beyond these cost memory and seeking time and bring nothing.
constexpr int kMaxThreads = 16;

void AddSideData(AVPacket& packet, const CodecSideData& block) {
    std::uint8_t* data = av_packet_new_side_data(&packet, block.type, block.bytes.size());
    if (!data) {
        throw std::bad_alloc();
    }
    std::memcpy(data, block.bytes.data(), block.bytes.size());
}

} // namespace

std::unique_ptr<VideoDecoder> VideoDecoder::Create(const AVCodecParameters& parameters,
                                                   Time100ns frameDuration, int threads) {
    auto session = CodecSession::Open(parameters, AVMEDIA_TYPE_VIDEO, [&](AVCodecContext& context) {
        context.thread_count = std::clamp(threads, 0, kMaxThreads);
        context.thread_type = FF_THREAD_FRAME | FF_THREAD_SLICE;
    });
    if (!session) {
        return nullptr;
    }
    return std::unique_ptr<VideoDecoder>(new VideoDecoder(std::move(*session), frameDuration));
}

VideoDecoder::VideoDecoder(CodecSession openSession, Time100ns frameDuration)
    : session(std::move(openSession)), nominalDuration(std::max<Time100ns>(frameDuration, 0)) {}

void VideoDecoder::StartSegment(double newRate) {
    Flush();
    rate = newRate > 0.0 ? newRate : 1.0;
}

void VideoDecoder::Flush() {
    session.Flush();
    fresh = true;
    standing.reset();
    shownUntil = kNoTime;
    nextStart = 0;
}

bool VideoDecoder::Decode(const VideoPacket& packet, const Sink& sink) {
    AVPacket* const filled = session.Fill(packet.data);
    if (filled == nullptr) {
        return true;
    }
    filled->pts = packet.start;
    filled->duration = packet.start != kNoTime && packet.stop > packet.start ? packet.stop - packet.start : 0;
    filled->flags = packet.keyframe ? AV_PKT_FLAG_KEY : 0;
    for (const CodecSideData& block : packet.sideData) {
        AddSideData(*filled, block);
    }

    const bool first = std::exchange(fresh, false);
    if (first && packet.keyframe && packet.start != kNoTime && !IsBeforeSegment(packet.start) &&
        !ShowFirstAtOnce(*filled, sink)) {
        return false;
    }
    const bool goesOn = Send(filled, sink);
    session.Discard();
    return goesOn;
}

bool VideoDecoder::Drain(const Sink& sink) {
    // A segment that begins behind the last picture shows that one.
    const bool goesOn = (fresh || Send(nullptr, sink)) && EmitStanding(1, sink);
    const Time100ns next = nextStart;
    Flush();
    nextStart = next;
    return goesOn;
}

// Frame threads and reordering hold the first picture back until several packets more have come. Draining
// makes it come out now; as a drained decoder takes nothing more, it starts anew with the same packet and
// its second copy of the picture is kept back. Decoding one picture twice takes a fraction of the time that
// filling the threads does.
bool VideoDecoder::ShowFirstAtOnce(const AVPacket& packet, const Sink& sink) {
    Time100ns last = kNoTime;
    const Sink remembering = [&](VideoFrame&& frame) {
        last = std::max(last, frame.start);
        return sink(std::move(frame));
    };
    const bool goesOn = Send(&packet, remembering) && Send(nullptr, remembering);
    const Time100ns next = nextStart;
    Flush();
    nextStart = next;
    fresh = false;
    shownUntil = last;
    return goesOn;
}

bool VideoDecoder::Send(const AVPacket* packet, const Sink& sink) {
    return session.Send(packet, [&](FramePtr picture) { return Emit(std::move(picture), sink); });
}

bool VideoDecoder::Emit(FramePtr picture, const Sink& sink) {
    VideoFrame frame;
    frame.start =
        picture->best_effort_timestamp != AV_NOPTS_VALUE ? picture->best_effort_timestamp : nextStart;
    frame.stop = frame.start + LengthOf(*picture);
    nextStart = frame.stop;
    if (shownUntil != kNoTime) {
        if (frame.start <= shownUntil) {
            return true;
        }
        shownUntil = kNoTime;
    }
    if (picture->width <= 0 || picture->height <= 0) {
        return true;
    }
    const Time100ns start = frame.start;
    frame.picture = std::move(picture);
    if (IsBeforeSegment(start)) {
        standing = std::move(frame);
        return true;
    }
    if (start <= Tolerance()) {
        standing.reset(); // this one begins with the segment
    }
    return EmitStanding(start, sink) && sink(std::move(frame));
}

// How long a picture stands is told by the one behind it: what the container says can be wrong.
bool VideoDecoder::EmitStanding(Time100ns until, const Sink& sink) {
    if (!standing) {
        return true;
    }
    VideoFrame frame = std::move(*standing);
    standing.reset();
    frame.stop = std::max(frame.stop, until);
    return sink(std::move(frame));
}

Time100ns VideoDecoder::LengthOf(const AVFrame& picture) const {
    if (picture.pkt_duration > 0) {
        return picture.pkt_duration;
    }
    const Time100ns base = nominalDuration > 0 ? nominalDuration : kAssumedFrameDuration;
    const double fields = 2.0 + std::clamp(picture.repeat_pict, 0, 10);
    return std::max<Time100ns>(1, std::llround(static_cast<double>(base) * fields / 2.0 / rate));
}

Time100ns VideoDecoder::Tolerance() const {
    const Time100ns base = nominalDuration > 0 ? nominalDuration : kAssumedFrameDuration;
    return std::min<Time100ns>(kContainerRounding, std::llround(static_cast<double>(base) / rate / 4.0));
}

} // namespace brindlecast
