#include "app/application.h"

#include <windows.h>

// The command line is not looked at: files come by dialog, drop and lists.
int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, PWSTR, int showCommand) {
    brindlecast::Application& application = brindlecast::Application::Instance();
    if (!application.Initialize(instance, showCommand)) {
        return -1;
    }
    return application.Run();
}
