#include "tests/filters/splitter/splitter_fixture.h"

#include <algorithm>
#include <thread>

namespace brindlecast {
namespace {

using testing::ElementsAre;
using Kind = RecordingSink::Kind;
using Sample = RecordingSink::Sample;

std::vector<REFERENCE_TIME> SortedStarts(const std::vector<Sample>& samples) {
    std::vector<REFERENCE_TIME> starts;
    for (const Sample& sample : samples)
        starts.push_back(sample.start.value_or(-1));
    std::sort(starts.begin(), starts.end());
    return starts;
}

TEST(SplitterPlay, EveryFrameOfTheFileArrivesOnceAndTheEndFollows) {
    SplitterRig rig;
    rig.Open(L"film.mp4");
    ASSERT_TRUE(SUCCEEDED(rig.graph->Run()));
    ASSERT_TRUE(rig.video->WaitForCount(Kind::EndOfStream, 1));
    ASSERT_TRUE(rig.audio->WaitForCount(Kind::EndOfStream, 1));
    const std::vector<REFERENCE_TIME> starts = SortedStarts(rig.video->Samples());
    ASSERT_EQ(starts.size(), 500u);
    for (std::size_t i = 0; i < starts.size(); ++i)
        EXPECT_EQ(starts[i], static_cast<REFERENCE_TIME>(i) * 400'000);
    const std::vector<Sample> sound = rig.audio->Samples();
    EXPECT_NEAR(static_cast<double>(sound.size()), 20.0 * 48000 / 1024, 3.0);
    EXPECT_TRUE(rig.graph->WaitForEvent(EC_COMPLETE));
}

TEST(SplitterPlay, SamplesStartWithASegmentAndADiscontinuityAndKeyframesAreMarked) {
    SplitterRig rig(true);
    rig.Open(L"film.mp4");
    ASSERT_TRUE(SUCCEEDED(rig.graph->Run()));
    ASSERT_TRUE(rig.video->WaitForCount(Kind::EndOfStream, 1));
    const std::vector<RecordingSink::Event> events = rig.video->Events();
    ASSERT_EQ(events.front().kind, Kind::NewSegment);
    EXPECT_EQ(events.front().segment.start, 0);
    EXPECT_GT(events.front().segment.stop, 20 * kSecond);
    EXPECT_EQ(events.front().segment.rate, 1.0);
    const std::vector<Sample> samples = rig.video->Samples();
    EXPECT_TRUE(samples.front().discontinuity);
    EXPECT_EQ(std::count_if(samples.begin(), samples.end(), [](const Sample& s) { return s.discontinuity; }),
              1);
    std::vector<REFERENCE_TIME> keyframes;
    for (const Sample& sample : samples) {
        if (sample.syncPoint)
            keyframes.push_back(*sample.start);
        EXPECT_FALSE(sample.preroll);
        EXPECT_EQ(*sample.stop - *sample.start, 400'000);
        ASSERT_GT(sample.bytes.size(), 4u);
        // Length-prefixed units: the first length leads to the end or to another unit, never beyond.
        const std::size_t length =
            sample.bytes[0] << 24 | sample.bytes[1] << 16 | sample.bytes[2] << 8 | sample.bytes[3];
        EXPECT_LE(length + 4, sample.bytes.size());
    }
    EXPECT_EQ(keyframes, rig.Keyframes());
}

TEST(SplitterPlay, NothingConnectedPauseAndStopAnswerAtOnceAndStartNothing) {
    SplitterRig rig;
    ASSERT_EQ(rig.Load(MediaPath(L"film.mkv")), S_OK);
    LONGLONG before = -1;
    rig.seeking->GetCurrentPosition(&before);
    EXPECT_EQ(rig.splitter->Pause(), S_OK);
    FILTER_STATE state = State_Stopped;
    EXPECT_EQ(rig.splitter->GetState(0, &state), S_OK);
    EXPECT_EQ(state, State_Paused);
    EXPECT_EQ(rig.splitter->Stop(), S_OK);
    LONGLONG after = -1;
    rig.seeking->GetCurrentPosition(&after);
    EXPECT_EQ(before, 0);
    EXPECT_EQ(after, 0);
    // What was not read is still all there.
    rig.ConnectAll();
    ASSERT_TRUE(SUCCEEDED(rig.graph->Run()));
    ASSERT_TRUE(rig.video->WaitForCount(Kind::EndOfStream, 1));
    EXPECT_EQ(rig.video->Samples().size(), 500u);
}

TEST(SplitterPlay, StopReturnsQuicklyWhileAReceiverBlocksAndStillRuns) {
    SplitterRig rig;
    rig.Open(L"film.mkv");
    rig.video->Block(true);
    ASSERT_TRUE(SUCCEEDED(rig.graph->Pause()));
    ASSERT_TRUE(rig.video->WaitFor([&](const auto&) { return true; }));
    const auto begin = std::chrono::steady_clock::now();
    while (!rig.video->IsBlocking() && std::chrono::steady_clock::now() - begin < std::chrono::seconds(5))
        Sleep(1);
    ASSERT_TRUE(rig.video->IsBlocking());
    const auto stopping = std::chrono::steady_clock::now();
    EXPECT_EQ(rig.splitter->Stop(), S_OK); // the splitter alone: its receivers stay paused
    EXPECT_LT(std::chrono::steady_clock::now() - stopping, std::chrono::milliseconds(500));
    EXPECT_EQ(rig.video->Count(Kind::BeginFlush), rig.video->Count(Kind::EndFlush));
    rig.video->Block(false);
}

TEST(SplitterPlay, ABlockedPictureDoesNotHoldUpTheSoundAndMemoryStaysBounded) {
    SplitterRig rig;
    rig.settings->SetMaxQueueMemSize(1);
    rig.Open(L"film.mkv");
    rig.video->Block(true);
    ASSERT_TRUE(SUCCEEDED(rig.graph->Run()));
    // The video queue alone is allowed to fill up: sound goes on for as long as that takes.
    EXPECT_TRUE(rig.audio->WaitForCount(Kind::Sample, 100));
    rig.video->Block(false);
    EXPECT_TRUE(rig.video->WaitForCount(Kind::EndOfStream, 1));
    EXPECT_EQ(rig.video->Samples().size(), 500u);
}

TEST(SplitterPlay, AReceiverThatFailsIsReportedAndTheOtherStreamPlaysOn) {
    SplitterRig rig;
    rig.Open(L"film.mkv");
    rig.video->Refuse(E_OUTOFMEMORY);
    ASSERT_TRUE(SUCCEEDED(rig.graph->Run()));
    EXPECT_TRUE(rig.graph->WaitForEvent(EC_ERRORABORT));
    EXPECT_TRUE(rig.audio->WaitForCount(Kind::EndOfStream, 1));
    EXPECT_GT(rig.audio->Samples().size(), 900u);
}

TEST(SplitterPlay, AReceiverThatWantsNoMoreIsNoError) {
    SplitterRig rig;
    rig.Open(L"film.mkv");
    rig.video->Refuse(S_FALSE);
    ASSERT_TRUE(SUCCEEDED(rig.graph->Run()));
    EXPECT_TRUE(rig.audio->WaitForCount(Kind::EndOfStream, 1));
    EXPECT_FALSE(rig.graph->WaitForEvent(EC_ERRORABORT, 50));
}

TEST(SplitterPlay, StoppedAndStartedAgainItPlaysFromTheSegmentStart) {
    SplitterRig rig;
    rig.Open(L"film.mkv");
    rig.Seek(rig.Keyframes().at(3));
    for (int round = 0; round < 2; ++round) { // not through the graph, which seeks by itself when it stops
        rig.video->Clear();
        ASSERT_TRUE(SUCCEEDED(rig.video->Pause()) && SUCCEEDED(rig.audio->Pause()));
        ASSERT_TRUE(SUCCEEDED(rig.splitter->Pause()));
        ASSERT_TRUE(rig.video->WaitForCount(Kind::Sample, 1));
        EXPECT_EQ(rig.video->Samples().front().start, 0);
        rig.video->Stop();
        rig.audio->Stop();
        ASSERT_EQ(rig.splitter->Stop(), S_OK);
    }
}

class BrokenFile : public testing::TestWithParam<const wchar_t*> {};

TEST_P(BrokenFile, TruncatedFilesPlayWhatTheyHaveAndEnd) {
    SplitterRig rig;
    rig.Open(GetParam());
    ASSERT_TRUE(SUCCEEDED(rig.graph->Run()));
    EXPECT_TRUE(rig.video->WaitForCount(Kind::EndOfStream, 1));
    EXPECT_TRUE(rig.audio->WaitForCount(Kind::EndOfStream, 1));
    EXPECT_GT(rig.video->Samples().size(), 50u);
    EXPECT_LT(rig.video->Samples().size(), 400u);
}

INSTANTIATE_TEST_SUITE_P(Truncated, BrokenFile,
                         testing::Values(L"truncated.mkv", L"truncated_faststart.mp4"));

TEST(SplitterPlay, RotationTravelsAsSideDataOnEverySample) {
    SplitterRig rig;
    rig.Open(L"rotated.mp4");
    ASSERT_TRUE(SUCCEEDED(rig.graph->Run()));
    ASSERT_TRUE(rig.video->WaitForCount(Kind::EndOfStream, 1));
    constexpr std::uint32_t kDisplayMatrix = 5; // AV_PKT_DATA_DISPLAYMATRIX
    for (const Sample& sample : rig.video->Samples()) {
        ASSERT_EQ(sample.sideData.size(), 1u);
        EXPECT_EQ(sample.sideData.front().first, PacketSideDataKind(kDisplayMatrix));
        EXPECT_EQ(sample.sideData.front().second.size(), 36u);
    }
}

TEST(SplitterPlay, AfterManyRoundsNoObjectOfTheModuleLives) {
    TestModule module(L"LAVSplitter.ax");
    ASSERT_EQ(module.CanUnload(), S_OK);
    for (int round = 0; round < 50; ++round) {
        SplitterRig rig;
        rig.Open(round % 2 == 0 ? L"film.mkv" : L"tracks.mkv");
        EXPECT_EQ(module.CanUnload(), S_FALSE);
        ASSERT_TRUE(SUCCEEDED(rig.graph->Run()));
        ASSERT_TRUE(rig.video->WaitForCount(Kind::Sample, 1));
        ASSERT_EQ(rig.Seek(4 * kSecond + round * 100 * kMillisecond), S_OK);
        ASSERT_TRUE(rig.video->WaitFor([](const auto& events) {
            return std::any_of(events.begin(), events.end(), [](const auto& event) {
                return event.kind == Kind::NewSegment && event.segment.start >= 4 * kSecond;
            });
        }));
        ASSERT_TRUE(SUCCEEDED(rig.graph->Stop()));
    }
    EXPECT_EQ(module.CanUnload(), S_OK);
}

} // namespace
} // namespace brindlecast
