#include "tests/support/capture/sound_match.h"

#include "tests/support/fourier.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <optional>
#include <vector>

namespace brindlecast::testing {
namespace {

// Correlation is done at a sixth of the rate: enough to tell sounds apart, and quick.
constexpr int kDecimation = 6;
constexpr double kLongestDelay = 8.0;
// What a sound card may add is a fifth of a second; a film whose lips are half a second off is not played
// right.
constexpr double kLargestShift = 0.5;
constexpr double kAboutAsWell = 0.85;
constexpr double kSounding = -60.0;
constexpr double kAudible = -75.0;
// Unrelated sounds stay below 0.1. The same sound keeps 0.6 behind a normaliser or mixed down by other
// factors, and on a machine so busy that it stutters.
constexpr double kLeastLikeness = 0.4;
// A pause of the whole sound moves what follows it; pieces of this length are compared, each of which may be
// this far from its place.
constexpr double kPiece = 0.25;
constexpr double kReachOfPiece = 0.3;
constexpr double kLeastCoverage = 0.9;
constexpr double kTenth = 0.1;

// Low-pass at 0.4 of the new rate and every kDecimation-th sample.
std::vector<double> Decimate(const std::vector<double>& samples) {
    constexpr int kReach = 30;
    std::vector<double> taps;
    double sum = 0;
    for (int i = -kReach; i <= kReach; ++i) {
        const double x = 0.8 * std::numbers::pi * i / kDecimation;
        const double window = 0.5 + 0.5 * std::cos(std::numbers::pi * i / (kReach + 1));
        taps.push_back((i == 0 ? 1.0 : std::sin(x) / x) * window);
        sum += taps.back();
    }
    std::vector<double> result;
    const auto count = static_cast<std::ptrdiff_t>(samples.size());
    for (std::ptrdiff_t middle = 0; middle < count; middle += kDecimation) {
        double value = 0;
        for (std::ptrdiff_t i = -kReach; i <= kReach; ++i) {
            const std::ptrdiff_t at = middle + i;
            if (at >= 0 && at < count) {
                value += samples[static_cast<std::size_t>(at)] * taps[static_cast<std::size_t>(i + kReach)];
            }
        }
        result.push_back(value / sum);
    }
    return result;
}

// result[i] is the sum of recording[n] * source[n + i - recording.size()] over all n.
std::vector<double> Correlate(const std::vector<double>& recording, const std::vector<double>& source) {
    std::size_t size = 1;
    while (size < recording.size() + source.size()) {
        size <<= 1;
    }
    std::vector<std::complex<double>> first(size);
    std::vector<std::complex<double>> second(size);
    std::copy(recording.begin(), recording.end(), first.begin());
    std::copy(source.begin(), source.end(), second.begin());
    FourierTransform(first, Direction::Forward);
    FourierTransform(second, Direction::Forward);
    for (std::size_t i = 0; i < size; ++i) {
        second[i] *= std::conj(first[i]) / static_cast<double>(size);
    }
    FourierTransform(second, Direction::Inverse);
    std::vector<double> result(recording.size() + source.size());
    for (std::size_t i = 0; i < result.size(); ++i) {
        result[i] = second[(i + size - recording.size()) % size].real();
    }
    return result;
}

std::vector<double> RunningEnergy(const std::vector<double>& left, const std::vector<double>& right) {
    std::vector<double> sums{0.0};
    for (std::size_t i = 0; i < left.size(); ++i) {
        sums.push_back(sums.back() + left[i] * left[i] + right[i] * right[i]);
    }
    return sums;
}

struct Candidate {
    double delay;
    double likeness;
};

Recording Decimate(const Recording& sound) {
    return {sound.rate / kDecimation, Decimate(sound.left), Decimate(sound.right)};
}

// Likeness for every delay at which enough of both overlaps. Both are decimated.
std::vector<Candidate> Candidates(const Recording& small, double recordedAt, const Recording& film) {
    const std::vector<double> left = Correlate(small.left, film.left);
    const std::vector<double> right = Correlate(small.right, film.right);
    const std::vector<double> energy = RunningEnergy(small.left, small.right);
    const std::vector<double> filmEnergy = RunningEnergy(film.left, film.right);
    const auto count = static_cast<std::ptrdiff_t>(small.left.size());
    const auto filmCount = static_cast<std::ptrdiff_t>(film.left.size());
    std::vector<Candidate> result;
    for (std::size_t i = 0; i < left.size(); ++i) {
        // Sample n of the recording meets sample n + shift of the source.
        const std::ptrdiff_t shift = static_cast<std::ptrdiff_t>(i) - count;
        const double delay = recordedAt - static_cast<double>(shift) / small.rate;
        const std::ptrdiff_t begin = std::max<std::ptrdiff_t>(0, -shift);
        const std::ptrdiff_t end = std::min(count, filmCount - shift);
        if (delay < -0.1 || delay > kLongestDelay || (end - begin) * 2 < std::min(count, filmCount)) {
            continue;
        }
        const double own = energy[static_cast<std::size_t>(end)] - energy[static_cast<std::size_t>(begin)];
        const double other = filmEnergy[static_cast<std::size_t>(end + shift)] -
                             filmEnergy[static_cast<std::size_t>(begin + shift)];
        const double norm = std::sqrt(std::max(own, 0.0) * std::max(other, 0.0));
        result.push_back({delay, norm > 1e-9 ? (left[i] + right[i]) / norm : 0.0});
    }
    return result;
}

double Energy(const Recording& sound) {
    return RunningEnergy(sound.left, sound.right).back();
}

Recording Part(const Recording& sound, double begin, double end) {
    const auto left = Between(sound.left, sound.rate, begin, end);
    const auto right = Between(sound.right, sound.rate, begin, end);
    return {sound.rate, {left.begin(), left.end()}, {right.begin(), right.end()}};
}

// The best correlation of one recorded piece with the source near its place; nothing where the source is
// silent.
std::optional<double> LikenessOfPiece(const Recording& small, double at, const Recording& film,
                                      double place) {
    const Recording piece = Part(small, at, at + kPiece);
    const Recording here = Part(film, place, place + kPiece);
    const Recording around = Part(film, place - kReachOfPiece, place + kPiece + kReachOfPiece);
    const auto count = static_cast<double>(here.left.size());
    if (piece.left.size() != here.left.size() || Energy(here) < count * std::pow(10.0, kSounding / 10)) {
        return std::nullopt;
    }
    const std::vector<double> left = Correlate(piece.left, around.left);
    const std::vector<double> right = Correlate(piece.right, around.right);
    const std::vector<double> energy = RunningEnergy(around.left, around.right);
    const double own = Energy(piece);
    double best = 0;
    for (std::size_t shift = 0; shift + piece.left.size() <= around.left.size(); ++shift) {
        const double other = energy[shift + piece.left.size()] - energy[shift];
        const double norm = std::sqrt(own * other);
        const std::size_t index = shift + piece.left.size();
        best = std::max(best, norm > 1e-9 ? (left[index] + right[index]) / norm : 0.0);
    }
    return best;
}

// Mean over the pieces.
double Likeness(const Recording& small, double recordedAt, const Recording& film, double delay) {
    double sum = 0;
    int pieces = 0;
    const double length = static_cast<double>(small.left.size()) / small.rate;
    for (double at = std::max(0.0, delay - recordedAt); at + kPiece <= length; at += kPiece) {
        if (const auto likeness = LikenessOfPiece(small, at, film, at + recordedAt - delay)) {
            sum += *likeness;
            ++pieces;
        }
    }
    return pieces > 0 ? sum / pieces : 0.0;
}

bool IsSure(const std::vector<Candidate>& candidates, const Candidate& best) {
    constexpr double kNear = 0.3;
    return std::none_of(candidates.begin(), candidates.end(), [&](const Candidate& other) {
        return std::abs(other.delay - best.delay) > kNear && other.likeness > 0.9 * best.likeness;
    });
}

// Whether some delay near the picture's explains the recording about as well as the best one.
bool IsNear(const std::vector<Candidate>& candidates, const Candidate& best, double pictureDelay) {
    return std::any_of(candidates.begin(), candidates.end(), [&](const Candidate& other) {
        return std::abs(other.delay - pictureDelay) <= kLargestShift &&
               other.likeness >= kAboutAsWell * best.likeness;
    });
}

double LevelOfBoth(const Recording& sound, double begin, double end) {
    return std::max(LevelDbfs(Between(sound.left, sound.rate, begin, end)),
                    LevelDbfs(Between(sound.right, sound.rate, begin, end)));
}

// Levels and coverage over the tenths of a second in which the source sounds.
void MeasureCoverage(const Recording& recording, double recordedAt, const Recording& source,
                     SoundMatch& match) {
    const double length = static_cast<double>(source.left.size()) / source.rate;
    const double recorded = static_cast<double>(recording.left.size()) / recording.rate;
    int sounding = 0;
    int covered = 0;
    double energy = 0;
    double sourceEnergy = 0;
    for (double at = 0; at + kTenth <= length; at += kTenth) {
        const double begin = at + match.delay - recordedAt;
        if (begin < 0 || begin + kTenth > recorded) {
            continue;
        }
        const double level = LevelOfBoth(source, at, at + kTenth);
        if (level < kSounding) {
            continue;
        }
        const double heard = LevelOfBoth(recording, begin, begin + kTenth);
        ++sounding;
        covered += heard > kAudible ? 1 : 0;
        energy += std::pow(10.0, heard / 10);
        sourceEnergy += std::pow(10.0, level / 10);
    }
    if (sounding > 0) {
        match.coverage = static_cast<double>(covered) / sounding;
        match.level = 10 * std::log10(energy / sounding);
        match.source = 10 * std::log10(sourceEnergy / sounding);
    }
}

} // namespace

SoundMatch MatchSound(const Recording& recording, double recordedAt, const Recording& source,
                      std::optional<double> pictureDelay) {
    SoundMatch match;
    const auto refuse = [&match](std::string complaint) {
        match.complaint = std::move(complaint);
        return match;
    };
    if (recording.rate != source.rate || recording.rate <= 0) {
        return refuse("recording and source differ in rate");
    }
    const double length = static_cast<double>(source.left.size()) / source.rate;
    if (LevelOfBoth(source, 0, length) < kSounding) {
        return refuse("the source itself is silent in this part, so nothing can be told");
    }
    const double recorded = static_cast<double>(recording.left.size()) / recording.rate;
    match.level = LevelOfBoth(recording, 0, recorded);
    if (match.level < kAudible) {
        return refuse("the recording is silent");
    }
    const Recording small = Decimate(recording);
    const Recording film = Decimate(source);
    const std::vector<Candidate> candidates = Candidates(small, recordedAt, film);
    const auto best =
        std::max_element(candidates.begin(), candidates.end(),
                         [](const auto& one, const auto& other) { return one.likeness < other.likeness; });
    if (best == candidates.end()) {
        return refuse("the recording is too short");
    }
    match.delay = best->delay;
    match.likeness = Likeness(small, recordedAt, film, best->delay);
    match.delayIsSure = IsSure(candidates, *best);
    MeasureCoverage(recording, recordedAt, source, match);
    if (match.likeness < kLeastLikeness) {
        return refuse("the recording is not the sound of the file");
    }
    if (match.coverage < kLeastCoverage) {
        return refuse("the sound has holes");
    }
    match.together = !pictureDelay || IsNear(candidates, *best, *pictureDelay);
    if (!match.together) {
        return refuse("the sound is NOT together with the picture");
    }
    match.heard = true;
    return match;
}

} // namespace brindlecast::testing
