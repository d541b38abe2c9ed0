#include "app/command_texts.h"
#include "app/main_window.h"
#include "app/overlay.h"
#include "app/screenshot_name.h"
#include "engine/executable_directory.h"
#include "engine/player_engine.h"

#include <knownfolders.h>
#include <shlobj.h>

namespace brindlecast {

namespace {

constexpr DWORD kScreenshotHold = 1500; // milliseconds

// With its separator at the end. Pictures that have no folder go beside the program.
std::wstring ScreenshotFolder() {
    PWSTR pictures = nullptr;
    const HRESULT found = SHGetKnownFolderPath(FOLDERID_Pictures, 0, nullptr, &pictures);
    std::wstring folder =
        SUCCEEDED(found) ? std::wstring(pictures) + L"\\Brindlecast\\" : ExecutableDirectory() + L"\\";
    CoTaskMemFree(pictures);
    if (SUCCEEDED(found)) {
        CreateDirectoryW(folder.c_str(), nullptr);
    }
    return folder;
}

LocalTime Now() {
    SYSTEMTIME time{};
    GetLocalTime(&time);
    return {time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond};
}

} // namespace

void MainWindow::TakeScreenshot() {
    if (engine != nullptr &&
        engine->SaveScreenshot(ScreenshotFolder() + ScreenshotName(engine->currentFile, Now()))) {
        ShowOverlayMessage(texts::kScreenshotSaved, kScreenshotHold);
    }
}

} // namespace brindlecast
