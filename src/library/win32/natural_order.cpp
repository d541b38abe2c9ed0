#include "library/natural_order.h"

#include <windows.h>

#include <shlwapi.h>

namespace brindlecast {

int CompareNaturally(const std::wstring& left, const std::wstring& right) {
    return StrCmpLogicalW(left.c_str(), right.c_str());
}

} // namespace brindlecast
