#pragma once

#include "tests/e2e/waits.h"
#include "tests/support/tone_analysis.h"

#include <chrono>
#include <string>

namespace brindlecast::testing {

// Records what the null sink plays, from the first test to the last.
class SoundRecorder {
public:
    // The one recording of the run, begun at first use.
    [[nodiscard]] static SoundRecorder& Instance();

    // The sound of the last seconds.
    [[nodiscard]] Recording Last(double seconds) const;
    // Waits until this tone, to within 1 Hz, is what was heard last; false when it did not come in time.
    [[nodiscard]] bool Hears(double frequency, std::chrono::milliseconds limit = limits::kReaction) const;

private:
    SoundRecorder();

    std::wstring path;
};

} // namespace brindlecast::testing
