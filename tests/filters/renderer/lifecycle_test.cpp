#include "filters/base/sample_allocator.h"
#include "tests/filters/renderer/renderer_bench.h"

#include <gtest/gtest.h>

#include <amvideo.h>
#include <evcode.h>
#include <vfwmsgs.h>

#include <atomic>
#include <cstring>

namespace brindlecast::test {
namespace {

int ThreadsAndHandles() {
    DWORD handles = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    return static_cast<int>(handles);
}

TEST(LifecycleTest, UnconnectedCompletesOnceAndShowsNothing) {
    HostWindow host(200, 100);
    TestGraph graph;
    const auto filter = RendererModule().CreateFilter(kClsidMpcVideoRenderer);
    graph.Add(filter.Get(), L"Video");
    const auto window = Query<IVideoWindow>(filter, IID_IVideoWindow);
    const auto video = Query<IBasicVideo>(filter, IID_IBasicVideo);
    LONG width = 77;
    LONG height = 88;
    EXPECT_TRUE(FAILED(video->GetVideoSize(&width, &height)));
    EXPECT_EQ(width, 77);
    EXPECT_EQ(height, 88);
    EXPECT_TRUE(FAILED(window->put_Owner(reinterpret_cast<OAHWND>(host.Handle()))));
    EXPECT_EQ(GetWindow(host.Handle(), GW_CHILD), nullptr);
    EXPECT_EQ(filter->Pause(), S_OK);
    FILTER_STATE state{};
    EXPECT_EQ(filter->GetState(0, &state), S_OK);
    EXPECT_EQ(filter->Stop(), S_OK);
    ASSERT_TRUE(SUCCEEDED(graph.Run()));
    EXPECT_TRUE(PumpUntil([&] { return graph.WaitForEvent(EC_COMPLETE, 20); }, 3000));
    EXPECT_FALSE(PumpUntil([&] { return graph.WaitForEvent(EC_COMPLETE, 20); }, 200));
    EXPECT_EQ(GetWindow(host.Handle(), GW_CHILD), nullptr);
    ComPtr<IPin> pin;
    EXPECT_EQ(PinsOf(filter.Get(), PINDIR_INPUT).at(0)->ConnectedTo(pin.GetAddressOf()), VFW_E_NOT_CONNECTED);
}

TEST(LifecycleTest, RefusesOtherTypes) {
    const auto filter = RendererModule().CreateFilter(kClsidMpcVideoRenderer);
    const auto pin = PinsOf(filter.Get(), PINDIR_INPUT).at(0);
    MediaType audio(MEDIATYPE_Audio, MEDIASUBTYPE_PCM);
    EXPECT_EQ(pin->QueryAccept(&audio.Get()), S_FALSE);
    PictureKind kind;
    MediaType good = TypeOf(kind);
    EXPECT_EQ(pin->QueryAccept(&good.Get()), S_OK);
    MediaType rgb24 = good;
    rgb24.Edit().subtype = MEDIASUBTYPE_RGB24;
    EXPECT_EQ(pin->QueryAccept(&rgb24.Get()), S_FALSE);
    MediaType torn = good;
    torn.Edit().cbFormat = 20;
    EXPECT_EQ(pin->QueryAccept(&torn.Get()), S_FALSE);
    MediaType empty = good;
    empty.Format<VIDEOINFOHEADER2>(FORMAT_VideoInfo2)->bmiHeader.biWidth = 0;
    EXPECT_EQ(pin->QueryAccept(&empty.Get()), S_FALSE);
    MediaType outside = good;
    outside.Format<VIDEOINFOHEADER2>(FORMAT_VideoInfo2)->rcSource = {0, 0, 5000, 10};
    EXPECT_EQ(pin->QueryAccept(&outside.Get()), S_FALSE);
}

TEST(LifecycleTest, PauseWaitsForTheFirstFrame) {
    PictureKind kind;
    RendererBench bench(kind);
    bench.AttachWindow();
    EXPECT_EQ(bench.filter->Pause(), S_FALSE);
    FILTER_STATE state{};
    EXPECT_EQ(bench.filter->GetState(30, &state), VFW_S_STATE_INTERMEDIATE);
    EXPECT_EQ(state, State_Paused);
    bench.source->Pause();
    ASSERT_EQ(bench.Push(MakePicture(kind, kGreen), 0, 400'000), S_OK);
    EXPECT_EQ(bench.filter->GetState(3000, &state), S_OK);
    EXPECT_LE(Distance(bench.WaitForColor(200, 150, kGreen), kGreen), 2);
    bench.filter->Stop();
    EXPECT_EQ(bench.filter->GetState(0, &state), S_OK);
    EXPECT_EQ(state, State_Stopped);
    EXPECT_LE(Distance(bench.WaitForColor(200, 150, kGreen), kGreen), 2) << "the picture stays";
}

TEST(LifecycleTest, EndOfStreamMakesAPauseComplete) {
    PictureKind kind;
    RendererBench bench(kind);
    EXPECT_EQ(bench.filter->Pause(), S_FALSE);
    bench.source->Pause();
    ASSERT_EQ(bench.source->Pin().DeliverEndOfStream(), S_OK);
    FILTER_STATE state{};
    EXPECT_EQ(bench.filter->GetState(1000, &state), S_OK);
}

TEST(LifecycleTest, CompleteComesAfterTheLastFramesTime) {
    PictureKind kind;
    RendererBench bench(kind);
    bench.AttachWindow();
    bench.ShowPaused(MakePicture(kind, kRed));
    ASSERT_EQ(bench.Push(MakePicture(kind, kGreen), 400'000, 5'000'000), S_OK);
    ASSERT_EQ(bench.source->Pin().DeliverEndOfStream(), S_OK);
    const ULONGLONG began = GetTickCount64();
    ASSERT_TRUE(SUCCEEDED(bench.graph->Run()));
    EXPECT_FALSE(bench.WaitForEvent(EC_COMPLETE, 300));
    EXPECT_TRUE(bench.WaitForEvent(EC_COMPLETE, 3000));
    EXPECT_GE(GetTickCount64() - began, 490U);
    EXPECT_LE(GetTickCount64() - began, 1500U);
    EXPECT_FALSE(bench.WaitForEvent(EC_COMPLETE, 100)) << "once";
    ASSERT_TRUE(SUCCEEDED(bench.graph->Pause()));
    ASSERT_TRUE(SUCCEEDED(bench.graph->Run()));
    EXPECT_TRUE(bench.WaitForEvent(EC_COMPLETE, 3000)) << "again in the next run";
}

TEST(LifecycleTest, FlushDropsWhatWaitsAndFreesTheSender) {
    PictureKind kind;
    RendererBench bench(kind);
    bench.AttachWindow();
    bench.ShowPaused(MakePicture(kind, kRed));
    std::atomic<HRESULT> last{E_PENDING};
    Pusher pusher([&] {
        HRESULT result = S_OK;
        for (int i = 1; result == S_OK; ++i) {
            result = bench.Push(MakePicture(kind, kBlue), i * 400'000, (i + 1) * 400'000);
        }
        last = result;
    });
    Pump(100);
    EXPECT_EQ(last.load(), E_PENDING) << "held up while paused";
    bench.source->Pin().DeliverBeginFlush();
    ASSERT_TRUE(PumpUntil([&] { return last.load() != E_PENDING; }, 1000));
    EXPECT_EQ(last.load(), S_FALSE);
    pusher.Join();
    bench.source->Pin().DeliverEndFlush();
    FILTER_STATE state{};
    EXPECT_EQ(bench.filter->GetState(0, &state), VFW_S_STATE_INTERMEDIATE) << "no frame of the new place yet";
    EXPECT_LE(Distance(bench.WaitForColor(200, 150, kRed), kRed), 2) << "the old picture stays meanwhile";
    bench.source->Pin().DeliverNewSegment({70'000'000, 1'000'000'000, 1.0});
    ASSERT_EQ(bench.Push(MakePicture(kind, kWhite), 0, 400'000), S_OK);
    EXPECT_LE(Distance(bench.WaitForColor(200, 150, kWhite), kWhite), 2) << "shown at once though paused";
    EXPECT_EQ(bench.filter->GetState(1000, &state), S_OK);
}

TEST(LifecycleTest, StopFreesAWaitingSender) {
    PictureKind kind;
    RendererBench bench(kind);
    bench.AttachWindow();
    bench.ShowPaused(MakePicture(kind, kRed));
    std::atomic<bool> left{false};
    Pusher pusher([&] {
        for (int i = 1;
             bench.Push(MakePicture(kind, kBlue), i * 100'000'000LL, (i + 1) * 100'000'000LL) == S_OK; ++i) {
        }
        left = true;
    });
    ASSERT_TRUE(SUCCEEDED(bench.graph->Run()));
    Pump(100);
    EXPECT_FALSE(left.load());
    const ULONGLONG began = GetTickCount64();
    ASSERT_TRUE(SUCCEEDED(bench.graph->Stop()));
    EXPECT_LE(GetTickCount64() - began, 500U);
    EXPECT_TRUE(PumpUntil([&] { return left.load(); }, 1000));
}

TEST(LifecycleTest, OneBufferIsEnough) {
    PictureKind kind;
    RendererBench bench(kind);
    bench.AttachWindow();
    const auto picture = MakePicture(kind, kGreen);
    ComPtr<IMemAllocator> allocator;
    *allocator.GetAddressOf() = new SampleAllocator;
    ALLOCATOR_PROPERTIES wanted{1, static_cast<long>(picture.size()), 1, 0};
    ALLOCATOR_PROPERTIES actual{};
    ASSERT_EQ(allocator->SetProperties(&wanted, &actual), S_OK);
    ASSERT_EQ(allocator->Commit(), S_OK);
    const auto input = Query<IMemInputPin>(PinsOf(bench.filter.Get(), PINDIR_INPUT).at(0), IID_IMemInputPin);
    ASSERT_TRUE(input);
    ASSERT_EQ(input->NotifyAllocator(allocator.Get(), FALSE), S_OK);
    ASSERT_TRUE(SUCCEEDED(bench.filter->Pause()));
    for (int i = 0; i < 3; ++i) {
        ComPtr<IMediaSample> sample;
        ASSERT_EQ(allocator->GetBuffer(sample.GetAddressOf(), nullptr, nullptr, AM_GBF_NOWAIT), S_OK)
            << "the only buffer came back, " << i;
        BYTE* data = nullptr;
        ASSERT_EQ(sample->GetPointer(&data), S_OK);
        std::memcpy(data, picture.data(), picture.size());
        sample->SetActualDataLength(static_cast<long>(picture.size()));
        REFERENCE_TIME start = i * 400'000LL;
        REFERENCE_TIME stop = start + 400'000;
        sample->SetTime(&start, &stop);
        ASSERT_EQ(input->Receive(sample.Get()), S_OK);
        std::memset(data, 0,
                    picture.size()); // the sender uses it again: what is shown must not change with it
    }
    EXPECT_LE(Distance(bench.WaitForColor(200, 150, kGreen), kGreen), 2);
}

// Everything comes back: objects, window handles, kernel handles.
TEST(LifecycleTest, FiftyCyclesLeaveNothing) {
    PictureKind kind;
    const auto cycle = [&](int number) {
        RendererBench bench(kind, 200, 120);
        bench.AttachWindow();
        bench.ShowPaused(MakePicture(kind, number % 2 == 0 ? kRed : kBlue));
        if (number % 3 == 0) {
            bench.graph->Run();
        }
        const Color expected = number % 2 == 0 ? kRed : kBlue;
        EXPECT_LE(Distance(bench.WaitForColor(100, 60, expected), expected), 2) << number;
    };
    for (int i = 0; i < 5; ++i) {
        cycle(i);
    }
    const int handles = ThreadsAndHandles();
    const int gdi = static_cast<int>(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS));
    const int user = static_cast<int>(GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS));
    for (int i = 0; i < 50; ++i) {
        cycle(i);
    }
    EXPECT_LE(ThreadsAndHandles() - handles, 5);
    EXPECT_LE(static_cast<int>(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS)) - gdi, 5);
    EXPECT_LE(static_cast<int>(GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS)) - user, 5);
    EXPECT_EQ(RendererModule().CanUnload(), S_OK);
}

} // namespace
} // namespace brindlecast::test
