#include "app/settings.h"

namespace brindlecast {

namespace {

AppSettings currentSettings;

std::int32_t ReadSigned(SettingsStore& store, const SettingInfo& info) {
    return static_cast<std::int32_t>(ReadSetting(store, info));
}

void WriteSigned(SettingsStore& store, const SettingInfo& info, std::int32_t value) {
    store.WriteDword(info.name, static_cast<std::uint32_t>(value));
}

void WriteFlag(SettingsStore& store, const SettingInfo& info, bool value) {
    store.WriteDword(info.name, value ? 1 : 0);
}

} // namespace

AppSettings& CurrentSettings() {
    return currentSettings;
}

void LoadSettings(AppSettings& settings, SettingsStore& store) {
    settings.rememberWindowPos = ReadSetting(store, settings::kRememberWindowPos) != 0;
    if (settings.rememberWindowPos) {
        settings.windowX = ReadSigned(store, settings::kWindowX);
        settings.windowY = ReadSigned(store, settings::kWindowY);
        settings.windowW = ReadSigned(store, settings::kWindowW);
        settings.windowH = ReadSigned(store, settings::kWindowH);
        settings.windowMaximized = ReadSetting(store, settings::kWindowMaximized) != 0;
    }
    settings.seekbarThumbnailPreview = ReadSetting(store, settings::kSeekbarThumbnailPreview) != 0;
    settings.welcomeMsg = ReadTextSetting(store, settings::kWelcomeMsg);
}

void SaveSettings(const AppSettings& settings, SettingsStore& store) {
    WriteFlag(store, settings::kRememberWindowPos, settings.rememberWindowPos);
    if (settings.rememberWindowPos) {
        WriteSigned(store, settings::kWindowX, settings.windowX);
        WriteSigned(store, settings::kWindowY, settings.windowY);
        WriteSigned(store, settings::kWindowW, settings.windowW);
        WriteSigned(store, settings::kWindowH, settings.windowH);
        WriteFlag(store, settings::kWindowMaximized, settings.windowMaximized);
    }
    WriteFlag(store, settings::kSeekbarThumbnailPreview, settings.seekbarThumbnailPreview);
    WriteStringSetting(store, settings::kWelcomeMsg.name, settings.welcomeMsg);
}

bool ReadStringSetting(SettingsStore& store, const wchar_t* name, std::wstring& out) {
    auto text = store.ReadString(name);
    if (!text) {
        return false;
    }
    out = *std::move(text);
    return true;
}

bool WriteStringSetting(SettingsStore& store, const wchar_t* name, std::wstring_view value) {
    return store.WriteString(name, value);
}

std::uint32_t ReadSetting(SettingsStore& store, const SettingInfo& info) {
    return ReadPresentSetting(store, info).value_or(info.number);
}

std::optional<std::uint32_t> ReadPresentSetting(SettingsStore& store, const SettingInfo& info) {
    return store.ReadDword(info.name, info.check);
}

std::wstring ReadTextSetting(SettingsStore& store, const SettingInfo& info) {
    return store.ReadString(info.name).value_or(info.text != nullptr ? info.text : L"");
}

} // namespace brindlecast
