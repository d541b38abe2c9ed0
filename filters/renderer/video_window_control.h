#pragma once

#include "filters/renderer/filter_part.h"
#include "filters/renderer/renderer_core.h"

#include <control.h>

namespace brindlecast {

// IVideoWindow. The window exists only while it has an owner, so what needs a window answers
// VFW_E_NOT_CONNECTED without a connection and E_UNEXPECTED without an owner. Palettes, border colours and a
// full-screen mode of its own are not offered (E_NOTIMPL).
class VideoWindowControl final : public DualFilterPart<IVideoWindow> {
public:
    VideoWindowControl(BaseFilter& theFilter, RendererCore& theCore)
        : DualFilterPart(theFilter), core(theCore) {}

    STDMETHODIMP put_Caption(BSTR caption) override;
    STDMETHODIMP get_Caption(BSTR* caption) override;
    STDMETHODIMP put_WindowStyle(LONG style) override;
    STDMETHODIMP get_WindowStyle(LONG* style) override;
    STDMETHODIMP put_WindowStyleEx(LONG style) override;
    STDMETHODIMP get_WindowStyleEx(LONG* style) override;
    // The window is shown from the moment it has an owner until it is hidden; it never shows itself again.
    STDMETHODIMP put_AutoShow(LONG autoShow) override;
    STDMETHODIMP get_AutoShow(LONG* autoShow) override;
    STDMETHODIMP put_WindowState(LONG state) override;
    STDMETHODIMP get_WindowState(LONG* state) override;
    STDMETHODIMP put_BackgroundPalette(LONG) override { return E_NOTIMPL; }
    STDMETHODIMP get_BackgroundPalette(LONG*) override { return E_NOTIMPL; }
    STDMETHODIMP put_Visible(LONG visible) override;
    STDMETHODIMP get_Visible(LONG* visible) override;
    STDMETHODIMP put_Left(LONG left) override;
    STDMETHODIMP get_Left(LONG* left) override;
    STDMETHODIMP put_Width(LONG width) override;
    STDMETHODIMP get_Width(LONG* width) override;
    STDMETHODIMP put_Top(LONG top) override;
    STDMETHODIMP get_Top(LONG* top) override;
    STDMETHODIMP put_Height(LONG height) override;
    STDMETHODIMP get_Height(LONG* height) override;
    STDMETHODIMP put_Owner(OAHWND owner) override;
    STDMETHODIMP get_Owner(OAHWND* owner) override;
    STDMETHODIMP put_MessageDrain(OAHWND drain) override;
    STDMETHODIMP get_MessageDrain(OAHWND* drain) override;
    STDMETHODIMP get_BorderColor(LONG*) override { return E_NOTIMPL; }
    STDMETHODIMP put_BorderColor(LONG) override { return E_NOTIMPL; }
    STDMETHODIMP get_FullScreenMode(LONG*) override { return E_NOTIMPL; }
    STDMETHODIMP put_FullScreenMode(LONG) override { return E_NOTIMPL; }
    STDMETHODIMP SetWindowForeground(LONG focus) override;
    STDMETHODIMP NotifyOwnerMessage(OAHWND window, LONG message, LONG_PTR wParam, LONG_PTR lParam) override;
    STDMETHODIMP SetWindowPosition(LONG left, LONG top, LONG width, LONG height) override;
    STDMETHODIMP GetWindowPosition(LONG* left, LONG* top, LONG* width, LONG* height) override;
    STDMETHODIMP GetMinIdealImageSize(LONG* width, LONG* height) override;
    STDMETHODIMP GetMaxIdealImageSize(LONG* width, LONG* height) override;
    STDMETHODIMP GetRestorePosition(LONG* left, LONG* top, LONG* width, LONG* height) override;
    STDMETHODIMP HideCursor(LONG hide) override;
    STDMETHODIMP IsCursorHidden(LONG* hidden) override;

private:
    [[nodiscard]] HRESULT NeedWindow(HWND* window) const;
    [[nodiscard]] HRESULT Place(RECT* place) const;
    template <class Change>
    [[nodiscard]] HRESULT Move(Change&& change);
    template <class Read>
    [[nodiscard]] HRESULT ReadPlace(LONG* value, Read&& read) const;

    RendererCore& core;
};

} // namespace brindlecast
