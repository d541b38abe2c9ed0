#include "filters/core/video_decoder.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace brindlecast {
namespace {

// Containers round times to a millisecond: a picture that close before the start of the segment is meant.
constexpr Time100ns kContainerRounding = 10'000;
constexpr Time100ns kAssumedFrameDuration = kTime100nsPerSecond / 25;

// Frame threads beyond these cost memory and seeking time and bring nothing.
constexpr int kMaxThreads = 16;
// More than there are threads that can each hold a broken picture.
constexpr int kMaxFailuresInARow = 64;

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
    const AVCodec* codec = avcodec_find_decoder(parameters.codec_id);
    if (!codec || codec->type != AVMEDIA_TYPE_VIDEO) {
        return nullptr;
    }
    CodecContextPtr context(avcodec_alloc_context3(codec));
    if (!context || avcodec_parameters_to_context(context.get(), &parameters) < 0) {
        return nullptr;
    }
    context->pkt_timebase = kTimebase100ns;
    context->thread_count = std::clamp(threads, 0, kMaxThreads);
    context->thread_type = FF_THREAD_FRAME | FF_THREAD_SLICE;
    if (avcodec_open2(context.get(), codec, nullptr) < 0) {
        return nullptr;
    }
    std::unique_ptr<VideoDecoder> decoder(new VideoDecoder(std::move(context), frameDuration));
    return decoder->packet_ ? std::move(decoder) : nullptr;
}

VideoDecoder::VideoDecoder(CodecContextPtr context, Time100ns frameDuration)
    : context_(std::move(context)), packet_(av_packet_alloc()),
      frameDuration_(std::max<Time100ns>(frameDuration, 0)) {}

void VideoDecoder::StartSegment(double rate) {
    Flush();
    rate_ = rate > 0.0 ? rate : 1.0;
}

void VideoDecoder::Flush() {
    avcodec_flush_buffers(context_.get());
    fresh_ = true;
    shownUntil_ = kNoTime;
    nextStart_ = 0;
}

bool VideoDecoder::Decode(const VideoPacket& packet, const Sink& sink) {
    if (packet.data.empty() ||
        packet.data.size() > static_cast<std::size_t>(std::numeric_limits<int>::max() / 2)) {
        return true;
    }
    // A new buffer with the padding that the library's bit readers run into.
    av_packet_unref(packet_.get());
    if (av_new_packet(packet_.get(), static_cast<int>(packet.data.size())) < 0) {
        throw std::bad_alloc();
    }
    std::memcpy(packet_->data, packet.data.data(), packet.data.size());
    packet_->pts = packet.start;
    packet_->duration =
        packet.start != kNoTime && packet.stop > packet.start ? packet.stop - packet.start : 0;
    packet_->flags = packet.keyframe ? AV_PKT_FLAG_KEY : 0;
    for (const CodecSideData& block : packet.sideData) {
        AddSideData(*packet_, block);
    }

    const bool first = std::exchange(fresh_, false);
    if (first && packet.keyframe && packet.start != kNoTime && !IsBeforeSegment(packet.start) &&
        !ShowFirstAtOnce(*packet_, sink)) {
        return false;
    }
    const bool goesOn = SendAndReceive(packet_.get(), sink);
    av_packet_unref(packet_.get());
    return goesOn;
}

bool VideoDecoder::Drain(const Sink& sink) {
    const bool goesOn = fresh_ || SendAndReceive(nullptr, sink);
    const Time100ns next = nextStart_;
    Flush();
    nextStart_ = next;
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
    const bool goesOn = SendAndReceive(&packet, remembering) && SendAndReceive(nullptr, remembering);
    const Time100ns next = nextStart_;
    Flush();
    nextStart_ = next;
    fresh_ = false;
    shownUntil_ = last;
    return goesOn;
}

bool VideoDecoder::SendAndReceive(const AVPacket* packet, const Sink& sink) {
    for (;;) {
        const int sent = avcodec_send_packet(context_.get(), packet);
        if (!ReceiveAll(sink)) {
            return false;
        }
        if (sent != AVERROR(EAGAIN)) {
            brokenPackets_ += sent < 0 && sent != AVERROR_EOF;
            return true;
        }
    }
}

bool VideoDecoder::ReceiveAll(const Sink& sink) {
    for (int failures = 0; failures < kMaxFailuresInARow;) {
        FramePtr picture(av_frame_alloc());
        if (!picture) {
            throw std::bad_alloc();
        }
        const int received = avcodec_receive_frame(context_.get(), picture.get());
        if (received == AVERROR(EAGAIN) || received == AVERROR_EOF) {
            return true;
        }
        if (received < 0) {
            // A broken picture found late, on a decoding thread; those behind it are still to come.
            ++brokenPackets_;
            ++failures;
            continue;
        }
        failures = 0;
        if (!Emit(std::move(picture), sink)) {
            return false;
        }
    }
    return true;
}

bool VideoDecoder::Emit(FramePtr picture, const Sink& sink) {
    VideoFrame frame;
    frame.start =
        picture->best_effort_timestamp != AV_NOPTS_VALUE ? picture->best_effort_timestamp : nextStart_;
    frame.stop = frame.start + LengthOf(*picture);
    nextStart_ = frame.stop;
    if (shownUntil_ != kNoTime) {
        if (frame.start <= shownUntil_) {
            return true;
        }
        shownUntil_ = kNoTime;
    }
    if (IsBeforeSegment(frame.start) || picture->width <= 0 || picture->height <= 0) {
        return true;
    }
    frame.picture = std::move(picture);
    return sink(std::move(frame));
}

Time100ns VideoDecoder::LengthOf(const AVFrame& picture) const {
    if (picture.pkt_duration > 0) {
        return picture.pkt_duration;
    }
    const Time100ns base = frameDuration_ > 0 ? frameDuration_ : kAssumedFrameDuration;
    const double fields = 2.0 + std::clamp(picture.repeat_pict, 0, 10);
    return std::max<Time100ns>(1, std::llround(static_cast<double>(base) * fields / 2.0 / rate_));
}

Time100ns VideoDecoder::Tolerance() const {
    const Time100ns base = frameDuration_ > 0 ? frameDuration_ : kAssumedFrameDuration;
    return std::min<Time100ns>(kContainerRounding, std::llround(static_cast<double>(base) / rate_ / 4.0));
}

} // namespace brindlecast
