#pragma once

#include "tests/e2e/environment.h"

#include <string>
#include <vector>

namespace brindlecast::testing {

// The program made of the same objects that writes its diagnostics to a file. A player started while this
// object lives leaves its lines to it.
class Witness {
public:
    Witness();

    // Where the executable stands, with links to the modules beside it.
    [[nodiscard]] static std::wstring Program();
    // The lines so far, without their ends.
    [[nodiscard]] std::vector<std::wstring> Lines() const;

private:
    std::wstring path;
    TemporaryVariable variable;
};

} // namespace brindlecast::testing
