#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace brindlecast::testing {

// Measures recorded sound. Samples are one channel of 16-bit PCM as doubles from -1 to 1; times are seconds
// from the first sample. Levels are RMS in dBFS against the square of full scale, so a full-scale sine has
// -3.01. Everything here is pure.

// The level given for digital silence.
inline constexpr double kNoLevel = -120.0;

// How test media carry their position: the left channel holds one steady tone, the right one a tone of
// kPositionBase + n * kPositionStep Hz during second n, louder by 6 dB in the first kTickLength seconds of
// each.
inline constexpr double kPositionBase = 1000.0;
inline constexpr double kPositionStep = 40.0;
inline constexpr double kTickLength = 0.05;

struct Recording {
    int rate = 0; // samples a second
    std::vector<double> left;
    std::vector<double> right;
};

// Splits interleaved stereo 16-bit samples; an odd sample at the end is dropped.
[[nodiscard]] Recording SplitStereo(std::span<const std::int16_t> interleaved, int rate);

// The part from `begin` to `end` seconds, cut to what is there.
[[nodiscard]] std::span<const double> Between(std::span<const double> samples, int rate, double begin,
                                              double end);

[[nodiscard]] double LevelDbfs(std::span<const double> samples);

// The frequency with the most energy between 20 Hz and half the rate, to 0.1 Hz for a steady tone of 0.25 s
// or more. Nothing for silence (below -90 dBFS) or less than 64 samples.
[[nodiscard]] std::optional<double> DominantFrequency(std::span<const double> samples, int rate);

// The second n whose position tone this is, if it is within a quarter step of one.
[[nodiscard]] std::optional<int> SecondOfTone(double frequency);

struct Interval {
    double begin; // seconds
    double end;
};

// The stretches of at least `shortest` seconds in which no window of 5 ms reaches `threshold` dBFS.
[[nodiscard]] std::vector<Interval> SilentIntervals(std::span<const double> samples, int rate,
                                                    double threshold, double shortest);

// The time of the first sample of the first window of 5 ms that reaches `threshold` dBFS, to about 1 ms.
[[nodiscard]] std::optional<double> OnsetTime(std::span<const double> samples, int rate, double threshold);

// A tick found in a right channel: when it was recorded and which second of the film it opens.
struct Tick {
    double recordedAt; // seconds
    int filmSecond;
};

// Ticks that are followed by at least 0.3 s of their second's tone.
[[nodiscard]] std::vector<Tick> FindTicks(std::span<const double> right, int rate);

// What a recording ought to hold.
struct ExpectedSound {
    double frequency;      // of the left channel, Hz
    double level;          // of the left channel, dBFS
    double levelTolerance; // dB
    double startsAt;       // film position in seconds at the first sample of the recording
    double tolerance;      // seconds that a tick may be early or late
};

struct SoundVerdict {
    bool audible = false;    // above -70 dBFS and without a hole of 60 ms
    bool rightTone = false;  // frequency within 1 Hz
    bool rightLevel = false; // level within its tolerance
    bool inStep = false;     // at least two ticks, all at their place
    double level = kNoLevel;
    double frequency = 0;
    double largestLag = 0; // seconds
    [[nodiscard]] bool Right() const { return audible && rightTone && rightLevel && inStep; }
};

[[nodiscard]] SoundVerdict JudgeSound(const Recording& recording, const ExpectedSound& expected);

} // namespace brindlecast::testing
