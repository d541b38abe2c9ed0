#include "subtitles/sub_pic_queue.h"

#include "subtitles/mem_sub_pic_allocator.h"
#include "tests/unit/sub_pic_fakes.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>

namespace brindlecast {
namespace {

using testing::CallList;
using testing::RecordingAllocator;
using testing::RecordingProvider;

template <class Interface>
ULONG ReferencesOf(Interface& object) {
    object.AddRef();
    return object.Release();
}

class SubPicQueueLifetime : public ::testing::Test {
protected:
    void Lookup(Time100ns rt) {
        ISubPic* picture = nullptr;
        ASSERT_EQ(queue->LookupSubPic(rt, &picture), 0);
        picture->Release();
    }

    CallList calls;
    ComReference<RecordingAllocator> allocator{new RecordingAllocator(calls)};
    ComReference<RecordingProvider> provider{new RecordingProvider(calls)};
    ComReference<CSubPicQueue> queue{new CSubPicQueue(allocator.get(), 10, 25.0)};
};

TEST_F(SubPicQueueLifetime, ANewQueueHasItsFrameRateAndNothingElse) {
    EXPECT_EQ(queue->GetFPS(), 25.0);
    EXPECT_EQ(queue->GetTime(), 0);
    EXPECT_EQ(queue->GetQueueCount(), 0);
    auto* held = reinterpret_cast<ISubPicProvider*>(this);
    EXPECT_EQ(queue->GetSubPicProvider(&held), 0);
    EXPECT_EQ(held, nullptr);
    EXPECT_EQ(ReferencesOf(*allocator), 2U);
    EXPECT_EQ(calls, CallList{});
}

TEST_F(SubPicQueueLifetime, FrameRateAndTimeAreStoredAndTheRateHandedOn) {
    queue->SetFPS(23.976);
    queue->SetTime(-5);
    EXPECT_EQ(queue->GetFPS(), 23.976);
    EXPECT_EQ(queue->GetTime(), -5);
    provider->events = {{0, 10}};
    queue->SetSubPicProvider(provider.get());
    Lookup(5);
    EXPECT_EQ(calls.at(1), "provider GetStartPosition 5 at 23.976");
    EXPECT_EQ(calls.at(4), "provider GetStart 1 at 23.976");
    EXPECT_EQ(calls.at(5), "provider GetStop 1 at 23.976");
    EXPECT_EQ(calls.at(10), "provider Render 5 at 23.976 2147483647,2147483647,-2147483648,-2147483648");
}

TEST_F(SubPicQueueLifetime, HoldsOneReferenceToItsProvider) {
    EXPECT_EQ(queue->SetSubPicProvider(provider.get()), 0);
    EXPECT_EQ(ReferencesOf(*provider), 2U);
    EXPECT_EQ(queue->SetSubPicProvider(provider.get()), 0);
    EXPECT_EQ(ReferencesOf(*provider), 2U);

    ISubPicProvider* held = nullptr;
    EXPECT_EQ(queue->GetSubPicProvider(&held), 0);
    EXPECT_EQ(held, provider.get());
    EXPECT_EQ(held->Release(), 2U);
    EXPECT_EQ(queue->GetSubPicProvider(nullptr), E_POINTER);
    EXPECT_EQ(ReferencesOf(*provider), 2U);

    EXPECT_EQ(queue->SetSubPicProvider(nullptr), 0);
    EXPECT_EQ(ReferencesOf(*provider), 1U);
}

TEST_F(SubPicQueueLifetime, AQueueMayHoldTheLastReferenceToTheProviderItIsGivenAgain) {
    EXPECT_EQ(queue->SetSubPicProvider(provider.get()), 0);
    ISubPicProvider* const last = provider.release();
    last->Release();
    EXPECT_EQ(queue->SetSubPicProvider(last), 0);
    EXPECT_EQ(calls, CallList{});
}

TEST_F(SubPicQueueLifetime, AnotherProviderDropsThePicturesOfTheFirst) {
    provider->events = {{0, 10}, {10, 20}};
    queue->SetSubPicProvider(provider.get());
    Lookup(5);
    Lookup(15);
    calls.clear();
    const ComReference<RecordingProvider> other(new RecordingProvider(calls));
    provider.reset();
    EXPECT_EQ(queue->SetSubPicProvider(other.get()), 0);
    EXPECT_EQ(calls, (CallList{"provider gone", "picture 1 gone", "picture 2 gone"}));
    EXPECT_EQ(queue->GetQueueCount(), 0);
}

TEST_F(SubPicQueueLifetime, TheEndDropsPicturesThenAllocatorThenProvider) {
    provider->events = {{0, 10}, {10, 20}};
    queue->SetSubPicProvider(provider.get());
    Lookup(5);
    Lookup(15);
    allocator.reset();
    provider.reset();
    calls.clear();
    queue.reset();
    EXPECT_EQ(calls, (CallList{"picture 1 gone", "picture 2 gone", "allocator gone", "provider gone"}));
}

TEST_F(SubPicQueueLifetime, APictureOutlivesItsQueue) {
    provider->events = {{0, 10}};
    queue->SetSubPicProvider(provider.get());
    ISubPic* picture = nullptr;
    ASSERT_EQ(queue->LookupSubPic(5, &picture), 0);
    queue.reset();
    EXPECT_EQ(picture->GetStop(), 10);
    EXPECT_EQ(picture->Release(), 0U);
}

TEST_F(SubPicQueueLifetime, AnswersItsOwnInterfaceAndTheUnknownOneAlone) {
    for (const GUID& iid : {kIidUnknown, ISubPicQueue::kIid}) {
        void* found = nullptr;
        EXPECT_EQ(queue->QueryInterface(iid, &found), 0);
        EXPECT_EQ(found, static_cast<void*>(static_cast<ISubPicQueue*>(queue.get())));
        EXPECT_EQ(queue->Release(), 1U);
    }
    for (const GUID& iid : {ISubPic::kIid, ISubPicAllocator::kIid, ISubPicProvider::kIid}) {
        void* found = this;
        EXPECT_EQ(queue->QueryInterface(iid, &found), E_NOINTERFACE);
        EXPECT_EQ(found, nullptr);
    }
    EXPECT_EQ(queue->QueryInterface(kIidUnknown, nullptr), E_POINTER);
    EXPECT_EQ(ReferencesOf(*queue), 1U);
}

// If the lookup let go of its mutex while it renders, the picture would be kept after the queue was emptied.
TEST_F(SubPicQueueLifetime, InvalidateAllOnAnotherThreadWaitsOutARender) {
    provider->events = {{0, 10}};
    queue->SetSubPicProvider(provider.get());
    std::future<void> emptied;
    provider->whileRendering = [&] {
        emptied = std::async(std::launch::async, [this] { queue->InvalidateAll(); });
        EXPECT_EQ(emptied.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    };
    Lookup(5);
    emptied.wait();
    EXPECT_EQ(queue->GetQueueCount(), 0);
    provider->whileRendering = nullptr;
}

// One event every ten units, drawn as its number plus the shift that another thread changes.
class SharedProvider final : public ComObject<ISubPicProvider> {
public:
    static constexpr Time100ns kEventLength = 10;

    STDMETHODIMP Lock() override {
        mutex.lock();
        return S_OK;
    }
    STDMETHODIMP Unlock() override {
        mutex.unlock();
        return S_OK;
    }
    SubPicPosition STDMETHODCALLTYPE GetStartPosition(Time100ns rt, double) override {
        ++calls;
        return static_cast<SubPicPosition>(rt / kEventLength + 1);
    }
    SubPicPosition STDMETHODCALLTYPE GetNext(SubPicPosition) override { return 0; }
    Time100ns STDMETHODCALLTYPE GetStart(SubPicPosition position, double) override {
        ++calls;
        return static_cast<Time100ns>(position - 1) * kEventLength;
    }
    Time100ns STDMETHODCALLTYPE GetStop(SubPicPosition position, double) override {
        return static_cast<Time100ns>(position) * kEventLength;
    }
    bool STDMETHODCALLTYPE IsAnimated(SubPicPosition) override { return false; }
    STDMETHODIMP Render(SubPicDesc& desc, Time100ns rt, double, Rect& bbox) override {
        const std::uint8_t value = ValueAt(rt, shift);
        std::fill_n(desc.bits, desc.pitch * desc.height, value);
        bbox = {0, 0, desc.width, desc.height};
        return S_OK;
    }
    void STDMETHODCALLTYPE SetVideoSize(Size) override {}
    Size* STDMETHODCALLTYPE GetVideoSize(Size* result) override { return result; }
    STDMETHODIMP Reserved1(std::uint32_t*) override { return S_OK; }

    static std::uint8_t ValueAt(Time100ns rt, int shift) {
        return static_cast<std::uint8_t>(rt / kEventLength + shift);
    }
    void SetShift(int value) {
        const std::lock_guard lock(mutex);
        ++calls;
        shift = value;
    }

private:
    ~SharedProvider() override = default;

    std::recursive_mutex mutex;
    int shift = 0;
    int calls = 0; // of several methods, so that a call without the lock is seen as a race
};

// Draws one frame after the other until it is told to stop, as a renderer does, with a jump back now and
// then. Every picture must be whole, of its time, and drawn with one of both shifts. Gives back what was
// wrong.
int DrawFrames(CSubPicQueue& queue, const std::atomic<bool>& stop, std::atomic<int>& drawn) {
    int wrong = 0;
    for (int frame = 0; !stop; ++frame) {
        const Time100ns rt = frame % 7 == 6 ? (frame - 6) * 3 : frame * 3;
        ISubPic* found = nullptr;
        if (queue.LookupSubPic(rt, &found) != S_OK) {
            ++wrong;
            continue;
        }
        const ComReference<ISubPic> picture(found);
        SubPicDesc desc;
        wrong += picture->Lock(desc) != S_OK;
        const std::uint8_t value = desc.bits[0];
        const bool known =
            value == SharedProvider::ValueAt(rt, 0) || value == SharedProvider::ValueAt(rt, 99);
        wrong += !known || desc.bits[desc.pitch * desc.height - 1] != value;
        wrong += picture->Unlock(nullptr) != S_OK;
        wrong += rt < picture->GetStart() || rt >= picture->GetStop();
        ++drawn;
    }
    return wrong;
}

TEST(SubPicQueueThreads, DrawingGoesOnWhileAnotherThreadChangesEverything) {
    constexpr int kRounds = 2000;
    const ComReference<CMemSubPicAllocator> allocator(new CMemSubPicAllocator);
    allocator->SetCurSize({16, 4});
    const ComReference<SharedProvider> provider(new SharedProvider);
    const ComReference<CSubPicQueue> queue(new CSubPicQueue(allocator.get(), 10, 25.0));
    queue->SetSubPicProvider(provider.get());

    std::atomic<bool> stop{false};
    std::atomic<int> drawn{0};
    auto wrong = std::async(std::launch::async, [&] { return DrawFrames(*queue, stop, drawn); });
    // By itself: next to calls that lock, a store without a lock would hardly ever be seen.
    const auto storing = std::async(std::launch::async, [&] {
        for (int round = 0; !stop; ++round) {
            queue->SetTime(round);
            queue->SetFPS(round % 2 == 0 ? 24.0 : 25.0);
            std::this_thread::yield();
        }
    });
    for (int round = 0; round < kRounds || drawn < kRounds; ++round) {
        // The provider's lock is given back before the queue's is taken.
        provider->SetShift(round % 2 == 0 ? 99 : 0);
        queue->InvalidateAll();
        EXPECT_LE(queue->GetQueueCount(), 10);
        if (round % 8 == 0) {
            queue->SetSubPicProvider(provider.get());
            queue->Invalidate(round);
        }
        ISubPicProvider* held = nullptr;
        EXPECT_EQ(queue->GetSubPicProvider(&held), 0);
        held->Release();
    }
    stop = true;
    EXPECT_EQ(wrong.get(), 0);
    storing.wait();
    EXPECT_EQ(ReferencesOf(*provider), 2U);
    EXPECT_EQ(ReferencesOf(*queue), 1U);
}

// The last reference may go on either thread. Whether it went once is for the sanitizers to say.
TEST(SubPicQueueThreads, APictureIsReleasedByTwoThreadsAtOnce) {
    constexpr int kRounds = 500;
    const ComReference<CMemSubPicAllocator> allocator(new CMemSubPicAllocator);
    allocator->SetCurSize({16, 4});
    const ComReference<SharedProvider> provider(new SharedProvider);
    const ComReference<CSubPicQueue> queue(new CSubPicQueue(allocator.get(), 10, 25.0));
    queue->SetSubPicProvider(provider.get());
    std::atomic<int> found{0};
    std::atomic<int> emptied{0};
    const auto await = [](const std::atomic<int>& counter, int value) {
        while (counter < value) {
            std::this_thread::yield();
        }
    };
    std::thread emptying([&] {
        for (int round = 1; round <= kRounds; ++round) {
            await(found, round);
            queue->InvalidateAll();
            emptied = round;
        }
    });
    for (int round = 1; round <= kRounds; ++round) {
        ISubPic* picture = nullptr;
        EXPECT_EQ(queue->LookupSubPic(5, &picture), 0);
        found = round;
        EXPECT_EQ(picture->GetStop(), 10);
        picture->Release();
        await(emptied, round);
    }
    emptying.join();
    EXPECT_EQ(queue->GetQueueCount(), 0);
}

} // namespace
} // namespace brindlecast
