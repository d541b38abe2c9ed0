#pragma once

#include "filters/core/audio_format.h"
#include "filters/core/codec_session.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

namespace brindlecast {

// One compressed packet of sound. The bytes need no padding and are not kept.
struct AudioPacket {
    std::span<const std::uint8_t> data;
    // Presentation time on the segment's time line (already divided by its rate), kNoTime when unknown.
    Time100ns start = kNoTime;
    // The time does not follow from the packets before.
    bool discontinuity = false;
    // Samples that the container wants left out at the packet's ends, at the stream's own sample rate.
    std::uint32_t skipAtStart = 0;
    std::uint32_t skipAtEnd = 0;
};

// Decoded sound. `start` is on the segment's time line and never negative.
struct AudioBlock {
    FramePtr samples;
    Time100ns start = 0;
    // There is a gap or a jump before this block.
    bool discontinuity = false;
};

// Software decoding of one sound stream. Times are counted in samples from the last known packet time, so
// that blocks join without gaps although containers round; sound before the start of the segment (time 0) is
// cut off to the sample. One thread at a time.
class AudioDecoder {
public:
    // Takes a block; false ends the delivery (the graph is flushing or has stopped).
    using Sink = std::function<bool(AudioBlock&&)>;

    // Null when there is no decoder for the stream or it refuses the set-up data.
    [[nodiscard]] static std::unique_ptr<AudioDecoder> Create(const AVCodecParameters& parameters);

    // Starts a segment: forgets everything that was decoded; `rate` is the factor that packet times were
    // divided by.
    void StartSegment(double newRate);

    // Forgets everything that was decoded; the segment goes on.
    void Flush();

    // Decodes one packet. Broken data yields no sound and is no failure. False when the sink refused a
    // block.
    bool Decode(const AudioPacket& packet, const Sink& sink);

    // Hands out the last of the sound. The next packet starts afresh.
    bool Drain(const Sink& sink);

    // Dynamic range compression from 0 (none) to 1 (all that the stream asks for). Of the supported codecs
    // AC-3 and E-AC-3 carry such data; returns false for the others.
    bool SetCompression(double scale);

    // The format of the sound as far as it is known before decoding: what a converter loses nothing with.
    [[nodiscard]] AudioFormat NaturalFormat() const;

    [[nodiscard]] const AVCodecContext& Context() const { return session.Context(); }
    // Packets that the library called broken since creation.
    [[nodiscard]] std::int64_t BrokenPackets() const { return session.BrokenPackets(); }

private:
    AudioDecoder(CodecSession openSession, const AVCodecParameters& parameters);

    bool Send(const AVPacket* packet, const Sink& sink);
    bool Emit(FramePtr samples, const Sink& sink);
    void PlaceOnTimeLine(const AVFrame& samples);
    [[nodiscard]] Time100ns Now(int sampleRate) const;

    CodecSession session;
    int significantBits = 0;
    double rate = 1.0;
    // Time of the first sample that is counted from, kNoTime when the next packet's own time is taken.
    Time100ns anchor = kNoTime;
    std::int64_t samplesSinceAnchor = 0;
    int countedRate = 0;
    bool discontinuity = true;
};

// Cuts `count` sample frames off the beginning of a block.
void DropFirstSamples(AVFrame& samples, int count);

} // namespace brindlecast
