#include "subtitles/mem_sub_pic_allocator.h"
#include "subtitles/subtitle_provider.h"
#include "tests/support/ass_script.h"
#include "tests/support/temporary_folder.h"

#include <ass/ass.h>
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>

namespace brindlecast {
namespace {

constexpr Size kFullHd{1920, 1080};
constexpr Size kUltraHd{3840, 2160};

constexpr const char* kPlain = "{\\frz0}Two lines of text\\Nas subtitles have them";
constexpr const char* kStyled = "{\\blur4\\bord6\\shad4\\frx20\\3c&H2040FF&\\1c&H20FFFF&\\fs40\\b1}A sign\\N"
                                "{\\blur8\\alpha&H40&\\fax0.3}turned, blurred and slanted";

constexpr int kEvents = 1000;

// Each turn draws another event of another text at another angle, so that little is drawn from what turns
// before have left, as in a film.
std::string ScriptOf(const char* text) {
    std::string script = testing::AssHead({384, 288});
    for (int event = 0; event < kEvents; ++event) {
        const auto time = [](int second) {
            const int minute = second / 60;
            return "0:" + std::to_string(minute) + ":" + std::to_string(second % 60) + ".00";
        };
        script +=
            testing::AssLine(time(event), time(event + 1),
                             "{\\frz" + std::to_string(event * 7 % 360) + "}" + text + std::to_string(event));
    }
    return script;
}

constexpr Milliseconds TimeOf(int turn) {
    return turn % kEvents * 1000 + 500;
}

// libass by itself, without a pixel of the picture touched.
void BareLibass(benchmark::State& state, const char* text, Size size) {
    const std::unique_ptr<ASS_Library, decltype(&ass_library_done)> library(ass_library_init(),
                                                                            ass_library_done);
    ass_set_message_cb(library.get(), nullptr, nullptr);
    const std::unique_ptr<ASS_Renderer, decltype(&ass_renderer_done)> renderer(
        ass_renderer_init(library.get()), ass_renderer_done);
    ass_set_frame_size(renderer.get(), size.width, size.height);
    ass_set_fonts(renderer.get(), nullptr, "sans-serif", ASS_FONTPROVIDER_AUTODETECT, nullptr, 1);
    std::string script = ScriptOf(text);
    const std::unique_ptr<ASS_Track, decltype(&ass_free_track)> track(
        ass_read_memory(library.get(), script.data(), script.size(), nullptr), ass_free_track);
    int turn = 0;
    for (auto unused : state) {
        int change = 0;
        benchmark::DoNotOptimize(ass_render_frame(renderer.get(), track.get(), TimeOf(turn++), &change));
    }
}

// What a miss in the queue costs: libass and the blend into a picture.
void Provider(benchmark::State& state, const char* text, Size size) {
    const testing::TemporaryFolder folder;
    const ComReference<CSubtitleProvider> provider(
        new CSubtitleProvider({}, [](const std::wstring&, const SubPicDesc&, Rect&) {}));
    provider->SetVideoSize(size);
    if (!provider->LoadFile(folder.Write(u8"bench.ass", ScriptOf(text)))) {
        state.SkipWithError("the script was not read");
        return;
    }
    const ComReference<CMemSubPicAllocator> allocator(new CMemSubPicAllocator);
    allocator->SetCurSize(size);
    ISubPic* made = nullptr;
    allocator->AllocDynamic(&made);
    const ComReference<ISubPic> picture(made);
    SubPicDesc desc;
    picture->Lock(desc);
    int turn = 0;
    for (auto unused : state) {
        // The queue has a fresh picture for each event; making it is not what is measured here.
        state.PauseTiming();
        std::memset(desc.bits, 0,
                    static_cast<std::size_t>(desc.pitch) * static_cast<std::size_t>(desc.height));
        state.ResumeTiming();
        Rect bounds;
        if (provider->Render(desc, TimeOf(turn++) * 10'000, 25.0, bounds) != S_OK) {
            state.SkipWithError("nothing was drawn");
            return;
        }
    }
}

#define BRINDLECAST_RENDER(function, name, text, size)                                                       \
    BENCHMARK_CAPTURE(function, name, text, size)->Unit(benchmark::kMicrosecond)
BRINDLECAST_RENDER(BareLibass, plain_1080p, kPlain, kFullHd);
BRINDLECAST_RENDER(Provider, plain_1080p, kPlain, kFullHd);
BRINDLECAST_RENDER(BareLibass, plain_2160p, kPlain, kUltraHd);
BRINDLECAST_RENDER(Provider, plain_2160p, kPlain, kUltraHd);
BRINDLECAST_RENDER(BareLibass, styled_1080p, kStyled, kFullHd);
BRINDLECAST_RENDER(Provider, styled_1080p, kStyled, kFullHd);
BRINDLECAST_RENDER(BareLibass, styled_2160p, kStyled, kUltraHd);
BRINDLECAST_RENDER(Provider, styled_2160p, kStyled, kUltraHd);

} // namespace
} // namespace brindlecast

BENCHMARK_MAIN();
