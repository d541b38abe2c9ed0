#pragma once

#include <string>

namespace brindlecast {

// The folder that the program was started from, without a separator at its end. The modules and tools lie
// there.
[[nodiscard]] std::wstring ExecutableDirectory();

} // namespace brindlecast
