#include "filters/core/audio_decoder.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

extern "C" {
#include <libavutil/intreadwrite.h>
#include <libavutil/opt.h>
}

namespace brindlecast {
namespace {

// Packet times that stray no further from the count of samples are rounding; beyond it there is a gap.
constexpr Time100ns kMaxStray = 150'000;
// More than any packet holds frames.
constexpr int kMaxFailuresInARow = 64;

// The layout of AV_PKT_DATA_SKIP_SAMPLES: two 32-bit little-endian counts and two bytes of reasons.
bool AddSkipping(AVPacket& packet, std::uint32_t atStart, std::uint32_t atEnd) {
    constexpr std::size_t kBytes = 10;
    std::uint8_t* data = av_packet_new_side_data(&packet, AV_PKT_DATA_SKIP_SAMPLES, kBytes);
    if (!data) {
        return false;
    }
    AV_WL32(data, atStart);
    AV_WL32(data + 4, atEnd);
    data[8] = 0;
    data[9] = 0;
    return true;
}

} // namespace

void DropFirstSamples(AVFrame& samples, int count) {
    count = std::clamp(count, 0, samples.nb_samples);
    const auto format = static_cast<AVSampleFormat>(samples.format);
    const int channels = samples.ch_layout.nb_channels;
    const bool planar = av_sample_fmt_is_planar(format) != 0;
    const int planes = planar ? channels : 1;
    const std::ptrdiff_t bytes =
        std::ptrdiff_t{count} * av_get_bytes_per_sample(format) * (planar ? 1 : channels);
    for (int plane = 0; plane < planes; ++plane) {
        samples.extended_data[plane] += bytes;
        if (samples.extended_data != samples.data && plane < AV_NUM_DATA_POINTERS) {
            samples.data[plane] += bytes;
        }
    }
    samples.nb_samples -= count;
}

std::unique_ptr<AudioDecoder> AudioDecoder::Create(const AVCodecParameters& parameters) {
    const AVCodec* codec = avcodec_find_decoder(parameters.codec_id);
    if (!codec || codec->type != AVMEDIA_TYPE_AUDIO) {
        return nullptr;
    }
    CodecContextPtr context(avcodec_alloc_context3(codec));
    if (!context || avcodec_parameters_to_context(context.get(), &parameters) < 0) {
        return nullptr;
    }
    context->pkt_timebase = kTimebase100ns;
    context->thread_count = 1;
    if (avcodec_open2(context.get(), codec, nullptr) < 0) {
        return nullptr;
    }
    std::unique_ptr<AudioDecoder> decoder(new AudioDecoder(std::move(context), parameters));
    decoder->SetCompression(0.0);
    return decoder->packet_ ? std::move(decoder) : nullptr;
}

AudioDecoder::AudioDecoder(CodecContextPtr context, const AVCodecParameters& parameters)
    : context_(std::move(context)), packet_(av_packet_alloc()),
      significantBits_(parameters.bits_per_raw_sample) {
    if (significantBits_ == 0) {
        significantBits_ = parameters.bits_per_coded_sample;
    }
}

void AudioDecoder::StartSegment(double rate) {
    Flush();
    rate_ = rate > 0.0 ? rate : 1.0;
}

void AudioDecoder::Flush() {
    avcodec_flush_buffers(context_.get());
    anchor_ = kNoTime;
    samplesSinceAnchor_ = 0;
    discontinuity_ = true;
}

bool AudioDecoder::Decode(const AudioPacket& packet, const Sink& sink) {
    if (packet.data.empty() ||
        packet.data.size() > static_cast<std::size_t>(std::numeric_limits<int>::max() / 2)) {
        return true;
    }
    if (packet.discontinuity) {
        anchor_ = kNoTime;
        discontinuity_ = true;
    }
    // A new buffer with the padding that the library's bit readers run into.
    av_packet_unref(packet_.get());
    if (av_new_packet(packet_.get(), static_cast<int>(packet.data.size())) < 0) {
        throw std::bad_alloc();
    }
    std::memcpy(packet_->data, packet.data.data(), packet.data.size());
    packet_->pts = packet.start;
    packet_->flags = AV_PKT_FLAG_KEY;
    if ((packet.skipAtStart > 0 || packet.skipAtEnd > 0) &&
        !AddSkipping(*packet_, packet.skipAtStart, packet.skipAtEnd)) {
        throw std::bad_alloc();
    }
    const bool goesOn = SendAndReceive(packet_.get(), sink);
    av_packet_unref(packet_.get());
    return goesOn;
}

bool AudioDecoder::Drain(const Sink& sink) {
    const bool goesOn = SendAndReceive(nullptr, sink);
    Flush();
    return goesOn;
}

bool AudioDecoder::SetCompression(double scale) {
    const AVCodecID codec = context_->codec_id;
    return (codec == AV_CODEC_ID_AC3 || codec == AV_CODEC_ID_EAC3) &&
           av_opt_set_double(context_->priv_data, "drc_scale", std::clamp(scale, 0.0, 1.0), 0) >= 0;
}

AudioFormat AudioDecoder::NaturalFormat() const {
    const AVChannelLayout& layout = context_->ch_layout;
    AudioFormat format;
    format.kind = NaturalKind(context_->sample_fmt, significantBits_);
    format.sampleRate = context_->sample_rate;
    format.channels = layout.nb_channels;
    constexpr std::uint64_t kPlatformSpeakers = 0x3FFFF;
    if (layout.order == AV_CHANNEL_ORDER_NATIVE && (layout.u.mask & ~kPlatformSpeakers) == 0) {
        format.channelMask = static_cast<std::uint32_t>(layout.u.mask);
    } else {
        format.channelMask = UsualChannelMask(format.channels);
    }
    return format;
}

bool AudioDecoder::SendAndReceive(const AVPacket* packet, const Sink& sink) {
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

bool AudioDecoder::ReceiveAll(const Sink& sink) {
    for (int failures = 0; failures < kMaxFailuresInARow;) {
        FramePtr samples(av_frame_alloc());
        if (!samples) {
            throw std::bad_alloc();
        }
        const int received = avcodec_receive_frame(context_.get(), samples.get());
        if (received == AVERROR(EAGAIN) || received == AVERROR_EOF) {
            return true;
        }
        if (received < 0) {
            ++brokenPackets_;
            ++failures;
            continue;
        }
        failures = 0;
        if (!Emit(std::move(samples), sink)) {
            return false;
        }
    }
    return true;
}

bool AudioDecoder::Emit(FramePtr samples, const Sink& sink) {
    if (samples->nb_samples <= 0 || samples->sample_rate <= 0 || samples->ch_layout.nb_channels <= 0) {
        return true;
    }
    PlaceOnTimeLine(*samples);
    Time100ns start = Now(samples->sample_rate);
    samplesSinceAnchor_ += samples->nb_samples;
    if (start < 0) {
        // The first sample that is kept is the one nearest to the start of the segment.
        const double early = static_cast<double>(-start) * rate_ * samples->sample_rate / kTime100nsPerSecond;
        const auto dropped = static_cast<int>(std::min<double>(std::llround(early), samples->nb_samples));
        DropFirstSamples(*samples, dropped);
        if (samples->nb_samples == 0) {
            return true;
        }
        // What follows is counted from there, so that the cut leaves no step of a part of a sample.
        start = 0;
        anchor_ = 0;
        samplesSinceAnchor_ = samples->nb_samples;
    }
    return sink({std::move(samples), start, std::exchange(discontinuity_, false)});
}

// Counts on from the last known time, unless there is none or the packet's own time tells of a gap.
void AudioDecoder::PlaceOnTimeLine(const AVFrame& samples) {
    const Time100ns own = samples.best_effort_timestamp;
    if (anchor_ != kNoTime) {
        const Time100ns counted = Now(countedRate_);
        const bool gap = own != AV_NOPTS_VALUE && std::abs(own - counted) > kMaxStray;
        if (!gap && samples.sample_rate == countedRate_) {
            return;
        }
        discontinuity_ = discontinuity_ || gap;
        anchor_ = gap ? own : counted;
    } else {
        anchor_ = own != AV_NOPTS_VALUE ? own : 0;
    }
    samplesSinceAnchor_ = 0;
    countedRate_ = samples.sample_rate;
}

Time100ns AudioDecoder::Now(int sampleRate) const {
    return anchor_ +
           std::llround(static_cast<double>(samplesSinceAnchor_) * kTime100nsPerSecond / sampleRate / rate_);
}

} // namespace brindlecast
