#pragma once

#include "filters/renderer/d3d_device.h"
#include "filters/renderer/picture.h"

#include <array>

namespace brindlecast {

// The planes of one picture on the graphics device. Remade when the planes' sizes change. One thread.
class PictureTextures {
public:
    // Copies the picture's planes to the device.
    [[nodiscard]] HRESULT Upload(const D3dDevice& device, const Picture& picture);
    // Binds them to the pixel shader's slots from 0.
    void Bind(ID3D11DeviceContext* context) const;
    void Reset();

private:
    struct Plane {
        ComPtr<ID3D11Texture2D> texture;
        ComPtr<ID3D11ShaderResourceView> view;
        PicturePlane shape;
    };
    [[nodiscard]] static HRESULT MakePlane(ID3D11Device* device, const PicturePlane& shape, Plane* out);
    [[nodiscard]] static HRESULT Fill(ID3D11DeviceContext* context, const Plane& plane,
                                      const PicturePlane& from, const std::uint8_t* data);

    std::array<Plane, 3> planes;
};

} // namespace brindlecast
