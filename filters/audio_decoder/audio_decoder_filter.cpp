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

struct ParametersDeleter {
    void operator()(AVCodecParameters* parameters) const noexcept { avcodec_parameters_free(&parameters); }
};
using ParametersPtr = std::unique_ptr<AVCodecParameters, ParametersDeleter>;

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
    const std::lock_guard lock(detailsLock_);
    const Details details = details_.value_or(Details{});
    Give(codec, details.codec);
    Give(format, details_ ? NameOf(details.format.kind) : nullptr);
    Give(channels, details.format.channels);
    Give(sampleRate, details.format.sampleRate);
    Give(channelMask, DWORD{details.format.channelMask});
    return details_ ? S_OK : VFW_E_NOT_CONNECTED;
}

STDMETHODIMP AudioDecoderFilter::GetOutputDetails(LPCSTR* format, int* channels, int* sampleRate,
                                                  DWORD* channelMask) {
    const std::lock_guard lock(detailsLock_);
    const AudioFormat output = output_.value_or(AudioFormat{});
    Give(format, output_ ? NameOf(output.kind) : nullptr);
    Give(channels, output.channels);
    Give(sampleRate, output.sampleRate);
    Give(channelMask, DWORD{output.channelMask});
    return output_ ? S_OK : VFW_E_NOT_CONNECTED;
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
    const ParametersPtr parameters(ParametersFromMediaType(type.Get()));
    const bool known = parameters && parameters->codec_type == AVMEDIA_TYPE_AUDIO &&
                       avcodec_find_decoder(parameters->codec_id) != nullptr;
    return known ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

HRESULT AudioDecoderFilter::OnInputType(const MediaType& type) {
    const ParametersPtr parameters(ParametersFromMediaType(type.Get()));
    if (!parameters) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    if (decoder_ && State() != State_Stopped) {
        const HRESULT drained = Drain();
        if (drained != S_OK) {
            return drained;
        }
    }
    auto decoder = AudioDecoder::Create(*parameters);
    if (!decoder || !IsValid(decoder->NaturalFormat())) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    decoder->StartSegment(rate_);
    decoder_ = std::move(decoder);
    compression_ = 0.0;
    TellDetails();
    return S_OK;
}

void AudioDecoderFilter::OnInputDisconnected() {
    decoder_.reset();
    const std::lock_guard lock(detailsLock_);
    details_.reset();
}

// The codec's own name, lower-case, as the library knows it.
void AudioDecoderFilter::TellDetails() {
    const Details details = {avcodec_get_name(decoder_->context().codec_id), decoder_->NaturalFormat()};
    const std::lock_guard lock(detailsLock_);
    details_ = details;
}

// What the decoder gives without loss comes first, then 16 bits, which every receiver takes.
std::vector<AudioFormat> AudioDecoderFilter::Formats() {
    AudioFormat natural;
    {
        const std::lock_guard lock(detailsLock_);
        if (!details_) {
            return {};
        }
        natural = details_->format;
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
    converter_.emplace(*format);
    const std::lock_guard lock(detailsLock_);
    output_ = *format;
    return S_OK;
}

void AudioDecoderFilter::OnOutputDisconnected() {
    converter_.reset();
    const std::lock_guard lock(detailsLock_);
    output_.reset();
}

ALLOCATOR_PROPERTIES AudioDecoderFilter::OutputBuffers() {
    return {kOutputBuffers, BufferBytes(converter_->output()), 16, 0};
}

HRESULT AudioDecoderFilter::OnStart() {
    Reset();
    return S_OK;
}

void AudioDecoderFilter::OnStop() {
    Reset();
}

void AudioDecoderFilter::Reset() {
    if (decoder_) {
        decoder_->Flush();
    }
    if (converter_) {
        converter_->Flush();
    }
    discontinuity_ = true;
}

HRESULT AudioDecoderFilter::OnSegment(const BasePin::Segment& segment) {
    if (State() != State_Stopped && !IsFlushing()) {
        // Sound that waits belongs to the segment that ends.
        const HRESULT drained = Drain();
        if (FAILED(drained)) {
            return drained;
        }
    }
    rate_ = segment.rate > 0.0 ? segment.rate : 1.0;
    Reset();
    if (decoder_) {
        decoder_->StartSegment(rate_);
    }
    return TransformFilter::OnSegment(segment);
}

HRESULT AudioDecoderFilter::Process(IMediaSample& sample) {
    if (!decoder_ || !converter_) {
        return VFW_E_NOT_CONNECTED;
    }
    BYTE* data = nullptr;
    const HRESULT result = sample.GetPointer(&data);
    if (FAILED(result)) {
        return result;
    }
    if (const double wanted = Compression(); wanted != compression_) {
        decoder_->SetCompression(wanted);
        compression_ = wanted;
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
    deliveryResult_ = S_OK;
    decoder_->Decode(packet, [this](AudioBlock&& block) { return Deliver(std::move(block)); });
    return deliveryResult_;
}

HRESULT AudioDecoderFilter::Drain() {
    deliveryResult_ = S_OK;
    if (!decoder_ || !converter_) {
        return S_OK;
    }
    const bool goesOn = decoder_->Drain([this](AudioBlock&& block) { return Deliver(std::move(block)); });
    bytes_.clear();
    if (goesOn && converter_->Drain(bytes_)) {
        deliveryResult_ = DeliverBytes(nextStart_);
    }
    return deliveryResult_;
}

bool AudioDecoderFilter::Deliver(AudioBlock&& block) {
    if (IsFlushing()) {
        deliveryResult_ = S_FALSE;
        return false;
    }
    {
        const AudioFormat natural = decoder_->NaturalFormat();
        const std::lock_guard lock(detailsLock_);
        if (details_) {
            details_->format = natural;
        }
    }
    discontinuity_ = discontinuity_ || block.discontinuity;
    const auto heldBack = static_cast<Time100ns>(static_cast<double>(converter_->HeldBack()) / rate_);
    bytes_.clear();
    if (!converter_->Convert(*block.samples, bytes_)) {
        // Sound in a form that can't be given out is left out like broken one.
        return true;
    }
    deliveryResult_ = DeliverBytes(std::max<Time100ns>(block.start - heldBack, 0));
    return deliveryResult_ == S_OK;
}

// Sends bytes_ in samples no larger than a buffer of any allocator.
HRESULT AudioDecoderFilter::DeliverBytes(Time100ns start) {
    const AudioFormat& format = converter_->output();
    const auto frameBytes = static_cast<std::size_t>(format.BytesPerFrame());
    const auto largest = static_cast<std::size_t>(BufferBytes(format));
    auto timeAt = [&](std::size_t offset) {
        const double frames = static_cast<double>(offset / frameBytes);
        return start + std::llround(frames * kTime100nsPerSecond / format.sampleRate / rate_);
    };
    for (std::size_t offset = 0; offset < bytes_.size();) {
        const std::size_t length = std::min(largest, bytes_.size() - offset);
        ComPtr<IMediaSample> sample;
        const HRESULT got = Output().GetBuffer(sample.GetAddressOf(), static_cast<LONG>(length));
        if (FAILED(got)) {
            return IsFlushing() ? S_FALSE : got;
        }
        BYTE* data = nullptr;
        if (FAILED(sample->GetPointer(&data))) {
            return E_FAIL;
        }
        std::copy_n(bytes_.data() + offset, length, data);
        REFERENCE_TIME sampleStart = timeAt(offset);
        REFERENCE_TIME sampleStop = timeAt(offset + length);
        sample->SetTime(&sampleStart, &sampleStop);
        sample->SetActualDataLength(static_cast<LONG>(length));
        sample->SetSyncPoint(TRUE);
        sample->SetDiscontinuity(std::exchange(discontinuity_, false));
        const HRESULT delivered = Output().Deliver(sample.Get());
        if (delivered != S_OK) {
            return delivered;
        }
        offset += length;
    }
    nextStart_ = timeAt(bytes_.size());
    return S_OK;
}

} // namespace brindlecast
