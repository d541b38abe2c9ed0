#include "base/invalid_parameter.h"

#include <windows.h>

#include <cstdlib>

namespace brindlecast {

namespace {

// STATUS_INVALID_CRUNTIME_PARAMETER
constexpr UINT kInvalidRuntimeParameter = 0xC0000417;

} // namespace

void EndForInvalidParameter() {
    TerminateProcess(GetCurrentProcess(), kInvalidRuntimeParameter);
    // Not reached: a process may always end itself.
    std::abort();
}

} // namespace brindlecast
