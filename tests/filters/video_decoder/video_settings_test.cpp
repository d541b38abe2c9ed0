#include "tests/filters/video_decoder/video_bench.h"

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

using Microsoft::WRL::ComPtr;

class VideoSettingsSlots : public ::testing::Test {
protected:
    const ComPtr<IBaseFilter> filter = VideoModule().CreateFilter(kClsidLavVideo);
    const ComPtr<ILAVVideoSettings> settings = Query<ILAVVideoSettings>(filter, __uuidof(ILAVVideoSettings));
    const ComPtr<ILAVVideoStatus> status = Query<ILAVVideoStatus>(filter, __uuidof(ILAVVideoStatus));

    void SetUp() override {
        ASSERT_TRUE(settings);
        ASSERT_TRUE(status);
    }
};

TEST_F(VideoSettingsSlots, WhatThePlayerSetsIsTaken) {
    EXPECT_EQ(settings->SetRuntimeConfig(TRUE), S_OK);
    EXPECT_EQ(settings->SetHWAccel(0), S_OK);
    for (const int codec : {0, 6, 7, 9}) {
        EXPECT_EQ(settings->SetHWAccelCodec(codec, TRUE), S_OK);
    }
    EXPECT_EQ(settings->SetNumThreads(0), S_OK);
    EXPECT_EQ(settings->SetTrayIcon(FALSE), S_OK);
    EXPECT_EQ(settings->SetHWAccelResolutionFlags(7), S_OK);
    for (int codec = 0; codec < 64; ++codec) {
        EXPECT_EQ(settings->SetFormatConfiguration(codec, TRUE), S_OK) << codec;
        EXPECT_TRUE(settings->GetFormatConfiguration(codec)) << codec;
    }
}

TEST_F(VideoSettingsSlots, ValuesAreKept) {
    EXPECT_EQ(settings->GetNumThreads(), 0U);
    EXPECT_EQ(settings->SetNumThreads(3), S_OK);
    EXPECT_EQ(settings->GetNumThreads(), 3U);
    EXPECT_EQ(settings->SetNumThreads(100'000), E_INVALIDARG);
    EXPECT_EQ(settings->GetNumThreads(), 3U);

    EXPECT_EQ(settings->GetStreamAR(), 2U);
    EXPECT_EQ(settings->SetStreamAR(1), S_OK);
    EXPECT_EQ(settings->GetStreamAR(), 1U);
    EXPECT_EQ(settings->SetStreamAR(3), E_INVALIDARG);

    for (const int codec : {0, 1, 3, 4, 5, 6, 7, 8, 9}) {
        EXPECT_TRUE(settings->GetHWAccelCodec(codec)) << codec;
        EXPECT_EQ(settings->SetHWAccelCodec(codec, FALSE), S_OK) << codec;
        EXPECT_FALSE(settings->GetHWAccelCodec(codec)) << codec;
    }
    for (const int codec : {-1, 2, 10}) {
        EXPECT_EQ(settings->SetHWAccelCodec(codec, TRUE), E_INVALIDARG) << codec;
        EXPECT_FALSE(settings->GetHWAccelCodec(codec)) << codec;
    }

    EXPECT_EQ(settings->GetHWAccelResolutionFlags(), 7U);
    EXPECT_EQ(settings->SetHWAccelResolutionFlags(2), S_OK);
    EXPECT_EQ(settings->GetHWAccelResolutionFlags(), 2U);
    EXPECT_EQ(settings->SetHWAccelResolutionFlags(8), E_INVALIDARG);
}

TEST_F(VideoSettingsSlots, PixelFormatsThatItCanNotMakeAreOff) {
    for (int format = 0; format < kLavPixelFormatCount; ++format) {
        const bool made = format == kLavPixelFormatNv12 || format == kLavPixelFormatP010 ||
                          format == kLavPixelFormatYv12 || format == kLavPixelFormatYuy2 ||
                          format == kLavPixelFormatAyuv || format == kLavPixelFormatRgb32;
        EXPECT_EQ(settings->SetPixelFormat(format, TRUE), made ? S_OK : E_NOTIMPL) << format;
        EXPECT_EQ(settings->GetPixelFormat(format), made ? TRUE : FALSE) << format;
        EXPECT_EQ(settings->SetPixelFormat(format, FALSE), S_OK) << format;
        EXPECT_FALSE(settings->GetPixelFormat(format)) << format;
    }
    EXPECT_EQ(settings->SetPixelFormat(-1, TRUE), E_INVALIDARG);
    EXPECT_EQ(settings->SetPixelFormat(18, TRUE), E_INVALIDARG);
    EXPECT_FALSE(settings->GetPixelFormat(18));
}

TEST_F(VideoSettingsSlots, HardwareDecodingIsAnsweredHonestly) {
    for (const int method : {1, 2, 3, 4, 5, 6, -1}) {
        EXPECT_EQ(settings->CheckHWAccelSupport(method), 0U) << method;
        EXPECT_EQ(settings->GetHWAccelNumDevices(method), 0U) << method;
        EXPECT_NE(settings->SetHWAccel(method), S_OK) << method;
    }
    EXPECT_EQ(settings->GetHWAccel(), 0);
    auto* name = reinterpret_cast<BSTR>(8);
    DWORD id = 8;
    EXPECT_TRUE(FAILED(settings->GetHWAccelDeviceInfo(5, 0, &name, &id)));
    EXPECT_EQ(name, nullptr);
    EXPECT_EQ(id, 0U);
    EXPECT_TRUE(FAILED(settings->GetHWAccelDeviceInfo(5, 0, nullptr, nullptr)));
    id = 8;
    EXPECT_EQ(settings->GetHWAccelDeviceIndex(5, &id), 0xFFFFFFFFU);
    EXPECT_EQ(id, 0U);
    EXPECT_EQ(settings->GetHWAccelDeviceIndex(5, nullptr), 0xFFFFFFFFU);
}

TEST_F(VideoSettingsSlots, WhatIsNotThereSaysSo) {
    EXPECT_EQ(settings->SetRGBOutputRange(1), E_NOTIMPL);
    EXPECT_EQ(settings->GetRGBOutputRange(), 0U);
    EXPECT_EQ(settings->SetDeintFieldOrder(1), E_NOTIMPL);
    EXPECT_EQ(settings->GetDeintFieldOrder(), 0);
    EXPECT_EQ(settings->SetDeintAggressive(TRUE), E_NOTIMPL);
    EXPECT_FALSE(settings->GetDeintAggressive());
    EXPECT_EQ(settings->SetDeintForce(TRUE), E_NOTIMPL);
    EXPECT_FALSE(settings->GetDeintForce());
    EXPECT_EQ(settings->SetHWAccelDeintMode(1), E_NOTIMPL);
    EXPECT_EQ(settings->GetHWAccelDeintMode(), 0);
    EXPECT_EQ(settings->SetHWAccelDeintOutput(1), E_NOTIMPL);
    EXPECT_EQ(settings->GetHWAccelDeintOutput(), 0);
    EXPECT_EQ(settings->SetHWAccelDeintHQ(TRUE), E_NOTIMPL);
    EXPECT_FALSE(settings->GetHWAccelDeintHQ());
    EXPECT_EQ(settings->SetSWDeintMode(1), E_NOTIMPL);
    EXPECT_EQ(settings->GetSWDeintMode(), 0);
    EXPECT_EQ(settings->SetSWDeintOutput(1), E_NOTIMPL);
    EXPECT_EQ(settings->GetSWDeintOutput(), 0);
    EXPECT_EQ(settings->SetDeintTreatAsProgressive(FALSE), E_NOTIMPL);
    EXPECT_TRUE(settings->GetDeintTreatAsProgressive());
    EXPECT_EQ(settings->SetDitherMode(1), E_NOTIMPL);
    EXPECT_EQ(settings->GetDitherMode(), 0);
    EXPECT_EQ(settings->SetUseMSWMV9Decoder(TRUE), E_NOTIMPL);
    EXPECT_FALSE(settings->GetUseMSWMV9Decoder());
    EXPECT_EQ(settings->SetDVDVideoSupport(TRUE), E_NOTIMPL);
    EXPECT_FALSE(settings->GetDVDVideoSupport());
    EXPECT_EQ(settings->SetTrayIcon(TRUE), E_NOTIMPL);
    EXPECT_FALSE(settings->GetTrayIcon());
    for (const int mode : {kLavDeinterlacingAuto, kLavDeinterlacingAggressive, kLavDeinterlacingForce}) {
        EXPECT_EQ(settings->SetDeinterlacingMode(mode), E_NOTIMPL);
    }
    EXPECT_EQ(settings->SetDeinterlacingMode(kLavDeinterlacingDisable), S_OK);
    EXPECT_EQ(settings->SetDeinterlacingMode(4), E_INVALIDARG);
    EXPECT_EQ(settings->GetDeinterlacingMode(), kLavDeinterlacingDisable);
    EXPECT_EQ(settings->SetGPUDeviceIndex(0), E_NOTIMPL);
    EXPECT_EQ(settings->SetHWAccelDeviceIndex(5, 0, 0), E_NOTIMPL);
    EXPECT_EQ(settings->SetH264MVCDecodingOverride(TRUE), E_NOTIMPL);
    EXPECT_EQ(settings->SetEnableCCOutputPin(TRUE), E_NOTIMPL);
    EXPECT_EQ(settings->SetRuntimeConfig(FALSE), E_NOTIMPL);
    EXPECT_EQ(settings->SetFormatConfiguration(0, FALSE), E_NOTIMPL);
    EXPECT_EQ(settings->SetFormatConfiguration(64, TRUE), E_INVALIDARG);
    EXPECT_FALSE(settings->GetFormatConfiguration(64));
}

TEST_F(VideoSettingsSlots, TheDecodersNameIsThereWhileItIsConnected) {
    EXPECT_EQ(status->GetActiveDecoderName(), nullptr);
    EXPECT_EQ(status->GetHWAccelActiveDevice(nullptr), E_POINTER);
    auto* device = reinterpret_cast<BSTR>(8);
    EXPECT_TRUE(FAILED(status->GetHWAccelActiveDevice(&device)));
    EXPECT_EQ(device, nullptr);

    const MediaStream stream = ReadStream(L"short.mkv", AVMEDIA_TYPE_VIDEO);
    VideoBench bench(stream);
    const auto connected = Query<ILAVVideoStatus>(bench.decoder, __uuidof(ILAVVideoStatus));
    EXPECT_STREQ(connected->GetActiveDecoderName(), L"avcodec");
    ASSERT_EQ(bench.graph.Stop(), S_OK);
    EXPECT_EQ(bench.graph.Graph()->Disconnect(PinsOf(bench.decoder.Get(), PINDIR_INPUT)[0].Get()), S_OK);
    EXPECT_EQ(connected->GetActiveDecoderName(), nullptr);
}

TEST_F(VideoSettingsSlots, OneObjectAnswersForAllItsInterfaces) {
    const auto again = Query<IBaseFilter>(settings, IID_IBaseFilter);
    EXPECT_EQ(again.Get(), filter.Get());
    EXPECT_FALSE(Query<IMediaSeeking>(filter, IID_IMediaSeeking));
    EXPECT_TRUE(Query<IMediaSeeking>(PinsOf(filter.Get(), PINDIR_OUTPUT)[0], IID_IMediaSeeking));
}

} // namespace
} // namespace brindlecast
