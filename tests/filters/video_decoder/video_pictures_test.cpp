#include "filters/base/stream_formats.h"
#include "tests/filters/video_decoder/video_bench.h"
#include "tests/support/frame_mark.h"

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

// A sample of RGB32 as the sink got it: last row first.
brindlecast::testing::BgraView ViewOf(const std::vector<BYTE>& bytes, int width, int height) {
    const std::ptrdiff_t stride = std::ptrdiff_t{width} * 4;
    return {bytes.data() + stride * (height - 1), width, height, -stride};
}

TEST(VideoPictures, EveryBitOfAFileIsAsTheLibraryDecodesIt) {
    const MediaStream stream = ReadStream(L"film.mkv", AVMEDIA_TYPE_VIDEO);
    const auto expected = DecodeStream(stream);
    ASSERT_EQ(expected.size(), 500U);
    VideoBench bench(stream);
    ASSERT_TRUE(HasSubtype(bench.OutputType(), MEDIASUBTYPE_NV12));
    bench.source->Pin().DeliverNewSegment({0, 200'000'000, 1.0});
    bench.PushFrom(stream, 0, 0);
    bench.EndOfStream();
    const auto samples = bench.sink->Samples();
    ASSERT_EQ(samples.size(), expected.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        EXPECT_EQ(samples[i].start, expected[i]->pts) << i;
        ASSERT_TRUE(samples[i].stop) << i;
        EXPECT_NEAR(static_cast<double>(*samples[i].stop - *samples[i].start), 400'000, 10'000) << i;
        EXPECT_TRUE(samples[i].syncPoint) << i;
        EXPECT_EQ(samples[i].discontinuity, i == 0) << i;
        ASSERT_EQ(samples[i].bytes == AsNv12(*expected[i]), true) << i;
    }
    EXPECT_EQ(bench.sink->Events().back().kind, RecordingSink::Kind::EndOfStream);
}

TEST(VideoPictures, FrameNumbersRiseOneByOneInAnMp4) {
    const MediaStream stream = ReadStream(L"film.mp4", AVMEDIA_TYPE_VIDEO);
    VideoBench bench(stream, [](const MediaType& type) { return HasSubtype(type, MEDIASUBTYPE_RGB32); });
    bench.PushFrom(stream, 0, 0);
    bench.EndOfStream();
    const auto samples = bench.sink->Samples();
    ASSERT_EQ(samples.size(), 500U);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        ASSERT_EQ(ReadFrameMark(ViewOf(samples[i].bytes, 320, 180), {0, 0, 320, 180}), static_cast<int>(i));
        EXPECT_EQ(*samples[i].start, static_cast<Time100ns>(i) * 400'000);
    }
}

// Every output format is offered to a receiver that takes nothing else, and has the right size.
TEST(VideoPictures, EachFormatReachesAReceiverThatTakesNothingElse) {
    const MediaStream stream = ReadStream(L"short.mkv", AVMEDIA_TYPE_VIDEO);
    const std::pair<GUID, std::size_t> formats[] = {
        {MEDIASUBTYPE_NV12, 320 * 180 * 3 / 2}, {kSubtypeP010, 320 * 180 * 3},
        {MEDIASUBTYPE_YV12, 320 * 180 * 3 / 2}, {MEDIASUBTYPE_YUY2, 320 * 180 * 2},
        {MEDIASUBTYPE_AYUV, 320 * 180 * 4},     {MEDIASUBTYPE_RGB32, 320 * 180 * 4}};
    for (const auto& [subtype, bytes] : formats) {
        VideoBench bench(stream, [&](const MediaType& type) { return HasSubtype(type, subtype); });
        bench.PushFrom(stream, 0, 0);
        bench.EndOfStream();
        const auto samples = bench.sink->Samples();
        ASSERT_EQ(samples.size(), 75U);
        EXPECT_EQ(samples.front().bytes.size(), bytes);
        EXPECT_EQ(bench.OutputType()->lSampleSize, bytes);
    }
}

TEST(VideoPictures, Rgb32HasTheColoursOfTheSourceWhateverItsMatrixAndRange) {
    for (const wchar_t* name : {L"film.mp4", L"film_bt601.mkv", L"film_fullrange.mkv"}) {
        const MediaStream stream = ReadStream(name, AVMEDIA_TYPE_VIDEO);
        VideoBench bench(stream, [](const MediaType& type) { return HasSubtype(type, MEDIASUBTYPE_RGB32); });
        ASSERT_EQ(bench.Push(stream.packets[0], stream.packets[0].start), S_OK);
        const auto samples = bench.sink->Samples();
        ASSERT_EQ(samples.size(), 1U);
        const auto colours = ReadColourPatches(ViewOf(samples[0].bytes, 320, 180), {0, 0, 320, 180});
        ASSERT_TRUE(colours);
        EXPECT_LE(brindlecast::testing::LargestPatchError(*colours), 6);
    }
}

TEST(VideoPictures, BrokenDataCostsPicturesAndNothingElse) {
    const MediaStream stream = ReadStream(L"film.mkv", AVMEDIA_TYPE_VIDEO);
    VideoBench bench(stream);
    std::uint32_t random = 99;
    auto next = [&] {
        return random = random * 1664525U + 1013904223U;
    };
    for (std::size_t i = 0; i < 150; ++i) {
        MediaPacket packet = stream.packets[i];
        for (int n = 0; n < 4; ++n) {
            packet.bytes[next() % packet.bytes.size()] = static_cast<std::uint8_t>(next() >> 24);
        }
        ASSERT_EQ(bench.Push(packet, 0), S_OK);
    }
    const BYTE garbage[] = {0xFF, 0x00, 0x12};
    ASSERT_EQ(bench.source->Push(garbage, sizeof garbage, {}), S_OK);
    ASSERT_EQ(bench.source->Push(nullptr, 0, {}), S_OK);
    bench.sink->Clear();
    const std::size_t keyframe = stream.KeyframeBefore(100'000'000);
    const Time100ns start = stream.packets[keyframe].start;
    bench.source->FlushAndSegment(start, 200'000'000, 1.0);
    bench.PushFrom(stream, keyframe, start);
    bench.EndOfStream();
    const auto expected = DecodeStream(stream, keyframe);
    const auto samples = bench.sink->Samples();
    ASSERT_EQ(samples.size(), expected.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        ASSERT_EQ(samples[i].bytes == AsNv12(*expected[i]), true) << i;
    }
}

TEST(VideoPictures, RotationAndLightLevelsTravelWithThePictures) {
    const MediaStream stream = ReadStream(L"short.mkv", AVMEDIA_TYPE_VIDEO);
    const GUID matrixKind = PacketSideDataKind(AV_PKT_DATA_DISPLAYMATRIX);
    const GUID lightKind = PacketSideDataKind(AV_PKT_DATA_CONTENT_LIGHT_LEVEL);
    // A quarter turn in 16.16 fixed point, and 1000 and 400 candela.
    const std::int32_t turn[9] = {0, 65536, 0, -65536, 0, 0, 0, 0, 1 << 30};
    const std::uint32_t light[2] = {1000, 400};
    const auto* turnBytes = reinterpret_cast<const BYTE*>(turn);
    const auto* lightBytes = reinterpret_cast<const BYTE*>(light);
    const std::vector<BYTE> matrix(turnBytes, turnBytes + sizeof turn);
    const std::vector<BYTE> levels(lightBytes, lightBytes + sizeof light);
    VideoBench bench(stream);
    for (std::size_t i = 0; i < 40; ++i) {
        MediaPacket packet = stream.packets[i];
        packet.sideData = {{matrixKind, matrix}, {lightKind, levels}};
        ASSERT_EQ(bench.Push(packet, 0), S_OK);
    }
    const auto samples = bench.sink->Samples();
    ASSERT_GT(samples.size(), 10U);
    for (const auto& sample : samples) {
        ASSERT_EQ(sample.sideData.size(), 2U);
        for (const auto& [kind, bytes] : sample.sideData) {
            EXPECT_EQ(bytes, kind == matrixKind ? matrix : levels);
            EXPECT_TRUE(kind == matrixKind || kind == lightKind);
        }
    }
}

} // namespace
} // namespace brindlecast
