#pragma once

#include "base/text.h"

#include <functional>
#include <string_view>

namespace brindlecast {

// Receives one diagnostic line, which ends in a newline unless it was cut. Called on whichever thread traces.
using TraceSink = std::function<void(std::wstring_view line)>;

// Replaces the sink; an empty one drops every line, as at start. Main thread, while no other thread traces.
void SetTraceSink(TraceSink sink);

[[nodiscard]] bool IsTracing();
// Hands a line to the sink, cut at 511 characters.
void WriteTrace(std::wstring_view line);

// Formats (see FormatText) and hands on one diagnostic line. Costs one test when no sink is set.
template <class... Arguments>
void Trace(std::wstring_view format, const Arguments&... arguments) {
    if (IsTracing()) {
        WriteTrace(FormatText(format, arguments...));
    }
}

} // namespace brindlecast
