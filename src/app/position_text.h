#pragma once

#include "base/time_types.h"

#include <string>

namespace brindlecast {

// "01:02", or "1:01:02" when there are hours, cut to whole seconds. What is no time of a film counts as 0.
[[nodiscard]] std::wstring FormatPosition(Seconds position);

} // namespace brindlecast
