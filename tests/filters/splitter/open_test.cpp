#include "tests/filters/splitter/splitter_fixture.h"

#include <cstring>
#include <dvdmedia.h>

namespace brindlecast {
namespace {

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

std::vector<std::wstring> PinNames(const SplitterRig& rig) {
    std::vector<std::wstring> names;
    for (const ComPtr<IPin>& pin : PinsOf(rig.splitter.Get(), PINDIR_OUTPUT))
        names.push_back(NameOf(pin.Get()));
    return names;
}

TEST(SplitterOpen, AFilmWithManyTracksHasOnePinPerKindAndListsEveryStream) {
    SplitterRig rig;
    rig.settings->SetPreferredLanguages(L"kor,eng,jpn");
    ASSERT_EQ(rig.Load(MediaPath(L"tracks.mkv")), S_OK);
    EXPECT_THAT(PinNames(rig), ElementsAre(L"Video", L"Audio"));
    const std::vector<SplitterRig::StreamInfo> streams = rig.Streams();
    std::vector<std::wstring> names;
    std::vector<bool> enabled;
    for (const auto& stream : streams) {
        names.push_back(stream.name);
        enabled.push_back((stream.flags & AMSTREAMSELECTINFO_ENABLED) != 0);
    }
    EXPECT_THAT(names, ElementsAre(L"(h264)", L"한국어 음성 [kor] (aac)", L"영어 음성 [eng] (aac)",
                                   L"일본어 음성 [jpn] (aac)", L"한국어 자막 [kor] (subrip)",
                                   L"영어 자막 [eng] (subrip)", L"한국어 꾸밈 자막 [kor] (ass)",
                                   L"일본어 자막 [jpn] (ass)"));
    EXPECT_THAT(enabled, ElementsAre(true, true, false, false, false, false, false, false));
    EXPECT_EQ(streams[0].major, MEDIATYPE_Video);
    EXPECT_EQ(streams[1].major, MEDIATYPE_Audio);
    EXPECT_EQ(streams[4].major, kMediaTypeSubtitle);
}

TEST(SplitterOpen, TheFirstPreferredLanguageThatIsThereDecidesTheSound) {
    struct Case {
        const wchar_t* languages;
        std::size_t stream;
    };
    for (const Case& one : {Case{L"jpn,kor", 3}, Case{L"fre, ENG ,kor", 2}, Case{L"fre", 1}, Case{L"", 1}}) {
        SplitterRig rig;
        rig.settings->SetPreferredLanguages(one.languages);
        ASSERT_EQ(rig.Load(MediaPath(L"tracks.mkv")), S_OK);
        EXPECT_TRUE(rig.Streams()[one.stream].flags & AMSTREAMSELECTINFO_ENABLED) << one.stream;
    }
}

TEST(SplitterOpen, SoundWithACoverHasOneAudioPinAndFilmWithoutSoundOneVideoPin) {
    for (const wchar_t* name : {L"song_cover.mp3", L"song_cover.m4a", L"song.mp3", L"song.flac"}) {
        SplitterRig rig;
        ASSERT_EQ(rig.Load(MediaPath(name)), S_OK);
        EXPECT_THAT(PinNames(rig), ElementsAre(L"Audio"));
        EXPECT_THAT(rig.Streams(), SizeIs(1));
        UINT count = 99;
        EXPECT_TRUE(SUCCEEDED(rig.keyframeInfo->GetKeyFrameCount(count)));
        EXPECT_EQ(count, 0u);
    }
    for (const wchar_t* name : {L"silent.mkv", L"silent.mp4"}) {
        SplitterRig rig;
        ASSERT_EQ(rig.Load(MediaPath(name)), S_OK);
        EXPECT_THAT(PinNames(rig), ElementsAre(L"Video"));
    }
}

TEST(SplitterOpen, WhatIsNoMediaFileDoesNotLoadAndLeavesNoPin) {
    for (const wchar_t* name : {L"empty.mkv", L"text.mkv", L"truncated.mp4", L"not there.mkv"}) {
        SplitterRig rig;
        EXPECT_TRUE(FAILED(rig.Load(MediaPath(name))));
        EXPECT_THAT(PinNames(rig), IsEmpty());
        EXPECT_THAT(rig.Streams(), IsEmpty());
        EXPECT_EQ(rig.splitter->Pause(), S_OK);
        EXPECT_EQ(rig.splitter->Stop(), S_OK);
    }
    SplitterRig rig;
    EXPECT_EQ(rig.Load(MediaPath(L"not there.mkv")), HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
}

TEST(SplitterOpen, KoreanFileNamesOpenAndAreTold) {
    SplitterRig rig;
    const std::wstring path = MediaPath(L"한국어 영화 01화.mkv");
    ASSERT_EQ(rig.Load(path), S_OK);
    const auto source = Query<IFileSourceFilter>(rig.splitter, IID_IFileSourceFilter);
    LPOLESTR told = nullptr;
    ASSERT_EQ(source->GetCurFile(&told, nullptr), S_OK);
    EXPECT_EQ(told, path);
    CoTaskMemFree(told);
    EXPECT_TRUE(FAILED(source->Load(path.c_str(), nullptr))) << "a second file";
}

TEST(SplitterOpen, VideoTypesAreVideoInfo2ThenMpeg2VideoWithTheConfigurationRecord) {
    SplitterRig rig;
    ASSERT_EQ(rig.Load(MediaPath(L"film.mkv")), S_OK);
    const std::vector<MediaType> types = TypesOf(rig.Pin(L"Video").Get());
    ASSERT_THAT(types, SizeIs(2));
    const auto* first = types[0].Format<VIDEOINFOHEADER2>(FORMAT_VideoInfo2);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(types[0]->majortype, MEDIATYPE_Video);
    constexpr DWORD kAvc1 = 'A' | 'V' << 8 | 'C' << 16 | '1' << 24;
    EXPECT_EQ(types[0]->subtype.Data1, kAvc1);
    EXPECT_EQ(first->bmiHeader.biCompression, kAvc1);
    EXPECT_EQ(first->AvgTimePerFrame, 400'000);
    EXPECT_EQ(first->bmiHeader.biWidth, 320);
    EXPECT_EQ(first->bmiHeader.biHeight, 180);
    EXPECT_EQ(first->dwPictAspectRatioX, 16u);
    EXPECT_EQ(first->dwPictAspectRatioY, 9u);
    const BYTE* record = types[0]->pbFormat + sizeof(*first);
    const std::size_t recordSize = types[0]->cbFormat - sizeof(*first);
    ASSERT_GT(recordSize, 8u);
    EXPECT_EQ(record[0], 1) << "version of an avcC record";
    EXPECT_EQ(record[4] & 3, 3) << "four-byte lengths";
    const auto* second = types[1].Format<MPEG2VIDEOINFO>(FORMAT_MPEG2Video);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(types[1]->subtype.Data1, kAvc1);
    EXPECT_EQ(second->dwFlags, 4u);
    const auto* sets = reinterpret_cast<const BYTE*>(second->dwSequenceHeader);
    ASSERT_GT(second->cbSequenceHeader, 4u);
    EXPECT_EQ(sets[2] & 0x1f, 7) << "the sequence parameter set comes first";
    EXPECT_EQ(second->hdr.bmiHeader.biWidth, 320);
    // The same set, length and all, stands in the record.
    const std::size_t setSize = 2 + (static_cast<std::size_t>(sets[0]) << 8 | sets[1]);
    ASSERT_LE(6 + setSize, recordSize);
    EXPECT_EQ(std::memcmp(sets, record + 6, setSize), 0);
}

TEST(SplitterOpen, TheSampleAspectIsInTheVideoType) {
    SplitterRig rig;
    ASSERT_EQ(rig.Load(MediaPath(L"anamorphic.mp4")), S_OK);
    const MediaType type = TypesOf(rig.Pin(L"Video").Get()).front();
    const auto* header = type.Format<VIDEOINFOHEADER2>(FORMAT_VideoInfo2);
    ASSERT_NE(header, nullptr);
    EXPECT_EQ(header->bmiHeader.biWidth, 240);
    EXPECT_EQ(header->dwPictAspectRatioX, 16u);
    EXPECT_EQ(header->dwPictAspectRatioY, 9u);
}

TEST(SplitterOpen, AudioTypesCarryTagAndExtradata) {
    struct Case {
        const wchar_t* name;
        WORD tag;
        WORD extra;
    };
    for (const Case& one :
         {Case{L"film.mkv", 0x00ff, 5}, Case{L"song.mp3", 0x0055, 0}, Case{L"song.flac", 0xf1ac, 34}}) {
        SplitterRig rig;
        ASSERT_EQ(rig.Load(MediaPath(one.name)), S_OK);
        const std::vector<MediaType> types = TypesOf(rig.Pin(L"Audio").Get());
        ASSERT_THAT(types, SizeIs(1));
        EXPECT_EQ(types[0]->majortype, MEDIATYPE_Audio);
        EXPECT_EQ(types[0]->subtype, TagSubtype(one.tag));
        const auto* format = types[0].Format<WAVEFORMATEX>(FORMAT_WaveFormatEx);
        ASSERT_NE(format, nullptr);
        EXPECT_EQ(format->wFormatTag, one.tag);
        EXPECT_EQ(format->nChannels, 2);
        EXPECT_EQ(format->nSamplesPerSec, 48000u);
        EXPECT_EQ(format->cbSize, one.extra);
        EXPECT_EQ(types[0]->cbFormat, sizeof(WAVEFORMATEX) + one.extra);
    }
}

TEST(SplitterOpen, TheKeyframeTableIsTrueOrEmpty) {
    struct Case {
        const wchar_t* name;
        LONGLONG first;
        std::size_t count;
    };
    // Two seconds between keyframes in all of them; a file whose index does not reach to its end has no
    // table.
    for (const Case& one :
         {Case{L"film.mkv", 210'000, 10}, Case{L"film.mp4", 0, 10}, Case{L"faststart.mp4", 0, 5},
          Case{L"no_cues.mkv", 0, 0}, Case{L"live.mkv", 0, 0}, Case{L"truncated.mkv", 0, 0}}) {
        SplitterRig rig;
        ASSERT_EQ(rig.Load(MediaPath(one.name)), S_OK);
        const std::vector<REFERENCE_TIME> times = rig.Keyframes();
        ASSERT_THAT(times, SizeIs(one.count));
        for (std::size_t i = 0; i < times.size(); ++i)
            EXPECT_EQ(times[i], one.first + static_cast<LONGLONG>(i) * 2 * kSecond);
    }
}

TEST(SplitterOpen, KeyframeCallsKeepTheirBounds) {
    SplitterRig rig;
    UINT count = 7;
    EXPECT_EQ(rig.keyframeInfo->GetKeyFrameCount(count), S_OK);
    EXPECT_EQ(count, 0u);
    ASSERT_EQ(rig.Load(MediaPath(L"film.mkv")), S_OK);
    REFERENCE_TIME times[4] = {-1, -1, -1, -1};
    count = 3;
    EXPECT_EQ(rig.keyframeInfo->GetKeyFrames(&TIME_FORMAT_MEDIA_TIME, times, count), S_OK);
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(times[3], -1);
    EXPECT_EQ(rig.keyframeInfo->GetKeyFrames(&TIME_FORMAT_FRAME, times, count), E_INVALIDARG);
    EXPECT_EQ(rig.keyframeInfo->GetKeyFrames(&TIME_FORMAT_MEDIA_TIME, nullptr, count), E_POINTER);
}

TEST(SplitterOpen, SettingsWorkOrSayThatTheyDoNot) {
    SplitterRig rig;
    ILAVFSettings* settings = rig.settings.Get();
    EXPECT_EQ(settings->SetRuntimeConfig(TRUE), S_OK);
    EXPECT_EQ(settings->SetPreferredLanguages(L"kor,eng,jpn"), S_OK);
    LPWSTR languages = nullptr;
    EXPECT_EQ(settings->GetPreferredLanguages(&languages), S_OK);
    EXPECT_STREQ(languages, L"kor,eng,jpn");
    CoTaskMemFree(languages);
    EXPECT_EQ(settings->SetSubtitleMode(kLavSubtitleModeDefault), S_OK);
    EXPECT_EQ(settings->GetSubtitleMode(), kLavSubtitleModeDefault);
    EXPECT_EQ(settings->SetSubtitleMode(kLavSubtitleModeAdvanced), E_NOTIMPL);
    EXPECT_EQ(settings->SetSubtitleMode(17), E_INVALIDARG);
    EXPECT_EQ(settings->GetSubtitleMode(), kLavSubtitleModeDefault);
    EXPECT_EQ(settings->SetTrayIcon(FALSE), S_OK);
    EXPECT_EQ(settings->SetTrayIcon(TRUE), E_NOTIMPL);
    EXPECT_EQ(settings->SetMaxQueueMemSize(64), S_OK);
    EXPECT_EQ(settings->GetMaxQueueMemSize(), 64u);
    EXPECT_EQ(settings->SetMaxQueueSize(123), S_OK);
    EXPECT_EQ(settings->GetMaxQueueSize(), 123u);
    EXPECT_TRUE(settings->IsFormatEnabled("matroska"));
    EXPECT_FALSE(settings->IsFormatEnabled("no such format"));
    EXPECT_EQ(settings->SetFormatEnabled("matroska", FALSE), E_NOTIMPL);
}

} // namespace
} // namespace brindlecast
