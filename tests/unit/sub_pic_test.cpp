#include "subtitles/mem_sub_pic.h"
#include "subtitles/mem_sub_pic_allocator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

namespace brindlecast {
namespace {

using Pixel = std::array<std::uint8_t, 4>; // blue, green, red, alpha

constexpr int kLeast = std::numeric_limits<int>::min();
constexpr int kMost = std::numeric_limits<int>::max();

template <class Interface>
ULONG ReferencesOf(Interface& object) {
    object.AddRef();
    return object.Release();
}

class SubPic : public testing::Test {
protected:
    ComReference<ISubPic> Make(Size size, Rect videoRect = {}) {
        allocator->SetCurSize(size);
        allocator->SetCurVidRect(videoRect);
        ISubPic* picture = nullptr;
        EXPECT_EQ(allocator->AllocDynamic(&picture), 0);
        return ComReference<ISubPic>(picture);
    }
    static Rect DirtyRectOf(ISubPic& picture) {
        Rect rect{-1, -1, -1, -1};
        EXPECT_EQ(picture.GetDirtyRect(&rect), 0);
        return rect;
    }
    static SubPicDesc Locked(ISubPic& picture) {
        SubPicDesc desc;
        EXPECT_EQ(picture.Lock(desc), 0);
        return desc;
    }
    // The dirty rectangle of a picture of 100x50 that was 1,2,3,4 before `drawn` was handed to Unlock.
    Rect DirtyAfter(const Rect* drawn) {
        const auto picture = Make({100, 50});
        const Rect before{1, 2, 3, 4};
        EXPECT_EQ(picture->SetDirtyRect(&before), 0);
        Locked(*picture);
        EXPECT_EQ(picture->Unlock(drawn), 0);
        return DirtyRectOf(*picture);
    }

    ComReference<CMemSubPicAllocator> allocator{new CMemSubPicAllocator};
};

TEST_F(SubPic, ANewPictureHasTheCurrentSizeAndNothingOnIt) {
    const auto picture = Make({640, 360}, {0, 0, 640, 300});
    Size size;
    EXPECT_EQ(picture->GetSize(&size), 0);
    EXPECT_EQ(size, (Size{640, 360}));
    Size maxSize;
    EXPECT_EQ(picture->GetMaxSize(&maxSize), 0);
    EXPECT_EQ(maxSize, (Size{640, 360}));
    EXPECT_EQ(DirtyRectOf(*picture), (Rect{0, 0, 0, 0}));
    EXPECT_EQ(picture->GetStart(), 0);
    EXPECT_EQ(picture->GetStop(), 0);
    EXPECT_EQ(picture->GetSegmentStart(), 0);
    EXPECT_EQ(picture->GetSegmentStop(), 0);

    const SubPicDesc desc = Locked(*picture);
    EXPECT_EQ(desc.type, 0U);
    EXPECT_EQ(desc.width, 640);
    EXPECT_EQ(desc.height, 360);
    EXPECT_EQ(desc.bpp, 32);
    EXPECT_EQ(desc.pitch, 2560);
    EXPECT_EQ(desc.videoRect, (Rect{0, 0, 640, 300}));
    ASSERT_NE(desc.bits, nullptr);
    EXPECT_EQ(std::count(desc.bits, desc.bits + 2560 * 360, 0), 2560 * 360);
}

TEST_F(SubPic, RowsAreAlignedToSixteenBytes) {
    struct Row {
        int width;
        int pitch;
    };
    constexpr Row kRows[] = {{0, 0},  {1, 16},      {3, 16},      {4, 16},      {5, 32},      {8, 32},
                             {9, 48}, {1918, 7680}, {1920, 7680}, {1921, 7696}, {4096, 16384}};
    for (const Row row : kRows) {
        const auto picture = Make({row.width, 2});
        EXPECT_EQ(Locked(*picture).pitch, row.pitch) << row.width;
    }
}

TEST_F(SubPic, TheMemoryHasPitchTimesHeightBytes) {
    const auto picture = Make({1920, 1080});
    const SubPicDesc desc = Locked(*picture);
    // A sanitizer would see a byte too few; the count is that of the whole frame.
    std::fill_n(desc.bits, 8'294'400, std::uint8_t{0xFF});
    EXPECT_EQ(picture->Unlock(nullptr), 0);
    EXPECT_EQ(Locked(*picture).bits, desc.bits);
    EXPECT_EQ(desc.bits[8'294'399], 0xFF);
}

TEST_F(SubPic, TimesAreStoredEachByItself) {
    const auto picture = Make({8, 8});
    picture->SetStart(-1);
    picture->SetStop(20'000'000'000'000);
    picture->SetSegmentStart(3);
    picture->SetSegmentStop(std::numeric_limits<Time100ns>::max());
    EXPECT_EQ(picture->GetStart(), -1);
    EXPECT_EQ(picture->GetStop(), 20'000'000'000'000);
    EXPECT_EQ(picture->GetSegmentStart(), 3);
    EXPECT_EQ(picture->GetSegmentStop(), std::numeric_limits<Time100ns>::max());
}

TEST_F(SubPic, TheDirtyRectangleIsStoredAsGivenAndCleared) {
    const auto picture = Make({8, 8});
    const Rect beyond{-5, 3, 900, 4};
    EXPECT_EQ(picture->SetDirtyRect(&beyond), 0);
    EXPECT_EQ(DirtyRectOf(*picture), beyond);
    picture->ClearDirtyRect();
    EXPECT_EQ(DirtyRectOf(*picture), (Rect{0, 0, 0, 0}));
}

TEST_F(SubPic, NullPointersAreRefused) {
    const auto picture = Make({8, 8});
    const Rect before{1, 2, 3, 4};
    EXPECT_EQ(picture->SetDirtyRect(&before), 0);
    EXPECT_EQ(picture->GetDirtyRect(nullptr), E_POINTER);
    EXPECT_EQ(picture->SetDirtyRect(nullptr), E_POINTER);
    EXPECT_EQ(DirtyRectOf(*picture), before);
    EXPECT_EQ(picture->GetSize(nullptr), E_POINTER);
    EXPECT_EQ(picture->GetMaxSize(nullptr), E_POINTER);
    EXPECT_EQ(picture->QueryInterface(kIidUnknown, nullptr), E_POINTER);
    EXPECT_EQ(ReferencesOf(*picture), 1U);
}

TEST_F(SubPic, ReservedMethodsAreNotImplemented) {
    const auto picture = Make({8, 8});
    EXPECT_EQ(picture->Reserved1(), E_NOTIMPL);
    EXPECT_EQ(picture->Reserved2(), E_NOTIMPL);
}

TEST_F(SubPic, CountsReferencesFromOne) {
    const auto picture = Make({8, 8});
    EXPECT_EQ(picture->AddRef(), 2U);
    EXPECT_EQ(picture->AddRef(), 3U);
    EXPECT_EQ(picture->Release(), 2U);
    EXPECT_EQ(picture->Release(), 1U);
}

TEST_F(SubPic, AnswersItsOwnInterfaceAndTheUnknownOneAlone) {
    const auto picture = Make({8, 8});
    for (const GUID& iid : {kIidUnknown, ISubPic::kIid}) {
        void* found = nullptr;
        EXPECT_EQ(picture->QueryInterface(iid, &found), 0);
        EXPECT_EQ(found, static_cast<void*>(picture.get()));
        EXPECT_EQ(picture->Release(), 1U);
    }
    for (const GUID& iid : {ISubPicAllocator::kIid, ISubPicProvider::kIid}) {
        void* found = this;
        EXPECT_EQ(picture->QueryInterface(iid, &found), E_NOINTERFACE);
        EXPECT_EQ(found, nullptr);
    }
    EXPECT_EQ(ReferencesOf(*picture), 1U);
}

TEST_F(SubPic, ASecondLockFailsAndTheFirstStaysValid) {
    const auto picture = Make({8, 8});
    const SubPicDesc first = Locked(*picture);
    SubPicDesc second;
    second.width = 77;
    EXPECT_EQ(picture->Lock(second), E_FAIL);
    EXPECT_EQ(second.width, 77);
    first.bits[0] = 9;
    EXPECT_EQ(picture->Unlock(nullptr), 0);
    const SubPicDesc again = Locked(*picture);
    EXPECT_EQ(again.bits, first.bits);
    EXPECT_EQ(again.bits[0], 9);
}

TEST_F(SubPic, OnlyALockedPictureCanBeUnlocked) {
    const auto picture = Make({8, 8});
    const Rect drawn{0, 0, 4, 4};
    EXPECT_EQ(picture->Unlock(&drawn), E_FAIL);
    EXPECT_EQ(DirtyRectOf(*picture), (Rect{0, 0, 0, 0}));
    Locked(*picture);
    EXPECT_EQ(picture->Unlock(nullptr), 0);
    EXPECT_EQ(picture->Unlock(nullptr), E_FAIL);
}

TEST_F(SubPic, UnlockClipsWhatWasDrawnToThePicture) {
    struct Row {
        Rect drawn;
        Rect dirty;
    };
    const Row rows[] = {
        {{10, 20, 30, 40}, {10, 20, 30, 40}}, {{0, 0, 100, 50}, {0, 0, 100, 50}},
        {{-5, -6, 101, 51}, {0, 0, 100, 50}}, {{99, 49, 200, 200}, {99, 49, 100, 50}},
        {{-10, -10, 1, 1}, {0, 0, 1, 1}},     {{kLeast, kLeast, kMost, kMost}, {0, 0, 100, 50}},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(DirtyAfter(&row.drawn), row.dirty) << row.drawn.left;
    }
}

TEST_F(SubPic, UnlockLeavesTheDirtyRectangleWhenNothingOfThePictureWasDrawn) {
    const Rect before{1, 2, 3, 4};
    EXPECT_EQ(DirtyAfter(nullptr), before);
    const Rect nothing[] = {{100, 0, 120, 50}, {0, 50, 100, 60}, {-9, 0, 0, 50},   {0, -9, 100, 0},
                            {30, 20, 30, 40},  {10, 40, 30, 20}, {40, 20, 30, 40}, kInvertedRect};
    for (const Rect& drawn : nothing) {
        EXPECT_EQ(DirtyAfter(&drawn), before) << drawn.left << " " << drawn.top;
    }
}

// Source 4x3 and target 5x4 of their own, each pixel known.
class SubPicAlphaBlt : public SubPic {
protected:
    static constexpr Pixel kUntouched{1, 2, 3, 4};

    SubPicAlphaBlt() {
        source = Make({4, 3});
        desc = Locked(*source);
        targetPixels.fill(kUntouched);
        target = {0, 5, 4, 32, 20, targetPixels.front().data(), {}};
    }
    void Put(int x, int y, Pixel pixel) { std::copy_n(pixel.data(), 4, desc.bits + y * desc.pitch + x * 4); }
    // Every pixel opaque, its place in blue and green.
    void PutPlaces() {
        for (int y = 0; y < 3; ++y) {
            for (int x = 0; x < 4; ++x) {
                Put(x, y, {static_cast<std::uint8_t>(10 + x), static_cast<std::uint8_t>(20 + y), 0, 255});
            }
        }
    }
    Pixel& Target(int x, int y) { return targetPixels[static_cast<std::size_t>(y * 5 + x)]; }
    // What one source pixel makes of one target pixel.
    Pixel Blend(Pixel from, Pixel onto) {
        Put(0, 0, from);
        Target(0, 0) = onto;
        const Rect one{0, 0, 1, 1};
        EXPECT_EQ(source->AlphaBlt(&one, &one, &target), 0);
        return Target(0, 0);
    }
    // The pixels of the target that are no longer as they were.
    int Touched() {
        return 20 - static_cast<int>(std::count(targetPixels.begin(), targetPixels.end(), kUntouched));
    }

    ComReference<ISubPic> source;
    SubPicDesc desc;
    std::array<Pixel, 20> targetPixels{};
    SubPicDesc target;
};

TEST_F(SubPicAlphaBlt, BlendsStraightColourAndCutsQuotients) {
    struct Row {
        Pixel from;
        Pixel onto;
        Pixel expected;
    };
    const Row rows[] = {
        {{50, 60, 70, 0}, {1, 2, 3, 4}, {1, 2, 3, 4}},
        {{50, 60, 70, 255}, {1, 2, 3, 4}, {50, 60, 70, 255}},
        {{0, 0, 0, 255}, {1, 2, 3, 4}, {0, 0, 0, 255}},
        // (127 * 200 + 128 * 100) / 255 = 149.8; 127 * 100 / 255 = 49.8
        {{100, 0, 255, 128}, {200, 255, 0, 100}, {149, 127, 128, 177}},
        {{255, 255, 255, 1}, {255, 0, 254, 255}, {255, 1, 254, 255}},
        // Straight, not multiplied: 254 * 10 + 1 * 250 = 2790, 10.9 of 255
        {{10, 250, 0, 254}, {250, 10, 0, 0}, {10, 249, 0, 254}},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Blend(row.from, row.onto), row.expected) << static_cast<int>(row.from[3]);
    }
}

TEST_F(SubPicAlphaBlt, CopiesTheSourceRectangleToTheTargetRectangle) {
    PutPlaces();
    const Rect from{1, 1, 3, 3};
    const Rect to{3, 0, 5, 2};
    EXPECT_EQ(source->AlphaBlt(&from, &to, &target), 0);
    EXPECT_EQ(Target(3, 0), (Pixel{11, 21, 0, 255}));
    EXPECT_EQ(Target(4, 0), (Pixel{12, 21, 0, 255}));
    EXPECT_EQ(Target(3, 1), (Pixel{11, 22, 0, 255}));
    EXPECT_EQ(Target(4, 1), (Pixel{12, 22, 0, 255}));
    EXPECT_EQ(Touched(), 4);
}

TEST_F(SubPicAlphaBlt, TheSmallerOfBothSizesCounts) {
    PutPlaces();
    const Rect wide{0, 0, 3, 1};
    const Rect high{0, 0, 1, 3};
    EXPECT_EQ(source->AlphaBlt(&wide, &high, &target), 0);
    EXPECT_EQ(Target(0, 0), (Pixel{10, 20, 0, 255}));
    EXPECT_EQ(Touched(), 1);
    EXPECT_EQ(source->AlphaBlt(&high, &wide, &target), 0);
    EXPECT_EQ(Touched(), 1);
}

TEST_F(SubPicAlphaBlt, PixelsOutsideOfEitherPictureAreLeftOut) {
    PutPlaces();
    const Rect all{kLeast, kLeast, kMost, kMost};
    EXPECT_EQ(source->AlphaBlt(&all, &all, &target), 0);
    EXPECT_EQ(Touched(), 12);
    EXPECT_EQ(Target(3, 2), (Pixel{13, 22, 0, 255}));

    targetPixels.fill(kUntouched);
    const Rect from{-1, -1, 4, 3};
    const Rect to{3, 2, 100, 100};
    EXPECT_EQ(source->AlphaBlt(&from, &to, &target), 0);
    EXPECT_EQ(Target(4, 3), (Pixel{10, 20, 0, 255}));
    EXPECT_EQ(Touched(), 1);

    targetPixels.fill(kUntouched);
    const Rect beside{4, 0, 8, 3};
    const Rect before{-4, 0, 0, 4};
    const Rect inside{0, 0, 4, 3};
    EXPECT_EQ(source->AlphaBlt(&beside, &inside, &target), 0);
    EXPECT_EQ(source->AlphaBlt(&inside, &before, &target), 0);
    EXPECT_EQ(Touched(), 0);
}

TEST_F(SubPicAlphaBlt, ChecksPointersThenRectanglesThenFormats) {
    PutPlaces();
    const Rect some{0, 0, 2, 2};
    const Rect noWidth{1, 0, 1, 2};
    const Rect noHeight{0, 2, 2, 1};
    SubPicDesc nowhere = target;
    nowhere.bits = nullptr;
    EXPECT_EQ(source->AlphaBlt(nullptr, &some, &target), E_POINTER);
    EXPECT_EQ(source->AlphaBlt(&some, nullptr, &target), E_POINTER);
    EXPECT_EQ(source->AlphaBlt(&some, &some, nullptr), E_POINTER);
    EXPECT_EQ(source->AlphaBlt(&noWidth, &some, &nowhere), E_POINTER);
    target.bpp = 24;
    EXPECT_EQ(source->AlphaBlt(&noWidth, &some, &target), 1);
    EXPECT_EQ(source->AlphaBlt(&some, &noHeight, &target), 1);
    for (const int bpp : {kLeast, 0, 24, 31, 40, kMost}) {
        target.bpp = bpp;
        EXPECT_EQ(source->AlphaBlt(&some, &some, &target), E_NOTIMPL) << bpp;
    }
    EXPECT_EQ(Touched(), 0);
    for (const int bpp : {32, 39}) {
        targetPixels.fill(kUntouched);
        target.bpp = bpp;
        EXPECT_EQ(source->AlphaBlt(&some, &some, &target), 0) << bpp;
        EXPECT_EQ(Touched(), 4);
    }
}

TEST(SubPicMemory, AFormatOtherThan32BitsHasItsPitchAndNoAlphaBlt) {
    const ComReference<ISubPic> picture(CMemSubPic::Make({10, 2}, {}, 24, 7));
    ASSERT_NE(picture, nullptr);
    SubPicDesc desc;
    EXPECT_EQ(picture->Lock(desc), 0);
    EXPECT_EQ(desc.type, 7U);
    EXPECT_EQ(desc.bpp, 24);
    EXPECT_EQ(desc.pitch, 32); // 240 bits are 30 bytes
    const Rect some{0, 0, 1, 1};
    Pixel pixel{1, 2, 3, 4};
    SubPicDesc target{0, 1, 1, 32, 4, pixel.data(), {}};
    EXPECT_EQ(picture->AlphaBlt(&some, &some, &target), E_NOTIMPL);
    EXPECT_EQ(pixel, (Pixel{1, 2, 3, 4}));
}

} // namespace
} // namespace brindlecast
