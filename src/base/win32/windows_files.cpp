#include "base/win32/windows_files.h"

#include "base/win32/unique_handle.h"

#include <windows.h>

namespace brindlecast {

namespace {

constexpr unsigned kHalf = 32;

std::uint64_t Join(DWORD high, DWORD low) {
    return static_cast<std::uint64_t>(high) << kHalf | low;
}

FileTime ToFileTime(const FILETIME& time) {
    return Join(time.dwHighDateTime, time.dwLowDateTime);
}

struct SearchTraits {
    using Handle = HANDLE;
    static Handle None() { return INVALID_HANDLE_VALUE; }
    static void Close(Handle handle) { FindClose(handle); }
};

} // namespace

FileTime SystemClock::Now() const {
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    return ToFileTime(now);
}

std::optional<FileFacts> WindowsFileMetadata::Read(const std::wstring& path) const {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data) == FALSE) {
        return std::nullopt;
    }
    return FileFacts{Join(data.nFileSizeHigh, data.nFileSizeLow), ToFileTime(data.ftLastWriteTime)};
}

bool WindowsFolderEnumerator::Enumerate(
    const std::wstring& folder,
    const std::function<bool(std::wstring_view name, bool isFolder)>& entry) const {
    WIN32_FIND_DATAW data{};
    const UniqueResource<SearchTraits> search(FindFirstFileW((folder + L"*").c_str(), &data));
    if (!search) {
        return false;
    }
    bool goesOn = true;
    do {
        goesOn = entry(data.cFileName, (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0);
    } while (goesOn && FindNextFileW(search.Get(), &data) != FALSE);
    return true;
}

} // namespace brindlecast
