#include "tests/filters/renderer/renderer_bench.h"

#include <gtest/gtest.h>

namespace brindlecast::test {

TestModule& RendererModule() {
    static TestModule module(L"MpcVideoRenderer64.ax");
    return module;
}

RendererBench::RendererBench(const PictureKind& pictureKind, int width, int height)
    : kind(pictureKind), host(width, height), filter(RendererModule().CreateFilter(kClsidMpcVideoRenderer)),
      graph(std::make_unique<TestGraph>()) {
    const auto bytes = MakePicture(kind, kBlack).size();
    source = PushSource::Create({TypeOf(kind)}, static_cast<LONG>(bytes), 8);
    graph->Add(filter.Get(), L"Video");
    graph->Add(source.Get(), L"Source");
    videoWindow = Query<IVideoWindow>(filter, IID_IVideoWindow);
    basicVideo = Query<IBasicVideo>(filter, IID_IBasicVideo);
    seeking = Query<IMediaSeeking>(filter, IID_IMediaSeeking);
    options = Query<IExFilterConfig>(filter, __uuidof(IExFilterConfig));
    subtitles = Query<ISubRender11>(filter, __uuidof(ISubRender11));
    EXPECT_EQ(graph->ConnectDirect(&source->Pin(), PinsOf(filter.Get(), PINDIR_INPUT).at(0).Get()), S_OK)
        << kind;
}

RendererBench::~RendererBench() {
    graph->Stop();
    // Tests also drive the filters past the graph, which then takes them for stopped.
    filter->Stop();
    source->Stop();
    videoWindow->put_Owner(0);
}

void RendererBench::AttachWindow() {
    ASSERT_EQ(videoWindow->put_Owner(reinterpret_cast<OAHWND>(host.Handle())), S_OK);
}

void RendererBench::Place(int width, int height, const RECT& picture) {
    ASSERT_EQ(basicVideo->SetDestinationPosition(picture.left, picture.top, picture.right - picture.left,
                                                 picture.bottom - picture.top),
              S_OK);
    ASSERT_EQ(videoWindow->SetWindowPosition(0, 0, width, height), S_OK);
    ASSERT_EQ(options->Flt_SetBool("cmd_redraw", true), S_OK);
}

HRESULT RendererBench::Push(const std::vector<std::uint8_t>& picture, std::int64_t start, std::int64_t stop) {
    PushSource::Options times;
    times.start = start;
    times.stop = stop;
    return source->Push(picture.data(), picture.size(), times);
}

void RendererBench::ShowPaused(const std::vector<std::uint8_t>& picture) {
    ASSERT_TRUE(SUCCEEDED(graph->Pause()));
    source->Pin().DeliverNewSegment({0, 1'000'000'000, 1.0});
    ASSERT_EQ(Push(picture, 0, kind.frameDuration), S_OK);
    FILTER_STATE state{};
    ASSERT_EQ(filter->GetState(5000, &state), S_OK);
    ASSERT_EQ(state, State_Paused);
}

Color RendererBench::WaitForColor(int x, int y, const Color& expected, int tolerance) {
    Color seen;
    static_cast<void>(PumpUntil(
        [&] {
            seen = Screen().At(x, y);
            return Distance(seen, expected) <= tolerance;
        },
        3000));
    return seen;
}

} // namespace brindlecast::test
