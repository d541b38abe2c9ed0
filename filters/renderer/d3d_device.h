#pragma once

#include <d3d11.h>
#include <wrl/client.h>

#include <memory>

namespace brindlecast {

using Microsoft::WRL::ComPtr;

// A Direct3D 11 device and its immediate context. Whoever holds it is the only one to use the context: the
// renderer's drawing thread while a filter lives.
struct D3dDevice {
    ComPtr<ID3D11Device> device;
    ComPtr<ID3D11DeviceContext> context;
};

// True for the failures after which a device must be given up and made anew.
[[nodiscard]] bool IsDeviceLost(HRESULT result) noexcept;

// Makes a device on the graphics hardware, else on the software rasteriser, at feature level 10.0 at least.
// `*out` stays empty on failure.
[[nodiscard]] HRESULT CreateD3dDevice(D3dDevice* out);

// What takes long to make and serves any film: kept from one filter to the next, because a new device with
// its shaders costs a third of a second. Owned by one filter at a time.
class RenderResources;

// The kept resources, or null when there are none (or they have been lost since). Any thread.
[[nodiscard]] std::unique_ptr<RenderResources> TakeKeptResources() noexcept;
// Keeps resources for the next filter; frees them when some are kept already. Any thread.
void KeepResources(std::unique_ptr<RenderResources> resources) noexcept;
// Frees what is kept: before the module is unloaded.
void DropKeptResources() noexcept;

} // namespace brindlecast
