#include "app/application.h"

#include <windows.h>

// The command line is not looked at: files come by dialog, drop and lists. Parameters have the names of the
// platform's declaration.
int WINAPI wWinMain(HINSTANCE hInstance, HINSTANCE, PWSTR, int nShowCmd) {
    brindlecast::Application& application = brindlecast::Application::Instance();
    if (!application.Initialize(hInstance, nShowCmd)) {
        return -1;
    }
    return application.Run();
}
