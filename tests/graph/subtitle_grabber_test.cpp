#include "engine/subtitle_grabber.h"

#include "base/win32/com_ptr.h"
#include "tests/graph/fake_sample.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <mutex>

namespace brindlecast::testing {
namespace {

class SubtitleGrabber : public ::testing::Test {
protected:
    SubtitleGrabber() { *callback.ReleaseAndGetAddressOf() = new CSubtitleGrabberCallback; }

    ComPtr<CSubtitleGrabberCallback> callback;
};

TEST_F(SubtitleGrabber, BeginsEmptyWithOneReference) {
    EXPECT_TRUE(callback->samples.empty());
    EXPECT_TRUE(callback->text.empty());
    EXPECT_EQ(0U, callback->reservedFirst);
    EXPECT_EQ(0U, callback->reservedSecond);
    EXPECT_FALSE(callback->isAss);
    EXPECT_FALSE(callback->providerLinked);
    EXPECT_EQ(nullptr, callback->providerTarget);
    EXPECT_EQ(2U, callback->AddRef());
    EXPECT_EQ(3U, callback->AddRef());
    EXPECT_EQ(2U, callback->Release());
    EXPECT_EQ(1U, callback->Release());
}

TEST_F(SubtitleGrabber, IsWhatTheFilterAsksFor) {
    EXPECT_EQ((IID{0x0579154A, 0x2B53, 0x4994, {0xB0, 0xD0, 0xE7, 0x73, 0x14, 0x8E, 0xFF, 0x85}}),
              __uuidof(ISampleGrabberCB));
    for (const IID& iid : {__uuidof(IUnknown), __uuidof(ISampleGrabberCB)}) {
        void* asked = nullptr;
        EXPECT_EQ(S_OK, callback->QueryInterface(iid, &asked));
        EXPECT_EQ(static_cast<ISampleGrabberCB*>(callback.Get()), asked);
        EXPECT_EQ(1U, callback->Release()) << "asking has added a reference";
    }
    void* other = callback.Get();
    EXPECT_EQ(E_NOINTERFACE, callback->QueryInterface(__uuidof(ISampleGrabber), &other));
    EXPECT_EQ(nullptr, other);
    EXPECT_EQ(E_POINTER, callback->QueryInterface(__uuidof(IUnknown), nullptr));
}

TEST_F(SubtitleGrabber, ItsFunctionsStandInTheOrderOfTheInterface) {
    using SampleFunction = HRESULT(STDMETHODCALLTYPE*)(void*, double, IMediaSample*);
    using BufferFunction = HRESULT(STDMETHODCALLTYPE*)(void*, double, BYTE*, LONG);
    void** const table = *reinterpret_cast<void***>(callback.Get());
    FakeSample sample(1, 2, {7});
    EXPECT_EQ(S_OK, reinterpret_cast<SampleFunction>(table[3])(callback.Get(), 0.0, &sample));
    EXPECT_EQ(1U, callback->samples.size());
    EXPECT_EQ(S_OK, reinterpret_cast<BufferFunction>(table[4])(callback.Get(), 0.0, nullptr, 0));
    EXPECT_EQ(1U, callback->samples.size());
}

TEST_F(SubtitleGrabber, KeepsACopyOfEachSample) {
    FakeSample first(10'000'000, 25'000'000, {'o', 'n', 'e'});
    FakeSample second(-5, 1, {0});
    EXPECT_EQ(S_OK, callback->SampleCB(1.0, &first));
    EXPECT_EQ((std::vector<std::string>{"GetTime", "GetActualDataLength", "GetPointer"}), first.calls);
    EXPECT_EQ(S_OK, callback->SampleCB(0.0, &second));
    first.bytes.assign(3, 'x');
    ASSERT_EQ(2U, callback->samples.size());
    EXPECT_EQ(10'000'000, callback->samples[0].start);
    EXPECT_EQ(25'000'000, callback->samples[0].stop);
    EXPECT_EQ((std::vector<std::uint8_t>{'o', 'n', 'e'}), callback->samples[0].data);
    EXPECT_EQ(-5, callback->samples[1].start);
    EXPECT_EQ(1, callback->samples[1].stop);
    EXPECT_EQ(std::vector<std::uint8_t>{0}, callback->samples[1].data);
}

TEST_F(SubtitleGrabber, OnlyTheBytesInUseAreCopied) {
    FakeSample sample(0, 1, {1, 2, 3, 4});
    sample.length = 2;
    EXPECT_EQ(S_OK, callback->SampleCB(0.0, &sample));
    ASSERT_EQ(1U, callback->samples.size());
    EXPECT_EQ((std::vector<std::uint8_t>{1, 2}), callback->samples[0].data);
}

TEST_F(SubtitleGrabber, ASampleWithoutTimesIsKeptAtZero) {
    FakeSample sample(3, 4, {1});
    sample.timeResult = VFW_E_SAMPLE_TIME_NOT_SET;
    EXPECT_EQ(S_OK, callback->SampleCB(0.0, &sample));
    ASSERT_EQ(1U, callback->samples.size());
    EXPECT_EQ(0, callback->samples[0].start);
    EXPECT_EQ(0, callback->samples[0].stop);
}

TEST_F(SubtitleGrabber, WhatHoldsNothingIsPassedOver) {
    FakeSample empty(0, 1, {1});
    empty.length = 0;
    FakeSample negative(0, 1, {1});
    negative.length = -1;
    FakeSample withoutPointer(0, 1, {1});
    withoutPointer.pointerIsNull = true;
    FakeSample failing(0, 1, {1});
    failing.pointerResult = E_FAIL;
    for (FakeSample* sample : {&empty, &negative, &withoutPointer, &failing}) {
        EXPECT_EQ(S_OK, callback->SampleCB(0.0, sample));
    }
    EXPECT_EQ(E_POINTER, callback->SampleCB(0.0, nullptr));
    EXPECT_TRUE(callback->samples.empty());
}

TEST_F(SubtitleGrabber, BuffersAreNotKept) {
    BYTE bytes[] = {1, 2, 3};
    EXPECT_EQ(S_OK, callback->BufferCB(0.0, bytes, 3));
    EXPECT_EQ(S_OK, callback->BufferCB(0.0, nullptr, 0));
    EXPECT_TRUE(callback->samples.empty());
}

TEST_F(SubtitleGrabber, ClearingForgetsTheStreamAndKeepsTheLink) {
    FakeSample sample(0, 1, {1});
    EXPECT_EQ(S_OK, callback->SampleCB(0.0, &sample));
    callback->text = "text";
    callback->reservedFirst = 1;
    callback->reservedSecond = 2;
    callback->isAss = true;
    callback->providerLinked = true;
    callback->Clear();
    EXPECT_TRUE(callback->samples.empty());
    EXPECT_TRUE(callback->text.empty());
    EXPECT_EQ(0U, callback->reservedFirst);
    EXPECT_EQ(0U, callback->reservedSecond);
    EXPECT_FALSE(callback->isAss);
    EXPECT_TRUE(callback->providerLinked);
}

TEST_F(SubtitleGrabber, ASampleWaitsForWhoeverHoldsTheLock) {
    FakeSample sample(0, 1, {1});
    std::future<HRESULT> arrival;
    {
        const std::lock_guard guard(callback->lock);
        arrival = std::async(std::launch::async, [&] { return callback->SampleCB(0.0, &sample); });
        EXPECT_EQ(std::future_status::timeout, arrival.wait_for(std::chrono::milliseconds(100)));
        EXPECT_TRUE(callback->samples.empty());
        callback->Clear(); // the same thread may take it twice
    }
    EXPECT_EQ(S_OK, arrival.get());
    EXPECT_EQ(1U, callback->samples.size());
}

TEST_F(SubtitleGrabber, ManyThreadsCountReferencesRight) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 20000;
    std::vector<std::future<void>> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.push_back(std::async(std::launch::async, [this] {
            for (int round = 0; round < kRounds; ++round) {
                callback->AddRef();
                callback->Release();
            }
        }));
    }
    for (std::future<void>& thread : threads) {
        thread.get();
    }
    EXPECT_EQ(2U, callback->AddRef());
    EXPECT_EQ(1U, callback->Release());
}

} // namespace
} // namespace brindlecast::testing
