#include "tests/graph/build_fixture.h"

#include <algorithm>

// What is read off the splitter's pins before the video decoder is configured: frame rate and size.

namespace brindlecast::testing {
namespace {

constexpr double kRateOfBefore = 99.0;

class ProbeVideo : public BuildTest {
protected:
    // Opens a film with these pins, which must end with the sound.
    void ExpectProbe(const wchar_t* pins, const Lines& detected, double frameRate, std::uint32_t method) {
        SCOPED_TRACE(::testing::PrintToString(std::wstring(pins)));
        SetText("LAVSplitter.pins", pins);
        engine->CloseGraph();
        engine->frameRate = kRateOfBefore;
        ClearCalls();
        EXPECT_TRUE(engine->OpenFile(kFilm));
        EXPECT_EQ(detected, CallsOf(L"> Detected"));
        EXPECT_DOUBLE_EQ(frameRate, engine->frameRate);
        EXPECT_EQ(method, engine->hwAccel);
        EXPECT_EQ((Lines{L"LAVVideo.SetHWAccel(" + std::to_wstring(method) + L")"}),
                  CallsOf(L"LAVVideo.SetHWAccel("));
    }
    static Lines Size(const std::wstring& size) { return {L"> Detected video resolution: " + size}; }
};

TEST_F(ProbeVideo, LargePicturesForceD3D11) {
    ExpectProbe(L"Video:video/3840/2160/400000;Audio:audio", Size(L"3840x2160"), 25.0, 0);
    ExpectProbe(L"Video:video/3841/2160/400000;Audio:audio", Size(L"3841x2160"), 25.0, 5);
    ExpectProbe(L"Video:video/3840/2161/400000;Audio:audio", Size(L"3840x2161"), 25.0, 5);
    ExpectProbe(L"Video:video/3841/1/400000;Audio:audio", Size(L"3841x1"), 25.0, 5);
    ExpectProbe(L"Video:video/1/2161/400000;Audio:audio", Size(L"1x2161"), 25.0, 5);
    ExpectProbe(L"Video:video/1/1/400000;Audio:audio", Size(L"1x1"), 25.0, 0);
    ExpectProbe(L"Video:video/2147483647/2147483647/400000;Audio:audio", Size(L"2147483647x2147483647"), 25.0,
                5);
}

TEST_F(ProbeVideo, TheOlderFormatBlockIsReadToo) {
    ExpectProbe(L"Video:videoinfo/640/480/200000;Audio:audio", Size(L"640x480"), 50.0, 0);
    ExpectProbe(L"Video:videoinfo/7680/4320/333667;Audio:audio", Size(L"7680x4320"), 10'000'000.0 / 333'667,
                5);
}

TEST_F(ProbeVideo, OnlyAPositiveFrameDurationGivesARate) {
    ExpectProbe(L"Video:video/1920/1080/0;Audio:audio", Size(L"1920x1080"), kRateOfBefore, 0);
    ExpectProbe(L"Video:video/1920/1080/-400000;Audio:audio", Size(L"1920x1080"), kRateOfBefore, 0);
    ExpectProbe(L"Video:video/1920/1080/1;Audio:audio", Size(L"1920x1080"), 10'000'000.0, 0);
}

TEST_F(ProbeVideo, ASizeWithoutBothSidesCountsForNothing) {
    for (const wchar_t* pins :
         {L"Video:video/0/1080/400000;Audio:audio", L"Video:video/0/4320/400000;Audio:audio",
          L"Video:video/7680/0/400000;Audio:audio", L"Video:video/7680/-4320/400000;Audio:audio",
          L"Video:video/-7680/4320/400000;Audio:audio"}) {
        ExpectProbe(pins, {}, 25.0, 0);
    }
}

TEST_F(ProbeVideo, AFormatBlockThatIsNotThereIsNotRead) {
    for (const wchar_t* pins : {L"Video:video/7680/4320/400000///short;Audio:audio",
                                L"Video:videoinfo/7680/4320/400000///short;Audio:audio",
                                L"Video:video/7680/4320/400000///null;Audio:audio",
                                L"Video:videoinfo/7680/4320/400000///null;Audio:audio",
                                L"Video:video/7680/4320/400000///none;Audio:audio"}) {
        ExpectProbe(pins, {}, kRateOfBefore, 0);
    }
}

TEST_F(ProbeVideo, OnlyTheFirstVideoTypeOfAPinIsRead) {
    ExpectProbe(L"Video:subtitle,video/1920/1080/400000,video/8000/8000/100000;Audio:audio",
                Size(L"1920x1080"), 25.0, 0);
    // Also when there is nothing to read in it.
    ExpectProbe(L"Video:video/1920/1080/400000///none,video/8000/8000/100000;Audio:audio", {}, kRateOfBefore,
                0);
}

TEST_F(ProbeVideo, TheLastVideoPinGivesTheFrameRate) {
    // The second picture finds no renderer; the film opens all the same.
    ExpectProbe(L"Video:video/1920/1080/400000;Second Video:videoinfo/640/480/200000;Audio:audio",
                Join({Size(L"1920x1080"), Size(L"640x480")}), 50.0, 0);
    ExpectProbe(L"Video:video/1920/1080/400000;Second Video:video/640/480/0;Audio:audio",
                Join({Size(L"1920x1080"), Size(L"640x480")}), 25.0, 0);
}

TEST_F(ProbeVideo, ASmallPictureBehindALargeOneTakesNothingBack) {
    ExpectProbe(L"Video:video/7680/4320/400000;Second Video:video/640/480/200000;Audio:audio",
                Join({Size(L"7680x4320"), Size(L"640x480")}), 50.0, 5);
}

TEST_F(ProbeVideo, EveryMethodGivesWayToD3D11) {
    for (const std::uint32_t method : {1U, 2U, 3U, 4U, 5U, 9U}) {
        settings.values[L"LAV_HWAccel"] = method;
        ExpectProbe(L"Video:video/7680/4320/400000;Audio:audio", Size(L"7680x4320"), 25.0, 5);
    }
}

TEST_F(ProbeVideo, TypesThatCanNotBeListedAreNone) {
    for (const char* key :
         {"LAVSplitter.enumMediaTypes", "LAVSplitter.typesAreNull", "LAVSplitter.typeIsNull"}) {
        SetNumber(key, E_FAIL);
        ExpectProbe(L"Video:video/7680/4320/400000;Audio:audio", {}, kRateOfBefore, 0);
        SetNumber(key, 0);
    }
}

TEST_F(ProbeVideo, AListOfTypesWithoutEndIsLeft) {
    SetNumber("LAVSplitter.typesAreEndless", 1);
    ExpectProbe(L"Video:subtitle,audio;Audio:audio", {}, kRateOfBefore, 0);
    const Lines asked = QueriesOf(L"LAVSplitter.type ");
    EXPECT_EQ(2, std::ranges::count(asked, L"LAVSplitter.type 1023")) << "once for each pin";
    EXPECT_EQ(0, std::ranges::count(asked, L"LAVSplitter.type 1024"));
}

} // namespace
} // namespace brindlecast::testing
