#pragma once

#include <complex>
#include <vector>

namespace brindlecast::testing {

// In place, radix 2; the size must be a power of two. The inverse leaves the factor of the size in the
// values.
enum class Direction { Forward, Inverse };
void FourierTransform(std::vector<std::complex<double>>& values, Direction direction);

} // namespace brindlecast::testing
