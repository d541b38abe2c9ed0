#include "filters/renderer/frame_painter.h"
#include "filters/renderer/media_format.h"
#include "filters/renderer/read_back_presenter.h"
#include "filters/renderer/swap_chain_presenter.h"
#include "tests/filters/renderer/subtitle_fake.h"
#include "tests/filters/renderer/test_pictures.h"

#include <gtest/gtest.h>

namespace brindlecast::test {
namespace {

PicturePtr ToPicture(const PictureKind& kind, std::vector<std::uint8_t> bytes) {
    auto picture = std::make_shared<Picture>();
    picture->format = PictureFormatOf(TypeOf(kind).Get()).value();
    auto owner = std::make_shared<std::vector<std::uint8_t>>(std::move(bytes));
    picture->data = owner->data();
    picture->bytes = owner->size();
    picture->owner = std::move(owner);
    return picture;
}

// Reads a texture of the device.
Image ReadTexture(const D3dDevice& device, ID3D11Texture2D* texture) {
    D3D11_TEXTURE2D_DESC description{};
    texture->GetDesc(&description);
    const PictureSize size{static_cast<int>(description.Width), static_cast<int>(description.Height)};
    ComPtr<ID3D11Texture2D> readable;
    EXPECT_EQ(MakeReadableTexture(device.device.Get(), size, readable.GetAddressOf()), S_OK);
    device.context->CopyResource(readable.Get(), texture);
    D3D11_MAPPED_SUBRESOURCE rows{};
    EXPECT_EQ(device.context->Map(readable.Get(), 0, D3D11_MAP_READ, 0, &rows), S_OK);
    Image image(size.width, size.height);
    for (int y = 0; y < size.height; ++y) {
        std::copy_n(reinterpret_cast<const std::uint32_t*>(static_cast<const std::uint8_t*>(rows.pData) +
                                                           static_cast<std::size_t>(y) * rows.RowPitch),
                    size.width, image.Data() + static_cast<std::ptrdiff_t>(y) * size.width);
    }
    device.context->Unmap(readable.Get(), 0);
    return image;
}

// Presents through a swap chain and keeps what its back buffer held.
class WatchedSwapChain final : public Presenter {
public:
    WatchedSwapChain(const D3dDevice& device, std::shared_ptr<WindowSlot> window, Image& seen)
        : device_(device), seen_(seen) {
        HRESULT failure = S_OK;
        chain_ = SwapChainPresenter::Create(device, std::move(window), &failure);
        EXPECT_EQ(failure, S_OK);
    }
    HRESULT Begin(PictureSize size, ID3D11RenderTargetView** target) override {
        return chain_->Begin(size, target);
    }
    HRESULT Finish() override {
        seen_ = ReadTexture(device_, chain_->BackBuffer());
        return chain_->Finish();
    }
    HRESULT Show() override { return chain_->Show(); }

private:
    D3dDevice device_;
    Image& seen_;
    std::unique_ptr<SwapChainPresenter> chain_;
};

class SwapChainColorTest : public ::testing::TestWithParam<PictureKind> {};

// The other presenter, in a top-level window: the same pixels in the back buffer.
TEST_P(SwapChainColorTest, BarsInTheBackBuffer) {
    const PictureKind kind = GetParam();
    const HostWindow window(320, 180);
    const auto slot = std::make_shared<WindowSlot>();
    slot->Set(window.Handle());
    SubtitleLink subtitles;
    Image seen;
    FramePainter painter(slot, subtitles, [&](const D3dDevice& device, std::shared_ptr<WindowSlot> target) {
        return std::make_unique<WatchedSwapChain>(device, std::move(target), seen);
    });
    const auto bars = ToPicture(kind, MakePicture(kind, [&](int x, int) { return BarAt(x, kind.width); }));
    ASSERT_EQ(painter.Show(bars, {}), S_OK);
    ASSERT_EQ(seen.Width(), 320);
    for (int bar = 0; bar < 8; ++bar) {
        EXPECT_LE(Distance(seen.At(bar * 40 + 20, 90), BarColors()[static_cast<std::size_t>(bar)]), 2)
            << kind << bar;
    }
    // Another size of the window, with a border around the picture.
    window.Resize(400, 300);
    Look look;
    look.destination = PictureRect{40, 60, 360, 240};
    ASSERT_EQ(painter.Redraw(look), S_OK);
    ASSERT_EQ(seen.Width(), 400);
    EXPECT_EQ(seen.At(39, 150), kBlack);
    EXPECT_LE(Distance(seen.At(60, 150), BarColors()[0]), 2);
    EXPECT_EQ(seen.At(200, 59), kBlack);
}

INSTANTIATE_TEST_SUITE_P(Formats, SwapChainColorTest,
                         ::testing::Values(PictureKind{Format::Nv12, Matrix::Bt709, false},
                                           PictureKind{Format::P010, Matrix::Bt2020, false},
                                           PictureKind{Format::Yv12, Matrix::Bt601, true},
                                           PictureKind{Format::Yuy2, Matrix::Bt709, false},
                                           PictureKind{Format::Ayuv, Matrix::Bt601, false},
                                           PictureKind{Format::Rgb32}));

TEST(PresenterChoiceTest, ReadBackOnlyForChildrenUnderWine) {
    const HostWindow window(100, 100);
    const HWND child =
        CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 5, 5, window.Handle(), nullptr, nullptr, nullptr);
    EXPECT_EQ(PresenterFor(window.Handle(), true), PresenterKind::kSwapChain);
    EXPECT_EQ(PresenterFor(child, true), PresenterKind::kReadBack);
    EXPECT_EQ(PresenterFor(child, false), PresenterKind::kSwapChain);
    EXPECT_EQ(PresenterFor(window.Handle(), false), PresenterKind::kSwapChain);
    DestroyWindow(child);
}

// Tells once that the device was lost.
class LosingPresenter final : public Presenter {
public:
    LosingPresenter(const D3dDevice& device, std::shared_ptr<WindowSlot> window, bool& lose)
        : inner_(device, std::move(window)), lose_(lose) {}
    HRESULT Begin(PictureSize size, ID3D11RenderTargetView** target) override {
        return inner_.Begin(size, target);
    }
    HRESULT Finish() override { return inner_.Finish(); }
    HRESULT Show() override {
        if (std::exchange(lose_, false)) {
            return DXGI_ERROR_DEVICE_REMOVED;
        }
        return inner_.Show();
    }

private:
    ReadBackPresenter inner_;
    bool& lose_;
};

TEST(DeviceLossTest, ANewDeviceShowsTheLastFrame) {
    DropKeptResources();
    const PictureKind kind;
    const HostWindow window(320, 180);
    const auto slot = std::make_shared<WindowSlot>();
    slot->Set(window.Handle());
    SubtitleLink subtitles;
    const ComPtr<FakeSubtitles> fake = FakeSubtitles::Create();
    subtitles.SetCallback(fake.Get());
    bool lose = false;
    std::vector<ComPtr<ID3D11Device>> devices;
    FramePainter painter(slot, subtitles, [&](const D3dDevice& device, std::shared_ptr<WindowSlot> target) {
        devices.push_back(device.device);
        return std::make_unique<LosingPresenter>(device, std::move(target), lose);
    });
    ASSERT_EQ(painter.Show(ToPicture(kind, MakePicture(kind, kGreen)), {}), S_OK);
    lose = true;
    ASSERT_EQ(painter.Redraw({}), S_OK);
    ASSERT_EQ(devices.size(), 2U);
    EXPECT_NE(devices[0].Get(), devices[1].Get());
    EXPECT_EQ(fake->Devices(), (std::vector<bool>{true, false, true})) << "told before the new one comes";
    EXPECT_TRUE(
        PumpUntil([&] { return Distance(ReadScreen(window.Handle()).At(200, 100), kGreen) <= 2; }, 3000));
    lose = true;
    ASSERT_EQ(painter.Show(ToPicture(kind, MakePicture(kind, kBlue)), {}), S_OK);
    EXPECT_TRUE(
        PumpUntil([&] { return Distance(ReadScreen(window.Handle()).At(200, 100), kBlue) <= 2; }, 3000));
    subtitles.SetCallback(nullptr);
}

// A prepared frame is not lost when a redraw of the shown one comes between.
TEST(PainterTest, RedrawBetweenPrepareAndShow) {
    const PictureKind kind;
    const HostWindow window(320, 180);
    const auto slot = std::make_shared<WindowSlot>();
    slot->Set(window.Handle());
    SubtitleLink subtitles;
    FramePainter painter(slot, subtitles, [](const D3dDevice& device, std::shared_ptr<WindowSlot> target) {
        return std::make_unique<ReadBackPresenter>(device, std::move(target));
    });
    const auto shows = [&](const Color& color) {
        return PumpUntil([&] { return Distance(ReadScreen(window.Handle()).At(100, 100), color) <= 2; },
                         3000);
    };
    const auto first = ToPicture(kind, MakePicture(kind, kGreen));
    const auto second = ToPicture(kind, MakePicture(kind, kBlue));
    ASSERT_EQ(painter.Show(first, {}), S_OK);
    EXPECT_TRUE(shows(kGreen));
    painter.Prepare(second, {});
    Pump(30);
    EXPECT_TRUE(shows(kGreen)) << "prepared is not shown";
    ASSERT_EQ(painter.Redraw({}), S_OK);
    EXPECT_TRUE(shows(kGreen));
    ASSERT_EQ(painter.Show(second, {}), S_OK);
    EXPECT_TRUE(shows(kBlue));
    painter.KeepCopies();
    ASSERT_EQ(painter.Redraw({}), S_OK);
    EXPECT_TRUE(shows(kBlue));
}

} // namespace
} // namespace brindlecast::test
