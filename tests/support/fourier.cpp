#include "tests/support/fourier.h"

#include <cstddef>
#include <numbers>
#include <utility>

namespace brindlecast::testing {

void FourierTransform(std::vector<std::complex<double>>& values, Direction direction) {
    const std::size_t count = values.size();
    for (std::size_t i = 1, j = 0; i < count; ++i) {
        std::size_t bit = count >> 1;
        for (; (j & bit) != 0; bit >>= 1) {
            j ^= bit;
        }
        j ^= bit;
        if (i < j) {
            std::swap(values[i], values[j]);
        }
    }
    const double turn = (direction == Direction::Forward ? -2 : 2) * std::numbers::pi;
    // All roots once: multiplying them up step by step would lose digits in long transforms.
    std::vector<std::complex<double>> roots(count / 2);
    for (std::size_t i = 0; i < roots.size(); ++i) {
        roots[i] = std::polar(1.0, turn * static_cast<double>(i) / static_cast<double>(count));
    }
    for (std::size_t length = 2; length <= count; length <<= 1) {
        const std::size_t step = count / length;
        for (std::size_t begin = 0; begin < count; begin += length) {
            for (std::size_t i = 0; i < length / 2; ++i) {
                const std::complex<double> even = values[begin + i];
                const std::complex<double> odd = values[begin + i + length / 2] * roots[i * step];
                values[begin + i] = even + odd;
                values[begin + i + length / 2] = even - odd;
            }
        }
    }
}

} // namespace brindlecast::testing
