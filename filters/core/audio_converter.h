#pragma once

#include "filters/core/audio_format.h"

#include <cstdint>
#include <memory>
#include <vector>

extern "C" {
#include <libswresample/swresample.h>
}

namespace brindlecast {

// Turns decoded sound into interleaved sound of one fixed format: sample kind, channels, rate. Where nothing
// differs but the storage, the values pass unchanged. One thread at a time.
class AudioConverter {
public:
    // `output` must be valid.
    explicit AudioConverter(const AudioFormat& theOutput) : output(theOutput) {}

    [[nodiscard]] const AudioFormat& Output() const { return output; }

    // Appends `frame` to `bytes`. A change of the source's format is followed at once. False when the source
    // can't be converted.
    [[nodiscard]] bool Convert(const AVFrame& frame, std::vector<std::uint8_t>& bytes);

    // The same for interleaved sound; `frames` sample frames at `data`.
    [[nodiscard]] bool Convert(const AudioFormat& source, const std::uint8_t* data, int frames,
                               std::vector<std::uint8_t>& bytes);

    // How much sound a change of the rate holds back: the next converted sample belongs that much before the
    // next source sample.
    [[nodiscard]] Time100ns HeldBack() const;

    // Appends what a change of the rate still holds back.
    [[nodiscard]] bool Drain(std::vector<std::uint8_t>& bytes);

    // Forgets what is held back.
    void Flush() { resampler.reset(); }

private:
    struct ResamplerDeleter {
        void operator()(SwrContext* freed) const noexcept { swr_free(&freed); }
    };
    struct Source {
        AVSampleFormat format = AV_SAMPLE_FMT_NONE;
        int sampleRate = 0;
        int channels = 0;
        std::uint64_t channelMask = 0;
        bool operator==(const Source&) const = default;
    };

    [[nodiscard]] bool Prepare(const Source& source);
    [[nodiscard]] bool Resample(const std::uint8_t* const* planes, int frames,
                                std::vector<std::uint8_t>& bytes);

    AudioFormat output;
    Source preparedSource;
    std::unique_ptr<SwrContext, ResamplerDeleter> resampler;
    std::vector<std::uint8_t> scratch;
    std::vector<std::uint8_t> widened;
};

} // namespace brindlecast
