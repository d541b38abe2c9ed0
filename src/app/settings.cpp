#include "app/settings.h"

namespace brindlecast {

namespace {

AppSettings currentSettings;

// What can't be read leaves the field as it was.
void ReadInto(std::int32_t& field, SettingsStore& store, const SettingInfo& info) {
    if (const auto value = ReadPresentSetting(store, info)) {
        field = static_cast<std::int32_t>(*value);
    }
}

void ReadInto(bool& field, SettingsStore& store, const SettingInfo& info) {
    if (const auto value = ReadPresentSetting(store, info)) {
        field = *value != 0;
    }
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
    ReadInto(settings.rememberWindowPos, store, settings::kRememberWindowPos);
    if (settings.rememberWindowPos) {
        ReadInto(settings.windowX, store, settings::kWindowX);
        ReadInto(settings.windowY, store, settings::kWindowY);
        ReadInto(settings.windowW, store, settings::kWindowW);
        ReadInto(settings.windowH, store, settings::kWindowH);
        ReadInto(settings.windowMaximized, store, settings::kWindowMaximized);
    }
    ReadInto(settings.seekbarThumbnailPreview, store, settings::kSeekbarThumbnailPreview);
    static_cast<void>(ReadStringSetting(store, settings::kWelcomeMsg.name, settings.welcomeMsg));
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
