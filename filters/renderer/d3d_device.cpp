#include "filters/renderer/d3d_device.h"

#include "filters/renderer/direct3d_library.h"
#include "filters/renderer/render_resources.h"

#include <iterator>
#include <mutex>
#include <utility>

namespace brindlecast {

namespace {

HRESULT TryDriver(D3D_DRIVER_TYPE driver, D3dDevice* out) {
    static constexpr D3D_FEATURE_LEVEL kLevels[] = {D3D_FEATURE_LEVEL_11_0, D3D_FEATURE_LEVEL_10_1,
                                                    D3D_FEATURE_LEVEL_10_0};
    const auto create = FindDirect3d<PFN_D3D11_CREATE_DEVICE>(L"d3d11.dll", "D3D11CreateDevice");
    if (create == nullptr) {
        return HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND);
    }
    D3dDevice made;
    const HRESULT result = create(nullptr, driver, nullptr, D3D11_CREATE_DEVICE_BGRA_SUPPORT, kLevels,
                                  static_cast<UINT>(std::size(kLevels)), D3D11_SDK_VERSION,
                                  made.device.GetAddressOf(), nullptr, made.context.GetAddressOf());
    if (SUCCEEDED(result)) {
        *out = std::move(made);
    }
    return result;
}

struct Kept {
    std::mutex mutex;
    std::unique_ptr<RenderResources> resources;
};

Kept& TheKept() {
    // Never destroyed: freeing a device while the process or module goes down is not allowed.
    static Kept* const kept = new Kept;
    return *kept;
}

} // namespace

bool IsDeviceLost(HRESULT result) noexcept {
    switch (result) {
    case DXGI_ERROR_DEVICE_REMOVED:
    case DXGI_ERROR_DEVICE_RESET:
    case DXGI_ERROR_DEVICE_HUNG:
    case DXGI_ERROR_DRIVER_INTERNAL_ERROR: return true;
    default: return false;
    }
}

HRESULT CreateD3dDevice(D3dDevice* out) {
    HRESULT result = TryDriver(D3D_DRIVER_TYPE_HARDWARE, out);
    if (FAILED(result)) {
        result = TryDriver(D3D_DRIVER_TYPE_WARP, out);
    }
    return result;
}

std::unique_ptr<RenderResources> TakeKeptResources() noexcept {
    Kept& kept = TheKept();
    const std::lock_guard lock(kept.mutex);
    std::unique_ptr<RenderResources> taken = std::move(kept.resources);
    if (taken != nullptr && taken->Device().device->GetDeviceRemovedReason() != S_OK) {
        taken.reset();
    }
    return taken;
}

void KeepResources(std::unique_ptr<RenderResources> resources) noexcept {
    Kept& kept = TheKept();
    const std::lock_guard lock(kept.mutex);
    if (kept.resources == nullptr) {
        kept.resources = std::move(resources);
    }
}

void DropKeptResources() noexcept {
    Kept& kept = TheKept();
    const std::lock_guard lock(kept.mutex);
    kept.resources.reset();
}

} // namespace brindlecast
