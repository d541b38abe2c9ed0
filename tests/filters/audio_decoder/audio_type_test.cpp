#include "filters/base/audio_type.h"
#include "tests/filters/audio_decoder/audio_bench.h"

#include <cstring>

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

using Microsoft::WRL::ComPtr;

// Raw 16-bit sound as a compressed stream: what the decoder makes of it is known without a library.
MediaStream RawSound(int channels, std::uint32_t mask, int frames) {
    MediaStream stream;
    AudioFormat format{SampleKind::kSigned16, 48'000, channels, mask};
    stream.types = {MakeAudioType(format)};
    MediaPacket packet;
    for (int i = 0; i < frames; ++i) {
        for (int channel = 0; channel < channels; ++channel) {
            const auto sample = static_cast<std::int16_t>(1000 * (channel + 1) + i % 100);
            packet.bytes.push_back(static_cast<std::uint8_t>(sample));
            packet.bytes.push_back(static_cast<std::uint8_t>(sample >> 8));
        }
    }
    packet.start = 0;
    packet.keyframe = true;
    stream.packets.push_back(std::move(packet));
    return stream;
}

std::vector<std::int16_t> Samples16(const std::vector<BYTE>& bytes) {
    std::vector<std::int16_t> samples(bytes.size() / 2);
    std::memcpy(samples.data(), bytes.data(), samples.size() * 2);
    return samples;
}

TEST(AudioTypes, OthersThanSoundAreRefused) {
    const auto filter = AudioModule().CreateFilter(kClsidLavAudio);
    const auto input = PinsOf(filter.Get(), PINDIR_INPUT)[0];
    const MediaStream video = ReadStream(L"short.mkv", AVMEDIA_TYPE_VIDEO);
    const MediaStream sound = ReadStream(L"short.mkv", AVMEDIA_TYPE_AUDIO);
    for (const MediaType& type : sound.types) {
        EXPECT_EQ(input->QueryAccept(&type.Get()), S_OK);
        MediaType foreign = type;
        foreign.Edit().majortype = MEDIATYPE_Video;
        EXPECT_NE(input->QueryAccept(&foreign.Get()), S_OK);
    }
    for (const MediaType& type : video.types) {
        EXPECT_NE(input->QueryAccept(&type.Get()), S_OK);
        MediaType foreign = type;
        foreign.Edit().majortype = MEDIATYPE_Audio;
        EXPECT_NE(input->QueryAccept(&foreign.Get()), S_OK);
    }
    EXPECT_EQ(input->QueryAccept(nullptr), E_POINTER);
}

TEST(AudioTypes, WhatIsWithoutLossComesFirstThenSixteenBits) {
    AudioBench bench(ReadStream(L"film.mkv", AVMEDIA_TYPE_AUDIO));
    std::vector<SampleKind> kinds;
    for (const MediaType& type : TypesOf(PinsOf(bench.decoder.Get(), PINDIR_OUTPUT)[0].Get())) {
        const auto format = ReadAudioType(type.Get());
        ASSERT_TRUE(format);
        EXPECT_EQ(format->sampleRate, 48'000);
        EXPECT_EQ(format->channels, 2);
        kinds.push_back(format->kind);
    }
    EXPECT_EQ(kinds, (std::vector<SampleKind>{SampleKind::kFloat32, SampleKind::kSigned16,
                                              SampleKind::kSigned24, SampleKind::kSigned32}));
}

TEST(AudioTypes, ASampleFormatThatIsSwitchedOffIsNotOffered) {
    AudioBench bench(ReadStream(L"film.mkv", AVMEDIA_TYPE_AUDIO), {}, [](ILAVAudioSettings& settings) {
        settings.SetSampleFormat(kLavSampleFormatFloat32, FALSE);
    });
    EXPECT_EQ(bench.OutputFormat().kind, SampleKind::kSigned16);
}

TEST(AudioTypes, EachKindReachesAReceiverThatTakesNothingElse) {
    const MediaStream stream = ReadStream(L"song.flac", AVMEDIA_TYPE_AUDIO);
    const auto expected = Samples16(DecodedSound(stream));
    for (const SampleKind kind :
         {SampleKind::kSigned16, SampleKind::kSigned24, SampleKind::kSigned32, SampleKind::kFloat32}) {
        AudioBench bench(stream, Only(kind));
        bench.PushFrom(stream, 0, 0);
        bench.EndOfStream();
        const auto bytes = Joined(bench.sink->Samples());
        const auto size = static_cast<std::size_t>(BytesPerSample(kind));
        ASSERT_EQ(bytes.size(), expected.size() * size);
        for (std::size_t i = 0; i < expected.size(); ++i) {
            // 16 bits stand at the top of every wider integer.
            if (kind == SampleKind::kFloat32) {
                float value = 0;
                std::memcpy(&value, bytes.data() + i * size, size);
                ASSERT_EQ(value * 32768.0F, static_cast<float>(expected[i])) << i;
            } else {
                std::int16_t top = 0;
                std::memcpy(&top, bytes.data() + i * size + size - 2, 2);
                ASSERT_EQ(top, expected[i]) << i;
            }
        }
    }
}

TEST(AudioTypes, ManyChannelsKeepTheirSpeakersAndOrder) {
    const std::pair<int, std::uint32_t> layouts[] = {{1, 0x4}, {2, 0x3}, {6, 0x3F}, {6, 0x60F}, {8, 0x63F}};
    for (const auto& [channels, mask] : layouts) {
        const MediaStream stream = RawSound(channels, mask, 480);
        AudioBench bench(stream);
        EXPECT_EQ(bench.OutputFormat().channels, channels);
        EXPECT_EQ(bench.OutputFormat().channelMask, mask);
        bench.PushFrom(stream, 0, 0);
        bench.EndOfStream();
        EXPECT_TRUE(Joined(bench.sink->Samples()) == stream.packets[0].bytes);
    }
}

TEST(AudioTypes, MonoExpandsToTwoEqualChannels) {
    const MediaStream stream = RawSound(1, 0x4, 480);
    AudioBench bench(stream, {}, [](ILAVAudioSettings& settings) { settings.SetExpandMono(TRUE); });
    EXPECT_EQ(bench.OutputFormat().channels, 2);
    bench.PushFrom(stream, 0, 0);
    bench.EndOfStream();
    const auto in = Samples16(stream.packets[0].bytes);
    const auto out = Samples16(Joined(bench.sink->Samples()));
    ASSERT_EQ(out.size(), 2 * in.size());
    for (std::size_t i = 0; i < in.size(); ++i) {
        EXPECT_EQ(out[2 * i], out[2 * i + 1]);
        EXPECT_NEAR(out[2 * i], in[i], in[i] * 0.3);
    }
}

TEST(AudioTypes, MixingGivesTheChannelsOfTheLayout) {
    const MediaStream stream = RawSound(6, 0x3F, 4800);
    AudioBench bench(stream, {}, [](ILAVAudioSettings& settings) {
        settings.SetMixingLayout(3);
        settings.SetMixingEnabled(TRUE);
    });
    EXPECT_EQ(bench.OutputFormat().channels, 2);
    EXPECT_EQ(bench.OutputFormat().channelMask, 3U);
    bench.PushFrom(stream, 0, 0);
    bench.EndOfStream();
    const auto out = Samples16(Joined(bench.sink->Samples()));
    ASSERT_EQ(out.size(), 4800U * 2);
    // Front, centre and surround of each side are in it: more than the front alone would give.
    EXPECT_GT(out[200], 500);
    EXPECT_GT(out[201], out[200]);
}

TEST(AudioTypes, AnUnconnectedFilterTakesEveryCallInSilence) {
    const auto filter = AudioModule().CreateFilter(kClsidLavAudio);
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
    EXPECT_FALSE(Query<IMediaSeeking>(filter, IID_IMediaSeeking));
}

} // namespace
} // namespace brindlecast
