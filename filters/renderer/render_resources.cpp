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
    if (const HRESULT result = CreateD3dDevice(&device); FAILED(result)) {
        return result;
    }
    ComPtr<ID3DBlob> code;
    if (const HRESULT result = Compile(VertexShaderSource(), "vs_4_0", code.GetAddressOf()); FAILED(result)) {
        return result;
    }
    ID3D11Device* const d3d11 = device.device.Get();
    HRESULT result = d3d11->CreateVertexShader(code->GetBufferPointer(), code->GetBufferSize(), nullptr,
                                               vertexShader.GetAddressOf());
    static constexpr D3D11_INPUT_ELEMENT_DESC kElements[] = {
        {"POSITION", 0, DXGI_FORMAT_R32G32B32_FLOAT, 0, 0, D3D11_INPUT_PER_VERTEX_DATA, 0},
        {"TEXCOORD", 0, DXGI_FORMAT_R32G32_FLOAT, 0, 12, D3D11_INPUT_PER_VERTEX_DATA, 0},
    };
    if (SUCCEEDED(result)) {
        result = d3d11->CreateInputLayout(kElements, 2, code->GetBufferPointer(), code->GetBufferSize(),
                                          inputLayout.GetAddressOf());
    }
    if (SUCCEEDED(result)) {
        result = Compile(CopyShaderSource(), "ps_4_0", code.ReleaseAndGetAddressOf());
    }
    if (SUCCEEDED(result)) {
        result = d3d11->CreatePixelShader(code->GetBufferPointer(), code->GetBufferSize(), nullptr,
                                          copyShader.GetAddressOf());
    }
    if (SUCCEEDED(result)) {
        result = CreateStates();
    }
    return SUCCEEDED(result) ? CreateBuffers() : result;
}

HRESULT RenderResources::CreateStates() {
    ID3D11Device* const d3d11 = device.device.Get();
    D3D11_SAMPLER_DESC samplerState{};
    samplerState.Filter = D3D11_FILTER_MIN_MAG_MIP_LINEAR;
    samplerState.AddressU = samplerState.AddressV = samplerState.AddressW = D3D11_TEXTURE_ADDRESS_CLAMP;
    samplerState.ComparisonFunc = D3D11_COMPARISON_NEVER;
    samplerState.MaxLOD = FLT_MAX;
    HRESULT result = d3d11->CreateSamplerState(&samplerState, sampler.GetAddressOf());

    D3D11_RASTERIZER_DESC rasterizerState{};
    rasterizerState.FillMode = D3D11_FILL_SOLID;
    rasterizerState.CullMode = D3D11_CULL_NONE;
    rasterizerState.DepthClipEnable = TRUE;
    if (SUCCEEDED(result)) {
        result = d3d11->CreateRasterizerState(&rasterizerState, rasterizer.GetAddressOf());
    }
    D3D11_BLEND_DESC blend{};
    blend.RenderTarget[0].SrcBlend = blend.RenderTarget[0].SrcBlendAlpha = D3D11_BLEND_ONE;
    blend.RenderTarget[0].DestBlend = blend.RenderTarget[0].DestBlendAlpha = D3D11_BLEND_ZERO;
    blend.RenderTarget[0].BlendOp = blend.RenderTarget[0].BlendOpAlpha = D3D11_BLEND_OP_ADD;
    blend.RenderTarget[0].RenderTargetWriteMask = D3D11_COLOR_WRITE_ENABLE_ALL;
    if (SUCCEEDED(result)) {
        result = d3d11->CreateBlendState(&blend, opaque.GetAddressOf());
    }
    D3D11_DEPTH_STENCIL_DESC depth{};
    depth.DepthFunc = D3D11_COMPARISON_ALWAYS;
    depth.FrontFace = {D3D11_STENCIL_OP_KEEP, D3D11_STENCIL_OP_KEEP, D3D11_STENCIL_OP_KEEP,
                       D3D11_COMPARISON_ALWAYS};
    depth.BackFace = depth.FrontFace;
    if (SUCCEEDED(result)) {
        result = d3d11->CreateDepthStencilState(&depth, noDepth.GetAddressOf());
    }
    return result;
}

HRESULT RenderResources::CreateBuffers() {
    ID3D11Device* const d3d11 = device.device.Get();
    const HRESULT result =
        DynamicBuffer(d3d11, 4 * sizeof(QuadVertex), D3D11_BIND_VERTEX_BUFFER, vertices.GetAddressOf());
    if (FAILED(result)) {
        return result;
    }
    return DynamicBuffer(d3d11, sizeof(PictureConstants), D3D11_BIND_CONSTANT_BUFFER,
                         constants.GetAddressOf());
}

void RenderResources::BindCommon() {
    ID3D11DeviceContext* const context = device.context.Get();
    context->IASetInputLayout(inputLayout.Get());
    context->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLESTRIP);
    context->VSSetShader(vertexShader.Get(), nullptr, 0);
    context->GSSetShader(nullptr, nullptr, 0);
    context->PSSetSamplers(0, 1, sampler.GetAddressOf());
    context->RSSetState(rasterizer.Get());
    context->OMSetBlendState(opaque.Get(), nullptr, 0xFFFFFFFF);
    context->OMSetDepthStencilState(noDepth.Get(), 0);
}

HRESULT RenderResources::PictureShader(PixelFormat format, int taps, ID3D11PixelShader** out) {
    ComPtr<ID3D11PixelShader>& shader = pictureShaders[{format, taps}];
    if (shader == nullptr) {
        ComPtr<ID3DBlob> code;
        HRESULT result = Compile(PictureShaderSource(format, taps), "ps_4_0", code.GetAddressOf());
        if (SUCCEEDED(result)) {
            result = device.device->CreatePixelShader(code->GetBufferPointer(), code->GetBufferSize(),
                                                      nullptr, shader.GetAddressOf());
        }
        if (FAILED(result)) {
            return result;
        }
    }
    *out = shader.Get();
    return S_OK;
}

HRESULT RenderResources::BindPictureShader(PixelFormat format, int taps,
                                           const PictureConstants& newConstants) {
    ID3D11PixelShader* shader = nullptr;
    HRESULT result = PictureShader(format, taps, &shader);
    if (SUCCEEDED(result)) {
        result = Write(device.context.Get(), constants.Get(), newConstants);
    }
    if (SUCCEEDED(result)) {
        device.context->PSSetShader(shader, nullptr, 0);
        device.context->PSSetConstantBuffers(0, 1, constants.GetAddressOf());
    }
    return result;
}

void RenderResources::BindCopyShader() {
    device.context->PSSetShader(copyShader.Get(), nullptr, 0);
}

HRESULT RenderResources::DrawQuad(const QuadVertex (&corners)[4]) {
    const HRESULT result = Write(device.context.Get(), vertices.Get(), corners);
    if (SUCCEEDED(result)) {
        const UINT stride = sizeof(QuadVertex);
        const UINT offset = 0;
        device.context->IASetVertexBuffers(0, 1, vertices.GetAddressOf(), &stride, &offset);
        device.context->Draw(4, 0);
    }
    return result;
}

} // namespace brindlecast
