#include "filters/renderer/presenter.h"

#include "filters/renderer/read_back_presenter.h"
#include "filters/renderer/swap_chain_presenter.h"

#include <utility>

namespace brindlecast {

bool RunsUnderWine() noexcept {
    static const bool wine = [] {
        const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
        return ntdll != nullptr && GetProcAddress(ntdll, "wine_get_version") != nullptr;
    }();
    return wine;
}

PresenterKind PresenterFor(HWND window, bool wine) noexcept {
    const bool child = (GetWindowLongPtrW(window, GWL_STYLE) & WS_CHILD) != 0;
    return wine && child ? PresenterKind::kReadBack : PresenterKind::kSwapChain;
}

std::unique_ptr<Presenter> MakePresenter(const D3dDevice& device, std::shared_ptr<WindowSlot> window,
                                         PresenterKind kind) {
    if (kind == PresenterKind::kSwapChain) {
        HRESULT failure = S_OK;
        if (auto presenter = SwapChainPresenter::Create(device, window, &failure)) {
            return presenter;
        }
    }
    return std::make_unique<ReadBackPresenter>(device, std::move(window));
}

} // namespace brindlecast
