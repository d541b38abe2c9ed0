#include "tests/graph/graph_fixture.h"

#include <algorithm>

// A file whose picture did not connect under a hardware method is built once more in software.

namespace brindlecast::testing {
namespace {

class SoftwareRebuild : public GraphTest {
protected:
    void Ask(std::uint32_t method) { settings.values[L"LAV_HWAccel"] = method; }
    void SetFallback(std::uint32_t value) { settings.values[L"HWAccelFallback"] = value; }
    std::ptrdiff_t FallbackReads() const { return std::ranges::count(settings.reads, L"HWAccelFallback"); }
    // The methods that the decoder was given, build by build.
    static Lines Given(std::initializer_list<int> methods) {
        Lines lines;
        for (const int method : methods) {
            lines.push_back(L"LAVVideo.SetHWAccel(" + std::to_wstring(method) + L")");
        }
        return lines;
    }
    static Lines Given() { return CallsOf(L"LAVVideo.SetHWAccel("); }
};

TEST_F(SoftwareRebuild, FollowsEveryHardwareMethod) {
    SetText("LAVSplitter.pins", L"Audio:audio");
    const Lines names = {L"None", L"CUDA", L"QuickSync", L"DXVA2", L"DXVA2Native", L"D3D11"};
    for (const int method : {1, 2, 3, 4, 5}) {
        Ask(static_cast<std::uint32_t>(method));
        engine->CloseGraph();
        ClearCalls();
        ASSERT_TRUE(engine->OpenFile(kFilm));
        const std::wstring number = std::to_wstring(method);
        ExpectLines(Join({{L"> OpenFile with HWAccel=" + number},
                          expected::SoundBuild(method, names[static_cast<std::size_t>(method)].c_str()),
                          expected::Close(),
                          expected::SoundBuild(0, L"None")}),
                    Calls());
        EXPECT_EQ(0U, engine->hwAccel);
        EXPECT_FALSE(engine->hasVideo);
        EXPECT_EQ(kFilm, engine->currentFile);
        EXPECT_DOUBLE_EQ(0.0, engine->frameRate);
    }
}

TEST_F(SoftwareRebuild, IsNotMadeInSoftware) {
    Ask(0);
    SetText("LAVSplitter.pins", L"Audio:audio");
    ASSERT_TRUE(engine->OpenFile(kFilm));
    ExpectLines(Join({{L"> OpenFile with HWAccel=0"}, expected::SoundBuild(0, L"None")}), Calls());
    EXPECT_EQ(0, FallbackReads());
}

TEST_F(SoftwareRebuild, IsNotMadeWhenThePictureConnects) {
    SetFallback(1);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(Given({5}), Given());
    EXPECT_EQ(0, FallbackReads());
}

TEST_F(SoftwareRebuild, IsMadeUnlessItIsSwitchedOff) {
    SetText("LAVSplitter.pins", L"Audio:audio");
    for (const std::uint32_t value : {1U, 2U, 0xFFFFFFFFU}) {
        SetFallback(value);
        ClearCalls();
        ASSERT_TRUE(engine->OpenFile(kFilm));
        EXPECT_EQ(Given({5, 0}), Given());
    }
}

TEST_F(SoftwareRebuild, SwitchedOffLeavesTheSoundAlone) {
    SetFallback(0);
    SetText("LAVSplitter.pins", L"Audio:audio");
    ASSERT_TRUE(engine->OpenFile(kFilm));
    ExpectLines(Join({{L"> OpenFile with HWAccel=5"}, expected::SoundBuild()}), Calls());
    EXPECT_EQ(5U, engine->hwAccel);
    EXPECT_EQ(kFilm, engine->currentFile);
    EXPECT_EQ(1, FallbackReads());
}

TEST_F(SoftwareRebuild, TheSwitchIsTakenByItsFirstBytes) {
    settings.values[L"HWAccelFallback"] = FakeSettingsStore::Bytes{0, 0, 0, 0, 9};
    SetText("LAVSplitter.pins", L"Audio:audio");
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(5U, engine->hwAccel);
}

TEST_F(SoftwareRebuild, BringsAPictureThatConnectsInSoftwareAlone) {
    for (const int method : {1, 2, 3, 4, 5}) {
        Ask(static_cast<std::uint32_t>(method));
        SetNumber("LAVVideo.refuseUnderMethod", method);
        ClearCalls();
        ASSERT_TRUE(engine->OpenFile(kFilm));
        EXPECT_TRUE(engine->hasVideo);
        EXPECT_EQ(0U, engine->hwAccel);
        EXPECT_EQ(Given({method, 0}), Given());
        EXPECT_EQ(
            (Lines{L"> Connection status - Video: 0, Audio: 1", L"> Connection status - Video: 1, Audio: 1"}),
            CallsOf(L"> Connection status"));
    }
}

TEST_F(SoftwareRebuild, SwitchedOffBringsNoPicture) {
    SetFallback(0);
    SetNumber("LAVVideo.refuseUnderMethod", 5);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_FALSE(engine->hasVideo);
    EXPECT_EQ(Given({5}), Given());
}

TEST_F(SoftwareRebuild, FailingIsNotRepeated) {
    SetText("LAVSplitter.pins", L"Audio:audio");
    SetNumber("LAVSplitter.loadsBeforeFailure", 1);
    EXPECT_FALSE(engine->OpenFile(kFilm));
    ExpectLines(Join({{L"> OpenFile with HWAccel=5"},
                      expected::SoundBuild(),
                      expected::Close(),
                      expected::FailedLoad()}),
                Calls());
    EXPECT_TRUE(engine->currentFile.empty());
    EXPECT_EQ(nullptr, engine->graph);
}

TEST_F(SoftwareRebuild, OfALargePictureIsOneWithD3D11) {
    struct Row {
        const wchar_t* pins;
        std::uint32_t asked;
        Lines given;
        std::uint32_t left;
    };
    SetNumber("LAVVideo.refuse", E_FAIL);
    // Under software a forced method is what lets the rebuild follow at all.
    for (const Row& row : {Row{L"Video:video/3840/2160/400000;Audio:audio", 3, Given({3, 0}), 0},
                           Row{L"Video:video/3841/2160/400000;Audio:audio", 3, Given({5, 5}), 5},
                           Row{L"Video:video/3840/2161/400000;Audio:audio", 3, Given({5, 5}), 5},
                           Row{L"Video:video/3840/2160/400000;Audio:audio", 0, Given({0}), 0},
                           Row{L"Video:video/7680/4320/400000;Audio:audio", 0, Given({5, 5}), 5}}) {
        Ask(row.asked);
        SetText("LAVSplitter.pins", row.pins);
        ClearCalls();
        ASSERT_TRUE(engine->OpenFile(kFilm));
        EXPECT_EQ(row.given, Given());
        EXPECT_EQ(row.left, engine->hwAccel);
        EXPECT_FALSE(engine->hasVideo);
    }
}

} // namespace
} // namespace brindlecast::testing
