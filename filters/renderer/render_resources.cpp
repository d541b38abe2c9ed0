#include "filters/renderer/render_resources.h"

#include "filters/renderer/direct3d_library.h"
#include "filters/renderer/shader_source.h"

#include <d3dcompiler.h>

#include <cfloat>
#include <cstring>
#include <string_view>

namespace brindlecast {

namespace {

HRESULT Compile(std::string_view source, const char* profile, ID3DBlob** code) {
    const auto compile = FindDirect3d<pD3DCompile>(L"d3dcompiler_47.dll", "D3DCompile");
    if (compile == nullptr) {
        return HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND);
    }
    ComPtr<ID3DBlob> messages;
    return compile(source.data(), source.size(), nullptr, nullptr, nullptr, "main", profile, 0, 0, code,
                   messages.GetAddressOf());
}

template <class Content>
HRESULT Write(ID3D11DeviceContext* context, ID3D11Buffer* buffer, const Content& content) {
    D3D11_MAPPED_SUBRESOURCE mapped{};
    const HRESULT result = context->Map(buffer, 0, D3D11_MAP_WRITE_DISCARD, 0, &mapped);
    if (SUCCEEDED(result)) {
        std::memcpy(mapped.pData, &content, sizeof(content));
        context->Unmap(buffer, 0);
    }
    return result;
}

HRESULT DynamicBuffer(ID3D11Device* device, UINT bytes, D3D11_BIND_FLAG bind, ID3D11Buffer** out) {
    D3D11_BUFFER_DESC description{};
    description.ByteWidth = bytes;
    description.Usage = D3D11_USAGE_DYNAMIC;
    description.BindFlags = static_cast<UINT>(bind);
    description.CPUAccessFlags = D3D11_CPU_ACCESS_WRITE;
    return device->CreateBuffer(&description, nullptr, out);
}

} // namespace

std::unique_ptr<RenderResources> RenderResources::Create(HRESULT* failure) {
    std::unique_ptr<RenderResources> resources(new RenderResources);
    *failure = resources->Initialize();
    if (FAILED(*failure)) {
        resources.reset();
    }
    return resources;
}

HRESULT RenderResources::Initialize() {
    if (const HRESULT result = CreateD3dDevice(&device_); FAILED(result)) {
        return result;
    }
    ComPtr<ID3DBlob> code;
    if (const HRESULT result = Compile(VertexShaderSource(), "vs_4_0", code.GetAddressOf()); FAILED(result)) {
        return result;
    }
    ID3D11Device* const device = device_.device.Get();
    HRESULT result = device->CreateVertexShader(code->GetBufferPointer(), code->GetBufferSize(), nullptr,
                                                vertexShader_.GetAddressOf());
    static constexpr D3D11_INPUT_ELEMENT_DESC kElements[] = {
        {"POSITION", 0, DXGI_FORMAT_R32G32B32_FLOAT, 0, 0, D3D11_INPUT_PER_VERTEX_DATA, 0},
        {"TEXCOORD", 0, DXGI_FORMAT_R32G32_FLOAT, 0, 12, D3D11_INPUT_PER_VERTEX_DATA, 0},
    };
    if (SUCCEEDED(result)) {
        result = device->CreateInputLayout(kElements, 2, code->GetBufferPointer(), code->GetBufferSize(),
                                           inputLayout_.GetAddressOf());
    }
    if (SUCCEEDED(result)) {
        result = Compile(CopyShaderSource(), "ps_4_0", code.ReleaseAndGetAddressOf());
    }
    if (SUCCEEDED(result)) {
        result = device->CreatePixelShader(code->GetBufferPointer(), code->GetBufferSize(), nullptr,
                                           copyShader_.GetAddressOf());
    }
    if (SUCCEEDED(result)) {
        result = CreateStates();
    }
    return SUCCEEDED(result) ? CreateBuffers() : result;
}

HRESULT RenderResources::CreateStates() {
    ID3D11Device* const device = device_.device.Get();
    D3D11_SAMPLER_DESC sampler{};
    sampler.Filter = D3D11_FILTER_MIN_MAG_MIP_LINEAR;
    sampler.AddressU = sampler.AddressV = sampler.AddressW = D3D11_TEXTURE_ADDRESS_CLAMP;
    sampler.ComparisonFunc = D3D11_COMPARISON_NEVER;
    sampler.MaxLOD = FLT_MAX;
    HRESULT result = device->CreateSamplerState(&sampler, sampler_.GetAddressOf());

    D3D11_RASTERIZER_DESC rasterizer{};
    rasterizer.FillMode = D3D11_FILL_SOLID;
    rasterizer.CullMode = D3D11_CULL_NONE;
    rasterizer.DepthClipEnable = TRUE;
    if (SUCCEEDED(result)) {
        result = device->CreateRasterizerState(&rasterizer, rasterizer_.GetAddressOf());
    }
    D3D11_BLEND_DESC blend{};
    blend.RenderTarget[0].SrcBlend = blend.RenderTarget[0].SrcBlendAlpha = D3D11_BLEND_ONE;
    blend.RenderTarget[0].DestBlend = blend.RenderTarget[0].DestBlendAlpha = D3D11_BLEND_ZERO;
    blend.RenderTarget[0].BlendOp = blend.RenderTarget[0].BlendOpAlpha = D3D11_BLEND_OP_ADD;
    blend.RenderTarget[0].RenderTargetWriteMask = D3D11_COLOR_WRITE_ENABLE_ALL;
    if (SUCCEEDED(result)) {
        result = device->CreateBlendState(&blend, opaque_.GetAddressOf());
    }
    D3D11_DEPTH_STENCIL_DESC depth{};
    depth.DepthFunc = D3D11_COMPARISON_ALWAYS;
    depth.FrontFace = {D3D11_STENCIL_OP_KEEP, D3D11_STENCIL_OP_KEEP, D3D11_STENCIL_OP_KEEP,
                       D3D11_COMPARISON_ALWAYS};
    depth.BackFace = depth.FrontFace;
    if (SUCCEEDED(result)) {
        result = device->CreateDepthStencilState(&depth, noDepth_.GetAddressOf());
    }
    return result;
}

HRESULT RenderResources::CreateBuffers() {
    ID3D11Device* const device = device_.device.Get();
    const HRESULT result =
        DynamicBuffer(device, 4 * sizeof(QuadVertex), D3D11_BIND_VERTEX_BUFFER, vertices_.GetAddressOf());
    if (FAILED(result)) {
        return result;
    }
    return DynamicBuffer(device, sizeof(PictureConstants), D3D11_BIND_CONSTANT_BUFFER,
                         constants_.GetAddressOf());
}

void RenderResources::BindCommon() {
    ID3D11DeviceContext* const context = device_.context.Get();
    context->IASetInputLayout(inputLayout_.Get());
    context->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLESTRIP);
    context->VSSetShader(vertexShader_.Get(), nullptr, 0);
    context->GSSetShader(nullptr, nullptr, 0);
    context->PSSetSamplers(0, 1, sampler_.GetAddressOf());
    context->RSSetState(rasterizer_.Get());
    context->OMSetBlendState(opaque_.Get(), nullptr, 0xFFFFFFFF);
    context->OMSetDepthStencilState(noDepth_.Get(), 0);
}

HRESULT RenderResources::PictureShader(PixelFormat format, int taps, ID3D11PixelShader** out) {
    ComPtr<ID3D11PixelShader>& shader = pictureShaders_[{format, taps}];
    if (shader == nullptr) {
        ComPtr<ID3DBlob> code;
        HRESULT result = Compile(PictureShaderSource(format, taps), "ps_4_0", code.GetAddressOf());
        if (SUCCEEDED(result)) {
            result = device_.device->CreatePixelShader(code->GetBufferPointer(), code->GetBufferSize(),
                                                       nullptr, shader.GetAddressOf());
        }
        if (FAILED(result)) {
            return result;
        }
    }
    *out = shader.Get();
    return S_OK;
}

HRESULT RenderResources::BindPictureShader(PixelFormat format, int taps, const PictureConstants& constants) {
    ID3D11PixelShader* shader = nullptr;
    HRESULT result = PictureShader(format, taps, &shader);
    if (SUCCEEDED(result)) {
        result = Write(device_.context.Get(), constants_.Get(), constants);
    }
    if (SUCCEEDED(result)) {
        device_.context->PSSetShader(shader, nullptr, 0);
        device_.context->PSSetConstantBuffers(0, 1, constants_.GetAddressOf());
    }
    return result;
}

void RenderResources::BindCopyShader() {
    device_.context->PSSetShader(copyShader_.Get(), nullptr, 0);
}

HRESULT RenderResources::DrawQuad(const QuadVertex (&corners)[4]) {
    const HRESULT result = Write(device_.context.Get(), vertices_.Get(), corners);
    if (SUCCEEDED(result)) {
        const UINT stride = sizeof(QuadVertex);
        const UINT offset = 0;
        device_.context->IASetVertexBuffers(0, 1, vertices_.GetAddressOf(), &stride, &offset);
        device_.context->Draw(4, 0);
    }
    return result;
}

} // namespace brindlecast
