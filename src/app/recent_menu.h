#pragma once

#include "ui/menu_entry.h"

#include <string>
#include <vector>

namespace brindlecast {

// The submenu of recent files: their names, numbered from 1, and a way to forget them; or a grey row when
// there are none.
[[nodiscard]] std::vector<MenuEntry> DescribeRecentMenu(const std::vector<std::wstring>& recentFiles);

} // namespace brindlecast
