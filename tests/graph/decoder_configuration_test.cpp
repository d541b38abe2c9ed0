#include "tests/graph/graph_fixture.h"

#include <algorithm>

namespace brindlecast::testing {
namespace {

class DecoderConfiguration : public GraphTest {
protected:
    void Set(const wchar_t* name, std::uint32_t value) { settings.values[name] = value; }
    // What the splitter is set to, without the graph's seeks.
    static Lines SplitterSettings() {
        Lines lines = CallsOf(L"LAVSplitter.Set");
        std::erase_if(lines,
                      [](const std::wstring& line) { return line.starts_with(L"LAVSplitter.SetPositions"); });
        return lines;
    }
};

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
                SplitterSettings());
}

TEST_F(DecoderConfiguration, AnEmptyLanguageListIsAPresentOne) {
    settings.values[L"LAV_PreferredLanguages"] = std::wstring();
    settings.values[L"LAV_PreferredSubLanguages"] = std::wstring();
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"LAVSplitter.SetPreferredLanguages()", L"LAVSplitter.SetPreferredSubtitleLanguages()"}),
              CallsOf(L"LAVSplitter.SetPreferred"));
}

TEST_F(DecoderConfiguration, LanguagesOfAnotherTypeCountAsAbsent) {
    Set(L"LAV_PreferredLanguages", 1);
    Set(L"LAV_PreferredSubLanguages", 1);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    ExpectLines({L"LAVSplitter.SetRuntimeConfig(1)", L"LAVSplitter.SetPreferredLanguages(kor,eng,jpn)",
                 L"LAVSplitter.SetTrayIcon(0)"},
                SplitterSettings());
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

TEST_F(DecoderConfiguration, TheCompressionLevelIsTakenByItsFirstBytes) {
    Set(L"LAV_DRCEnabled", 1);
    settings.values[L"LAV_DRCLevel"] = FakeSettingsStore::Bytes{40, 0, 0, 0, 9};
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"LAVAudio.SetDRC(1, 40)"}), CallsOf(L"LAVAudio.SetDRC"));
}

TEST_F(DecoderConfiguration, ACompressionLevelBeyondTheRangeIsPassedOn) {
    Set(L"LAV_DRCEnabled", 1);
    Set(L"LAV_DRCLevel", 250);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"LAVAudio.SetDRC(1, 250)"}), CallsOf(L"LAVAudio.SetDRC"));
}

TEST_F(DecoderConfiguration, NumbersOfAnotherTypeCountAsAbsent) {
    for (const wchar_t* name :
         {L"LAV_SubtitleMode", L"LAV_DeintMode", L"LAV_AudioMixing", L"LAV_MixingLayout", L"LAV_DRCEnabled",
          L"LAV_ExpandMono", L"LAV_NumThreads", L"LAV_TrayIcon", L"LAV_HWAccel_H264", L"LAV_HWAccel_HEVC",
          L"LAV_HWAccel_VP9", L"LAV_HWAccel_AV1", L"LAV_HWResFlags"}) {
        settings.values[name] = std::wstring(L"0");
    }
    ASSERT_TRUE(engine->OpenFile(kFilm));
    ExpectLines(Join({{L"> OpenFile with HWAccel=5"}, expected::FilmBuild()}), Calls());
}

TEST_F(DecoderConfiguration, FiltersWithoutSettingsAreUsedAsTheyAre) {
    const auto without = [](const Lines& lines, std::initializer_list<const wchar_t*> starts) {
        Lines kept = lines;
        std::erase_if(kept, [&](const std::wstring& line) {
            return std::ranges::any_of(starts, [&](const wchar_t* start) { return line.starts_with(start); });
        });
        return kept;
    };
    const Lines film =
        without(Join({{L"> OpenFile with HWAccel=5"}, expected::FilmBuild()}),
                {L"LAVSplitter.SetRuntimeConfig", L"LAVSplitter.SetPreferredLanguages",
                 L"LAVSplitter.SetTrayIcon", L"LAVVideo.Set", L"LAVVideo.Get", L"LAVVideo.Check",
                 L"LAVAudio.Set", L"> ConfigureLAVVideo", L"> HWAccel", L"> Current HWAccel", L"> HW Codec"});
    // Not offered, and offered without being handed out.
    for (const long answer : {1L, 2L}) {
        SetNumber("LAVSplitter.noSettings", answer);
        SetNumber("LAVVideo.noSettings", answer);
        SetNumber("LAVAudio.noSettings", answer);
        engine->CloseGraph();
        ClearCalls();
        EXPECT_TRUE(engine->OpenFile(kFilm));
        ExpectLines(film, Calls());
        EXPECT_FALSE(engine->SetDRC(true, 50));
    }
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

} // namespace
} // namespace brindlecast::testing
