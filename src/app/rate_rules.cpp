#include "app/rate_rules.h"

#include <algorithm>

namespace brindlecast {

namespace {

constexpr double kOwnSpeed = 1.0;

} // namespace

bool IsPlayableRate(double rate) {
    return rate >= kSlowestRate && rate <= kFastestRate;
}

double StepRate(double rate, double step) {
    return std::clamp(rate + step, kSlowestRate, kFastestRate);
}

RateToggle ToggleRate(double rate, double saved) {
    return rate != kOwnSpeed ? RateToggle{kOwnSpeed, rate} : RateToggle{saved, saved};
}

std::optional<double> RateForFrameRate(double frameRate, double fileFrameRate) {
    if (!(fileFrameRate > 0.0)) {
        return std::nullopt;
    }
    return frameRate / fileFrameRate;
}

} // namespace brindlecast
