#include "base/case_fold.h"
#include "base/paths.h"
#include "library/playlist_model.h"
#include "tests/support/fake_settings_store.h"
#include "tests/support/library_fixture.h"

#include <algorithm>
#include <random>
#include <set>

namespace brindlecast::testing {
namespace {

using Paths = std::vector<std::wstring>;

// The list done the slow and plain way, step by step. Every path is one string, told from others by its
// lower-cased form.
struct Reference {
    Paths paths;
    std::wstring search;
    int current = -1;

    [[nodiscard]] int Count() const { return static_cast<int>(paths.size()); }
    [[nodiscard]] std::vector<int> View() const {
        std::vector<int> view;
        for (int i = 0; i < Count(); ++i) {
            const std::wstring name(FileNameOf(paths[static_cast<std::size_t>(i)]));
            if (ToLower(name).find(ToLower(search)) != std::wstring::npos) {
                view.push_back(i);
            }
        }
        return view;
    }
    [[nodiscard]] int Find(const std::wstring& path) const {
        for (int i = 0; i < Count(); ++i) {
            if (ToLower(paths[static_cast<std::size_t>(i)]) == ToLower(path)) {
                return i;
            }
        }
        return -1;
    }
    [[nodiscard]] std::wstring CurrentPath() const {
        return current >= 0 && current < Count() ? paths[static_cast<std::size_t>(current)] : std::wstring();
    }
    void Recall(const std::wstring& path) {
        if (!path.empty()) {
            current = Find(path);
        }
    }
    void RemoveIndex(int index) {
        if (index == current) {
            current = -1;
        } else if (current > index) {
            --current;
        }
        paths.erase(paths.begin() + index);
    }
    void RemoveRows(const std::vector<int>& rows) {
        const std::vector<int> view = View();
        std::set<int, std::greater<>> indices;
        for (const int row : rows) {
            if (row >= 0 && row < static_cast<int>(view.size())) {
                indices.insert(view[static_cast<std::size_t>(row)]);
            }
        }
        for (const int index : indices) {
            RemoveIndex(index);
        }
    }
    void RemoveDuplicates() {
        if (paths.empty()) {
            return;
        }
        const std::wstring remembered = CurrentPath();
        Paths kept;
        std::set<std::wstring> seen;
        for (const std::wstring& path : paths) {
            if (seen.insert(ToLower(path)).second) {
                kept.push_back(path);
            }
        }
        paths = kept;
        current = -1;
        Recall(remembered);
    }
    void Move(int from, int to) {
        if (from < 0 || to < 0 || from >= Count() || to >= Count() || from == to) {
            return;
        }
        const std::wstring path = paths[static_cast<std::size_t>(from)];
        paths.erase(paths.begin() + from);
        paths.insert(paths.begin() + to, path);
        if (current == from) {
            current = to;
        } else if (from < to && current > from && current <= to) {
            --current;
        } else if (from > to && current >= to && current < from) {
            ++current;
        }
    }
    int Reorder(std::vector<int> rows, int drop) {
        if (rows.empty() || drop < 0 || Count() < 2) {
            return -1;
        }
        std::ranges::sort(rows);
        bool adjacent = true;
        for (std::size_t i = 1; i < rows.size(); ++i) {
            adjacent = adjacent && rows[i] == rows[i - 1] + 1;
        }
        if (drop > rows.front() && drop <= rows.back() + 1 && adjacent) {
            return -1;
        }
        std::vector<int> indices;
        for (const int row : rows) {
            if (row >= 0 && row < Count()) {
                indices.push_back(row);
            }
        }
        if (indices.empty()) {
            return -1;
        }
        const std::wstring remembered = CurrentPath();
        Paths block;
        for (const int index : indices) {
            block.push_back(paths[static_cast<std::size_t>(index)]);
        }
        const int target = std::min(drop, Count());
        const auto below = std::ranges::count_if(indices, [&](int index) { return index < target; });
        for (auto index = indices.rbegin(); index != indices.rend(); ++index) {
            paths.erase(paths.begin() + *index);
        }
        const int insertion = std::clamp(target - static_cast<int>(below), 0, Count());
        paths.insert(paths.begin() + insertion, block.begin(), block.end());
        Recall(remembered);
        return insertion;
    }
};

class PlaylistModelProperty : public LibraryTest {
protected:
    [[nodiscard]] int Random(int below) { return static_cast<int>(random() % static_cast<unsigned>(below)); }
    // Few names, in both cases, so that there are duplicates.
    [[nodiscard]] std::wstring RandomPath() {
        std::wstring path = L"C:\\영화\\";
        path += static_cast<wchar_t>((Random(2) == 0 ? L'a' : L'A') + Random(20));
        path += Random(3) == 0 ? L" 한글.mkv" : L".mkv";
        return path;
    }
    [[nodiscard]] std::vector<int> RandomRows() {
        std::set<int> rows;
        for (int i = Random(5); i >= 0; --i) {
            rows.insert(Random(model.RowCount() + 2) - 1);
        }
        return {rows.begin(), rows.end()};
    }
    void Compare(int step, int operation) {
        Paths paths;
        for (const PlaylistItem& item : model.items) {
            paths.push_back(item.file_path);
        }
        ASSERT_EQ(reference.paths, paths) << "step " << step << " operation " << operation;
        ASSERT_EQ(reference.current, model.currentIndex) << "step " << step << " operation " << operation;
        ASSERT_EQ(reference.View(),
                  std::vector<int>(model.filteredIndices.begin(), model.filteredIndices.end()))
            << "step " << step << " operation " << operation;
    }
    void Step(int operation);

    std::mt19937 random{20261121};
    FakeSettingsStore settings;
    FakeFileMetadata files;
    PlaylistDatabase database{clock, DataFolder()}; // never opened: the table is another test's
    Paths series;
    PlaylistModel model{{settings, files, database, [](const std::wstring& path) { return path; },
                         [this](const std::wstring&, int) { return series; },
                         [](const std::wstring& left, const std::wstring& right) {
                             return left.compare(right);
                         }}};
    Reference reference;
};

void PlaylistModelProperty::Step(int operation) {
    switch (operation) {
    case 0:
    case 1:
    case 2: {
        const std::wstring path = RandomPath();
        model.AddFile(path);
        model.RebuildView();
        reference.paths.push_back(path);
        break;
    }
    case 3: {
        const std::vector<int> rows = RandomRows();
        static_cast<void>(model.RemoveRows(rows));
        reference.RemoveRows(rows);
        break;
    }
    case 4: {
        const int from = Random(reference.Count() + 2) - 1;
        const int to = Random(reference.Count() + 2) - 1;
        model.MoveItem(from, to);
        model.RebuildView();
        reference.Move(from, to);
        break;
    }
    case 5: {
        const int row = Random(model.RowCount() + 2) - 1;
        const std::vector<int> view = reference.View();
        const bool up = Random(2) == 0;
        const int other = up ? row - 1 : row + 1;
        const bool moved = (up ? model.MoveRowUp(row) : model.MoveRowDown(row)) >= 0;
        const auto exists = [&](int each) {
            return each >= 0 && each < static_cast<int>(view.size());
        };
        ASSERT_EQ(exists(row) && exists(other), moved);
        if (moved) {
            std::swap(reference.paths[static_cast<std::size_t>(view[static_cast<std::size_t>(row)])],
                      reference.paths[static_cast<std::size_t>(view[static_cast<std::size_t>(other)])]);
        }
        break;
    }
    case 6:
        model.RemoveDuplicates();
        reference.RemoveDuplicates();
        break;
    case 7: {
        model.ChooseColumn(PlaylistColumn::Name);
        if (reference.Count() > 0) {
            // The order among equal names is left open, so it is taken over.
            const std::wstring remembered = reference.CurrentPath();
            Paths sorted;
            for (const PlaylistItem& item : model.items) {
                sorted.push_back(item.file_path);
            }
            ASSERT_TRUE(std::ranges::is_permutation(sorted, reference.paths));
            ASSERT_TRUE(model.sortAscending ? std::ranges::is_sorted(sorted)
                                            : std::ranges::is_sorted(sorted, std::greater<>()));
            reference.paths = sorted;
            reference.Recall(remembered);
        }
        break;
    }
    case 8: {
        model.searchText.clear();
        model.RebuildView();
        reference.search.clear();
        const std::vector<int> rows = RandomRows();
        const int drop = Random(reference.Count() + 3) - 1;
        ASSERT_EQ(reference.Reorder(rows, drop), model.ReorderRows(rows, drop));
        break;
    }
    case 9: {
        const wchar_t* const texts[] = {L"", L"", L"A", L"글", L".mkv", L"nothing"};
        model.searchText = texts[Random(6)];
        model.RebuildView();
        reference.search = model.searchText;
        break;
    }
    case 10: {
        const int next =
            reference.current >= 0 && reference.current < reference.Count() - 1 ? reference.current + 1 : -1;
        ASSERT_EQ(next >= 0, model.HasNext());
        const std::wstring path = model.AdvanceCurrent();
        if (next >= 0) {
            reference.current = next;
            ASSERT_EQ(reference.CurrentPath(), path);
        } else {
            ASSERT_TRUE(path.empty());
        }
        break;
    }
    case 11:
        model.currentIndex = reference.current = reference.Count() > 0 ? Random(reference.Count()) : -1;
        break;
    case 12:
        if (Random(40) == 0) {
            series.clear();
            for (int i = Random(6); i > 0; --i) {
                series.push_back(RandomPath());
            }
            const std::wstring path = RandomPath();
            model.ReplaceWithSeries(path);
            reference.paths = series;
            reference.current = reference.Find(path);
        }
        break;
    default: break;
    }
}

TEST_F(PlaylistModelProperty, AHundredThousandOperationsGiveWhatThePlainListGives) {
    for (int step = 0; step < 100'000; ++step) {
        // A list that has grown long is emptied, so that the plain way stays quick.
        const int operation = reference.Count() > 60 ? 3 : Random(13);
        Step(operation);
        Compare(step, operation);
        if (HasFatalFailure()) {
            return;
        }
    }
}

} // namespace
} // namespace brindlecast::testing
