#include "chrome/double_click.h"

#include <cstdlib>

namespace brindlecast {

bool IsDoubleClick(const Press& former, const Press& press, const DoubleClickLimits& limits) {
    return press.tick - former.tick < limits.milliseconds &&
           std::abs(press.point.x - former.point.x) < limits.width &&
           std::abs(press.point.y - former.point.y) < limits.height;
}

} // namespace brindlecast
