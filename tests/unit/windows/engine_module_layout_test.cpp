#include "base/text.h"
#include "filters/include/audio_switcher.h"
#include "filters/include/lav_audio.h"
#include "filters/include/lav_splitter.h"
#include "filters/include/lav_video.h"
#include "filters/include/mpc_video_renderer.h"

#include <gtest/gtest.h>

#include <array>
#include <type_traits>
#include <utility>

// Other modules with the same class identifiers, and other hosts of ours, know these interfaces by the number
// of each slot alone. A call through the interface must reach the slot whose number stands here.

namespace brindlecast {
namespace {

constexpr int kSlots = 64;
int calledSlot = -1;

template <int Number>
HRESULT STDMETHODCALLTYPE RecordSlot(void*) {
    calledSlot = Number;
    return S_OK;
}

template <int... Numbers>
constexpr auto MakeTable(std::integer_sequence<int, Numbers...>) {
    return std::array{&RecordSlot<Numbers>...};
}

// Looks like any interface from outside: a pointer to a table of functions.
struct RecordingObject {
    const void* table;
};

template <class Argument>
Argument MakeArgument() {
    using Value = std::remove_reference_t<Argument>;
    if constexpr (std::is_lvalue_reference_v<Argument>) {
        static Value value{};
        return value;
    } else {
        return Value{};
    }
}

template <class Interface, class Result, class... Arguments>
void ExpectSlot(int number, Result (STDMETHODCALLTYPE Interface::*method)(Arguments...)) {
    static const auto table = MakeTable(std::make_integer_sequence<int, kSlots>());
    RecordingObject object{table.data()};
    calledSlot = -1;
    (reinterpret_cast<Interface*>(&object)->*method)(MakeArgument<Arguments>()...);
    EXPECT_EQ(number, calledSlot);
}

template <class Interface>
void ExpectIdentifier(const GUID& expected) {
    EXPECT_TRUE(IsEqualGUID(expected, __uuidof(Interface)));
}

TEST(ModuleLayout, ILAVVideoSettings) {
    ExpectIdentifier<ILAVVideoSettings>(
        {0xFA40D6E9, 0x4D38, 0x4761, {0xAD, 0xD2, 0x71, 0xA9, 0xEC, 0x5F, 0xD3, 0x2F}});
    ExpectSlot<ILAVVideoSettings, HRESULT, BOOL>(3, &ILAVVideoSettings::SetRuntimeConfig);
    ExpectSlot<ILAVVideoSettings, BOOL, int>(4, &ILAVVideoSettings::GetFormatConfiguration);
    ExpectSlot<ILAVVideoSettings, HRESULT, int, BOOL>(5, &ILAVVideoSettings::SetFormatConfiguration);
    ExpectSlot<ILAVVideoSettings, HRESULT, DWORD>(6, &ILAVVideoSettings::SetNumThreads);
    ExpectSlot<ILAVVideoSettings, DWORD>(7, &ILAVVideoSettings::GetNumThreads);
    ExpectSlot<ILAVVideoSettings, HRESULT, DWORD>(8, &ILAVVideoSettings::SetStreamAR);
    ExpectSlot<ILAVVideoSettings, DWORD>(9, &ILAVVideoSettings::GetStreamAR);
    ExpectSlot<ILAVVideoSettings, BOOL, int>(10, &ILAVVideoSettings::GetPixelFormat);
    ExpectSlot<ILAVVideoSettings, HRESULT, int, BOOL>(11, &ILAVVideoSettings::SetPixelFormat);
    ExpectSlot<ILAVVideoSettings, HRESULT, DWORD>(12, &ILAVVideoSettings::SetRGBOutputRange);
    ExpectSlot<ILAVVideoSettings, DWORD>(13, &ILAVVideoSettings::GetRGBOutputRange);
    ExpectSlot<ILAVVideoSettings, HRESULT, int>(14, &ILAVVideoSettings::SetDeintFieldOrder);
    ExpectSlot<ILAVVideoSettings, int>(15, &ILAVVideoSettings::GetDeintFieldOrder);
    ExpectSlot<ILAVVideoSettings, HRESULT, BOOL>(16, &ILAVVideoSettings::SetDeintAggressive);
    ExpectSlot<ILAVVideoSettings, BOOL>(17, &ILAVVideoSettings::GetDeintAggressive);
    ExpectSlot<ILAVVideoSettings, HRESULT, BOOL>(18, &ILAVVideoSettings::SetDeintForce);
    ExpectSlot<ILAVVideoSettings, BOOL>(19, &ILAVVideoSettings::GetDeintForce);
    ExpectSlot<ILAVVideoSettings, DWORD, int>(20, &ILAVVideoSettings::CheckHWAccelSupport);
    ExpectSlot<ILAVVideoSettings, HRESULT, int>(21, &ILAVVideoSettings::SetHWAccel);
    ExpectSlot<ILAVVideoSettings, int>(22, &ILAVVideoSettings::GetHWAccel);
    ExpectSlot<ILAVVideoSettings, HRESULT, int, BOOL>(23, &ILAVVideoSettings::SetHWAccelCodec);
    ExpectSlot<ILAVVideoSettings, BOOL, int>(24, &ILAVVideoSettings::GetHWAccelCodec);
    ExpectSlot<ILAVVideoSettings, HRESULT, int>(25, &ILAVVideoSettings::SetHWAccelDeintMode);
    ExpectSlot<ILAVVideoSettings, int>(26, &ILAVVideoSettings::GetHWAccelDeintMode);
    ExpectSlot<ILAVVideoSettings, HRESULT, int>(27, &ILAVVideoSettings::SetHWAccelDeintOutput);
    ExpectSlot<ILAVVideoSettings, int>(28, &ILAVVideoSettings::GetHWAccelDeintOutput);
    ExpectSlot<ILAVVideoSettings, HRESULT, BOOL>(29, &ILAVVideoSettings::SetHWAccelDeintHQ);
    ExpectSlot<ILAVVideoSettings, BOOL>(30, &ILAVVideoSettings::GetHWAccelDeintHQ);
    ExpectSlot<ILAVVideoSettings, HRESULT, int>(31, &ILAVVideoSettings::SetSWDeintMode);
    ExpectSlot<ILAVVideoSettings, int>(32, &ILAVVideoSettings::GetSWDeintMode);
    ExpectSlot<ILAVVideoSettings, HRESULT, int>(33, &ILAVVideoSettings::SetSWDeintOutput);
    ExpectSlot<ILAVVideoSettings, int>(34, &ILAVVideoSettings::GetSWDeintOutput);
    ExpectSlot<ILAVVideoSettings, HRESULT, BOOL>(35, &ILAVVideoSettings::SetDeintTreatAsProgressive);
    ExpectSlot<ILAVVideoSettings, BOOL>(36, &ILAVVideoSettings::GetDeintTreatAsProgressive);
    ExpectSlot<ILAVVideoSettings, HRESULT, int>(37, &ILAVVideoSettings::SetDitherMode);
    ExpectSlot<ILAVVideoSettings, int>(38, &ILAVVideoSettings::GetDitherMode);
    ExpectSlot<ILAVVideoSettings, HRESULT, BOOL>(39, &ILAVVideoSettings::SetUseMSWMV9Decoder);
    ExpectSlot<ILAVVideoSettings, BOOL>(40, &ILAVVideoSettings::GetUseMSWMV9Decoder);
    ExpectSlot<ILAVVideoSettings, HRESULT, BOOL>(41, &ILAVVideoSettings::SetDVDVideoSupport);
    ExpectSlot<ILAVVideoSettings, BOOL>(42, &ILAVVideoSettings::GetDVDVideoSupport);
    ExpectSlot<ILAVVideoSettings, HRESULT, DWORD>(43, &ILAVVideoSettings::SetHWAccelResolutionFlags);
    ExpectSlot<ILAVVideoSettings, DWORD>(44, &ILAVVideoSettings::GetHWAccelResolutionFlags);
    ExpectSlot<ILAVVideoSettings, HRESULT, BOOL>(45, &ILAVVideoSettings::SetTrayIcon);
    ExpectSlot<ILAVVideoSettings, BOOL>(46, &ILAVVideoSettings::GetTrayIcon);
    ExpectSlot<ILAVVideoSettings, HRESULT, int>(47, &ILAVVideoSettings::SetDeinterlacingMode);
    ExpectSlot<ILAVVideoSettings, int>(48, &ILAVVideoSettings::GetDeinterlacingMode);
    ExpectSlot<ILAVVideoSettings, HRESULT, DWORD>(49, &ILAVVideoSettings::SetGPUDeviceIndex);
    ExpectSlot<ILAVVideoSettings, DWORD, int>(50, &ILAVVideoSettings::GetHWAccelNumDevices);
    ExpectSlot<ILAVVideoSettings, HRESULT, int, DWORD, BSTR*, DWORD*>(
        51, &ILAVVideoSettings::GetHWAccelDeviceInfo);
    ExpectSlot<ILAVVideoSettings, DWORD, int, DWORD*>(52, &ILAVVideoSettings::GetHWAccelDeviceIndex);
    ExpectSlot<ILAVVideoSettings, HRESULT, int, DWORD, DWORD>(53, &ILAVVideoSettings::SetHWAccelDeviceIndex);
    ExpectSlot<ILAVVideoSettings, HRESULT, BOOL>(54, &ILAVVideoSettings::SetH264MVCDecodingOverride);
    ExpectSlot<ILAVVideoSettings, HRESULT, BOOL>(55, &ILAVVideoSettings::SetEnableCCOutputPin);
}

TEST(ModuleLayout, ILAVVideoStatus) {
    ExpectIdentifier<ILAVVideoStatus>(
        {0x1CC2385F, 0x36FA, 0x41B1, {0x99, 0x42, 0x50, 0x24, 0xCE, 0x02, 0x35, 0xDC}});
    ExpectSlot<ILAVVideoStatus, LPCWSTR>(3, &ILAVVideoStatus::GetActiveDecoderName);
    ExpectSlot<ILAVVideoStatus, HRESULT, BSTR*>(4, &ILAVVideoStatus::GetHWAccelActiveDevice);
}

TEST(ModuleLayout, ILAVAudioSettings) {
    ExpectIdentifier<ILAVAudioSettings>(
        {0x4158A22B, 0x6553, 0x45D0, {0x80, 0x69, 0x24, 0x71, 0x6F, 0x8F, 0xF1, 0x71}});
    ExpectSlot<ILAVAudioSettings, HRESULT, BOOL>(3, &ILAVAudioSettings::SetRuntimeConfig);
    ExpectSlot<ILAVAudioSettings, HRESULT, BOOL*, int*>(4, &ILAVAudioSettings::GetDRC);
    ExpectSlot<ILAVAudioSettings, HRESULT, BOOL, int>(5, &ILAVAudioSettings::SetDRC);
    ExpectSlot<ILAVAudioSettings, BOOL, int>(6, &ILAVAudioSettings::GetFormatConfiguration);
    ExpectSlot<ILAVAudioSettings, HRESULT, int, BOOL>(7, &ILAVAudioSettings::SetFormatConfiguration);
    ExpectSlot<ILAVAudioSettings, BOOL, int>(8, &ILAVAudioSettings::GetBitstreamConfig);
    ExpectSlot<ILAVAudioSettings, HRESULT, int, BOOL>(9, &ILAVAudioSettings::SetBitstreamConfig);
    ExpectSlot<ILAVAudioSettings, BOOL>(10, &ILAVAudioSettings::GetDTSHDFraming);
    ExpectSlot<ILAVAudioSettings, HRESULT, BOOL>(11, &ILAVAudioSettings::SetDTSHDFraming);
    ExpectSlot<ILAVAudioSettings, BOOL>(12, &ILAVAudioSettings::GetAutoAVSync);
    ExpectSlot<ILAVAudioSettings, HRESULT, BOOL>(13, &ILAVAudioSettings::SetAutoAVSync);
    ExpectSlot<ILAVAudioSettings, BOOL>(14, &ILAVAudioSettings::GetOutputStandardLayout);
    ExpectSlot<ILAVAudioSettings, HRESULT, BOOL>(15, &ILAVAudioSettings::SetOutputStandardLayout);
    ExpectSlot<ILAVAudioSettings, BOOL>(16, &ILAVAudioSettings::GetExpandMono);
    ExpectSlot<ILAVAudioSettings, HRESULT, BOOL>(17, &ILAVAudioSettings::SetExpandMono);
    ExpectSlot<ILAVAudioSettings, BOOL>(18, &ILAVAudioSettings::GetExpand61);
    ExpectSlot<ILAVAudioSettings, HRESULT, BOOL>(19, &ILAVAudioSettings::SetExpand61);
    ExpectSlot<ILAVAudioSettings, BOOL>(20, &ILAVAudioSettings::GetAllowRawSPDIFInput);
    ExpectSlot<ILAVAudioSettings, HRESULT, BOOL>(21, &ILAVAudioSettings::SetAllowRawSPDIFInput);
    ExpectSlot<ILAVAudioSettings, BOOL, int>(22, &ILAVAudioSettings::GetSampleFormat);
    ExpectSlot<ILAVAudioSettings, HRESULT, int, BOOL>(23, &ILAVAudioSettings::SetSampleFormat);
    ExpectSlot<ILAVAudioSettings, HRESULT, BOOL*, int*>(24, &ILAVAudioSettings::GetAudioDelay);
    ExpectSlot<ILAVAudioSettings, HRESULT, BOOL, int>(25, &ILAVAudioSettings::SetAudioDelay);
    ExpectSlot<ILAVAudioSettings, HRESULT, BOOL>(26, &ILAVAudioSettings::SetMixingEnabled);
    ExpectSlot<ILAVAudioSettings, BOOL>(27, &ILAVAudioSettings::GetMixingEnabled);
    ExpectSlot<ILAVAudioSettings, HRESULT, DWORD>(28, &ILAVAudioSettings::SetMixingLayout);
    ExpectSlot<ILAVAudioSettings, DWORD>(29, &ILAVAudioSettings::GetMixingLayout);
    ExpectSlot<ILAVAudioSettings, HRESULT, DWORD>(30, &ILAVAudioSettings::SetMixingFlags);
    ExpectSlot<ILAVAudioSettings, DWORD>(31, &ILAVAudioSettings::GetMixingFlags);
    ExpectSlot<ILAVAudioSettings, HRESULT, int>(32, &ILAVAudioSettings::SetMixingMode);
    ExpectSlot<ILAVAudioSettings, int>(33, &ILAVAudioSettings::GetMixingMode);
    ExpectSlot<ILAVAudioSettings, HRESULT, DWORD, DWORD, DWORD>(34, &ILAVAudioSettings::SetMixingLevels);
    ExpectSlot<ILAVAudioSettings, HRESULT, DWORD*, DWORD*, DWORD*>(35, &ILAVAudioSettings::GetMixingLevels);
    ExpectSlot<ILAVAudioSettings, HRESULT, BOOL>(36, &ILAVAudioSettings::SetTrayIcon);
    ExpectSlot<ILAVAudioSettings, BOOL>(37, &ILAVAudioSettings::GetTrayIcon);
    ExpectSlot<ILAVAudioSettings, HRESULT, BOOL>(38, &ILAVAudioSettings::SetSampleConvertDithering);
    ExpectSlot<ILAVAudioSettings, BOOL>(39, &ILAVAudioSettings::GetSampleConvertDithering);
    ExpectSlot<ILAVAudioSettings, HRESULT, BOOL>(40, &ILAVAudioSettings::SetSuppressFormatChanges);
    ExpectSlot<ILAVAudioSettings, BOOL>(41, &ILAVAudioSettings::GetSuppressFormatChanges);
    ExpectSlot<ILAVAudioSettings, BOOL>(42, &ILAVAudioSettings::GetOutput51LegacyLayout);
    ExpectSlot<ILAVAudioSettings, HRESULT, BOOL>(43, &ILAVAudioSettings::SetOutput51LegacyLayout);
    ExpectSlot<ILAVAudioSettings, BOOL>(44, &ILAVAudioSettings::GetBitstreamingFallback);
    ExpectSlot<ILAVAudioSettings, HRESULT, BOOL>(45, &ILAVAudioSettings::SetBitstreamingFallback);
}

TEST(ModuleLayout, ILAVAudioStatus) {
    ExpectIdentifier<ILAVAudioStatus>(
        {0xA668B8F2, 0xBA87, 0x4F63, {0x9D, 0x41, 0x76, 0x8F, 0x7D, 0xE9, 0xC5, 0x0E}});
    ExpectSlot<ILAVAudioStatus, BOOL, int>(3, &ILAVAudioStatus::IsSampleFormatSupported);
    ExpectSlot<ILAVAudioStatus, HRESULT, LPCSTR*, LPCSTR*, int*, int*, DWORD*>(
        4, &ILAVAudioStatus::GetDecodeDetails);
    ExpectSlot<ILAVAudioStatus, HRESULT, LPCSTR*, int*, int*, DWORD*>(5, &ILAVAudioStatus::GetOutputDetails);
    ExpectSlot<ILAVAudioStatus, HRESULT>(6, &ILAVAudioStatus::EnableVolumeStats);
    ExpectSlot<ILAVAudioStatus, HRESULT>(7, &ILAVAudioStatus::DisableVolumeStats);
    ExpectSlot<ILAVAudioStatus, HRESULT, WORD, float*>(8, &ILAVAudioStatus::GetChannelVolumeAverage);
}

TEST(ModuleLayout, ILAVFSettings) {
    ExpectIdentifier<ILAVFSettings>(
        {0x774A919D, 0xEA95, 0x4A87, {0x8A, 0x1E, 0xF4, 0x8A, 0xBE, 0x84, 0x99, 0xC7}});
    ExpectSlot<ILAVFSettings, HRESULT, BOOL>(3, &ILAVFSettings::SetRuntimeConfig);
    ExpectSlot<ILAVFSettings, HRESULT, LPWSTR*>(4, &ILAVFSettings::GetPreferredLanguages);
    ExpectSlot<ILAVFSettings, HRESULT, LPCWSTR>(5, &ILAVFSettings::SetPreferredLanguages);
    ExpectSlot<ILAVFSettings, HRESULT, LPWSTR*>(6, &ILAVFSettings::GetPreferredSubtitleLanguages);
    ExpectSlot<ILAVFSettings, HRESULT, LPCWSTR>(7, &ILAVFSettings::SetPreferredSubtitleLanguages);
    ExpectSlot<ILAVFSettings, int>(8, &ILAVFSettings::GetSubtitleMode);
    ExpectSlot<ILAVFSettings, HRESULT, int>(9, &ILAVFSettings::SetSubtitleMode);
    ExpectSlot<ILAVFSettings, BOOL>(10, &ILAVFSettings::GetSubtitleMatchingLanguage);
    ExpectSlot<ILAVFSettings, HRESULT, BOOL>(11, &ILAVFSettings::SetSubtitleMatchingLanguage);
    ExpectSlot<ILAVFSettings, BOOL>(12, &ILAVFSettings::GetPGSForcedStream);
    ExpectSlot<ILAVFSettings, HRESULT, BOOL>(13, &ILAVFSettings::SetPGSForcedStream);
    ExpectSlot<ILAVFSettings, BOOL>(14, &ILAVFSettings::GetPGSOnlyForced);
    ExpectSlot<ILAVFSettings, HRESULT, BOOL>(15, &ILAVFSettings::SetPGSOnlyForced);
    ExpectSlot<ILAVFSettings, int>(16, &ILAVFSettings::GetVC1TimestampMode);
    ExpectSlot<ILAVFSettings, HRESULT, int>(17, &ILAVFSettings::SetVC1TimestampMode);
    ExpectSlot<ILAVFSettings, HRESULT, BOOL>(18, &ILAVFSettings::SetSubstreamsEnabled);
    ExpectSlot<ILAVFSettings, BOOL>(19, &ILAVFSettings::GetSubstreamsEnabled);
    ExpectSlot<ILAVFSettings, HRESULT, BOOL>(20, &ILAVFSettings::SetVideoParsingEnabled);
    ExpectSlot<ILAVFSettings, BOOL>(21, &ILAVFSettings::GetVideoParsingEnabled);
    ExpectSlot<ILAVFSettings, HRESULT, BOOL>(22, &ILAVFSettings::SetFixBrokenHDPVR);
    ExpectSlot<ILAVFSettings, BOOL>(23, &ILAVFSettings::GetFixBrokenHDPVR);
    ExpectSlot<ILAVFSettings, HRESULT, LPCSTR, BOOL>(24, &ILAVFSettings::SetFormatEnabled);
    ExpectSlot<ILAVFSettings, BOOL, LPCSTR>(25, &ILAVFSettings::IsFormatEnabled);
    ExpectSlot<ILAVFSettings, HRESULT, BOOL>(26, &ILAVFSettings::SetStreamSwitchRemoveAudio);
    ExpectSlot<ILAVFSettings, BOOL>(27, &ILAVFSettings::GetStreamSwitchRemoveAudio);
    ExpectSlot<ILAVFSettings, HRESULT, LPWSTR*>(28, &ILAVFSettings::GetAdvancedSubtitleConfig);
    ExpectSlot<ILAVFSettings, HRESULT, LPCWSTR>(29, &ILAVFSettings::SetAdvancedSubtitleConfig);
    ExpectSlot<ILAVFSettings, HRESULT, BOOL>(30, &ILAVFSettings::SetUseAudioForHearingVisuallyImpaired);
    ExpectSlot<ILAVFSettings, BOOL>(31, &ILAVFSettings::GetUseAudioForHearingVisuallyImpaired);
    ExpectSlot<ILAVFSettings, HRESULT, DWORD>(32, &ILAVFSettings::SetMaxQueueMemSize);
    ExpectSlot<ILAVFSettings, DWORD>(33, &ILAVFSettings::GetMaxQueueMemSize);
    ExpectSlot<ILAVFSettings, HRESULT, BOOL>(34, &ILAVFSettings::SetTrayIcon);
    ExpectSlot<ILAVFSettings, BOOL>(35, &ILAVFSettings::GetTrayIcon);
    ExpectSlot<ILAVFSettings, HRESULT, BOOL>(36, &ILAVFSettings::SetPreferHighQualityAudioStreams);
    ExpectSlot<ILAVFSettings, BOOL>(37, &ILAVFSettings::GetPreferHighQualityAudioStreams);
    ExpectSlot<ILAVFSettings, HRESULT, BOOL>(38, &ILAVFSettings::SetLoadMatroskaExternalSegments);
    ExpectSlot<ILAVFSettings, BOOL>(39, &ILAVFSettings::GetLoadMatroskaExternalSegments);
    ExpectSlot<ILAVFSettings, HRESULT, LPSTR**, UINT*>(40, &ILAVFSettings::GetFormats);
    ExpectSlot<ILAVFSettings, HRESULT, DWORD>(41, &ILAVFSettings::SetNetworkStreamAnalysisDuration);
    ExpectSlot<ILAVFSettings, DWORD>(42, &ILAVFSettings::GetNetworkStreamAnalysisDuration);
    ExpectSlot<ILAVFSettings, HRESULT, DWORD>(43, &ILAVFSettings::SetMaxQueueSize);
    ExpectSlot<ILAVFSettings, DWORD>(44, &ILAVFSettings::GetMaxQueueSize);
    ExpectSlot<ILAVFSettings, HRESULT, BOOL>(45, &ILAVFSettings::SetStreamSwitchReselectSubtitles);
    ExpectSlot<ILAVFSettings, BOOL>(46, &ILAVFSettings::GetStreamSwitchReselectSubtitles);
}

TEST(ModuleLayout, IKeyFrameInfo) {
    ExpectIdentifier<IKeyFrameInfo>(
        {0x01A5BBD3, 0xFE71, 0x487C, {0xA2, 0xEC, 0xF5, 0x85, 0x91, 0x8A, 0x87, 0x24}});
    ExpectSlot<IKeyFrameInfo, HRESULT, UINT&>(3, &IKeyFrameInfo::GetKeyFrameCount);
    ExpectSlot<IKeyFrameInfo, HRESULT, const GUID*, REFERENCE_TIME*, UINT&>(4, &IKeyFrameInfo::GetKeyFrames);
}

TEST(ModuleLayout, IExFilterConfig) {
    ExpectIdentifier<IExFilterConfig>(
        {0x37CBDF10, 0xD65E, 0x4E5A, {0x8F, 0x37, 0x40, 0xE0, 0xC8, 0xEA, 0x16, 0x95}});
    ExpectSlot<IExFilterConfig, HRESULT, LPCSTR, bool*>(3, &IExFilterConfig::Flt_GetBool);
    ExpectSlot<IExFilterConfig, HRESULT, LPCSTR, int*>(4, &IExFilterConfig::Flt_GetInt);
    ExpectSlot<IExFilterConfig, HRESULT, LPCSTR, __int64*>(5, &IExFilterConfig::Flt_GetInt64);
    ExpectSlot<IExFilterConfig, HRESULT, LPCSTR, double*>(6, &IExFilterConfig::Flt_GetDouble);
    ExpectSlot<IExFilterConfig, HRESULT, LPCSTR, LPWSTR*, unsigned*>(7, &IExFilterConfig::Flt_GetString);
    ExpectSlot<IExFilterConfig, HRESULT, LPCSTR, LPVOID*, unsigned*>(8, &IExFilterConfig::Flt_GetBin);
    ExpectSlot<IExFilterConfig, HRESULT, LPCSTR, bool>(9, &IExFilterConfig::Flt_SetBool);
    ExpectSlot<IExFilterConfig, HRESULT, LPCSTR, int>(10, &IExFilterConfig::Flt_SetInt);
    ExpectSlot<IExFilterConfig, HRESULT, LPCSTR, __int64>(11, &IExFilterConfig::Flt_SetInt64);
    ExpectSlot<IExFilterConfig, HRESULT, LPCSTR, double>(12, &IExFilterConfig::Flt_SetDouble);
    ExpectSlot<IExFilterConfig, HRESULT, LPCSTR, LPWSTR, int>(13, &IExFilterConfig::Flt_SetString);
    ExpectSlot<IExFilterConfig, HRESULT, LPCSTR, LPVOID, int>(14, &IExFilterConfig::Flt_SetBin);
}

TEST(ModuleLayout, ISubRender11) {
    ExpectIdentifier<ISubRender11>(
        {0x524FA4AC, 0x35CF, 0x402B, {0x90, 0x15, 0x30, 0x0F, 0xBC, 0x43, 0x25, 0x63}});
    ExpectSlot<ISubRender11, HRESULT, ISubRender11Callback*>(3, &ISubRender11::SetCallback11);
}

TEST(ModuleLayout, ISubRender11Callback) {
    ExpectIdentifier<ISubRender11Callback>(
        {0x1B430F17, 0x4CB2, 0x4C6B, {0xA8, 0x50, 0x18, 0x47, 0xF9, 0x67, 0x7C, 0x75}});
    ExpectSlot<ISubRender11Callback, HRESULT, ID3D11Device*>(3, &ISubRender11Callback::SetDevice11);
    ExpectSlot<ISubRender11Callback, HRESULT, REFERENCE_TIME, REFERENCE_TIME, REFERENCE_TIME, RECT, RECT,
               RECT, double, int, DWORD>(4, &ISubRender11Callback::Render11);
}

TEST(ModuleLayout, IAudioSwitcherFilter) {
    ExpectIdentifier<IAudioSwitcherFilter>(
        {0xCEDB2890, 0x53AE, 0x4231, {0x91, 0xA3, 0xB0, 0xAA, 0xFC, 0xD1, 0xDB, 0xDE}});
    ExpectSlot<IAudioSwitcherFilter, HRESULT, DWORD*>(3, &IAudioSwitcherFilter::GetInputSpeakerConfig);
    ExpectSlot<IAudioSwitcherFilter, HRESULT, bool*, DWORD(*)[18]>(4,
                                                                   &IAudioSwitcherFilter::GetSpeakerConfig);
    ExpectSlot<IAudioSwitcherFilter, HRESULT, bool, DWORD(*)[18]>(5, &IAudioSwitcherFilter::SetSpeakerConfig);
    ExpectSlot<IAudioSwitcherFilter, int>(6, &IAudioSwitcherFilter::GetNumberOfInputChannels);
    ExpectSlot<IAudioSwitcherFilter, bool>(7, &IAudioSwitcherFilter::IsDownSamplingTo441Enabled);
    ExpectSlot<IAudioSwitcherFilter, HRESULT, bool>(8, &IAudioSwitcherFilter::EnableDownSamplingTo441);
    ExpectSlot<IAudioSwitcherFilter, REFERENCE_TIME>(9, &IAudioSwitcherFilter::GetAudioTimeShift);
    ExpectSlot<IAudioSwitcherFilter, HRESULT, REFERENCE_TIME>(10, &IAudioSwitcherFilter::SetAudioTimeShift);
    ExpectSlot<IAudioSwitcherFilter, HRESULT, bool&, bool&, float&>(11,
                                                                    &IAudioSwitcherFilter::GetNormalizeBoost);
    ExpectSlot<IAudioSwitcherFilter, HRESULT, bool, bool, float>(12,
                                                                 &IAudioSwitcherFilter::SetNormalizeBoost);
    ExpectSlot<IAudioSwitcherFilter, HRESULT, bool&, UINT&, bool&, UINT&>(
        13, &IAudioSwitcherFilter::GetNormalizeBoost2);
    ExpectSlot<IAudioSwitcherFilter, HRESULT, bool, UINT, bool, UINT>(
        14, &IAudioSwitcherFilter::SetNormalizeBoost2);
}
TEST(ModuleLayout, ClassIdentifiers) {
    const auto expectText = [](const wchar_t* text, const GUID& id) {
        EXPECT_EQ(text, FormatText(L"{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", id.Data1, id.Data2,
                                   id.Data3, id.Data4[0], id.Data4[1], id.Data4[2], id.Data4[3], id.Data4[4],
                                   id.Data4[5], id.Data4[6], id.Data4[7]));
    };
    expectText(L"{71F080AA-8661-4093-B15E-4F6903E77D0A}", kClsidMpcVideoRenderer);
    expectText(L"{B98D13E7-55DB-4385-A33D-09FD1BA26338}", kClsidLavSplitterSource);
    expectText(L"{EE30215D-164F-4A92-A4EB-9D4C13390F9F}", kClsidLavVideo);
    expectText(L"{E8E73B6B-4CB3-44A4-BE99-4F7BCB96E491}", kClsidLavAudio);
    expectText(L"{18C16B08-6497-420E-AD14-22D21C2CEAB7}", kClsidAudioSwitcher);
}

} // namespace
} // namespace brindlecast
