#pragma once

#include "filters/include/mpc_video_renderer.h"
#include "tests/filters/renderer/screen.h"
#include "tests/filters/renderer/test_pictures.h"
#include "tests/filters/support/push_source.h"
#include "tests/filters/support/test_graph.h"
#include "tests/filters/support/test_module.h"

#include <control.h>

#include <memory>
#include <thread>

namespace brindlecast::test {

using Microsoft::WRL::ComPtr;

// The module, loaded once for the whole program.
[[nodiscard]] TestModule& RendererModule();

// The renderer behind a push source in a system graph, with a host window.
class RendererBench {
public:
    explicit RendererBench(const PictureKind& kind, int width = 400, int height = 300);
    RendererBench(const RendererBench&) = delete;
    RendererBench& operator=(const RendererBench&) = delete;
    ~RendererBench();

    // Gives the renderer its window: the whole host.
    void AttachWindow();
    // Places window and picture as a player does.
    void Place(int width, int height, const RECT& picture);
    [[nodiscard]] HWND RendererWindow() const { return GetWindow(host.Handle(), GW_CHILD); }

    // Sends one frame on this thread.
    HRESULT Push(const std::vector<std::uint8_t>& picture, std::int64_t start, std::int64_t stop);
    // Pauses, sends one frame and waits until the filter is ready.
    void ShowPaused(const std::vector<std::uint8_t>& picture);
    // Waits until the screen shows `expected` at a place of the renderer's window; the colour seen last is
    // returned.
    [[nodiscard]] Color WaitForColor(int x, int y, const Color& expected, int tolerance = 2);
    // Serves messages until the graph tells an event of that code.
    [[nodiscard]] bool WaitForEvent(long code, int milliseconds) const {
        return PumpUntil([&] { return graph->WaitForEvent(code, 20); }, milliseconds);
    }
    [[nodiscard]] Image Screen() const { return ReadScreen(host.Handle()); }

    PictureKind kind;
    HostWindow host;
    ComPtr<IBaseFilter> filter;
    ComPtr<PushSource> source;
    std::unique_ptr<TestGraph> graph;
    ComPtr<IVideoWindow> videoWindow;
    ComPtr<IBasicVideo> basicVideo;
    ComPtr<IMediaSeeking> seeking;
    ComPtr<IExFilterConfig> options;
    ComPtr<ISubRender11> subtitles;
};

// A thread that pushes frames until it is told off; joined at the end.
class Pusher {
public:
    explicit Pusher(std::function<void()> work) : thread_(std::move(work)) {}
    Pusher(const Pusher&) = delete;
    Pusher& operator=(const Pusher&) = delete;
    ~Pusher() { Join(); }
    void Join() {
        if (thread_.joinable()) {
            thread_.join();
        }
    }

private:
    std::thread thread_;
};

} // namespace brindlecast::test
