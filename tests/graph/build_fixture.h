#pragma once

#include "tests/graph/graph_fixture.h"

namespace brindlecast::testing {

// Builds in software, so that an open is one build, or two when it fails.
class BuildTest : public GraphTest {
protected:
    BuildTest() { settings.values[L"LAV_HWAccel"] = std::uint32_t{0}; }

    // Both attempts of an open that fails with the same list.
    void ExpectFailsWith(const Lines& build) {
        engine->CloseGraph();
        ClearCalls();
        EXPECT_FALSE(engine->OpenFile(kFilm));
        ExpectLines(Join({{L"> OpenFile with HWAccel=0"}, build, build}), Calls());
        EXPECT_EQ(nullptr, engine->graph);
        EXPECT_EQ(0, RecorderLiving());
    }
    void ExpectOpensWith(const Lines& build) {
        engine->CloseGraph();
        ClearCalls();
        EXPECT_TRUE(engine->OpenFile(kFilm));
        ExpectLines(Join({{L"> OpenFile with HWAccel=0"}, build}), Calls());
    }

    // Up to the probe of the picture.
    static Lines ToProbe() {
        return Join({expected::RendererStart(), expected::SplitterStart(), expected::ThreeKeyFrames()});
    }
    static Lines Detected() { return {L"> Detected video resolution: 1920x1080"}; }
    static Lines Software() { return expected::VideoDecoderStart(0, L"None"); }
    static Lines ToPriming() {
        return Join({ToProbe(), Detected(), Software(), expected::AudioDecoderStart(),
                     expected::SwitcherStart(), expected::SoundStart(), expected::Priming()});
    }
    static Lines Connected() { return {L"> Connection status - Video: 1, Audio: 1"}; }
    static Lines WindowEnd() {
        const Lines all = expected::GraphEnd();
        return Lines(all.begin() + 1, all.end()); // without the sound
    }
    static Lines MissingModule(const std::wstring& name) {
        return {L"> Failed to load: <dir>\\" + name + L" (error=126)"};
    }
    // What becomes of the audio pin of a film that got no sound.
    static Lines SoundLeftOut() {
        return {L"> Connection status - Video: 1, Audio: 0", L"LAVSplitter.Enable(1, 0)",
                L"> Disabled audio stream 1: Korean (hr=0x00000000)", L"> Still unconnected pin: Audio"};
    }
    static Lines AudioCanNotBeRendered() {
        return {L"> Rendering pin: Audio", L"> Failed to render pin 'Audio': 0x80040218"};
    }
};

} // namespace brindlecast::testing
