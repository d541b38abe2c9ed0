#include "library/natural_order.h"

#include "base/win32/windows_files.h"
#include "library/playlist_model.h"
#include "tests/support/fake_settings_store.h"
#include "tests/support/library_fixture.h"

#include <windows.h>

namespace brindlecast::testing {
namespace {

// Without leading zeros and punctuation, where platforms differ.
TEST(NaturalOrder, NumbersCountByTheirValueAndCaseDoesNot) {
    EXPECT_LT(CompareNaturally(L"화 2", L"화 10"), 0);
    EXPECT_GT(CompareNaturally(L"a10b", L"a9b"), 0);
    EXPECT_EQ(0, CompareNaturally(L"Film 3", L"fILM 3"));
    EXPECT_LT(CompareNaturally(L"a", L"B"), 0);
    EXPECT_LT(CompareNaturally(L"a", L"ab"), 0);
}

class NaturallySortedList : public LibraryTest {};

TEST_F(NaturallySortedList, TheListIsSortedAsTheFileManagerDoes) {
    PlaylistDatabase database(clock, DataFolder());
    FakeSettingsStore settings;
    const FakeFileMetadata files;
    PlaylistModel model({settings, files, database, {}, {}, CompareNaturally});
    for (const wchar_t* name : {L"x\\Show 10.mkv", L"x\\show 9.mkv", L"x\\Show 100.mkv", L"x\\SHOW 1.mkv"}) {
        model.AddFile(name);
    }
    model.ChooseColumn(PlaylistColumn::Name);
    std::vector<std::wstring> names;
    for (const PlaylistItem& item : model.items) {
        names.push_back(item.file_name);
    }
    EXPECT_EQ((std::vector<std::wstring>{L"SHOW 1.mkv", L"show 9.mkv", L"Show 10.mkv", L"Show 100.mkv"}),
              names);
}

TEST(WindowsFiles, SizeAndTimeOfAFileAreRead) {
    const WindowsFileMetadata files;
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    const auto facts = files.Read(path);
    ASSERT_TRUE(facts.has_value());
    EXPECT_GT(facts->size, 1'000'000U);
    const FileTime now = SystemClock().Now();
    EXPECT_LE(facts->lastWriteTime, now);
    EXPECT_GE(DayOf(now).year, 2026);
    EXPECT_FALSE(files.Read(L"C:\\no such file").has_value());
}

TEST(WindowsFiles, AFolderIsLookedThroughUntilItIsEnough) {
    const WindowsFolderEnumerator folders;
    int files = 0;
    int kinds = 0;
    EXPECT_TRUE(folders.Enumerate(L"C:\\windows\\", [&](std::wstring_view name, bool isFolder) {
        ++files;
        kinds |= isFolder ? 1 : 2;
        return !name.empty();
    }));
    EXPECT_GT(files, 2);
    EXPECT_EQ(3, kinds) << "folders and files";
    int first = 0;
    EXPECT_TRUE(folders.Enumerate(L"C:\\windows\\", [&](std::wstring_view, bool) { return ++first < 2; }));
    EXPECT_EQ(2, first);
    EXPECT_FALSE(folders.Enumerate(L"C:\\no such folder\\", [](std::wstring_view, bool) { return true; }));
}

} // namespace
} // namespace brindlecast::testing
