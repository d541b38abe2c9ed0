#include "tests/graph/build_fixture.h"
#include "tests/graph/sleep_record.h"

// Rendering the splitter's pins, which are told apart by their names.

namespace brindlecast::testing {
namespace {

class RenderPins : public BuildTest {
protected:
    // Opens a file whose pins are rendered with these lines.
    void ExpectRenders(const wchar_t* pins, const Lines& lines) {
        SetText("LAVSplitter.pins", pins);
        ExpectOpensWith(Join({ToPriming(), lines, expected::GraphEnd()}));
    }
    static Lines Status(int video, int audio) {
        return {L"> Connection status - Video: " + std::to_wstring(video) + L", Audio: " +
                std::to_wstring(audio)};
    }
    static Lines VideoPinNamed(const std::wstring& name) {
        return {L"> Rendering pin: " + name, L"LAVSplitter." + name + L" connected to LAV Video Decoder",
                L"LAVVideo.Output connected to MPC Video Renderer", L"> Successfully rendered pin: " + name};
    }
};

TEST_F(RenderPins, APinOfNeitherNameSetsNoFlag) {
    ExpectRenders(L"Picture:video/1920/1080/400000;Audio:audio",
                  Join({expected::AudioChain(), VideoPinNamed(L"Picture"), Status(0, 1)}));
    EXPECT_FALSE(engine->hasVideo);
}

TEST_F(RenderPins, AnEmptyNameIsNeither) {
    ExpectRenders(L":video/1920/1080/400000;Audio:audio",
                  Join({expected::AudioChain(), VideoPinNamed(L""), Status(0, 1)}));
}

TEST_F(RenderPins, NamesMayBeInLowerCase) {
    ExpectRenders(L"the video:video/1920/1080/400000;the audio:audio",
                  Join({{L"LAVSplitter.the audio connected to LAV Audio Decoder",
                         L"LAVAudio.Output connected to AudioSwitcher",
                         L"AudioSwitcher.Output connected to DirectSound Renderer"},
                        VideoPinNamed(L"the video"),
                        Status(1, 1)}));
}

TEST_F(RenderPins, NamesInCapitalsAreNeither) {
    SetText("LAVSplitter.pins", L"VIDEO:video/1920/1080/400000;AUDIO:audio");
    // Both are rendered and set no flag, so the audio decoder leaves again, and its pin is unconnected. The
    // graph manager goes to the newest filter.
    ExpectFailsWith(
        Join({ToPriming(),
              VideoPinNamed(L"VIDEO"),
              {L"> Rendering pin: AUDIO", L"LAVSplitter.AUDIO connected to LAV Audio Decoder",
               L"LAVAudio.Output connected to DirectSound Renderer", L"> Successfully rendered pin: AUDIO"},
              Status(0, 0),
              {L"LAVSplitter.Enable(1, 0)", L"> Disabled audio stream 1: Korean (hr=0x00000000)",
               L"> Still unconnected pin: AUDIO"}}));
}

TEST_F(RenderPins, APinOfBothNamesIsBoth) {
    ExpectRenders(
        L"Video and Audio:video/1920/1080/400000",
        // The graph manager's own attempt to reach the audio decoder by a detour, taken back at once.
        Join({{L"LAVSplitter.Video and Audio connected to LAV Video Decoder",
               L"LAVVideo.Output connected to MPC Video Renderer",
               L"> Failed to connect Splitter → LAV Audio: 0x80040217"},
              VideoPinNamed(L"Video and Audio"),
              Status(1, 1)}));
    EXPECT_TRUE(engine->hasVideo);
    // As sound it is connected already and not looked at again.
    SetText("LAVSplitter.pins", L"Video and Audio:audio");
    Lines toPriming = ToPriming();
    std::erase(toPriming, Detected().front());
    ExpectOpensWith(Join({toPriming,
                          {L"LAVSplitter.Video and Audio connected to LAV Audio Decoder",
                           L"LAVAudio.Output connected to AudioSwitcher",
                           L"AudioSwitcher.Output connected to DirectSound Renderer"},
                          Status(0, 1),
                          expected::GraphEnd()}));
}

TEST_F(RenderPins, ANameThatFillsItsFieldIsCutByOneCharacter) {
    SetNumber("LAVSplitter.unterminatedNames", 1);
    SetText("LAVSplitter.pins", L"Video:video/1920/1080/400000");
    EXPECT_TRUE(engine->OpenFile(kFilm));
    const std::wstring name = L"Video" + std::wstring(122, L'x');
    EXPECT_EQ((Lines{L"> Rendering pin: " + name}), CallsOf(L"> Rendering pin"));
    EXPECT_TRUE(engine->hasVideo);
}

TEST_F(RenderPins, APinWithoutNameIsNeither) {
    SetNumber("LAVSplitter.queryPinInfo", E_FAIL);
    ExpectFailsWith(
        Join({ToPriming(),
              {L"> Rendering pin: ", L"LAVSplitter.Video connected to LAV Video Decoder",
               L"LAVVideo.Output connected to MPC Video Renderer", L"> Successfully rendered pin: ",
               L"> Rendering pin: "},
              {L"LAVSplitter.Audio connected to LAV Audio Decoder",
               L"LAVAudio.Output connected to DirectSound Renderer", L"> Successfully rendered pin: "},
              Status(0, 0),
              {L"LAVSplitter.Enable(1, 0)", L"> Disabled audio stream 1: Korean (hr=0x00000000)",
               L"> Still unconnected pin: "}}));
}

TEST_F(RenderPins, WithoutAnyPinThereIsNothingToFail) {
    SetText("LAVSplitter.streams", L"");
    Lines toPriming = ToPriming();
    std::erase(toPriming, Detected().front());
    const Lines build = Join({toPriming, Status(0, 0), WindowEnd()});
    SetText("LAVSplitter.pins", L"");
    ExpectOpensWith(build);
    EXPECT_FALSE(engine->hasVideo);
    EXPECT_EQ(nullptr, engine->lavAudio);
    // Pins of unknown direction are none, nor are those that an enumerator does not hand out.
    SetText("LAVSplitter.pins", kFilmPins);
    for (const char* key : {"LAVSplitter.queryDirection", "LAVSplitter.pinIsNull"}) {
        SetNumber(key, E_FAIL);
        ExpectOpensWith(build);
        SetNumber(key, 0);
    }
}

TEST_F(RenderPins, APinRefusedOnceIsRenderedAgainAfterAPause) {
    SetText("LAVSplitter.pins", L"Video:video/1920/1080/400000;Audio:audio");
    SetNumber("LAVVideo.refuseTimes", 1);
    const SleepRecord sleeps;
    ExpectOpensWith(
        Join({ToPriming(), expected::AudioChain(), expected::VideoPin(), Connected(), expected::GraphEnd()}));
    EXPECT_EQ((Lines{L"LAVVideo.Input refuses"}), QueriesOf(L"LAVVideo.Input"));
    EXPECT_EQ((std::vector<DWORD>{50}), sleeps.Seen());
}

TEST_F(RenderPins, APinIsNotRenderedAThirdTime) {
    SetText("LAVSplitter.pins", L"Video:video/1920/1080/400000;Audio:audio");
    SetNumber("LAVVideo.refuse", E_FAIL);
    const SleepRecord sleeps;
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"> Rendering pin: Video", L"> Failed to render pin 'Video': 0x80040218"}),
              Join({CallsOf(L"> Rendering"), CallsOf(L"> Failed")}));
    EXPECT_EQ((std::vector<DWORD>{50}), sleeps.Seen());
}

TEST_F(RenderPins, APinThatSaysAnythingElseCountsAsConnected) {
    SetNumber("LAVSplitter.connectedTo", E_FAIL);
    ExpectOpensWith(Join({ToPriming(),
                          {L"> Pin already connected: Video", L"> Pin already connected: Audio"},
                          Connected(),
                          expected::GraphEnd()}));
}

TEST_F(RenderPins, AnUnconnectedSubtitlePinDoesNotMatterToASoundFilm) {
    ExpectRenders(L"Video:video/1920/1080/400000;Audio:audio;Subtitle:subtitle",
                  Join({expected::AudioChain(),
                        expected::VideoPin(),
                        {L"> Rendering pin: Subtitle", L"> Failed to render pin 'Subtitle': 0x80040218"},
                        Status(1, 1)}));
}

TEST_F(RenderPins, AnUnconnectedSubtitlePinFailsASilentFilm) {
    SetText("LAVSplitter.pins", L"Video:video/1920/1080/400000;Subtitle:subtitle");
    SetText("LAVSplitter.streams", L"video:1:H.264;subtitle:1:English");
    ExpectFailsWith(Join({ToPriming(),
                          expected::VideoPin(),
                          {L"> Rendering pin: Subtitle", L"> Failed to render pin 'Subtitle': 0x80040218"},
                          Status(1, 0),
                          {L"> Still unconnected pin: Subtitle"}}));
}

} // namespace
} // namespace brindlecast::testing
