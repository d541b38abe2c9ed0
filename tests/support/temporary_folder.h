#pragma once

#include "base/utf8.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>

namespace brindlecast::testing {

// A new folder with a name outside ASCII, since users have such; it goes with the object.
class TemporaryFolder {
public:
    TemporaryFolder() { std::filesystem::create_directories(folder); }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    // Both give paths as the program names them.
    [[nodiscard]] std::wstring Path(const std::u8string& name) const { return Wide(folder / name); }
    [[nodiscard]] std::wstring Write(const std::u8string& name, std::string_view bytes) const {
        std::ofstream(folder / name, std::ios::binary) << bytes;
        return Path(name);
    }

private:
    // The path's own wide form depends on the locale where the system's paths are bytes.
    [[nodiscard]] static std::wstring Wide(const std::filesystem::path& path) {
        const std::u8string name = path.u8string();
        return Utf8ToWide(reinterpret_cast<const char*>(name.c_str()));
    }

    std::filesystem::path folder =
        std::filesystem::temp_directory_path() / u8"브린들 시험" / std::to_string(std::random_device()());
};

} // namespace brindlecast::testing
