#pragma once

#include "filters/core/audio_converter.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace soundtouch {
class SoundTouch;
}

namespace brindlecast {

// Rates that sound can be stretched to; outside of them nothing is understood any more.
inline constexpr double kSlowestStretch = 0.25;
inline constexpr double kFastestStretch = 4.0;

// Plays interleaved sound faster or slower at its own pitch: pieces of it are overlapped where they fit best.
// What goes in during a time t comes out during t / rate, to the sample once it was drained. One thread at a
// time.
class AudioStretch {
public:
    // Null when `rate` is outside of the range. `format` must be valid.
    static std::unique_ptr<AudioStretch> Create(const AudioFormat& format, double rate);

    AudioStretch(const AudioStretch&) = delete;
    AudioStretch& operator=(const AudioStretch&) = delete;
    ~AudioStretch();

    // Takes `frames` sample frames at `data` and appends to `bytes` what is finished, which may be nothing:
    // pieces are long. False when the storage can't be converted.
    [[nodiscard]] bool Push(const std::uint8_t* data, int frames, std::vector<std::uint8_t>& bytes);

    // Appends what is still inside, and begins anew.
    [[nodiscard]] bool Drain(std::vector<std::uint8_t>& bytes);

private:
    AudioStretch(const AudioFormat& soundFormat, double rate);
    [[nodiscard]] bool Pull(std::vector<std::uint8_t>& bytes);

    const AudioFormat format;
    const AudioFormat inside; // the same as floating point
    AudioConverter toInside;
    AudioConverter toOutside;
    std::unique_ptr<soundtouch::SoundTouch> stretcher;
    std::vector<std::uint8_t> pushed;
    std::vector<float> finished;
};

} // namespace brindlecast
