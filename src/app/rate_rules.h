#pragma once

#include <optional>

namespace brindlecast {

// Rates that playing knows; 1.0 is the film's own speed.
inline constexpr double kSlowestRate = 0.25;
inline constexpr double kFastestRate = 4.0;

[[nodiscard]] bool IsPlayableRate(double rate);

// A step faster or slower, within the bounds.
[[nodiscard]] double StepRate(double rate, double step);

// What the key between 1.0 and another rate does: the rate to set, and the rate to come back to.
struct RateToggle {
    double rate;
    double saved;
    bool operator==(const RateToggle&) const = default;
};
[[nodiscard]] RateToggle ToggleRate(double rate, double saved);

// The rate at which a file of `fileFrameRate` shows `frameRate` frames a second, playable or not; nothing
// when that of the file is not known.
[[nodiscard]] std::optional<double> RateForFrameRate(double frameRate, double fileFrameRate);

} // namespace brindlecast
