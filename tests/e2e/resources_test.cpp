#include "base/win32/unique_handle.h"
#include "tests/e2e/environment.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brindlecast::testing {
namespace {

// What the executable carries besides code; read without starting it.
class ResourcesTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(program); }

    [[nodiscard]] std::string Data(const wchar_t* name, const wchar_t* type) const {
        const HRSRC resource = FindResourceW(program.Get(), name, type);
        if (resource == nullptr) {
            return {};
        }
        const auto* bytes = static_cast<const char*>(LockResource(LoadResource(program.Get(), resource)));
        return {bytes, SizeofResource(program.Get(), resource)};
    }

    const UniqueModule program{
        LoadLibraryExW((ProgramFolder() + L"\\Brindlecast.exe").c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE)};
};

// The pixel sizes of a group of icons; 0 stands for 256.
std::vector<int> IconSizes(const std::string& group) {
    constexpr std::size_t kHeader = 6;
    constexpr std::size_t kEntry = 14;
    std::vector<int> sizes;
    for (std::size_t at = kHeader; at + kEntry <= group.size(); at += kEntry) {
        sizes.push_back(static_cast<unsigned char>(group[at]));
    }
    return sizes;
}

TEST_F(ResourcesTest, BothIconsAreThereInTheirSizes) {
    const std::vector<int> large = IconSizes(Data(MAKEINTRESOURCEW(107), RT_GROUP_ICON));
    EXPECT_EQ(large, (std::vector<int>{32, 48, 64, 128, 0}));
    const std::vector<int> small = IconSizes(Data(MAKEINTRESOURCEW(108), RT_GROUP_ICON));
    EXPECT_EQ(small, (std::vector<int>{16, 20, 24, 32}));
}

TEST_F(ResourcesTest, TheManifestAsksForCommonControlsSixLongPathsAndTodaysWindows) {
    const std::string manifest = Data(MAKEINTRESOURCEW(1), RT_MANIFEST);
    for (const char* part :
         {"version=\"" BRINDLECAST_VERSION ".0\" processorArchitecture=\"amd64\"",
          "name=\"Microsoft.Windows.Common-Controls\" version=\"6.0.0.0\"", ">true</longPathAware>",
          "<requestedExecutionLevel level=\"asInvoker\" uiAccess=\"false\"/>",
          "{35138b9a-5d96-4fbd-8e2d-a2440225f93a}", "{4a2f28e3-53b9-4441-ba9c-d69d4a4a6e38}",
          "{1f676c76-80e1-4239-95bb-83d0f6d0da78}", "{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}"}) {
        EXPECT_NE(manifest.find(part), std::string::npos) << part;
    }
}

TEST_F(ResourcesTest, TheVersionIsThatOfTheProject) {
    const std::wstring path = ProgramFolder() + L"\\Brindlecast.exe";
    DWORD ignored = 0;
    std::vector<BYTE> block(GetFileVersionInfoSizeW(path.c_str(), &ignored));
    ASSERT_FALSE(block.empty());
    ASSERT_TRUE(GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(block.size()), block.data()));
    VS_FIXEDFILEINFO* fixed = nullptr;
    UINT size = 0;
    ASSERT_TRUE(VerQueryValueW(block.data(), L"\\", reinterpret_cast<void**>(&fixed), &size));
    const std::string version = std::to_string(HIWORD(fixed->dwFileVersionMS)) + "." +
                                std::to_string(LOWORD(fixed->dwFileVersionMS)) + "." +
                                std::to_string(HIWORD(fixed->dwFileVersionLS));
    EXPECT_EQ(version, BRINDLECAST_VERSION);
    EXPECT_EQ(LOWORD(fixed->dwFileVersionLS), 0);
    EXPECT_EQ(fixed->dwProductVersionMS, fixed->dwFileVersionMS);
    wchar_t* name = nullptr;
    ASSERT_TRUE(VerQueryValueW(block.data(), L"\\StringFileInfo\\041204B0\\ProductName",
                               reinterpret_cast<void**>(&name), &size));
    EXPECT_EQ(std::wstring(name), L"Brindlecast");
}

} // namespace
} // namespace brindlecast::testing
