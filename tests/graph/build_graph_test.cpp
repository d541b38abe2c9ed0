#include "tests/graph/build_fixture.h"

#include <algorithm>

// The whole build, its way without sound, and its end: volume and window.

namespace brindlecast::testing {
namespace {

class BuildGraph : public BuildTest {
protected:
    // A film without sound whose streams are still listed.
    void UseSilentFilm(const wchar_t* streams = L"video:1:H.264;audio:1:Korean") {
        SetText("LAVSplitter.pins", L"Video:video/1920/1080/400000");
        SetText("LAVSplitter.streams", streams);
    }
    void ExpectSilentFilmOpensWith(const Lines& streamLines) {
        ExpectOpensWith(Join({ToPriming(),
                              expected::VideoPin(),
                              {L"> Connection status - Video: 1, Audio: 0"},
                              streamLines,
                              WindowEnd()}));
    }
};

TEST_F(BuildGraph, ASplitterWithoutKeyFrameTableGoesOn) {
    for (const long answer : {1L, 2L}) {
        SetNumber("LAVSplitter.noKeyFrameInfo", answer);
        ClearCalls();
        EXPECT_TRUE(engine->OpenFile(kFilm));
        EXPECT_EQ(nullptr, engine->keyFrameInfo);
        EXPECT_EQ(Lines{}, CallsOf(L"LAVSplitter.GetKeyFrame"));
        EXPECT_TRUE(engine->keyFrames.empty());
    }
}

TEST_F(BuildGraph, ARendererThatHandsNothingOutIsUsedWithoutOptionsAndSubtitles) {
    SetNumber("MpcVideoRenderer64.noConfig", 2);
    SetNumber("MpcVideoRenderer64.noSubtitles", 2);
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(Lines{}, CallsOf(L"MpcVideoRenderer64.Flt"));
    EXPECT_EQ(Lines{}, CallsOf(L"MpcVideoRenderer64.SetCallback11"));
    EXPECT_EQ(nullptr, engine->rendererConfig);
    EXPECT_EQ(nullptr, engine->subtitleCallback);
    EXPECT_TRUE(engine->hasVideo);
}

TEST_F(BuildGraph, ARendererThatCanNotListItsPinsIsUsed) {
    for (const char* key : {"MpcVideoRenderer64.enumPins", "MpcVideoRenderer64.pinsAreNull"}) {
        SetNumber(key, E_FAIL);
        ExpectOpensWith(Join(
            {ToPriming(), expected::AudioChain(), expected::VideoPin(), Connected(), expected::GraphEnd()}));
        EXPECT_DOUBLE_EQ(0.0, engine->GetPosition());
        SetNumber(key, 0);
    }
}

TEST_F(BuildGraph, PrimingPausesAndStopsBeforeAnythingIsConnected) {
    ASSERT_TRUE(engine->OpenFile(kFilm));
    for (const wchar_t* module : {L"MpcVideoRenderer64", L"LAVSplitter", L"LAVVideo", L"LAVAudio",
                                  L"AudioSwitcher", L"AudioRenderer"}) {
        EXPECT_EQ((Lines{L"Pause", L"Stop"}), StatesOf(module)) << module;
        const Lines all = CallsAndStates();
        const auto stop = std::ranges::find(all, std::wstring(module) + L".Stop");
        const auto connection = std::ranges::find_if(
            all, [](const std::wstring& line) { return line.find(L" connected to ") != line.npos; });
        EXPECT_LT(stop, connection) << module;
    }
}

TEST_F(BuildGraph, AFilmWithoutSoundOpensWithoutSoundFilters) {
    UseSilentFilm(L"video:1:H.264");
    ExpectSilentFilmOpensWith({});
    EXPECT_EQ(nullptr, engine->lavAudio);
    EXPECT_EQ(L"leaves the graph", StatesOf(L"LAVAudio").back());
    EXPECT_EQ(L"leaves the graph", StatesOf(L"AudioRenderer").back());
    EXPECT_NE(nullptr, engine->audioSwitcher);
    EXPECT_EQ(Lines{}, CallsOf(L"AudioRenderer.put_"));
}

TEST_F(BuildGraph, EnabledAudioStreamsOfAFilmWithoutSoundAreDisabled) {
    UseSilentFilm(L"audio:1:Korean;video:1:H.264;audio:3:English;subtitle:1:Korean;audio:1:-");
    ExpectSilentFilmOpensWith(
        {L"LAVSplitter.Enable(0, 0)", L"> Disabled audio stream 0: Korean (hr=0x00000000)",
         L"LAVSplitter.Enable(2, 0)", L"> Disabled audio stream 2: English (hr=0x00000000)",
         L"LAVSplitter.Enable(4, 0)", L"> Disabled audio stream 4: (null) (hr=0x00000000)"});
}

TEST_F(BuildGraph, StreamsThatAreNotEnabledAreLeftAlone) {
    UseSilentFilm(L"audio:0:Korean;audio:2:English;audio:4294967294:Japanese");
    ExpectSilentFilmOpensWith({});
}

TEST_F(BuildGraph, StreamsThatCanNotBeCountedAreLeftAlone) {
    UseSilentFilm();
    SetNumber("LAVSplitter.countResult", E_FAIL);
    ExpectSilentFilmOpensWith({});
    SetNumber("LAVSplitter.countResult", 0);
    SetNumber("LAVSplitter.streamCount", 0);
    ExpectSilentFilmOpensWith({});
}

TEST_F(BuildGraph, WithoutStreamSelectionTheNoSoundWayGoesOn) {
    UseSilentFilm();
    for (const long answer : {1L, 2L}) {
        SetNumber("LAVSplitter.noStreamSelect", answer);
        ExpectSilentFilmOpensWith({});
    }
}

TEST_F(BuildGraph, AStreamThatCanNotBeDisabledIsReported) {
    UseSilentFilm();
    SetNumber("LAVSplitter.enable", E_NOTIMPL);
    ExpectSilentFilmOpensWith(
        {L"LAVSplitter.Enable(1, 0)", L"> Disabled audio stream 1: Korean (hr=0x80004001)"});
}

TEST_F(BuildGraph, AStreamThatCanNotBeAskedIsPassedOver) {
    UseSilentFilm(L"audio:1:Korean;audio:1:English");
    SetNumber("LAVSplitter.infoFails", 0);
    ExpectSilentFilmOpensWith(
        {L"LAVSplitter.Enable(1, 0)", L"> Disabled audio stream 1: English (hr=0x00000000)"});
}

TEST_F(BuildGraph, WithoutHostTheWindowIsLeftAlone) {
    Lines end = expected::GraphEnd();
    end.resize(1); // the volume
    engine->videoHost = nullptr;
    ExpectOpensWith(Join({ToPriming(), expected::AudioChain(), expected::VideoPin(), Connected(), end}));
}

TEST_F(BuildGraph, ARendererWithoutWindowIsUsed) {
    SetNumber("MpcVideoRenderer64.noVideoWindow", 1);
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_TRUE(engine->hasVideo);
    EXPECT_EQ(Lines{}, CallsOf(L"MpcVideoRenderer64.put_"));
    EXPECT_FALSE(engine->SetRenderRect(0, 0, 640, 480));
}

TEST_F(BuildGraph, AHostThatIsGoneIsLeftAlone) {
    const HWND gone =
        CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    DestroyWindow(gone);
    engine->videoHost = gone;
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(Lines{}, CallsOf(L"MpcVideoRenderer64.put_"));
}

TEST_F(BuildGraph, VolumeAndMuteAreAppliedAndStoredAtEachOpen) {
    engine->volume = 0.1F;
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"AudioRenderer.put_Volume(-2000)"}), CallsOf(L"AudioRenderer.put_"));
    EXPECT_EQ((std::vector<std::wstring>{L"Volume"}), settings.writes);
    EXPECT_EQ(10U, std::get<std::uint32_t>(settings.values[L"Volume"]));
    engine->muted = true;
    ClearCalls();
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"AudioRenderer.put_Volume(-10000)"}), CallsOf(L"AudioRenderer.put_"));
}

} // namespace
} // namespace brindlecast::testing
