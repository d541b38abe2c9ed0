#include "engine/graph_pins.h"
#include "engine/stream_select.h"
#include "filters/include/lav_audio.h"
#include "filters/include/lav_video.h"
#include "tests/e2e/waits.h"
#include "tests/filters/roads/road_fixture.h"

#include <uuids.h>

#include <algorithm>
#include <array>

namespace brindlecast::testing {
namespace {

using std::chrono::milliseconds;

// Makes GUIDs of the filters in a graph comparable as a whole, whatever their order.
std::vector<std::wstring> SortedNames(std::vector<CLSID> identifiers) {
    std::vector<std::wstring> names;
    for (const CLSID& identifier : identifiers) {
        std::array<wchar_t, 40> text{};
        StringFromGUID2(identifier, text.data(), static_cast<int>(text.size()));
        names.emplace_back(text.data());
    }
    std::ranges::sort(names);
    return names;
}

class Roads : public RoadTest {
protected:
    [[nodiscard]] std::vector<std::wstring> FiltersInGraph() const {
        std::vector<CLSID> identifiers;
        ComPtr<IEnumFilters> filters;
        EXPECT_EQ(engine->graph->EnumFilters(&filters), S_OK);
        for (ComPtr<IBaseFilter> filter;
             filters->Next(1, filter.ReleaseAndGetAddressOf(), nullptr) == S_OK;) {
            CLSID identifier{};
            filter->GetClassID(&identifier);
            identifiers.push_back(identifier);
        }
        return SortedNames(identifiers);
    }

    [[nodiscard]] std::vector<std::wstring> SplitterPins() const {
        std::vector<std::wstring> names;
        std::vector<ComPtr<IPin>> pins;
        EXPECT_EQ(ListPins(engine->splitter.Get(), PINDIR_OUTPUT, pins), S_OK);
        for (const ComPtr<IPin>& pin : pins) {
            names.push_back(PinName(pin.Get()));
            EXPECT_FALSE(IsUnconnected(pin.Get())) << "an output of the splitter was left over";
        }
        return names;
    }

    [[nodiscard]] std::ptrdiff_t Builds() const { return CountTraced(L"Connection status"); }

    // Runs for a while and tells how far the position went, in seconds, and how long it took.
    struct Progress {
        Seconds position;
        Seconds clock;
    };
    [[nodiscard]] Progress RunFor(milliseconds time) const {
        EXPECT_TRUE(PumpUntil(milliseconds(5000), [this] { return engine->GetPosition() > 0.1; }));
        const auto start = std::chrono::steady_clock::now();
        const Seconds from = engine->GetPosition();
        PumpFor(time);
        const Seconds to = engine->GetPosition();
        return {to - from, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count()};
    }
};

TEST_F(Roads, AFilmWithThreeSoundAndFourSubtitleTracksIsConnectedWhole) {
    ASSERT_TRUE(Open(L"tracks.mkv"));
    EXPECT_EQ(SplitterPins(), (std::vector<std::wstring>{L"Video", L"Audio"}));
    EXPECT_EQ(FiltersInGraph(),
              SortedNames({kClsidLavSplitterSource, kClsidLavVideo, kClsidLavAudio, kClsidAudioSwitcher,
                           kClsidMpcVideoRenderer, CLSID_DSoundRender}));
    const StreamWalk streams(engine->splitter.Get());
    EXPECT_EQ(streams.Count(), 8U);
    EXPECT_EQ(streams.CountOf(StreamKind::Audio), 3);
    EXPECT_EQ(streams.CountOf(StreamKind::Subtitle), 4);
    EXPECT_EQ(streams.FirstEnabled(StreamKind::Audio), 0) << "the Korean one";
    EXPECT_EQ(streams.FirstEnabled(StreamKind::Subtitle), -1);
    EXPECT_NE(streams.NameOf(StreamKind::Audio, 1).find(L"영어 음성"), std::wstring::npos);
    EXPECT_EQ(engine->keyFrames.size(), 5U);
    EXPECT_TRUE(std::ranges::is_sorted(engine->keyFrames));
    EXPECT_EQ(engine->frameRate, 25.0);
    EXPECT_TRUE(engine->hasVideo);
    EXPECT_EQ(Builds(), 1);
    ASSERT_TRUE(engine->Play());
    EXPECT_TRUE(Traced(L"[Brindlecast] Active Decoder: avcodec\n"));
    const Progress progress = RunFor(milliseconds(1500));
    EXPECT_NEAR(progress.position, progress.clock, 0.05);
}

TEST_F(Roads, SoundWithCoverArtIsBuiltTwiceAndPlaysToItsEnd) {
    ASSERT_TRUE(Open(L"song_cover.mp3"));
    EXPECT_EQ(SplitterPins(), std::vector<std::wstring>{L"Audio"});
    EXPECT_FALSE(engine->hasVideo);
    EXPECT_EQ(Builds(), 2) << "under hardware decoding, a second build tries software";
    EXPECT_EQ(engine->hwAccel, 0U);
    EXPECT_TRUE(engine->keyFrames.empty());
    LONG width = -1;
    LONG height = -1;
    EXPECT_TRUE(FAILED(engine->basicVideo->GetVideoSize(&width, &height)));
    EXPECT_EQ(width, -1) << "a failing call writes nothing";
    EXPECT_EQ(GetWindow(host, GW_CHILD), nullptr) << "no picture, no window";
    ASSERT_TRUE(engine->Play());
    EXPECT_TRUE(engine->Seek(engine->GetDuration() - 1.0));
    EXPECT_TRUE(WaitForEnd(milliseconds(6000)));
}

TEST_F(Roads, AFilmWithoutSoundLosesTheSoundFiltersAndRunsInRealTime) {
    ASSERT_TRUE(Open(L"silent.mkv"));
    EXPECT_EQ(SplitterPins(), std::vector<std::wstring>{L"Video"});
    EXPECT_EQ(FiltersInGraph(), SortedNames({kClsidLavSplitterSource, kClsidLavVideo, kClsidAudioSwitcher,
                                             kClsidMpcVideoRenderer}));
    EXPECT_EQ(engine->lavAudio.Get(), nullptr);
    EXPECT_NE(FindUnconnectedPin(engine->audioSwitcher.Get(), PINDIR_INPUT).Get(), nullptr);
    ASSERT_TRUE(engine->Play());
    const Progress progress = RunFor(milliseconds(1500));
    EXPECT_NEAR(progress.position, progress.clock, 0.05);
    EXPECT_TRUE(engine->Seek(9.0));
    EXPECT_TRUE(WaitForEnd(milliseconds(6000)));
}

TEST_F(Roads, SeeksLandOnKeyframesAndCyclesLeaveNothing) {
    for (int cycle = 0; cycle < 10; ++cycle) {
        ASSERT_TRUE(Open(cycle % 2 == 0 ? L"film.mkv" : L"film.mp4"));
        ASSERT_TRUE(engine->Play());
        EXPECT_TRUE(engine->Seek(8.9));
        const Seconds keyFrame = static_cast<Seconds>(engine->keyFrames[4]) / 1e7;
        const Seconds position = engine->GetPosition();
        EXPECT_GE(position, keyFrame - 0.001);
        EXPECT_LT(position, keyFrame + 0.5);
        engine->CloseGraph();
        EXPECT_EQ(GetWindow(host, GW_CHILD), nullptr) << "the renderer's window goes with its graph";
    }
}

} // namespace
} // namespace brindlecast::testing
