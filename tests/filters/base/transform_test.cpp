#include "filters/base/transform_filter.h"
#include "tests/filters/support/push_source.h"
#include "tests/filters/support/recording_sink.h"
#include "tests/filters/support/test_graph.h"
#include "tests/filters/support/test_module.h"

#include <cstring>
#include <gmock/gmock.h>
#include <thread>

namespace brindlecast {
namespace {

using testing::ElementsAre;
using Kind = RecordingSink::Kind;
using Microsoft::WRL::ComPtr;

constexpr CLSID kClsidDoubler = {
    0x6a3c1f12, 0x77de, 0x4b0a, {0x8e, 0x11, 0x42, 0x52, 0x54, 0x53, 0x44, 0x42}};
constexpr GUID kRaw = {0x1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
constexpr GUID kOther = {0x2, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};

// Sends every sample on, twice as long.
class Doubler final : public TransformFilter {
public:
    Doubler() : TransformFilter(kClsidDoubler, L"In", L"Out") {}

    HRESULT CheckInput(const MediaType& type) override {
        return type->majortype == MEDIATYPE_Audio ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
    }
    std::vector<MediaType> OutputTypes() override { return {Input().Type()}; }
    HRESULT CheckOutput(const MediaType& type) override {
        return type == Input().Type() ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
    }
    ALLOCATOR_PROPERTIES OutputBuffers() override { return {2, 16, 1, 0}; }
    HRESULT OnInputType(const MediaType&) override {
        ++typeChanges;
        return S_OK;
    }
    HRESULT Process(IMediaSample& sample) override {
        BYTE* from = nullptr;
        sample.GetPointer(&from);
        const LONG size = sample.GetActualDataLength();
        ComPtr<IMediaSample> out;
        const HRESULT result = Output().GetBuffer(out.GetAddressOf(), 2 * size);
        if (FAILED(result))
            return result;
        BYTE* to = nullptr;
        out->GetPointer(&to);
        std::memcpy(to, from, static_cast<std::size_t>(size));
        std::memcpy(to + size, from, static_cast<std::size_t>(size));
        out->SetActualDataLength(2 * size);
        return Output().Deliver(out.Get());
    }
    void Reset() override { ++resets; }
    HRESULT OnStart() override {
        ++starts;
        return S_OK;
    }
    void OnStop() override { ++stops; }

    int typeChanges = 0;
    int resets = 0;
    int starts = 0;
    int stops = 0;
};

class TransformTest : public testing::Test {
protected:
    void SetUp() override {
        source = PushSource::Create({MediaType(MEDIATYPE_Audio, kRaw)}, 16);
        doubler = AdoptReference(new Doubler);
        sink = RecordingSink::Create(MEDIATYPE_Audio);
        graph.Add(source.Get(), L"Source");
        graph.Add(doubler.Get(), L"Doubler");
        graph.Add(sink.Get(), L"Sink");
    }

    void Connect() {
        ASSERT_EQ(graph.ConnectDirect(&source->Pin(), &doubler->Input()), S_OK);
        ASSERT_EQ(graph.ConnectDirect(&doubler->Output(), &sink->Pin()), S_OK);
        graph.RemoveClock();
    }

    HRESULT Push(const char* text) { return source->Push(text, std::strlen(text), {}); }

    TestGraph graph;
    ComPtr<PushSource> source;
    ComPtr<Doubler> doubler;
    ComPtr<RecordingSink> sink;
};

TEST_F(TransformTest, UnconnectedPinsAnswerTheExactCodeAndTheFilterPausesWithoutWork) {
    for (IPin* pin : {static_cast<IPin*>(&doubler->Input()), static_cast<IPin*>(&doubler->Output())}) {
        IPin* peer = reinterpret_cast<IPin*>(1);
        EXPECT_EQ(pin->ConnectedTo(&peer), static_cast<HRESULT>(0x80040209));
        EXPECT_EQ(peer, nullptr);
        EXPECT_EQ(pin->Disconnect(), S_FALSE);
    }
    EXPECT_EQ(doubler->Pause(), S_OK);
    EXPECT_EQ(doubler->Stop(), S_OK);
    EXPECT_EQ(doubler->starts, 0);
}

TEST_F(TransformTest, OnlyTheOutputPinSeeks) {
    EXPECT_FALSE(Query<IMediaSeeking>(ComPtr<IBaseFilter>(doubler), IID_IMediaSeeking));
    EXPECT_FALSE(Query<IMediaSeeking>(ComPtr<IPin>(&doubler->Input()), IID_IMediaSeeking));
    const auto seeking = Query<IMediaSeeking>(ComPtr<IPin>(&doubler->Output()), IID_IMediaSeeking);
    ASSERT_TRUE(seeking);
    LONGLONG duration = 0;
    EXPECT_EQ(seeking->GetDuration(&duration), E_NOTIMPL) << "nothing upstream seeks";
}

TEST_F(TransformTest, TheOutputOffersNothingBeforeTheInputIsConnectedAndWrongTypesAreRefused) {
    EXPECT_TRUE(TypesOf(&doubler->Output()).empty());
    const auto picture = PushSource::Create({MediaType(MEDIATYPE_Video, kRaw)});
    graph.Add(picture.Get(), L"Picture");
    EXPECT_TRUE(FAILED(graph.ConnectDirect(&picture->Pin(), &doubler->Input())));
    EXPECT_FALSE(doubler->Input().IsConnected());
    Connect();
    EXPECT_EQ(TypesOf(&doubler->Output()).size(), 1u);
}

TEST_F(TransformTest, SamplesSegmentsAndTheEndPassThrough) {
    Connect();
    ASSERT_TRUE(SUCCEEDED(graph.Run()));
    EXPECT_EQ(doubler->starts, 1);
    source->Pin().DeliverNewSegment({5, 10, 2.0});
    EXPECT_EQ(Push("ab"), S_OK);
    EXPECT_EQ(Push("a longer text than a buffer was made for"), S_OK);
    EXPECT_EQ(source->Pin().DeliverEndOfStream(), S_OK);
    EXPECT_EQ(Push("late"), VFW_E_SAMPLE_REJECTED_EOS);
    const auto events = sink->Events();
    ASSERT_EQ(events.size(), 4u);
    EXPECT_EQ(events[0].segment.start, 5);
    EXPECT_EQ(events[0].segment.rate, 2.0);
    EXPECT_EQ(std::string(events[1].sample.bytes.begin(), events[1].sample.bytes.end()), "abab");
    EXPECT_EQ(events[2].sample.bytes.size(), 80u);
    EXPECT_EQ(events[3].kind, Kind::EndOfStream);
    ASSERT_TRUE(SUCCEEDED(graph.Stop()));
    EXPECT_EQ(doubler->stops, 1);
    EXPECT_EQ(Push("stopped"), VFW_E_NOT_COMMITTED);
}

TEST_F(TransformTest, AFlushUnblocksResetsAndOpensAgain) {
    Connect();
    ASSERT_TRUE(SUCCEEDED(graph.Run()));
    sink->Block(true);
    HRESULT pushed = S_OK;
    std::thread streaming([&] { pushed = Push("held"); });
    while (!sink->IsBlocking())
        Sleep(1);
    source->Pin().DeliverBeginFlush();
    streaming.join();
    EXPECT_EQ(pushed, S_FALSE);
    EXPECT_EQ(Push("while flushing"), S_FALSE);
    source->Pin().DeliverEndFlush();
    EXPECT_EQ(doubler->resets, 1);
    sink->Block(false);
    EXPECT_EQ(Push("again"), S_OK);
    EXPECT_EQ(sink->Samples().size(), 1u);
}

TEST_F(TransformTest, StopAloneReturnsWhileTheReceiverBlocks) {
    Connect();
    ASSERT_TRUE(SUCCEEDED(graph.Run()));
    sink->Block(true);
    std::thread streaming([&] { Push("held"); });
    while (!sink->IsBlocking())
        Sleep(1);
    EXPECT_EQ(doubler->Stop(), S_OK);
    streaming.join();
    sink->Block(false);
}

TEST_F(TransformTest, AFormatChangeOnASampleIsTakenOrAbortsPlayback) {
    Connect();
    ASSERT_TRUE(SUCCEEDED(graph.Run()));
    const MediaType other(MEDIATYPE_Audio, kOther);
    const int before = doubler->typeChanges;
    PushSource::Options options;
    options.formatChange = &other;
    EXPECT_EQ(source->Push("x", 1, options), S_OK);
    EXPECT_EQ(doubler->typeChanges, before + 1);
    EXPECT_EQ(doubler->Input().Type()->subtype, kOther);
    const MediaType picture(MEDIATYPE_Video, kOther);
    options.formatChange = &picture;
    EXPECT_TRUE(FAILED(source->Push("x", 1, options)));
    EXPECT_TRUE(graph.WaitForEvent(EC_ERRORABORT));
    EXPECT_TRUE(FAILED(Push("after")));
}

TEST_F(TransformTest, ConnectionRulesHold) {
    Connect();
    EXPECT_EQ(source->Pin().Connect(&doubler->Input(), nullptr), VFW_E_ALREADY_CONNECTED);
    ASSERT_TRUE(SUCCEEDED(graph.Pause()));
    EXPECT_EQ(source->Pin().Disconnect(), VFW_E_NOT_STOPPED);
    ASSERT_TRUE(SUCCEEDED(graph.Stop()));
    EXPECT_EQ(source->Pin().Disconnect(), S_OK);
    EXPECT_EQ(doubler->Input().Disconnect(), S_OK);
    EXPECT_EQ(source->Pin().Connect(&source->Pin(), nullptr), VFW_E_INVALID_DIRECTION);
}

TEST_F(TransformTest, PinsAreEnumeratedNamedAndFound) {
    ComPtr<IEnumPins> pins;
    ASSERT_EQ(doubler->EnumPins(pins.GetAddressOf()), S_OK);
    IPin* both[2] = {};
    ULONG fetched = 0;
    ASSERT_EQ(pins->Next(2, both, &fetched), S_OK);
    EXPECT_EQ(fetched, 2u);
    EXPECT_EQ(NameOf(both[0]), L"In");
    EXPECT_EQ(NameOf(both[1]), L"Out");
    both[0]->Release();
    both[1]->Release();
    EXPECT_EQ(pins->Next(1, both, nullptr), S_FALSE);
    EXPECT_EQ(pins->Next(2, both, nullptr), E_POINTER);
    EXPECT_EQ(pins->Reset(), S_OK);
    EXPECT_EQ(pins->Skip(3), S_FALSE);
    ComPtr<IPin> found;
    EXPECT_EQ(doubler->FindPin(L"Out", found.GetAddressOf()), S_OK);
    EXPECT_EQ(found.Get(), &doubler->Output());
    EXPECT_EQ(doubler->FindPin(L"None", found.ReleaseAndGetAddressOf()), VFW_E_NOT_FOUND);
    FILTER_INFO info{};
    ASSERT_EQ(doubler->QueryFilterInfo(&info), S_OK);
    EXPECT_STREQ(info.achName, L"Doubler");
    ASSERT_NE(info.pGraph, nullptr);
    info.pGraph->Release();
}

TEST(FilterBaseObjects, NothingIsLeftBehind) {
    const long before = ModuleObjectCount();
    {
        TestGraph graph;
        const auto source = PushSource::Create({MediaType(MEDIATYPE_Audio, kRaw)}, 16);
        const auto sink = RecordingSink::Create(MEDIATYPE_Audio);
        graph.Add(source.Get(), L"Source");
        graph.Add(sink.Get(), L"Sink");
        ASSERT_EQ(graph.ConnectDirect(&source->Pin(), &sink->Pin()), S_OK);
        graph.RemoveClock();
        ASSERT_TRUE(SUCCEEDED(graph.Run()));
        EXPECT_EQ(source->Push("x", 1, {}), S_OK);
        EXPECT_GT(ModuleObjectCount(), before);
    }
    EXPECT_EQ(ModuleObjectCount(), before);
}

} // namespace
} // namespace brindlecast
