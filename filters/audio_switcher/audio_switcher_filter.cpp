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
// Sound that begins this far from where it was expected is not pieced together with what came before: 100 ns
// units.
constexpr Time100ns kLargestGap = 500'000;

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
    const std::lock_guard lock(settingsLock);
    return input;
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
    const std::lock_guard lock(settingsLock);
    normalize = loudness.normalize;
    recover = loudness.recover;
    boostDecibels = static_cast<float>(20.0 * std::log10(1.0 + loudness.boostPercent / kPercent));
    return S_OK;
}

STDMETHODIMP AudioSwitcherFilter::SetNormalizeBoost(bool normalize, bool recover, float boostDecibels) {
    constexpr float kMaxDecibels = 60.0F;
    if (!(boostDecibels >= 0.0F && boostDecibels <= kMaxDecibels)) {
        return E_INVALIDARG;
    }
    const double percent = (std::pow(10.0, static_cast<double>(boostDecibels) / 20.0) - 1.0) * kPercent;
    const std::lock_guard lock(settingsLock);
    loudness.normalize = normalize;
    loudness.recover = recover;
    loudness.boostPercent = static_cast<UINT>(std::lround(percent));
    return S_OK;
}

STDMETHODIMP AudioSwitcherFilter::GetNormalizeBoost2(bool& normalize, UINT& maxFactorPercent, bool& recover,
                                                     UINT& boostPercent) {
    const std::lock_guard lock(settingsLock);
    normalize = loudness.normalize;
    maxFactorPercent = loudness.maxFactorPercent;
    recover = loudness.recover;
    boostPercent = loudness.boostPercent;
    return S_OK;
}

STDMETHODIMP AudioSwitcherFilter::SetNormalizeBoost2(bool normalize, UINT maxFactorPercent, bool recover,
                                                     UINT boostPercent) {
    const std::lock_guard lock(settingsLock);
    loudness = {normalize, maxFactorPercent, recover, boostPercent};
    return S_OK;
}

GainSettings AudioSwitcherFilter::CurrentGain() {
    const std::lock_guard lock(settingsLock);
    return {loudness.normalize, loudness.maxFactorPercent / kPercent, loudness.recover,
            1.0 + loudness.boostPercent / kPercent};
}

HRESULT AudioSwitcherFilter::CheckInput(const MediaType& type) {
    return ReadAudioType(type.Get()) ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

HRESULT AudioSwitcherFilter::OnInputType(const MediaType& type) {
    const auto format = ReadAudioType(type.Get());
    if (!format) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    if (converter && State() != State_Stopped) {
        const HRESULT drained = Drain();
        if (drained != S_OK) {
            return drained;
        }
    }
    const std::lock_guard lock(settingsLock);
    input = *format;
    return S_OK;
}

void AudioSwitcherFilter::OnInputDisconnected() {
    const std::lock_guard lock(settingsLock);
    input.reset();
}

// The input's own format comes first; a receiver may also have the same sound stored otherwise.
std::vector<MediaType> AudioSwitcherFilter::OutputTypes() {
    std::vector<MediaType> types;
    const auto source = InputFormat();
    if (!source) {
        return types;
    }
    types.push_back(MakeAudioType(*source));
    for (const SampleKind kind :
         {SampleKind::kSigned16, SampleKind::kFloat32, SampleKind::kSigned24, SampleKind::kSigned32}) {
        if (kind != source->kind) {
            AudioFormat format = *source;
            format.kind = kind;
            types.push_back(MakeAudioType(format));
        }
    }
    return types;
}

HRESULT AudioSwitcherFilter::CheckOutput(const MediaType& type) {
    const auto source = InputFormat();
    const auto format = ReadAudioType(type.Get());
    const bool same = source && format && format->sampleRate == source->sampleRate &&
                      format->channels == source->channels && format->channelMask == source->channelMask;
    return same ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

HRESULT AudioSwitcherFilter::OnOutputType(const MediaType& type) {
    const auto format = ReadAudioType(type.Get());
    if (!format) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    converter.emplace(*format);
    return S_OK;
}

void AudioSwitcherFilter::OnOutputDisconnected() {
    converter.reset();
}

ALLOCATOR_PROPERTIES AudioSwitcherFilter::OutputBuffers() {
    return {kOutputBuffers, BufferBytes(converter->Output()), 16, 0};
}

void AudioSwitcherFilter::Reset() {
    if (converter) {
        converter->Flush();
    }
    stretch.reset();
    expectedStart.reset();
    discontinuity = true;
}

bool AudioSwitcherFilter::Stretches() const {
    return rate != 1.0 && rate >= kSlowestStretch && rate <= kFastestStretch;
}

HRESULT AudioSwitcherFilter::OnSegment(const BasePin::Segment& segment) {
    rate = segment.rate > 0.0 ? segment.rate : 1.0;
    Reset();
    BasePin::Segment onward = segment;
    if (Stretches()) {
        onward.rate = 1.0; // a renderer that applied the rate would change the sound a second time
    }
    return TransformFilter::OnSegment(onward);
}

HRESULT AudioSwitcherFilter::Process(IMediaSample& sample) {
    const auto source = InputFormat();
    if (!converter || !source) {
        return VFW_E_NOT_CONNECTED;
    }
    BYTE* data = nullptr;
    const HRESULT result = sample.GetPointer(&data);
    if (FAILED(result)) {
        return result;
    }
    const int frames = std::max<LONG>(sample.GetActualDataLength(), 0) / source->BytesPerFrame();
    const auto length = static_cast<std::size_t>(frames) * static_cast<std::size_t>(source->BytesPerFrame());
    const auto heldBack = static_cast<Time100ns>(static_cast<double>(converter->HeldBack()) / rate);
    bytes.clear();
    if (*source == converter->Output()) {
        bytes.assign(data, data + length);
    } else if (!converter->Convert(*source, data, frames, bytes)) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    discontinuity = discontinuity || sample.IsDiscontinuity() == S_OK;
    std::optional<Time100ns> start;
    REFERENCE_TIME given = 0;
    REFERENCE_TIME stop = 0;
    if (SUCCEEDED(sample.GetTime(&given, &stop))) {
        start = given - heldBack;
    }
    gain.SetSettings(CurrentGain());
    return Stretches() ? DeliverStretched(start) : DeliverBytes(start);
}

HRESULT AudioSwitcherFilter::Drain() {
    bytes.clear();
    if (!converter || !converter->Drain(bytes)) {
        return S_OK;
    }
    if (!Stretches()) {
        return DeliverBytes(nextStart);
    }
    const HRESULT delivered = DeliverStretched(expectedStart);
    return delivered == S_OK ? DrainStretch() : delivered;
}

// Stretches bytes, which begin at `start`, and sends what is finished.
HRESULT AudioSwitcherFilter::DeliverStretched(std::optional<Time100ns> start) {
    if (start && expectedStart && std::abs(*start - *expectedStart) > kLargestGap) {
        std::vector<std::uint8_t> behindTheHole = std::move(bytes);
        const HRESULT drained = DrainStretch();
        if (drained != S_OK) {
            return drained;
        }
        bytes = std::move(behindTheHole);
    }
    const AudioFormat& format = converter->Output();
    if (!stretch) {
        stretch = AudioStretch::Create(format, rate);
        nextStart = start.value_or(nextStart);
    }
    const auto frames = static_cast<int>(bytes.size()) / format.BytesPerFrame();
    const Time100ns begin = start.value_or(expectedStart.value_or(nextStart));
    expectedStart =
        begin + std::llround(static_cast<double>(frames) * kTime100nsPerSecond / (format.sampleRate * rate));
    stretched.clear();
    if (!stretch->Push(bytes.data(), frames, stretched)) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    bytes.swap(stretched);
    return DeliverBytes(nextStart);
}

// Sends what is still inside of the stretching, by way of bytes; the next sound begins anew.
HRESULT AudioSwitcherFilter::DrainStretch() {
    bytes.clear();
    expectedStart.reset();
    const std::unique_ptr<AudioStretch> ended = std::move(stretch);
    return ended && ended->Drain(bytes) ? DeliverBytes(nextStart) : S_OK;
}

// Processes bytes and sends them in samples no larger than a buffer of any allocator.
HRESULT AudioSwitcherFilter::DeliverBytes(std::optional<Time100ns> start) {
    const AudioFormat& format = converter->Output();
    const auto frameBytes = static_cast<std::size_t>(format.BytesPerFrame());
    const auto largest = static_cast<std::size_t>(BufferBytes(format));
    gain.Process(format, bytes.data(), static_cast<int>(bytes.size() / frameBytes));
    // Stretched sound has the length that its time has.
    const double speed = Stretches() ? 1.0 : rate;
    auto timeAt = [&](std::size_t offset) {
        const std::size_t frames = offset / frameBytes;
        return start.value_or(0) +
               std::llround(static_cast<double>(frames) * kTime100nsPerSecond / format.sampleRate / speed);
    };
    for (std::size_t offset = 0; offset < bytes.size();) {
        const std::size_t length = std::min(largest, bytes.size() - offset);
        ComPtr<IMediaSample> sample;
        const HRESULT got = Output().GetBuffer(sample.GetAddressOf(), static_cast<LONG>(length));
        if (FAILED(got)) {
            return IsFlushing() ? S_FALSE : got;
        }
        BYTE* to = nullptr;
        if (FAILED(sample->GetPointer(&to))) {
            return E_FAIL;
        }
        std::memcpy(to, bytes.data() + offset, length);
        REFERENCE_TIME sampleStart = timeAt(offset);
        REFERENCE_TIME sampleStop = timeAt(offset + length);
        sample->SetTime(start ? &sampleStart : nullptr, start ? &sampleStop : nullptr);
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
