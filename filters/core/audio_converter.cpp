#include "filters/core/audio_converter.h"

#include <bit>
#include <cstring>

namespace brindlecast {
namespace {

// 24-bit samples are handled as 32-bit ones whose lowest byte is left out.
AVSampleFormat LibraryFormat(SampleKind kind) {
    switch (kind) {
    case SampleKind::kUnsigned8: return AV_SAMPLE_FMT_U8;
    case SampleKind::kSigned16: return AV_SAMPLE_FMT_S16;
    case SampleKind::kSigned24:
    case SampleKind::kSigned32: return AV_SAMPLE_FMT_S32;
    case SampleKind::kFloat32: break;
    }
    return AV_SAMPLE_FMT_FLT;
}

// A layout that needs no release: a mask, or nothing but a number of channels.
AVChannelLayout LayoutFor(int channels, std::uint64_t mask) {
    AVChannelLayout layout{};
    if (mask == 0 || std::popcount(mask) != channels) {
        mask = UsualChannelMask(channels);
    }
    layout.nb_channels = channels;
    layout.order = mask != 0 ? AV_CHANNEL_ORDER_NATIVE : AV_CHANNEL_ORDER_UNSPEC;
    layout.u.mask = mask;
    return layout;
}

void AppendPacked24(const std::uint8_t* samples, std::size_t count, std::vector<std::uint8_t>& bytes) {
    const std::size_t start = bytes.size();
    bytes.resize(start + 3 * count);
    std::uint8_t* to = bytes.data() + start;
    for (std::size_t i = 0; i < count; ++i) {
        std::memcpy(to + 3 * i, samples + 4 * i + 1, 3);
    }
}

void Widen24(const std::uint8_t* samples, std::size_t count, std::vector<std::uint8_t>& widened) {
    widened.assign(4 * count, 0);
    for (std::size_t i = 0; i < count; ++i) {
        std::memcpy(widened.data() + 4 * i + 1, samples + 3 * i, 3);
    }
}

} // namespace

bool AudioConverter::Convert(const AVFrame& frame, std::vector<std::uint8_t>& bytes) {
    const AVChannelLayout& layout = frame.ch_layout;
    const Source source{static_cast<AVSampleFormat>(frame.format), frame.sample_rate, layout.nb_channels,
                        layout.order == AV_CHANNEL_ORDER_NATIVE ? layout.u.mask : 0};
    return Prepare(source) && Resample(frame.extended_data, frame.nb_samples, bytes);
}

bool AudioConverter::Convert(const AudioFormat& source, const std::uint8_t* data, int frames,
                             std::vector<std::uint8_t>& bytes) {
    if (!Prepare({LibraryFormat(source.kind), source.sampleRate, source.channels, source.channelMask})) {
        return false;
    }
    if (source.kind == SampleKind::kSigned24) {
        Widen24(data, static_cast<std::size_t>(frames) * static_cast<std::size_t>(source.channels), widened);
        data = widened.data();
    }
    return Resample(&data, frames, bytes);
}

Time100ns AudioConverter::HeldBack() const {
    const bool holds = resampler && preparedSource.sampleRate != output.sampleRate;
    return holds ? swr_get_delay(resampler.get(), kTime100nsPerSecond) : 0;
}

bool AudioConverter::Drain(std::vector<std::uint8_t>& bytes) {
    if (!resampler || preparedSource.sampleRate == output.sampleRate) {
        return true;
    }
    const bool drained = Resample(nullptr, 0, bytes);
    resampler.reset();
    return drained;
}

bool AudioConverter::Prepare(const Source& source) {
    if (resampler && source == preparedSource) {
        return true;
    }
    resampler.reset();
    if (source.channels < 1 || source.sampleRate < 1) {
        return false;
    }
    AVChannelLayout from = LayoutFor(source.channels, source.channelMask);
    AVChannelLayout to = LayoutFor(output.channels, output.channelMask);
    SwrContext* made = nullptr;
    const int set = swr_alloc_set_opts2(&made, &to, LibraryFormat(output.kind), output.sampleRate, &from,
                                        source.format, source.sampleRate, 0, nullptr);
    std::unique_ptr<SwrContext, ResamplerDeleter> newResampler(made);
    if (set < 0 || swr_init(newResampler.get()) < 0) {
        return false;
    }
    resampler = std::move(newResampler);
    preparedSource = source;
    return true;
}

bool AudioConverter::Resample(const std::uint8_t* const* planes, int frames,
                              std::vector<std::uint8_t>& bytes) {
    const int room = swr_get_out_samples(resampler.get(), frames);
    if (room < 0) {
        return false;
    }
    const auto channels = static_cast<std::size_t>(output.channels);
    const auto sampleBytes = static_cast<std::size_t>(av_get_bytes_per_sample(LibraryFormat(output.kind)));
    const bool packed24 = output.kind == SampleKind::kSigned24;
    std::vector<std::uint8_t>& target = packed24 ? scratch : bytes;
    const std::size_t start = packed24 ? 0 : bytes.size();
    target.resize(start + static_cast<std::size_t>(room) * channels * sampleBytes);
    std::uint8_t* out = target.data() + start;
    // The library's type says that it changes the input's pointers, which it does not.
    const int made = room == 0 ? 0
                               : swr_convert(resampler.get(), &out, room,
                                             const_cast<const std::uint8_t**>(planes), frames);
    if (made < 0) {
        target.resize(start);
        return false;
    }
    const std::size_t samples = static_cast<std::size_t>(made) * channels;
    target.resize(start + samples * sampleBytes);
    if (packed24) {
        AppendPacked24(scratch.data(), samples, bytes);
    }
    return true;
}

} // namespace brindlecast
