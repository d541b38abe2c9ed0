#include "inspection/shell_links.h"

#include "base/win32/com_ptr.h"
#include "base/win32/unique_handle.h"
#include "base/win32/wine.h"
#include "tests/graph/import_swap.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <shlobj.h>

#include <array>
#include <string>
#include <vector>

namespace brindlecast::testing {
namespace {

// What the shell was asked for: verb, file, arguments.
std::vector<std::wstring> asked;

HINSTANCE WINAPI RecordShellExecute(HWND, LPCWSTR verb, LPCWSTR file, LPCWSTR arguments, LPCWSTR folder,
                                    INT show) {
    asked.push_back(std::wstring(verb) + L"|" + file + L"|" + (arguments != nullptr ? arguments : L"-") +
                    L"|" + (folder != nullptr ? folder : L"-") + L"|" + std::to_wstring(show));
    return nullptr; // a failure, which nobody looks at
}

class ShellLinks : public ::testing::Test {
protected:
    void SetUp() override {
        asked.clear();
        ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
        std::array<wchar_t, MAX_PATH> temporary{};
        GetTempPathW(static_cast<DWORD>(temporary.size()), temporary.data());
        folder = std::wstring(temporary.data()) + L"바로 가기 시험\\";
        CreateDirectoryW(folder.c_str(), nullptr);
    }
    void TearDown() override {
        for (const std::wstring& file : files) {
            DeleteFileW(file.c_str());
        }
        RemoveDirectoryW(folder.c_str());
        CoUninitialize();
    }
    std::wstring WriteFileOf(const wchar_t* name, const std::string& content) {
        std::wstring path = folder + name;
        files.push_back(path);
        const UniqueFile file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                          FILE_ATTRIBUTE_NORMAL, nullptr));
        DWORD written = 0;
        EXPECT_NE(FALSE, WriteFile(file.Get(), content.data(), static_cast<DWORD>(content.size()), &written,
                                   nullptr));
        return path;
    }
    std::wstring MakeShortcut(const wchar_t* name, const std::wstring& target) {
        std::wstring path = folder + name;
        files.push_back(path);
        ComPtr<IShellLinkW> link;
        ComPtr<IPersistFile> file;
        EXPECT_EQ(S_OK,
                  CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&link)));
        EXPECT_EQ(S_OK, link->SetPath(target.c_str()));
        EXPECT_EQ(S_OK, link.As(&file));
        EXPECT_EQ(S_OK, file->Save(path.c_str(), TRUE));
        return path;
    }

    std::wstring folder;
    std::vector<std::wstring> files;
};

TEST_F(ShellLinks, AShortcutGivesItsTarget) {
    const std::wstring film = WriteFileOf(L"첫 화.mkv", "film");
    EXPECT_EQ(film, ResolveShortcut(MakeShortcut(L"첫 화 바로 가기.lnk", film)));
    EXPECT_EQ(film, ResolveShortcut(MakeShortcut(L"UPPER.LNK", film)));
}

TEST_F(ShellLinks, OnWindowsTheLinksOwnPathIsTaken) {
    SetWineAnswerForTest(WineAnswer::Denied);
    const std::wstring plain = L"C:\\windows\\system32\\kernel32.dll"; // any file that is there
    EXPECT_EQ(plain, ResolveShortcut(MakeShortcut(L"plain.lnk", plain)));
    SetWineAnswerForTest(WineAnswer::Real);
}

TEST_F(ShellLinks, AShortcutToAShortcutIsNotFollowedFurther) {
    const std::wstring film = WriteFileOf(L"film.mkv", "film");
    const std::wstring first = MakeShortcut(L"first.lnk", film);
    EXPECT_EQ(first, ResolveShortcut(MakeShortcut(L"second.lnk", first)));
}

TEST_F(ShellLinks, ATargetThatIsGoneIsStillItsTarget) {
    const std::wstring film = WriteFileOf(L"film.mkv", "film");
    const std::wstring link = MakeShortcut(L"film.lnk", film);
    DeleteFileW(film.c_str());
    EXPECT_EQ(film, ResolveShortcut(link));
}

TEST_F(ShellLinks, WhatCanNotBeReadComesBackAsItIs) {
    for (const std::wstring& path :
         {WriteFileOf(L"empty.lnk", ""),
          WriteFileOf(L"text.lnk", "this is no shortcut at all, whatever its name"),
          WriteFileOf(L"cut.lnk", std::string("\x4C\0\0\0\x01\x14\x02\0\0\0\0\0\xC0", 13)),
          folder + L"missing.lnk"}) {
        EXPECT_EQ(path, ResolveShortcut(path));
    }
}

TEST_F(ShellLinks, OtherNamesAreNotLookedAt) {
    for (const wchar_t* path : {L"", L"lnk", L"a.mkv", L"C:\\a.lnk.mkv", L"C:\\a.lnk "}) {
        EXPECT_EQ(path, ResolveShortcut(path));
    }
}

TEST_F(ShellLinks, AFileIsShownInItsFolder) {
    const ImportSwap swap("SHELL32.dll", "ShellExecuteW", reinterpret_cast<void*>(&RecordShellExecute));
    ASSERT_NE(nullptr, swap.Original());
    const std::wstring film = WriteFileOf(L"첫 화.mkv", "film");
    EXPECT_TRUE(RevealInExplorer(film));
    EXPECT_EQ(std::vector<std::wstring>{L"open|explorer.exe|/select,\"" + film + L"\"|-|1"}, asked);
}

TEST_F(ShellLinks, AMissingFileLeavesItsFolder) {
    const ImportSwap swap("SHELL32.dll", "ShellExecuteW", reinterpret_cast<void*>(&RecordShellExecute));
    EXPECT_TRUE(RevealInExplorer(L"Z:\\no such folder\\film.mkv"));
    EXPECT_TRUE(RevealInExplorer(L"nowhere/film.mkv"));
    EXPECT_FALSE(RevealInExplorer(L"no such film.mkv"));
    EXPECT_EQ((std::vector<std::wstring>{L"explore|Z:\\no such folder|-|-|1", L"explore|nowhere|-|-|1"}),
              asked);
}

} // namespace
} // namespace brindlecast::testing
