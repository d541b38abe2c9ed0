#include "tests/filters/renderer/subtitle_fake.h"

#include <cfloat>

namespace brindlecast::test {

Microsoft::WRL::ComPtr<FakeSubtitles> FakeSubtitles::Create() {
    Microsoft::WRL::ComPtr<FakeSubtitles> fake;
    *fake.GetAddressOf() = new FakeSubtitles; // mingw's Attach would count the reference twice
    return fake;
}

void* FakeSubtitles::FindInterface(REFIID iid) noexcept {
    const bool known = iid == IID_IUnknown || iid == __uuidof(ISubRender11Callback);
    return known ? static_cast<ISubRender11Callback*>(this) : nullptr;
}

STDMETHODIMP FakeSubtitles::SetDevice11(ID3D11Device* device) {
    const std::lock_guard lock(mutex_);
    devices_.push_back(device != nullptr);
    vertices_.Reset();
    view_.Reset();
    blend_.Reset();
    sampler_.Reset();
    context_.Reset();
    device_ = device;
    if (device == nullptr) {
        return S_OK;
    }
    device->GetImmediateContext(context_.GetAddressOf());
    // Two triangles that cover the viewport: x, y, z, u, v.
    static constexpr float kVertices[20] = {-1, -1, 0, 0, 1, -1, 1, 0, 0, 0, 1, -1, 0, 1, 1, 1, 1, 0, 1, 0};
    const D3D11_BUFFER_DESC buffer{sizeof(kVertices), D3D11_USAGE_DEFAULT, D3D11_BIND_VERTEX_BUFFER, 0, 0, 0};
    const D3D11_SUBRESOURCE_DATA corners{kVertices, 0, 0};
    device->CreateBuffer(&buffer, &corners, vertices_.GetAddressOf());
    // Half-transparent yellow, premultiplied: B, G, R, A.
    static constexpr std::uint8_t kTexel[4] = {0, 128, 128, 128};
    D3D11_TEXTURE2D_DESC texture{
        1, 1, 1, 1, DXGI_FORMAT_B8G8R8A8_UNORM, {1, 0}, D3D11_USAGE_DEFAULT, D3D11_BIND_SHADER_RESOURCE,
        0, 0};
    const D3D11_SUBRESOURCE_DATA texels{kTexel, 4, 0};
    Microsoft::WRL::ComPtr<ID3D11Texture2D> made;
    device->CreateTexture2D(&texture, &texels, made.GetAddressOf());
    device->CreateShaderResourceView(made.Get(), nullptr, view_.GetAddressOf());
    D3D11_BLEND_DESC blend{};
    blend.RenderTarget[0] = {TRUE,
                             D3D11_BLEND_ONE,
                             D3D11_BLEND_INV_SRC_ALPHA,
                             D3D11_BLEND_OP_ADD,
                             D3D11_BLEND_ONE,
                             D3D11_BLEND_INV_SRC_ALPHA,
                             D3D11_BLEND_OP_ADD,
                             15};
    device->CreateBlendState(&blend, blend_.GetAddressOf());
    D3D11_SAMPLER_DESC sampler{};
    sampler.Filter = D3D11_FILTER_MIN_MAG_MIP_LINEAR;
    sampler.AddressU = sampler.AddressV = sampler.AddressW = D3D11_TEXTURE_ADDRESS_CLAMP;
    sampler.ComparisonFunc = D3D11_COMPARISON_NEVER;
    sampler.MaxLOD = FLT_MAX;
    device->CreateSamplerState(&sampler, sampler_.GetAddressOf());
    return S_OK;
}

STDMETHODIMP FakeSubtitles::Render11(REFERENCE_TIME start, REFERENCE_TIME stop, REFERENCE_TIME duration,
                                     RECT video, RECT originalVideo, RECT viewport, double stretch,
                                     int xOffset, DWORD flags) {
    const std::lock_guard lock(mutex_);
    calls_.push_back({start, stop, duration, video, originalVideo, viewport, stretch, xOffset, flags});
    Draw();
    return S_OK;
}

void FakeSubtitles::Draw() {
    context_->OMSetBlendState(blend_.Get(), nullptr, 0xFFFFFFFF);
    const UINT stride = 20;
    const UINT offset = 0;
    context_->IASetVertexBuffers(0, 1, vertices_.GetAddressOf(), &stride, &offset);
    context_->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLESTRIP);
    context_->PSSetShaderResources(0, 1, view_.GetAddressOf());
    context_->PSSetSamplers(0, 1, sampler_.GetAddressOf());
    const D3D11_VIEWPORT viewport{static_cast<float>(area.left),
                                  static_cast<float>(area.top),
                                  static_cast<float>(area.right - area.left),
                                  static_cast<float>(area.bottom - area.top),
                                  0,
                                  1};
    context_->RSSetViewports(1, &viewport);
    context_->Draw(4, 0);
}

std::vector<FakeSubtitles::Call> FakeSubtitles::Calls() {
    const std::lock_guard lock(mutex_);
    return calls_;
}

std::vector<bool> FakeSubtitles::Devices() {
    const std::lock_guard lock(mutex_);
    return devices_;
}

} // namespace brindlecast::test
