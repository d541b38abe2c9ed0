#pragma once

#include <string>
#include <vector>

namespace brindlecast {

// One row of a popup menu as data. A tab in the text separates the label from the hint of a key.
struct MenuEntry {
    std::wstring text;
    int id = 0;
    bool isGrey = false;
    bool isChecked = false;
    bool isSeparator = false;         // without anything else
    std::vector<MenuEntry> submenu{}; // not empty: opens it, and has no id
    bool operator==(const MenuEntry&) const = default;

    [[nodiscard]] static MenuEntry Separator() {
        MenuEntry entry;
        entry.isSeparator = true;
        return entry;
    }
};

} // namespace brindlecast
