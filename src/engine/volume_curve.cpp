#include "engine/volume_curve.h"

#include <algorithm>
#include <cmath>

namespace brindlecast {

float ClampVolume(float volume) {
    if (std::isnan(volume)) {
        return 0.0F;
    }
    return std::clamp(volume, 0.0F, 1.0F);
}

std::uint32_t VolumePercent(float volume) {
    return static_cast<std::uint32_t>(volume * 100.0F);
}

long VolumeAmplitude(float volume, bool muted) {
    if (muted || !(volume > 0.0F)) {
        return kSilentAmplitude;
    }
    // Single precision throughout: 0.1 and 0.01 give whole thousands only that way.
    return static_cast<long>(std::log10(volume) * 2000.0F);
}

} // namespace brindlecast
