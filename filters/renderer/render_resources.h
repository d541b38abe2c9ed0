#pragma once

#include "filters/core/picture_format.h"
#include "filters/renderer/d3d_device.h"

#include <map>
#include <utility>

namespace brindlecast {

// One corner of a quad, in the layout that the subtitle callback also uses.
struct QuadVertex {
    float x, y, z;
    float u, v;
};

// Constants of the picture's pixel shader; the size is a multiple of 16.
struct PictureConstants {
    float matrix[3][4];
    float chromaMap[4];
    float footprint[4];
};

// A device with everything that does not depend on a film: shaders, sampler, states, small buffers. Used by
// one thread at a time.
class RenderResources {
public:
    // Makes a device and its resources; null with the reason in `*failure`.
    [[nodiscard]] static std::unique_ptr<RenderResources> Create(HRESULT* failure);

    [[nodiscard]] const D3dDevice& Device() const noexcept { return device; }

    // Binds what a quad needs: vertex shader, input layout, sampler and states, so that nothing of what ran
    // before on the context is left.
    void BindCommon();
    // Binds the shader for a picture; compiles it on first use. The constants are written too.
    [[nodiscard]] HRESULT BindPictureShader(PixelFormat format, int taps,
                                            const PictureConstants& newConstants);
    // Binds the shader that samples one texture.
    void BindCopyShader();
    // Draws four corners (top left, top right, bottom left, bottom right) as one rectangle.
    [[nodiscard]] HRESULT DrawQuad(const QuadVertex (&corners)[4]);

private:
    RenderResources() = default;
    [[nodiscard]] HRESULT Initialize();
    [[nodiscard]] HRESULT CreateStates();
    [[nodiscard]] HRESULT CreateBuffers();
    [[nodiscard]] HRESULT PictureShader(PixelFormat format, int taps, ID3D11PixelShader** out);

    D3dDevice device;
    ComPtr<ID3D11VertexShader> vertexShader;
    ComPtr<ID3D11InputLayout> inputLayout;
    ComPtr<ID3D11PixelShader> copyShader;
    std::map<std::pair<PixelFormat, int>, ComPtr<ID3D11PixelShader>> pictureShaders;
    ComPtr<ID3D11SamplerState> sampler;
    ComPtr<ID3D11RasterizerState> rasterizer;
    ComPtr<ID3D11BlendState> opaque;
    ComPtr<ID3D11DepthStencilState> noDepth;
    ComPtr<ID3D11Buffer> vertices;
    ComPtr<ID3D11Buffer> constants;
};

} // namespace brindlecast
