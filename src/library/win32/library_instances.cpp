#include "base/win32/windows_files.h"
#include "library/favorites_database.h"

#include <windows.h>

#include <shlobj.h>

#include <array>

namespace brindlecast {

namespace {

std::optional<std::wstring> ApplicationDataFolder() {
    std::array<wchar_t, MAX_PATH> folder{};
    if (FAILED(SHGetFolderPathW(nullptr, CSIDL_APPDATA, nullptr, 0, folder.data()))) {
        return std::nullopt;
    }
    return folder.data();
}

} // namespace

PlaylistDatabase& PlaylistDatabase::Instance() {
    static const SystemClock clock;
    static PlaylistDatabase instance(clock, ApplicationDataFolder);
    return instance;
}

FavoritesDatabase& FavoritesDatabase::Instance() {
    static FavoritesDatabase& instance = []() -> FavoritesDatabase& {
        static FavoritesDatabase loaded(PlaylistDatabase::Instance(), ApplicationDataFolder);
        PlaylistDatabase::Instance().Open();
        loaded.LoadAll();
        return loaded;
    }();
    return instance;
}

} // namespace brindlecast
