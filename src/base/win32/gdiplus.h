#pragma once

// Include this in place of <gdiplus.h>, which leans on COM types that a lean <windows.h> leaves out and on a
// min and max of its own.

#include <windows.h>

#include <objidl.h>

#include <algorithm>

namespace Gdiplus {
using std::max; // NOLINT(misc-unused-using-decls): used by the header
using std::min; // NOLINT(misc-unused-using-decls)
} // namespace Gdiplus
#include <gdiplus.h>

namespace brindlecast {

// Starts GDI+ for this process once more; false leaves 0 in `token`. Each success asks for one
// Gdiplus::GdiplusShutdown with that token.
[[nodiscard]] inline bool StartGdiplus(ULONG_PTR& token) {
    const Gdiplus::GdiplusStartupInput input;
    if (Gdiplus::GdiplusStartup(&token, &input, nullptr) != Gdiplus::Ok) {
        token = 0;
    }
    return token != 0;
}

// One start of GDI+ for as long as it lives; false as a condition when that start failed. Every object of
// GDI+ must go before it.
class GdiplusSession {
public:
    GdiplusSession() : isStarted(StartGdiplus(token)) {}
    GdiplusSession(const GdiplusSession&) = delete;
    GdiplusSession& operator=(const GdiplusSession&) = delete;
    ~GdiplusSession() {
        if (isStarted) {
            Gdiplus::GdiplusShutdown(token);
        }
    }
    explicit operator bool() const { return isStarted; }

private:
    ULONG_PTR token = 0;
    bool isStarted;
};

} // namespace brindlecast
