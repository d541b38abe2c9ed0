#include "tests/graph/graph_fixture.h"

#include <algorithm>

namespace brindlecast::testing {
namespace {

class DecoderConfiguration : public GraphTest {
protected:
    void Set(const wchar_t* name, std::uint32_t value) { settings.values[name] = value; }
    // The calls and lines of the video decoder's set-up up to its codec switches.
    Lines HardwareChoice() {
        EXPECT_TRUE(engine->OpenFile(kFilm));
        const Lines all = Calls();
        const auto begin = std::ranges::find(all, L"> Loaded filter from: <dir>\\LAVVideo.ax");
        const auto end = std::ranges::find(all, L"LAVVideo.SetHWAccelCodec(0, 1)");
        return Lines(begin + 1, end);
    }
    static Lines NoDevices(int method, const std::wstring& name) {
        const std::wstring number = std::to_wstring(method);
        return {L"LAVVideo.SetHWAccel(" + number + L")", L"LAVVideo.GetHWAccelNumDevices(" + number + L")",
                L"> HWAccel=" + name + L", Available devices=0",
                L"LAVVideo.GetHWAccelDeviceIndex(" + number + L")",
                L"> Current HWAccel device index=7 (ID=0xBEEF)"};
    }
    static Lines Asked(int method) {
        return {L"LAVVideo.SetRuntimeConfig(1)", L"> ConfigureLAVVideo: HWAccel=" + std::to_wstring(method)};
    }
    static Lines Unsupported(int method) {
        const std::wstring number = std::to_wstring(method);
        return {L"LAVVideo.CheckHWAccelSupport(" + number + L")",
                L"> HWAccel " + number + L" not supported, trying fallback"};
    }
};

TEST_F(DecoderConfiguration, CudaFallsBackOnD3D11) {
    Set(L"LAV_HWAccel", 1);
    SetText("LAVVideo.supported", L"3,5");
    ExpectLines(
        Join({Asked(1), Unsupported(1), {L"LAVVideo.CheckHWAccelSupport(5)"}, NoDevices(5, L"D3D11")}),
        HardwareChoice());
    EXPECT_EQ(1U, engine->hwAccel) << "the engine keeps what was asked for";
}

TEST_F(DecoderConfiguration, CudaFallsBackOnDxva2) {
    Set(L"LAV_HWAccel", 1);
    SetText("LAVVideo.supported", L"3");
    ExpectLines(Join({Asked(1),
                      Unsupported(1),
                      {L"LAVVideo.CheckHWAccelSupport(5)", L"LAVVideo.CheckHWAccelSupport(3)"},
                      NoDevices(3, L"DXVA2")}),
                HardwareChoice());
}

TEST_F(DecoderConfiguration, CudaFallsBackOnSoftware) {
    Set(L"LAV_HWAccel", 1);
    SetText("LAVVideo.supported", L"");
    ExpectLines(Join({Asked(1),
                      Unsupported(1),
                      {L"LAVVideo.CheckHWAccelSupport(5)", L"LAVVideo.CheckHWAccelSupport(3)"},
                      NoDevices(0, L"None")}),
                HardwareChoice());
}

TEST_F(DecoderConfiguration, D3D11FallsBackOnDxva2) {
    SetText("LAVVideo.supported", L"1,3");
    ExpectLines(
        Join({Asked(5), Unsupported(5), {L"LAVVideo.CheckHWAccelSupport(3)"}, NoDevices(3, L"DXVA2")}),
        HardwareChoice());
    EXPECT_EQ(5U, engine->hwAccel);
}

TEST_F(DecoderConfiguration, OtherMethodsFallBackOnSoftwareAtOnce) {
    for (const int method : {2, 3, 4}) {
        Set(L"LAV_HWAccel", static_cast<std::uint32_t>(method));
        SetText("LAVVideo.supported", method == 3 ? L"1,5" : L"3,5");
        ClearCalls();
        ExpectLines(Join({Asked(method), Unsupported(method), NoDevices(0, L"None")}), HardwareChoice());
    }
}

TEST_F(DecoderConfiguration, AnUnknownMethodThatIsSupportedIsUsed) {
    Set(L"LAV_HWAccel", 9);
    SetText("LAVVideo.supported", L"9");
    ExpectLines(Join({Asked(9),
                      {L"LAVVideo.CheckHWAccelSupport(9)", L"> HWAccel 9 supported (status=2)"},
                      NoDevices(9, L"Unknown")}),
                HardwareChoice());
}

TEST_F(DecoderConfiguration, DevicesAreListedUpToFour) {
    SetNumber("LAVVideo.devices", 6);
    SetNumber("LAVVideo.device1", E_FAIL);
    ExpectLines(
        Join({Asked(5),
              {L"LAVVideo.CheckHWAccelSupport(5)", L"> HWAccel 5 supported (status=2)",
               L"LAVVideo.SetHWAccel(5)", L"LAVVideo.GetHWAccelNumDevices(5)",
               L"> HWAccel=D3D11, Available devices=6", L"LAVVideo.GetHWAccelDeviceInfo(5, 0)",
               L">   Device[0]: Adapter 0 (ID=0xA0)", L"LAVVideo.GetHWAccelDeviceInfo(5, 1)",
               L"LAVVideo.GetHWAccelDeviceInfo(5, 2)", L">   Device[2]: (null) (ID=0xA2)",
               L"LAVVideo.GetHWAccelDeviceInfo(5, 3)", L">   Device[3]: Adapter 3 (ID=0xA3)",
               L"LAVVideo.GetHWAccelDeviceIndex(5)", L"> Current HWAccel device index=7 (ID=0xBEEF)"}}),
        HardwareChoice());
}

TEST_F(DecoderConfiguration, VideoSettingsFollowTheStore) {
    Set(L"LAV_HWAccel_H264", 0);
    Set(L"LAV_HWAccel_HEVC", 7);
    Set(L"LAV_HWAccel_VP9", 0);
    Set(L"LAV_HWAccel_AV1", 1);
    Set(L"LAV_NumThreads", 12);
    Set(L"LAV_DeintMode", 3);
    Set(L"LAV_TrayIcon", 5);
    Set(L"LAV_HWResFlags", 4);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    Lines lines = CallsOf(L"LAVVideo.Set");
    std::erase_if(lines, [](const std::wstring& line) {
        return line.starts_with(L"LAVVideo.SetPixelFormat") ||
               line.starts_with(L"LAVVideo.SetFormatConfiguration");
    });
    ExpectLines({L"LAVVideo.SetRuntimeConfig(1)", L"LAVVideo.SetHWAccel(5)",
                 L"LAVVideo.SetHWAccelCodec(0, 0)", L"LAVVideo.SetHWAccelCodec(6, 1)",
                 L"LAVVideo.SetHWAccelCodec(7, 0)", L"LAVVideo.SetHWAccelCodec(9, 1)",
                 L"LAVVideo.SetNumThreads(12)", L"LAVVideo.SetDeinterlacingMode(3)",
                 L"LAVVideo.SetTrayIcon(1)", L"LAVVideo.SetHWAccelResolutionFlags(4)"},
                lines);
    EXPECT_EQ((Lines{L"> HW Codec settings - H264=0, HEVC=1, VP9=0, AV1=1"}), CallsOf(L"> HW Codec"));
}

TEST_F(DecoderConfiguration, SplitterSettingsFollowTheStore) {
    settings.values[L"LAV_PreferredLanguages"] = std::wstring(L"jpn,kor");
    settings.values[L"LAV_PreferredSubLanguages"] = std::wstring(L"eng");
    Set(L"LAV_SubtitleMode", 2);
    Set(L"LAV_TrayIcon", 1);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    ExpectLines({L"LAVSplitter.SetRuntimeConfig(1)", L"LAVSplitter.SetPreferredLanguages(jpn,kor)",
                 L"LAVSplitter.SetPreferredSubtitleLanguages(eng)", L"LAVSplitter.SetSubtitleMode(2)",
                 L"LAVSplitter.SetTrayIcon(1)"},
                [this] {
                    Lines lines = CallsOf(L"LAVSplitter.Set");
                    std::erase_if(lines,
                                  [](const auto& line) { return line.find(L"SetPositions") != line.npos; });
                    return lines;
                }());
}

TEST_F(DecoderConfiguration, AnEmptyLanguageListIsAPresentOne) {
    settings.values[L"LAV_PreferredLanguages"] = std::wstring();
    settings.values[L"LAV_PreferredSubLanguages"] = std::wstring();
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"LAVSplitter.SetPreferredLanguages()", L"LAVSplitter.SetPreferredSubtitleLanguages()"}),
              CallsOf(L"LAVSplitter.SetPreferred"));
}

TEST_F(DecoderConfiguration, AudioSettingsFollowTheStore) {
    Set(L"LAV_AudioMixing", 4);
    Set(L"LAV_MixingLayout", 63);
    Set(L"LAV_DRCEnabled", 2);
    Set(L"LAV_DRCLevel", 60);
    Set(L"LAV_ExpandMono", 0);
    Set(L"LAV_TrayIcon", 1);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    ExpectLines({L"LAVAudio.SetRuntimeConfig(1)", L"LAVAudio.SetMixingEnabled(1)",
                 L"LAVAudio.SetMixingLayout(63)", L"LAVAudio.SetDRC(1, 60)", L"LAVAudio.SetExpandMono(0)",
                 L"LAVAudio.SetTrayIcon(1)"},
                CallsOf(L"LAVAudio.Set"));
}

TEST_F(DecoderConfiguration, TheCompressionLevelAloneSetsNothing) {
    Set(L"LAV_DRCLevel", 60);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    ExpectLines({L"LAVAudio.SetRuntimeConfig(1)", L"LAVAudio.SetTrayIcon(0)"}, CallsOf(L"LAVAudio.Set"));
    EXPECT_EQ(0, std::ranges::count(settings.reads, L"LAV_DRCLevel"));
}

TEST_F(DecoderConfiguration, CompressionWithoutLevelIsFull) {
    Set(L"LAV_DRCEnabled", 0);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"LAVAudio.SetDRC(0, 100)"}), CallsOf(L"LAVAudio.SetDRC"));
}

TEST_F(DecoderConfiguration, NumbersOfAnotherTypeCountAsAbsent) {
    for (const wchar_t* name :
         {L"LAV_SubtitleMode", L"LAV_DeintMode", L"LAV_AudioMixing", L"LAV_MixingLayout", L"LAV_DRCEnabled",
          L"LAV_ExpandMono", L"LAV_NumThreads", L"LAV_TrayIcon"}) {
        settings.values[name] = std::wstring(L"1");
    }
    ASSERT_TRUE(engine->OpenFile(kFilm));
    ExpectLines(Join({{L"> OpenFile with HWAccel=5"}, expected::FilmBuild()}), Calls());
}

TEST_F(DecoderConfiguration, FiltersWithoutSettingsAreUsedAsTheyAre) {
    SetNumber("LAVSplitter.noSettings", 1);
    SetNumber("LAVVideo.noSettings", 1);
    SetNumber("LAVAudio.noSettings", 1);
    EXPECT_TRUE(engine->OpenFile(kFilm));
    EXPECT_TRUE(engine->hasVideo);
    EXPECT_EQ((Lines{L"LAVAudio.joins the graph as LAV Audio Decoder",
                     L"LAVAudio.Output connected to AudioSwitcher"}),
              CallsOf(L"LAVAudio."));
    EXPECT_EQ(Lines{}, CallsOf(L"> ConfigureLAVVideo"));
}

TEST_F(DecoderConfiguration, RejectedSettingsChangeNothing) {
    for (const char* key : {"LAVSplitter.rejectSettings", "LAVVideo.rejectSettings",
                            "LAVAudio.rejectSettings", "AudioSwitcher.rejectSettings"}) {
        SetNumber(key, E_FAIL);
    }
    EXPECT_TRUE(engine->OpenFile(kFilm));
    ExpectLines(Join({{L"> OpenFile with HWAccel=5"}, expected::FilmBuild()}), Calls());
}

TEST_F(DecoderConfiguration, NormalizationFollowsTheStore) {
    Set(L"AudioNormalize", 0);
    Set(L"AudioNormalizeRecover", 0);
    Set(L"AudioMaxNormFactor", 250);
    Set(L"AudioBoost", 40);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"AudioSwitcher.SetNormalizeBoost2(0, 250, 0, 40)"}), CallsOf(L"AudioSwitcher.Set"));
    EXPECT_FALSE(engine->audioNormalize);
    EXPECT_FALSE(engine->audioNormalizeRecover);
    EXPECT_FLOAT_EQ(2.5F, engine->audioMaxNormFactor);
    EXPECT_FLOAT_EQ(1.4F, engine->audioBoostGain);
}

TEST_F(DecoderConfiguration, TheSummaryTellsWhatIsDecoding) {
    SetText("LAVVideo.decoderName", L"d3d11va");
    ASSERT_TRUE(engine->OpenFile(kFilm));
    const MediaSummary summary = engine->GetMediaSummary();
    EXPECT_EQ(L"H264", summary.videoCodec);
    EXPECT_EQ(L"d3d11va", summary.decoderName);
    EXPECT_TRUE(summary.isHardware);
    EXPECT_EQ(L"AAC", summary.audioCodec);
    EXPECT_EQ(6, summary.audioChannels);
    EXPECT_EQ(44100, summary.audioSampleRate);
    EXPECT_DOUBLE_EQ(25.0, summary.frameRate);
}

TEST_F(DecoderConfiguration, ASoftwareDecoderIsNoHardware) {
    SetText("LAVVideo.decoderName", L"avcodec");
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_FALSE(engine->GetMediaSummary().isHardware);
    SetText("LAVVideo.decoderName", L"DXVA2");
    EXPECT_FALSE(engine->GetMediaSummary().isHardware);
}

TEST_F(DecoderConfiguration, WithoutGraphTheSummaryIsEmpty) {
    const MediaSummary summary = engine->GetMediaSummary();
    EXPECT_TRUE(summary.videoCodec.empty());
    EXPECT_TRUE(summary.decoderName.empty());
    EXPECT_TRUE(summary.audioCodec.empty());
    EXPECT_EQ(0, summary.audioChannels);
    EXPECT_EQ(0, summary.audioSampleRate);
    EXPECT_DOUBLE_EQ(0.0, summary.frameRate);
}

TEST_F(DecoderConfiguration, WhatTheSummaryCanNotLearnStaysEmpty) {
    SetNumber("LAVAudio.noCodec", 1);
    SetNumber("LAVVideo.noStatus", 1);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    MediaSummary summary = engine->GetMediaSummary();
    EXPECT_TRUE(summary.audioCodec.empty());
    EXPECT_EQ(6, summary.audioChannels);
    EXPECT_TRUE(summary.decoderName.empty());
    EXPECT_EQ(L"H264", summary.videoCodec);
    SetNumber("LAVAudio.details", E_UNEXPECTED);
    summary = engine->GetMediaSummary();
    EXPECT_EQ(0, summary.audioChannels);
}

} // namespace
} // namespace brindlecast::testing
