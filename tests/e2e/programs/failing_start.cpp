// Linked to the program's own objects, this lets one step of the start fail: the environment variable
// BRINDLECAST_FAILING_STEP names it (com, gdiplus or window).

#include <windows.h>

#include <objbase.h>

#include <array>
#include <string>

namespace {

std::wstring FailingStep() {
    std::array<wchar_t, 32> step{};
    GetEnvironmentVariableW(L"BRINDLECAST_FAILING_STEP", step.data(), static_cast<DWORD>(step.size()));
    return step.data();
}

// Runs before the entry point.
const bool prepared = [] {
    const std::wstring step = FailingStep();
    if (step == L"com") {
        // A thread can't join the single-threaded apartment from the multi-threaded one.
        return SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED));
    }
    if (step == L"window") {
        WNDCLASSW taken{};
        taken.lpfnWndProc = DefWindowProcW;
        taken.hInstance = GetModuleHandleW(nullptr);
        taken.lpszClassName = L"BrindlecastMainWindow";
        return RegisterClassW(&taken) != 0;
    }
    return true;
}();

} // namespace

// Found before the one of the import library. The types are those of the flat interface of GDI+.
extern "C" int WINAPI GdiplusStartup(ULONG_PTR* token, const void* input, void* output) {
    constexpr int kGenericError = 1;
    using Startup = int(WINAPI*)(ULONG_PTR*, const void*, void*);
    const HMODULE library = LoadLibraryW(L"gdiplus.dll");
    if (FailingStep() == L"gdiplus" || library == nullptr || !prepared) {
        return kGenericError;
    }
    const auto startup =
        reinterpret_cast<Startup>(reinterpret_cast<void*>(GetProcAddress(library, "GdiplusStartup")));
    return startup != nullptr ? startup(token, input, output) : kGenericError;
}
