#include "base/win32/wine.h"

#include <windows.h>

namespace brindlecast {

namespace {

WineAnswer& Answer() {
    static WineAnswer answer = WineAnswer::Real;
    return answer;
}

} // namespace

bool IsRunningUnderWine() {
    if (Answer() != WineAnswer::Real) {
        return Answer() == WineAnswer::Forced;
    }
    static const bool wine = [] {
        const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
        return ntdll != nullptr && GetProcAddress(ntdll, "wine_get_version") != nullptr;
    }();
    return wine;
}

void SetWineAnswerForTest(WineAnswer answer) {
    Answer() = answer;
}

} // namespace brindlecast
