#include "tests/graph/graph_fixture.h"

#include <algorithm>

namespace brindlecast::testing {
namespace {

class AudioControl : public GraphTest {
protected:
    void Open() {
        ASSERT_TRUE(engine->OpenFile(kFilm));
        ClearCalls();
        settings.writes.clear();
    }
    std::uint32_t Stored(const wchar_t* name) { return std::get<std::uint32_t>(settings.values.at(name)); }
};

TEST_F(AudioControl, VolumeIsStoredWithoutGraph) {
    EXPECT_FALSE(engine->SetVolume(1.5F));
    EXPECT_FLOAT_EQ(1.0F, engine->volume);
    EXPECT_EQ(100U, Stored(L"Volume"));
    EXPECT_FALSE(engine->SetVolume(0.004F));
    EXPECT_EQ(0U, Stored(L"Volume"));
}

TEST_F(AudioControl, AVolumeOfZeroOpensTheNextFileInSilence) {
    engine->SetVolume(0.004F);
    engine->volume = static_cast<float>(Stored(L"Volume")) / 100.0F;
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"AudioRenderer.put_Volume(-10000)"}), CallsOf(L"AudioRenderer.put_"));
    EXPECT_EQ(0U, Stored(L"Volume"));
}

TEST_F(AudioControl, VolumeReachesTheRenderer) {
    Open();
    EXPECT_TRUE(engine->SetVolume(1.0F));
    EXPECT_TRUE(engine->SetVolume(0.5F));
    EXPECT_TRUE(engine->SetVolume(0.01F));
    EXPECT_TRUE(engine->SetVolume(-0.1F));
    ExpectLines({L"AudioRenderer.put_Volume(0)", L"AudioRenderer.put_Volume(-602)",
                 L"AudioRenderer.put_Volume(-4000)", L"AudioRenderer.put_Volume(-10000)"},
                Calls());
    EXPECT_EQ(0U, Stored(L"Volume"));
    EXPECT_FLOAT_EQ(0.0F, engine->volume);
}

TEST_F(AudioControl, ARefusedVolumeIsReportedAndKept) {
    Open();
    SetNumber("AudioRenderer.putVolume", E_FAIL);
    EXPECT_FALSE(engine->SetVolume(0.3F));
    EXPECT_FLOAT_EQ(0.3F, engine->volume);
}

TEST_F(AudioControl, AStoreThatRefusesDoesNotSilence) {
    Open();
    settings.refusesWrites = true;
    EXPECT_TRUE(engine->SetVolume(0.1F));
    ExpectLines({L"AudioRenderer.put_Volume(-2000)"}, Calls());
}

TEST_F(AudioControl, AStoreThatRefusesDoesNotKeepFromMuting) {
    Open();
    settings.refusesWrites = true;
    engine->SetMuted(true);
    EXPECT_TRUE(engine->muted);
    ExpectLines({L"AudioRenderer.put_Volume(-10000)"}, Calls());
}

TEST_F(AudioControl, MutingKeepsTheVolume) {
    Open();
    engine->SetVolume(0.1F);
    ClearCalls();
    settings.writes.clear();
    engine->SetMuted(true);
    EXPECT_EQ((std::vector<std::wstring>{L"Muted", L"Volume"}), settings.writes);
    EXPECT_EQ(1U, Stored(L"Muted"));
    EXPECT_EQ(10U, Stored(L"Volume"));
    engine->SetMuted(false);
    EXPECT_EQ(0U, Stored(L"Muted"));
    EXPECT_FLOAT_EQ(0.1F, engine->volume);
    ExpectLines({L"AudioRenderer.put_Volume(-10000)", L"AudioRenderer.put_Volume(-2000)"}, Calls());
}

TEST_F(AudioControl, AVolumeSetWhileMutedIsHeardAfterwards) {
    Open();
    engine->SetMuted(true);
    EXPECT_TRUE(engine->SetVolume(0.01F));
    EXPECT_EQ(1U, Stored(L"Volume"));
    engine->SetMuted(false);
    ExpectLines({L"AudioRenderer.put_Volume(-10000)", L"AudioRenderer.put_Volume(-10000)",
                 L"AudioRenderer.put_Volume(-4000)"},
                Calls());
}

TEST_F(AudioControl, MutingIsStoredWithoutGraph) {
    engine->SetMuted(true);
    EXPECT_EQ((std::vector<std::wstring>{L"Muted", L"Volume"}), settings.writes);
    EXPECT_EQ(1U, Stored(L"Muted"));
    EXPECT_EQ(50U, Stored(L"Volume"));
}

TEST_F(AudioControl, NormalizationIsReadInOrderAtEachBuildAndNeverWritten) {
    const std::vector<std::wstring> order = {L"AudioNormalize", L"AudioNormalizeRecover",
                                             L"AudioMaxNormFactor", L"AudioBoost"};
    const auto isOne = [&](const std::wstring& name) {
        return std::ranges::count(order, name) != 0;
    };
    for (int build = 0; build < 2; ++build) {
        settings.reads.clear();
        settings.writes.clear();
        ASSERT_TRUE(engine->OpenFile(kFilm));
        std::erase_if(settings.reads, [&](const std::wstring& name) { return !isOne(name); });
        EXPECT_EQ(order, settings.reads);
        EXPECT_TRUE(std::ranges::none_of(settings.writes, isOne));
    }
}

TEST_F(AudioControl, NormalizationReachesSwitcherAndFields) {
    struct Row {
        std::uint32_t normalize, recover, maxFactor, boost;
        const wchar_t* call;
        float maxFactorField, boostField;
    };
    // Anything but 0 is on.
    for (const Row& row :
         {Row{0, 1, 450, 50, L"AudioSwitcher.SetNormalizeBoost2(0, 450, 1, 50)", 4.5F, 1.5F},
          Row{7, 0, 100, 300, L"AudioSwitcher.SetNormalizeBoost2(1, 100, 0, 300)", 1.0F, 4.0F},
          Row{1, 0x80000000, 0, 0, L"AudioSwitcher.SetNormalizeBoost2(1, 0, 1, 0)", 0.0F, 1.0F}}) {
        settings.values[L"AudioNormalize"] = row.normalize;
        settings.values[L"AudioNormalizeRecover"] = row.recover;
        settings.values[L"AudioMaxNormFactor"] = row.maxFactor;
        settings.values[L"AudioBoost"] = row.boost;
        ClearCalls();
        ASSERT_TRUE(engine->OpenFile(kFilm));
        EXPECT_EQ(Lines{row.call}, CallsOf(L"AudioSwitcher.Set"));
        EXPECT_EQ(row.normalize != 0, engine->audioNormalize);
        EXPECT_EQ(row.recover != 0, engine->audioNormalizeRecover);
        EXPECT_FLOAT_EQ(row.maxFactorField, engine->audioMaxNormFactor);
        EXPECT_FLOAT_EQ(row.boostField, engine->audioBoostGain);
    }
}

TEST_F(AudioControl, WithoutStoredValuesNormalizationIsOnUpToThreefold) {
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ((Lines{L"AudioSwitcher.SetNormalizeBoost2(1, 300, 1, 0)"}), CallsOf(L"AudioSwitcher.Set"));
    EXPECT_TRUE(engine->audioNormalize);
    EXPECT_TRUE(engine->audioNormalizeRecover);
    EXPECT_FLOAT_EQ(3.0F, engine->audioMaxNormFactor);
    EXPECT_FLOAT_EQ(1.0F, engine->audioBoostGain);
}

TEST_F(AudioControl, ASwitcherThatRefusesItsSettingsChangesNothing) {
    SetNumber("AudioSwitcher.rejectSettings", E_FAIL);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_FLOAT_EQ(3.0F, engine->audioMaxNormFactor);
    EXPECT_EQ(1U, CountOf(Calls(), L"AudioSwitcher.Output connected to DirectSound Renderer"));
}

TEST_F(AudioControl, WithoutSwitcherControlTheFieldsKeepTheirFirstValues) {
    SetNumber("AudioSwitcher.noControl", 1);
    settings.values[L"AudioNormalize"] = std::uint32_t{0};
    settings.values[L"AudioNormalizeRecover"] = std::uint32_t{0};
    settings.values[L"AudioMaxNormFactor"] = std::uint32_t{250};
    settings.values[L"AudioBoost"] = std::uint32_t{40};
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(Lines{}, CallsOf(L"AudioSwitcher.Set"));
    EXPECT_TRUE(engine->audioNormalize);
    EXPECT_TRUE(engine->audioNormalizeRecover);
    EXPECT_FLOAT_EQ(4.0F, engine->audioMaxNormFactor);
    EXPECT_FLOAT_EQ(1.0F, engine->audioBoostGain);
}

TEST_F(AudioControl, CompressionNeedsADecoder) {
    bool enabled = false;
    std::uint32_t level = 0;
    EXPECT_FALSE(engine->SetDRC(true, 50));
    EXPECT_FALSE(engine->GetDRC(&enabled, &level));
    engine->ToggleDRC();
    EXPECT_TRUE(settings.writes.empty());
}

TEST_F(AudioControl, CompressionNeedsADecoderWithSettings) {
    SetNumber("LAVAudio.noSettings", 1);
    Open();
    bool enabled = false;
    std::uint32_t level = 0;
    EXPECT_FALSE(engine->SetDRC(true, 50));
    EXPECT_FALSE(engine->GetDRC(&enabled, &level));
    engine->ToggleDRC();
    EXPECT_TRUE(settings.writes.empty());
    EXPECT_EQ(Lines{}, Calls());
}

TEST_F(AudioControl, CompressionIsClampedStoredAndApplied) {
    Open();
    EXPECT_TRUE(engine->SetDRC(true, 250));
    EXPECT_EQ(1U, Stored(L"LAV_DRCEnabled"));
    EXPECT_EQ(100U, Stored(L"LAV_DRCLevel"));
    EXPECT_TRUE(engine->SetDRC(false, -3));
    EXPECT_EQ(0U, Stored(L"LAV_DRCEnabled"));
    EXPECT_EQ(0U, Stored(L"LAV_DRCLevel"));
    ExpectLines({L"LAVAudio.SetDRC(1, 100)", L"LAVAudio.SetDRC(0, 0)"}, Calls());
}

TEST_F(AudioControl, RefusedCompressionIsReportedAndStored) {
    Open();
    SetNumber("LAVAudio.setDrc", E_FAIL);
    EXPECT_FALSE(engine->SetDRC(true, 5));
    EXPECT_EQ((std::vector<std::wstring>{L"LAV_DRCEnabled", L"LAV_DRCLevel"}), settings.writes);
    EXPECT_EQ(5U, Stored(L"LAV_DRCLevel"));
    settings.refusesWrites = true;
    SetNumber("LAVAudio.setDrc", 0);
    EXPECT_TRUE(engine->SetDRC(false, 6)) << "the store's refusal does not matter";
}

TEST_F(AudioControl, CompressionIsRead) {
    Open();
    SetNumber("LAVAudio.drcEnabled", 4);
    SetNumber("LAVAudio.drcLevel", 30);
    bool enabled = false;
    std::uint32_t level = 0;
    EXPECT_TRUE(engine->GetDRC(&enabled, &level));
    EXPECT_TRUE(enabled);
    EXPECT_EQ(30U, level);
    EXPECT_FALSE(engine->GetDRC(nullptr, &level));
    EXPECT_FALSE(engine->GetDRC(&enabled, nullptr));
    SetNumber("LAVAudio.getDrc", E_FAIL);
    EXPECT_FALSE(engine->GetDRC(&enabled, &level));
}

TEST_F(AudioControl, TogglingCompressionKeepsItsLevel) {
    Open();
    SetNumber("LAVAudio.drcEnabled", 1);
    SetNumber("LAVAudio.drcLevel", 30);
    engine->ToggleDRC();
    SetNumber("LAVAudio.drcEnabled", 0);
    engine->ToggleDRC();
    ExpectLines({L"LAVAudio.SetDRC(0, 30)", L"LAVAudio.SetDRC(1, 30)"}, Calls());
}

TEST_F(AudioControl, TogglingUnreadableCompressionGoesByTheStore) {
    Open();
    SetNumber("LAVAudio.getDrc", E_FAIL);
    engine->ToggleDRC();
    engine->ToggleDRC();
    ExpectLines({L"LAVAudio.SetDRC(1, 100)", L"LAVAudio.SetDRC(0, 100)"}, Calls());
}

} // namespace
} // namespace brindlecast::testing
