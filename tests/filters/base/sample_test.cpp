#include "filters/base/media_type.h"
#include "filters/base/sample_allocator.h"
#include "filters/base/stream_formats.h"

#include <atomic>
#include <gmock/gmock.h>
#include <thread>

namespace brindlecast {
namespace {

using Microsoft::WRL::ComPtr;

ComPtr<SampleAllocator> Allocator(LONG buffers, LONG size) {
    auto allocator = AdoptReference(new SampleAllocator);
    ALLOCATOR_PROPERTIES request{buffers, size, 1, 0};
    ALLOCATOR_PROPERTIES actual{};
    EXPECT_EQ(allocator->SetProperties(&request, &actual), S_OK);
    EXPECT_EQ(actual.cBuffers, buffers);
    return allocator;
}

TEST(SampleAllocatorTest, GivesBuffersOnlyWhileCommitted) {
    const auto allocator = Allocator(1, 100);
    ComPtr<IMediaSample> sample;
    EXPECT_EQ(allocator->GetBuffer(sample.GetAddressOf(), nullptr, nullptr, 0), VFW_E_NOT_COMMITTED);
    ASSERT_EQ(allocator->Commit(), S_OK);
    ASSERT_EQ(allocator->GetBuffer(sample.GetAddressOf(), nullptr, nullptr, 0), S_OK);
    EXPECT_GE(sample->GetSize(), 100);
    ComPtr<IMediaSample> second;
    EXPECT_EQ(allocator->GetBuffer(second.GetAddressOf(), nullptr, nullptr, AM_GBF_NOWAIT), VFW_E_TIMEOUT);
    ALLOCATOR_PROPERTIES request{2, 10, 1, 0};
    ALLOCATOR_PROPERTIES actual{};
    EXPECT_EQ(allocator->SetProperties(&request, &actual), VFW_E_ALREADY_COMMITTED);
    EXPECT_EQ(allocator->Decommit(), S_OK);
    EXPECT_EQ(allocator->SetProperties(&request, &actual), VFW_E_BUFFERS_OUTSTANDING);
    sample.Reset();
    EXPECT_EQ(allocator->SetProperties(&request, &actual), S_OK);
}

TEST(SampleAllocatorTest, DecommitEndsAWaitAndAReturnedSampleEndsOneToo) {
    const auto allocator = Allocator(1, 100);
    ASSERT_EQ(allocator->Commit(), S_OK);
    ComPtr<IMediaSample> held;
    ASSERT_EQ(allocator->GetBuffer(held.GetAddressOf(), nullptr, nullptr, 0), S_OK);
    std::atomic<HRESULT> got{E_PENDING};
    const auto wait = [&] {
        ComPtr<IMediaSample> sample;
        got = allocator->GetBuffer(sample.GetAddressOf(), nullptr, nullptr, 0);
    };
    std::thread first(wait);
    Sleep(20);
    EXPECT_EQ(got, E_PENDING);
    held.Reset();
    first.join();
    EXPECT_EQ(got, S_OK);
    ASSERT_EQ(allocator->GetBuffer(held.GetAddressOf(), nullptr, nullptr, 0), S_OK);
    got = E_PENDING;
    std::thread second(wait);
    Sleep(20);
    allocator->Decommit();
    second.join();
    EXPECT_EQ(got, VFW_E_NOT_COMMITTED);
}

TEST(SampleAllocatorTest, ASampleComesBackCleanAndOutlivesItsAllocator) {
    const long before = ModuleObjectCount();
    auto allocator = Allocator(1, 100);
    ASSERT_EQ(allocator->Commit(), S_OK);
    ComPtr<IMediaSample> sample;
    ASSERT_EQ(allocator->GetBuffer(sample.GetAddressOf(), nullptr, nullptr, 0), S_OK);
    REFERENCE_TIME start = 5;
    sample->SetTime(&start, nullptr);
    sample->SetSyncPoint(TRUE);
    sample->SetPreroll(TRUE);
    sample->SetDiscontinuity(TRUE);
    MediaType type(MEDIATYPE_Audio, GUID_NULL);
    sample->SetMediaType(&type.Edit());
    ComPtr<ISampleSideData> sideData;
    ASSERT_EQ(sample->QueryInterface(kIidSampleSideData, reinterpret_cast<void**>(sideData.GetAddressOf())),
              S_OK);
    const BYTE bytes[] = {1, 2, 3};
    EXPECT_EQ(sideData->SetSideData(PacketSideDataKind(5), bytes, 3), S_OK);
    REFERENCE_TIME gotStart = 0;
    REFERENCE_TIME gotStop = 0;
    EXPECT_EQ(sample->GetTime(&gotStart, &gotStop), VFW_S_NO_STOP_TIME);
    EXPECT_EQ(gotStart, 5);
    EXPECT_EQ(sample->SetActualDataLength(101), VFW_E_BUFFER_OVERFLOW);
    sideData.Reset();
    sample.Reset();
    ASSERT_EQ(allocator->GetBuffer(sample.GetAddressOf(), nullptr, nullptr, 0), S_OK);
    EXPECT_EQ(sample->GetTime(&gotStart, &gotStop), VFW_E_SAMPLE_TIME_NOT_SET);
    EXPECT_EQ(sample->IsSyncPoint(), S_FALSE);
    EXPECT_EQ(sample->IsPreroll(), S_FALSE);
    EXPECT_EQ(sample->IsDiscontinuity(), S_FALSE);
    AM_MEDIA_TYPE* none = nullptr;
    EXPECT_EQ(sample->GetMediaType(&none), S_FALSE);
    ASSERT_EQ(sample->QueryInterface(kIidSampleSideData, reinterpret_cast<void**>(sideData.GetAddressOf())),
              S_OK);
    EXPECT_EQ(sideData->GetSideDataCount(), 0u);
    sideData.Reset();
    allocator->Decommit();
    allocator.Reset();
    BYTE* data = nullptr;
    EXPECT_EQ(sample->GetPointer(&data), S_OK);
    data[99] = 1;
    sample.Reset();
    EXPECT_EQ(ModuleObjectCount(), before);
}

TEST(SampleAllocatorTest, BuffersGrowOnDemand) {
    const auto allocator = Allocator(2, 16);
    ASSERT_EQ(allocator->Commit(), S_OK);
    ComPtr<IMediaSample> sample;
    ASSERT_EQ(allocator->GetBufferOfSize(5000, sample.GetAddressOf(), 0), S_OK);
    EXPECT_GE(sample->GetSize(), 5000);
    allocator->GrowBuffers(9000);
    ComPtr<IMediaSample> second;
    ASSERT_EQ(allocator->GetBuffer(second.GetAddressOf(), nullptr, nullptr, 0), S_OK);
    EXPECT_GE(second->GetSize(), 9000);
}

TEST(MediaTypeTest, CopiesAreDeepAndPatternsMatch) {
    MediaType type(MEDIATYPE_Audio, TagSubtype(0x55));
    BYTE* block = type.AllocateFormat(FORMAT_WaveFormatEx, 18);
    block[0] = 7;
    const MediaType copy = type;
    EXPECT_TRUE(copy == type);
    EXPECT_NE(copy->pbFormat, type->pbFormat);
    block[0] = 8;
    EXPECT_FALSE(copy == type);
    EXPECT_EQ(copy->pbFormat[0], 7);
    AM_MEDIA_TYPE pattern{};
    EXPECT_TRUE(MediaType::IsPartial(pattern));
    EXPECT_TRUE(type.Matches(pattern));
    pattern.majortype = MEDIATYPE_Video;
    EXPECT_FALSE(type.Matches(pattern));
    AM_MEDIA_TYPE* handed = type.NewTaskMemCopy();
    ASSERT_NE(handed, nullptr);
    EXPECT_EQ(handed->pbFormat[0], 8);
    MediaType::FreeTaskMem(handed);
    MediaType moved = std::move(type);
    EXPECT_EQ(moved->cbFormat, 18u);
    EXPECT_EQ(moved.Format<WAVEFORMATEX>(FORMAT_WaveFormatEx)->wFormatTag, 8);
    EXPECT_EQ(moved.Format<VIDEOINFOHEADER2>(FORMAT_WaveFormatEx), nullptr) << "the block is too small";
}

TEST(StreamGuids, FamiliesDoNotMix) {
    EXPECT_EQ(CodecOfSubtype(CodecSubtype(27)), 27u);
    EXPECT_EQ(TagOfSubtype(CodecSubtype(27)), std::nullopt);
    EXPECT_EQ(TagOfSubtype(TagSubtype(0xff)), 0xffu);
    EXPECT_EQ(PacketSideDataType(PacketSideDataKind(5)), 5u);
    EXPECT_EQ(PacketSideDataType(CodecSubtype(5)), std::nullopt);
}

} // namespace
} // namespace brindlecast
