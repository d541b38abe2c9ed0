#pragma once

#include "filters/core/picture_format.h"
#include "filters/renderer/d3d_device.h"
#include "filters/renderer/window_slot.h"

#include <memory>

namespace brindlecast {

// Brings a drawn render target into a window. Used by the drawing thread alone. The order for each picture
// is Begin, the drawing, Finish, and at its time Show; Begin may follow Finish when a picture is not shown
// after all.
class Presenter {
public:
    virtual ~Presenter() = default;

    // Gives the render target, of exactly the size asked for; the content is undefined.
    [[nodiscard]] virtual HRESULT Begin(PictureSize size, ID3D11RenderTargetView** target) = 0;
    // The drawing is complete: start whatever takes time.
    [[nodiscard]] virtual HRESULT Finish() = 0;
    // Shows what was finished last. S_FALSE when the window has gone meanwhile.
    [[nodiscard]] virtual HRESULT Show() = 0;
};

enum class PresenterKind { kSwapChain, kReadBack };

// Which way a window can be drawn. Under Wine a swap chain in a child window shows black, so the picture is
// read back and drawn with GDI there.
[[nodiscard]] PresenterKind PresenterFor(HWND window, bool wine) noexcept;
[[nodiscard]] bool RunsUnderWine() noexcept;

// Makes the presenter for the window in the slot; where no swap chain can be made, one that reads back.
[[nodiscard]] std::unique_ptr<Presenter>
MakePresenter(const D3dDevice& device, std::shared_ptr<WindowSlot> window, PresenterKind kind);

} // namespace brindlecast
