#pragma once

#include "filters/core/audio_format.h"
#include "filters/include/lav_audio.h"
#include "tests/filters/support/push_source.h"
#include "tests/filters/support/recording_sink.h"
#include "tests/filters/support/test_graph.h"
#include "tests/filters/support/test_module.h"
#include "tests/filters/video_decoder/media_reader.h"

#include <functional>

namespace brindlecast {

// The decoder in a graph between a source of packets and a sink, connected and paused.
class AudioBench {
public:
    using Accepts = std::function<bool(const MediaType&)>;
    // Called with the decoder before it is connected.
    using Prepare = std::function<void(ILAVAudioSettings&)>;

    explicit AudioBench(const MediaStream& stream, Accepts accepts = {}, const Prepare& prepare = {});
    ~AudioBench();

    // Pushes packets from `first` to before `end` (all by default), in a segment that begins at
    // `segmentStart`.
    void PushFrom(const MediaStream& stream, std::size_t first, Time100ns segmentStart,
                  std::size_t end = SIZE_MAX);
    HRESULT Push(const MediaPacket& packet, Time100ns segmentStart);
    void EndOfStream();

    // The format that samples have.
    [[nodiscard]] AudioFormat OutputFormat();
    [[nodiscard]] ILAVAudioStatus& Status() { return *status_.Get(); }
    [[nodiscard]] ILAVAudioSettings& Settings() { return *settings_.Get(); }

    TestGraph graph;
    Microsoft::WRL::ComPtr<IBaseFilter> decoder;
    Microsoft::WRL::ComPtr<PushSource> source;
    Microsoft::WRL::ComPtr<RecordingSink> sink;

private:
    Microsoft::WRL::ComPtr<ILAVAudioStatus> status_;
    Microsoft::WRL::ComPtr<ILAVAudioSettings> settings_;
};

// The loaded LAVAudio.ax.
[[nodiscard]] TestModule& AudioModule();

// Accepts sound of that kind only.
[[nodiscard]] AudioBench::Accepts Only(SampleKind kind);

// All bytes of samples, one after the other.
[[nodiscard]] std::vector<BYTE> Joined(const std::vector<RecordingSink::Sample>& samples);

// What the library decodes of a stream, interleaved in its own sample format (planar becomes packed), from
// `firstPacket` on.
[[nodiscard]] std::vector<BYTE> DecodedSound(const MediaStream& stream, std::size_t firstPacket = 0);

} // namespace brindlecast
