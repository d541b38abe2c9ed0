#include "subtitles/mem_sub_pic_allocator.h"

#include <gtest/gtest.h>

#include <limits>

namespace brindlecast {
namespace {

using Sizes = std::initializer_list<Size>;

constexpr int kMost = std::numeric_limits<int>::max();

class SubPicAllocator : public testing::Test {
protected:
    ComReference<ISubPic> Static() {
        ISubPic* picture = nullptr;
        EXPECT_EQ(allocator->GetStatic(&picture), 0);
        return ComReference<ISubPic>(picture);
    }
    static Size SizeOf(ISubPic& picture) {
        Size size;
        EXPECT_EQ(picture.GetSize(&size), 0);
        return size;
    }
    template <class Interface>
    static ULONG ReferencesOf(Interface& object) {
        object.AddRef();
        return object.Release();
    }

    ComReference<CMemSubPicAllocator> allocator{new CMemSubPicAllocator};
};

TEST_F(SubPicAllocator, ANewOneHasNoSizeAndAMaximumOf4096) {
    Size size{1, 1};
    EXPECT_EQ(allocator->GetCurSize(&size), 0);
    EXPECT_EQ(size, (Size{0, 0}));
    Rect rect{1, 1, 1, 1};
    EXPECT_EQ(allocator->GetCurVidRect(&rect), 0);
    EXPECT_EQ(rect, (Rect{0, 0, 0, 0}));
    Size maxSize;
    EXPECT_EQ(allocator->GetMaxSize(&maxSize), &maxSize);
    EXPECT_EQ(maxSize, (Size{4096, 4096}));
    EXPECT_FALSE(allocator->IsDynamicWriteOnly());
}

TEST_F(SubPicAllocator, SizesAndRectangleAreStored) {
    EXPECT_EQ(allocator->SetCurSize({1280, 720}), 0);
    EXPECT_EQ(allocator->SetCurVidRect({1, 2, 3, 4}), 0);
    allocator->SetMaxSize({800, 600});
    Size size;
    EXPECT_EQ(allocator->GetCurSize(&size), 0);
    EXPECT_EQ(size, (Size{1280, 720}));
    Rect rect;
    EXPECT_EQ(allocator->GetCurVidRect(&rect), 0);
    EXPECT_EQ(rect, (Rect{1, 2, 3, 4}));
    Size maxSize;
    EXPECT_EQ(allocator->GetMaxSize(&maxSize), &maxSize);
    EXPECT_EQ(maxSize, (Size{800, 600}));
}

TEST_F(SubPicAllocator, NullPointersAreRefused) {
    EXPECT_EQ(allocator->GetCurSize(nullptr), E_POINTER);
    EXPECT_EQ(allocator->GetCurVidRect(nullptr), E_POINTER);
    EXPECT_EQ(allocator->AllocDynamic(nullptr), E_POINTER);
    EXPECT_EQ(allocator->GetStatic(nullptr), E_POINTER);
    EXPECT_EQ(allocator->QueryInterface(ISubPicAllocator::kIid, nullptr), E_POINTER);
    EXPECT_EQ(ReferencesOf(*allocator), 1U);
}

TEST_F(SubPicAllocator, ReservedMethods) {
    EXPECT_EQ(allocator->Reserved1(), 0);
    EXPECT_EQ(allocator->Reserved2(), E_NOTIMPL);
}

TEST_F(SubPicAllocator, AnswersItsOwnInterfaceAndTheUnknownOneAlone) {
    for (const GUID& iid : {kIidUnknown, ISubPicAllocator::kIid}) {
        void* found = nullptr;
        EXPECT_EQ(allocator->QueryInterface(iid, &found), 0);
        EXPECT_EQ(found, static_cast<void*>(static_cast<ISubPicAllocator*>(allocator.get())));
        EXPECT_EQ(allocator->Release(), 1U);
    }
    for (const GUID& iid : {ISubPic::kIid, ISubPicQueue::kIid}) {
        void* found = this;
        EXPECT_EQ(allocator->QueryInterface(iid, &found), E_NOINTERFACE);
        EXPECT_EQ(found, nullptr);
    }
    EXPECT_EQ(ReferencesOf(*allocator), 1U);
}

TEST_F(SubPicAllocator, AllocDynamicMakesANewPictureEachTimeForTheCallerAlone) {
    allocator->SetCurSize({16, 8});
    ISubPic* first = nullptr;
    ISubPic* second = nullptr;
    EXPECT_EQ(allocator->AllocDynamic(&first), 0);
    EXPECT_EQ(allocator->AllocDynamic(&second), 0);
    const ComReference<ISubPic> one(first);
    const ComReference<ISubPic> other(second);
    EXPECT_NE(first, second);
    EXPECT_EQ(ReferencesOf(*one), 1U);
    EXPECT_EQ(ReferencesOf(*other), 1U);
    EXPECT_EQ(ReferencesOf(*allocator), 1U);
}

TEST_F(SubPicAllocator, APictureOutlivesItsAllocator) {
    allocator->SetCurSize({16, 8});
    const auto picture = Static();
    allocator.reset();
    EXPECT_EQ(SizeOf(*picture), (Size{16, 8}));
    EXPECT_EQ(ReferencesOf(*picture), 1U);
}

TEST_F(SubPicAllocator, GetStaticHandsOutOnePictureAsLongAsTheSizeStays) {
    allocator->SetCurSize({16, 8});
    const auto first = Static();
    EXPECT_EQ(ReferencesOf(*first), 2U);
    allocator->SetCurSize({16, 8});
    const auto second = Static();
    EXPECT_EQ(first.get(), second.get());
    EXPECT_EQ(ReferencesOf(*first), 3U);
}

TEST_F(SubPicAllocator, GetStaticReplacesThePictureWhenTheSizeHasChanged) {
    allocator->SetCurSize({16, 8});
    const auto first = Static();
    for (const Size size : Sizes{{17, 8}, {17, 9}}) {
        allocator->SetCurSize(size);
        const auto next = Static();
        EXPECT_NE(first.get(), next.get());
        EXPECT_EQ(SizeOf(*next), size);
        EXPECT_EQ(ReferencesOf(*next), 2U);
    }
    EXPECT_EQ(ReferencesOf(*first), 1U);
}

TEST_F(SubPicAllocator, FreeStaticGivesItsReferenceBack) {
    EXPECT_EQ(allocator->FreeStatic(), 0);
    allocator->SetCurSize({16, 8});
    const auto first = Static();
    EXPECT_EQ(allocator->FreeStatic(), 0);
    EXPECT_EQ(ReferencesOf(*first), 1U);
    EXPECT_NE(Static().get(), first.get());
}

// What no machine can give is asked for without asking: the count of bytes would not fit its field, or there
// is no such picture.
TEST_F(SubPicAllocator, ASizeThatCannotBeHadIsOutOfMemory) {
    for (const Size size : Sizes{{kMost, 1},
                                 {kMost, kMost},
                                 {0x20000000, 1},
                                 {0x1FFFFFFD, 1},
                                 {-1, 8},
                                 {8, -1},
                                 {-8, -8},
                                 {std::numeric_limits<int>::min(), 1}}) {
        allocator->SetCurSize(size);
        ISubPic* picture = reinterpret_cast<ISubPic*>(this);
        EXPECT_EQ(allocator->AllocDynamic(&picture), E_OUTOFMEMORY) << size.width << "x" << size.height;
        EXPECT_EQ(picture, nullptr);
        picture = reinterpret_cast<ISubPic*>(this);
        EXPECT_EQ(allocator->GetStatic(&picture), E_OUTOFMEMORY) << size.width << "x" << size.height;
        EXPECT_EQ(picture, nullptr);
    }
}

TEST_F(SubPicAllocator, AFailedGetStaticLeavesNoStaticPicture) {
    allocator->SetCurSize({16, 8});
    const auto first = Static();
    allocator->SetCurSize({kMost, 8});
    ISubPic* none = nullptr;
    EXPECT_EQ(allocator->GetStatic(&none), E_OUTOFMEMORY);
    EXPECT_EQ(ReferencesOf(*first), 1U);
    allocator->SetCurSize({16, 8});
    EXPECT_NE(Static().get(), first.get());
}

// A sanitizer ends the process where the runtime says no.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST_F(SubPicAllocator, ARefusalOfTheRuntimeIsOutOfMemory) {
    for (const Size size : Sizes{{0x1FFFFFFC, kMost}, {0x10000000, 0x10000000}}) {
        allocator->SetCurSize(size);
        ISubPic* picture = nullptr;
        EXPECT_EQ(allocator->AllocDynamic(&picture), E_OUTOFMEMORY) << size.width << "x" << size.height;
        EXPECT_EQ(picture, nullptr);
    }
}
#endif

TEST_F(SubPicAllocator, APictureWithoutWidthOrHeightIsPossible) {
    for (const Size size : Sizes{{0, 0}, {0, 10}, {10, 0}, {0, kMost}}) {
        allocator->SetCurSize(size);
        ISubPic* picture = nullptr;
        EXPECT_EQ(allocator->AllocDynamic(&picture), 0);
        const ComReference<ISubPic> owner(picture);
        EXPECT_EQ(SizeOf(*owner), size);
    }
}

} // namespace
} // namespace brindlecast
