#pragma once

#include "tests/graph/import_swap.h"

#include <windows.h>

#include <vector>

namespace brindlecast::testing {

// Keeps how long the program slept each time while it lives, in milliseconds; it sleeps all the same. One at
// a time, main thread.
class SleepRecord {
public:
    SleepRecord() : swap("KERNEL32.dll", "Sleep", reinterpret_cast<void*>(&Record)) {
        Sleeps().clear();
        Real() = reinterpret_cast<decltype(&::Sleep)>(swap.Original());
    }

    [[nodiscard]] const std::vector<DWORD>& Seen() const { return Sleeps(); }

private:
    static std::vector<DWORD>& Sleeps() {
        static std::vector<DWORD> sleeps;
        return sleeps;
    }
    static decltype(&::Sleep)& Real() {
        static decltype(&::Sleep) real = nullptr;
        return real;
    }
    static void WINAPI Record(DWORD milliseconds) {
        Sleeps().push_back(milliseconds);
        Real()(milliseconds);
    }

    ImportSwap swap;
};

} // namespace brindlecast::testing
