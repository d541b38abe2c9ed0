#include "engine/graph_pins.h"
#include "tests/graph/graph_fixture.h"

// What the toolbar is told is decoding.

namespace brindlecast::testing {
namespace {

class Summary : public GraphTest {
protected:
    // The name of the codec of a film whose picture has this type.
    std::wstring VideoCodecOf(const std::wstring& type) {
        SetText("LAVSplitter.pins", (L"Video:" + type + L";Audio:audio").c_str());
        EXPECT_TRUE(engine->OpenFile(kFilm));
        EXPECT_TRUE(engine->hasVideo) << "the picture is connected";
        return engine->GetMediaSummary().videoCodec;
    }
    static void ExpectNoAudio(const MediaSummary& summary) {
        EXPECT_EQ(L"", summary.audioCodec);
        EXPECT_EQ(0, summary.audioChannels);
        EXPECT_EQ(0, summary.audioSampleRate);
    }
    static void ExpectAac(const MediaSummary& summary) {
        EXPECT_EQ(L"AAC", summary.audioCodec);
        EXPECT_EQ(6, summary.audioChannels);
        EXPECT_EQ(44100, summary.audioSampleRate);
    }
    static void ExpectNoVideo(const MediaSummary& summary) {
        EXPECT_EQ(L"", summary.videoCodec);
        EXPECT_EQ(L"", summary.decoderName);
        EXPECT_FALSE(summary.isHardware);
    }
};

TEST_F(Summary, TellsWhatIsDecoding) {
    SetText("LAVVideo.decoderName", L"d3d11va");
    ASSERT_TRUE(engine->OpenFile(kFilm));
    const MediaSummary summary = engine->GetMediaSummary();
    EXPECT_EQ(L"H264", summary.videoCodec);
    EXPECT_EQ(L"d3d11va", summary.decoderName);
    EXPECT_TRUE(summary.isHardware);
    ExpectAac(summary);
    EXPECT_DOUBLE_EQ(25.0, summary.frameRate);
}

TEST_F(Summary, HardwareIsToldByTheDecodersName) {
    ASSERT_TRUE(engine->OpenFile(kFilm));
    for (const wchar_t* name : {L"dxva2n", L"d3d11va", L"cuda", L"h264 nvdec", L"qsv"}) {
        SetText("LAVVideo.decoderName", name);
        EXPECT_TRUE(engine->GetMediaSummary().isHardware) << name;
        EXPECT_EQ(name, engine->GetMediaSummary().decoderName);
    }
    for (const wchar_t* name : {L"avcodec", L"DXVA2", L"D3D11", L""}) {
        SetText("LAVVideo.decoderName", name);
        EXPECT_FALSE(engine->GetMediaSummary().isHardware) << name;
        EXPECT_EQ(name, engine->GetMediaSummary().decoderName);
    }
}

TEST_F(Summary, OfNothingIsEmpty) {
    const MediaSummary summary = engine->GetMediaSummary();
    ExpectNoVideo(summary);
    ExpectNoAudio(summary);
    EXPECT_DOUBLE_EQ(0.0, summary.frameRate);
}

TEST_F(Summary, ADecoderThatSaysNothingLeavesTheCodecKnown) {
    ASSERT_TRUE(engine->OpenFile(kFilm)); // the name is null
    MediaSummary summary = engine->GetMediaSummary();
    EXPECT_EQ(L"", summary.decoderName);
    EXPECT_FALSE(summary.isHardware);
    EXPECT_EQ(L"H264", summary.videoCodec);
    SetText("LAVVideo.decoderName", L"d3d11va");
    for (const long answer : {1L, 2L}) {
        SetNumber("LAVVideo.noStatus", answer);
        summary = engine->GetMediaSummary();
        EXPECT_EQ(L"", summary.decoderName);
        EXPECT_FALSE(summary.isHardware);
        EXPECT_EQ(L"H264", summary.videoCodec);
        ExpectAac(summary);
    }
}

TEST_F(Summary, WithoutVideoDecoderTheSoundIsKnown) {
    HideModule(L"LAVVideo.ax");
    ASSERT_TRUE(engine->OpenFile(kFilm));
    const MediaSummary summary = engine->GetMediaSummary();
    ExpectNoVideo(summary);
    ExpectAac(summary);
    EXPECT_DOUBLE_EQ(25.0, summary.frameRate) << "read before the decoder was missed";
}

TEST_F(Summary, WithoutAudioDecoderThePictureIsKnown) {
    SetText("LAVSplitter.pins", L"Video:video/1920/1080/400000");
    ASSERT_TRUE(engine->OpenFile(kFilm));
    const MediaSummary summary = engine->GetMediaSummary();
    ExpectNoAudio(summary);
    EXPECT_EQ(L"H264", summary.videoCodec);
}

TEST_F(Summary, SoundThatCanNotBeToldStaysEmpty) {
    ASSERT_TRUE(engine->OpenFile(kFilm));
    for (const long answer : {1L, 2L}) {
        SetNumber("LAVAudio.noStatus", answer);
        ExpectNoAudio(engine->GetMediaSummary());
    }
    SetNumber("LAVAudio.noStatus", 0);
    SetNumber("LAVAudio.details", E_UNEXPECTED);
    ExpectNoAudio(engine->GetMediaSummary());
}

TEST_F(Summary, ACodecWithoutNameHasItsChannels) {
    SetNumber("LAVAudio.noCodec", 1);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    const MediaSummary summary = engine->GetMediaSummary();
    EXPECT_EQ(L"", summary.audioCodec);
    EXPECT_EQ(6, summary.audioChannels);
    EXPECT_EQ(44100, summary.audioSampleRate);
}

TEST_F(Summary, TheCodecIsToldByTheSubtype) {
    EXPECT_EQ(L"H264", VideoCodecOf(L"video/640/480/400000/H264/XVID"));
    EXPECT_EQ(L"HEVC", VideoCodecOf(L"video/640/480/400000/HVC1"));
    EXPECT_EQ(L"HEVC", VideoCodecOf(L"videoinfo/640/480/400000/HVC1/0"));
}

TEST_F(Summary, OtherSubtypesLeaveItToTheCompression) {
    EXPECT_EQ(L"MP4V", VideoCodecOf(L"video/640/480/400000/mp4v"));
    EXPECT_EQ(L"MP4V", VideoCodecOf(L"videoinfo/640/480/400000/mp4v"));
    EXPECT_EQ(L"DIVX", VideoCodecOf(L"video/640/480/400000/XVID/divx"));
    EXPECT_EQ(L"", VideoCodecOf(L"video/640/480/400000/mp4v/0"));
    EXPECT_EQ(L"", VideoCodecOf(L"video/640/480/400000/mp4v/3"));
}

TEST_F(Summary, ACompressionThatIsNotThereGivesNothing) {
    for (const wchar_t* type : {L"video/640/480/400000/mp4v//none", L"video/640/480/400000/mp4v//short",
                                L"videoinfo/640/480/400000/mp4v//short", L"video/640/480/400000/mp4v//null",
                                L"videoinfo/640/480/400000/mp4v//null"}) {
        EXPECT_EQ(L"", VideoCodecOf(type)) << type;
    }
    EXPECT_EQ(L"H264", VideoCodecOf(L"video/640/480/400000/H264//null")) << "the subtype is enough";
}

TEST_F(Summary, TheLastConnectedPinOfTheDecoderCounts) {
    SetNumber("LAVVideo.inputs", 2);
    const auto codecOf = [this](const wchar_t* pins) {
        SetText("LAVSplitter.pins", pins);
        EXPECT_TRUE(engine->OpenFile(kFilm));
        EXPECT_EQ(nullptr, FindUnconnectedPin(engine->lavVideo.Get(), PINDIR_INPUT));
        return engine->GetMediaSummary().videoCodec;
    };
    EXPECT_EQ(L"MP4V", codecOf(L"Video:video/640/480/400000;Audio:audio;Second Video:video/640/480/0/mp4v"));
    EXPECT_EQ(L"H264", codecOf(L"Video:video/640/480/400000/mp4v;Audio:audio;Second Video:video/640/480/0"));
}

TEST_F(Summary, OfTwoPinsOnlyTheConnectedOneCounts) {
    SetNumber("LAVVideo.inputs", 2);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_NE(nullptr, FindUnconnectedPin(engine->lavVideo.Get(), PINDIR_INPUT));
    EXPECT_EQ(L"H264", engine->GetMediaSummary().videoCodec);
}

TEST_F(Summary, APictureThatIsNotConnectedHasNoCodec) {
    SetText("LAVSplitter.pins", L"Audio:audio");
    ASSERT_TRUE(engine->OpenFile(kFilm));
    ExpectNoVideo(engine->GetMediaSummary());
    ExpectAac(engine->GetMediaSummary());
}

TEST_F(Summary, PinsThatCanNotBeAskedGiveNoCodec) {
    ASSERT_TRUE(engine->OpenFile(kFilm));
    for (const char* key : {"LAVVideo.enumPins", "LAVVideo.pinsAreNull", "LAVVideo.pinIsNull",
                            "LAVVideo.queryDirection", "LAVVideo.connectionMediaType"}) {
        SetNumber(key, E_FAIL);
        EXPECT_EQ(L"", engine->GetMediaSummary().videoCodec) << key;
        SetNumber(key, 0);
    }
    EXPECT_EQ(L"H264", engine->GetMediaSummary().videoCodec);
}

} // namespace
} // namespace brindlecast::testing
