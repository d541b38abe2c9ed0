#pragma once

namespace brindlecast {

// Ends the process at once, as the runtime's own checks of parameters do when a result does not fit: nothing
// is flushed and no destructor runs. On Windows the exit code is 0xC0000417
// (STATUS_INVALID_CRUNTIME_PARAMETER).
[[noreturn]] void EndForInvalidParameter();

} // namespace brindlecast
