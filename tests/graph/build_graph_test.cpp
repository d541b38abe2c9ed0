#include "tests/graph/graph_fixture.h"

#include <uuids.h>
#include <vfwmsgs.h>

// Each step of building the graph that can fail or go another way.

namespace brindlecast::testing {
namespace {

class BuildGraph : public GraphTest {
protected:
    BuildGraph() {
        // One build to an open: what fails here fails without a second attempt in software.
        settings.values[L"LAV_HWAccel"] = std::uint32_t{0};
    }

    // Both attempts of an open that fails with the same list.
    void ExpectFailsWith(const Lines& build) {
        EXPECT_FALSE(engine->OpenFile(kFilm));
        ExpectLines(Join({{L"> OpenFile with HWAccel=0"}, build, build}), Calls());
        EXPECT_EQ(nullptr, engine->graph);
    }
    void ExpectOpensWith(const Lines& build) {
        EXPECT_TRUE(engine->OpenFile(kFilm));
        ExpectLines(Join({{L"> OpenFile with HWAccel=0"}, build}), Calls());
    }

    // Up to the probe of the picture.
    static Lines ToProbe() {
        return Join({expected::RendererStart(), expected::SplitterStart(), expected::ThreeKeyFrames()});
    }
    static Lines Software() { return expected::VideoDecoderStart(0, L"None"); }
    static Lines ToPriming() {
        return Join({ToProbe(),
                     {L"> Detected video resolution: 1920x1080"},
                     Software(),
                     expected::AudioDecoderStart(),
                     expected::SwitcherStart(),
                     expected::SoundStart(),
                     expected::Priming()});
    }
    static Lines Connected() { return {L"> Connection status - Video: 1, Audio: 1"}; }
    static Lines WindowEnd() {
        const Lines all = expected::GraphEnd();
        return Lines(all.begin() + 1, all.end()); // without the sound
    }
    static Lines MissingModule(const std::wstring& name) {
        return {L"> Failed to load: <dir>\\" + name + L" (error=126)"};
    }
};

TEST_F(BuildGraph, WithoutFilterGraphNothingHappens) {
    RegisterFailingGraph();
    ExpectFailsWith({});
}

TEST_F(BuildGraph, WithoutRendererModuleTheBuildFails) {
    HideModule(L"MpcVideoRenderer64.ax");
    ExpectFailsWith(MissingModule(L"MpcVideoRenderer64.ax"));
}

TEST_F(BuildGraph, AModuleWithoutEntryPointFailsInSilence) {
    ReplaceModule(L"MpcVideoRenderer64.ax", L"fake_recorder.dll");
    ExpectFailsWith({});
}

TEST_F(BuildGraph, AModuleThatKnowsNotTheClassFails) {
    SetNumber("MpcVideoRenderer64.classObject", CLASS_E_CLASSNOTAVAILABLE);
    ExpectFailsWith({L"> DllGetClassObject failed: 0x80040111"});
}

TEST_F(BuildGraph, ARendererThatCanNotBeMadeFails) {
    SetNumber("MpcVideoRenderer64.create", E_OUTOFMEMORY);
    ExpectFailsWith({L"> CreateInstance failed: 0x8007000E"});
}

TEST_F(BuildGraph, ANullRendererFails) {
    SetNumber("MpcVideoRenderer64.createNull", 1);
    ExpectFailsWith({L"> Loaded filter from: <dir>\\MpcVideoRenderer64.ax"});
}

TEST_F(BuildGraph, ARendererThatTheGraphRefusesStaysUnconfigured) {
    SetNumber("MpcVideoRenderer64.join", E_FAIL);
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"MpcVideoRenderer64.joins the graph as MPC Video Renderer"}),
              CallsOf(L"MpcVideoRenderer64."));
    EXPECT_EQ(nullptr, engine->rendererConfig);
    EXPECT_EQ(nullptr, engine->subtitleCallback);
    EXPECT_NE(nullptr, engine->videoRenderer);
}

TEST_F(BuildGraph, WithoutSplitterModuleTheBuildFails) {
    HideModule(L"LAVSplitter.ax");
    ExpectFailsWith(Join({expected::RendererStart(), MissingModule(L"LAVSplitter.ax")}));
}

TEST_F(BuildGraph, ANullSplitterFails) {
    SetNumber("LAVSplitter.createNull", 1);
    ExpectFailsWith(Join({expected::RendererStart(), {L"> Loaded filter from: <dir>\\LAVSplitter.ax"}}));
}

TEST_F(BuildGraph, ASplitterThatTheGraphRefusesStillLoadsTheFile) {
    SetNumber("LAVSplitter.join", E_FAIL);
    (void)engine->OpenFile(kFilm);
    EXPECT_EQ((Lines{L"LAVSplitter.Load(C:\\films\\film.mkv, null)"}).front(),
              CallsOf(L"LAVSplitter.Load").front());
}

TEST_F(BuildGraph, ASplitterThatIsNoFileSourceFailsInSilence) {
    SetNumber("LAVSplitter.noFileSource", 1);
    Lines splitter = expected::SplitterStart();
    splitter.pop_back(); // Load
    ExpectFailsWith(Join({expected::RendererStart(), splitter}));
}

TEST_F(BuildGraph, AFileThatCanNotBeLoadedFails) {
    SetNumber("LAVSplitter.load", VFW_E_CANNOT_LOAD_SOURCE_FILTER);
    ExpectFailsWith(
        Join({expected::RendererStart(), expected::SplitterStart(), {L"> Failed to load file: 0x80040241"}}));
}

TEST_F(BuildGraph, ASplitterWithoutKeyFrameTableGoesOn) {
    SetNumber("LAVSplitter.noKeyFrameInfo", 1);
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(nullptr, engine->keyFrameInfo);
    EXPECT_EQ(Lines{}, CallsOf(L"LAVSplitter.GetKeyFrame"));
    EXPECT_TRUE(engine->keyFrames.empty());
}

TEST_F(BuildGraph, TheLastVideoPinGivesTheFrameRate) {
    SetText("LAVSplitter.pins",
            L"Video:video/1920/1080/400000;Second Video:videoinfo/640/480/200000;Audio:audio");
    // The second picture finds no renderer; the film opens all the same.
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_DOUBLE_EQ(50.0, engine->frameRate);
    EXPECT_EQ((Lines{L"> Detected video resolution: 1920x1080", L"> Detected video resolution: 640x480"}),
              CallsOf(L"> Detected"));
}

TEST_F(BuildGraph, OnlyTheFirstVideoTypeOfAPinIsRead) {
    SetText("LAVSplitter.pins", L"Video:subtitle,video/1920/1080/400000,video/8000/8000/100000;Audio:audio");
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_DOUBLE_EQ(25.0, engine->frameRate);
    EXPECT_EQ((Lines{L"> Detected video resolution: 1920x1080"}), CallsOf(L"> Detected"));
    EXPECT_EQ(0U, engine->hwAccel);
}

TEST_F(BuildGraph, ASizeOfZeroIsNotReported) {
    SetText("LAVSplitter.pins", L"Video:video/0/1080/400000;Audio:audio");
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(Lines{}, CallsOf(L"> Detected"));
    EXPECT_DOUBLE_EQ(25.0, engine->frameRate);
}

TEST_F(BuildGraph, LargePicturesForceD3D11) {
    struct Size {
        const wchar_t* pins;
        std::uint32_t method;
    };
    for (const Size& size : {Size{L"Video:video/3840/2160/400000;Audio:audio", 0},
                             Size{L"Video:video/3841/2160/400000;Audio:audio", 5},
                             Size{L"Video:video/3840/2161/400000;Audio:audio", 5},
                             Size{L"Video:videoinfo/7680/4320/400000;Audio:audio", 5}}) {
        SetText("LAVSplitter.pins", size.pins);
        EXPECT_TRUE(engine->OpenFile(kFilm));
        EXPECT_EQ(size.method, engine->hwAccel);
    }
    EXPECT_EQ((Lines{L"LAVVideo.SetHWAccel(0)", L"LAVVideo.SetHWAccel(5)", L"LAVVideo.SetHWAccel(5)",
                     L"LAVVideo.SetHWAccel(5)"}),
              CallsOf(L"LAVVideo.SetHWAccel("));
}

TEST_F(BuildGraph, WithoutVideoDecoderTheFilmSoundsAlone) {
    HideModule(L"LAVVideo.ax");
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_FALSE(engine->hasVideo);
    EXPECT_EQ(nullptr, engine->lavVideo);
    EXPECT_EQ(MissingModule(L"LAVVideo.ax"), CallsOf(L"> Failed to load"));
    EXPECT_EQ((Lines{L"> Failed to render pin 'Video': 0x80040218"}), CallsOf(L"> Failed to render"));
}

TEST_F(BuildGraph, WithoutVideoDecoderTheSoftwareRebuildFollows) {
    settings.values[L"LAV_HWAccel"] = std::uint32_t{5};
    HideModule(L"LAVVideo.ax");
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(0U, engine->hwAccel);
    EXPECT_EQ(2U, CallsOf(L"LAVSplitter.Load").size());
}

TEST_F(BuildGraph, WithoutAudioDecoderModuleAnAudioPinFailsTheBuild) {
    HideModule(L"LAVAudio.ax");
    EXPECT_FALSE(engine->OpenFile(kFilm));
    EXPECT_EQ(2U, CallsOf(L"> Still unconnected pin: Audio").size());
    EXPECT_EQ(2U, CallsOf(L"> Failed to load: <dir>\\LAVAudio.ax (error=126)").size());
}

TEST_F(BuildGraph, WithoutSwitcherTheDecoderGoesStraightToTheRenderer) {
    HideModule(L"AudioSwitcher.ax");
    ExpectOpensWith(Join({ToProbe(),
                          {L"> Detected video resolution: 1920x1080"},
                          Software(),
                          expected::AudioDecoderStart(),
                          MissingModule(L"AudioSwitcher.ax"),
                          expected::SoundStart(),
                          expected::Priming(),
                          {L"LAVSplitter.Audio connected to LAV Audio Decoder",
                           L"LAVAudio.Output connected to DirectSound Renderer"},
                          expected::VideoPin(),
                          Connected(),
                          expected::GraphEnd()}));
    EXPECT_EQ(nullptr, engine->audioSwitcher);
    EXPECT_EQ(nullptr, engine->audioSwitcherControl);
}

TEST_F(BuildGraph, ASwitcherWithoutControlIsUsedUnconfigured) {
    SetNumber("AudioSwitcher.noControl", 1);
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(nullptr, engine->audioSwitcherControl);
    EXPECT_NE(nullptr, engine->audioSwitcher);
    EXPECT_EQ((Lines{L"AudioSwitcher.joins the graph as AudioSwitcher",
                     L"AudioSwitcher.Output connected to DirectSound Renderer"}),
              CallsOf(L"AudioSwitcher."));
    EXPECT_FLOAT_EQ(4.0F, engine->audioMaxNormFactor);
}

TEST_F(BuildGraph, ASwitcherThatRefusesTheDecoderIsPassedBy) {
    SetNumber("AudioSwitcher.refuse", VFW_E_TYPE_NOT_ACCEPTED);
    ExpectOpensWith(
        Join({ToPriming(),
              {L"LAVSplitter.Audio connected to LAV Audio Decoder",
               // The graph manager's own attempt to reach the switcher by a detour, taken back at once.
               L"LAVAudio.Output connected to DirectSound Renderer",
               L"> Failed to connect LAV Audio → AudioSwitcher: 0x80040217",
               L"LAVAudio.Output connected to DirectSound Renderer"},
              expected::VideoPin(),
              Connected(),
              expected::GraphEnd()}));
    EXPECT_NE(nullptr, engine->audioSwitcher);
}

TEST_F(BuildGraph, ASwitcherThatDoesNotReachTheRendererLeavesTheGraph) {
    SetNumber("AudioSwitcher.refuseOutput", VFW_E_NO_TRANSPORT);
    ExpectOpensWith(Join(
        {ToPriming(),
         {L"LAVSplitter.Audio connected to LAV Audio Decoder", L"LAVAudio.Output connected to AudioSwitcher",
          L"> Failed to connect AudioSwitcher → Renderer: 0x80040217",
          L"LAVAudio.Output connected to DirectSound Renderer"},
         expected::VideoPin(),
         Connected(),
         expected::GraphEnd()}));
    EXPECT_EQ(nullptr, engine->audioSwitcher);
    EXPECT_EQ(nullptr, engine->audioSwitcherControl);
}

TEST_F(BuildGraph, ADecoderThatRefusesTheStreamFailsTheBuild) {
    SetNumber("LAVAudio.refuse", VFW_E_TYPE_NOT_ACCEPTED);
    SetText("LAVSplitter.streams", L"video:1:H.264;audio:1:Korean;audio:0:English;audio:1:-");
    ExpectFailsWith(
        Join({ToPriming(),
              {L"> Failed to connect Splitter → LAV Audio: 0x80040217"},
              expected::VideoPin(),
              {L"> Rendering pin: Audio", L"> Failed to render pin 'Audio': 0x80040218",
               L"> Connection status - Video: 1, Audio: 0", L"LAVSplitter.Enable(1, 0)",
               L"> Disabled audio stream 1: Korean (hr=0x00000000)", L"LAVSplitter.Enable(3, 0)",
               L"> Disabled audio stream 3: (null) (hr=0x00000000)", L"> Still unconnected pin: Audio"}}));
}

TEST_F(BuildGraph, AFilmWithoutSoundOpensWithoutSoundFilters) {
    SetText("LAVSplitter.pins", L"Video:video/1920/1080/400000");
    SetText("LAVSplitter.streams", L"video:1:H.264");
    ExpectOpensWith(Join(
        {ToPriming(), expected::VideoPin(), {L"> Connection status - Video: 1, Audio: 0"}, WindowEnd()}));
    EXPECT_EQ(nullptr, engine->lavAudio);
    EXPECT_EQ(L"leaves the graph", StatesOf(L"LAVAudio").back());
    EXPECT_EQ(L"leaves the graph", StatesOf(L"AudioRenderer").back());
    EXPECT_NE(nullptr, engine->audioSwitcher);
}

TEST_F(BuildGraph, AnUnconnectedSubtitlePinFailsASilentFilm) {
    SetText("LAVSplitter.pins", L"Video:video/1920/1080/400000;Subtitle:subtitle");
    SetText("LAVSplitter.streams", L"video:1:H.264;subtitle:1:English");
    EXPECT_FALSE(engine->OpenFile(kFilm));
    EXPECT_EQ(2U, CallsOf(L"> Still unconnected pin: Subtitle").size());
    EXPECT_EQ(2U, CallsOf(L"> Failed to render pin 'Subtitle'").size());
    EXPECT_EQ(Lines{}, CallsOf(L"LAVSplitter.Enable"));
}

TEST_F(BuildGraph, AnUnconnectedSubtitlePinDoesNotMatterToASoundFilm) {
    SetText("LAVSplitter.pins", L"Video:video/1920/1080/400000;Audio:audio;Subtitle:subtitle");
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"> Rendering pin: Video", L"> Rendering pin: Subtitle"}), CallsOf(L"> Rendering pin"));
    EXPECT_EQ((Lines{L"> Connection status - Video: 1, Audio: 1"}), CallsOf(L"> Connection status"));
}

TEST_F(BuildGraph, WithoutStreamSelectionTheNoSoundWayGoesOn) {
    SetText("LAVSplitter.pins", L"Video:video/1920/1080/400000");
    SetNumber("LAVSplitter.noStreamSelect", 1);
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(Lines{}, CallsOf(L"LAVSplitter.Enable"));
}

TEST_F(BuildGraph, AStreamThatCanNotBeDisabledIsReported) {
    SetText("LAVSplitter.pins", L"Video:video/1920/1080/400000");
    SetNumber("LAVSplitter.enable", E_NOTIMPL);
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"> Disabled audio stream 1: Korean (hr=0x80004001)"}), CallsOf(L"> Disabled"));
}

TEST_F(BuildGraph, AFailedInfoSkipsTheStream) {
    SetText("LAVSplitter.pins", L"Video:video/1920/1080/400000");
    SetText("LAVSplitter.streams", L"audio:1:Korean;audio:1:English");
    SetNumber("LAVSplitter.infoFails", 0);
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"LAVSplitter.Enable(1, 0)"}), CallsOf(L"LAVSplitter.Enable"));
}

TEST_F(BuildGraph, WithoutDirectSoundTheWaveformRendererTakesItsPlace) {
    RegisterSound(SoundRenderer::Fails, SoundRenderer::Works);
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"AudioRenderer.joins the graph as Default Audio Renderer",
                     L"AudioRenderer.put_Volume(-602)"}),
              CallsOf(L"AudioRenderer."));
    EXPECT_EQ(1U, CountOf(Calls(), L"AudioSwitcher.Output connected to Default Audio Renderer"));
}

TEST_F(BuildGraph, WithoutAnySoundRendererASilentFilmOpens) {
    RegisterSound(SoundRenderer::Fails, SoundRenderer::Fails);
    SetText("LAVSplitter.pins", L"Video:video/1920/1080/400000");
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_TRUE(engine->hasVideo);
    EXPECT_EQ(Lines{}, CallsOf(L"AudioRenderer."));
    EXPECT_EQ(nullptr, engine->lavAudio);
}

TEST_F(BuildGraph, WithoutAnySoundRendererTheChainIsNotTried) {
    RegisterSound(SoundRenderer::Fails, SoundRenderer::Fails);
    (void)engine->OpenFile(kFilm);
    EXPECT_EQ(Lines{}, CallsOf(L"> Failed to connect"));
    EXPECT_EQ(L"> Rendering pin: Audio", CallsOf(L"> Rendering pin: Audio").front());
}

TEST_F(BuildGraph, PrimingPausesAndStopsBeforeAnythingIsConnected) {
    ASSERT_TRUE(engine->OpenFile(kFilm));
    for (const wchar_t* module : {L"MpcVideoRenderer64", L"LAVSplitter", L"LAVVideo", L"LAVAudio",
                                  L"AudioSwitcher", L"AudioRenderer"}) {
        EXPECT_EQ((Lines{L"Pause", L"Stop"}), StatesOf(module)) << module;
    }
}

TEST_F(BuildGraph, OnlyTheFirstAudioPinIsConnected) {
    SetText("LAVSplitter.pins", L"Video:video/1920/1080/400000;Audio:audio;Audio 2:audio");
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"LAVSplitter.Audio connected to LAV Audio Decoder"}), CallsOf(L"LAVSplitter.Audio"));
    EXPECT_EQ((Lines{L"> Rendering pin: Video"}), CallsOf(L"> Rendering pin"));
}

TEST_F(BuildGraph, APinIsAnAudioPinByItsNameInThatCaseAlone) {
    SetText("LAVSplitter.pins", L"Video:video/1920/1080/400000;AUDIO:audio");
    // It is rendered and sets no flag, so the decoder leaves again, and the pin is unconnected.
    EXPECT_FALSE(engine->OpenFile(kFilm));
    EXPECT_EQ(2U, CallsOf(L"> Connection status - Video: 1, Audio: 0").size());
    EXPECT_EQ(2U, CallsOf(L"> Successfully rendered pin: AUDIO").size());
    EXPECT_EQ(2U, CallsOf(L"> Still unconnected pin: AUDIO").size());
}

TEST_F(BuildGraph, APinThatSaysAnythingElseCountsAsConnected) {
    SetNumber("LAVSplitter.connectedTo", E_FAIL);
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"> Pin already connected: Video", L"> Pin already connected: Audio"}),
              CallsOf(L"> Pin"));
    EXPECT_EQ((Lines{L"> Connection status - Video: 1, Audio: 1"}), CallsOf(L"> Connection status"));
    EXPECT_EQ(Lines{}, CallsOf(L"> Rendering"));
    EXPECT_EQ(Lines{}, CallsOf(L"LAVAudio.Output"));
}

TEST_F(BuildGraph, ASplitterWhosePinsCanNotBeListedStillGetsTheRestOfTheChain) {
    SetNumber("LAVSplitter.enumPins", E_FAIL);
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"LAVAudio.Output connected to AudioSwitcher"}), CallsOf(L"LAVAudio.Output"));
    EXPECT_EQ((Lines{L"> Connection status - Video: 0, Audio: 1"}), CallsOf(L"> Connection status"));
    EXPECT_EQ(Lines{}, CallsOf(L"> Rendering"));
}

TEST_F(BuildGraph, WithoutHostTheWindowIsLeftAlone) {
    engine->videoHost = nullptr;
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(Lines{}, CallsOf(L"MpcVideoRenderer64.put_"));
    EXPECT_EQ(Lines{}, CallsOf(L"MpcVideoRenderer64.SetWindowPosition"));
}

TEST_F(BuildGraph, AHostThatIsGoneIsLeftAlone) {
    const HWND gone =
        CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    DestroyWindow(gone);
    engine->videoHost = gone;
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(Lines{}, CallsOf(L"MpcVideoRenderer64.put_"));
}

TEST_F(BuildGraph, AModuleWithoutSlotKeepsOneMoreReferenceEachTime) {
    const auto referencesOf = [](const std::wstring& file) {
        const std::wstring path = ModulePath(file);
        int count = 0;
        for (HMODULE module = GetModuleHandleW(path.c_str()); module != nullptr;
             module = GetModuleHandleW(path.c_str())) {
            FreeLibrary(module);
            ++count;
        }
        return count;
    };
    for (const wchar_t* file : {L"AudioSwitcher.ax", L"LAVVideo.ax"}) {
        referencesOf(file); // what earlier tests left
    }
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(engine->OpenFile(kFilm));
    }
    engine->CloseGraph();
    EXPECT_EQ(3, referencesOf(L"AudioSwitcher.ax"));
    EXPECT_EQ(1, referencesOf(L"LAVVideo.ax"));
    engine->videoModule = nullptr; // its reference was just taken away
}

TEST_F(BuildGraph, LoadingAFilterAnswersCodes) {
    ComPtr<IBaseFilter> filter;
    EXPECT_EQ(E_POINTER, engine->LoadFilterFromModule(ModulePath(L"LAVVideo.ax"), CLSID_NULL, nullptr));
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND),
              engine->LoadFilterFromModule(L"C:\\no\\module.ax", CLSID_NULL, filter.GetAddressOf()));
    EXPECT_EQ(E_FAIL, engine->LoadFilterFromModule(ModulePath(L"fake_recorder.dll"), CLSID_NULL,
                                                   filter.GetAddressOf()));
    EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE,
              engine->LoadFilterFromModule(ModulePath(L"LAVVideo.ax"), CLSID_NULL, filter.GetAddressOf()));
    EXPECT_EQ(nullptr, engine->videoModule);
    EXPECT_EQ(nullptr, filter);
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
