#pragma once

#include "base/settings_store.h"

#include <map>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace brindlecast::testing {

// A settings store in memory that keeps the order of all accesses.
class FakeSettingsStore final : public SettingsStore {
public:
    // A value of another type or size than a 32-bit number, given by its bytes: absent to a strict reader.
    using Bytes = std::vector<std::uint8_t>;

    [[nodiscard]] std::optional<std::uint32_t> ReadDword(const wchar_t* name, TypeCheck check) override {
        reads.emplace_back(name);
        const auto found = values.find(name);
        if (found == values.end()) {
            return std::nullopt;
        }
        if (const auto* number = std::get_if<std::uint32_t>(&found->second)) {
            return *number;
        }
        const Bytes bytes = BytesOf(found->second);
        if (check == TypeCheck::Strict || bytes.empty()) {
            return std::nullopt;
        }
        return FirstBytes(bytes);
    }

    [[nodiscard]] std::optional<std::wstring> ReadString(const wchar_t* name) override {
        reads.emplace_back(name);
        const auto found = values.find(name);
        if (found == values.end() || !std::holds_alternative<std::wstring>(found->second)) {
            return std::nullopt;
        }
        return std::get<std::wstring>(found->second);
    }

    bool WriteDword(const wchar_t* name, std::uint32_t value) override {
        writes.emplace_back(name);
        if (!refusesWrites) {
            values[name] = value;
        }
        return !refusesWrites;
    }

    bool WriteString(const wchar_t* name, std::wstring_view value) override {
        writes.emplace_back(name);
        if (!refusesWrites) {
            values[name] = std::wstring(value);
        }
        return !refusesWrites;
    }

    std::map<std::wstring, std::variant<std::uint32_t, std::wstring, Bytes>> values;
    std::vector<std::wstring> reads;
    std::vector<std::wstring> writes;
    bool refusesWrites = false;

private:
    // A text lies there in units of two bytes, with its terminator.
    [[nodiscard]] static Bytes BytesOf(const std::variant<std::uint32_t, std::wstring, Bytes>& value) {
        Bytes bytes;
        if (const auto* text = std::get_if<std::wstring>(&value)) {
            for (const wchar_t unit : *text + L'\0') {
                bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
                bytes.push_back(static_cast<std::uint8_t>((unit >> 8) & 0xFF));
            }
        } else if (const auto* raw = std::get_if<Bytes>(&value)) {
            bytes = *raw;
        }
        return bytes;
    }

    [[nodiscard]] static std::uint32_t FirstBytes(Bytes bytes) {
        bytes.resize(4);
        return bytes[0] | bytes[1] << 8 | bytes[2] << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
    }
};

} // namespace brindlecast::testing
