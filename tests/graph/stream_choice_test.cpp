#include "tests/graph/graph_fixture.h"
#include "tests/graph/task_memory_spy.h"

#include <functional>

namespace brindlecast::testing {
namespace {

class StreamChoice : public GraphTest {
protected:
    void Open() {
        ASSERT_TRUE(engine->OpenFile(kFilm));
        ClearCalls();
    }
    static constexpr const wchar_t* kTracks =
        L"video:1:H.264;audio:0:Korean;subtitle:0:English [subrip];audio:1:Japanese;text:1:-;audio:1:-";
};

TEST_F(StreamChoice, TracksAreCountedByKind) {
    SetText("LAVSplitter.streams", kTracks);
    Open();
    EXPECT_EQ(3, engine->GetAudioTrackCount());
    EXPECT_EQ(1, engine->GetActiveAudioTrack()) << "of two enabled ones the first";
    EXPECT_EQ(L"Korean", engine->GetAudioTrackName(0));
    EXPECT_EQ(L"Japanese", engine->GetAudioTrackName(1));
    EXPECT_EQ(L"", engine->GetAudioTrackName(2));
    EXPECT_EQ(L"", engine->GetAudioTrackName(3));
    EXPECT_EQ(2, engine->GetEmbeddedSubtitleCount());
    EXPECT_EQ(L"English [subrip]", engine->GetEmbeddedSubtitleName(0));
    EXPECT_EQ(L"", engine->GetEmbeddedSubtitleName(1));
    EXPECT_EQ(L"", engine->GetEmbeddedSubtitleName(-1));
    EXPECT_EQ(2, engine->MapEmbeddedSubtitleStream(0));
    EXPECT_EQ(4, engine->MapEmbeddedSubtitleStream(1));
    EXPECT_EQ(-1, engine->MapEmbeddedSubtitleStream(2));
}

TEST_F(StreamChoice, SelectingEnablesTheStreamBehindTheOrdinal) {
    SetText("LAVSplitter.streams", kTracks);
    Open();
    EXPECT_TRUE(engine->SelectAudioTrack(1));
    EXPECT_TRUE(engine->SelectAudioTrack(0));
    EXPECT_FALSE(engine->SelectAudioTrack(3));
    ExpectLines({L"LAVSplitter.Enable(3, 1)", L"LAVSplitter.Enable(1, 1)"}, Calls());
    SetNumber("LAVSplitter.enable", E_FAIL);
    EXPECT_FALSE(engine->SelectAudioTrack(1));
}

TEST_F(StreamChoice, ASubtitleBetweenTwoTracksIsNotCounted) {
    SetText("LAVSplitter.streams", L"audio:1:Korean;subtitle:0:Korean;audio:0:Japanese");
    Open();
    EXPECT_TRUE(engine->SelectAudioTrack(1));
    ExpectLines({L"LAVSplitter.Enable(2, 1)"}, Calls());
}

TEST_F(StreamChoice, OrdinalsBeyondTheStreamsFindNothing) {
    SetText("LAVSplitter.streams", kTracks);
    Open();
    constexpr unsigned kLargest = 0xFFFFFFFF;
    EXPECT_EQ(L"", engine->GetAudioTrackName(kLargest));
    EXPECT_FALSE(engine->SelectAudioTrack(kLargest));
    EXPECT_EQ(-1, engine->MapEmbeddedSubtitleStream(kLargest));
    EXPECT_EQ(L"", engine->GetEmbeddedSubtitleName(2));
    EXPECT_EQ(L"", engine->GetEmbeddedSubtitleName(0x7FFFFFFF));
    EXPECT_EQ(Lines{}, Calls());
}

TEST_F(StreamChoice, ATrackIsActiveByItsLowestFlagAlone) {
    SetText("LAVSplitter.streams", L"audio:2:exclusive;audio:4294967294:all but one;audio:3:both");
    Open();
    EXPECT_EQ(2, engine->GetActiveAudioTrack());
}

TEST_F(StreamChoice, StreamsAreAskedAfreshForWhatIsNeededAlone) {
    SetText("LAVSplitter.streams", L"audio:0:Korean;subtitle:0:English;audio:1:Japanese;subtitle:0:-");
    Open();
    const auto queries = [](const std::function<void()>& operation) {
        ClearCalls();
        operation();
        return QueriesOf(L"LAVSplitter.");
    };
    const auto all = [](const wchar_t* outputs) {
        Lines lines = {L"LAVSplitter.Count"};
        for (int index = 0; index < 4; ++index) {
            lines.push_back(L"LAVSplitter.Info(" + std::to_wstring(index) + outputs + L")");
        }
        return lines;
    };
    const auto upTo = [](std::size_t count, Lines lines) {
        lines.resize(count + 1);
        return lines;
    };
    // Twice: nothing is remembered.
    EXPECT_EQ(all(L", type"), queries([&] { EXPECT_EQ(2, engine->GetAudioTrackCount()); }));
    EXPECT_EQ(all(L", type"), queries([&] { EXPECT_EQ(2, engine->GetAudioTrackCount()); }));
    EXPECT_EQ(all(L", type"), queries([&] { EXPECT_EQ(2, engine->GetEmbeddedSubtitleCount()); }));
    EXPECT_EQ(upTo(3, all(L", type, flags")), queries([&] { EXPECT_EQ(1, engine->GetActiveAudioTrack()); }));
    EXPECT_EQ(upTo(3, all(L", type, name")),
              queries([&] { EXPECT_EQ(L"Japanese", engine->GetAudioTrackName(1)); }));
    EXPECT_EQ(upTo(2, all(L", type, name")),
              queries([&] { EXPECT_EQ(L"English", engine->GetEmbeddedSubtitleName(0)); }));
    EXPECT_EQ(upTo(3, all(L", type")), queries([&] { EXPECT_TRUE(engine->SelectAudioTrack(1)); }));
    EXPECT_EQ(upTo(4, all(L", type")), queries([&] { EXPECT_EQ(3, engine->MapEmbeddedSubtitleStream(1)); }));
}

TEST_F(StreamChoice, TypesAndNamesOfStreamsAreFreed) {
    SetText("LAVSplitter.streams", kTracks);
    Open();
    struct Walk {
        const char* name;
        unsigned allocations; // two for a type and its format, one for a name
        std::function<void()> run;
    };
    const std::vector<Walk> walks = {
        {"count", 12,
         [this] {
             EXPECT_EQ(3, engine->GetAudioTrackCount());
         }},
        {"active", 8,
         [this] {
             EXPECT_EQ(1, engine->GetActiveAudioTrack());
         }},
        {"name", 16,
         [this] {
             EXPECT_EQ(L"", engine->GetAudioTrackName(9));
         }},
        {"select", 8,
         [this] {
             EXPECT_TRUE(engine->SelectAudioTrack(1));
         }},
        {"subtitles", 12,
         [this] {
             EXPECT_EQ(2, engine->GetEmbeddedSubtitleCount());
         }},
        {"subtitle's name", 9,
         [this] {
             EXPECT_EQ(L"English [subrip]", engine->GetEmbeddedSubtitleName(0));
         }},
        {"map", 10,
         [this] {
             EXPECT_EQ(4, engine->MapEmbeddedSubtitleStream(1));
         }},
    };
    TaskMemorySpy& spy = TaskMemorySpy::Instance();
    for (const Walk& walk : walks) {
        spy.Start();
        walk.run();
        spy.Stop();
        EXPECT_EQ(walk.allocations, spy.Allocations()) << walk.name;
        EXPECT_EQ(0U, spy.Living()) << walk.name;
    }
}

TEST_F(StreamChoice, AStreamThatCanNotBeAskedIsPassedOver) {
    SetText("LAVSplitter.streams", kTracks);
    Open();
    SetNumber("LAVSplitter.infoFails", 1);
    EXPECT_EQ(2, engine->GetAudioTrackCount());
    EXPECT_EQ(0, engine->GetActiveAudioTrack());
    EXPECT_EQ(L"Japanese", engine->GetAudioTrackName(0));
}

TEST_F(StreamChoice, WithoutEnabledStreamNoneIsActive) {
    SetText("LAVSplitter.streams", L"audio:0:Korean");
    Open();
    EXPECT_EQ(-1, engine->GetActiveAudioTrack());
}

TEST_F(StreamChoice, WithoutStreamSelectionThereAreNoTracks) {
    const auto expectNone = [this] {
        EXPECT_EQ(0, engine->GetAudioTrackCount());
        EXPECT_EQ(-1, engine->GetActiveAudioTrack());
        EXPECT_EQ(L"", engine->GetAudioTrackName(0));
        EXPECT_FALSE(engine->SelectAudioTrack(0));
        EXPECT_EQ(0, engine->GetEmbeddedSubtitleCount());
        EXPECT_EQ(L"", engine->GetEmbeddedSubtitleName(0));
        EXPECT_EQ(-1, engine->MapEmbeddedSubtitleStream(0));
    };
    expectNone();
    Open();
    SetNumber("LAVSplitter.countResult", E_FAIL);
    expectNone();
    SetNumber("LAVSplitter.countResult", 0);
    SetNumber("LAVSplitter.noStreamSelect", 1);
    expectNone();
}

} // namespace
} // namespace brindlecast::testing
