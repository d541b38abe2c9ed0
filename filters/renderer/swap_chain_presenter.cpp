#include "filters/renderer/swap_chain_presenter.h"

#include <utility>

namespace brindlecast {

SwapChainPresenter::SwapChainPresenter(D3dDevice theDevice, std::shared_ptr<WindowSlot> window)
    : device(std::move(theDevice)), windowSlot(std::move(window)) {}

std::unique_ptr<SwapChainPresenter> SwapChainPresenter::Create(const D3dDevice& theDevice,
                                                               const std::shared_ptr<WindowSlot>& window,
                                                               HRESULT* failure) {
    std::unique_ptr<SwapChainPresenter> presenter(new SwapChainPresenter(theDevice, window));
    *failure = E_HANDLE;
    window->Use([&](HWND handle) { *failure = presenter->CreateChain(handle); });
    if (FAILED(*failure)) {
        presenter.reset();
    }
    return presenter;
}

HRESULT SwapChainPresenter::CreateChain(HWND window) {
    ComPtr<IDXGIDevice> dxgiDevice;
    ComPtr<IDXGIAdapter> adapter;
    ComPtr<IDXGIFactory2> factory;
    HRESULT result = device.device.As(&dxgiDevice);
    if (SUCCEEDED(result)) {
        result = dxgiDevice->GetAdapter(adapter.GetAddressOf());
    }
    if (SUCCEEDED(result)) {
        result = adapter->GetParent(IID_PPV_ARGS(factory.GetAddressOf()));
    }
    if (FAILED(result)) {
        return result;
    }
    DXGI_SWAP_CHAIN_DESC1 description{};
    description.Format = DXGI_FORMAT_B8G8R8A8_UNORM;
    description.SampleDesc.Count = 1;
    description.BufferUsage = DXGI_USAGE_RENDER_TARGET_OUTPUT;
    description.BufferCount = 2;
    description.Scaling = DXGI_SCALING_NONE;
    description.AlphaMode = DXGI_ALPHA_MODE_IGNORE;
    // The flip model wants Windows 10 for "discard" and Windows 8 for "sequential"; the last is for what
    // knows neither.
    for (const DXGI_SWAP_EFFECT effect :
         {DXGI_SWAP_EFFECT_FLIP_DISCARD, DXGI_SWAP_EFFECT_FLIP_SEQUENTIAL, DXGI_SWAP_EFFECT_DISCARD}) {
        description.SwapEffect = effect;
        if (effect == DXGI_SWAP_EFFECT_DISCARD) {
            description.Scaling = DXGI_SCALING_STRETCH;
        }
        result = factory->CreateSwapChainForHwnd(device.device.Get(), window, &description, nullptr, nullptr,
                                                 chain.ReleaseAndGetAddressOf());
        if (SUCCEEDED(result)) {
            break;
        }
    }
    if (SUCCEEDED(result)) {
        // DXGI must not watch the window: it would send messages to it from this thread.
        result = factory->MakeWindowAssociation(window, DXGI_MWA_NO_WINDOW_CHANGES | DXGI_MWA_NO_ALT_ENTER |
                                                            DXGI_MWA_NO_PRINT_SCREEN);
    }
    return result;
}

HRESULT SwapChainPresenter::Resize(PictureSize size) {
    bufferSize = {};
    // Every reference to a buffer has to go first, also the one that the context holds as its target.
    device.context->OMSetRenderTargets(0, nullptr, nullptr);
    view.Reset();
    buffer.Reset();
    HRESULT result = chain->ResizeBuffers(0, static_cast<UINT>(size.width), static_cast<UINT>(size.height),
                                          DXGI_FORMAT_UNKNOWN, 0);
    if (SUCCEEDED(result)) {
        result = chain->GetBuffer(0, IID_PPV_ARGS(buffer.GetAddressOf()));
    }
    if (SUCCEEDED(result)) {
        result = device.device->CreateRenderTargetView(buffer.Get(), nullptr, view.GetAddressOf());
    }
    if (SUCCEEDED(result)) {
        bufferSize = size;
    }
    return result;
}

HRESULT SwapChainPresenter::Begin(PictureSize size, ID3D11RenderTargetView** target) {
    if (size != bufferSize) {
        if (const HRESULT result = Resize(size); FAILED(result)) {
            return result;
        }
    }
    *target = view.Get();
    return S_OK;
}

HRESULT SwapChainPresenter::Finish() {
    device.context->Flush();
    return S_OK;
}

HRESULT SwapChainPresenter::Show() {
    HRESULT result = S_FALSE;
    windowSlot->Use([&](HWND) { result = chain->Present(0, 0); });
    return result;
}

} // namespace brindlecast
