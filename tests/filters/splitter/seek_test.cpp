#include "tests/filters/splitter/splitter_fixture.h"

#include <algorithm>
#include <chrono>
#include <future>

namespace brindlecast {
namespace {

using Kind = RecordingSink::Kind;
using Event = RecordingSink::Event;
using Sample = RecordingSink::Sample;

// Waits until the sink has got a sample of a segment that starts there.
bool WaitForSegment(RecordingSink& sink, LONGLONG start) {
    return sink.WaitFor([&](const std::vector<Event>& events) {
        bool inSegment = false;
        for (const Event& event : events) {
            if (event.kind == Kind::NewSegment)
                inSegment = event.segment.start == start;
            else if (event.kind == Kind::EndFlush)
                inSegment = false;
            else if (event.kind == Kind::Sample && inSegment)
                return true;
        }
        return false;
    });
}

std::size_t Flushes(SplitterRig& rig) {
    return rig.video->Count(Kind::BeginFlush);
}

TEST(SplitterSeek, ASeekToAKeyframeStartsWithThatKeyframeAtTimeZero) {
    for (const wchar_t* name : {L"film.mkv", L"film.mp4", L"tracks.mkv", L"silent.mp4"}) {
        SplitterRig rig;
        rig.Open(name);
        rig.video->Block(true); // so that the first samples are still there to be seen
        ASSERT_TRUE(SUCCEEDED(rig.graph->Pause()));
        for (const REFERENCE_TIME keyframe : rig.Keyframes()) {
            rig.video->Block(true);
            rig.video->Clear();
            ASSERT_EQ(rig.Seek(keyframe), S_OK);
            rig.video->Block(false);
            ASSERT_TRUE(WaitForSegment(*rig.video.Get(), keyframe)) << keyframe;
            const Sample first = rig.video->SamplesOfSegment().front();
            EXPECT_EQ(first.start, 0) << keyframe;
            EXPECT_TRUE(first.syncPoint);
            EXPECT_TRUE(first.discontinuity);
            EXPECT_FALSE(first.preroll);
        }
    }
}

class ExactSeek : public testing::TestWithParam<const wchar_t*> {};

TEST_P(ExactSeek, BetweenKeyframesItStartsAtTheKeyframeBeforeAndTheSegmentAtTheTarget) {
    SplitterRig rig;
    rig.Open(GetParam());
    ASSERT_TRUE(SUCCEEDED(rig.graph->Pause()));
    ASSERT_TRUE(rig.video->WaitForCount(Kind::Sample, 1));
    for (const LONGLONG target : {5 * kSecond + 1, 3 * kSecond, 7 * kSecond + 777 * kMillisecond}) {
        rig.video->Clear();
        rig.audio->Clear();
        ASSERT_EQ(rig.Seek(target), S_OK);
        ASSERT_TRUE(rig.video->WaitForCount(Kind::EndOfStream, 1));
        ASSERT_TRUE(rig.audio->WaitForCount(Kind::EndOfStream, 1));
        const std::vector<Sample> samples = rig.video->SamplesOfSegment();
        ASSERT_FALSE(samples.empty());
        // Two seconds between keyframes: the right one is at most that far before the target.
        EXPECT_TRUE(samples.front().syncPoint);
        EXPECT_LE(*samples.front().start, 0);
        EXPECT_GT(*samples.front().start, -2 * kSecond - kMillisecond);
        bool reached = false;
        for (const Sample& sample : samples) {
            EXPECT_EQ(sample.preroll, *sample.stop <= 0);
            reached = reached || (*sample.start <= 0 && *sample.stop > 0);
        }
        EXPECT_TRUE(reached) << "the frame that is shown at the target is missing";
        const std::vector<Sample> sound = rig.audio->SamplesOfSegment();
        ASSERT_FALSE(sound.empty());
        EXPECT_LE(*sound.front().start, 0);
        EXPECT_GT(*sound.front().start, -200 * kMillisecond);
        for (const Sample& sample : sound)
            EXPECT_EQ(sample.preroll, *sample.stop <= 0);
    }
}

INSTANTIATE_TEST_SUITE_P(WithAndWithoutTable, ExactSeek,
                         testing::Values(L"film.mkv", L"film.mp4", L"no_cues.mkv", L"live.mkv"));

TEST(SplitterSeek, FlushJumpAndOneNewSegmentOnEveryPinInThatOrder) {
    SplitterRig rig;
    rig.Open(L"film.mkv");
    ASSERT_TRUE(SUCCEEDED(rig.graph->Pause()));
    ASSERT_TRUE(rig.video->WaitForCount(Kind::Sample, 1));
    ASSERT_TRUE(rig.audio->WaitForCount(Kind::Sample, 1));
    rig.video->Clear();
    rig.audio->Clear();
    ASSERT_EQ(rig.Seek(8 * kSecond), S_OK);
    for (RecordingSink* sink : {rig.video.Get(), rig.audio.Get()}) {
        ASSERT_TRUE(WaitForSegment(*sink, 8 * kSecond));
        std::vector<Kind> order;
        for (const Event& event : sink->Events()) {
            if (event.kind != Kind::Sample)
                order.push_back(event.kind);
            else if (order.empty() || order.back() != Kind::Sample)
                order.push_back(Kind::Sample);
        }
        const auto flush = std::find(order.begin(), order.end(), Kind::BeginFlush);
        ASSERT_GE(order.end() - flush, 4);
        EXPECT_EQ(flush[1], Kind::EndFlush);
        EXPECT_EQ(flush[2], Kind::NewSegment);
        EXPECT_EQ(flush[3], Kind::Sample);
        EXPECT_EQ(sink->Count(Kind::NewSegment), 1u);
    }
}

TEST(SplitterSeek, OneSeekThroughSeveralObjectsJumpsOnceAndTheSameAskerJumpsAgain) {
    SplitterRig rig;
    rig.Open(L"film.mkv");
    ASSERT_TRUE(SUCCEEDED(rig.graph->Pause()));
    const auto throughVideo = Query<IMediaSeeking>(rig.Pin(L"Video"), IID_IMediaSeeking);
    const auto throughAudio = Query<IMediaSeeking>(rig.Pin(L"Audio"), IID_IMediaSeeking);
    ASSERT_TRUE(throughVideo && throughAudio);
    LONGLONG target = 6 * kSecond;
    const auto seek = [&](IMediaSeeking* asker) {
        EXPECT_EQ(
            asker->SetPositions(&target, AM_SEEKING_AbsolutePositioning, nullptr, AM_SEEKING_NoPositioning),
            S_OK);
    };
    const std::size_t before = Flushes(rig);
    seek(rig.seeking.Get());
    seek(throughVideo.Get());
    seek(throughAudio.Get());
    EXPECT_EQ(Flushes(rig), before + 1);
    seek(throughVideo.Get()); // it has asked: this is a new seek to the same place
    EXPECT_EQ(Flushes(rig), before + 2);
    seek(throughAudio.Get());
    EXPECT_EQ(Flushes(rig), before + 2);
    target += 1;
    seek(throughAudio.Get());
    EXPECT_EQ(Flushes(rig), before + 3);
}

TEST(SplitterSeek, TheGraphsOwnSeekJumpsOnceAndLandsExactly) {
    SplitterRig rig;
    rig.Open(L"film.mkv");
    ASSERT_TRUE(SUCCEEDED(rig.graph->Pause()));
    ASSERT_TRUE(rig.video->WaitForCount(Kind::Sample, 1));
    for (const LONGLONG seconds : {9, 4, 9, 9}) {
        LONGLONG target = seconds * kSecond;
        const std::size_t before = Flushes(rig);
        ASSERT_EQ(rig.graph->Seeking()->SetPositions(&target, AM_SEEKING_AbsolutePositioning, nullptr,
                                                     AM_SEEKING_NoPositioning),
                  S_OK);
        ASSERT_TRUE(WaitForSegment(*rig.video.Get(), target));
        EXPECT_EQ(Flushes(rig), before + 1);
    }
}

TEST(SplitterSeek, ASeekWhileStoppedCountsForTheNextStart) {
    SplitterRig rig;
    rig.Open(L"film.mp4");
    const LONGLONG target = rig.Keyframes().at(4);
    ASSERT_EQ(rig.Seek(target), S_OK);
    EXPECT_EQ(Flushes(rig), 0u);
    LONGLONG position = 0;
    EXPECT_EQ(rig.seeking->GetCurrentPosition(&position), S_OK);
    EXPECT_EQ(position, target);
    ASSERT_TRUE(SUCCEEDED(rig.graph->Pause()));
    ASSERT_TRUE(WaitForSegment(*rig.video.Get(), target));
    EXPECT_EQ(rig.video->SamplesOfSegment().front().start, 0);
}

TEST(SplitterSeek, TargetsOutsideTheFileAreBroughtInside) {
    SplitterRig rig;
    rig.Open(L"film.mkv");
    ASSERT_TRUE(SUCCEEDED(rig.graph->Pause()));
    LONGLONG duration = 0;
    ASSERT_EQ(rig.seeking->GetDuration(&duration), S_OK);
    rig.video->Clear();
    ASSERT_EQ(rig.Seek(duration + 100 * kSecond), S_OK);
    ASSERT_TRUE(rig.video->WaitForCount(Kind::EndOfStream, 1));
    LONGLONG position = 0;
    EXPECT_EQ(rig.seeking->GetCurrentPosition(&position), S_OK);
    EXPECT_EQ(position, duration);
    ASSERT_EQ(rig.Seek(-5 * kSecond), S_OK);
    ASSERT_TRUE(WaitForSegment(*rig.video.Get(), 0));
}

TEST(SplitterSeek, AStopPositionEndsTheStreamThere) {
    SplitterRig rig;
    rig.Open(L"film.mp4");
    LONGLONG start = 2 * kSecond;
    LONGLONG stop = 5 * kSecond;
    ASSERT_EQ(rig.seeking->SetPositions(&start, AM_SEEKING_AbsolutePositioning, &stop,
                                        AM_SEEKING_AbsolutePositioning),
              S_OK);
    ASSERT_TRUE(SUCCEEDED(rig.graph->Run()));
    ASSERT_TRUE(rig.video->WaitForCount(Kind::EndOfStream, 1));
    ASSERT_TRUE(rig.audio->WaitForCount(Kind::EndOfStream, 1));
    EXPECT_EQ(rig.video->SamplesOfSegment().size(), 75u);
    for (const Sample& sample : rig.audio->SamplesOfSegment())
        EXPECT_LT(*sample.start, 3 * kSecond);
}

TEST(SplitterSeek, SeekingInterfaceAnswersAsAGraphNeeds) {
    SplitterRig rig;
    ASSERT_EQ(rig.Load(MediaPath(L"film.mkv")), S_OK);
    for (const auto& seeking : {rig.seeking, Query<IMediaSeeking>(rig.Pin(L"Video"), IID_IMediaSeeking)}) {
        ASSERT_TRUE(seeking);
        EXPECT_EQ(seeking->IsFormatSupported(&TIME_FORMAT_MEDIA_TIME), S_OK);
        EXPECT_EQ(seeking->IsFormatSupported(&TIME_FORMAT_FRAME), S_FALSE);
        DWORD capabilities = AM_SEEKING_CanSeekAbsolute | AM_SEEKING_CanGetDuration;
        EXPECT_EQ(seeking->CheckCapabilities(&capabilities), S_OK);
        capabilities = AM_SEEKING_CanSeekAbsolute | AM_SEEKING_CanPlayBackwards;
        EXPECT_EQ(seeking->CheckCapabilities(&capabilities), S_FALSE);
        LONGLONG current = -1;
        LONGLONG stop = -1;
        EXPECT_EQ(seeking->GetPositions(&current, &stop), S_OK);
        EXPECT_EQ(current, 0);
        LONGLONG duration = 0;
        EXPECT_EQ(seeking->GetDuration(&duration), S_OK);
        EXPECT_EQ(duration, 200'210'000);
        EXPECT_EQ(stop, duration);
        EXPECT_EQ(seeking->GetPositions(nullptr, nullptr), S_OK);
        EXPECT_EQ(seeking->GetDuration(nullptr), E_POINTER);
    }
}

TEST(SplitterRate, SampleTimesAreDividedByTheRateAndTheSegmentCarriesIt) {
    SplitterRig rig;
    rig.Open(L"film.mp4");
    EXPECT_EQ(rig.seeking->SetRate(0.0), E_INVALIDARG);
    EXPECT_EQ(rig.seeking->SetRate(-1.0), E_INVALIDARG);
    ASSERT_EQ(rig.seeking->SetRate(2.0), S_OK);
    rig.Seek(4 * kSecond);
    ASSERT_TRUE(SUCCEEDED(rig.graph->Run()));
    ASSERT_TRUE(rig.video->WaitForCount(Kind::EndOfStream, 1));
    EXPECT_EQ(rig.video->Events().front().segment.rate, 2.0);
    const std::vector<Sample> samples = rig.video->SamplesOfSegment();
    ASSERT_EQ(samples.size(), 400u);
    const auto last = std::max_element(samples.begin(), samples.end(),
                                       [](const Sample& a, const Sample& b) { return *a.start < *b.start; });
    EXPECT_EQ(*last->start, (16 * kSecond - 400'000) / 2);
    EXPECT_EQ(*last->stop, 8 * kSecond);
}

TEST(SplitterRate, AChangeWhileActiveRestartsOnceWhereItWas) {
    SplitterRig rig;
    rig.Open(L"film.mp4");
    ASSERT_TRUE(SUCCEEDED(rig.graph->Pause()));
    ASSERT_EQ(rig.Seek(6 * kSecond), S_OK);
    ASSERT_TRUE(WaitForSegment(*rig.video.Get(), 6 * kSecond));
    const std::size_t before = Flushes(rig);
    ASSERT_EQ(rig.seeking->SetRate(1.5), S_OK);
    const auto throughVideo = Query<IMediaSeeking>(rig.Pin(L"Video"), IID_IMediaSeeking);
    ASSERT_EQ(throughVideo->SetRate(1.5), S_OK); // the same change through another object
    EXPECT_EQ(Flushes(rig), before + 1);
    ASSERT_TRUE(rig.video->WaitFor([](const std::vector<Event>& events) {
        return std::any_of(events.begin(), events.end(), [](const Event& event) {
            return event.kind == Kind::NewSegment && event.segment.rate == 1.5 &&
                   event.segment.start == 6 * kSecond;
        });
    }));
    double rate = 0;
    EXPECT_EQ(rig.seeking->GetRate(&rate), S_OK);
    EXPECT_EQ(rate, 1.5);
}

// Renderers ask the source for its positions on the thread that brings them the end, and a seek waits for
// that thread.
TEST(SplitterSeek, PositionsAreAnsweredToAStreamingThreadThatASeekWaitsFor) {
    SplitterRig rig;
    rig.Open(L"silent.mp4");
    std::future<LONGLONG> question;
    bool wasAnswered = false;
    rig.video->AtEndOfStream([&] {
        if (question.valid() || !rig.video->WaitForCount(Kind::BeginFlush, 1)) {
            return;
        }
        question = std::async(std::launch::async, [&] {
            LONGLONG stop = 0;
            LONGLONG current = 0;
            double rate = 0.0;
            rig.seeking->GetStopPosition(&stop);
            rig.seeking->GetPositions(&current, nullptr);
            rig.seeking->GetRate(&rate);
            return stop;
        });
        wasAnswered = question.wait_for(std::chrono::seconds(2)) == std::future_status::ready;
    });
    ASSERT_TRUE(SUCCEEDED(rig.graph->Pause()));
    ASSERT_TRUE(rig.video->WaitForCount(Kind::EndOfStream, 1));
    ASSERT_EQ(rig.Seek(4 * kSecond), S_OK);
    EXPECT_TRUE(wasAnswered);
    EXPECT_GT(question.get(), 0);
}

} // namespace
} // namespace brindlecast
