#pragma once

#include "base/settings_store.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace brindlecast {

inline constexpr const wchar_t* kDefaultWelcomeMessage = L"브린들캐스트 - 동영상 플레이어";

// Window placement and two options, for the whole process. Loaded once before the main window exists and
// saved when it goes. Main thread only.
struct AppSettings {
    bool rememberWindowPos = true;
    // The normal window rectangle in screen pixels; -1 where none was stored.
    std::int32_t windowX = -1;
    std::int32_t windowY = -1;
    std::int32_t windowW = -1;
    std::int32_t windowH = -1;
    bool windowMaximized = false;
    bool seekbarThumbnailPreview = false;
    // Carried from load to save and never shown.
    std::wstring welcomeMsg = kDefaultWelcomeMessage;
};

// The one record of the process.
[[nodiscard]] AppSettings& CurrentSettings();

// What is absent or unusable in the store leaves its field alone. With RememberWindowPos at 0 the placement
// is not read.
void LoadSettings(AppSettings& settings, SettingsStore& store);
// Writes every field; without rememberWindowPos the stored placement is left alone. A refused value is passed
// over.
void SaveSettings(const AppSettings& settings, SettingsStore& store);

// The operations on strings by name; true when a usable string was read, or when it was written.
[[nodiscard]] bool ReadStringSetting(SettingsStore& store, const wchar_t* name, std::wstring& out);
bool WriteStringSetting(SettingsStore& store, const wchar_t* name, std::wstring_view value);

// One row of the table of all values that the program knows.
enum class SettingType { Dword, String };
struct SettingInfo {
    const wchar_t* name;
    SettingType type;
    TypeCheck check;
    // The number in force when the value is absent; meaningless where hasDefault is false, because then the
    // reader skips its step.
    std::uint32_t number;
    const wchar_t* text;
    bool hasDefault;
};

namespace settings {

constexpr SettingInfo Dword(const wchar_t* name, std::uint32_t value, TypeCheck check = TypeCheck::Strict) {
    return {name, SettingType::Dword, check, value, nullptr, true};
}
constexpr SettingInfo OptionalDword(const wchar_t* name) {
    return {name, SettingType::Dword, TypeCheck::Strict, 0, nullptr, false};
}
constexpr SettingInfo String(const wchar_t* name, const wchar_t* value) {
    return {name, SettingType::String, TypeCheck::Strict, 0, value, true};
}
constexpr SettingInfo OptionalString(const wchar_t* name) {
    return {name, SettingType::String, TypeCheck::Strict, 0, nullptr, false};
}

inline constexpr std::uint32_t kUnset = 0xFFFFFFFF; // -1

inline constexpr SettingInfo kRememberWindowPos = Dword(L"RememberWindowPos", 1);
inline constexpr SettingInfo kWindowX = Dword(L"WindowX", kUnset);
inline constexpr SettingInfo kWindowY = Dword(L"WindowY", kUnset);
inline constexpr SettingInfo kWindowW = Dword(L"WindowW", kUnset);
inline constexpr SettingInfo kWindowH = Dword(L"WindowH", kUnset);
inline constexpr SettingInfo kWindowMaximized = Dword(L"WindowMaximized", 0);
inline constexpr SettingInfo kSeekbarThumbnailPreview = Dword(L"SeekbarThumbnailPreview", 0);
inline constexpr SettingInfo kWelcomeMsg = String(L"WelcomeMsg", kDefaultWelcomeMessage);
// Snapping distance in unscaled pixels; 0 or less switches snapping off.
inline constexpr SettingInfo kMagnetDistance = Dword(L"MagnetDistance", 10, TypeCheck::Loose);
// Percent.
inline constexpr SettingInfo kVolume = Dword(L"Volume", 50);
inline constexpr SettingInfo kMuted = Dword(L"Muted", 0);
inline constexpr SettingInfo kSubtitleEnabled = Dword(L"SubtitleEnabled", 1, TypeCheck::Loose);
inline constexpr SettingInfo kPlaylistVisible = Dword(L"PlaylistVisible", 0, TypeCheck::Loose);
inline constexpr SettingInfo kPlaylistRestoreOnStartup =
    Dword(L"PlaylistRestoreOnStartup", 0, TypeCheck::Loose);
inline constexpr SettingInfo kPlaylistPreventDuplicates =
    Dword(L"PlaylistPreventDuplicates", 0, TypeCheck::Loose);
// 0 none, 1 CUDA, 2 QuickSync, 3 DXVA2, 4 DXVA2 native, 5 D3D11.
inline constexpr SettingInfo kHwAccel = Dword(L"LAV_HWAccel", 5);
inline constexpr SettingInfo kHwAccelFallback = Dword(L"HWAccelFallback", 1, TypeCheck::Loose);
inline constexpr SettingInfo kHwAccelH264 = Dword(L"LAV_HWAccel_H264", 1);
inline constexpr SettingInfo kHwAccelHevc = Dword(L"LAV_HWAccel_HEVC", 1);
inline constexpr SettingInfo kHwAccelVp9 = Dword(L"LAV_HWAccel_VP9", 1);
inline constexpr SettingInfo kHwAccelAv1 = Dword(L"LAV_HWAccel_AV1", 1);
inline constexpr SettingInfo kNumThreads = Dword(L"LAV_NumThreads", 0);
inline constexpr SettingInfo kDeintMode = OptionalDword(L"LAV_DeintMode");
inline constexpr SettingInfo kHwResFlags = Dword(L"LAV_HWResFlags", 7);
inline constexpr SettingInfo kTrayIcon = Dword(L"LAV_TrayIcon", 0);
inline constexpr SettingInfo kPreferredLanguages = String(L"LAV_PreferredLanguages", L"kor,eng,jpn");
inline constexpr SettingInfo kPreferredSubLanguages = OptionalString(L"LAV_PreferredSubLanguages");
inline constexpr SettingInfo kSubtitleMode = OptionalDword(L"LAV_SubtitleMode");
inline constexpr SettingInfo kAudioMixing = OptionalDword(L"LAV_AudioMixing");
inline constexpr SettingInfo kMixingLayout = OptionalDword(L"LAV_MixingLayout");
inline constexpr SettingInfo kDrcEnabled = Dword(L"LAV_DRCEnabled", 0);
inline constexpr SettingInfo kDrcLevel = Dword(L"LAV_DRCLevel", 100, TypeCheck::Loose);
inline constexpr SettingInfo kExpandMono = OptionalDword(L"LAV_ExpandMono");
inline constexpr SettingInfo kAudioNormalize = Dword(L"AudioNormalize", 1, TypeCheck::Loose);
inline constexpr SettingInfo kAudioNormalizeRecover = Dword(L"AudioNormalizeRecover", 1, TypeCheck::Loose);
// Percent; 300 is a factor of 3.
inline constexpr SettingInfo kAudioMaxNormFactor = Dword(L"AudioMaxNormFactor", 300, TypeCheck::Loose);
// Percent added to unity.
inline constexpr SettingInfo kAudioBoost = Dword(L"AudioBoost", 0, TypeCheck::Loose);
inline constexpr SettingInfo kEmbeddedSubtitleMethod = Dword(L"EmbeddedSubtitleMethod", 0, TypeCheck::Loose);
inline constexpr SettingInfo kScreenshotMethod = Dword(L"ScreenshotMethod", 0, TypeCheck::Loose);
// 1 JPEG, 2 raw bytes of the taken frame, else PNG.
inline constexpr SettingInfo kScreenshotFormat = Dword(L"ScreenshotFormat", 0, TypeCheck::Loose);
inline constexpr SettingInfo kSubFontName = String(L"SubFontName", L"Malgun Gothic");
inline constexpr SettingInfo kSubFontSize = Dword(L"SubFontSize", 0);
// Outline and shadow in tenths.
inline constexpr SettingInfo kSubOutline = Dword(L"SubOutline", 25);
inline constexpr SettingInfo kSubShadow = Dword(L"SubShadow", 15);
inline constexpr SettingInfo kSubBold = Dword(L"SubBold", 1);
inline constexpr SettingInfo kSubItalic = Dword(L"SubItalic", 0);
inline constexpr SettingInfo kSubPrimaryColor = Dword(L"SubPrimaryColor", 0xFFFFFF);
inline constexpr SettingInfo kSubOutlineColor = Dword(L"SubOutlineColor", 0);
inline constexpr SettingInfo kSubShadowColor = Dword(L"SubShadowColor", 0x80000000);
inline constexpr SettingInfo kSubMarginBottom = Dword(L"SubMarginBottom", 25);
inline constexpr SettingInfo kSubAlignment = Dword(L"SubAlignment", 2);

inline constexpr std::array kAll = {
    kRememberWindowPos,
    kWindowX,
    kWindowY,
    kWindowW,
    kWindowH,
    kWindowMaximized,
    kSeekbarThumbnailPreview,
    kWelcomeMsg,
    kMagnetDistance,
    kVolume,
    kMuted,
    kSubtitleEnabled,
    kPlaylistVisible,
    kPlaylistRestoreOnStartup,
    kPlaylistPreventDuplicates,
    kHwAccel,
    kHwAccelFallback,
    kHwAccelH264,
    kHwAccelHevc,
    kHwAccelVp9,
    kHwAccelAv1,
    kNumThreads,
    kDeintMode,
    kHwResFlags,
    kTrayIcon,
    kPreferredLanguages,
    kPreferredSubLanguages,
    kSubtitleMode,
    kAudioMixing,
    kMixingLayout,
    kDrcEnabled,
    kDrcLevel,
    kExpandMono,
    kAudioNormalize,
    kAudioNormalizeRecover,
    kAudioMaxNormFactor,
    kAudioBoost,
    kEmbeddedSubtitleMethod,
    kScreenshotMethod,
    kScreenshotFormat,
    kSubFontName,
    kSubFontSize,
    kSubOutline,
    kSubShadow,
    kSubBold,
    kSubItalic,
    kSubPrimaryColor,
    kSubOutlineColor,
    kSubShadowColor,
    kSubMarginBottom,
    kSubAlignment,
};

} // namespace settings

// The value by its row's rules, or the row's default.
[[nodiscard]] std::uint32_t ReadSetting(SettingsStore& store, const SettingInfo& info);
// The value by its row's rules, or nothing when it is absent.
[[nodiscard]] std::optional<std::uint32_t> ReadPresentSetting(SettingsStore& store, const SettingInfo& info);
// The text by its row's rules, or the row's default text.
[[nodiscard]] std::wstring ReadTextSetting(SettingsStore& store, const SettingInfo& info);

} // namespace brindlecast
