#include "subtitles/sub_pic_queue.h"

#include "tests/unit/sub_pic_fakes.h"

#include <gtest/gtest.h>

#include <limits>

namespace brindlecast {
namespace {

using testing::CallList;
using testing::RecordingAllocator;
using testing::RecordingPicture;
using testing::RecordingProvider;

constexpr Time100ns kSecond = 10'000'000;
constexpr Time100ns kEarliest = std::numeric_limits<Time100ns>::min();
constexpr Time100ns kLatest = std::numeric_limits<Time100ns>::max();

template <class Interface>
ULONG ReferencesOf(Interface& object) {
    object.AddRef();
    return object.Release();
}

// A queue over a provider with two events, 10 to 20 and 20 to 30, and a gap before 40 to 50.
class SubPicQueue : public ::testing::Test {
protected:
    SubPicQueue() {
        provider->events = {{10, 20}, {20, 30}, {40, 50}};
        EXPECT_EQ(queue->SetSubPicProvider(provider.get()), 0);
        calls.clear();
    }
    // The number of the picture found, 0 for none.
    int Lookup(Time100ns rt) { return NumberOf(Found(rt)); }
    ComReference<ISubPic> Found(Time100ns rt) {
        ISubPic* picture = nullptr;
        const HRESULT result = queue->LookupSubPic(rt, &picture);
        EXPECT_EQ(result, picture != nullptr ? 0 : 1);
        return ComReference<ISubPic>(picture);
    }
    static int NumberOf(const ComReference<ISubPic>& picture) {
        return picture != nullptr ? static_cast<RecordingPicture&>(*picture).number : 0;
    }
    // What was called since the last time, in order.
    CallList Calls() { return std::exchange(calls, {}); }
    // Events of one second each, one after the other, the first at `first` seconds.
    void SetSeconds(int first, int count) {
        provider->events.clear();
        for (int i = 0; i < count; ++i) {
            provider->events.push_back({(first + i) * kSecond, (first + i + 1) * kSecond});
        }
    }

    CallList calls;
    ComReference<RecordingAllocator> allocator{new RecordingAllocator(calls)};
    ComReference<RecordingProvider> provider{new RecordingProvider(calls)};
    ComReference<CSubPicQueue> queue{new CSubPicQueue(allocator.get(), 10, 25.0)};
};

TEST_F(SubPicQueue, AMissRendersThePictureAndKeepsItForItsEvent) {
    const auto picture = Found(15);
    EXPECT_EQ(Calls(), (CallList{
                           "provider Lock",
                           "provider GetStartPosition 15 at 25.000",
                           "provider Unlock",
                           "provider Lock",
                           "provider GetStart 1 at 25.000",
                           "provider GetStop 1 at 25.000",
                           "provider Unlock",
                           "allocator AllocDynamic",
                           "picture 1 Lock",
                           "provider Lock",
                           "provider Render 15 at 25.000 2147483647,2147483647,-2147483648,-2147483648",
                           "provider Unlock",
                           "picture 1 Unlock 1,2,3,4",
                           "picture 1 SetStart 10",
                           "picture 1 SetStop 20",
                       }));
    EXPECT_EQ(NumberOf(picture), 1);
    EXPECT_EQ(ReferencesOf(*picture), 2U);
    EXPECT_EQ(queue->GetQueueCount(), 1);
}

TEST_F(SubPicQueue, AHitAsksThePicturesAlone) {
    Lookup(15);
    Calls();
    EXPECT_EQ(Lookup(19), 1);
    EXPECT_EQ(Calls(), (CallList{"picture 1 GetStop", "picture 1 GetStart", "picture 1 GetStop"}));
}

TEST_F(SubPicQueue, TwoLookupsAtOneTimeGiveOnePictureWithAReferenceEach) {
    const auto first = Found(15);
    EXPECT_EQ(ReferencesOf(*first), 2U);
    const auto second = Found(15);
    EXPECT_EQ(first.get(), second.get());
    EXPECT_EQ(ReferencesOf(*first), 3U);
    EXPECT_EQ(allocator->made, 1);
}

TEST_F(SubPicQueue, ThePictureIsClearedToItsEndBeforeItIsDrawn) {
    const auto picture = Found(15);
    EXPECT_TRUE(provider->receivedZeros);
    const auto& memory = static_cast<RecordingPicture&>(*picture).memory;
    EXPECT_EQ(memory[0], 7);
    EXPECT_EQ(memory[RecordingPicture::kBytes - 1], 0);
    EXPECT_EQ(memory[RecordingPicture::kBytes], RecordingPicture::kFill);
}

TEST_F(SubPicQueue, AnEventHoldsFromItsStartToBeforeItsStop) {
    struct Row {
        Time100ns rt;
        int picture;
    };
    const Row rows[] = {{9, 0},  {10, 1}, {19, 1}, {20, 2}, {29, 2},
                        {30, 0}, {39, 0}, {40, 3}, {49, 3}, {50, 0}};
    for (const Row row : rows) {
        EXPECT_EQ(Lookup(row.rt), row.picture) << row.rt;
    }
    EXPECT_EQ(queue->GetQueueCount(), 3);
}

TEST_F(SubPicQueue, InAGapNoPictureIsMade) {
    Lookup(25);
    Calls();
    EXPECT_EQ(Lookup(35), 0);
    EXPECT_EQ(Calls(), (CallList{
                           "picture 1 GetStop",
                           "picture 1 GetStart",
                           "picture 1 GetStop",
                           "provider Lock",
                           "provider GetStartPosition 35 at 25.000",
                           "provider Unlock",
                           "provider Lock",
                           "provider GetStart 3 at 25.000",
                           "provider GetStop 3 at 25.000",
                           "provider Unlock",
                       }));
    EXPECT_EQ(queue->GetQueueCount(), 1);
}

TEST_F(SubPicQueue, BehindTheLastEventTheProviderIsAskedOnce) {
    EXPECT_EQ(Lookup(50), 0);
    EXPECT_EQ(Calls(),
              (CallList{"provider Lock", "provider GetStartPosition 50 at 25.000", "provider Unlock"}));
}

// The provider is not trusted to answer with an event of the time it was asked for.
TEST_F(SubPicQueue, AnEventOfAnotherTimeGivesNothing) {
    provider->forcedPosition = 2;
    EXPECT_EQ(Lookup(19), 0);
    EXPECT_EQ(Lookup(30), 0);
    EXPECT_EQ(Lookup(31), 0);
    EXPECT_EQ(allocator->made, 0);
    EXPECT_EQ(Lookup(20), 1);
    EXPECT_EQ(Lookup(29), 1);
}

TEST_F(SubPicQueue, WithoutMemoryThereIsNoPicture) {
    allocator->allocResult = E_OUTOFMEMORY;
    EXPECT_EQ(Lookup(15), 0);
    EXPECT_EQ(Calls().back(), "allocator AllocDynamic");
    EXPECT_EQ(queue->GetQueueCount(), 0);
    allocator->allocResult = S_OK;
    EXPECT_EQ(Lookup(15), 1);
}

TEST_F(SubPicQueue, APictureThatCannotBeLockedIsReleased) {
    allocator->lockResult = E_FAIL;
    EXPECT_EQ(Lookup(15), 0);
    const CallList all = Calls();
    EXPECT_EQ((CallList{all.end() - 3, all.end()}),
              (CallList{"allocator AllocDynamic", "picture 1 Lock", "picture 1 gone"}));
    EXPECT_EQ(queue->GetQueueCount(), 0);
}

TEST_F(SubPicQueue, APictureOnWhichNothingIsDrawnIsReleasedAndTriedAgain) {
    for (const HRESULT result : {S_FALSE, E_FAIL, E_NOTIMPL}) {
        provider->renderResult = result;
        Calls();
        EXPECT_EQ(Lookup(15), 0);
        const std::string picture = "picture " + std::to_string(allocator->made);
        const CallList all = Calls();
        EXPECT_EQ((CallList{all.end() - 3, all.end()}),
                  (CallList{"provider Unlock", picture + " Unlock null", picture + " gone"}));
        EXPECT_EQ(queue->GetQueueCount(), 0);
    }
    provider->renderResult = S_OK;
    EXPECT_EQ(Lookup(15), 4);
}

TEST_F(SubPicQueue, AnyOtherSuccessOfRenderKeepsThePicture) {
    provider->renderResult = 2;
    EXPECT_EQ(Lookup(15), 1);
    EXPECT_EQ(queue->GetQueueCount(), 1);
}

TEST_F(SubPicQueue, AtTheStopOfAPictureTheNextEventIsRendered) {
    EXPECT_EQ(Lookup(15), 1);
    EXPECT_EQ(Lookup(20), 2);
    EXPECT_EQ(Found(20)->GetStart(), 20);
}

TEST_F(SubPicQueue, APictureOlderThanASecondIsDropped) {
    SetSeconds(0, 1); // ends at one second
    Lookup(0);
    Lookup(2 * kSecond);
    EXPECT_EQ(queue->GetQueueCount(), 1) << "just a second old";
    Calls();
    Lookup(2 * kSecond + 1);
    EXPECT_EQ(queue->GetQueueCount(), 0);
    EXPECT_EQ((CallList{calls.begin(), calls.begin() + 2}),
              (CallList{"picture 1 GetStop", "picture 1 gone"}));
}

TEST_F(SubPicQueue, AYoungPictureInFrontProtectsOlderOnesBehindIt) {
    SetSeconds(0, 10);
    Lookup(8 * kSecond);
    Lookup(0);
    Lookup(kSecond);
    EXPECT_EQ(queue->GetQueueCount(), 3);
    Lookup(9 * kSecond);
    EXPECT_EQ(queue->GetQueueCount(), 4);
    Lookup(10 * kSecond); // behind the last event
    EXPECT_EQ(queue->GetQueueCount(), 4) << "the one in front ended just a second ago";
    Lookup(10 * kSecond + 1);
    EXPECT_EQ(queue->GetQueueCount(), 1) << "it is gone, and with it the two behind it that are older";
}

TEST_F(SubPicQueue, AJumpBackOfUnderASecondFindsTheEarlierPicture) {
    SetSeconds(0, 10);
    EXPECT_EQ(Lookup(4 * kSecond), 1);
    EXPECT_EQ(Lookup(5 * kSecond), 2);
    EXPECT_EQ(Lookup(5 * kSecond + kSecond / 2), 2);
    EXPECT_EQ(Lookup(5 * kSecond - kSecond / 4), 1);
    EXPECT_EQ(allocator->made, 2);
}

TEST_F(SubPicQueue, TheEleventhPictureDropsTheOneRenderedFirst) {
    SetSeconds(0, 20);
    for (int i = 0; i < 10; ++i) { // backwards, so that the first rendered is the last in time
        EXPECT_EQ(Lookup((19 - i) * kSecond), i + 1);
    }
    EXPECT_EQ(queue->GetQueueCount(), 10);
    EXPECT_EQ(Lookup(9 * kSecond), 11);
    EXPECT_EQ(queue->GetQueueCount(), 10);
    EXPECT_EQ(Lookup(10 * kSecond), 10);
    EXPECT_EQ(Lookup(18 * kSecond), 2);
    EXPECT_EQ(Lookup(19 * kSecond), 12) << "had been dropped";
}

TEST_F(SubPicQueue, TheOldPictureGoesAfterTheNewOneIsDrawn) {
    queue.reset(new CSubPicQueue(allocator.get(), 1, 25.0));
    EXPECT_EQ(queue->SetSubPicProvider(provider.get()), 0);
    Lookup(25);
    Calls();
    Lookup(15);
    const CallList all = Calls();
    EXPECT_EQ((CallList{all.end() - 3, all.end()}),
              (CallList{"picture 2 SetStart 10", "picture 2 SetStop 20", "picture 1 gone"}));
    EXPECT_EQ(queue->GetQueueCount(), 1);
}

TEST_F(SubPicQueue, EvenAMaximumOfNoneKeepsThePictureJustRendered) {
    for (const int most : {0, -1}) {
        queue.reset(new CSubPicQueue(allocator.get(), most, 25.0));
        EXPECT_EQ(queue->SetSubPicProvider(provider.get()), 0);
        Lookup(15);
        EXPECT_EQ(queue->GetQueueCount(), 1);
        Lookup(25);
        EXPECT_EQ(queue->GetQueueCount(), 1);
    }
}

TEST_F(SubPicQueue, OfTwoPicturesOfOneTimeTheOneRenderedFirstIsFound) {
    provider->events = {{30, 60}};
    EXPECT_EQ(Lookup(45), 1);
    provider->events = {{10, 50}};
    EXPECT_EQ(Lookup(20), 2);
    EXPECT_EQ(Lookup(40), 1);
    EXPECT_EQ(Lookup(29), 2);
}

TEST_F(SubPicQueue, InvalidateDropsWhatStartsThenOrLaterAndKeepsTheOrder) {
    provider->events = {{0, 10}, {10, 20}, {20, 30}, {30, 40}};
    Lookup(35); // picture 1
    Lookup(15); // 2
    Lookup(25); // 3
    Lookup(5);  // 4
    Calls();
    queue->Invalidate(20);
    EXPECT_EQ(queue->GetQueueCount(), 2);
    calls.clear();
    Lookup(5);
    EXPECT_EQ(Calls(), (CallList{"picture 2 GetStop", "picture 2 GetStart", "picture 4 GetStart",
                                 "picture 4 GetStop"}));
    queue->Invalidate(10);
    EXPECT_EQ(Lookup(5), 4);
    EXPECT_EQ(queue->GetQueueCount(), 1);
    queue->Invalidate(1);
    EXPECT_EQ(queue->GetQueueCount(), 1);
    queue->Invalidate(0);
    EXPECT_EQ(queue->GetQueueCount(), 0);
}

TEST_F(SubPicQueue, InvalidateBeforeTheBeginningDropsAll) {
    provider->events = {{-20, -10}, {10, 20}};
    for (const Time100ns rt : {Time100ns{-1}, kEarliest}) {
        Lookup(-15);
        Lookup(15);
        EXPECT_EQ(queue->GetQueueCount(), 2);
        queue->Invalidate(rt);
        EXPECT_EQ(queue->GetQueueCount(), 0);
    }
}

TEST_F(SubPicQueue, InvalidateAllDropsAllButLeavesACallersPicture) {
    const auto held = Found(15);
    Lookup(25);
    Calls();
    queue->InvalidateAll();
    EXPECT_EQ(Calls(), (CallList{"picture 2 gone"}));
    EXPECT_EQ(queue->GetQueueCount(), 0);
    EXPECT_EQ(ReferencesOf(*held), 1U);
    EXPECT_EQ(Lookup(15), 3);
}

TEST_F(SubPicQueue, TheProviderMayCallBackWhileItRenders) {
    Lookup(25);
    provider->whileRendering = [this] {
        queue->InvalidateAll();
    };
    EXPECT_EQ(Lookup(15), 2);
    EXPECT_EQ(queue->GetQueueCount(), 1);
    provider->whileRendering = nullptr;
}

TEST_F(SubPicQueue, TheEndsOfTimeAreTimesLikeOthers) {
    provider->events = {{kEarliest, kEarliest + 10}, {kLatest - 10, kLatest}};
    EXPECT_EQ(Lookup(kEarliest), 1);
    EXPECT_EQ(Lookup(kEarliest + 9), 1);
    EXPECT_EQ(Lookup(kLatest - 1), 2);
    EXPECT_EQ(queue->GetQueueCount(), 1);
    EXPECT_EQ(Lookup(kLatest), 0);
    EXPECT_EQ(Lookup(kEarliest), 3);
    EXPECT_EQ(queue->GetQueueCount(), 2);
}

TEST_F(SubPicQueue, LookupNeedsAPlaceForThePicture) {
    EXPECT_EQ(queue->LookupSubPic(15, nullptr), E_POINTER);
    EXPECT_EQ(Calls(), CallList{});
}

TEST_F(SubPicQueue, LookupFailsWithoutProviderOrAllocator) {
    const ComReference<CSubPicQueue> noAllocator(new CSubPicQueue(nullptr, 10, 25.0));
    EXPECT_EQ(noAllocator->SetSubPicProvider(provider.get()), 0);
    EXPECT_EQ(queue->SetSubPicProvider(nullptr), 0);
    for (CSubPicQueue* const incomplete : {queue.get(), noAllocator.get()}) {
        auto* picture = reinterpret_cast<ISubPic*>(this);
        EXPECT_EQ(incomplete->LookupSubPic(15, &picture), E_FAIL);
        EXPECT_EQ(picture, nullptr);
    }
    EXPECT_EQ(Calls(), CallList{});
}

TEST_F(SubPicQueue, AMissSetsTheResultToNone) {
    auto* picture = reinterpret_cast<ISubPic*>(this);
    EXPECT_EQ(queue->LookupSubPic(35, &picture), 1);
    EXPECT_EQ(picture, nullptr);
}

} // namespace
} // namespace brindlecast
