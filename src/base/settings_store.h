#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace brindlecast {

// How a number that lies in the store under another type or size is read.
enum class TypeCheck {
    Strict, // it counts as absent
    // Its first four bytes are taken as they stand, lowest first. A shorter value is taken as if zeros
    // followed it; one without any byte counts as absent.
    Loose,
};

// The named values of the program. Each call is complete in itself: nothing stays open between calls. Main
// thread only.
class SettingsStore {
public:
    virtual ~SettingsStore() = default;

    // Nothing when the value is absent or, under TypeCheck::Strict, no 32-bit number.
    [[nodiscard]] virtual std::optional<std::uint32_t> ReadDword(const wchar_t* name, TypeCheck check) = 0;
    // Nothing when the value is absent, no text, not terminated, or longer than 1024 bytes with its
    // terminator. A present empty text is an empty text.
    [[nodiscard]] virtual std::optional<std::wstring> ReadString(const wchar_t* name) = 0;
    // False when the store refused; the old value is then still there.
    virtual bool WriteDword(const wchar_t* name, std::uint32_t value) = 0;
    virtual bool WriteString(const wchar_t* name, std::wstring_view value) = 0;
};

} // namespace brindlecast
