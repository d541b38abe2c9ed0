#include "app/recent_list.h"

namespace brindlecast {

void PutInFront(std::vector<std::wstring>& recentFiles, const std::wstring& path) {
    std::erase(recentFiles, path);
    recentFiles.insert(recentFiles.begin(), path);
    if (recentFiles.size() > kRecentFileLimit) {
        recentFiles.resize(kRecentFileLimit);
    }
}

} // namespace brindlecast
