#include "base/com_object.h"
#include "subtitles/mem_sub_pic_allocator.h"
#include "subtitles/sub_pic.h"
#include "subtitles/sub_pic_queue.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <type_traits>

// The interfaces by the numbers of their slots alone, as a caller sees them that was compiled elsewhere. The
// numbers are written out here and come from no header.

namespace brindlecast {
namespace {

// Calls what stands in that slot of the object's table of functions. References go as pointers, which is what
// they are at this border.
template <class Result, class... Arguments>
Result CallSlot(void* object, std::size_t slot, Arguments... arguments) {
    using Method = Result(STDMETHODCALLTYPE*)(void*, Arguments...);
    void* const* table = nullptr;
    std::memcpy(&table, object, sizeof(table));
    return reinterpret_cast<Method>(table[slot])(object, arguments...);
}

template <class Interface>
void* ObjectOf(const ComReference<Interface>& reference) {
    return reference.get();
}

void ExpectUnknown(void* object, const GUID& iid) {
    void* found = nullptr;
    EXPECT_EQ(CallSlot<HRESULT>(object, 0, &iid, &found), 0);
    EXPECT_EQ(found, object);
    EXPECT_EQ(CallSlot<ULONG>(object, 1), 3U);
    EXPECT_EQ(CallSlot<ULONG>(object, 2), 2U);
    EXPECT_EQ(CallSlot<ULONG>(object, 2), 1U);
}

// Writes down which method was last called, and answers what its signature allows.
class NamingProvider final : public ComObject<ISubPicProvider> {
public:
    STDMETHODIMP Lock() override { return Note("Lock", S_OK); }
    STDMETHODIMP Unlock() override { return Note("Unlock", S_OK); }
    SubPicPosition STDMETHODCALLTYPE GetStartPosition(Time100ns rt, double fps) override {
        return Note("GetStartPosition " + std::to_string(rt) + " " + std::to_string(fps), SubPicPosition{51});
    }
    SubPicPosition STDMETHODCALLTYPE GetNext(SubPicPosition position) override {
        return Note("GetNext " + std::to_string(position), SubPicPosition{52});
    }
    Time100ns STDMETHODCALLTYPE GetStart(SubPicPosition position, double fps) override {
        return Note("GetStart " + std::to_string(position) + " " + std::to_string(fps), Time100ns{53} << 40);
    }
    Time100ns STDMETHODCALLTYPE GetStop(SubPicPosition position, double fps) override {
        return Note("GetStop " + std::to_string(position) + " " + std::to_string(fps), Time100ns{54} << 40);
    }
    bool STDMETHODCALLTYPE IsAnimated(SubPicPosition position) override {
        return Note("IsAnimated " + std::to_string(position), true);
    }
    STDMETHODIMP Render(SubPicDesc& desc, Time100ns rt, double fps, Rect& bbox) override {
        bbox.left = 7;
        return Note("Render " + std::to_string(desc.pitch) + " " + std::to_string(rt) + " " +
                        std::to_string(fps),
                    S_FALSE);
    }
    void STDMETHODCALLTYPE SetVideoSize(Size size) override {
        last = "SetVideoSize " + std::to_string(size.width) + "x" + std::to_string(size.height);
    }
    Size* STDMETHODCALLTYPE GetVideoSize(Size* result) override {
        *result = {640, 360};
        return Note("GetVideoSize", result);
    }
    STDMETHODIMP Reserved1(std::uint32_t* result) override {
        *result = 0;
        return Note("Reserved1", S_OK);
    }

    std::string last;

private:
    ~NamingProvider() override = default;
    template <class Result>
    Result Note(std::string name, Result result) {
        last = std::move(name);
        return result;
    }
};

TEST(SubPicSlots, ThePicturesOrder) {
    const ComReference<CMemSubPicAllocator> allocator(new CMemSubPicAllocator);
    allocator->SetCurSize({20, 10});
    ISubPic* made = nullptr;
    ASSERT_EQ(allocator->AllocDynamic(&made), 0);
    const ComReference<ISubPic> owner(made);
    void* const picture = ObjectOf(owner);
    ExpectUnknown(picture, {0xCF0D7D6A, 0xA567, 0x4C0E, {0xAE, 0x5E, 0xBC, 0xBD, 0x3D, 0x7B, 0x0D, 0x8D}});

    CallSlot<void>(picture, 5, Time100ns{1} << 40);
    CallSlot<void>(picture, 6, Time100ns{2} << 40);
    CallSlot<void>(picture, 14, Time100ns{3} << 40);
    CallSlot<void>(picture, 15, Time100ns{4} << 40);
    EXPECT_EQ(CallSlot<Time100ns>(picture, 3), Time100ns{1} << 40);
    EXPECT_EQ(CallSlot<Time100ns>(picture, 4), Time100ns{2} << 40);
    EXPECT_EQ(CallSlot<Time100ns>(picture, 12), Time100ns{3} << 40);
    EXPECT_EQ(CallSlot<Time100ns>(picture, 13), Time100ns{4} << 40);

    const Rect given{1, 2, 3, 4};
    Rect rect;
    EXPECT_EQ(CallSlot<HRESULT>(picture, 8, &given), 0);
    EXPECT_EQ(CallSlot<HRESULT>(picture, 7, &rect), 0);
    EXPECT_EQ(rect, given);
    CallSlot<void>(picture, 9);
    EXPECT_EQ(CallSlot<HRESULT>(picture, 7, &rect), 0);
    EXPECT_EQ(rect, Rect{});
    for (const std::size_t slot : {10, 11}) {
        Size size;
        EXPECT_EQ(CallSlot<HRESULT>(picture, slot, &size), 0);
        EXPECT_EQ(size, (Size{20, 10}));
    }

    SubPicDesc desc;
    EXPECT_EQ(CallSlot<HRESULT>(picture, 16, &desc), 0);
    EXPECT_EQ(desc.pitch, 80);
    EXPECT_EQ(CallSlot<HRESULT>(picture, 17, &given), 0);
    EXPECT_EQ(CallSlot<HRESULT>(picture, 17, &given), E_FAIL);
    EXPECT_EQ(CallSlot<HRESULT>(picture, 18, &given, &given, static_cast<SubPicDesc*>(nullptr)), E_POINTER);
    EXPECT_EQ(CallSlot<HRESULT>(picture, 18, &given, &given, &desc), 0);
    EXPECT_EQ(CallSlot<HRESULT>(picture, 19), E_NOTIMPL);
    EXPECT_EQ(CallSlot<HRESULT>(picture, 20), E_NOTIMPL);
}

TEST(SubPicSlots, TheAllocatorsOrder) {
    const ComReference<ISubPicAllocator> owner(new CMemSubPicAllocator);
    void* const allocator = ObjectOf(owner);
    ExpectUnknown(allocator, {0x8A9B0C1D, 0x2E3F, 0x4A5B, {0x6C, 0x7D, 0x8E, 0x9F, 0x0A, 0x1B, 0x2C, 0x3D}});

    EXPECT_EQ(CallSlot<HRESULT>(allocator, 3, Size{30, 20}), 0);
    EXPECT_EQ(CallSlot<HRESULT>(allocator, 4, Rect{1, 2, 3, 4}), 0);
    Size size;
    EXPECT_EQ(CallSlot<HRESULT>(allocator, 5, &size), 0);
    EXPECT_EQ(size, (Size{30, 20}));
    Rect rect;
    EXPECT_EQ(CallSlot<HRESULT>(allocator, 6, &rect), 0);
    EXPECT_EQ(rect, (Rect{1, 2, 3, 4}));
    EXPECT_FALSE(CallSlot<bool>(allocator, 7));

    ISubPic* dynamic = nullptr;
    EXPECT_EQ(CallSlot<HRESULT>(allocator, 8, &dynamic), 0);
    EXPECT_EQ(dynamic->Release(), 0U);
    ISubPic* shared = nullptr;
    EXPECT_EQ(CallSlot<HRESULT>(allocator, 9, &shared), 0);
    EXPECT_EQ(shared->AddRef(), 3U);
    EXPECT_EQ(shared->Release(), 2U);
    EXPECT_EQ(CallSlot<HRESULT>(allocator, 10), 0);
    EXPECT_EQ(shared->Release(), 0U);
    EXPECT_EQ(CallSlot<HRESULT>(allocator, 11), 0);
    EXPECT_EQ(CallSlot<HRESULT>(allocator, 12), E_NOTIMPL);
    EXPECT_EQ(CallSlot<Size*>(allocator, 13, &size), &size);
    EXPECT_EQ(size, (Size{4096, 4096}));
}

TEST(SubPicSlots, TheProvidersOrder) {
    const ComReference<NamingProvider> owner(new NamingProvider);
    void* const provider = static_cast<ISubPicProvider*>(owner.get());
    ExpectUnknown(provider, {0xD62B9A1A, 0x879A, 0x42DB, {0xAB, 0x04, 0x88, 0xAA, 0x8F, 0x24, 0x3C, 0xFD}});

    EXPECT_EQ(CallSlot<HRESULT>(provider, 3), 0);
    EXPECT_EQ(owner->last, "Lock");
    EXPECT_EQ(CallSlot<HRESULT>(provider, 4), 0);
    EXPECT_EQ(owner->last, "Unlock");
    EXPECT_EQ(CallSlot<SubPicPosition>(provider, 5, Time100ns{5}, 1.5), 51U);
    EXPECT_EQ(owner->last, "GetStartPosition 5 1.500000");
    EXPECT_EQ(CallSlot<SubPicPosition>(provider, 6, SubPicPosition{2}), 52U);
    EXPECT_EQ(owner->last, "GetNext 2");
    EXPECT_EQ(CallSlot<Time100ns>(provider, 7, SubPicPosition{3}, 2.5), Time100ns{53} << 40);
    EXPECT_EQ(owner->last, "GetStart 3 2.500000");
    EXPECT_EQ(CallSlot<Time100ns>(provider, 8, SubPicPosition{4}, 3.5), Time100ns{54} << 40);
    EXPECT_EQ(owner->last, "GetStop 4 3.500000");
    EXPECT_TRUE(CallSlot<bool>(provider, 9, SubPicPosition{5}));
    EXPECT_EQ(owner->last, "IsAnimated 5");
    SubPicDesc desc;
    desc.pitch = 16;
    Rect box;
    EXPECT_EQ(CallSlot<HRESULT>(provider, 10, &desc, Time100ns{6}, 4.5, &box), 1);
    EXPECT_EQ(owner->last, "Render 16 6 4.500000");
    EXPECT_EQ(box.left, 7);
    CallSlot<void>(provider, 11, Size{8, 9});
    EXPECT_EQ(owner->last, "SetVideoSize 8x9");
    Size size;
    EXPECT_EQ(CallSlot<Size*>(provider, 12, &size), &size);
    EXPECT_EQ(size, (Size{640, 360}));
    std::uint32_t result = 1;
    EXPECT_EQ(CallSlot<HRESULT>(provider, 13, &result), 0);
    EXPECT_EQ(owner->last, "Reserved1");
}

TEST(SubPicSlots, TheQueuesOrder) {
    const ComReference<NamingProvider> naming(new NamingProvider);
    const ComReference<ISubPicQueue> owner(new CSubPicQueue(nullptr, 10, 25.0));
    void* const queue = ObjectOf(owner);
    ExpectUnknown(queue, {0x12D3A4B5, 0x6C7D, 0x8E9F, {0x0A, 0x1B, 0x2C, 0x3D, 0x4E, 0x5F, 0x6A, 0x7B}});

    ISubPicProvider* const given = naming.get();
    EXPECT_EQ(CallSlot<HRESULT>(queue, 3, given), 0);
    ISubPicProvider* provider = nullptr;
    EXPECT_EQ(CallSlot<HRESULT>(queue, 4, &provider), 0);
    EXPECT_EQ(provider, given);
    EXPECT_EQ(provider->Release(), 2U);
    CallSlot<void>(queue, 5, 30.0);
    EXPECT_EQ(CallSlot<double>(queue, 6), 30.0);
    CallSlot<void>(queue, 7, Time100ns{5} << 40);
    EXPECT_EQ(CallSlot<Time100ns>(queue, 8), Time100ns{5} << 40);
    ISubPic* picture = nullptr;
    EXPECT_EQ(CallSlot<HRESULT>(queue, 9, Time100ns{0}, &picture), E_FAIL);
    CallSlot<void>(queue, 10, Time100ns{-1});
    CallSlot<void>(queue, 11);
    EXPECT_EQ(CallSlot<std::int32_t>(queue, 12), 0);
}

TEST(SubPicSlots, TheDescriptionsLayout) {
    static_assert(std::is_standard_layout_v<SubPicDesc>);
    EXPECT_EQ(offsetof(SubPicDesc, type), 0U);
    EXPECT_EQ(offsetof(SubPicDesc, width), 4U);
    EXPECT_EQ(offsetof(SubPicDesc, height), 8U);
    EXPECT_EQ(offsetof(SubPicDesc, bpp), 12U);
    EXPECT_EQ(offsetof(SubPicDesc, pitch), 16U);
    EXPECT_EQ(offsetof(SubPicDesc, bits), 24U);
    EXPECT_EQ(offsetof(SubPicDesc, videoRect), 32U);
    EXPECT_EQ(sizeof(SubPicDesc), 48U);
}

} // namespace
} // namespace brindlecast
