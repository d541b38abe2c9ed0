#include "playlist_ui/playlist_services.h"

#include "base/win32/windows_files.h"
#include "inspection/series_finder.h"
#include "inspection/shell_links.h"
#include "library/natural_order.h"

namespace brindlecast {

PlaylistServices SystemPlaylistServices(SettingsStore& settings) {
    static const WindowsFileMetadata files;
    static const WindowsFolderEnumerator folders;
    return {settings,
            files,
            PlaylistDatabase::Instance(),
            ResolveShortcut,
            [](const std::wstring& path, int limit) { return FindSeriesFiles(folders, path, limit); },
            CompareNaturally};
}

} // namespace brindlecast
