#include "engine/bitmap_file.h"
#include "engine/seek_snap.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

namespace brindlecast {
namespace {

// A film of 83 hours with two keyframes a second and a little, far beyond what files hold.
constexpr std::size_t kKeyFrames = 500'000;
constexpr Time100ns kKeyFrameDistance = 6'000'000;
// So far apart that no two seeks look at the same part of the table, and in no order.
constexpr Time100ns kStride = 1'234'567'890'123;

void SnapSeek(benchmark::State& state) {
    std::vector<Time100ns> table(kKeyFrames);
    for (std::size_t i = 0; i < table.size(); ++i) {
        table[i] = static_cast<Time100ns>(i) * kKeyFrameDistance;
    }
    Time100ns target = 0;
    for (auto _ : state) {
        target = (target + kStride) % table.back();
        benchmark::DoNotOptimize(SnapToKeyFrame(table, target));
    }
}
BENCHMARK(SnapSeek)->Name("Snap a seek, 500,000 keyframes")->Unit(benchmark::kMicrosecond);

// A screenshot as renderers give it: 3840x2160, 32 bits, from the top.
void TurnPicture(benchmark::State& state) {
    constexpr std::int32_t kWidth = 3840;
    constexpr std::int32_t kHeight = -2160;
    constexpr std::uint16_t kBits = 32;
    std::vector<std::uint8_t> dib(kBitmapInfoHeaderBytes + std::size_t{3840} * 2160 * 4, 0x5A);
    std::memset(dib.data(), 0, kBitmapInfoHeaderBytes);
    std::memcpy(dib.data() + 4, &kWidth, sizeof(kWidth));
    std::memcpy(dib.data() + 8, &kHeight, sizeof(kHeight));
    std::memcpy(dib.data() + 14, &kBits, sizeof(kBits));
    for (auto _ : state) {
        BitmapBytes file = NormalizeBitmap(dib.data(), dib.size());
        if (file == nullptr) {
            state.SkipWithError("no picture");
            break;
        }
        benchmark::DoNotOptimize(file->data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * dib.size()));
}
BENCHMARK(TurnPicture)->Name("Turn a screenshot round, 3840x2160")->Unit(benchmark::kMillisecond);

} // namespace
} // namespace brindlecast

BENCHMARK_MAIN();
