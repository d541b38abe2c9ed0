#pragma once

#include <cstdint>

namespace brindlecast {

// The quietest amplitude that the graph knows, in hundredths of a decibel.
inline constexpr long kSilentAmplitude = -10000;

// `volume` brought into 0.0 to 1.0; not-a-number becomes 0.0.
[[nodiscard]] float ClampVolume(float volume);

// The volume in percent as it is stored, truncated in single precision.
[[nodiscard]] std::uint32_t VolumePercent(float volume);

// The graph's amplitude in hundredths of a decibel: 0 for 1.0, -602 for 0.5, kSilentAmplitude when muted or
// at 0.0.
[[nodiscard]] long VolumeAmplitude(float volume, bool muted);

} // namespace brindlecast
