#include "filters/audio_decoder/audio_decoder_filter.h"

#include "filters/base/audio_type.h"
#include "filters/base/sample_allocator.h"
#include "filters/base/stream_formats.h"

#include <algorithm>
#include <cmath>
#include <utility>

extern "C" {
#include <libavutil/intreadwrite.h>
}

namespace brindlecast {
namespace {

using Microsoft::WRL::ComPtr;

// Enough for a renderer to stay ahead; a buffer holds a tenth of a second.
constexpr LONG kOutputBuffers = 8;
constexpr int kBuffersPerSecond = 10;

LONG BufferBytes(const AudioFormat& format) {
    return static_cast<LONG>(format.BytesPerFrame() * std::max(format.sampleRate / kBuffersPerSecond, 1));
}

// Reads what the container wants left out: two 32-bit numbers of samples, at the start and at the end.
void ReadSkipping(IMediaSample& sample, AudioPacket& packet) {
    constexpr ULONG kLeastBytes = 8;
    ComPtr<ISampleSideData> holder;
    const BYTE* data = nullptr;
    ULONG size = 0;
    if (FAILED(sample.QueryInterface(kIidSampleSideData, reinterpret_cast<void**>(holder.GetAddressOf()))) ||
        FAILED(holder->GetSideData(PacketSideDataKind(AV_PKT_DATA_SKIP_SAMPLES), &data, &size)) ||
        size < kLeastBytes) {
        return;
    }
    packet.skipAtStart = AV_RL32(data);
    packet.skipAtEnd = AV_RL32(data + 4);
}

template <class T>
void Give(T* out, T value) {
    if (out) {
        *out = value;
    }
}

// Null for what can't be decoded.
std::unique_ptr<AudioDecoder> MakeDecoder(const MediaType& type) {
    const ParametersPtr parameters(ParametersFromMediaType(type.Get()));
    if (!parameters || parameters->codec_type != AVMEDIA_TYPE_AUDIO) {
        return nullptr;
    }
    auto made = AudioDecoder::Create(*parameters);
    return made && IsValid(made->NaturalFormat()) ? std::move(made) : nullptr;
}

} // namespace

AudioDecoderFilter::AudioDecoderFilter() : TransformFilter(kClsidLavAudio, L"Input", L"Output") {}

void* AudioDecoderFilter::FindInterface(REFIID iid) noexcept {
    if (iid == __uuidof(ILAVAudioSettings)) {
        return static_cast<ILAVAudioSettings*>(this);
    }
    if (iid == __uuidof(ILAVAudioStatus)) {
        return static_cast<ILAVAudioStatus*>(this);
    }
    return TransformFilter::FindInterface(iid);
}

STDMETHODIMP_(BOOL) AudioDecoderFilter::IsSampleFormatSupported(int format) {
    return IsOutputFormat(format);
}

STDMETHODIMP AudioDecoderFilter::GetDecodeDetails(LPCSTR* codec, LPCSTR* format, int* channels,
                                                  int* sampleRate, DWORD* channelMask) {
    const std::lock_guard lock(detailsLock);
    const Details known = details.value_or(Details{});
    Give(codec, known.codec);
    Give(format, details ? NameOf(known.format.kind) : nullptr);
    Give(channels, known.format.channels);
    Give(sampleRate, known.format.sampleRate);
    Give(channelMask, DWORD{known.format.channelMask});
    return details ? S_OK : VFW_E_NOT_CONNECTED;
}

STDMETHODIMP AudioDecoderFilter::GetOutputDetails(LPCSTR* format, int* channels, int* sampleRate,
                                                  DWORD* channelMask) {
    const std::lock_guard lock(detailsLock);
    const AudioFormat current = output.value_or(AudioFormat{});
    Give(format, output ? NameOf(current.kind) : nullptr);
    Give(channels, current.channels);
    Give(sampleRate, current.sampleRate);
    Give(channelMask, DWORD{current.channelMask});
    return output ? S_OK : VFW_E_NOT_CONNECTED;
}

STDMETHODIMP AudioDecoderFilter::EnableVolumeStats() {
    return E_NOTIMPL;
}
STDMETHODIMP AudioDecoderFilter::DisableVolumeStats() {
    return E_NOTIMPL;
}
STDMETHODIMP AudioDecoderFilter::GetChannelVolumeAverage(WORD, float*) {
    return E_NOTIMPL;
}

HRESULT AudioDecoderFilter::CheckInput(const MediaType& type) {
    if (type->majortype != MEDIATYPE_Audio) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    // By making one: knowing the codec is not enough, set-up data may be broken or the channels too many.
    return MakeDecoder(type) ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

HRESULT AudioDecoderFilter::OnInputType(const MediaType& type) {
    auto newDecoder = MakeDecoder(type);
    if (!newDecoder) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    if (decoder && State() != State_Stopped) {
        const HRESULT drained = Drain();
        if (drained != S_OK) {
            return drained;
        }
    }
    newDecoder->StartSegment(rate);
    decoder = std::move(newDecoder);
    compression = 0.0;
    TellDetails();
    return S_OK;
}

void AudioDecoderFilter::OnInputDisconnected() {
    decoder.reset();
    const std::lock_guard lock(detailsLock);
    details.reset();
}

// The codec's own name, lower-case, as the library knows it.
void AudioDecoderFilter::TellDetails() {
    const Details newDetails = {avcodec_get_name(decoder->Context().codec_id), decoder->NaturalFormat()};
    const std::lock_guard lock(detailsLock);
    details = newDetails;
}

// What the decoder gives without loss comes first, then 16 bits, which every receiver takes.
std::vector<AudioFormat> AudioDecoderFilter::Formats() {
    AudioFormat natural;
    {
        const std::lock_guard lock(detailsLock);
        if (!details) {
            return {};
        }
        natural = details->format;
    }
    std::vector<AudioFormat> formats;
    for (const SampleKind kind : {natural.kind, SampleKind::kSigned16, SampleKind::kFloat32,
                                  SampleKind::kSigned24, SampleKind::kSigned32}) {
        AudioFormat format = WithOutputChannels(natural);
        format.kind = kind;
        if (IsEnabled(kind) && std::find(formats.begin(), formats.end(), format) == formats.end()) {
            formats.push_back(format);
        }
    }
    return formats;
}

std::vector<MediaType> AudioDecoderFilter::OutputTypes() {
    std::vector<MediaType> types;
    for (const AudioFormat& format : Formats()) {
        types.push_back(MakeAudioType(format));
    }
    return types;
}

HRESULT AudioDecoderFilter::CheckOutput(const MediaType& type) {
    const auto format = ReadAudioType(type.Get());
    const auto formats = Formats();
    const bool offered = format && std::find(formats.begin(), formats.end(), *format) != formats.end();
    return offered ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

HRESULT AudioDecoderFilter::OnOutputType(const MediaType& type) {
    const auto format = ReadAudioType(type.Get());
    if (!format) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    converter.emplace(*format);
    const std::lock_guard lock(detailsLock);
    output = *format;
    return S_OK;
}

void AudioDecoderFilter::OnOutputDisconnected() {
    converter.reset();
    const std::lock_guard lock(detailsLock);
    output.reset();
}

ALLOCATOR_PROPERTIES AudioDecoderFilter::OutputBuffers() {
    return {kOutputBuffers, BufferBytes(converter->Output()), 16, 0};
}

HRESULT AudioDecoderFilter::OnStart() {
    Reset();
    return S_OK;
}

void AudioDecoderFilter::OnStop() {
    Reset();
}

void AudioDecoderFilter::Reset() {
    if (decoder) {
        decoder->Flush();
    }
    if (converter) {
        converter->Flush();
    }
    discontinuity = true;
}

HRESULT AudioDecoderFilter::OnSegment(const BasePin::Segment& segment) {
    if (State() != State_Stopped && !IsFlushing()) {
        // Sound that waits belongs to the segment that ends.
        const HRESULT drained = Drain();
        if (FAILED(drained)) {
            return drained;
        }
    }
    rate = segment.rate > 0.0 ? segment.rate : 1.0;
    Reset();
    if (decoder) {
        decoder->StartSegment(rate);
    }
    return TransformFilter::OnSegment(segment);
}

HRESULT AudioDecoderFilter::Process(IMediaSample& sample) {
    if (!decoder || !converter) {
        return VFW_E_NOT_CONNECTED;
    }
    BYTE* data = nullptr;
    const HRESULT result = sample.GetPointer(&data);
    if (FAILED(result)) {
        return result;
    }
    if (const double wanted = Compression(); wanted != compression) {
        decoder->SetCompression(wanted);
        compression = wanted;
    }
    AudioPacket packet;
    packet.data = {data, static_cast<std::size_t>(std::max<LONG>(sample.GetActualDataLength(), 0))};
    packet.discontinuity = sample.IsDiscontinuity() == S_OK;
    ReadSkipping(sample, packet);
    REFERENCE_TIME start = 0;
    REFERENCE_TIME stop = 0;
    if (SUCCEEDED(sample.GetTime(&start, &stop))) {
        packet.start = start;
    }
    deliveryResult = S_OK;
    decoder->Decode(packet, [this](AudioBlock&& block) { return Deliver(std::move(block)); });
    return deliveryResult;
}

HRESULT AudioDecoderFilter::Drain() {
    deliveryResult = S_OK;
    if (!decoder || !converter) {
        return S_OK;
    }
    const bool goesOn = decoder->Drain([this](AudioBlock&& block) { return Deliver(std::move(block)); });
    bytes.clear();
    if (goesOn && converter->Drain(bytes)) {
        deliveryResult = DeliverBytes(nextStart);
    }
    return deliveryResult;
}

bool AudioDecoderFilter::Deliver(AudioBlock&& block) {
    if (IsFlushing()) {
        deliveryResult = S_FALSE;
        return false;
    }
    {
        const AudioFormat natural = decoder->NaturalFormat();
        const std::lock_guard lock(detailsLock);
        if (details) {
            details->format = natural;
        }
    }
    discontinuity = discontinuity || block.discontinuity;
    const auto heldBack = static_cast<Time100ns>(static_cast<double>(converter->HeldBack()) / rate);
    bytes.clear();
    if (!converter->Convert(*block.samples, bytes)) {
        // Sound in a form that can't be given out is left out like broken one.
        return true;
    }
    deliveryResult = DeliverBytes(std::max<Time100ns>(block.start - heldBack, 0));
    return deliveryResult == S_OK;
}

// Sends bytes in samples no larger than a buffer of any allocator.
HRESULT AudioDecoderFilter::DeliverBytes(Time100ns start) {
    const AudioFormat& format = converter->Output();
    const auto frameBytes = static_cast<std::size_t>(format.BytesPerFrame());
    const auto largest = static_cast<std::size_t>(BufferBytes(format));
    auto timeAt = [&](std::size_t offset) {
        const std::size_t frames = offset / frameBytes;
        return start +
               std::llround(static_cast<double>(frames) * kTime100nsPerSecond / format.sampleRate / rate);
    };
    for (std::size_t offset = 0; offset < bytes.size();) {
        const std::size_t length = std::min(largest, bytes.size() - offset);
        ComPtr<IMediaSample> sample;
        const HRESULT got = Output().GetBuffer(sample.GetAddressOf(), static_cast<LONG>(length));
        if (FAILED(got)) {
            return IsFlushing() ? S_FALSE : got;
        }
        BYTE* data = nullptr;
        if (FAILED(sample->GetPointer(&data))) {
            return E_FAIL;
        }
        std::copy_n(bytes.data() + offset, length, data);
        REFERENCE_TIME sampleStart = timeAt(offset);
        REFERENCE_TIME sampleStop = timeAt(offset + length);
        sample->SetTime(&sampleStart, &sampleStop);
        sample->SetActualDataLength(static_cast<LONG>(length));
        sample->SetSyncPoint(TRUE);
        sample->SetDiscontinuity(std::exchange(discontinuity, false));
        const HRESULT delivered = Output().Deliver(sample.Get());
        if (delivered != S_OK) {
            return delivered;
        }
        offset += length;
    }
    nextStart = timeAt(bytes.size());
    return S_OK;
}

} // namespace brindlecast
