#include "tests/filters/video_decoder/video_bench.h"

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

using Microsoft::WRL::ComPtr;

const std::vector<GUID> kOrder = {MEDIASUBTYPE_NV12, kSubtypeP010,      MEDIASUBTYPE_YV12,
                                  MEDIASUBTYPE_YUY2, MEDIASUBTYPE_AYUV, MEDIASUBTYPE_RGB32};

// The subtypes that a filter offers with a format type, in order.
std::vector<GUID> Offered(IBaseFilter* decoder, const GUID& formatType) {
    std::vector<GUID> subtypes;
    for (const MediaType& type : TypesOf(PinsOf(decoder, PINDIR_OUTPUT)[0].Get())) {
        if (type->formattype == formatType) {
            subtypes.push_back(type->subtype);
        }
    }
    return subtypes;
}

TEST(VideoTypes, OthersThanVideoAreRefused) {
    const auto filter = VideoModule().CreateFilter(kClsidLavVideo);
    const auto input = PinsOf(filter.Get(), PINDIR_INPUT)[0];
    const MediaStream video = ReadStream(L"short.mkv", AVMEDIA_TYPE_VIDEO);
    const MediaStream sound = ReadStream(L"short.mkv", AVMEDIA_TYPE_AUDIO);
    for (const MediaType& type : video.types) {
        EXPECT_EQ(input->QueryAccept(&type.Get()), S_OK);
        MediaType foreign = type;
        foreign.Edit().majortype = MEDIATYPE_Audio;
        EXPECT_NE(input->QueryAccept(&foreign.Get()), S_OK);
        foreign.Edit().majortype = MEDIATYPE_Text;
        EXPECT_NE(input->QueryAccept(&foreign.Get()), S_OK);
    }
    for (const MediaType& type : sound.types) {
        EXPECT_NE(input->QueryAccept(&type.Get()), S_OK);
        MediaType foreign = type;
        foreign.Edit().majortype = MEDIATYPE_Video;
        EXPECT_NE(input->QueryAccept(&foreign.Get()), S_OK);
    }
    EXPECT_EQ(input->QueryAccept(nullptr), E_POINTER);
}

TEST(VideoTypes, FormatsAreOfferedInOrderAndAsSwitchedOn) {
    const MediaStream stream = ReadStream(L"short.mkv", AVMEDIA_TYPE_VIDEO);
    {
        VideoBench bench(stream);
        EXPECT_EQ(Offered(bench.decoder.Get(), FORMAT_VideoInfo2), kOrder);
        EXPECT_EQ(Offered(bench.decoder.Get(), FORMAT_VideoInfo), kOrder);
    }
    VideoBench bench(stream, {}, [](ILAVVideoSettings& settings) {
        settings.SetPixelFormat(kLavPixelFormatNv12, FALSE);
        settings.SetPixelFormat(kLavPixelFormatYv12, FALSE);
    });
    EXPECT_EQ(Offered(bench.decoder.Get(), FORMAT_VideoInfo2),
              (std::vector<GUID>{kSubtypeP010, MEDIASUBTYPE_YUY2, MEDIASUBTYPE_AYUV, MEDIASUBTYPE_RGB32}));
    EXPECT_TRUE(HasSubtype(bench.OutputType(), kSubtypeP010));
}

TEST(VideoTypes, TheHeaderTellsSizeRateAndAspect) {
    VideoBench bench(ReadStream(L"film.mkv", AVMEDIA_TYPE_VIDEO));
    const VIDEOINFOHEADER2& header = bench.OutputHeader();
    EXPECT_EQ(header.bmiHeader.biWidth, 320);
    EXPECT_EQ(header.bmiHeader.biHeight, 180);
    EXPECT_EQ(header.bmiHeader.biBitCount, 12);
    EXPECT_EQ(header.bmiHeader.biCompression, static_cast<DWORD>(MAKEFOURCC('N', 'V', '1', '2')));
    EXPECT_EQ(header.bmiHeader.biSizeImage, 320U * 180 * 3 / 2);
    EXPECT_EQ(header.AvgTimePerFrame, 400'000);
    EXPECT_EQ(header.dwPictAspectRatioX, 16U);
    EXPECT_EQ(header.dwPictAspectRatioY, 9U);
}

TEST(VideoTypes, AnamorphicPicturesKeepTheirShape) {
    const MediaStream stream = ReadStream(L"anamorphic.mp4", AVMEDIA_TYPE_VIDEO);
    VideoBench bench(stream);
    for (const bool decoded : {false, true}) {
        if (decoded) {
            ASSERT_EQ(bench.Push(stream.packets[0], 0), S_OK);
        }
        const VIDEOINFOHEADER2& header = bench.OutputHeader();
        EXPECT_EQ(header.bmiHeader.biWidth, 240);
        EXPECT_EQ(header.bmiHeader.biHeight, 180);
        EXPECT_EQ(header.dwPictAspectRatioX, 16U);
        EXPECT_EQ(header.dwPictAspectRatioY, 9U);
    }
}

// Range (bits 12..14) and matrix (15..17) of the control flags after the first picture.
std::pair<int, int> ColoursOf(const wchar_t* name) {
    const MediaStream stream = ReadStream(name, AVMEDIA_TYPE_VIDEO);
    VideoBench bench(stream);
    EXPECT_EQ(bench.Push(stream.packets[0], stream.packets[0].start), S_OK);
    const DWORD flags = bench.OutputHeader().dwControlFlags;
    EXPECT_EQ(flags & 0x81U, 0x81U) << "no colour information";
    return {(flags >> 12) & 7, (flags >> 15) & 7};
}

TEST(VideoTypes, ColoursAreTold) {
    EXPECT_EQ(ColoursOf(L"film.mkv"), std::pair(2, 1));
    EXPECT_EQ(ColoursOf(L"film_bt601.mkv"), std::pair(2, 2));
    EXPECT_EQ(ColoursOf(L"film_fullrange.mkv").first, 1);
}

TEST(VideoTypes, AReceiverThatRefusesANewTypeForColoursAloneGetsThePicturesAllTheSame) {
    const MediaStream stream = ReadStream(L"short.mkv", AVMEDIA_TYPE_VIDEO);
    int asked = 0;
    VideoBench bench(stream, [&](const MediaType& type) {
        const auto* header = type.Format<VIDEOINFOHEADER2>(FORMAT_VideoInfo2);
        asked += header && header->dwControlFlags != 0;
        return header && header->dwControlFlags == 0 && HasSubtype(type, MEDIASUBTYPE_NV12);
    });
    bench.PushFrom(stream, 0, 0);
    bench.EndOfStream();
    EXPECT_EQ(asked, 1) << "asked once, not for every picture";
    const auto samples = bench.sink->Samples();
    EXPECT_EQ(samples.size(), 75U);
    for (const auto& sample : samples) {
        EXPECT_FALSE(sample.formatChange);
    }
}

TEST(VideoTypes, ANewSizeInTheStreamChangesTheOutput) {
    const MediaStream small = ReadStream(L"short.mkv", AVMEDIA_TYPE_VIDEO);
    const MediaStream large = ReadStream(L"film_1080p.mkv", AVMEDIA_TYPE_VIDEO);
    VideoBench bench(small);
    bench.PushFrom(small, 0, 0);
    const Time100ns later = -40'000'000;
    for (std::size_t i = 0; i < 6; ++i) {
        PushSource::Options options = large.packets[i].In(later);
        options.formatChange = i == 0 ? &large.types[0] : nullptr;
        ASSERT_EQ(bench.source->Push(large.packets[i].bytes.data(), large.packets[i].bytes.size(), options),
                  S_OK);
    }
    bench.EndOfStream();
    const auto samples = bench.sink->Samples();
    ASSERT_EQ(samples.size(), 75U + 6U);
    const auto expected = DecodeStream(large);
    EXPECT_TRUE(samples[75].formatChange);
    EXPECT_EQ(bench.OutputHeader().bmiHeader.biWidth, 1920);
    EXPECT_EQ(bench.OutputHeader().bmiHeader.biHeight, 1080);
    for (std::size_t i = 75; i < samples.size(); ++i) {
        EXPECT_EQ(samples[i].bytes.size(), 1920U * 1080 * 3 / 2);
    }
    EXPECT_TRUE(samples[75].bytes == AsNv12(*expected[0]));
}

TEST(VideoTypes, AReceiverThatRefusesANewSizeIsToldToStop) {
    const MediaStream small = ReadStream(L"short.mkv", AVMEDIA_TYPE_VIDEO);
    const MediaStream large = ReadStream(L"film_1080p.mkv", AVMEDIA_TYPE_VIDEO);
    VideoBench bench(small, [](const MediaType& type) {
        const auto* header = type.Format<VIDEOINFOHEADER2>(FORMAT_VideoInfo2);
        return header && header->bmiHeader.biWidth == 320;
    });
    PushSource::Options options = large.packets[0].In(0);
    options.formatChange = &large.types[0];
    EXPECT_TRUE(
        FAILED(bench.source->Push(large.packets[0].bytes.data(), large.packets[0].bytes.size(), options)));
    EXPECT_TRUE(bench.graph.WaitForEvent(EC_ERRORABORT));
    EXPECT_EQ(bench.sink->Samples().size(), 0U);
}

TEST(VideoTypes, AnUnconnectedFilterTakesEveryCallInSilence) {
    const auto filter = VideoModule().CreateFilter(kClsidLavVideo);
    EXPECT_EQ(filter->Pause(), S_OK);
    EXPECT_EQ(filter->Stop(), S_OK);
    EXPECT_EQ(filter->Run(0), S_OK);
    EXPECT_EQ(filter->Stop(), S_OK);
    for (const PIN_DIRECTION direction : {PINDIR_INPUT, PINDIR_OUTPUT}) {
        const auto pins = PinsOf(filter.Get(), direction);
        ASSERT_EQ(pins.size(), 1U);
        ComPtr<IPin> peer;
        EXPECT_EQ(pins[0]->ConnectedTo(peer.GetAddressOf()), static_cast<HRESULT>(0x80040209));
        EXPECT_NE(NameOf(pins[0].Get())[0], L'~');
    }
    EXPECT_TRUE(TypesOf(PinsOf(filter.Get(), PINDIR_OUTPUT)[0].Get()).empty());
}

} // namespace
} // namespace brindlecast
