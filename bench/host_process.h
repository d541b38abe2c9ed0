#pragma once

#include <string>

namespace brindlecast::testing {

// A process under Wine as the host system sees it, whose files lie below the drive Z: there. Wine does not
// tell the processor time of another process.
class HostProcess {
public:
    // The one that runs this program, given by its Windows path; throws when there is none, or more than one.
    explicit HostProcess(const std::wstring& program);

    // Of all its threads since its start, in milliseconds, to within ten.
    [[nodiscard]] double ProcessorMilliseconds() const;

private:
    std::wstring folder;
};

} // namespace brindlecast::testing
