#include "tests/graph/embedded_subtitles_fixture.h"
#include "tests/graph/fake_sample.h"

// Text tracks grabbed by the sample grabber and the null renderer of the system.

namespace brindlecast::testing {
namespace {

std::wstring NameInGraph(IBaseFilter* filter) {
    FILTER_INFO info{};
    filter->QueryFilterInfo(&info);
    if (info.pGraph != nullptr) {
        info.pGraph->Release();
    }
    return info.pGraph != nullptr ? info.achName : L"";
}

// With the filters of the system, as they are.
class SystemGrabber : public GrabberTest {
protected:
    // What the splitter's subtitle pin is connected to, an input of the grabber.
    [[nodiscard]] ComPtr<IMemInputPin> GrabberInput() const {
        std::vector<ComPtr<IPin>> pins;
        EXPECT_EQ(S_OK, ListPins(engine->subtitleGrabber.Get(), PINDIR_INPUT, pins));
        return pins.empty() ? nullptr : QueryFor<IMemInputPin>(pins.front().Get());
    }
    [[nodiscard]] static std::wstring PeerOf(IBaseFilter* filter, PIN_DIRECTION direction) {
        std::vector<ComPtr<IPin>> pins;
        EXPECT_EQ(S_OK, ListPins(filter, direction, pins));
        ComPtr<IPin> peer;
        if (pins.empty() || FAILED(pins.front()->ConnectedTo(&peer))) {
            return L"";
        }
        PIN_INFO info{};
        peer->QueryPinInfo(&info);
        ComPtr<IBaseFilter> owner;
        *owner.ReleaseAndGetAddressOf() = info.pFilter;
        return NameInGraph(owner.Get());
    }
};

TEST_F(SystemGrabber, CollectsTheSamplesOfTheTrack) {
    Open();
    ASSERT_TRUE(engine->LoadEmbeddedSubtitle(2));
    EXPECT_EQ(L"Subtitle Grabber", NameInGraph(engine->subtitleGrabber.Get()));
    EXPECT_EQ(L"LAV Splitter Source", PeerOf(engine->subtitleGrabber.Get(), PINDIR_INPUT));
    EXPECT_EQ(L"Subtitle Null", PeerOf(engine->subtitleGrabber.Get(), PINDIR_OUTPUT));
    CLSID clsid{};
    EXPECT_EQ(S_OK, engine->subtitleGrabber->GetClassID(&clsid));
    EXPECT_EQ((CLSID{0xC1F400A0, 0x3F08, 0x11D3, {0x9F, 0x0B, 0x00, 0x60, 0x08, 0x03, 0x9E, 0x37}}), clsid);
    ComPtr<IBaseFilter> sink;
    ASSERT_EQ(S_OK, engine->graph->FindFilterByName(L"Subtitle Null", &sink));
    EXPECT_EQ(S_OK, sink->GetClassID(&clsid));
    EXPECT_EQ((CLSID{0xC1F400A4, 0x3F08, 0x11D3, {0x9F, 0x0B, 0x00, 0x60, 0x08, 0x03, 0x9E, 0x37}}), clsid);
    ExpectLoaded(2);
    EXPECT_TRUE(engine->subtitleGrabberCallback->isAss);

    const ComPtr<IMemInputPin> input = GrabberInput();
    ASSERT_NE(nullptr, input);
    FakeSample sample(10'000'000, 20'000'000, {'H', 'i'});
    // The sink refuses samples of a stopped graph; the grabber has shown them by then.
    input->Receive(&sample);
    ASSERT_EQ(1U, engine->subtitleGrabberCallback->samples.size());
    EXPECT_EQ(10'000'000, engine->subtitleGrabberCallback->samples[0].start);
    EXPECT_EQ(20'000'000, engine->subtitleGrabberCallback->samples[0].stop);
    EXPECT_EQ((std::vector<std::uint8_t>{'H', 'i'}), engine->subtitleGrabberCallback->samples[0].data);
    EXPECT_EQ(Lines{}, ToolStarts());
}

TEST_F(SystemGrabber, DoesNotServeASecondFile) {
    Open();
    ASSERT_TRUE(engine->LoadEmbeddedSubtitle(0));
    const IBaseFilter* const grabber = engine->subtitleGrabber.Get();
    Open();
    ToolGives(kSubRipText);
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(1));
    EXPECT_EQ(grabber, engine->subtitleGrabber.Get());
    EXPECT_EQ(L"", NameInGraph(engine->subtitleGrabber.Get()));
    EXPECT_EQ(L"", PeerOf(engine->subtitleGrabber.Get(), PINDIR_INPUT));
    EXPECT_EQ(Lines{Command(1, L".srt")}, ToolStarts());
    ExpectLoaded(1);
}

} // namespace
} // namespace brindlecast::testing
