#pragma once

#include "filters/core/audio_format.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace brindlecast {

// The WAVEFORMATEX for a valid format, as bytes; a WAVEFORMATEXTENSIBLE where the short form says too
// little: more than two channels, unusual speakers, or integers of more than 16 bits.
[[nodiscard]] std::vector<std::uint8_t> WriteWaveHeader(const AudioFormat& format);

// Reads the bytes of a WAVEFORMATEX or WAVEFORMATEXTENSIBLE. Nothing when it is no uncompressed sound of a
// supported kind, contradicts itself or is cut short.
[[nodiscard]] std::optional<AudioFormat> ReadWaveHeader(std::span<const std::uint8_t> bytes);

} // namespace brindlecast
