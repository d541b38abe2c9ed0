#include "bench/report.h"

#include <algorithm>
#include <cstdio>

namespace brindlecast::testing {

void Report(const std::string& what, std::vector<double> milliseconds, int decimals) {
    std::ranges::sort(milliseconds);
    std::printf("%-60s %8.*f ms (%.*f to %.*f)\n", what.c_str(), decimals,
                milliseconds[milliseconds.size() / 2], decimals, milliseconds.front(), decimals,
                milliseconds.back());
}

} // namespace brindlecast::testing
