#pragma once

#include <string>
#include <vector>

namespace brindlecast::testing {

// Prints one line of the table: the median, and in brackets the least and the most.
void Report(const std::string& what, std::vector<double> milliseconds, int decimals = 0);

} // namespace brindlecast::testing
