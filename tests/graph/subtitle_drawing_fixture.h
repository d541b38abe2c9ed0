#pragma once

#include "filters/renderer/render_resources.h"
#include "subtitles/renderer_subtitle_callback.h"
#include "subtitles/subtitle_manager.h"
#include "tests/support/fake_settings_store.h"
#include "tests/support/subtitle_fixture.h"

#include <cstring>
#include <memory>

namespace brindlecast::testing {

// A render target that can be read.
class Target {
public:
    Target(const D3dDevice& theDevice, Size theSize, const Pixel& color)
        : size(theSize), device(theDevice), canvas(theSize) {
        D3D11_TEXTURE2D_DESC description{};
        description.Width = static_cast<UINT>(size.width);
        description.Height = static_cast<UINT>(size.height);
        description.MipLevels = 1;
        description.ArraySize = 1;
        description.Format = DXGI_FORMAT_B8G8R8A8_UNORM;
        description.SampleDesc.Count = 1;
        description.BindFlags = D3D11_BIND_RENDER_TARGET;
        EXPECT_EQ(S_OK, device.device->CreateTexture2D(&description, nullptr, texture.GetAddressOf()));
        EXPECT_EQ(S_OK, device.device->CreateRenderTargetView(texture.Get(), nullptr, view.GetAddressOf()));
        description.BindFlags = 0;
        description.Usage = D3D11_USAGE_STAGING;
        description.CPUAccessFlags = D3D11_CPU_ACCESS_READ;
        EXPECT_EQ(S_OK, device.device->CreateTexture2D(&description, nullptr, readable.GetAddressOf()));
        const float channels[4] = {static_cast<float>(color.red) / 255, static_cast<float>(color.green) / 255,
                                   static_cast<float>(color.blue) / 255,
                                   static_cast<float>(color.alpha) / 255};
        device.context->ClearRenderTargetView(view.Get(), channels);
    }
    [[nodiscard]] ID3D11RenderTargetView* View() const { return view.Get(); }
    [[nodiscard]] const Canvas& Read() {
        device.context->CopyResource(readable.Get(), texture.Get());
        D3D11_MAPPED_SUBRESOURCE rows{};
        EXPECT_EQ(S_OK, device.context->Map(readable.Get(), 0, D3D11_MAP_READ, 0, &rows));
        for (int y = 0; y < size.height; ++y) {
            std::memcpy(canvas.desc.bits + static_cast<std::ptrdiff_t>(y) * canvas.desc.pitch,
                        static_cast<const std::uint8_t*>(rows.pData) +
                            static_cast<std::size_t>(y) * rows.RowPitch,
                        static_cast<std::size_t>(size.width) * 4);
        }
        device.context->Unmap(readable.Get(), 0);
        return canvas;
    }

    const Size size;

private:
    const D3dDevice device;
    ComPtr<ID3D11Texture2D> texture;
    ComPtr<ID3D11RenderTargetView> view;
    ComPtr<ID3D11Texture2D> readable;
    Canvas canvas;
};

// The callback with a real device, a manager with a file, and the renderer's own shaders and states around
// each call.
class SubtitleDrawingTest : public SubtitleTest {
protected:
    static constexpr Size kVideo{200, 100};
    static constexpr Time100ns kWithin = 15'000'000;
    static constexpr Time100ns kOutside = 25'000'000;
    static constexpr Pixel kFrameColor{40, 90, 200, 255}; // what the renderer has drawn before

    SubtitleDrawingTest() {
        HRESULT failure = E_FAIL;
        resources = RenderResources::Create(&failure);
        EXPECT_EQ(S_OK, failure);
        *callback.ReleaseAndGetAddressOf() = new CMPCVR11SubtitleCallback;
        callback->manager = &manager;
        EXPECT_TRUE(manager.Initialise(kVideo.width, kVideo.height));
        EXPECT_EQ(S_OK, callback->SetDevice11(resources->Device().device.Get()));
    }
    ~SubtitleDrawingTest() override {
        callback.Reset();
        resources->Device().context->ClearState();
    }

    // From 1 to 2 seconds: red in the upper left, half transparent green over it and beyond, blue in the
    // lower right corner, else nothing.
    void LoadBlocks() {
        ASSERT_TRUE(manager.Load(folder.Write(
            u8"blocks.ass",
            AssScript(kVideo, {{.place = {10, 10, 100, 50}},
                               {.place = {50, 30, 150, 80}, .color = "00FF00", .transparency = "80"},
                               {.place = {180, 85, 200, 100}, .color = "FF0000"}}))));
        TakeLines();
    }
    // As the renderer calls for one frame.
    HRESULT RenderOn(const Target& target, const RECT& video, Time100ns time = kWithin) {
        ID3D11RenderTargetView* const view = target.View();
        ID3D11DeviceContext* const context = resources->Device().context.Get();
        context->OMSetRenderTargets(1, &view, nullptr);
        resources->BindCommon();
        resources->BindCopyShader();
        const D3D11_VIEWPORT whole{
            0, 0, static_cast<float>(target.size.width), static_cast<float>(target.size.height), 0, 1};
        context->RSSetViewports(1, &whole);
        const RECT viewport{0, 0, target.size.width, target.size.height};
        return callback->Render11(time, -1, -1, video, {-7, -7, -7, -7}, viewport, 3.0, 77, 99);
    }
    Target MakeTarget(Size size = kVideo) const { return Target(resources->Device(), size, kFrameColor); }
    static RECT Whole(Size size = kVideo) { return {0, 0, size.width, size.height}; }

    // The lines of the last call without those that come only so many times in a run.
    Lines TakeLastingLines() {
        Lines taken = TakeLines();
        std::erase_if(taken, [](const std::wstring& line) {
            return line.starts_with(L"RenderFrame: ") || line.starts_with(L"Updated texture: ") ||
                   line.starts_with(L"Drew subtitle at ");
        });
        return taken;
    }

    // That the target holds the picture of the moment over the frame's colour at that place, and else the
    // frame's colour.
    void ExpectPicture(Target& target, const RECT& video) {
        const ComReference<ISubPic> picture = manager.GetSubPic(kWithin);
        ASSERT_NE(nullptr, picture);
        SubPicDesc desc;
        ASSERT_EQ(S_OK, picture->Lock(desc));
        ASSERT_EQ(video.right - video.left, desc.width);
        ASSERT_EQ(video.bottom - video.top, desc.height);
        const Canvas& seen = target.Read();
        int wrong = 0;
        for (int y = 0; y < target.size.height; ++y) {
            for (int x = 0; x < target.size.width; ++x) {
                const int left = x - static_cast<int>(video.left);
                const int top = y - static_cast<int>(video.top);
                const bool inside = left >= 0 && top >= 0 && left < desc.width && top < desc.height;
                const Pixel expected = inside ? Over(PixelAt(desc, left, top)) : kFrameColor;
                if (!IsWithinOne(expected, seen.At(x, y)) && ++wrong <= 5) {
                    ADD_FAILURE() << x << ", " << y << ": " << ::testing::PrintToString(seen.At(x, y))
                                  << " instead of " << ::testing::PrintToString(expected);
                }
            }
        }
        EXPECT_EQ(0, wrong);
        picture->Unlock(nullptr);
    }
    void ExpectUntouched(Target& target) {
        EXPECT_EQ(target.size.width * target.size.height, target.Read().Count(kFrameColor));
    }

    FakeSettingsStore store;
    SubtitleManager manager{store, DrawFakeCue};
    std::unique_ptr<RenderResources> resources;
    ComPtr<CMPCVR11SubtitleCallback> callback;

private:
    // The pixel, whose colour is multiplied by its alpha, over the frame's.
    static Pixel Over(const Pixel& pixel) {
        const auto mix = [&](int source, int below) {
            return source + (below * (255 - pixel.alpha) + 127) / 255;
        };
        return {mix(pixel.blue, kFrameColor.blue), mix(pixel.green, kFrameColor.green),
                mix(pixel.red, kFrameColor.red), mix(pixel.alpha, kFrameColor.alpha)};
    }
    static bool IsWithinOne(const Pixel& one, const Pixel& other) {
        const auto close = [](int a, int b) {
            return a - b <= 1 && b - a <= 1;
        };
        return close(one.blue, other.blue) && close(one.green, other.green) && close(one.red, other.red) &&
               close(one.alpha, other.alpha);
    }
};

} // namespace brindlecast::testing
