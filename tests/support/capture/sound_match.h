#pragma once

#include "tests/support/tone_analysis.h"

#include <optional>
#include <string>

namespace brindlecast::testing {

// Compares a recording with what ffmpeg decodes from the same file, whatever the volume. Pure; times in
// seconds.

struct SoundMatch {
    bool heard = false;       // everything below is as it should be
    std::string complaint;    // why not
    double level = kNoLevel;  // of the recording where the source sounds, dBFS
    double source = kNoLevel; // of the source there
    double likeness = 0;      // mean correlation of the recorded pieces with the source, -1 to 1
    double coverage = 0;  // share of the source's sounding tenths of a second that sounded in the recording
    double delay = 0;     // from the hand-over to the moment when the source's beginning was heard
    bool together = true; // with the picture, as far as can be told
    bool delayIsSure = false; // no other delay explains the recording nearly as well (a steady tone has many)
};

// `recording` begins `recordedAt` seconds after the hand-over (usually negative); `source` is the sound from
// the beginning of the file. Both must have the same rate. `pictureDelay` is the delay of the picture where
// it is known: then a sound that fits clearly better further than half a second from it is refused.
[[nodiscard]] SoundMatch MatchSound(const Recording& recording, double recordedAt, const Recording& source,
                                    std::optional<double> pictureDelay = std::nullopt);

} // namespace brindlecast::testing
