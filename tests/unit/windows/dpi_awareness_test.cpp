#include "base/win32/dpi_awareness.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace brindlecast {
namespace {

// A system as the test wants it: which libraries and functions it has, and what was asked of it.
struct FakeSystem {
    bool hasUser32 = true;
    bool hasNewestCall = true;
    bool hasShcore = true;
    bool hasOlderCall = true;

    std::vector<std::wstring> loaded = {};
    std::optional<INT_PTR> context = std::nullopt;
    std::optional<int> awareness = std::nullopt;
};

FakeSystem fake;

int user32Marker = 0;
int shcoreMarker = 0;
const auto kUser32 = reinterpret_cast<HMODULE>(&user32Marker);
const auto kShcore = reinterpret_cast<HMODULE>(&shcoreMarker);

BOOL WINAPI SetContext(DPI_AWARENESS_CONTEXT context) {
    fake.context = reinterpret_cast<INT_PTR>(context);
    return FALSE; // its result does not matter
}

HRESULT WINAPI SetAwareness(int awareness) {
    fake.awareness = awareness;
    return E_ACCESSDENIED;
}

HMODULE WINAPI Loaded(const wchar_t* name) {
    return fake.hasUser32 && std::wstring(name) == L"user32.dll" ? kUser32 : nullptr;
}

HMODULE WINAPI Load(const wchar_t* name) {
    fake.loaded.emplace_back(name);
    return fake.hasShcore && std::wstring(name) == L"Shcore.dll" ? kShcore : nullptr;
}

FARPROC WINAPI FindIn(HMODULE module, const char* name) {
    const std::string function = name;
    void* found = nullptr;
    if (module == kUser32 && function == "SetProcessDpiAwarenessContext" && fake.hasNewestCall) {
        found = reinterpret_cast<void*>(SetContext);
    } else if (module == kShcore && function == "SetProcessDpiAwareness" && fake.hasOlderCall) {
        found = reinterpret_cast<void*>(SetAwareness);
    }
    return reinterpret_cast<FARPROC>(found);
}

FakeSystem RunOn(const FakeSystem& system) {
    fake = system;
    MakeProcessDpiAware({Loaded, Load, FindIn});
    return fake;
}

TEST(DpiAwareness, TheNewestCallGetsPerMonitorVersionTwoAndNothingElseIsLoaded) {
    const FakeSystem after = RunOn({});
    EXPECT_EQ(after.context, -4);
    EXPECT_TRUE(after.loaded.empty());
    EXPECT_EQ(after.awareness, std::nullopt) << "also where the newest call refuses";
}

TEST(DpiAwareness, WithoutTheNewestCallTheOlderOneGetsPerMonitor) {
    const FakeSystem after = RunOn({.hasNewestCall = false});
    EXPECT_EQ(after.loaded, std::vector<std::wstring>{L"Shcore.dll"});
    EXPECT_EQ(after.awareness, 2);
}

TEST(DpiAwareness, WithoutEitherCallNothingHappens) {
    EXPECT_EQ(RunOn({.hasNewestCall = false, .hasOlderCall = false}).awareness, std::nullopt);
    const FakeSystem after = RunOn({.hasNewestCall = false, .hasShcore = false});
    EXPECT_EQ(after.context, std::nullopt);
    EXPECT_EQ(after.awareness, std::nullopt);
}

TEST(DpiAwareness, WithoutUser32NothingIsLoaded) {
    const FakeSystem after = RunOn({.hasUser32 = false});
    EXPECT_TRUE(after.loaded.empty());
    EXPECT_EQ(after.context, std::nullopt);
    EXPECT_EQ(after.awareness, std::nullopt);
}

} // namespace
} // namespace brindlecast
