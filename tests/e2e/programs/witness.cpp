// Linked to the program's own objects, this writes every diagnostic line, in UTF-8, to the file that the
// environment variable BRINDLECAST_WITNESS names.

#include "base/trace.h"
#include "base/utf8.h"

#include <windows.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <string>

namespace brindlecast {
namespace {

struct TraceFile {
    explicit TraceFile(const std::wstring& path)
        : stream(std::filesystem::path(path), std::ios::binary | std::ios::trunc) {}

    // Lines come from any thread; each is complete in the file before the next begins.
    void Write(std::wstring_view line) {
        const std::lock_guard lock(mutex);
        stream << WideToUtf8(line) << std::flush;
    }

    std::mutex mutex;
    std::ofstream stream;
};

// Runs before the entry point, so that no line is missed.
[[maybe_unused]] const bool listening = [] {
    std::array<wchar_t, 1024> path{};
    if (GetEnvironmentVariableW(L"BRINDLECAST_WITNESS", path.data(), static_cast<DWORD>(path.size())) == 0) {
        return false;
    }
    const auto file = std::make_shared<TraceFile>(path.data());
    SetTraceSink([file](std::wstring_view line) { file->Write(line); });
    return true;
}();

} // namespace
} // namespace brindlecast
