#include "tests/e2e/film_folder.h"

#include "base/win32/com_ptr.h"
#include "tests/e2e/environment.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <shlobj.h>

#include <fstream>

namespace brindlecast::testing {

namespace {

// The thread's COM for as long as a shortcut is written.
class ComScope {
public:
    ComScope() : entered(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;
    ~ComScope() {
        if (entered) {
            CoUninitialize();
        }
    }

private:
    bool entered;
};

} // namespace

FilmFolder::FilmFolder() : folder(std::filesystem::path(ReportFolder()) / L"영화 모음") {
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
}

FilmFolder::~FilmFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

std::wstring FilmFolder::AddFilm(const std::wstring& name) const {
    std::filesystem::copy_file(Media(L"short.mkv"), folder / name);
    return Path(name);
}

std::wstring FilmFolder::AddGarbage(const std::wstring& name) const {
    std::ofstream file(folder / name, std::ios::binary);
    for (int i = 0; i < 10'000; ++i) {
        file.put(static_cast<char>(i * 37 % 251));
    }
    return Path(name);
}

std::wstring FilmFolder::AddFolder(const std::wstring& name) const {
    std::filesystem::create_directory(folder / name);
    return Path(name);
}

std::wstring FilmFolder::AddShortcut(const std::wstring& name, const std::wstring& target) const {
    const ComScope com;
    ComPtr<IShellLinkW> link;
    ComPtr<IPersistFile> file;
    EXPECT_EQ(S_OK, CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&link)));
    EXPECT_EQ(S_OK, link->SetPath(target.c_str()));
    EXPECT_EQ(S_OK, link.As(&file));
    EXPECT_EQ(S_OK, file->Save(Path(name).c_str(), TRUE));
    return Path(name);
}

} // namespace brindlecast::testing
