#include "tests/support/fourier.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <numbers>
#include <random>

namespace brindlecast::testing {
namespace {

using Values = std::vector<std::complex<double>>;

TEST(Fourier, AgreesWithTheSlowSum) {
    std::mt19937 random(2);
    std::uniform_real_distribution<double> any(-1, 1);
    Values values(32);
    for (auto& value : values) {
        value = {any(random), any(random)};
    }
    Values transformed = values;
    FourierTransform(transformed, Direction::Forward);
    for (std::size_t k = 0; k < values.size(); ++k) {
        std::complex<double> sum;
        for (std::size_t n = 0; n < values.size(); ++n) {
            sum += values[n] * std::polar(1.0, -2 * std::numbers::pi * static_cast<double>(k * n) / 32.0);
        }
        EXPECT_NEAR(std::abs(transformed[k] - sum), 0, 1e-12);
    }
}

TEST(Fourier, ThereAndBackGivesTheSizeTimesTheValues) {
    Values values(1024);
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = {static_cast<double>(i % 17), static_cast<double>(i % 5)};
    }
    Values changed = values;
    FourierTransform(changed, Direction::Forward);
    FourierTransform(changed, Direction::Inverse);
    for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_NEAR(std::abs(changed[i] - 1024.0 * values[i]), 0, 1e-7);
    }
}

} // namespace
} // namespace brindlecast::testing
