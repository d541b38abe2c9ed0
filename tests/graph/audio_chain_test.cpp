#include "tests/graph/build_fixture.h"

#include <vfwmsgs.h>

// From the splitter's audio pin to the sound renderer, and what happens where a link of that chain fails.

namespace brindlecast::testing {
namespace {

class AudioChain : public BuildTest {
protected:
    static constexpr const wchar_t* kToDecoder = L"LAVSplitter.Audio connected to LAV Audio Decoder";
    static constexpr const wchar_t* kToSwitcher = L"LAVAudio.Output connected to AudioSwitcher";
    static constexpr const wchar_t* kDirect = L"LAVAudio.Output connected to DirectSound Renderer";

    // A chain that broke behind the decoder: the splitter's pin is connected, which is what counts.
    void ExpectBreaksBehindTheDecoder(const Lines& chain) {
        ExpectOpensWith(Join({ToPriming(),
                              chain,
                              expected::VideoPin(),
                              {L"> Pin already connected: Audio"},
                              Connected(),
                              expected::GraphEnd()}));
        EXPECT_NE(nullptr, engine->lavAudio);
    }
    void ExpectChain(const Lines& chain) {
        ExpectOpensWith(Join({ToPriming(), chain, expected::VideoPin(), Connected(), expected::GraphEnd()}));
    }
};

TEST_F(AudioChain, ASwitcherWithoutControlIsUsedUnconfigured) {
    for (const long answer : {1L, 2L}) {
        SetNumber("AudioSwitcher.noControl", answer);
        ClearCalls();
        EXPECT_TRUE(engine->OpenFile(kFilm));
        EXPECT_EQ(nullptr, engine->audioSwitcherControl);
        EXPECT_NE(nullptr, engine->audioSwitcher);
        EXPECT_EQ((Lines{L"AudioSwitcher.joins the graph as AudioSwitcher",
                         L"AudioSwitcher.Output connected to DirectSound Renderer"}),
                  CallsOf(L"AudioSwitcher."));
        EXPECT_FLOAT_EQ(4.0F, engine->audioMaxNormFactor);
    }
}

TEST_F(AudioChain, ASwitcherThatRefusesTheDecoderIsPassedBy) {
    SetNumber("AudioSwitcher.refuse", VFW_E_TYPE_NOT_ACCEPTED);
    ExpectChain({kToDecoder,
                 // The graph manager's own attempt to reach the switcher by a detour, taken back at once.
                 kDirect, L"> Failed to connect LAV Audio → AudioSwitcher: 0x80040217", kDirect});
    EXPECT_NE(nullptr, engine->audioSwitcher);
}

TEST_F(AudioChain, ASwitcherThatDoesNotReachTheRendererLeavesTheGraph) {
    SetNumber("AudioSwitcher.refuseOutput", VFW_E_NO_TRANSPORT);
    ExpectChain(
        {kToDecoder, kToSwitcher, L"> Failed to connect AudioSwitcher → Renderer: 0x80040217", kDirect});
    EXPECT_EQ(nullptr, engine->audioSwitcher);
    EXPECT_EQ(nullptr, engine->audioSwitcherControl);
    EXPECT_EQ(L"leaves the graph", StatesOf(L"AudioSwitcher").back());
}

TEST_F(AudioChain, ARendererThatRefusesEverythingBreaksIt) {
    SetNumber("AudioRenderer.refuse", VFW_E_TYPE_NOT_ACCEPTED);
    ExpectBreaksBehindTheDecoder(
        {kToDecoder, kToSwitcher, L"> Failed to connect AudioSwitcher → Renderer: 0x80040217"});
    EXPECT_EQ(nullptr, engine->audioSwitcher);
}

TEST_F(AudioChain, ASwitcherWithoutInputIsPassedBy) {
    SetNumber("AudioSwitcher.noInput", 1);
    ExpectChain({kToDecoder, kDirect});
    EXPECT_NE(nullptr, engine->audioSwitcher);
}

TEST_F(AudioChain, ASwitcherThatCanNotListItsPinsIsPassedBy) {
    for (const char* key :
         {"AudioSwitcher.enumPins", "AudioSwitcher.pinsAreNull", "AudioSwitcher.pinIsNull"}) {
        SetNumber(key, E_FAIL);
        ExpectChain({kToDecoder, kDirect});
        SetNumber(key, 0);
    }
}

TEST_F(AudioChain, APinOfUnknownDirectionIsNone) {
    SetNumber("AudioSwitcher.queryDirection", E_FAIL);
    ExpectChain({kToDecoder, kDirect});
}

TEST_F(AudioChain, ASwitcherWithoutOutputKeepsTheDecoder) {
    SetNumber("AudioSwitcher.noOutput", 1);
    ExpectBreaksBehindTheDecoder({kToDecoder, kToSwitcher});
    EXPECT_NE(nullptr, engine->audioSwitcher);
}

TEST_F(AudioChain, ADecoderWithoutOutputBreaksIt) {
    SetNumber("LAVAudio.noOutput", 1);
    ExpectBreaksBehindTheDecoder({kToDecoder});
}

TEST_F(AudioChain, ARendererWithoutInputBreaksIt) {
    SetNumber("AudioRenderer.noInput", 1);
    ExpectBreaksBehindTheDecoder({kToDecoder, kToSwitcher});
}

TEST_F(AudioChain, ARendererThatCanNotListItsPinsBreaksIt) {
    SetNumber("AudioRenderer.enumPins", E_FAIL);
    ExpectBreaksBehindTheDecoder({kToDecoder, kToSwitcher});
}

TEST_F(AudioChain, ADecoderWithoutInputFailsTheBuildInSilence) {
    SetNumber("LAVAudio.noInput", 1);
    ExpectFailsWith(Join({ToPriming(), expected::VideoPin(), AudioCanNotBeRendered(), SoundLeftOut()}));
}

TEST_F(AudioChain, ADecoderThatCanNotListItsPinsIsLeftToTheGraph) {
    SetNumber("LAVAudio.enumPins", E_FAIL);
    // The graph manager goes to the newest filter.
    ExpectOpensWith(
        Join({ToPriming(),
              expected::VideoPin(),
              {L"> Rendering pin: Audio", kToDecoder, kDirect, L"> Successfully rendered pin: Audio"},
              Connected(),
              expected::GraphEnd()}));
}

TEST_F(AudioChain, ADecoderThatRefusesTheStreamFailsTheBuild) {
    SetNumber("LAVAudio.refuse", VFW_E_TYPE_NOT_ACCEPTED);
    SetText("LAVSplitter.streams", L"video:1:H.264;audio:1:Korean;audio:0:English;audio:1:-");
    ExpectFailsWith(
        Join({ToPriming(),
              {L"> Failed to connect Splitter → LAV Audio: 0x80040217"},
              expected::VideoPin(),
              AudioCanNotBeRendered(),
              {L"> Connection status - Video: 1, Audio: 0", L"LAVSplitter.Enable(1, 0)",
               L"> Disabled audio stream 1: Korean (hr=0x00000000)", L"LAVSplitter.Enable(3, 0)",
               L"> Disabled audio stream 3: (null) (hr=0x00000000)", L"> Still unconnected pin: Audio"}}));
}

TEST_F(AudioChain, ASecondAudioPinIsTriedWhenTheFirstIsRefused) {
    SetText("LAVSplitter.pins", L"Video:video/1920/1080/400000;Audio:audio;Audio 2:audio");
    SetText("LAVAudio.refuseFrom", L"Audio");
    ExpectChain({L"> Failed to connect Splitter → LAV Audio: 0x80040217",
                 L"LAVSplitter.Audio 2 connected to LAV Audio Decoder", kToSwitcher,
                 L"AudioSwitcher.Output connected to DirectSound Renderer"});
}

TEST_F(AudioChain, OnlyTheFirstAudioPinIsConnected) {
    SetText("LAVSplitter.pins", L"Video:video/1920/1080/400000;Audio:audio;Audio 2:audio");
    ExpectChain(expected::AudioChain());
}

TEST_F(AudioChain, ASplitterWhosePinsCanNotBeListedStillGetsTheRestOfTheChain) {
    for (const char* key : {"LAVSplitter.enumPins", "LAVSplitter.pinsAreNull"}) {
        SetNumber(key, E_FAIL);
        Lines toPriming = ToPriming();
        std::erase(toPriming, Detected().front());
        ExpectOpensWith(Join({toPriming,
                              {kToSwitcher, L"AudioSwitcher.Output connected to DirectSound Renderer",
                               L"> Connection status - Video: 0, Audio: 1"},
                              expected::GraphEnd()}));
        SetNumber(key, 0);
    }
}

TEST_F(AudioChain, WithoutDirectSoundTheWaveformRendererTakesItsPlace) {
    RegisterSound(SoundRenderer::Fails, SoundRenderer::Works);
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"AudioRenderer.joins the graph as Default Audio Renderer",
                     L"AudioRenderer.put_Volume(-602)"}),
              CallsOf(L"AudioRenderer."));
    EXPECT_EQ(1U, CountOf(Calls(), L"AudioSwitcher.Output connected to Default Audio Renderer"));
}

TEST_F(AudioChain, WithoutAnySoundRendererAFilmWithSoundFails) {
    RegisterSound(SoundRenderer::Fails, SoundRenderer::Fails);
    Lines toPriming = ToPriming();
    std::erase(toPriming, expected::SoundStart().front());
    // How far the graph manager gets on its own, each of the two times, before it takes it back.
    const Lines attempt = {kToDecoder, kToSwitcher};
    ClearCalls();
    ExpectFailsWith(Join({toPriming,
                          expected::VideoPin(),
                          {AudioCanNotBeRendered().front()},
                          attempt,
                          attempt,
                          {AudioCanNotBeRendered().back()},
                          SoundLeftOut()}));
    EXPECT_EQ((Lines{L"> Still unconnected pin: Audio", L"> Still unconnected pin: Audio"}),
              CallsOf(L"> Still unconnected"));
}

TEST_F(AudioChain, WithoutAnySoundRendererASilentFilmOpens) {
    RegisterSound(SoundRenderer::Fails, SoundRenderer::Fails);
    SetText("LAVSplitter.pins", L"Video:video/1920/1080/400000");
    SetText("LAVSplitter.streams", L"video:1:H.264");
    Lines toPriming = ToPriming();
    std::erase(toPriming, expected::SoundStart().front());
    ExpectOpensWith(
        Join({toPriming, expected::VideoPin(), {L"> Connection status - Video: 1, Audio: 0"}, WindowEnd()}));
    EXPECT_TRUE(engine->hasVideo);
    EXPECT_EQ(nullptr, engine->lavAudio);
}

} // namespace
} // namespace brindlecast::testing
