#include "tests/graph/build_fixture.h"

#include <vfwmsgs.h>

#include <algorithm>

// What becomes of a build when a module, or a filter of it, can't be had.

namespace brindlecast::testing {
namespace {

// One way in which a module gives no filter, and the line that tells of it.
struct Failure {
    const char* key;
    long value;
    const wchar_t* line; // MODULE stands for the name
};

constexpr Failure kFailures[] = {
    {"classObject", CLASS_E_CLASSNOTAVAILABLE, L"> DllGetClassObject failed: 0x80040111"},
    {"classObjectIsNull", 1, L"> DllGetClassObject failed: 0x8000FFFF"},
    {"create", E_OUTOFMEMORY, L"> CreateInstance failed: 0x8007000E"},
    {"createWrites", 1, L"> CreateInstance failed: 0x80004005"},
    {"createIsNull", 1, L"> Loaded filter from: <dir>\\MODULE.ax"},
};

class LoadModules : public BuildTest {
protected:
    // Runs `check` with what is told of each way in which the module fails, and of its absence.
    template <class Check>
    void WithEachFailureOf(const std::string& module, const Check& check) {
        const std::wstring name(module.begin(), module.end());
        for (const Failure& failure : kFailures) {
            const std::string key = module + "." + failure.key;
            SCOPED_TRACE(key);
            std::wstring line = failure.line;
            if (const auto at = line.find(L"MODULE"); at != std::wstring::npos) {
                line.replace(at, 6, name);
            }
            SetNumber(key.c_str(), failure.value);
            check(Lines{line});
            SetNumber(key.c_str(), 0);
        }
        SCOPED_TRACE(module + " is missing");
        // The old engine still holds references to the module.
        engine = std::make_unique<PlayerEngine>(settings);
        engine->videoHost = host;
        HideModule(name + L".ax");
        check(MissingModule(name + L".ax"));
    }
    // Everything behind the audio decoder, for a film without sound filters that work.
    static Lines FromSwitcherOn() {
        return Join({expected::SwitcherStart(), expected::SoundStart(), expected::Priming()});
    }
};

TEST_F(LoadModules, WithoutFilterGraphNothingHappens) {
    RegisterFailingGraph();
    ExpectFailsWith({});
}

TEST_F(LoadModules, WithoutRendererTheBuildFails) {
    WithEachFailureOf("MpcVideoRenderer64", [&](const Lines& told) { ExpectFailsWith(told); });
}

TEST_F(LoadModules, WithoutSplitterTheBuildFails) {
    WithEachFailureOf("LAVSplitter", [&](const Lines& told) {
        ExpectFailsWith(Join({expected::RendererStart(), told}));
    });
}

TEST_F(LoadModules, WithoutVideoDecoderTheFilmSoundsAlone) {
    WithEachFailureOf("LAVVideo", [&](const Lines& told) {
        ExpectOpensWith(Join({ToProbe(),
                              Detected(),
                              told,
                              expected::AudioDecoderStart(),
                              FromSwitcherOn(),
                              expected::AudioChain(),
                              {L"> Rendering pin: Video", L"> Failed to render pin 'Video': 0x80040218",
                               L"> Connection status - Video: 0, Audio: 1"},
                              expected::GraphEnd()}));
        EXPECT_FALSE(engine->hasVideo);
        EXPECT_EQ(nullptr, engine->lavVideo);
    });
}

TEST_F(LoadModules, WithoutAudioDecoderAFilmWithSoundFails) {
    WithEachFailureOf("LAVAudio", [&](const Lines& told) {
        ExpectFailsWith(Join({ToProbe(), Detected(), Software(), told, FromSwitcherOn(), expected::VideoPin(),
                              AudioCanNotBeRendered(), SoundLeftOut()}));
    });
}

TEST_F(LoadModules, WithoutAudioDecoderASilentFilmOpens) {
    SetText("LAVSplitter.pins", L"Video:video/1920/1080/400000");
    SetText("LAVSplitter.streams", L"video:1:H.264");
    WithEachFailureOf("LAVAudio", [&](const Lines& told) {
        ExpectOpensWith(Join({ToProbe(),
                              Detected(),
                              Software(),
                              told,
                              FromSwitcherOn(),
                              expected::VideoPin(),
                              {L"> Connection status - Video: 1, Audio: 0"},
                              WindowEnd()}));
        EXPECT_TRUE(engine->hasVideo);
    });
}

TEST_F(LoadModules, WithoutSwitcherTheDecoderGoesStraightToTheRenderer) {
    WithEachFailureOf("AudioSwitcher", [&](const Lines& told) {
        ExpectOpensWith(Join({ToProbe(),
                              Detected(),
                              Software(),
                              expected::AudioDecoderStart(),
                              told,
                              expected::SoundStart(),
                              expected::Priming(),
                              {L"LAVSplitter.Audio connected to LAV Audio Decoder",
                               L"LAVAudio.Output connected to DirectSound Renderer"},
                              expected::VideoPin(),
                              Connected(),
                              expected::GraphEnd()}));
        EXPECT_EQ(nullptr, engine->audioSwitcher);
        EXPECT_EQ(nullptr, engine->audioSwitcherControl);
    });
}

TEST_F(LoadModules, AModuleWithoutEntryPointFailsInSilence) {
    ReplaceModule(L"MpcVideoRenderer64.ax", L"fake_recorder.dll");
    ExpectFailsWith({});
}

TEST_F(LoadModules, WithoutVideoDecoderTheSoftwareRebuildFollows) {
    settings.values[L"LAV_HWAccel"] = std::uint32_t{5};
    HideModule(L"LAVVideo.ax");
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(0U, engine->hwAccel);
    EXPECT_EQ((Lines{L"LAVSplitter.Load(C:\\films\\film.mkv, null)",
                     L"LAVSplitter.Load(C:\\films\\film.mkv, null)"}),
              CallsOf(L"LAVSplitter.Load"));
}

// What the graph does with a filter that it refused is its own affair, so these lists end with priming.
TEST_F(LoadModules, AFilterThatTheGraphRefusesIsToleratedUpToItsConnections) {
    for (const char* key : {"LAVVideo.join", "LAVAudio.join", "AudioSwitcher.join"}) {
        SCOPED_TRACE(key);
        SetNumber(key, E_FAIL);
        engine->CloseGraph();
        ClearCalls();
        // Whether it opens is the graph's affair too.
        const bool opened = engine->OpenFile(kFilm);
        EXPECT_EQ(opened, engine->graph != nullptr);
        const Lines wanted = Join({{L"> OpenFile with HWAccel=0"}, ToPriming()});
        Lines seen = Calls();
        seen.resize(std::min(seen.size(), wanted.size()));
        ExpectLines(wanted, seen);
        SetNumber(key, 0);
    }
}

TEST_F(LoadModules, ARendererThatTheGraphRefusesStaysUnconfigured) {
    SetNumber("MpcVideoRenderer64.join", E_FAIL);
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"MpcVideoRenderer64.joins the graph as MPC Video Renderer"}),
              CallsOf(L"MpcVideoRenderer64."));
    EXPECT_EQ(nullptr, engine->rendererConfig);
    EXPECT_EQ(nullptr, engine->subtitleCallback);
    EXPECT_NE(nullptr, engine->videoRenderer);
}

TEST_F(LoadModules, ASplitterThatTheGraphRefusesStillLoadsTheFile) {
    SetNumber("LAVSplitter.join", E_FAIL);
    SetNumber("LAVSplitter.load", VFW_E_CANNOT_LOAD_SOURCE_FILTER);
    ExpectFailsWith(
        Join({expected::RendererStart(), expected::SplitterStart(), {L"> Failed to load file: 0x80040241"}}));
}

TEST_F(LoadModules, ASplitterThatIsNoFileSourceFailsInSilence) {
    Lines splitter = expected::SplitterStart();
    splitter.pop_back(); // Load
    for (const long answer : {1L, 2L}) {
        SetNumber("LAVSplitter.noFileSource", answer);
        ExpectFailsWith(Join({expected::RendererStart(), splitter}));
    }
}

TEST_F(LoadModules, AFileThatCanNotBeLoadedFails) {
    SetNumber("LAVSplitter.load", VFW_E_CANNOT_LOAD_SOURCE_FILTER);
    ExpectFailsWith(
        Join({expected::RendererStart(), expected::SplitterStart(), {L"> Failed to load file: 0x80040241"}}));
}

} // namespace
} // namespace brindlecast::testing
