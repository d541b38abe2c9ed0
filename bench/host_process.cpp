#include "bench/host_process.h"

#include "base/utf8.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace brindlecast::testing {

namespace {

constexpr double kMillisecondsPerTick = 10.0;

std::string ContentOf(const std::wstring& path) {
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

HostProcess::HostProcess(const std::wstring& program) {
    const std::string command = WideToUtf8(program);
    for (const auto& entry : std::filesystem::directory_iterator(L"Z:\\proc")) {
        const std::wstring name = entry.path().filename().wstring();
        const bool isProcess = name.find_first_not_of(L"0123456789") == std::wstring::npos;
        if (isProcess && ContentOf(L"Z:\\proc\\" + name + L"\\cmdline").starts_with(command)) {
            if (!folder.empty()) {
                throw std::runtime_error("the program runs more than once");
            }
            folder = L"Z:\\proc\\" + name;
        }
    }
    if (folder.empty()) {
        throw std::runtime_error("the host does not know the program");
    }
}

double HostProcess::ProcessorMilliseconds() const {
    const std::string line = ContentOf(folder + L"\\stat");
    // The name of the program, in brackets, may hold anything. Then come the state and ten numbers.
    std::istringstream fields(line.substr(line.rfind(')') + 1));
    std::string skipped;
    for (int field = 0; field < 11; ++field) {
        fields >> skipped;
    }
    double user = 0;
    double system = 0;
    if (!(fields >> user >> system)) {
        throw std::runtime_error("the process is gone");
    }
    return (user + system) * kMillisecondsPerTick;
}

} // namespace brindlecast::testing
