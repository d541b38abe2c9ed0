#include "filters/core/audio_format.h"

#include <bit>

extern "C" {
#include <libavutil/mathematics.h>
}

namespace brindlecast {

int BytesPerSample(SampleKind kind) {
    switch (kind) {
    case SampleKind::kUnsigned8: return 1;
    case SampleKind::kSigned16: return 2;
    case SampleKind::kSigned24: return 3;
    case SampleKind::kSigned32:
    case SampleKind::kFloat32: break;
    }
    return 4;
}

bool IsValid(const AudioFormat& format) {
    return format.channels >= 1 && format.channels <= kMaxAudioChannels && format.sampleRate >= 1 &&
           format.sampleRate <= kMaxSampleRate &&
           (format.channelMask == 0 || std::popcount(format.channelMask) == format.channels);
}

std::uint32_t UsualChannelMask(int channels) {
    if (channels < 1 || channels > kMaxAudioChannels) {
        return 0;
    }
    AVChannelLayout layout{};
    av_channel_layout_default(&layout, channels);
    const bool known = layout.order == AV_CHANNEL_ORDER_NATIVE && layout.u.mask <= 0x3FFFF;
    const auto mask = known ? static_cast<std::uint32_t>(layout.u.mask) : 0U;
    av_channel_layout_uninit(&layout);
    return mask;
}

SampleKind NaturalKind(AVSampleFormat source, int significantBits) {
    switch (av_get_packed_sample_fmt(source)) {
    case AV_SAMPLE_FMT_U8: return SampleKind::kUnsigned8;
    case AV_SAMPLE_FMT_S16: return SampleKind::kSigned16;
    case AV_SAMPLE_FMT_S32:
    case AV_SAMPLE_FMT_S64:
        return significantBits > 0 && significantBits <= 24 ? SampleKind::kSigned24 : SampleKind::kSigned32;
    default: return SampleKind::kFloat32;
    }
}

const char* NameOf(SampleKind kind) {
    switch (kind) {
    case SampleKind::kUnsigned8: return "8-bit Integer";
    case SampleKind::kSigned16: return "16-bit Integer";
    case SampleKind::kSigned24: return "24-bit Integer";
    case SampleKind::kSigned32: return "32-bit Integer";
    case SampleKind::kFloat32: break;
    }
    return "32-bit Floating Point";
}

Time100ns LengthOf(std::int64_t frames, int sampleRate) {
    return av_rescale(frames, kTime100nsPerSecond, sampleRate);
}

} // namespace brindlecast
