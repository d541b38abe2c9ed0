#pragma once

#include "filters/renderer/presenter.h"

#include <dxgi1_2.h>

namespace brindlecast {

// Presents through a DXGI swap chain.
class SwapChainPresenter final : public Presenter {
public:
    // Null with the reason in `*failure` when the window can't have a swap chain.
    [[nodiscard]] static std::unique_ptr<SwapChainPresenter>
    Create(const D3dDevice& theDevice, const std::shared_ptr<WindowSlot>& window, HRESULT* failure);

    HRESULT Begin(PictureSize size, ID3D11RenderTargetView** target) override;
    HRESULT Finish() override;
    HRESULT Show() override;

    // The buffer that the next Show brings out; for tests.
    [[nodiscard]] ID3D11Texture2D* BackBuffer() const noexcept { return buffer.Get(); }

private:
    SwapChainPresenter(D3dDevice theDevice, std::shared_ptr<WindowSlot> window);
    [[nodiscard]] HRESULT CreateChain(HWND window);
    [[nodiscard]] HRESULT Resize(PictureSize size);

    D3dDevice device;
    std::shared_ptr<WindowSlot> windowSlot;
    ComPtr<IDXGISwapChain1> chain;
    ComPtr<ID3D11Texture2D> buffer;
    ComPtr<ID3D11RenderTargetView> view;
    PictureSize bufferSize;
};

} // namespace brindlecast
