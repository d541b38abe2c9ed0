#include "app/application.h"

#include "app/accelerators.h"
#include "app/application_texts.h"
#include "app/main_window.h"
#include "base/display_scale.h"
#include "base/win32/dpi_awareness.h"
#include "base/win32/gdiplus.h"

#include <commctrl.h>
#include <objbase.h>

#include <vector>

namespace brindlecast {

namespace {

bool Fail(const wchar_t* text) {
    MessageBoxW(nullptr, text, texts::kErrorCaption, MB_ICONERROR);
    return false;
}

void ReadSystemDpi() {
    if (const HDC screen = GetDC(nullptr)) {
        SetSystemDpi(GetDeviceCaps(screen, LOGPIXELSX));
        ReleaseDC(nullptr, screen);
    }
}

void InitializeCommonControls() {
    INITCOMMONCONTROLSEX controls{};
    controls.dwSize = sizeof(controls);
    controls.dwICC = ICC_BAR_CLASSES | ICC_TAB_CLASSES | ICC_STANDARD_CLASSES;
    InitCommonControlsEx(&controls);
}

} // namespace

Application::Application() = default;
Application::~Application() = default;

Application& Application::Instance() {
    static Application application;
    return application;
}

bool Application::Initialize(HINSTANCE moduleInstance, int showCommand) {
    instance = moduleInstance;
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE))) {
        return Fail(texts::kComFailed);
    }
    comInitialized = true;
    MakeProcessDpiAware();
    ReadSystemDpi();
    if (!StartGdiplus(gdiplusToken)) {
        return Fail(texts::kGdiplusFailed);
    }
    InitializeCommonControls();
    mainWindow = std::make_unique<MainWindow>(settingsStore);
    if (!mainWindow->Create(instance)) {
        return Fail(texts::kMainWindowFailed);
    }
    CreateAccelerators();
    if (const HWND window = mainWindow->Handle()) {
        // Comes after the restored placement on purpose: the show command may undo a restored maximised
        // state.
        ShowWindow(window, showCommand);
        UpdateWindow(window);
    }
    return true;
}

void Application::CreateAccelerators() {
    std::vector<ACCEL> rows;
    rows.reserve(kKeyboardMap.size());
    for (const KeyBinding& binding : kKeyboardMap) {
        rows.push_back({binding.flags, binding.virtualKey, binding.command});
    }
    accelerators.Reset(CreateAcceleratorTableW(rows.data(), static_cast<int>(rows.size())));
}

int Application::Run() {
    const int exitCode = PumpMessages();
    ShutDown();
    return exitCode;
}

int Application::PumpMessages() {
    const HWND window = mainWindow->Handle();
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) != 0) {
        // Keys act only while the main window itself is in the foreground.
        if (accelerators && window != nullptr && MayBeAccelerator(message.message) &&
            GetForegroundWindow() == window &&
            TranslateAcceleratorW(window, accelerators.Get(), &message) != 0) {
            continue;
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
        // Wine's loop of a window that is being moved or sized keeps the message that ends this one, if the
        // window goes meanwhile.
        if (window != nullptr && IsWindow(window) == FALSE) {
            PostQuitMessage(0);
        }
    }
    return static_cast<int>(message.wParam);
}

void Application::ShutDown() {
    accelerators.Reset();
    mainWindow.reset();
    if (gdiplusToken != 0) {
        Gdiplus::GdiplusShutdown(gdiplusToken);
        gdiplusToken = 0;
    }
    if (comInitialized) {
        CoUninitialize();
        comInitialized = false;
    }
}

} // namespace brindlecast
