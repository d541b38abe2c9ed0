#include "subtitles/renderer_subtitle_callback.h"

#include "base/trace.h"

namespace brindlecast {

namespace {

// Four vertices of five floats: position in the first three, texture coordinate in the last two.
constexpr UINT kVertexBytes = 5 * sizeof(float);
constexpr UINT kVertexBufferBytes = 4 * kVertexBytes;

constexpr HRESULT kNothingDrawn = S_FALSE;

} // namespace

STDMETHODIMP CMPCVR11SubtitleCallback::QueryInterface(REFIID iid, void** out) {
    if (out == nullptr) {
        return E_POINTER;
    }
    if (iid != __uuidof(IUnknown) && iid != __uuidof(ISubRender11Callback)) {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    *out = static_cast<ISubRender11Callback*>(this);
    AddRef();
    return S_OK;
}

STDMETHODIMP_(ULONG) CMPCVR11SubtitleCallback::AddRef() {
    return ++references;
}

STDMETHODIMP_(ULONG) CMPCVR11SubtitleCallback::Release() {
    const ULONG left = --references;
    if (left == 0) {
        delete this;
    }
    return left;
}

STDMETHODIMP CMPCVR11SubtitleCallback::SetDevice11(ID3D11Device* newDevice) {
    ReleaseResources();
    if (newDevice == nullptr) {
        device.Reset();
        context.Reset();
        return S_OK;
    }
    device = newDevice;
    device->GetImmediateContext(context.ReleaseAndGetAddressOf());
    if (!CreateVertexBuffer() || !CreateSampler(D3D11_FILTER_MIN_MAG_MIP_POINT, pointSampler) ||
        !CreateSampler(D3D11_FILTER_MIN_MAG_MIP_LINEAR, linearSampler) || !CreateBlend()) {
        return E_FAIL;
    }
    Trace(L"[Brindlecast] D3D11 Device set: 0x%p, resources created\n",
          static_cast<const void*>(device.Get()));
    return S_OK;
}

STDMETHODIMP CMPCVR11SubtitleCallback::Render11(REFERENCE_TIME /*start*/, REFERENCE_TIME /*stop*/,
                                                REFERENCE_TIME /*frameDuration*/, RECT /*video*/,
                                                RECT /*originalVideo*/, RECT /*viewport*/, double /*stretch*/,
                                                int /*xOffset*/, DWORD /*flags*/) {
    // Subtitles are drawn by what loads them; nothing sets a manager here, so there is never a picture to
    // draw.
    return kNothingDrawn;
}

void CMPCVR11SubtitleCallback::ReleaseResources() {
    texture.Reset();
    textureView.Reset();
    vertexBuffer.Reset();
    pointSampler.Reset();
    linearSampler.Reset();
    blendState.Reset();
    textureWidth = 0;
    textureHeight = 0;
    videoWidth = 0;
    videoHeight = 0;
}

bool CMPCVR11SubtitleCallback::CreateVertexBuffer() {
    D3D11_BUFFER_DESC description{};
    description.ByteWidth = kVertexBufferBytes;
    description.Usage = D3D11_USAGE_DYNAMIC;
    description.BindFlags = D3D11_BIND_VERTEX_BUFFER;
    description.CPUAccessFlags = D3D11_CPU_ACCESS_WRITE;
    return SUCCEEDED(device->CreateBuffer(&description, nullptr, vertexBuffer.ReleaseAndGetAddressOf()));
}

bool CMPCVR11SubtitleCallback::CreateSampler(D3D11_FILTER filter, ComPtr<ID3D11SamplerState>& sampler) {
    D3D11_SAMPLER_DESC description{};
    description.Filter = filter;
    description.AddressU = D3D11_TEXTURE_ADDRESS_CLAMP;
    description.AddressV = D3D11_TEXTURE_ADDRESS_CLAMP;
    description.AddressW = D3D11_TEXTURE_ADDRESS_CLAMP;
    description.ComparisonFunc = D3D11_COMPARISON_NEVER;
    description.MaxLOD = D3D11_FLOAT32_MAX;
    return SUCCEEDED(device->CreateSamplerState(&description, sampler.ReleaseAndGetAddressOf()));
}

bool CMPCVR11SubtitleCallback::CreateBlend() {
    // For colours that are already multiplied by their alpha.
    D3D11_BLEND_DESC description{};
    D3D11_RENDER_TARGET_BLEND_DESC& target = description.RenderTarget[0];
    target.BlendEnable = TRUE;
    target.SrcBlend = D3D11_BLEND_ONE;
    target.DestBlend = D3D11_BLEND_INV_SRC_ALPHA;
    target.BlendOp = D3D11_BLEND_OP_ADD;
    target.SrcBlendAlpha = D3D11_BLEND_ONE;
    target.DestBlendAlpha = D3D11_BLEND_INV_SRC_ALPHA;
    target.BlendOpAlpha = D3D11_BLEND_OP_ADD;
    target.RenderTargetWriteMask = D3D11_COLOR_WRITE_ENABLE_ALL;
    return SUCCEEDED(device->CreateBlendState(&description, blendState.ReleaseAndGetAddressOf()));
}

} // namespace brindlecast
