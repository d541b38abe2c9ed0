#pragma once

#include <string>

namespace brindlecast {

// The order in which the system's file manager shows names: numbers by their value, other text without
// regard to case. Negative, 0 or positive.
[[nodiscard]] int CompareNaturally(const std::wstring& left, const std::wstring& right);

} // namespace brindlecast
