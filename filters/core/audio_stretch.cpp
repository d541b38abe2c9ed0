#include "filters/core/audio_stretch.h"

#include <soundtouch/SoundTouch.h>

namespace brindlecast {

namespace {

static_assert(sizeof(soundtouch::SAMPLETYPE) == sizeof(float), "the library is built for floating point");

// Pieces that are long enough for two tones at once to stay within 1 Hz at every rate, and short enough for
// speech at four times its speed. Milliseconds.
constexpr int kPiece = 80;
constexpr int kSearch = 25;
constexpr int kOverlap = 12;

// Sample frames that are fetched at once.
constexpr unsigned kFetched = 4096;

AudioFormat AsFloat(AudioFormat format) {
    format.kind = SampleKind::kFloat32;
    return format;
}

} // namespace

AudioStretch::AudioStretch(const AudioFormat& soundFormat, double rate)
    : format(soundFormat), inside(AsFloat(soundFormat)), toInside(inside), toOutside(soundFormat),
      stretcher(std::make_unique<soundtouch::SoundTouch>()),
      finished(std::size_t{kFetched} * static_cast<std::size_t>(soundFormat.channels)) {
    stretcher->setSampleRate(static_cast<unsigned>(format.sampleRate));
    stretcher->setChannels(static_cast<unsigned>(format.channels));
    stretcher->setTempo(rate);
    stretcher->setSetting(SETTING_SEQUENCE_MS, kPiece);
    stretcher->setSetting(SETTING_SEEKWINDOW_MS, kSearch);
    stretcher->setSetting(SETTING_OVERLAP_MS, kOverlap);
}

AudioStretch::~AudioStretch() = default;

std::unique_ptr<AudioStretch> AudioStretch::Create(const AudioFormat& format, double rate) {
    // Written so that not-a-number is refused too.
    if (!(rate >= kSlowestStretch && rate <= kFastestStretch)) {
        return nullptr;
    }
    return std::unique_ptr<AudioStretch>(new AudioStretch(format, rate));
}

bool AudioStretch::Push(const std::uint8_t* data, int frames, std::vector<std::uint8_t>& bytes) {
    if (frames <= 0) {
        return true;
    }
    pushed.clear();
    if (!toInside.Convert(format, data, frames, pushed)) {
        return false;
    }
    stretcher->putSamples(reinterpret_cast<const float*>(pushed.data()), static_cast<unsigned>(frames));
    return Pull(bytes);
}

bool AudioStretch::Drain(std::vector<std::uint8_t>& bytes) {
    stretcher->flush();
    const bool pulled = Pull(bytes);
    stretcher->clear();
    return pulled;
}

bool AudioStretch::Pull(std::vector<std::uint8_t>& bytes) {
    while (const unsigned frames = stretcher->receiveSamples(finished.data(), kFetched)) {
        if (!toOutside.Convert(inside, reinterpret_cast<const std::uint8_t*>(finished.data()),
                               static_cast<int>(frames), bytes)) {
            return false;
        }
    }
    return true;
}

} // namespace brindlecast
