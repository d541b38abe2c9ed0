#pragma once

#include "base/settings_store.h"
#include "base/win32/unique_handle.h"

namespace brindlecast {

// Owner of one open handle of the program's root key, Software\Brindlecast of the current user. Open it for
// one value and let it go: no key is held between accesses.
class SettingsKey {
public:
    enum class Access { Read, Write };

    // Writing creates the key when it is absent; a failed opening leaves the object empty.
    explicit SettingsKey(Access access);

    explicit operator bool() const { return static_cast<bool>(key); }
    [[nodiscard]] HKEY Get() const { return key.Get(); }

private:
    UniqueKey key;
};

// The settings store of the product: the values of SettingsKey.
class RegistrySettingsStore final : public SettingsStore {
public:
    [[nodiscard]] std::optional<std::uint32_t> ReadDword(const wchar_t* name, TypeCheck check) override;
    [[nodiscard]] std::optional<std::wstring> ReadString(const wchar_t* name) override;
    bool WriteDword(const wchar_t* name, std::uint32_t value) override;
    bool WriteString(const wchar_t* name, std::wstring_view value) override;
};

} // namespace brindlecast
