#include "base/trace.h"

#include <utility>

namespace brindlecast {

namespace {

constexpr std::size_t kLongestLine = 511;

TraceSink& Sink() {
    static TraceSink sink;
    return sink;
}

} // namespace

void SetTraceSink(TraceSink sink) {
    Sink() = std::move(sink);
}

bool IsTracing() {
    return static_cast<bool>(Sink());
}

void WriteTrace(std::wstring_view line) {
    if (const TraceSink& sink = Sink()) {
        sink(line.substr(0, kLongestLine));
    }
}

} // namespace brindlecast
