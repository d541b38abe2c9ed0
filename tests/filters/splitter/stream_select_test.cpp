#include "tests/filters/splitter/splitter_fixture.h"

#include <algorithm>

namespace brindlecast {
namespace {

using Kind = RecordingSink::Kind;
using Sample = RecordingSink::Sample;
using Microsoft::WRL::ComPtr;

bool IsEnabled(const SplitterRig& rig, std::size_t stream) {
    return (rig.Streams()[stream].flags & AMSTREAMSELECTINFO_ENABLED) != 0;
}

TEST(SplitterSelect, AnotherSoundTrackIsHeardWithin300MillisecondsAndThePictureIsLeftAlone) {
    SplitterRig rig(true);
    rig.Open(L"tracks.mkv");
    rig.video->Block(true);
    rig.audio->Block(true);
    ASSERT_TRUE(SUCCEEDED(rig.graph->Pause()));
    rig.audio->Block(false);
    ASSERT_TRUE(rig.audio->WaitForCount(Kind::Sample, 20));
    rig.audio->Clear();
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_EQ(rig.streams->Enable(2, AMSTREAMSELECTENABLE_ENABLE), S_OK);
    ASSERT_TRUE(rig.audio->WaitFor([](const auto& events) {
        bool segment = false;
        return std::any_of(events.begin(), events.end(), [&](const auto& event) {
            segment = segment || event.kind == Kind::NewSegment;
            return segment && event.kind == Kind::Sample;
        });
    }));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(300));
    EXPECT_FALSE(IsEnabled(rig, 1));
    EXPECT_TRUE(IsEnabled(rig, 2));
    EXPECT_EQ(rig.video->Count(Kind::BeginFlush), 0u);
    EXPECT_EQ(rig.audio->Count(Kind::BeginFlush), 1u);
    const Sample first = rig.audio->SamplesOfSegment().front();
    EXPECT_TRUE(first.discontinuity);
    // Paused at the start: the new track begins there as well, not where reading has got to.
    EXPECT_LE(*first.start, 50 * kMillisecond);
    // And it is the other track.
    SplitterRig other(true);
    other.settings->SetPreferredLanguages(L"eng");
    other.Open(L"tracks.mkv");
    ASSERT_TRUE(SUCCEEDED(other.graph->Pause()));
    ASSERT_TRUE(other.audio->WaitForCount(Kind::Sample, 5));
    const std::vector<Sample> expected = other.audio->Samples();
    const std::vector<Sample> got = rig.audio->SamplesOfSegment();
    const auto same = std::find_if(expected.begin(), expected.end(),
                                   [&](const Sample& sample) { return sample.start == first.start; });
    ASSERT_NE(same, expected.end());
    EXPECT_EQ(same->bytes, first.bytes);
    rig.video->Block(false);
}

TEST(SplitterSelect, WhileRunningTheNewTrackBeginsAtTheTimeThatItIs) {
    for (const double rate : {1.0, 2.0}) {
        SplitterRig rig(true);
        rig.Open(L"tracks_mixed.mkv");
        rig.graph->UseSystemClock();
        ASSERT_EQ(rig.seeking->SetRate(rate), S_OK);
        rig.video->Block(true);
        rig.audio->Block(true);
        ASSERT_TRUE(SUCCEEDED(rig.graph->Run()));
        const auto position = [&] {
            LONGLONG now = 0;
            EXPECT_EQ(rig.seeking->GetCurrentPosition(&now), S_OK);
            return now;
        };
        // The clock runs on although nothing is taken.
        while (position() < 2000 * kMillisecond) {
            Sleep(5);
        }
        rig.audio->Block(false);
        rig.audio->Clear();
        const LONGLONG before = position();
        ASSERT_EQ(rig.streams->Enable(2, AMSTREAMSELECTENABLE_ENABLE), S_OK);
        const LONGLONG after = position();
        ASSERT_TRUE(rig.audio->WaitFor([](const auto& events) {
            bool segment = false;
            return std::any_of(events.begin(), events.end(), [&](const auto& event) {
                segment = segment || event.kind == Kind::NewSegment;
                return segment && event.kind == Kind::Sample;
            });
        }));
        const Sample first = rig.audio->SamplesOfSegment().front();
        const auto media = static_cast<LONGLONG>(static_cast<double>(*first.start) * rate);
        // Packets are long, and decoders need a little of what came before.
        EXPECT_GE(media, before - 150 * kMillisecond) << rate;
        EXPECT_LE(media, after + 300 * kMillisecond) << rate;
        EXPECT_EQ(rig.video->Count(Kind::BeginFlush), 0u);
        rig.video->Block(false);
    }
}

TEST(SplitterSelect, SwitchingForthAndBackPlaysToTheEnd) {
    SplitterRig rig;
    rig.Open(L"tracks.mkv");
    ASSERT_TRUE(SUCCEEDED(rig.graph->Run()));
    for (const long stream : {3, 1, 2, 1, 3})
        ASSERT_EQ(rig.streams->Enable(stream, AMSTREAMSELECTENABLE_ENABLE), S_OK);
    EXPECT_TRUE(rig.audio->WaitFor(
        [](const auto& events) { return !events.empty() && events.back().kind == Kind::EndOfStream; }));
    EXPECT_TRUE(rig.video->WaitForCount(Kind::EndOfStream, 1));
    EXPECT_TRUE(IsEnabled(rig, 3));
    EXPECT_EQ(rig.video->Samples().size(), 250u);
}

TEST(SplitterSelect, DisabledSoundClearsTheFlagKeepsThePinAndEndsItsStream) {
    SplitterRig rig;
    rig.Open(L"film.mkv");
    ASSERT_EQ(rig.streams->Enable(1, 0), S_OK);
    EXPECT_FALSE(IsEnabled(rig, 1));
    EXPECT_TRUE(rig.Pin(L"Audio"));
    ASSERT_TRUE(SUCCEEDED(rig.graph->Run()));
    EXPECT_TRUE(rig.audio->WaitForCount(Kind::EndOfStream, 1));
    EXPECT_TRUE(rig.video->WaitForCount(Kind::EndOfStream, 1));
    EXPECT_EQ(rig.audio->Samples().size(), 0u);
    EXPECT_EQ(rig.video->Samples().size(), 500u);
}

TEST(SplitterSelect, WrongCallsAreRefused) {
    SplitterRig rig;
    ASSERT_EQ(rig.Load(MediaPath(L"tracks.mkv")), S_OK);
    EXPECT_EQ(rig.streams->Enable(8, 1), E_INVALIDARG);
    EXPECT_EQ(rig.streams->Enable(-1, 1), E_INVALIDARG);
    EXPECT_EQ(rig.streams->Enable(1, AMSTREAMSELECTENABLE_ENABLEALL), E_NOTIMPL);
    EXPECT_EQ(rig.streams->Info(8, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), S_FALSE);
    EXPECT_EQ(rig.streams->Info(1, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), S_OK);
}

TEST(SplitterSubtitle, ThereIsAPinOnlyAfterAChoice) {
    SplitterRig rig;
    ASSERT_EQ(rig.Load(MediaPath(L"tracks.mkv")), S_OK);
    EXPECT_FALSE(rig.Pin(L"Subtitle"));
    ASSERT_EQ(rig.streams->Enable(5, AMSTREAMSELECTENABLE_ENABLE), S_OK);
    ASSERT_TRUE(rig.Pin(L"Subtitle"));
    EXPECT_TRUE(IsEnabled(rig, 5));
    const std::vector<MediaType> types = TypesOf(rig.Pin(L"Subtitle").Get());
    ASSERT_EQ(types.size(), 1u);
    EXPECT_EQ(types[0]->majortype, kMediaTypeSubtitle);
    ASSERT_EQ(rig.streams->Enable(5, 0), S_OK);
    EXPECT_FALSE(IsEnabled(rig, 5));
    EXPECT_TRUE(rig.Pin(L"Subtitle"));
}

TEST(SplitterSubtitle, AModeChoosesAtOpeningByLanguageOrFlag) {
    struct Case {
        int mode;
        const wchar_t* languages;
        int stream;
    };
    for (const Case& one :
         {Case{kLavSubtitleModeDefault, L"jpn", 7}, Case{kLavSubtitleModeDefault, L"", 4},
          Case{kLavSubtitleModeForcedOnly, L"kor", -1}, Case{kLavSubtitleModeNone, L"kor", -1}}) {
        SplitterRig rig;
        rig.settings->SetSubtitleMode(one.mode);
        rig.settings->SetPreferredSubtitleLanguages(one.languages);
        ASSERT_EQ(rig.Load(MediaPath(L"tracks.mkv")), S_OK);
        EXPECT_EQ(rig.Pin(L"Subtitle") != nullptr, one.stream >= 0);
        if (one.stream >= 0) {
            EXPECT_TRUE(IsEnabled(rig, static_cast<std::size_t>(one.stream)));
        }
    }
}

TEST(SplitterSubtitle, ItConnectsWhileRunningAndCarriesTheTextWithoutHoldingUpTheRest) {
    SplitterRig rig;
    rig.Open(L"tracks.mkv");
    rig.video->Block(true); // with both held the reading stays near the start
    rig.audio->Block(true);
    const auto texts = RecordingSink::Create(kMediaTypeSubtitle);
    rig.graph->Add(texts.Get(), L"Texts");
    ASSERT_TRUE(SUCCEEDED(rig.graph->Run()));
    ASSERT_EQ(rig.streams->Enable(5, AMSTREAMSELECTENABLE_ENABLE), S_OK);
    ASSERT_EQ(rig.Pin(L"Subtitle")->Connect(&texts->Pin(), nullptr), S_OK);
    rig.video->Block(false);
    rig.audio->Block(false);
    ASSERT_TRUE(texts->WaitForCount(Kind::Sample, 3));
    const Sample sample = texts->Samples().back();
    const std::string text(sample.bytes.begin(), sample.bytes.end());
    EXPECT_NE(text.find("English line"), std::string::npos);
    EXPECT_EQ(*sample.stop - *sample.start, 14'000 * kMillisecond / 10);
    EXPECT_TRUE(rig.video->WaitForCount(Kind::EndOfStream, 1));
    EXPECT_EQ(rig.video->Samples().size(), 250u);
}

TEST(SplitterSubtitle, AReceiverThatRefusesOrBlocksHarmsNobody) {
    for (const bool blocks : {false, true}) {
        SplitterRig rig;
        const auto texts = RecordingSink::Create(kMediaTypeSubtitle);
        texts->Refuse(E_FAIL);
        texts->Block(blocks);
        ASSERT_EQ(rig.Load(MediaPath(L"tracks.mkv")), S_OK);
        ASSERT_EQ(rig.streams->Enable(4, AMSTREAMSELECTENABLE_ENABLE), S_OK);
        rig.ConnectAll();
        rig.graph->Add(texts.Get(), L"Texts");
        ASSERT_EQ(rig.graph->ConnectDirect(rig.Pin(L"Subtitle").Get(), &texts->Pin()), S_OK);
        ASSERT_TRUE(SUCCEEDED(rig.graph->Run()));
        EXPECT_TRUE(rig.video->WaitForCount(Kind::EndOfStream, 1));
        EXPECT_TRUE(rig.audio->WaitForCount(Kind::EndOfStream, 1));
        EXPECT_EQ(rig.video->Samples().size(), 250u);
        EXPECT_FALSE(rig.graph->WaitForEvent(EC_ERRORABORT, 50));
        EXPECT_EQ(texts->WaitForCount(Kind::EndOfStream, 1, blocks ? 20 : 5000), !blocks);
    }
}

} // namespace
} // namespace brindlecast
