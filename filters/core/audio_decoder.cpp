#include "filters/core/audio_decoder.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
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
    auto session = CodecSession::Open(parameters, AVMEDIA_TYPE_AUDIO,
                                      [](AVCodecContext& context) { context.thread_count = 1; });
    if (!session) {
        return nullptr;
    }
    std::unique_ptr<AudioDecoder> decoder(new AudioDecoder(std::move(*session), parameters));
    decoder->SetCompression(0.0);
    return decoder;
}

AudioDecoder::AudioDecoder(CodecSession openSession, const AVCodecParameters& parameters)
    : session(std::move(openSession)), significantBits(parameters.bits_per_raw_sample) {
    if (significantBits == 0) {
        significantBits = parameters.bits_per_coded_sample;
    }
}

void AudioDecoder::StartSegment(double newRate) {
    Flush();
    rate = newRate > 0.0 ? newRate : 1.0;
}

void AudioDecoder::Flush() {
    session.Flush();
    anchor = kNoTime;
    samplesSinceAnchor = 0;
    discontinuity = true;
}

bool AudioDecoder::Decode(const AudioPacket& packet, const Sink& sink) {
    AVPacket* const filled = session.Fill(packet.data);
    if (filled == nullptr) {
        return true;
    }
    if (packet.discontinuity) {
        anchor = kNoTime;
        discontinuity = true;
    }
    filled->pts = packet.start;
    filled->flags = AV_PKT_FLAG_KEY;
    if ((packet.skipAtStart > 0 || packet.skipAtEnd > 0) &&
        !AddSkipping(*filled, packet.skipAtStart, packet.skipAtEnd)) {
        throw std::bad_alloc();
    }
    const bool goesOn = Send(filled, sink);
    session.Discard();
    return goesOn;
}

bool AudioDecoder::Drain(const Sink& sink) {
    const bool goesOn = Send(nullptr, sink);
    Flush();
    return goesOn;
}

bool AudioDecoder::Send(const AVPacket* packet, const Sink& sink) {
    return session.Send(packet, [&](FramePtr samples) { return Emit(std::move(samples), sink); });
}

bool AudioDecoder::SetCompression(double scale) {
    const AVCodecID codec = Context().codec_id;
    return (codec == AV_CODEC_ID_AC3 || codec == AV_CODEC_ID_EAC3) &&
           av_opt_set_double(Context().priv_data, "drc_scale", std::clamp(scale, 0.0, 1.0), 0) >= 0;
}

AudioFormat AudioDecoder::NaturalFormat() const {
    const AVChannelLayout& layout = Context().ch_layout;
    AudioFormat format;
    format.kind = NaturalKind(Context().sample_fmt, significantBits);
    format.sampleRate = Context().sample_rate;
    format.channels = layout.nb_channels;
    constexpr std::uint64_t kPlatformSpeakers = 0x3FFFF;
    if (layout.order == AV_CHANNEL_ORDER_NATIVE && (layout.u.mask & ~kPlatformSpeakers) == 0) {
        format.channelMask = static_cast<std::uint32_t>(layout.u.mask);
    } else {
        format.channelMask = UsualChannelMask(format.channels);
    }
    return format;
}

bool AudioDecoder::Emit(FramePtr samples, const Sink& sink) {
    if (samples->nb_samples <= 0 || samples->sample_rate <= 0 || samples->ch_layout.nb_channels <= 0) {
        return true;
    }
    PlaceOnTimeLine(*samples);
    Time100ns start = Now(samples->sample_rate);
    samplesSinceAnchor += samples->nb_samples;
    if (start < 0) {
        // The first sample that is kept is the one nearest to the start of the segment.
        const double early = static_cast<double>(-start) * rate * samples->sample_rate / kTime100nsPerSecond;
        const auto dropped =
            static_cast<int>(std::min<std::int64_t>(std::llround(early), samples->nb_samples));
        DropFirstSamples(*samples, dropped);
        if (samples->nb_samples == 0) {
            return true;
        }
        // What follows is counted from there, so that the cut leaves no step of a part of a sample.
        start = 0;
        anchor = 0;
        samplesSinceAnchor = samples->nb_samples;
    }
    return sink({std::move(samples), start, std::exchange(discontinuity, false)});
}

// Counts on from the last known time, unless there is none or the packet's own time tells of a gap.
void AudioDecoder::PlaceOnTimeLine(const AVFrame& samples) {
    const Time100ns own = samples.best_effort_timestamp;
    if (anchor != kNoTime) {
        const Time100ns counted = Now(countedRate);
        const bool gap = own != AV_NOPTS_VALUE && std::abs(own - counted) > kMaxStray;
        if (!gap && samples.sample_rate == countedRate) {
            return;
        }
        discontinuity = discontinuity || gap;
        anchor = gap ? own : counted;
    } else {
        anchor = own != AV_NOPTS_VALUE ? own : 0;
    }
    samplesSinceAnchor = 0;
    countedRate = samples.sample_rate;
}

Time100ns AudioDecoder::Now(int sampleRate) const {
    return anchor +
           std::llround(static_cast<double>(samplesSinceAnchor) * kTime100nsPerSecond / sampleRate / rate);
}

} // namespace brindlecast
