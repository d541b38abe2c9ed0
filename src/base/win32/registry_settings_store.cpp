#include "base/win32/registry_settings_store.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace brindlecast {

namespace {

constexpr const wchar_t* kRootKey = L"Software\\Brindlecast";
constexpr DWORD kStringBytes = 1024;

HKEY OpenRootKey(SettingsKey::Access access) {
    HKEY key = nullptr;
    const LSTATUS status =
        access == SettingsKey::Access::Read
            ? RegOpenKeyExW(HKEY_CURRENT_USER, kRootKey, 0, KEY_READ, &key)
            : RegCreateKeyExW(HKEY_CURRENT_USER, kRootKey, 0, nullptr, REG_OPTION_NON_VOLATILE,
                              KEY_READ | KEY_WRITE, nullptr, &key, nullptr);
    return status == ERROR_SUCCESS ? key : nullptr;
}

// The first four bytes of a value of any type; see TypeCheck::Loose.
std::optional<std::uint32_t> ReadFirstBytes(HKEY key, const wchar_t* name) {
    DWORD size = 0;
    if (RegQueryValueExW(key, name, nullptr, nullptr, nullptr, &size) != ERROR_SUCCESS || size == 0) {
        return std::nullopt;
    }
    std::vector<BYTE> bytes(size);
    if (RegQueryValueExW(key, name, nullptr, nullptr, bytes.data(), &size) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    std::uint32_t value = 0;
    std::memcpy(&value, bytes.data(), std::min<std::size_t>(size, sizeof(value)));
    return value;
}

} // namespace

SettingsKey::SettingsKey(Access access) : key(OpenRootKey(access)) {}

std::optional<std::uint32_t> RegistrySettingsStore::ReadDword(const wchar_t* name, TypeCheck check) {
    const SettingsKey key(SettingsKey::Access::Read);
    if (!key) {
        return std::nullopt;
    }
    std::uint32_t value = 0;
    DWORD type = REG_NONE;
    DWORD size = sizeof(value);
    const LSTATUS status =
        RegQueryValueExW(key.Get(), name, nullptr, &type, reinterpret_cast<BYTE*>(&value), &size);
    if (status == ERROR_SUCCESS && type == REG_DWORD && size == sizeof(value)) {
        return value;
    }
    return check == TypeCheck::Loose ? ReadFirstBytes(key.Get(), name) : std::nullopt;
}

std::optional<std::wstring> RegistrySettingsStore::ReadString(const wchar_t* name) {
    const SettingsKey key(SettingsKey::Access::Read);
    if (!key) {
        return std::nullopt;
    }
    std::array<wchar_t, kStringBytes / sizeof(wchar_t) + 1> buffer{};
    DWORD type = REG_NONE;
    DWORD size = kStringBytes;
    if (RegQueryValueExW(key.Get(), name, nullptr, &type, reinterpret_cast<BYTE*>(buffer.data()), &size) !=
        ERROR_SUCCESS) {
        return std::nullopt;
    }
    const bool isText = type == REG_SZ || type == REG_EXPAND_SZ;
    const bool isComplete =
        size == 0 || (size % sizeof(wchar_t) == 0 && buffer[size / sizeof(wchar_t) - 1] == 0);
    if (!isText || !isComplete) {
        return std::nullopt;
    }
    return std::wstring(buffer.data());
}

bool RegistrySettingsStore::WriteDword(const wchar_t* name, std::uint32_t value) {
    const SettingsKey key(SettingsKey::Access::Write);
    return key && RegSetValueExW(key.Get(), name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value),
                                 sizeof(value)) == ERROR_SUCCESS;
}

bool RegistrySettingsStore::WriteString(const wchar_t* name, std::wstring_view value) {
    const SettingsKey key(SettingsKey::Access::Write);
    const std::wstring terminated(value);
    return key &&
           RegSetValueExW(key.Get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(terminated.c_str()),
                          static_cast<DWORD>((terminated.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
}

} // namespace brindlecast
