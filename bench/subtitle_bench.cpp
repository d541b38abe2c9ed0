#include "subtitles/srt_to_ass.h"
#include "subtitles/subtitle_cues.h"

#include <benchmark/benchmark.h>

#include <string>

namespace brindlecast {
namespace {

constexpr int kCues = 100'000;

// A SubRip file as Windows programs write it, about 9 MB: two lines of text each, one of them in italics.
std::string LargeFile() {
    std::string content;
    for (int i = 0; i < kCues; ++i) {
        const std::string time = FormatAssTime(Milliseconds{i} * 1000);
        content += std::to_string(i + 1) + "\r\n" + time + "0 --> " + time + "9\r\n<i>한국어 자막 " +
                   std::to_string(i) + "</i>\r\nand a second line\r\n\r\n";
    }
    return content;
}

void Convert(benchmark::State& state) {
    const std::string content = LargeFile();
    const SubtitleStyle style;
    for (auto _ : state) {
        benchmark::DoNotOptimize(ConvertSrtToAss(content, style));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * content.size()));
}
BENCHMARK(Convert)->Name("ConvertSrtToAss, 100,000 cues")->Unit(benchmark::kMillisecond);

void ReadCues(benchmark::State& state) {
    const std::string content = LargeFile();
    for (auto _ : state) {
        std::vector<SubtitleCue> cues;
        ParseSubtitleCues(content, cues);
        if (cues.size() != kCues) {
            state.SkipWithError("cues are missing");
            break;
        }
        benchmark::DoNotOptimize(cues.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * content.size()));
}
BENCHMARK(ReadCues)->Name("ParseSubtitleCues, 100,000 cues")->Unit(benchmark::kMillisecond);

} // namespace
} // namespace brindlecast

BENCHMARK_MAIN();
