#include "filters/renderer/picture_textures.h"

#include <cstring>

namespace brindlecast {

namespace {

DXGI_FORMAT FormatOf(TexelType type) {
    switch (type) {
    case TexelType::kOne8: return DXGI_FORMAT_R8_UNORM;
    case TexelType::kTwo8: return DXGI_FORMAT_R8G8_UNORM;
    case TexelType::kFour8: return DXGI_FORMAT_R8G8B8A8_UNORM;
    case TexelType::kFour8Bgr: return DXGI_FORMAT_B8G8R8X8_UNORM;
    case TexelType::kOne16: return DXGI_FORMAT_R16_UNORM;
    case TexelType::kTwo16: return DXGI_FORMAT_R16G16_UNORM;
    }
    return DXGI_FORMAT_UNKNOWN;
}

bool SameTexture(const PicturePlane& a, const PicturePlane& b) {
    return a.texel == b.texel && a.width == b.width && a.height == b.height;
}

} // namespace

HRESULT PictureTextures::MakePlane(ID3D11Device* device, const PicturePlane& shape, Plane* out) {
    D3D11_TEXTURE2D_DESC description{};
    description.Width = static_cast<UINT>(shape.width);
    description.Height = static_cast<UINT>(shape.height);
    description.MipLevels = 1;
    description.ArraySize = 1;
    description.Format = FormatOf(shape.texel);
    description.SampleDesc.Count = 1;
    description.Usage = D3D11_USAGE_DYNAMIC;
    description.BindFlags = D3D11_BIND_SHADER_RESOURCE;
    description.CPUAccessFlags = D3D11_CPU_ACCESS_WRITE;
    Plane made;
    made.shape = shape;
    HRESULT result = device->CreateTexture2D(&description, nullptr, made.texture.GetAddressOf());
    if (SUCCEEDED(result)) {
        result = device->CreateShaderResourceView(made.texture.Get(), nullptr, made.view.GetAddressOf());
    }
    if (SUCCEEDED(result)) {
        *out = std::move(made);
    }
    return result;
}

HRESULT PictureTextures::Fill(ID3D11DeviceContext* context, const Plane& plane, const PicturePlane& from,
                              const std::uint8_t* data) {
    D3D11_MAPPED_SUBRESOURCE mapped{};
    const HRESULT result = context->Map(plane.texture.Get(), 0, D3D11_MAP_WRITE_DISCARD, 0, &mapped);
    if (FAILED(result)) {
        return result;
    }
    auto* target = static_cast<std::uint8_t*>(mapped.pData);
    const std::uint8_t* source = data + from.offset;
    const auto rowBytes =
        static_cast<std::size_t>(from.width) * static_cast<std::size_t>(TexelBytes(from.texel));
    if (from.pitch == static_cast<std::ptrdiff_t>(mapped.RowPitch) && rowBytes == mapped.RowPitch) {
        std::memcpy(target, source, rowBytes * static_cast<std::size_t>(from.height));
    } else {
        for (int row = 0; row < from.height; ++row) {
            std::memcpy(target, source, rowBytes);
            target += mapped.RowPitch;
            source += from.pitch;
        }
    }
    context->Unmap(plane.texture.Get(), 0);
    return S_OK;
}

HRESULT PictureTextures::Upload(const D3dDevice& device, const Picture& picture) {
    const PictureLayout layout = LayoutOf(picture.format.memory);
    if (picture.bytes < layout.bytes) {
        return E_INVALIDARG;
    }
    for (int i = 0; i < layout.planeCount; ++i) {
        Plane& plane = planes[static_cast<std::size_t>(i)];
        const PicturePlane& from = layout.planes[static_cast<std::size_t>(i)];
        if (plane.texture == nullptr || !SameTexture(plane.shape, from)) {
            if (const HRESULT result = MakePlane(device.device.Get(), from, &plane); FAILED(result)) {
                return result;
            }
        }
        if (const HRESULT result = Fill(device.context.Get(), plane, from, picture.data); FAILED(result)) {
            return result;
        }
    }
    for (auto i = static_cast<std::size_t>(layout.planeCount); i < planes.size(); ++i) {
        planes[i] = {};
    }
    return S_OK;
}

void PictureTextures::Bind(ID3D11DeviceContext* context) const {
    ID3D11ShaderResourceView* const views[] = {planes[0].view.Get(), planes[1].view.Get(),
                                               planes[2].view.Get()};
    context->PSSetShaderResources(0, 3, views);
}

void PictureTextures::Reset() {
    planes = {};
}

} // namespace brindlecast
