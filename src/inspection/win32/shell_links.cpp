#include "inspection/shell_links.h"

#include "base/case_fold.h"
#include "base/paths.h"
#include "base/win32/com_ptr.h"
#include "base/win32/unique_handle.h"
#include "base/win32/wine.h"

#include <windows.h>

#include <shellapi.h>
#include <shlobj.h>

#include <array>

namespace brindlecast {

namespace {

constexpr std::wstring_view kShortcutExtension = L".lnk";

bool EndsLikeShortcut(const std::wstring& path) {
    return path.size() >= kShortcutExtension.size() &&
           EqualIgnoringCase(std::wstring_view(path).substr(path.size() - kShortcutExtension.size()),
                             kShortcutExtension);
}

struct ItemListTraits {
    using Handle = PIDLIST_ABSOLUTE;
    static Handle None() { return nullptr; }
    static void Close(Handle list) { CoTaskMemFree(list); }
};

// Wine reads the path from the link's text in the system's code page, which turns what it lacks into question
// marks; the link's item list has the whole name. No path holds such a mark.
std::wstring RepairTarget(IShellLinkW& link, std::wstring target) {
    if (!IsRunningUnderWine() || target.find(L'?') == std::wstring::npos) {
        return target;
    }
    PIDLIST_ABSOLUTE list = nullptr;
    if (FAILED(link.GetIDList(&list))) {
        return target;
    }
    const UniqueResource<ItemListTraits> owned(list);
    std::array<wchar_t, MAX_PATH> path{};
    return SHGetPathFromIDListW(owned.Get(), path.data()) != FALSE ? std::wstring(path.data()) : target;
}

} // namespace

bool RevealInExplorer(const std::wstring& path) {
    if (GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES) {
        const std::wstring argument = L"/select,\"" + path + L"\"";
        ShellExecuteW(nullptr, L"open", L"explorer.exe", argument.c_str(), nullptr, SW_SHOWNORMAL);
        return true;
    }
    const std::size_t separator = LastSeparator(path);
    if (separator == std::wstring::npos) {
        return false;
    }
    const std::wstring folder = path.substr(0, separator);
    ShellExecuteW(nullptr, L"explore", folder.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    return true;
}

std::wstring ResolveShortcut(const std::wstring& path) {
    if (!EndsLikeShortcut(path)) {
        return path;
    }
    ComPtr<IShellLinkW> link;
    ComPtr<IPersistFile> file;
    if (FAILED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&link))) ||
        FAILED(link.As(&file)) || FAILED(file->Load(path.c_str(), STGM_READ))) {
        return path;
    }
    std::array<wchar_t, MAX_PATH> target{};
    const HRESULT result =
        link->GetPath(target.data(), static_cast<int>(target.size()), nullptr, SLGP_RAWPATH);
    return SUCCEEDED(result) && target[0] != L'\0' ? RepairTarget(*link.Get(), target.data()) : path;
}

} // namespace brindlecast
