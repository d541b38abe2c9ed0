#include "tests/graph/interface_patch.h"
#include "tests/graph/subtitle_drawing_fixture.h"

#include <cfloat>

// What the subtitle callback asks of the device, and what becomes of a refusal.

namespace brindlecast::testing {
namespace {

// Places in the tables of functions.
constexpr std::size_t kDeviceSlots = 43;
constexpr std::size_t kContextSlots = 115;
constexpr std::size_t kFirstOwnSlot = 3; // behind those of IUnknown
constexpr std::size_t kCreateBuffer = 3;
constexpr std::size_t kCreateTexture2D = 5;
constexpr std::size_t kCreateShaderResourceView = 7;
constexpr std::size_t kCreateBlendState = 20;
constexpr std::size_t kCreateSamplerState = 23;
constexpr std::size_t kDraw = 13;
constexpr std::size_t kMap = 14;

int refusedCalls = 0;

// Stands for any of them: the caller passes in registers and on its own stack what nobody takes.
HRESULT STDMETHODCALLTYPE Refuse() {
    ++refusedCalls;
    return DXGI_ERROR_DEVICE_REMOVED;
}
void* const kRefusal = reinterpret_cast<void*>(&Refuse);

std::vector<D3D11_SAMPLER_DESC> samplers;
using CreateSampler = HRESULT(STDMETHODCALLTYPE*)(ID3D11Device*, const D3D11_SAMPLER_DESC*,
                                                  ID3D11SamplerState**);
CreateSampler createSampler = nullptr;

HRESULT STDMETHODCALLTYPE RecordSampler(ID3D11Device* device, const D3D11_SAMPLER_DESC* description,
                                        ID3D11SamplerState** state) {
    samplers.push_back(*description);
    return createSampler(device, description, state);
}

class SubtitleDevice : public SubtitleDrawingTest {
protected:
    SubtitleDevice() { refusedCalls = 0; }
    [[nodiscard]] ID3D11Device* Device() const { return resources->Device().device.Get(); }
    [[nodiscard]] ID3D11DeviceContext* Context() const { return resources->Device().context.Get(); }
};

// What stands in the device after a draw: none of it is put back.

TEST_F(SubtitleDevice, TheFourVerticesLieInABufferOfTheirSize) {
    LoadBlocks();
    const Target target = MakeTarget();
    ASSERT_EQ(S_OK, RenderOn(target, Whole()));
    ComPtr<ID3D11Buffer> buffer;
    UINT stride = 0;
    UINT offset = 7;
    Context()->IAGetVertexBuffers(0, 1, buffer.GetAddressOf(), &stride, &offset);
    ASSERT_NE(nullptr, buffer);
    EXPECT_EQ(20U, stride);
    EXPECT_EQ(0U, offset);
    D3D11_BUFFER_DESC description{};
    buffer->GetDesc(&description);
    EXPECT_EQ(80U, description.ByteWidth);
    EXPECT_EQ(D3D11_USAGE_DYNAMIC, description.Usage);
    EXPECT_EQ(static_cast<UINT>(D3D11_BIND_VERTEX_BUFFER), description.BindFlags);
    EXPECT_EQ(static_cast<UINT>(D3D11_CPU_ACCESS_WRITE), description.CPUAccessFlags);

    description.Usage = D3D11_USAGE_STAGING;
    description.BindFlags = 0;
    description.CPUAccessFlags = D3D11_CPU_ACCESS_READ;
    ComPtr<ID3D11Buffer> readable;
    ASSERT_EQ(S_OK, Device()->CreateBuffer(&description, nullptr, readable.GetAddressOf()));
    Context()->CopyResource(readable.Get(), buffer.Get());
    D3D11_MAPPED_SUBRESOURCE mapped{};
    ASSERT_EQ(S_OK, Context()->Map(readable.Get(), 0, D3D11_MAP_READ, 0, &mapped));
    const auto* const floats = static_cast<const float*>(mapped.pData);
    EXPECT_EQ((std::vector<float>{-1, -1, 0, 0, 1, -1, 1, 0, 0, 0, 1, -1, 0, 1, 1, 1, 1, 0, 1, 0}),
              std::vector<float>(floats, floats + 20));
    Context()->Unmap(readable.Get(), 0);
    D3D11_PRIMITIVE_TOPOLOGY topology{};
    Context()->IAGetPrimitiveTopology(&topology);
    EXPECT_EQ(5, topology);
}

TEST_F(SubtitleDevice, TheTextureIsWrittenByTheProcessor) {
    LoadBlocks();
    const Target target = MakeTarget();
    ASSERT_EQ(S_OK, RenderOn(target, Whole()));
    ComPtr<ID3D11ShaderResourceView> view;
    Context()->PSGetShaderResources(0, 1, view.GetAddressOf());
    ASSERT_NE(nullptr, view);
    D3D11_SHADER_RESOURCE_VIEW_DESC viewed{};
    view->GetDesc(&viewed);
    EXPECT_EQ(87, viewed.Format);
    EXPECT_EQ(D3D11_SRV_DIMENSION_TEXTURE2D, viewed.ViewDimension);
    EXPECT_EQ(0U, viewed.Texture2D.MostDetailedMip);
    EXPECT_EQ(1U, viewed.Texture2D.MipLevels);
    ComPtr<ID3D11Resource> resource;
    view->GetResource(resource.GetAddressOf());
    const ComPtr<ID3D11Texture2D> texture = QueryFor<ID3D11Texture2D>(resource.Get());
    ASSERT_NE(nullptr, texture);
    D3D11_TEXTURE2D_DESC description{};
    texture->GetDesc(&description);
    EXPECT_EQ(200U, description.Width);
    EXPECT_EQ(100U, description.Height);
    EXPECT_EQ(1U, description.MipLevels);
    EXPECT_EQ(1U, description.ArraySize);
    EXPECT_EQ(87, description.Format);
    EXPECT_EQ(1U, description.SampleDesc.Count);
    EXPECT_EQ(D3D11_USAGE_DYNAMIC, description.Usage);
    EXPECT_EQ(static_cast<UINT>(D3D11_BIND_SHADER_RESOURCE), description.BindFlags);
    EXPECT_EQ(static_cast<UINT>(D3D11_CPU_ACCESS_WRITE), description.CPUAccessFlags);
}

TEST_F(SubtitleDevice, BlendAndViewportStayAsTheyWereForTheDraw) {
    LoadBlocks();
    const Target target = MakeTarget({400, 300});
    ASSERT_EQ(S_OK, RenderOn(target, {30, 10, 230, 110}));
    ComPtr<ID3D11BlendState> blend;
    UINT mask = 0;
    Context()->OMGetBlendState(blend.GetAddressOf(), nullptr, &mask);
    ASSERT_NE(nullptr, blend);
    EXPECT_EQ(0xFFFFFFFFU, mask);
    D3D11_BLEND_DESC description{};
    blend->GetDesc(&description);
    EXPECT_FALSE(description.AlphaToCoverageEnable);
    EXPECT_FALSE(description.IndependentBlendEnable);
    const D3D11_RENDER_TARGET_BLEND_DESC& first = description.RenderTarget[0];
    EXPECT_TRUE(first.BlendEnable);
    EXPECT_EQ(D3D11_BLEND_ONE, first.SrcBlend);
    EXPECT_EQ(D3D11_BLEND_INV_SRC_ALPHA, first.DestBlend);
    EXPECT_EQ(D3D11_BLEND_OP_ADD, first.BlendOp);
    EXPECT_EQ(D3D11_BLEND_ONE, first.SrcBlendAlpha);
    EXPECT_EQ(D3D11_BLEND_INV_SRC_ALPHA, first.DestBlendAlpha);
    EXPECT_EQ(D3D11_BLEND_OP_ADD, first.BlendOpAlpha);
    EXPECT_EQ(15, first.RenderTargetWriteMask);
    UINT count = 1;
    D3D11_VIEWPORT viewport{};
    Context()->RSGetViewports(&count, &viewport);
    EXPECT_EQ(1U, count);
    EXPECT_EQ(30, viewport.TopLeftX);
    EXPECT_EQ(10, viewport.TopLeftY);
    EXPECT_EQ(200, viewport.Width);
    EXPECT_EQ(100, viewport.Height);
    EXPECT_EQ(0, viewport.MinDepth);
    EXPECT_EQ(1, viewport.MaxDepth);
}

TEST_F(SubtitleDevice, TwoSamplersAreMadeAndTheLinearOneIsBound) {
    InterfacePatch<kDeviceSlots> patch(Device());
    createSampler = reinterpret_cast<CreateSampler>(patch.Original(kCreateSamplerState));
    patch.Set(kCreateSamplerState, reinterpret_cast<void*>(&RecordSampler));
    samplers.clear();
    EXPECT_EQ(S_OK, callback->SetDevice11(Device()));
    ASSERT_EQ(2U, samplers.size());
    for (const D3D11_SAMPLER_DESC& sampler : samplers) {
        EXPECT_EQ(3, sampler.AddressU);
        EXPECT_EQ(3, sampler.AddressV);
        EXPECT_EQ(3, sampler.AddressW);
        EXPECT_EQ(0.0F, sampler.MipLODBias);
        EXPECT_EQ(0U, sampler.MaxAnisotropy);
        EXPECT_EQ(1, sampler.ComparisonFunc);
        for (const float border : sampler.BorderColor) {
            EXPECT_EQ(0.0F, border);
        }
        EXPECT_EQ(0.0F, sampler.MinLOD);
        EXPECT_EQ(FLT_MAX, sampler.MaxLOD);
    }
    EXPECT_EQ(0, samplers[0].Filter);
    EXPECT_EQ(21, samplers[1].Filter);
    LoadBlocks();
    const Target target = MakeTarget();
    ASSERT_EQ(S_OK, RenderOn(target, Whole()));
    ComPtr<ID3D11SamplerState> bound;
    Context()->PSGetSamplers(0, 1, bound.GetAddressOf());
    ASSERT_NE(nullptr, bound);
    D3D11_SAMPLER_DESC description{};
    bound->GetDesc(&description);
    EXPECT_EQ(21, description.Filter);
}

// Refusals.

TEST_F(SubtitleDevice, WithoutOneOfItsResourcesTheDeviceIsNoUse) {
    LoadBlocks();
    for (const std::size_t slot : {kCreateBuffer, kCreateSamplerState, kCreateBlendState}) {
        InterfacePatch<kDeviceSlots> patch(Device());
        patch.Set(slot, kRefusal);
        TakeLines();
        EXPECT_EQ(E_FAIL, callback->SetDevice11(Device())) << slot;
        EXPECT_EQ(Lines{}, TakeLines());
        patch.Restore(slot);
        Target target = MakeTarget();
        EXPECT_EQ(S_FALSE, RenderOn(target, Whole())) << slot;
        ExpectUntouched(target);
    }
    EXPECT_EQ(3, refusedCalls);
    EXPECT_EQ(S_OK, callback->SetDevice11(Device()));
    Target target = MakeTarget();
    EXPECT_EQ(S_OK, RenderOn(target, Whole()));
    ExpectPicture(target, Whole());
}

TEST_F(SubtitleDevice, WhatFailsForOneFrameIsTriedWithTheNext) {
    LoadBlocks();
    for (const std::size_t slot : {kCreateTexture2D, kCreateShaderResourceView}) {
        EXPECT_EQ(S_OK, callback->SetDevice11(Device()));
        Target target = MakeTarget();
        InterfacePatch<kDeviceSlots> patch(Device());
        for (int frame = 0; frame < 2; ++frame) {
            patch.Set(slot, kRefusal);
            TakeLines();
            refusedCalls = 0;
            EXPECT_EQ(S_FALSE, RenderOn(target, Whole())) << slot;
            EXPECT_EQ(1, refusedCalls);
            EXPECT_EQ(0, std::ranges::count(TakeLines(), L"Subtitle texture created: 200x100"));
        }
        ExpectUntouched(target);
        patch.Restore(slot);
        EXPECT_EQ(S_OK, RenderOn(target, Whole()));
        ExpectPicture(target, Whole());
    }
}

TEST_F(SubtitleDevice, ATextureThatCanNotBeMappedIsNotDrawn) {
    LoadBlocks();
    Target target = MakeTarget();
    EXPECT_EQ(S_OK, RenderOn(target, Whole()));
    Target other = MakeTarget();
    {
        InterfacePatch<kContextSlots> patch(Context());
        patch.Set(kMap, kRefusal);
        EXPECT_EQ(S_FALSE, RenderOn(other, Whole()));
        EXPECT_EQ(1, refusedCalls) << "the vertices are not even asked for";
    }
    ExpectUntouched(other);
    EXPECT_EQ(S_OK, RenderOn(other, Whole()));
    ExpectPicture(other, Whole()); // and the picture can be locked: it was given back
}

TEST_F(SubtitleDevice, SwitchedOffOrWithNothingToShowItDoesNothingWithTheDevice) {
    LoadBlocks();
    const Target target = MakeTarget();
    EXPECT_EQ(S_OK, RenderOn(target, Whole()));
    InterfacePatch<kDeviceSlots> device(Device());
    InterfacePatch<kContextSlots> context(Context());
    for (std::size_t slot = kFirstOwnSlot; slot < kDeviceSlots; ++slot) {
        device.Set(slot, kRefusal);
    }
    for (std::size_t slot = kFirstOwnSlot; slot < kContextSlots; ++slot) {
        context.Set(slot, kRefusal);
    }
    const RECT other{0, 0, 50, 50};
    EXPECT_EQ(S_FALSE, callback->Render11(kOutside, 0, 0, other, other, other, 1.0, 0, 0));
    manager.enabled = false;
    EXPECT_EQ(S_FALSE, callback->Render11(kWithin, 0, 0, other, other, other, 1.0, 0, 0));
    manager.enabled = true;
    callback->manager = nullptr;
    EXPECT_EQ(S_FALSE, callback->Render11(kWithin, 0, 0, other, other, other, 1.0, 0, 0));
    callback->manager = &manager;
    manager.Unload();
    EXPECT_EQ(S_FALSE, callback->Render11(kWithin, 0, 0, other, other, other, 1.0, 0, 0));
    EXPECT_EQ(0, refusedCalls);
}

TEST_F(SubtitleDevice, OneDrawOfFourVerticesAFrame) {
    static std::vector<std::pair<UINT, UINT>> draws;
    draws.clear();
    LoadBlocks();
    const Target target = MakeTarget();
    {
        InterfacePatch<kContextSlots> patch(Context());
        const auto record = +[](ID3D11DeviceContext*, UINT count, UINT first) STDMETHODCALLTYPE {
            draws.emplace_back(count, first);
        };
        patch.Set(kDraw, reinterpret_cast<void*>(record));
        EXPECT_EQ(S_OK, RenderOn(target, Whole()));
        EXPECT_EQ(S_OK, RenderOn(target, Whole()));
        EXPECT_EQ(S_FALSE, RenderOn(target, Whole(), kOutside));
    }
    EXPECT_EQ((std::vector<std::pair<UINT, UINT>>{{4, 0}, {4, 0}}), draws);
}

} // namespace
} // namespace brindlecast::testing
