#include "app/overlay.h"
#include "app/overlay_rendering.h"
#include "base/win32/unique_handle.h"
#include "bench/report.h"

#include <gtest/gtest.h>

#include <chrono>

namespace brindlecast::testing {
namespace {

using Clock = std::chrono::steady_clock;

// One picture of a message while it fades: what the main thread does every 16 ms then.
TEST(OverlayBench, OneFrameOfTheFade) {
    constexpr int kFrames = 100;
    constexpr int kWarmUp = 10;
    for (const SIZE size : {SIZE{1200, 720}, SIZE{1920, 1080}}) {
        const UniqueHwnd owner(CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, size.cx,
                                               size.cy, nullptr, nullptr, nullptr, nullptr));
        CreateOverlay(owner.Get(), GetModuleHandleW(nullptr));
        ShowOverlayMessage(L"한국어 영화 01화.mkv", 1000);
        OverlayState& state = *CurrentOverlay();
        std::vector<double> spent;
        for (int frame = 0; frame < kWarmUp + kFrames; ++frame) {
            state.opacity = 1.0F - static_cast<float>(frame) / (kWarmUp + kFrames);
            const auto start = Clock::now();
            RenderOverlay(state);
            if (frame >= kWarmUp) {
                spent.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
            }
        }
        ReleaseOverlay();
        Report("one frame of a message's fade, " + std::to_string(size.cx) + "x" + std::to_string(size.cy),
               spent, 2);
    }
}

} // namespace
} // namespace brindlecast::testing
