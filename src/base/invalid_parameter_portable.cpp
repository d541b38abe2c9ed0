#include "base/invalid_parameter.h"

#include <cstdlib>

namespace brindlecast {

void EndForInvalidParameter() {
    std::abort();
}

} // namespace brindlecast
