#include "app/settings.h"
#include "base/trace.h"
#include "engine/hardware_choice.h"
#include "engine/player_engine.h"
#include "filters/include/lav_audio.h"
#include "filters/include/lav_video.h"

#include <oleauto.h>

#include <algorithm>

namespace brindlecast {

namespace {

// The decoder is handed these numbers as they are.
static_assert(kHardwareNone == kLavHwAccelNone && kHardwareCuda == kLavHwAccelCuda &&
              kHardwareQuickSync == kLavHwAccelQuickSync && kHardwareDxva2 == kLavHwAccelDxva2CopyBack &&
              kHardwareDxva2Native == kLavHwAccelDxva2Native && kHardwareD3D11 == kLavHwAccelD3D11);

constexpr DWORD kMostTracedDevices = 4;

BOOL Flag(std::uint32_t value) {
    return value != 0 ? TRUE : FALSE;
}

// The method that the decoder can really use for the one asked for.
std::uint32_t AvailableMethod(ILAVVideoSettings& decoder, std::uint32_t requested) {
    if (requested == kHardwareNone) {
        return kHardwareNone;
    }
    const auto probe = [&decoder](std::uint32_t method) -> std::uint32_t {
        return decoder.CheckHWAccelSupport(static_cast<int>(method));
    };
    const std::uint32_t status = probe(requested);
    if (status != 0) {
        Trace(L"[Brindlecast] HWAccel %d supported (status=%d)\n", static_cast<int>(requested),
              static_cast<int>(status));
        return requested;
    }
    Trace(L"[Brindlecast] HWAccel %d not supported, trying fallback\n", static_cast<int>(requested));
    return FallbackHardwareMethod(requested, probe);
}

void TraceDevices(ILAVVideoSettings& decoder, std::uint32_t method) {
    const int number = static_cast<int>(method);
    const DWORD count = decoder.GetHWAccelNumDevices(number);
    Trace(L"[Brindlecast] HWAccel=%s, Available devices=%d\n", HardwareMethodName(method),
          static_cast<int>(count));
    for (std::uint8_t index = 0; index < std::min(count, kMostTracedDevices); ++index) {
        BSTR name = nullptr;
        DWORD id = 0;
        if (SUCCEEDED(decoder.GetHWAccelDeviceInfo(number, index, &name, &id))) {
            Trace(L"[Brindlecast]   Device[%d]: %s (ID=0x%X)\n", index, static_cast<const wchar_t*>(name),
                  id);
            SysFreeString(name);
        }
    }
    DWORD id = 0;
    const DWORD current = decoder.GetHWAccelDeviceIndex(number, &id);
    Trace(L"[Brindlecast] Current HWAccel device index=%d (ID=0x%X)\n", static_cast<int>(current), id);
}

void SetHardwareCodecs(ILAVVideoSettings& decoder, SettingsStore& settings) {
    const BOOL h264 = Flag(ReadSetting(settings, settings::kHwAccelH264));
    const BOOL hevc = Flag(ReadSetting(settings, settings::kHwAccelHevc));
    const BOOL vp9 = Flag(ReadSetting(settings, settings::kHwAccelVp9));
    const BOOL av1 = Flag(ReadSetting(settings, settings::kHwAccelAv1));
    decoder.SetHWAccelCodec(kLavHwCodecH264, h264);
    decoder.SetHWAccelCodec(kLavHwCodecHevc, hevc);
    decoder.SetHWAccelCodec(kLavHwCodecVp9, vp9);
    decoder.SetHWAccelCodec(kLavHwCodecAv1, av1);
    Trace(L"[Brindlecast] HW Codec settings - H264=%d, HEVC=%d, VP9=%d, AV1=%d\n", h264, hevc, vp9, av1);
}

} // namespace

// Results of setters are not looked at: a filter that rejects a setting plays with its default.

void PlayerEngine::ConfigureLAVSplitter(IBaseFilter* filter) {
    const auto source = QueryFor<ILAVFSettings>(filter);
    if (source == nullptr) {
        return;
    }
    source->SetRuntimeConfig(TRUE);
    source->SetPreferredLanguages(ReadTextSetting(settings, settings::kPreferredLanguages).c_str());
    if (const auto languages = settings.ReadString(settings::kPreferredSubLanguages.name)) {
        source->SetPreferredSubtitleLanguages(languages->c_str());
    }
    if (const auto mode = ReadPresentSetting(settings, settings::kSubtitleMode)) {
        source->SetSubtitleMode(static_cast<int>(*mode));
    }
    source->SetTrayIcon(Flag(ReadSetting(settings, settings::kTrayIcon)));
}

void PlayerEngine::ConfigureLAVVideo(IBaseFilter* filter) {
    const auto decoder = QueryFor<ILAVVideoSettings>(filter);
    if (decoder == nullptr) {
        return;
    }
    decoder->SetRuntimeConfig(TRUE);
    Trace(L"[Brindlecast] ConfigureLAVVideo: HWAccel=%d\n", static_cast<int>(hwAccel));
    // The engine keeps the method asked for; what came of it shows in the decoder's name alone.
    const std::uint32_t method = AvailableMethod(*decoder.Get(), hwAccel);
    decoder->SetHWAccel(static_cast<int>(method));
    TraceDevices(*decoder.Get(), method);
    SetHardwareCodecs(*decoder.Get(), settings);
    decoder->SetNumThreads(ReadSetting(settings, settings::kNumThreads));
    if (const auto mode = ReadPresentSetting(settings, settings::kDeintMode)) {
        decoder->SetDeinterlacingMode(static_cast<int>(*mode));
    }
    decoder->SetTrayIcon(Flag(ReadSetting(settings, settings::kTrayIcon)));
    for (int format = 0; format < kLavPixelFormatCount; ++format) {
        decoder->SetPixelFormat(format, TRUE);
    }
    decoder->SetHWAccelResolutionFlags(ReadSetting(settings, settings::kHwResFlags));
    for (int codec = 0; codec < kLavVideoCodecCount; ++codec) {
        decoder->SetFormatConfiguration(codec, TRUE);
    }
}

void PlayerEngine::ConfigureLAVAudio(IBaseFilter* filter) {
    const auto decoder = QueryFor<ILAVAudioSettings>(filter);
    if (decoder == nullptr) {
        return;
    }
    decoder->SetRuntimeConfig(TRUE);
    if (const auto mixing = ReadPresentSetting(settings, settings::kAudioMixing)) {
        decoder->SetMixingEnabled(Flag(*mixing));
    }
    if (const auto layout = ReadPresentSetting(settings, settings::kMixingLayout)) {
        decoder->SetMixingLayout(*layout);
    }
    if (const auto compression = ReadPresentSetting(settings, settings::kDrcEnabled)) {
        decoder->SetDRC(Flag(*compression), static_cast<int>(ReadSetting(settings, settings::kDrcLevel)));
    }
    if (const auto expandMono = ReadPresentSetting(settings, settings::kExpandMono)) {
        decoder->SetExpandMono(Flag(*expandMono));
    }
    decoder->SetTrayIcon(Flag(ReadSetting(settings, settings::kTrayIcon)));
}

} // namespace brindlecast
