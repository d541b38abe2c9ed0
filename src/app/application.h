#pragma once

#include "base/win32/registry_settings_store.h"
#include "base/win32/unique_handle.h"

#include <windows.h>

#include <memory>

namespace brindlecast {

class MainWindow;

// The process: start-up, the message pump and shut-down. Everything here runs on the main thread, which is a
// COM single-threaded apartment.
class Application {
public:
    [[nodiscard]] static Application& Instance();
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    // Brings everything up to the shown window. Called once; after false the user has been told and the
    // process ends.
    [[nodiscard]] bool Initialize(HINSTANCE moduleInstance, int showCommand);
    // Pumps messages until the main window has posted its exit code, shuts down, and returns that code.
    [[nodiscard]] int Run();

private:
    Application();
    ~Application();

    void CreateAccelerators();
    [[nodiscard]] int PumpMessages();
    void ShutDown();

    RegistrySettingsStore settingsStore;
    HINSTANCE instance = nullptr;
    std::unique_ptr<MainWindow> mainWindow;
    ULONG_PTR gdiplusToken = 0;
    bool comInitialized = false;
    UniqueAccelerators accelerators;
};

} // namespace brindlecast
