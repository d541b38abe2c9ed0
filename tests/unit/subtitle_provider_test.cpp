#include "subtitles/subtitle_provider.h"

#include "tests/support/subtitle_fixture.h"

#include <array>
#include <atomic>
#include <chrono>
#include <future>
#include <limits>
#include <utility>

// CSubtitleProvider as an object, and the events that it tells of.

namespace brindlecast::testing {
namespace {

constexpr Time100ns kMost = std::numeric_limits<Time100ns>::max();
constexpr Time100ns kLeast = std::numeric_limits<Time100ns>::min();
constexpr Size kFrame{200, 100};
constexpr Rect kPlace{10, 20, 110, 60};

std::string OneBlock() {
    return AssScript(kFrame, {{.place = kPlace}});
}

class SubtitleProviderTest : public SubtitleTest {
protected:
    SubtitleProviderTest() { provider->SetVideoSize(kFrame); }
    [[nodiscard]] static ComReference<CSubtitleProvider> Make() {
        return ComReference<CSubtitleProvider>(new CSubtitleProvider(SubtitleStyle{}, DrawFakeCue));
    }
    bool Load(const std::u8string& name, std::string_view bytes) {
        return provider->LoadFile(folder.Write(name, bytes));
    }
    HRESULT Render(Canvas& canvas, Time100ns rt) {
        Rect bbox;
        return provider->Render(canvas.desc, rt, 25.0, bbox);
    }

    ComReference<CSubtitleProvider> provider = Make();
};

// The object.

TEST_F(SubtitleProviderTest, AnswersToItsTwoInterfaces) {
    const GUID iid = {0xD62B9A1A, 0x879A, 0x42DB, {0xAB, 0x04, 0x88, 0xAA, 0x8F, 0x24, 0x3C, 0xFD}};
    const GUID unknown = {0, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
    GUID other = iid;
    other.Data4[7] = 0xFE;
    for (const GUID& known : {iid, unknown}) {
        void* answer = nullptr;
        EXPECT_EQ(S_OK, provider->QueryInterface(known, &answer));
        EXPECT_EQ(static_cast<ISubPicProvider*>(provider.get()), answer);
        EXPECT_EQ(1U, provider->Release());
    }
    void* answer = provider.get();
    EXPECT_EQ(static_cast<HRESULT>(0x80004002), provider->QueryInterface(other, &answer));
    EXPECT_EQ(nullptr, answer);
    EXPECT_EQ(static_cast<HRESULT>(0x80004003), provider->QueryInterface(iid, nullptr));
    EXPECT_EQ(2U, provider->AddRef());
    EXPECT_EQ(1U, provider->Release());
}

TEST_F(SubtitleProviderTest, TheQueryWithoutANameWritesZero) {
    std::uint32_t result = 7;
    EXPECT_EQ(0, provider->Reserved1(&result));
    EXPECT_EQ(0U, result);
    EXPECT_EQ(static_cast<HRESULT>(0x80004003), provider->Reserved1(nullptr));
}

TEST_F(SubtitleProviderTest, LocksForOneThreadAsOftenAsItLikes) {
    EXPECT_EQ(0, provider->Lock());
    EXPECT_EQ(0, provider->Lock());
    std::atomic<bool> entered = false;
    auto other = std::async(std::launch::async, [&] {
        provider->Lock();
        entered = true;
        provider->Unlock();
    });
    EXPECT_EQ(0, provider->Unlock());
    EXPECT_EQ(std::future_status::timeout, other.wait_for(std::chrono::milliseconds(50)));
    EXPECT_FALSE(entered);
    EXPECT_EQ(0, provider->Unlock());
    other.get();
    EXPECT_TRUE(entered);
}

TEST_F(SubtitleProviderTest, IsEmptyAtFirst) {
    EXPECT_FALSE(provider->HasContent());
    EXPECT_EQ(0, provider->Delay());
    EXPECT_EQ(0U, provider->GetStartPosition(0, 25.0));
    EXPECT_EQ(Lines{}, TakeLines()) << "no events are built of nothing";
    Canvas canvas(kFrame);
    Rect bbox{1, 2, 3, 4};
    EXPECT_EQ(1, provider->Render(canvas.desc, 15'000'000, 25.0, bbox));
    EXPECT_EQ((Rect{1, 2, 3, 4}), bbox);
    Size size{5, 5};
    EXPECT_EQ(&size, Make()->GetVideoSize(&size));
    EXPECT_EQ(Size{}, size);
}

// The events.

TEST_F(SubtitleProviderTest, EventsStandInTheOrderOfTheirStarts) {
    ASSERT_TRUE(Load(u8"a.ass", AssScript(kFrame, {{"0:00:03.00", "0:00:04.00", kPlace},
                                                   {"0:00:01.00", "0:00:02.00", kPlace},
                                                   {"0:00:01.50", "0:00:05.00", kPlace}})));
    TakeLines();
    EXPECT_EQ(0, provider->GetStart(1, 25.0));
    EXPECT_EQ(0U, provider->GetNext(1));
    EXPECT_EQ(1U, provider->GetStartPosition(0, 25.0));
    EXPECT_EQ((Lines{L"libass event count: 3", L"Total events loaded: 3"}), TakeLines());
    const std::array<std::pair<Time100ns, Time100ns>, 3> times = {
        {{10'000'000, 20'000'000}, {15'000'000, 50'000'000}, {30'000'000, 40'000'000}}};
    for (SubPicPosition position = 1; position <= times.size(); ++position) {
        EXPECT_EQ(times[position - 1].first, provider->GetStart(position, 25.0));
        EXPECT_EQ(times[position - 1].second, provider->GetStop(position, 25.0));
        EXPECT_FALSE(provider->IsAnimated(position));
    }
    EXPECT_EQ(1U, provider->GetStartPosition(0, 25.0));
    EXPECT_EQ(Lines{}, TakeLines()) << "they are built once";
}

TEST_F(SubtitleProviderTest, AStartPositionIsTheFirstEventThatStopsLater) {
    ASSERT_TRUE(Load(u8"a.ass", AssScript(kFrame, {{"0:00:03.00", "0:00:04.00", kPlace},
                                                   {"0:00:01.00", "0:00:02.00", kPlace},
                                                   {"0:00:01.50", "0:00:05.00", kPlace}})));
    struct Row {
        Time100ns rt;
        SubPicPosition position;
    };
    for (const Row& row :
         {Row{kLeast, 1}, Row{-1, 1}, Row{0, 1}, Row{10'000'000, 1}, Row{19'999'999, 1}, Row{20'000'000, 2},
          Row{35'000'000, 2}, Row{49'999'999, 2}, Row{50'000'000, 0}, Row{kMost, 0}}) {
        EXPECT_EQ(row.position, provider->GetStartPosition(row.rt, 25.0)) << row.rt;
        EXPECT_EQ(row.position, provider->GetStartPosition(row.rt, 0.0)) << row.rt;
        EXPECT_EQ(row.position, provider->GetStartPosition(row.rt, std::numeric_limits<double>::quiet_NaN()))
            << row.rt;
    }
}

TEST_F(SubtitleProviderTest, ADelayDoesNotMoveTheEvents) {
    ASSERT_TRUE(Load(u8"a.ass", OneBlock()));
    for (const Milliseconds delay : {500, -500, 100'000}) {
        provider->SetDelay(delay);
        EXPECT_EQ(delay, provider->Delay());
        EXPECT_EQ(1U, provider->GetStartPosition(19'999'999, 25.0));
        EXPECT_EQ(0U, provider->GetStartPosition(20'000'000, 25.0));
        EXPECT_EQ(10'000'000, provider->GetStart(1, 25.0));
        EXPECT_EQ(20'000'000, provider->GetStop(1, 25.0));
    }
}

TEST_F(SubtitleProviderTest, PositionsBeyondTheEventsAreNone) {
    ASSERT_TRUE(
        Load(u8"a.ass", AssScript(kFrame, {{.place = kPlace}, {"0:00:03.00", "0:00:04.00", kPlace}})));
    ASSERT_EQ(1U, provider->GetStartPosition(0, 25.0));
    EXPECT_EQ(0U, provider->GetNext(0));
    EXPECT_EQ(2U, provider->GetNext(1));
    EXPECT_EQ(0U, provider->GetNext(2));
    EXPECT_EQ(0U, provider->GetNext(3));
    EXPECT_EQ(0U, provider->GetNext(std::numeric_limits<SubPicPosition>::max()));
    for (const SubPicPosition position :
         {SubPicPosition{0}, SubPicPosition{3}, std::numeric_limits<SubPicPosition>::max()}) {
        EXPECT_EQ(0, provider->GetStart(position, 25.0));
        EXPECT_EQ(0, provider->GetStop(position, 25.0));
        EXPECT_FALSE(provider->IsAnimated(position));
    }
    EXPECT_EQ(30'000'000, provider->GetStart(2, std::numeric_limits<double>::infinity()));
    EXPECT_EQ(40'000'000, provider->GetStop(2, -1.0));
}

TEST_F(SubtitleProviderTest, CuesBecomeEventsByTheirStarts) {
    ASSERT_TRUE(Load(u8"a.idx", "1\n00:00:03,001 --> 00:00:04,000\nlater\n\n"
                                "2\n00:00:01,000 --> 00:00:02,999\nsooner\n"));
    TakeLines();
    EXPECT_EQ(1U, provider->GetStartPosition(0, 25.0));
    EXPECT_EQ(Lines{L"Total events loaded: 2"}, TakeLines());
    EXPECT_EQ(10'000'000, provider->GetStart(1, 25.0));
    EXPECT_EQ(29'990'000, provider->GetStop(1, 25.0));
    EXPECT_EQ(30'010'000, provider->GetStart(2, 25.0));
    EXPECT_EQ(2U, provider->GetStartPosition(29'990'000, 25.0));
}

TEST_F(SubtitleProviderTest, AWebVttFileWithoutNumbersLosesEverySecondCue) {
    ASSERT_TRUE(Load(u8"a.vtt", "WEBVTT\n\n00:00:01.000 --> 00:00:02.000\none\n\n"
                                "00:00:03.000 --> 00:00:04.000\ntwo\n\n"
                                "00:00:05.000 --> 00:00:06.000\nthree\n\n"
                                "00:00:07.000 --> 00:00:08.000\nfour\n"));
    EXPECT_EQ(1U, provider->GetStartPosition(0, 25.0));
    EXPECT_EQ(30'000'000, provider->GetStart(1, 25.0));
    EXPECT_EQ(70'000'000, provider->GetStart(2, 25.0));
    EXPECT_EQ(0U, provider->GetNext(2));
}

TEST_F(SubtitleProviderTest, AnEventThatEndsBeforeItStartsIsKeptAsItStands) {
    ASSERT_TRUE(Load(u8"a.ass", AssScript(kFrame, {{"0:00:05.00", "0:00:03.00", kPlace}})));
    EXPECT_EQ(1U, provider->GetStartPosition(29'999'999, 25.0));
    EXPECT_EQ(50'000'000, provider->GetStart(1, 25.0));
    EXPECT_EQ(30'000'000, provider->GetStop(1, 25.0));
    EXPECT_EQ(0U, provider->GetStartPosition(30'000'000, 25.0));
}

} // namespace
} // namespace brindlecast::testing
