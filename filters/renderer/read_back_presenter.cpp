#include "filters/renderer/read_back_presenter.h"

#include <utility>

namespace brindlecast {

namespace {

D3D11_TEXTURE2D_DESC Describe(PictureSize size) {
    D3D11_TEXTURE2D_DESC description{};
    description.Width = static_cast<UINT>(size.width);
    description.Height = static_cast<UINT>(size.height);
    description.MipLevels = 1;
    description.ArraySize = 1;
    description.Format = DXGI_FORMAT_B8G8R8A8_UNORM;
    description.SampleDesc.Count = 1;
    return description;
}

// Draws rows of four bytes a pixel; the header's width is that of the rows, so that their padding is passed
// over.
void DrawRows(HWND window, const D3D11_MAPPED_SUBRESOURCE& rows, PictureSize size) {
    const HDC context = GetDC(window);
    if (context == nullptr) {
        return;
    }
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = static_cast<LONG>(rows.RowPitch / 4);
    info.bmiHeader.biHeight = -size.height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    SetDIBitsToDevice(context, 0, 0, static_cast<DWORD>(size.width), static_cast<DWORD>(size.height), 0, 0, 0,
                      static_cast<UINT>(size.height), rows.pData, &info, DIB_RGB_COLORS);
    ReleaseDC(window, context);
}

} // namespace

HRESULT MakeReadableTexture(ID3D11Device* device, PictureSize size, ID3D11Texture2D** out) {
    D3D11_TEXTURE2D_DESC description = Describe(size);
    description.Usage = D3D11_USAGE_STAGING;
    description.CPUAccessFlags = D3D11_CPU_ACCESS_READ;
    return device->CreateTexture2D(&description, nullptr, out);
}

HRESULT MakeTargetTexture(ID3D11Device* device, PictureSize size, ID3D11Texture2D** texture,
                          ID3D11RenderTargetView** view) {
    D3D11_TEXTURE2D_DESC description = Describe(size);
    description.BindFlags = D3D11_BIND_RENDER_TARGET;
    const HRESULT result = device->CreateTexture2D(&description, nullptr, texture);
    return SUCCEEDED(result) ? device->CreateRenderTargetView(*texture, nullptr, view) : result;
}

ReadBackPresenter::ReadBackPresenter(D3dDevice theDevice, std::shared_ptr<WindowSlot> window)
    : device(std::move(theDevice)), windowSlot(std::move(window)) {}

HRESULT ReadBackPresenter::MakeTextures(PictureSize size) {
    textureSize = {};
    view.Reset();
    ID3D11Device* const d3d11 = device.device.Get();
    HRESULT result =
        MakeTargetTexture(d3d11, size, targetTexture.ReleaseAndGetAddressOf(), view.GetAddressOf());
    for (auto& texture : memory) {
        if (SUCCEEDED(result)) {
            result = MakeReadableTexture(d3d11, size, texture.ReleaseAndGetAddressOf());
        }
    }
    if (SUCCEEDED(result)) {
        textureSize = size;
    }
    return result;
}

HRESULT ReadBackPresenter::Begin(PictureSize size, ID3D11RenderTargetView** target) {
    if (size != textureSize) {
        if (const HRESULT result = MakeTextures(size); FAILED(result)) {
            return result;
        }
    }
    *target = view.Get();
    return S_OK;
}

HRESULT ReadBackPresenter::Finish() {
    current = 1 - current;
    device.context->CopyResource(memory[current].Get(), targetTexture.Get());
    device.context->Flush();
    return S_OK;
}

HRESULT ReadBackPresenter::Show() {
    D3D11_MAPPED_SUBRESOURCE rows{};
    const HRESULT result = device.context->Map(memory[current].Get(), 0, D3D11_MAP_READ, 0, &rows);
    if (FAILED(result)) {
        return result;
    }
    const bool shown = windowSlot->Use([&](HWND window) { DrawRows(window, rows, textureSize); });
    device.context->Unmap(memory[current].Get(), 0);
    if (RunsUnderWine()) {
        // Wine gathers what is drawn and brings it out when a thread asks for messages; this one has none.
        MSG message;
        PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);
    }
    return shown ? S_OK : S_FALSE;
}

} // namespace brindlecast
