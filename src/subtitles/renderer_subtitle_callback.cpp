#include "subtitles/renderer_subtitle_callback.h"

#include "base/trace.h"
#include "subtitles/subtitle_manager.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

namespace brindlecast {

namespace {

// Four vertices of five floats: position in the first three, texture coordinate in the last two.
constexpr UINT kVertexCount = 4;
constexpr UINT kVertexBytes = 5 * sizeof(float);
constexpr UINT kVertexBufferBytes = kVertexCount * kVertexBytes;
constexpr std::array kVertices = {
    -1.0F, -1.0F, 0.0F, 0.0F, 1.0F, //
    -1.0F, 1.0F,  0.0F, 0.0F, 0.0F, //
    1.0F,  -1.0F, 0.0F, 1.0F, 1.0F, //
    1.0F,  1.0F,  0.0F, 1.0F, 0.0F, //
};
static_assert(sizeof(kVertices) == kVertexBufferBytes);

constexpr std::size_t kBytesPerPixel = 4;

// What would be traced for each frame is traced this often in a run.
constexpr int kTraced = 5;

bool IsAmongFirst(std::atomic<int>& count) {
    return count.load(std::memory_order_relaxed) < kTraced &&
           count.fetch_add(1, std::memory_order_relaxed) < kTraced;
}

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

STDMETHODIMP CMPCVR11SubtitleCallback::Render11(REFERENCE_TIME start, REFERENCE_TIME /*stop*/,
                                                REFERENCE_TIME /*frameDuration*/, RECT video,
                                                RECT /*originalVideo*/, RECT viewport, double /*stretch*/,
                                                int /*xOffset*/, DWORD /*flags*/) {
    SubtitleManager* const subtitles = manager.load(std::memory_order_acquire);
    try {
        if (subtitles == nullptr || !subtitles->IsActive() || device == nullptr || context == nullptr) {
            return kNothingDrawn;
        }
        const auto width = static_cast<std::int32_t>(video.right - video.left);
        const auto height = static_cast<std::int32_t>(video.bottom - video.top);
        if (width >= 1 && height >= 1 && (width != videoWidth || height != videoHeight)) {
            videoWidth = width;
            videoHeight = height;
            subtitles->SetRenderSize(width, height);
            Trace(L"[Brindlecast] Render11: video=%dx%d, viewport=(%d,%d,%d,%d)\n", width, height,
                  viewport.left, viewport.top, viewport.right, viewport.bottom);
        }
        return UpdateTexture(*subtitles, start) && Draw(video) ? S_OK : kNothingDrawn;
    } catch (...) {
        // The frame goes out without its subtitle.
        return kNothingDrawn;
    }
}

bool CMPCVR11SubtitleCallback::UpdateTexture(SubtitleManager& subtitles, REFERENCE_TIME time) {
    const ComReference<ISubPic> picture = subtitles.GetSubPic(time);
    if (picture == nullptr) {
        return false;
    }
    Size size;
    return picture->GetSize(&size) == S_OK && EnsureTexture(size) && CopyPicture(*picture);
}

bool CMPCVR11SubtitleCallback::CopyPicture(ISubPic& picture) {
    static std::atomic<int> updates{0};
    SubPicDesc source;
    if (FAILED(picture.Lock(source))) {
        return false;
    }
    D3D11_MAPPED_SUBRESOURCE target{};
    const bool isMapped = SUCCEEDED(context->Map(texture.Get(), 0, D3D11_MAP_WRITE_DISCARD, 0, &target));
    if (isMapped) {
        const int rows = std::min(textureHeight, source.height);
        const std::size_t bytes =
            kBytesPerPixel * static_cast<std::size_t>(std::min(textureWidth, source.width));
        for (int row = 0; row < rows; ++row) {
            std::memcpy(static_cast<std::uint8_t*>(target.pData) +
                            static_cast<std::size_t>(row) * target.RowPitch,
                        source.bits + static_cast<std::ptrdiff_t>(row) * source.pitch, bytes);
        }
        context->Unmap(texture.Get(), 0);
    }
    picture.Unlock(nullptr);
    if (isMapped && IsAmongFirst(updates)) {
        Trace(L"[Brindlecast] Updated texture: %dx%d from SubPic %dx%d\n", textureWidth, textureHeight,
              source.width, source.height);
    }
    return isMapped;
}

bool CMPCVR11SubtitleCallback::EnsureTexture(Size size) {
    if (texture != nullptr && size.width == textureWidth && size.height == textureHeight) {
        return true;
    }
    texture.Reset();
    textureView.Reset();
    textureWidth = 0;
    textureHeight = 0;
    D3D11_TEXTURE2D_DESC description{};
    description.Width = static_cast<UINT>(size.width);
    description.Height = static_cast<UINT>(size.height);
    description.MipLevels = 1;
    description.ArraySize = 1;
    description.Format = DXGI_FORMAT_B8G8R8A8_UNORM;
    description.SampleDesc.Count = 1;
    description.Usage = D3D11_USAGE_DYNAMIC;
    description.BindFlags = D3D11_BIND_SHADER_RESOURCE;
    description.CPUAccessFlags = D3D11_CPU_ACCESS_WRITE;
    if (FAILED(device->CreateTexture2D(&description, nullptr, texture.ReleaseAndGetAddressOf()))) {
        return false;
    }
    D3D11_SHADER_RESOURCE_VIEW_DESC view{};
    view.Format = description.Format;
    view.ViewDimension = D3D11_SRV_DIMENSION_TEXTURE2D;
    view.Texture2D.MipLevels = 1;
    if (FAILED(
            device->CreateShaderResourceView(texture.Get(), &view, textureView.ReleaseAndGetAddressOf()))) {
        texture.Reset();
        return false;
    }
    textureWidth = size.width;
    textureHeight = size.height;
    Trace(L"[Brindlecast] Subtitle texture created: %dx%d\n", textureWidth, textureHeight);
    return true;
}

bool CMPCVR11SubtitleCallback::FillVertices() {
    D3D11_MAPPED_SUBRESOURCE mapped{};
    if (FAILED(context->Map(vertexBuffer.Get(), 0, D3D11_MAP_WRITE_DISCARD, 0, &mapped))) {
        return false;
    }
    std::memcpy(mapped.pData, kVertices.data(), kVertexBufferBytes);
    context->Unmap(vertexBuffer.Get(), 0);
    return true;
}

// The shaders and the layout of the vertices are those of the renderer.
bool CMPCVR11SubtitleCallback::Draw(const RECT& video) {
    static std::atomic<int> draws{0};
    if (context == nullptr || vertexBuffer == nullptr || textureView == nullptr || pointSampler == nullptr ||
        blendState == nullptr) {
        return false;
    }
    context->OMSetBlendState(blendState.Get(), nullptr, 0xFFFFFFFF);
    if (!FillVertices()) {
        return false;
    }
    const UINT stride = kVertexBytes;
    const UINT offset = 0;
    context->IASetVertexBuffers(0, 1, vertexBuffer.GetAddressOf(), &stride, &offset);
    context->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLESTRIP);
    context->PSSetShaderResources(0, 1, textureView.GetAddressOf());
    context->PSSetSamplers(0, 1, linearSampler.GetAddressOf());
    D3D11_VIEWPORT place{};
    place.TopLeftX = static_cast<float>(video.left);
    place.TopLeftY = static_cast<float>(video.top);
    place.Width = static_cast<float>(video.right - video.left);
    place.Height = static_cast<float>(video.bottom - video.top);
    place.MaxDepth = 1.0F;
    context->RSSetViewports(1, &place);
    context->Draw(kVertexCount, 0);
    if (IsAmongFirst(draws)) {
        Trace(L"[Brindlecast] Drew subtitle at viewport (%.0f,%.0f,%.0f,%.0f)\n", place.TopLeftX,
              place.TopLeftY, place.Width, place.Height);
    }
    return true;
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
