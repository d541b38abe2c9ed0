#include "filters/audio_decoder/audio_settings.h"

#include <algorithm>
#include <bit>

namespace brindlecast {
namespace {

constexpr int kMaxCompressionLevel = 100;
constexpr int kCodecCount = 64;
constexpr std::uint32_t kStereo = 0x3;
constexpr std::uint32_t kSevenOne = 0x63F;
constexpr std::uint32_t kBackCenter = 0x100;
constexpr DWORD kPlatformSpeakers = 0x3FFFF;

// For what the decoder does not do: leaving it off is fine, turning it on is not possible.
HRESULT OnlyOff(BOOL enabled) {
    return enabled ? E_NOTIMPL : S_OK;
}
// The other way round.
HRESULT OnlyOn(BOOL enabled) {
    return enabled ? S_OK : E_NOTIMPL;
}

} // namespace

LavSampleFormat LavSampleFormatOf(SampleKind kind) {
    switch (kind) {
    case SampleKind::kUnsigned8: return kLavSampleFormatU8;
    case SampleKind::kSigned16: return kLavSampleFormat16;
    case SampleKind::kSigned24: return kLavSampleFormat24;
    case SampleKind::kSigned32: return kLavSampleFormat32;
    case SampleKind::kFloat32: break;
    }
    return kLavSampleFormatFloat32;
}

bool IsOutputFormat(int format) {
    return format == kLavSampleFormat16 || format == kLavSampleFormat24 || format == kLavSampleFormat32 ||
           format == kLavSampleFormatFloat32;
}

AudioSettings::AudioSettings() {
    for (std::size_t format = 0; format < kSampleFormats; ++format) {
        sampleFormats[format] = IsOutputFormat(static_cast<int>(format));
    }
}

double AudioSettings::Compression() const {
    const std::lock_guard lock(compressionLock);
    return compressionEnabled ? compressionLevel / static_cast<double>(kMaxCompressionLevel) : 0.0;
}

bool AudioSettings::IsEnabled(SampleKind kind) const {
    return sampleFormats[static_cast<std::size_t>(LavSampleFormatOf(kind))];
}

AudioFormat AudioSettings::WithOutputChannels(AudioFormat source) const {
    const auto mixed = static_cast<std::uint32_t>(mixingLayout.load());
    if (mixing) {
        source.channelMask = mixed;
    } else if (expandMono && source.channels == 1) {
        source.channelMask = kStereo;
    } else if (expand61 && source.channels == 7 && (source.channelMask & kBackCenter) != 0) {
        source.channelMask = kSevenOne;
    } else {
        return source;
    }
    source.channels = std::popcount(source.channelMask);
    return source;
}

// There are no stored settings: what this interface sets is all there is.
STDMETHODIMP AudioSettings::SetRuntimeConfig(BOOL runtime) {
    return OnlyOn(runtime);
}

STDMETHODIMP AudioSettings::GetDRC(BOOL* enabled, int* level) {
    const std::lock_guard lock(compressionLock);
    if (enabled) {
        *enabled = compressionEnabled;
    }
    if (level) {
        *level = compressionLevel;
    }
    return S_OK;
}

STDMETHODIMP AudioSettings::SetDRC(BOOL enabled, int level) {
    const std::lock_guard lock(compressionLock);
    compressionEnabled = enabled != FALSE;
    compressionLevel = std::clamp(level, 0, kMaxCompressionLevel);
    return S_OK;
}

STDMETHODIMP_(BOOL) AudioSettings::GetFormatConfiguration(int codec) {
    return codec >= 0 && codec < kCodecCount;
}

STDMETHODIMP AudioSettings::SetFormatConfiguration(int codec, BOOL enabled) {
    return codec >= 0 && codec < kCodecCount ? OnlyOn(enabled) : E_INVALIDARG;
}

STDMETHODIMP_(BOOL) AudioSettings::GetBitstreamConfig(int) {
    return FALSE;
}
STDMETHODIMP AudioSettings::SetBitstreamConfig(int, BOOL enabled) {
    return OnlyOff(enabled);
}
STDMETHODIMP AudioSettings::SetDTSHDFraming(BOOL enabled) {
    return OnlyOff(enabled);
}
STDMETHODIMP AudioSettings::SetAutoAVSync(BOOL enabled) {
    return OnlyOn(enabled);
}
STDMETHODIMP AudioSettings::SetOutputStandardLayout(BOOL enabled) {
    return OnlyOn(enabled);
}

STDMETHODIMP AudioSettings::SetExpandMono(BOOL enabled) {
    expandMono = enabled != FALSE;
    return S_OK;
}

STDMETHODIMP AudioSettings::SetExpand61(BOOL enabled) {
    expand61 = enabled != FALSE;
    return S_OK;
}

STDMETHODIMP AudioSettings::SetAllowRawSPDIFInput(BOOL enabled) {
    return OnlyOff(enabled);
}

STDMETHODIMP_(BOOL) AudioSettings::GetSampleFormat(int format) {
    return format >= 0 && format < static_cast<int>(kSampleFormats) &&
           sampleFormats[static_cast<std::size_t>(format)];
}

STDMETHODIMP AudioSettings::SetSampleFormat(int format, BOOL enabled) {
    if (format < 0 || format >= static_cast<int>(kSampleFormats)) {
        return E_INVALIDARG;
    }
    if (!IsOutputFormat(format)) {
        return OnlyOff(enabled);
    }
    sampleFormats[static_cast<std::size_t>(format)] = enabled != FALSE;
    return S_OK;
}

STDMETHODIMP AudioSettings::GetAudioDelay(BOOL* enabled, int* milliseconds) {
    if (enabled) {
        *enabled = FALSE;
    }
    if (milliseconds) {
        *milliseconds = 0;
    }
    return S_OK;
}

STDMETHODIMP AudioSettings::SetAudioDelay(BOOL enabled, int) {
    return OnlyOff(enabled);
}

STDMETHODIMP AudioSettings::SetMixingEnabled(BOOL enabled) {
    mixing = enabled != FALSE;
    return S_OK;
}

STDMETHODIMP AudioSettings::SetMixingLayout(DWORD channelMask) {
    const int channels = std::popcount(channelMask);
    if (channels < 1 || channels > kMaxAudioChannels || (channelMask & ~kPlatformSpeakers) != 0) {
        return E_INVALIDARG;
    }
    mixingLayout = channelMask;
    return S_OK;
}

STDMETHODIMP AudioSettings::SetMixingFlags(DWORD) {
    return E_NOTIMPL;
}
STDMETHODIMP AudioSettings::SetMixingMode(int) {
    return E_NOTIMPL;
}
STDMETHODIMP AudioSettings::SetMixingLevels(DWORD, DWORD, DWORD) {
    return E_NOTIMPL;
}
STDMETHODIMP AudioSettings::GetMixingLevels(DWORD*, DWORD*, DWORD*) {
    return E_NOTIMPL;
}
STDMETHODIMP AudioSettings::SetTrayIcon(BOOL enabled) {
    return OnlyOff(enabled);
}
STDMETHODIMP AudioSettings::SetSampleConvertDithering(BOOL enabled) {
    return OnlyOff(enabled);
}
// The output keeps the format of its connection whatever comes in.
STDMETHODIMP AudioSettings::SetSuppressFormatChanges(BOOL enabled) {
    return OnlyOn(enabled);
}
STDMETHODIMP AudioSettings::SetOutput51LegacyLayout(BOOL enabled) {
    return OnlyOff(enabled);
}
STDMETHODIMP AudioSettings::SetBitstreamingFallback(BOOL enabled) {
    return OnlyOn(enabled);
}

} // namespace brindlecast
