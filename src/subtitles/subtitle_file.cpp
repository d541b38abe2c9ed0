#include "subtitles/subtitle_file.h"

#include "base/utf8.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <vector>

namespace brindlecast {

namespace {

constexpr std::size_t kBlockBytes = 65536;
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

std::ifstream OpenBinary(const std::wstring& path) {
#ifdef _WIN32
    return std::ifstream(std::filesystem::path(path), std::ios::binary);
#else
    return std::ifstream(WideToUtf8(path), std::ios::binary);
#endif
}

} // namespace

std::optional<std::string> ReadSubtitleFile(const std::wstring& path) {
    std::ifstream file = OpenBinary(path);
    if (!file.is_open()) {
        return std::nullopt;
    }
    std::string bytes;
    std::vector<char> block(kBlockBytes);
    do {
        file.read(block.data(), static_cast<std::streamsize>(block.size()));
        bytes.append(block.data(), static_cast<std::size_t>(file.gcount()));
    } while (file);
    if (file.bad()) {
        return std::nullopt;
    }
    return bytes;
}

std::string_view WithoutUtf8Mark(std::string_view bytes) {
    return bytes.starts_with(kUtf8Mark) ? bytes.substr(kUtf8Mark.size()) : bytes;
}

std::string_view TakeSubtitleLine(std::string_view& content) {
    const std::size_t end = std::min(content.find('\n'), content.size());
    std::string_view line = content.substr(0, end);
    content.remove_prefix(std::min(end + 1, content.size()));
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    return line;
}

} // namespace brindlecast
