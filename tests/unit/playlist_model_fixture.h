#pragma once

#include "library/playlist_model.h"
#include "tests/support/fake_settings_store.h"
#include "tests/support/library_fixture.h"

#include <algorithm>
#include <string>
#include <vector>

namespace brindlecast::testing {

// A play list over a library of its own that writes down what its window would be told.
class PlaylistModelTest : public LibraryTest {
protected:
    using Names = std::vector<std::wstring>;
    using Indices = std::vector<std::int32_t>;

    PlaylistModelTest() {
        database.Open();
        // What is tested here is what is written, not that it survives a power cut.
        sqlite3_exec(database.Connection(), "PRAGMA synchronous = OFF;", nullptr, nullptr, nullptr);
        model.SetListener({[this](int count) { told.push_back(L"rows " + std::to_wstring(count)); },
                           [this] { told.push_back(L"repaint"); },
                           [this](int row) { told.push_back(L"show " + std::to_wstring(row)); },
                           [this](int row) {
                               told.push_back(L"choose " + std::to_wstring(row));
                           }});
    }
    // A list of files in one folder, named by letters.
    void Fill(const std::wstring& letters) {
        for (const wchar_t letter : letters) {
            model.AddFile(std::wstring(L"C:\\films\\") + letter + L".mkv");
        }
        model.RebuildView();
        model.SyncToDatabase();
        told.clear();
    }
    // The letters of the list, in order.
    [[nodiscard]] std::wstring Letters() const {
        std::wstring letters;
        for (const PlaylistItem& item : model.items) {
            letters += item.file_name.front();
        }
        return letters;
    }
    [[nodiscard]] std::wstring StoredLetters() {
        std::wstring letters;
        for (const PlaylistItem& item : database.LoadItems()) {
            letters += item.file_name.front();
        }
        return letters;
    }
    void ExpectInvariants() const {
        EXPECT_TRUE(std::ranges::is_sorted(model.filteredIndices));
        for (const std::int32_t index : model.filteredIndices) {
            EXPECT_TRUE(index >= 0 && index < static_cast<std::int32_t>(model.items.size()));
        }
        if (model.searchText.empty()) {
            EXPECT_EQ(model.items.size(), model.filteredIndices.size());
        }
        EXPECT_GE(model.currentIndex, -1);
        EXPECT_LT(model.currentIndex, static_cast<std::int32_t>(model.items.size()));
    }

    PlaylistDatabase database{clock, DataFolder()};
    FakeSettingsStore settings;
    FakeFileMetadata files;
    std::vector<std::wstring> series;
    Names told;
    PlaylistModel model{{settings, files, database,
                         [](const std::wstring& path) { return L"target of " + path; },
                         [this](const std::wstring&, int limit) {
                             EXPECT_EQ(100, limit);
                             return series;
                         },
                         [](const std::wstring& left, const std::wstring& right) {
                             return left.compare(right);
                         }}};
};

} // namespace brindlecast::testing
