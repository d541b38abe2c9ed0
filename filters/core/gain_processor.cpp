#include "filters/core/gain_processor.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace brindlecast {
namespace {

// Sample frames that share one factor before smoothing: short enough to follow a drum, long enough to be
// cheap.
constexpr int kStretch = 16;
// The gain falls over this many stretches ahead of a loud sample (about 5 ms).
constexpr double kFallPerStretch = 0.93;
// Speeds of rising: normalisation must not pump, the limiter must let go soon.
constexpr double kNormalizationSecondsPerDoubling = 6.0;
constexpr double kLimiterSecondsPerDoubling = 0.4;

constexpr float kFullScale = 1.0F;

std::int32_t Read24(const std::uint8_t* from) {
    const auto bits = static_cast<std::uint32_t>(from[0]) << 8 | static_cast<std::uint32_t>(from[1]) << 16 |
                      static_cast<std::uint32_t>(from[2]) << 24;
    return static_cast<std::int32_t>(bits) / 256;
}

void Write24(std::uint8_t* to, std::int32_t sample) {
    const auto bits = static_cast<std::uint32_t>(sample);
    to[0] = static_cast<std::uint8_t>(bits);
    to[1] = static_cast<std::uint8_t>(bits >> 8);
    to[2] = static_cast<std::uint8_t>(bits >> 16);
}

template <class T>
T Load(const std::uint8_t* from) {
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

template <class T>
void Store(std::uint8_t* to, T value) {
    std::memcpy(to, &value, sizeof value);
}

// Largest integer of a kind; full scale of the waveform is one more.
double ScaleOf(SampleKind kind) {
    switch (kind) {
    case SampleKind::kUnsigned8: return 128.0;
    case SampleKind::kSigned16: return 32768.0;
    case SampleKind::kSigned24: return 8388608.0;
    case SampleKind::kSigned32: return 2147483648.0;
    case SampleKind::kFloat32: break;
    }
    return 1.0;
}

double ReadSample(SampleKind kind, const std::uint8_t* from) {
    switch (kind) {
    case SampleKind::kUnsigned8: return from[0] - 128.0;
    case SampleKind::kSigned16: return Load<std::int16_t>(from);
    case SampleKind::kSigned24: return Read24(from);
    case SampleKind::kSigned32: return Load<std::int32_t>(from);
    case SampleKind::kFloat32: break;
    }
    const auto value = Load<float>(from);
    return std::isfinite(value) ? value : 0.0;
}

void WriteSample(SampleKind kind, std::uint8_t* to, double value) {
    const double scale = ScaleOf(kind);
    const double clipped = std::clamp(value, -scale, kind == SampleKind::kFloat32 ? scale : scale - 1.0);
    switch (kind) {
    case SampleKind::kUnsigned8: to[0] = static_cast<std::uint8_t>(std::lrint(clipped) + 128); return;
    case SampleKind::kSigned16: Store(to, static_cast<std::int16_t>(std::lrint(clipped))); return;
    case SampleKind::kSigned24: Write24(to, static_cast<std::int32_t>(std::lrint(clipped))); return;
    case SampleKind::kSigned32: Store(to, static_cast<std::int32_t>(std::llrint(clipped))); return;
    case SampleKind::kFloat32: break;
    }
    Store(to, static_cast<float>(clipped));
}

} // namespace

void GainEnvelope::Follow(std::span<const float> peaks, double ceiling, double rise,
                          std::vector<float>& gains) {
    gains.resize(peaks.size());
    // Backwards: how high the gain may be so that it can still fall in time for what follows.
    double allowed = ceiling;
    for (std::size_t i = peaks.size(); i-- > 0;) {
        const double own = peaks[i] > 0.0F ? kFullScale / static_cast<double>(peaks[i]) : ceiling;
        allowed = std::min({ceiling, own, allowed / kFallPerStretch});
        gains[i] = static_cast<float>(allowed);
    }
    // Forwards: it rises no faster than it may.
    for (float& stretchGain : gains) {
        gain = gain < 0.0 ? stretchGain : std::min<double>(stretchGain, gain * rise);
        stretchGain = static_cast<float>(gain);
    }
}

void GainProcessor::SetSettings(const GainSettings& newSettings) {
    if (newSettings.normalize != settings.normalize || newSettings.maxFactor != settings.maxFactor) {
        normalization.Reset();
    }
    settings = newSettings;
    settings.maxFactor = std::isfinite(newSettings.maxFactor) ? std::max(newSettings.maxFactor, 1.0) : 1.0;
    settings.boost = std::isfinite(newSettings.boost) ? std::max(newSettings.boost, 1.0) : 1.0;
}

double GainProcessor::NormalizationGain() const {
    return settings.normalize && normalization.Gain() > 0.0 ? normalization.Gain() : 1.0;
}

void GainProcessor::Process(const AudioFormat& format, std::uint8_t* data, int frames) {
    const bool normalize = settings.normalize && settings.maxFactor > 1.0;
    const bool boost = settings.boost > 1.0;
    if ((!normalize && !boost) || frames <= 0) {
        return;
    }
    const auto count = static_cast<std::size_t>(frames) * static_cast<std::size_t>(format.channels);
    const auto bytes = static_cast<std::size_t>(BytesPerSample(format.kind));
    const double scale = ScaleOf(format.kind);
    floatSamples.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        floatSamples[i] = static_cast<float>(ReadSample(format.kind, data + i * bytes) / scale);
    }
    if (normalize) {
        Amplify(floatSamples, format.channels, format.sampleRate, normalization, settings.maxFactor,
                settings.recover ? kNormalizationSecondsPerDoubling : 0.0);
    }
    if (boost) {
        Amplify(floatSamples, format.channels, format.sampleRate, limiter, settings.boost,
                kLimiterSecondsPerDoubling);
    }
    for (std::size_t i = 0; i < count; ++i) {
        WriteSample(format.kind, data + i * bytes, static_cast<double>(floatSamples[i]) * scale);
    }
}

// One factor a stretch, with the factors in between on a straight line that stays below both neighbours'
// limits.
void GainProcessor::Amplify(std::span<float> samples, int channels, int sampleRate, GainEnvelope& envelope,
                            double ceiling, double secondsPerDoubling) {
    const std::size_t stretch = static_cast<std::size_t>(kStretch) * static_cast<std::size_t>(channels);
    peaks.assign((samples.size() + stretch - 1) / stretch, 0.0F);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        float& peak = peaks[i / stretch];
        peak = std::max(peak, std::abs(samples[i]));
    }
    const double rise =
        secondsPerDoubling > 0.0 ? std::exp2(kStretch / (secondsPerDoubling * sampleRate)) : 1.0;
    const double before = envelope.Gain();
    envelope.Follow(peaks, ceiling, rise, gains);
    float from = before < 0.0 ? gains.front() : std::min(static_cast<float>(before), gains.front());
    for (std::size_t i = 0; i < gains.size(); ++i) {
        const std::size_t begin = i * stretch;
        const std::size_t end = std::min(begin + stretch, samples.size());
        // Towards the lower one of this and the next, so that no stretch is louder than its own limit.
        const float to = i + 1 < gains.size() ? std::min(gains[i], gains[i + 1]) : gains[i];
        const auto length = static_cast<float>(end - begin);
        for (std::size_t at = begin; at < end; ++at) {
            const float part = static_cast<float>(at - begin) / length;
            samples[at] *= from + (to - from) * part;
        }
        from = to;
    }
}

} // namespace brindlecast
