#include "filters/core/audio_wave_header.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace brindlecast {
namespace {

constexpr std::uint16_t kTagPcm = 1;
constexpr std::uint16_t kTagFloat = 3;
constexpr std::uint16_t kTagExtensible = 0xFFFE;
constexpr std::size_t kShortBytes = 18;
constexpr std::size_t kExtensionBytes = 22;

// What follows the tag in the subformat of a WAVEFORMATEXTENSIBLE.
constexpr std::array<std::uint8_t, 14> kSubformatRest = {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80,
                                                         0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};

void Append(std::vector<std::uint8_t>& bytes, std::uint32_t value, int count) {
    for (int i = 0; i < count; ++i) {
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    }
}

std::uint32_t Number(std::span<const std::uint8_t> bytes, std::size_t at, std::size_t count) {
    std::uint32_t value = 0;
    for (std::size_t i = count; i-- > 0;) {
        value = value << 8 | bytes[at + i];
    }
    return value;
}

std::optional<SampleKind> KindOf(std::uint32_t tag, std::uint32_t bits) {
    if (tag == kTagFloat) {
        return bits == 32 ? std::optional(SampleKind::kFloat32) : std::nullopt;
    }
    if (tag != kTagPcm) {
        return std::nullopt;
    }
    switch (bits) {
    case 8: return SampleKind::kUnsigned8;
    case 16: return SampleKind::kSigned16;
    case 24: return SampleKind::kSigned24;
    case 32: return SampleKind::kSigned32;
    default: return std::nullopt;
    }
}

bool NeedsExtension(const AudioFormat& format) {
    const bool unusual = format.channelMask != 0 && format.channelMask != UsualChannelMask(format.channels);
    return format.channels > 2 || unusual || format.kind == SampleKind::kSigned24 ||
           format.kind == SampleKind::kSigned32;
}

} // namespace

std::vector<std::uint8_t> WriteWaveHeader(const AudioFormat& format) {
    const std::uint16_t tag = format.kind == SampleKind::kFloat32 ? kTagFloat : kTagPcm;
    const bool extended = NeedsExtension(format);
    const auto frameBytes = static_cast<std::uint32_t>(format.BytesPerFrame());
    const auto rate = static_cast<std::uint32_t>(format.sampleRate);
    const auto bits = static_cast<std::uint32_t>(8 * BytesPerSample(format.kind));
    std::vector<std::uint8_t> bytes;
    Append(bytes, extended ? kTagExtensible : tag, 2);
    Append(bytes, static_cast<std::uint32_t>(format.channels), 2);
    Append(bytes, rate, 4);
    Append(bytes, rate * frameBytes, 4);
    Append(bytes, frameBytes, 2);
    Append(bytes, bits, 2);
    Append(bytes, extended ? kExtensionBytes : 0, 2);
    if (extended) {
        Append(bytes, bits, 2);
        Append(bytes, format.channelMask != 0 ? format.channelMask : UsualChannelMask(format.channels), 4);
        Append(bytes, tag, 2);
        bytes.insert(bytes.end(), kSubformatRest.begin(), kSubformatRest.end());
    }
    return bytes;
}

std::optional<AudioFormat> ReadWaveHeader(std::span<const std::uint8_t> bytes) {
    // The oldest form of the header ends before the size of the extension.
    constexpr std::size_t kLeastBytes = 16;
    if (bytes.size() < kLeastBytes) {
        return std::nullopt;
    }
    std::uint32_t tag = Number(bytes, 0, 2);
    AudioFormat format;
    format.channels = static_cast<int>(Number(bytes, 2, 2));
    const std::uint32_t rate = Number(bytes, 4, 4);
    const std::uint32_t bits = Number(bytes, 14, 2);
    if (rate > static_cast<std::uint32_t>(kMaxSampleRate)) {
        return std::nullopt;
    }
    format.sampleRate = static_cast<int>(rate);
    if (tag == kTagExtensible) {
        if (bytes.size() < kShortBytes + kExtensionBytes || Number(bytes, 16, 2) < kExtensionBytes) {
            return std::nullopt;
        }
        const auto rest = bytes.subspan(kShortBytes + 8, kSubformatRest.size());
        if (!std::equal(rest.begin(), rest.end(), kSubformatRest.begin())) {
            return std::nullopt;
        }
        format.channelMask = Number(bytes, kShortBytes + 2, 4);
        tag = Number(bytes, kShortBytes + 6, 2);
    }
    const auto kind = KindOf(tag, bits);
    if (!kind) {
        return std::nullopt;
    }
    format.kind = *kind;
    if (format.channelMask == 0) {
        format.channelMask = UsualChannelMask(format.channels);
    }
    const bool consistent =
        IsValid(format) && Number(bytes, 12, 2) == static_cast<std::uint32_t>(format.BytesPerFrame());
    return consistent ? std::optional(format) : std::nullopt;
}

} // namespace brindlecast
