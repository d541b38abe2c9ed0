#pragma once

#include "filters/core/audio_format.h"

#include <cstdint>
#include <span>
#include <vector>

namespace brindlecast {

// What is done to the loudness.
struct GainSettings {
    // Quiet sound is amplified, by `maxFactor` at most and never beyond full scale.
    bool normalize = false;
    double maxFactor = 3.0;
    // After a loud passage the amplification rises again, slowly; else it stays as low as it has become.
    bool recover = true;
    // A fixed amplification on top, from 1; what would pass full scale is turned down for as long as it
    // lasts.
    double boost = 1.0;

    bool operator==(const GainSettings&) const = default;
};

// Follows the loudest samples with an amplification that never lets them pass full scale: it falls ahead of
// a loud sample as far as the block allows looking ahead, at once at the block's beginning, and rises at a
// fixed speed.
class GainEnvelope {
public:
    // Fills `gains`, one factor for each of the `peaks` (largest absolute values of equal stretches of
    // time). `ceiling` is the largest factor; `rise` the factor by which the gain may grow from one stretch
    // to the next (1: not at all).
    void Follow(std::span<const float> peaks, double ceiling, double rise, std::vector<float>& gains);

    // Starts again with the largest factor.
    void Reset() { gain = -1.0; }

    // The last factor in use, negative before the first.
    [[nodiscard]] double Gain() const { return gain; }

private:
    double gain = -1.0;
};

// Normalisation and boost of interleaved sound, in place. With neither, or where nothing is to be amplified,
// every sample keeps its value. One thread at a time.
class GainProcessor {
public:
    // Takes effect with the next block.
    void SetSettings(const GainSettings& newSettings);

    // `frames` sample frames of a valid `format` at `data`.
    void Process(const AudioFormat& format, std::uint8_t* data, int frames);

    // The amplification of normalisation now in use, 1 when there is none.
    [[nodiscard]] double NormalizationGain() const;

private:
    void Amplify(std::span<float> samples, int channels, int sampleRate, GainEnvelope& envelope,
                 double ceiling, double secondsPerDoubling);

    GainSettings settings;
    GainEnvelope normalization;
    GainEnvelope limiter;
    std::vector<float> floatSamples;
    std::vector<float> peaks;
    std::vector<float> gains;
};

} // namespace brindlecast
