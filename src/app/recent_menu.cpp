#include "app/recent_menu.h"

#include "app/command_texts.h"
#include "base/bounded_text.h"
#include "base/paths.h"
#include "ui/command_ids.h"

namespace brindlecast {

std::vector<MenuEntry> DescribeRecentMenu(const std::vector<std::wstring>& recentFiles) {
    if (recentFiles.empty()) {
        return {{.text = texts::kNoRecentFiles, .id = kCommandRecentFirst, .isGrey = true}};
    }
    std::vector<MenuEntry> entries;
    int index = 0;
    for (const std::wstring& path : recentFiles) {
        entries.push_back({.text = FormatBounded<texts::kRecentFileCapacity>(texts::kRecentFile, index + 1,
                                                                             FileNameOf(path)),
                           .id = kCommandRecentFirst + index});
        ++index;
    }
    entries.push_back(MenuEntry::Separator());
    entries.push_back({.text = texts::kClearRecentFiles, .id = kCommandClearRecent});
    return entries;
}

} // namespace brindlecast
