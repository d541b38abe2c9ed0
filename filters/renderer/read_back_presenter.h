#pragma once

#include "filters/renderer/presenter.h"

#include <array>

namespace brindlecast {

// Copies the target into memory and draws it with GDI. Two memory textures are used in turn, so that the
// wait for one picture overlaps with the drawing of the next.
class ReadBackPresenter final : public Presenter {
public:
    ReadBackPresenter(D3dDevice theDevice, std::shared_ptr<WindowSlot> window);

    HRESULT Begin(PictureSize size, ID3D11RenderTargetView** target) override;
    HRESULT Finish() override;
    HRESULT Show() override;

private:
    [[nodiscard]] HRESULT MakeTextures(PictureSize size);

    D3dDevice device;
    std::shared_ptr<WindowSlot> windowSlot;
    PictureSize textureSize;
    ComPtr<ID3D11Texture2D> targetTexture;
    ComPtr<ID3D11RenderTargetView> view;
    std::array<ComPtr<ID3D11Texture2D>, 2> memory;
    std::size_t current = 0;
};

// A texture that the processor reads, in the format of every target here (B8G8R8A8).
[[nodiscard]] HRESULT MakeReadableTexture(ID3D11Device* device, PictureSize size, ID3D11Texture2D** out);
// A texture to draw into, with its view.
[[nodiscard]] HRESULT MakeTargetTexture(ID3D11Device* device, PictureSize size, ID3D11Texture2D** texture,
                                        ID3D11RenderTargetView** view);

} // namespace brindlecast
