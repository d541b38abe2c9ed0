#include "filters/audio_switcher/audio_switcher_filter.h"

#include "filters/base/audio_type.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace brindlecast {
namespace {

using Microsoft::WRL::ComPtr;

// Enough for a renderer to stay ahead; a buffer holds a tenth of a second.
constexpr LONG kOutputBuffers = 8;
constexpr int kBuffersPerSecond = 10;
constexpr double kPercent = 100.0;

LONG BufferBytes(const AudioFormat& format) {
    return static_cast<LONG>(format.BytesPerFrame() * std::max(format.sampleRate / kBuffersPerSecond, 1));
}

} // namespace

AudioSwitcherFilter::AudioSwitcherFilter() : TransformFilter(kClsidAudioSwitcher, L"Input", L"Output") {}

void* AudioSwitcherFilter::FindInterface(REFIID iid) noexcept {
    if (iid == __uuidof(IAudioSwitcherFilter)) {
        return static_cast<IAudioSwitcherFilter*>(this);
    }
    return TransformFilter::FindInterface(iid);
}

std::optional<AudioFormat> AudioSwitcherFilter::InputFormat() {
    const std::lock_guard lock(settingsLock_);
    return input_;
}

STDMETHODIMP AudioSwitcherFilter::GetInputSpeakerConfig(DWORD* channelMask) {
    if (!channelMask) {
        return E_POINTER;
    }
    const auto format = InputFormat();
    *channelMask = format ? format->channelMask : 0;
    return format ? S_OK : VFW_E_NOT_CONNECTED;
}

STDMETHODIMP AudioSwitcherFilter::GetSpeakerConfig(bool*, DWORD (*)[kAudioSwitcherSpeakers]) {
    return E_NOTIMPL;
}
STDMETHODIMP AudioSwitcherFilter::SetSpeakerConfig(bool, DWORD (*)[kAudioSwitcherSpeakers]) {
    return E_NOTIMPL;
}

STDMETHODIMP_(int) AudioSwitcherFilter::GetNumberOfInputChannels() {
    const auto format = InputFormat();
    return format ? format->channels : 0;
}

STDMETHODIMP AudioSwitcherFilter::EnableDownSamplingTo441(bool enabled) {
    return enabled ? E_NOTIMPL : S_OK;
}
STDMETHODIMP AudioSwitcherFilter::SetAudioTimeShift(REFERENCE_TIME shift) {
    return shift == 0 ? S_OK : E_NOTIMPL;
}

STDMETHODIMP AudioSwitcherFilter::GetNormalizeBoost(bool& normalize, bool& recover, float& boostDecibels) {
    const std::lock_guard lock(settingsLock_);
    normalize = loudness_.normalize;
    recover = loudness_.recover;
    boostDecibels = static_cast<float>(20.0 * std::log10(1.0 + loudness_.boostPercent / kPercent));
    return S_OK;
}

STDMETHODIMP AudioSwitcherFilter::SetNormalizeBoost(bool normalize, bool recover, float boostDecibels) {
    constexpr float kMaxDecibels = 60.0F;
    if (!(boostDecibels >= 0.0F && boostDecibels <= kMaxDecibels)) {
        return E_INVALIDARG;
    }
    const double percent = (std::pow(10.0, static_cast<double>(boostDecibels) / 20.0) - 1.0) * kPercent;
    const std::lock_guard lock(settingsLock_);
    loudness_.normalize = normalize;
    loudness_.recover = recover;
    loudness_.boostPercent = static_cast<UINT>(std::lround(percent));
    return S_OK;
}

STDMETHODIMP AudioSwitcherFilter::GetNormalizeBoost2(bool& normalize, UINT& maxFactorPercent, bool& recover,
                                                     UINT& boostPercent) {
    const std::lock_guard lock(settingsLock_);
    normalize = loudness_.normalize;
    maxFactorPercent = loudness_.maxFactorPercent;
    recover = loudness_.recover;
    boostPercent = loudness_.boostPercent;
    return S_OK;
}

STDMETHODIMP AudioSwitcherFilter::SetNormalizeBoost2(bool normalize, UINT maxFactorPercent, bool recover,
                                                     UINT boostPercent) {
    const std::lock_guard lock(settingsLock_);
    loudness_ = {normalize, maxFactorPercent, recover, boostPercent};
    return S_OK;
}

GainSettings AudioSwitcherFilter::CurrentGain() {
    const std::lock_guard lock(settingsLock_);
    return {loudness_.normalize, loudness_.maxFactorPercent / kPercent, loudness_.recover,
            1.0 + loudness_.boostPercent / kPercent};
}

HRESULT AudioSwitcherFilter::CheckInput(const MediaType& type) {
    return ReadAudioType(type.Get()) ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

HRESULT AudioSwitcherFilter::OnInputType(const MediaType& type) {
    const auto format = ReadAudioType(type.Get());
    if (!format) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    if (converter_ && State() != State_Stopped) {
        const HRESULT drained = Drain();
        if (drained != S_OK) {
            return drained;
        }
    }
    const std::lock_guard lock(settingsLock_);
    input_ = *format;
    return S_OK;
}

void AudioSwitcherFilter::OnInputDisconnected() {
    const std::lock_guard lock(settingsLock_);
    input_.reset();
}

// The input's own format comes first; a receiver may also have the same sound stored otherwise.
std::vector<MediaType> AudioSwitcherFilter::OutputTypes() {
    std::vector<MediaType> types;
    const auto input = InputFormat();
    if (!input) {
        return types;
    }
    types.push_back(MakeAudioType(*input));
    for (const SampleKind kind :
         {SampleKind::kSigned16, SampleKind::kFloat32, SampleKind::kSigned24, SampleKind::kSigned32}) {
        if (kind != input->kind) {
            AudioFormat format = *input;
            format.kind = kind;
            types.push_back(MakeAudioType(format));
        }
    }
    return types;
}

HRESULT AudioSwitcherFilter::CheckOutput(const MediaType& type) {
    const auto input = InputFormat();
    const auto format = ReadAudioType(type.Get());
    const bool same = input && format && format->sampleRate == input->sampleRate &&
                      format->channels == input->channels && format->channelMask == input->channelMask;
    return same ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

HRESULT AudioSwitcherFilter::OnOutputType(const MediaType& type) {
    const auto format = ReadAudioType(type.Get());
    if (!format) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    converter_.emplace(*format);
    return S_OK;
}

void AudioSwitcherFilter::OnOutputDisconnected() {
    converter_.reset();
}

ALLOCATOR_PROPERTIES AudioSwitcherFilter::OutputBuffers() {
    return {kOutputBuffers, BufferBytes(converter_->output()), 16, 0};
}

void AudioSwitcherFilter::Reset() {
    if (converter_) {
        converter_->Flush();
    }
    discontinuity_ = true;
}

HRESULT AudioSwitcherFilter::OnSegment(const BasePin::Segment& segment) {
    rate_ = segment.rate > 0.0 ? segment.rate : 1.0;
    Reset();
    return TransformFilter::OnSegment(segment);
}

HRESULT AudioSwitcherFilter::Process(IMediaSample& sample) {
    const auto input = InputFormat();
    if (!converter_ || !input) {
        return VFW_E_NOT_CONNECTED;
    }
    BYTE* data = nullptr;
    const HRESULT result = sample.GetPointer(&data);
    if (FAILED(result)) {
        return result;
    }
    const int frames = std::max<LONG>(sample.GetActualDataLength(), 0) / input->BytesPerFrame();
    const auto length = static_cast<std::size_t>(frames) * static_cast<std::size_t>(input->BytesPerFrame());
    const auto heldBack = static_cast<Time100ns>(static_cast<double>(converter_->HeldBack()) / rate_);
    bytes_.clear();
    if (*input == converter_->output()) {
        bytes_.assign(data, data + length);
    } else if (!converter_->Convert(*input, data, frames, bytes_)) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    discontinuity_ = discontinuity_ || sample.IsDiscontinuity() == S_OK;
    std::optional<Time100ns> start;
    REFERENCE_TIME given = 0;
    REFERENCE_TIME stop = 0;
    if (SUCCEEDED(sample.GetTime(&given, &stop))) {
        start = given - heldBack;
    }
    gain_.SetSettings(CurrentGain());
    return DeliverBytes(start);
}

HRESULT AudioSwitcherFilter::Drain() {
    bytes_.clear();
    return converter_ && converter_->Drain(bytes_) ? DeliverBytes(nextStart_) : S_OK;
}

// Processes bytes_ and sends them in samples no larger than a buffer of any allocator.
HRESULT AudioSwitcherFilter::DeliverBytes(std::optional<Time100ns> start) {
    const AudioFormat& format = converter_->output();
    const auto frameBytes = static_cast<std::size_t>(format.BytesPerFrame());
    const auto largest = static_cast<std::size_t>(BufferBytes(format));
    gain_.Process(format, bytes_.data(), static_cast<int>(bytes_.size() / frameBytes));
    auto timeAt = [&](std::size_t offset) {
        const double frames = static_cast<double>(offset / frameBytes);
        return start.value_or(0) + std::llround(frames * kTime100nsPerSecond / format.sampleRate / rate_);
    };
    for (std::size_t offset = 0; offset < bytes_.size();) {
        const std::size_t length = std::min(largest, bytes_.size() - offset);
        ComPtr<IMediaSample> sample;
        const HRESULT got = Output().GetBuffer(sample.GetAddressOf(), static_cast<LONG>(length));
        if (FAILED(got)) {
            return IsFlushing() ? S_FALSE : got;
        }
        BYTE* to = nullptr;
        if (FAILED(sample->GetPointer(&to))) {
            return E_FAIL;
        }
        std::memcpy(to, bytes_.data() + offset, length);
        REFERENCE_TIME sampleStart = timeAt(offset);
        REFERENCE_TIME sampleStop = timeAt(offset + length);
        sample->SetTime(start ? &sampleStart : nullptr, start ? &sampleStop : nullptr);
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
