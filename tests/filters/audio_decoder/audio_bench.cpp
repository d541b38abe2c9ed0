#include "tests/filters/audio_decoder/audio_bench.h"

#include "filters/base/audio_type.h"

#include <algorithm>
#include <stdexcept>

namespace brindlecast {
namespace {

void Require(bool condition, const char* what) {
    if (!condition) {
        throw std::runtime_error(what);
    }
}

} // namespace

TestModule& AudioModule() {
    static TestModule module(L"LAVAudio.ax");
    return module;
}

AudioBench::Accepts Only(SampleKind kind) {
    return [kind](const MediaType& type) {
        const auto format = ReadAudioType(type.Get());
        return format && format->kind == kind;
    };
}

AudioBench::AudioBench(const MediaStream& stream, Accepts accepts, const Prepare& prepare)
    : decoder(AudioModule().CreateFilter(kClsidLavAudio)), source(PushSource::Create(stream.types)),
      sink(RecordingSink::Create(MEDIATYPE_Audio, std::move(accepts))),
      status_(Query<ILAVAudioStatus>(decoder, __uuidof(ILAVAudioStatus))),
      settings_(Query<ILAVAudioSettings>(decoder, __uuidof(ILAVAudioSettings))) {
    if (prepare) {
        prepare(*settings_.Get());
    }
    graph.Add(source.Get(), L"source");
    graph.Add(decoder.Get(), L"decoder");
    graph.Add(sink.Get(), L"sink");
    graph.RemoveClock();
    Require(graph.ConnectDirect(&source->Pin(), PinsOf(decoder.Get(), PINDIR_INPUT)[0].Get()) == S_OK,
            "connect in");
    Require(graph.ConnectDirect(PinsOf(decoder.Get(), PINDIR_OUTPUT)[0].Get(), &sink->Pin()) == S_OK,
            "connect out");
    Require(SUCCEEDED(graph.Pause()), "pause");
}

AudioBench::~AudioBench() {
    sink->Block(false);
    (void)graph.Stop();
}

HRESULT AudioBench::Push(const MediaPacket& packet, Time100ns segmentStart) {
    return source->Push(packet.bytes.data(), packet.bytes.size(), packet.In(segmentStart));
}

void AudioBench::PushFrom(const MediaStream& stream, std::size_t first, Time100ns segmentStart,
                          std::size_t end) {
    for (std::size_t i = first; i < std::min(end, stream.packets.size()); ++i) {
        Require(Push(stream.packets[i], segmentStart) == S_OK, "push");
    }
}

void AudioBench::EndOfStream() {
    Require(source->Pin().DeliverEndOfStream() == S_OK, "end of stream");
}

AudioFormat AudioBench::OutputFormat() {
    const auto format = ReadAudioType(sink->Pin().Type().Get());
    Require(format.has_value(), "no sound format");
    return *format;
}

std::vector<BYTE> Joined(const std::vector<RecordingSink::Sample>& samples) {
    std::vector<BYTE> bytes;
    for (const auto& sample : samples) {
        bytes.insert(bytes.end(), sample.bytes.begin(), sample.bytes.end());
    }
    return bytes;
}

std::vector<BYTE> DecodedSound(const MediaStream& stream, std::size_t firstPacket) {
    std::vector<BYTE> bytes;
    for (const FramePtr& frame : DecodeStream(stream, firstPacket)) {
        const auto format = static_cast<AVSampleFormat>(frame->format);
        const int size = av_get_bytes_per_sample(format);
        const int channels = frame->ch_layout.nb_channels;
        for (int i = 0; i < frame->nb_samples; ++i) {
            for (int channel = 0; channel < channels; ++channel) {
                const bool planar = av_sample_fmt_is_planar(format) != 0;
                const BYTE* from = planar ? frame->extended_data[channel] + std::ptrdiff_t{i} * size
                                          : frame->data[0] + (std::ptrdiff_t{i} * channels + channel) * size;
                bytes.insert(bytes.end(), from, from + size);
            }
        }
    }
    return bytes;
}

} // namespace brindlecast
