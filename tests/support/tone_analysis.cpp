#include "tests/support/tone_analysis.h"

#include "tests/support/fourier.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>

namespace brindlecast::testing {
namespace {

constexpr double kWindowSeconds = 0.005;
constexpr double kAudible = -70.0;
constexpr double kLongestHole = 0.060;

// Power spectrum under a Hann window, padded with zeros to at least four times the length, so that the peak
// of a single tone is round enough for a parabola.
std::vector<double> Spectrum(std::span<const double> samples) {
    std::size_t size = 1;
    while (size < samples.size() * 4) {
        size <<= 1;
    }
    std::vector<std::complex<double>> values(size);
    const double scale = 2 * std::numbers::pi / static_cast<double>(samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        values[i] = samples[i] * (0.5 - 0.5 * std::cos(scale * (static_cast<double>(i) + 0.5)));
    }
    FourierTransform(values, Direction::Forward);
    std::vector<double> power(size / 2);
    std::transform(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(power.size()), power.begin(),
                   [](const std::complex<double>& value) { return std::norm(value); });
    return power;
}

std::size_t WindowSize(int rate) {
    return std::max<std::size_t>(1, static_cast<std::size_t>(std::lround(rate * kWindowSeconds)));
}

// Levels of consecutive windows of 5 ms; an incomplete last one is left out.
std::vector<double> Envelope(std::span<const double> samples, int rate) {
    const std::size_t window = WindowSize(rate);
    std::vector<double> levels;
    for (std::size_t begin = 0; begin + window <= samples.size(); begin += window) {
        levels.push_back(LevelDbfs(samples.subspan(begin, window)));
    }
    return levels;
}

double MedianOf(std::vector<double> values) {
    if (values.empty()) {
        return kNoLevel;
    }
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// When the tone that is already there rises by 6 dB, seen as the first window from `begin` on that reaches
// half of the rise: a third of it lies in the louder part.
double RiseTime(std::span<const double> samples, int rate, double begin, double threshold) {
    const std::size_t window = WindowSize(rate);
    const std::size_t step = std::max<std::size_t>(1, window / 10);
    auto at = static_cast<std::size_t>(std::lround(begin * rate));
    while (at + window < samples.size() && LevelDbfs(samples.subspan(at, window)) < threshold) {
        at += step;
    }
    return (static_cast<double>(at) + static_cast<double>(window) * 2 / 3) / rate;
}

} // namespace

Recording SplitStereo(std::span<const std::int16_t> interleaved, int rate) {
    Recording recording;
    recording.rate = rate;
    for (std::size_t i = 0; i + 1 < interleaved.size(); i += 2) {
        recording.left.push_back(interleaved[i] / 32768.0);
        recording.right.push_back(interleaved[i + 1] / 32768.0);
    }
    return recording;
}

std::span<const double> Between(std::span<const double> samples, int rate, double begin, double end) {
    const auto at = [&](double seconds) {
        const double index = std::clamp(seconds * rate, 0.0, static_cast<double>(samples.size()));
        return static_cast<std::size_t>(std::lround(index));
    };
    const std::size_t first = at(begin);
    return samples.subspan(first, std::max(at(end), first) - first);
}

double LevelDbfs(std::span<const double> samples) {
    double sum = 0;
    for (const double sample : samples) {
        sum += sample * sample;
    }
    if (samples.empty() || sum <= 0) {
        return kNoLevel;
    }
    return std::max(kNoLevel, 10 * std::log10(sum / static_cast<double>(samples.size())));
}

std::optional<double> DominantFrequency(std::span<const double> samples, int rate) {
    constexpr std::size_t kFewest = 64;
    constexpr double kLowest = 20.0;
    constexpr double kSilence = -90.0;
    if (samples.size() < kFewest || rate <= 0 || LevelDbfs(samples) < kSilence) {
        return std::nullopt;
    }
    const std::vector<double> power = Spectrum(samples);
    const double binWidth = rate / (2.0 * static_cast<double>(power.size()));
    const auto lowest = static_cast<std::ptrdiff_t>(std::max(1.0, std::ceil(kLowest / binWidth)));
    const auto peak = std::max_element(power.begin() + lowest, power.end() - 1);
    const auto logarithm = [](double value) {
        return std::log(std::max(value, 1e-30));
    };
    const double before = logarithm(*(peak - 1));
    const double at = logarithm(*peak);
    const double after = logarithm(*(peak + 1));
    const double curvature = before - 2 * at + after;
    const double offset = curvature < 0 ? std::clamp(0.5 * (before - after) / curvature, -0.5, 0.5) : 0.0;
    return (static_cast<double>(peak - power.begin()) + offset) * binWidth;
}

std::optional<int> SecondOfTone(double frequency) {
    const double place = (frequency - kPositionBase) / kPositionStep;
    const double second = std::round(place);
    if (second < 0 || std::abs(place - second) > 0.25) {
        return std::nullopt;
    }
    return static_cast<int>(second);
}

std::vector<Interval> SilentIntervals(std::span<const double> samples, int rate, double threshold,
                                      double shortest) {
    std::vector<Interval> result;
    const std::vector<double> levels = Envelope(samples, rate);
    const double window = static_cast<double>(WindowSize(rate)) / rate;
    std::size_t begin = 0;
    for (std::size_t i = 0; i <= levels.size(); ++i) {
        if (i < levels.size() && levels[i] < threshold) {
            continue;
        }
        const double length = static_cast<double>(i - begin) * window;
        if (i > begin && length >= shortest - 1e-9) {
            result.push_back({static_cast<double>(begin) * window, static_cast<double>(i) * window});
        }
        begin = i + 1;
    }
    return result;
}

std::optional<double> OnsetTime(std::span<const double> samples, int rate, double threshold) {
    const std::size_t window = WindowSize(rate);
    const std::size_t step = std::max<std::size_t>(1, window / 10);
    const double loud = std::pow(10.0, threshold / 20) / 2;
    for (std::size_t begin = 0; begin + window <= samples.size(); begin += step) {
        const auto part = samples.subspan(begin, window);
        if (LevelDbfs(part) >= threshold) {
            const auto first =
                std::find_if(part.begin(), part.end(), [&](double s) { return std::abs(s) >= loud; });
            return static_cast<double>(begin + static_cast<std::size_t>(first - part.begin())) / rate;
        }
    }
    return std::nullopt;
}

std::vector<Tick> FindTicks(std::span<const double> right, int rate) {
    constexpr double kRise = 3.0; // dB over the tone; a tick has 6
    constexpr double kToneBegin = kTickLength + 0.02;
    constexpr double kToneEnd = 0.3;
    std::vector<Tick> ticks;
    const std::vector<double> levels = Envelope(right, rate);
    const double threshold = MedianOf(levels) + kRise;
    if (threshold < kAudible) {
        return ticks;
    }
    const double window = static_cast<double>(WindowSize(rate)) / rate;
    for (std::size_t i = 1; i < levels.size(); ++i) {
        if (levels[i] < threshold || levels[i - 1] >= threshold) {
            continue;
        }
        const double coarse = static_cast<double>(i - 1) * window;
        const double recordedAt = RiseTime(right, rate, coarse, threshold);
        if ((recordedAt + kToneEnd) * rate > static_cast<double>(right.size())) {
            break;
        }
        const auto frequency =
            DominantFrequency(Between(right, rate, recordedAt + kToneBegin, recordedAt + kToneEnd), rate);
        const auto second = frequency ? SecondOfTone(*frequency) : std::nullopt;
        if (second) {
            ticks.push_back({recordedAt, *second});
        }
    }
    return ticks;
}

SoundVerdict JudgeSound(const Recording& recording, const ExpectedSound& expected) {
    SoundVerdict verdict;
    verdict.level = LevelDbfs(recording.left);
    verdict.frequency = DominantFrequency(recording.left, recording.rate).value_or(0);
    verdict.audible = verdict.level > kAudible &&
                      SilentIntervals(recording.left, recording.rate, kAudible, kLongestHole).empty();
    verdict.rightTone = std::abs(verdict.frequency - expected.frequency) <= 1.0;
    verdict.rightLevel = std::abs(verdict.level - expected.level) <= expected.levelTolerance;
    const std::vector<Tick> ticks = FindTicks(recording.right, recording.rate);
    for (const Tick& tick : ticks) {
        const double lag = std::abs(expected.startsAt + tick.recordedAt - tick.filmSecond);
        verdict.largestLag = std::max(verdict.largestLag, lag);
    }
    verdict.inStep = ticks.size() >= 2 && verdict.largestLag <= expected.tolerance;
    return verdict;
}

} // namespace brindlecast::testing
