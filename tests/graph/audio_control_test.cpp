#include "tests/graph/graph_fixture.h"

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
    static constexpr const wchar_t* kTracks =
        L"video:1:H.264;audio:0:Korean;subtitle:0:English [subrip];audio:1:Japanese;text:1:-;audio:1:-";
};

TEST_F(AudioControl, VolumeIsStoredWithoutGraph) {
    EXPECT_FALSE(engine->SetVolume(1.5F));
    EXPECT_FLOAT_EQ(1.0F, engine->volume);
    EXPECT_EQ(100U, Stored(L"Volume"));
    EXPECT_FALSE(engine->SetVolume(0.004F));
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
    ExpectLines({L"AudioRenderer.put_Volume(-10000)", L"AudioRenderer.put_Volume(-2000)"}, Calls());
}

TEST_F(AudioControl, CompressionNeedsADecoder) {
    bool enabled = false;
    std::uint32_t level = 0;
    EXPECT_FALSE(engine->SetDRC(true, 50));
    EXPECT_FALSE(engine->GetDRC(&enabled, &level));
    engine->ToggleDRC();
    EXPECT_TRUE(settings.writes.empty());
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
    SetNumber("LAVAudio.setDrc", E_FAIL);
    EXPECT_FALSE(engine->SetDRC(true, 5));
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

TEST_F(AudioControl, TracksAreCountedByKind) {
    SetText("LAVSplitter.streams", kTracks);
    Open();
    EXPECT_EQ(3, engine->GetAudioTrackCount());
    EXPECT_EQ(1, engine->GetActiveAudioTrack()) << "of two enabled ones the first";
    EXPECT_EQ(L"Korean", engine->GetAudioTrackName(0));
    EXPECT_EQ(L"Japanese", engine->GetAudioTrackName(1));
    EXPECT_EQ(L"", engine->GetAudioTrackName(2));
    EXPECT_EQ(L"", engine->GetAudioTrackName(3));
    EXPECT_EQ(2, engine->GetEmbeddedSubtitleCount());
    EXPECT_EQ(L"English [subrip]", engine->GetEmbeddedSubtitleName(0));
    EXPECT_EQ(L"", engine->GetEmbeddedSubtitleName(1));
    EXPECT_EQ(L"", engine->GetEmbeddedSubtitleName(-1));
    EXPECT_EQ(2, engine->MapEmbeddedSubtitleStream(0));
    EXPECT_EQ(4, engine->MapEmbeddedSubtitleStream(1));
    EXPECT_EQ(-1, engine->MapEmbeddedSubtitleStream(2));
}

TEST_F(AudioControl, SelectingEnablesTheStreamBehindTheOrdinal) {
    SetText("LAVSplitter.streams", kTracks);
    Open();
    EXPECT_TRUE(engine->SelectAudioTrack(1));
    EXPECT_TRUE(engine->SelectAudioTrack(0));
    EXPECT_FALSE(engine->SelectAudioTrack(3));
    ExpectLines({L"LAVSplitter.Enable(3, 1)", L"LAVSplitter.Enable(1, 1)"}, Calls());
    SetNumber("LAVSplitter.enable", E_FAIL);
    EXPECT_FALSE(engine->SelectAudioTrack(1));
}

TEST_F(AudioControl, AStreamThatCanNotBeAskedIsPassedOver) {
    SetText("LAVSplitter.streams", kTracks);
    Open();
    SetNumber("LAVSplitter.infoFails", 1);
    EXPECT_EQ(2, engine->GetAudioTrackCount());
    EXPECT_EQ(0, engine->GetActiveAudioTrack());
    EXPECT_EQ(L"Japanese", engine->GetAudioTrackName(0));
}

TEST_F(AudioControl, WithoutEnabledStreamNoneIsActive) {
    SetText("LAVSplitter.streams", L"audio:0:Korean");
    Open();
    EXPECT_EQ(-1, engine->GetActiveAudioTrack());
}

TEST_F(AudioControl, WithoutStreamSelectionThereAreNoTracks) {
    const auto expectNone = [this] {
        EXPECT_EQ(0, engine->GetAudioTrackCount());
        EXPECT_EQ(-1, engine->GetActiveAudioTrack());
        EXPECT_EQ(L"", engine->GetAudioTrackName(0));
        EXPECT_FALSE(engine->SelectAudioTrack(0));
        EXPECT_EQ(0, engine->GetEmbeddedSubtitleCount());
        EXPECT_EQ(L"", engine->GetEmbeddedSubtitleName(0));
        EXPECT_EQ(-1, engine->MapEmbeddedSubtitleStream(0));
    };
    expectNone();
    Open();
    SetNumber("LAVSplitter.countResult", E_FAIL);
    expectNone();
    SetNumber("LAVSplitter.countResult", 0);
    SetNumber("LAVSplitter.noStreamSelect", 1);
    expectNone();
}

} // namespace
} // namespace brindlecast::testing
