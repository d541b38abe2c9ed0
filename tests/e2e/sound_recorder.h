#pragma once

#include "tests/support/tone_analysis.h"

#include <string>

namespace brindlecast::testing {

// Records what the null sink plays, from the first test to the last.
class SoundRecorder {
public:
    // The one recording of the run, begun at first use.
    [[nodiscard]] static SoundRecorder& Instance();

    // The sound of the last seconds.
    [[nodiscard]] Recording Last(double seconds) const;

private:
    SoundRecorder();

    std::wstring path;
};

} // namespace brindlecast::testing
