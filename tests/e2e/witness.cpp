#include "tests/e2e/witness.h"

#include "base/utf8.h"

#include <filesystem>
#include <fstream>

namespace brindlecast::testing {

Witness::Witness() : path(ReportFolder() + L"\\witness.log"), variable(L"BRINDLECAST_WITNESS", path) {
    std::filesystem::remove(path);
}

std::wstring Witness::Program() {
    return BuildFolder() + L"\\witness_bin\\BrindlecastWitness.exe";
}

std::vector<std::wstring> Witness::Lines() const {
    std::vector<std::wstring> lines;
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    for (std::string line; std::getline(file, line);) {
        lines.push_back(Utf8ToWide(line.c_str()));
    }
    return lines;
}

} // namespace brindlecast::testing
