#pragma once

#include "filters/core/audio_video_types.h"

#include <cstddef>
#include <cstdint>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/samplefmt.h>
}

namespace brindlecast {

// How one sample of uncompressed sound is stored, little-endian; 24-bit samples take three bytes.
enum class SampleKind { kUnsigned8, kSigned16, kSigned24, kSigned32, kFloat32 };

[[nodiscard]] int BytesPerSample(SampleKind kind);

// The format of interleaved uncompressed sound.
struct AudioFormat {
    SampleKind kind = SampleKind::kSigned16;
    int sampleRate = 0;
    int channels = 0;
    // Speakers of the channels as the platform numbers them (FFmpeg's numbers are the same); 0 when not
    // known.
    std::uint32_t channelMask = 0;

    bool operator==(const AudioFormat&) const = default;
    [[nodiscard]] int BytesPerFrame() const { return BytesPerSample(kind) * channels; }
};

// Channels that are taken and given.
inline constexpr int kMaxAudioChannels = 8;
inline constexpr int kMaxSampleRate = 768'000;

// Rates and channels within what is supported, and a mask, if there is one, with as many speakers as
// channels.
[[nodiscard]] bool IsValid(const AudioFormat& format);

// The usual speakers for a number of channels, 0 when there is no usual arrangement.
[[nodiscard]] std::uint32_t UsualChannelMask(int channels);

// The kind that holds what a decoder gives without loss. `significantBits` is 0 when not known.
[[nodiscard]] SampleKind NaturalKind(AVSampleFormat source, int significantBits);

// Name for displays, static text: "16-bit Integer", "32-bit Floating Point" and so on.
[[nodiscard]] const char* NameOf(SampleKind kind);

// Length of `frames` sample frames, rounded to the nearest 100 ns.
[[nodiscard]] Time100ns LengthOf(std::int64_t frames, int sampleRate);

} // namespace brindlecast
