#include "subtitles/image_blend.h"
#include "subtitles/mem_sub_pic_allocator.h"
#include "subtitles/sub_pic_queue.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <limits>
#include <vector>

namespace brindlecast {
namespace {

constexpr Size kFrame{1920, 1080};
constexpr Time100ns kFrameTime = 416'667; // 24 frames a second

// What a renderer of text gives for two full lines at the foot of the frame: for each line a shadow, an
// outline and the letters, of which a third is covered in full, a third in part and a third not at all.
class TextImages {
public:
    TextImages() {
        constexpr int kWidth = 1400;
        constexpr int kHeight = 64;
        bitmap.resize(std::size_t{kWidth} * kHeight);
        for (std::size_t i = 0; i < bitmap.size(); ++i) {
            const std::size_t stroke = (i + i / kWidth) % 24;
            bitmap[i] = static_cast<std::uint8_t>(stroke < 8 ? 0 : stroke < 16 ? 255 : stroke * 10);
        }
        for (const int line : {880, 960}) {
            for (const std::uint32_t color : {0x00000080U, 0x00000000U, 0xFFFFFF00U}) {
                const int shift = color == 0x00000080U ? 3 : 0;
                images.push_back({kWidth, kHeight, kWidth, bitmap.data(), color, 260 + shift, line + shift});
            }
        }
    }

    void BlendInto(const SubPicDesc& desc, Rect& bounds) const {
        for (const AlphaImage& image : images) {
            BlendImage(image, desc, bounds);
        }
    }

private:
    std::vector<std::uint8_t> bitmap;
    std::vector<AlphaImage> images;
};

// One event without an end that shows the text.
class TextProvider final : public ComObject<ISubPicProvider> {
public:
    STDMETHODIMP Lock() override { return S_OK; }
    STDMETHODIMP Unlock() override { return S_OK; }
    SubPicPosition STDMETHODCALLTYPE GetStartPosition(Time100ns, double) override { return 1; }
    SubPicPosition STDMETHODCALLTYPE GetNext(SubPicPosition) override { return 0; }
    Time100ns STDMETHODCALLTYPE GetStart(SubPicPosition, double) override { return 0; }
    Time100ns STDMETHODCALLTYPE GetStop(SubPicPosition, double) override {
        return std::numeric_limits<Time100ns>::max();
    }
    bool STDMETHODCALLTYPE IsAnimated(SubPicPosition) override { return false; }
    STDMETHODIMP Render(SubPicDesc& desc, Time100ns, double, Rect& bbox) override {
        text.BlendInto(desc, bbox);
        return S_OK;
    }
    void STDMETHODCALLTYPE SetVideoSize(Size) override {}
    Size* STDMETHODCALLTYPE GetVideoSize(Size* result) override { return result; }
    STDMETHODIMP Reserved1(std::uint32_t*) override { return S_OK; }

private:
    ~TextProvider() override = default;

    TextImages text;
};

class Subtitles {
public:
    Subtitles() {
        allocator->SetCurSize(kFrame);
        queue.reset(new CSubPicQueue(allocator.get(), 10, 24.0));
        queue->SetSubPicProvider(provider.get());
    }
    ComReference<ISubPic> Lookup(Time100ns rt) {
        ISubPic* picture = nullptr;
        if (queue->LookupSubPic(rt, &picture) != S_OK) {
            std::abort(); // a time of what has not happened would mean nothing
        }
        return ComReference<ISubPic>(picture);
    }

    ComReference<CMemSubPicAllocator> allocator{new CMemSubPicAllocator};
    ComReference<TextProvider> provider{new TextProvider};
    ComReference<CSubPicQueue> queue;
};

void LookupCached(benchmark::State& state) {
    Subtitles subtitles;
    Time100ns rt = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(subtitles.Lookup(rt));
        rt += kFrameTime;
    }
    if (subtitles.queue->GetQueueCount() != 1) {
        state.SkipWithError("rendered more than once");
    }
}
BENCHMARK(LookupCached)->Name("LookupSubPic, the picture is there")->Unit(benchmark::kNanosecond);

// Memory, clearing, drawing: all but the renderer of the text itself.
void LookupRendered(benchmark::State& state) {
    Subtitles subtitles;
    for (auto _ : state) {
        subtitles.queue->InvalidateAll();
        benchmark::DoNotOptimize(subtitles.Lookup(0));
    }
}
BENCHMARK(LookupRendered)
    ->Name("LookupSubPic, a picture of 1920x1080 is made")
    ->Unit(benchmark::kMillisecond);

// Line over line again and again, so that no pixel is empty: the dearer of both ways.
void BlendText(benchmark::State& state) {
    const TextImages text;
    std::vector<std::uint8_t> bits(std::size_t{4} * kFrame.width * kFrame.height);
    const SubPicDesc desc{0, kFrame.width, kFrame.height, 32, kFrame.width * 4, bits.data(), {}};
    for (auto _ : state) {
        Rect bounds = kInvertedRect;
        text.BlendInto(desc, bounds);
        benchmark::DoNotOptimize(bounds);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BlendText)->Name("BlendImage, two lines of text in 1920x1080")->Unit(benchmark::kMillisecond);

} // namespace
} // namespace brindlecast

BENCHMARK_MAIN();
