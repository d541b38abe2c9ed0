#include "tests/filters/audio_decoder/audio_bench.h"

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

using Microsoft::WRL::ComPtr;

class AudioSettingsSlots : public ::testing::Test {
protected:
    const ComPtr<IBaseFilter> filter = AudioModule().CreateFilter(kClsidLavAudio);
    const ComPtr<ILAVAudioSettings> settings = Query<ILAVAudioSettings>(filter, __uuidof(ILAVAudioSettings));
    const ComPtr<ILAVAudioStatus> status = Query<ILAVAudioStatus>(filter, __uuidof(ILAVAudioStatus));

    void SetUp() override {
        ASSERT_TRUE(settings);
        ASSERT_TRUE(status);
    }
};

TEST_F(AudioSettingsSlots, CompressionIsKeptAndClamped) {
    BOOL enabled = TRUE;
    int level = 0;
    EXPECT_EQ(settings->GetDRC(&enabled, &level), S_OK);
    EXPECT_FALSE(enabled);
    EXPECT_EQ(level, 100);
    EXPECT_EQ(settings->SetDRC(TRUE, 40), S_OK);
    EXPECT_EQ(settings->GetDRC(&enabled, &level), S_OK);
    EXPECT_TRUE(enabled);
    EXPECT_EQ(level, 40);
    EXPECT_EQ(settings->SetDRC(FALSE, 250), S_OK);
    EXPECT_EQ(settings->GetDRC(&enabled, nullptr), S_OK);
    EXPECT_FALSE(enabled);
    EXPECT_EQ(settings->GetDRC(nullptr, &level), S_OK);
    EXPECT_EQ(level, 100);
    EXPECT_EQ(settings->SetDRC(TRUE, -5), S_OK);
    EXPECT_EQ(settings->GetDRC(nullptr, &level), S_OK);
    EXPECT_EQ(level, 0);
}

TEST_F(AudioSettingsSlots, ValuesAreKept) {
    EXPECT_EQ(settings->SetRuntimeConfig(TRUE), S_OK);
    EXPECT_FALSE(settings->GetExpandMono());
    EXPECT_EQ(settings->SetExpandMono(TRUE), S_OK);
    EXPECT_TRUE(settings->GetExpandMono());
    EXPECT_FALSE(settings->GetExpand61());
    EXPECT_EQ(settings->SetExpand61(TRUE), S_OK);
    EXPECT_TRUE(settings->GetExpand61());
    EXPECT_FALSE(settings->GetMixingEnabled());
    EXPECT_EQ(settings->SetMixingEnabled(TRUE), S_OK);
    EXPECT_TRUE(settings->GetMixingEnabled());
    EXPECT_EQ(settings->GetMixingLayout(), 3U);
    EXPECT_EQ(settings->SetMixingLayout(0x3F), S_OK);
    EXPECT_EQ(settings->GetMixingLayout(), 0x3FU);
    EXPECT_EQ(settings->SetMixingLayout(0), E_INVALIDARG);
    EXPECT_EQ(settings->SetMixingLayout(0x7FF), E_INVALIDARG);
    EXPECT_EQ(settings->SetMixingLayout(0x80000000), E_INVALIDARG);
    EXPECT_EQ(settings->GetMixingLayout(), 0x3FU);
    EXPECT_EQ(settings->SetTrayIcon(FALSE), S_OK);
}

TEST_F(AudioSettingsSlots, SampleFormatsThatItCanNotGiveOutAreOff) {
    for (int format = 0; format <= kLavSampleFormatBitstream; ++format) {
        const bool given = format != kLavSampleFormatU8 && format != kLavSampleFormatBitstream;
        EXPECT_EQ(status->IsSampleFormatSupported(format), given ? TRUE : FALSE) << format;
        EXPECT_EQ(settings->SetSampleFormat(format, TRUE), given ? S_OK : E_NOTIMPL) << format;
        EXPECT_EQ(settings->GetSampleFormat(format), given ? TRUE : FALSE) << format;
        EXPECT_EQ(settings->SetSampleFormat(format, FALSE), S_OK) << format;
        EXPECT_FALSE(settings->GetSampleFormat(format)) << format;
    }
    EXPECT_EQ(settings->SetSampleFormat(-1, TRUE), E_INVALIDARG);
    EXPECT_EQ(settings->SetSampleFormat(6, TRUE), E_INVALIDARG);
    EXPECT_FALSE(settings->GetSampleFormat(6));
    EXPECT_FALSE(status->IsSampleFormatSupported(6));
}

TEST_F(AudioSettingsSlots, WhatIsNotThereSaysSo) {
    EXPECT_EQ(settings->SetRuntimeConfig(FALSE), E_NOTIMPL);
    EXPECT_EQ(settings->SetFormatConfiguration(0, TRUE), S_OK);
    EXPECT_EQ(settings->SetFormatConfiguration(0, FALSE), E_NOTIMPL);
    EXPECT_EQ(settings->SetFormatConfiguration(64, TRUE), E_INVALIDARG);
    EXPECT_TRUE(settings->GetFormatConfiguration(0));
    EXPECT_FALSE(settings->GetFormatConfiguration(64));
    EXPECT_EQ(settings->SetBitstreamConfig(0, TRUE), E_NOTIMPL);
    EXPECT_FALSE(settings->GetBitstreamConfig(0));
    EXPECT_EQ(settings->SetDTSHDFraming(TRUE), E_NOTIMPL);
    EXPECT_FALSE(settings->GetDTSHDFraming());
    EXPECT_EQ(settings->SetAutoAVSync(FALSE), E_NOTIMPL);
    EXPECT_TRUE(settings->GetAutoAVSync());
    EXPECT_EQ(settings->SetOutputStandardLayout(FALSE), E_NOTIMPL);
    EXPECT_TRUE(settings->GetOutputStandardLayout());
    EXPECT_EQ(settings->SetAllowRawSPDIFInput(TRUE), E_NOTIMPL);
    EXPECT_FALSE(settings->GetAllowRawSPDIFInput());
    EXPECT_EQ(settings->SetAudioDelay(TRUE, 100), E_NOTIMPL);
    BOOL enabled = TRUE;
    int milliseconds = 5;
    EXPECT_EQ(settings->GetAudioDelay(&enabled, &milliseconds), S_OK);
    EXPECT_FALSE(enabled);
    EXPECT_EQ(milliseconds, 0);
    EXPECT_EQ(settings->GetAudioDelay(nullptr, nullptr), S_OK);
    EXPECT_EQ(settings->SetMixingFlags(1), E_NOTIMPL);
    EXPECT_EQ(settings->GetMixingFlags(), 0U);
    EXPECT_EQ(settings->SetMixingMode(1), E_NOTIMPL);
    EXPECT_EQ(settings->GetMixingMode(), 0);
    EXPECT_EQ(settings->SetMixingLevels(1, 2, 3), E_NOTIMPL);
    EXPECT_EQ(settings->GetMixingLevels(nullptr, nullptr, nullptr), E_NOTIMPL);
    EXPECT_EQ(settings->SetTrayIcon(TRUE), E_NOTIMPL);
    EXPECT_FALSE(settings->GetTrayIcon());
    EXPECT_EQ(settings->SetSampleConvertDithering(TRUE), E_NOTIMPL);
    EXPECT_FALSE(settings->GetSampleConvertDithering());
    EXPECT_EQ(settings->SetSuppressFormatChanges(FALSE), E_NOTIMPL);
    EXPECT_TRUE(settings->GetSuppressFormatChanges());
    EXPECT_EQ(settings->SetOutput51LegacyLayout(TRUE), E_NOTIMPL);
    EXPECT_FALSE(settings->GetOutput51LegacyLayout());
    EXPECT_EQ(settings->SetBitstreamingFallback(FALSE), E_NOTIMPL);
    EXPECT_TRUE(settings->GetBitstreamingFallback());
    EXPECT_EQ(status->EnableVolumeStats(), E_NOTIMPL);
    EXPECT_EQ(status->DisableVolumeStats(), E_NOTIMPL);
    EXPECT_EQ(status->GetChannelVolumeAverage(0, nullptr), E_NOTIMPL);
}

TEST_F(AudioSettingsSlots, DetailsFailAndAreEmptyWithoutAConnection) {
    const char* codec = "x";
    const char* format = "x";
    int channels = 5;
    int rate = 5;
    DWORD mask = 5;
    EXPECT_TRUE(FAILED(status->GetDecodeDetails(&codec, &format, &channels, &rate, &mask)));
    EXPECT_EQ(codec, nullptr);
    EXPECT_EQ(format, nullptr);
    EXPECT_EQ(channels, 0);
    EXPECT_EQ(rate, 0);
    EXPECT_EQ(mask, 0U);
    EXPECT_TRUE(FAILED(status->GetOutputDetails(&format, &channels, &rate, &mask)));
    EXPECT_TRUE(FAILED(status->GetOutputDetails(nullptr, nullptr, nullptr, nullptr)));
}

} // namespace
} // namespace brindlecast
