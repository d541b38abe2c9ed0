#pragma once

#include "ui/window.h"

#include <string>

namespace brindlecast {

// The main window's own caption: title, name of the open file, caption buttons.
class TitleBar final : public Window {
public:
    // The name of the open file; empty without one.
    void SetFileText(const std::wstring& text);
    // Puts the owner back to where it was before this bar maximised it.
    void RestoreOwner();

    bool maximized = false;
    bool fullScreen = false;

protected:
    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    HWND owner = nullptr;
    WINDOWPLACEMENT savedPlacement{};
    std::wstring fileText;
};

} // namespace brindlecast
