#include "inspection/series_finder.h"
#include "library/playlist_model.h"
#include "tests/support/fake_settings_store.h"
#include "tests/support/library_fakes.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

namespace brindlecast {
namespace {

using testing::FakeClock;
using testing::FakeFileMetadata;
using testing::FakeFolder;
using testing::FakeSettingsStore;

constexpr int kLongList = 100'000;
constexpr int kLargeFolder = 10'000;
constexpr int kRewrittenRows = 100;

// A list of that length without a table, or with one in a folder of its own.
class List {
public:
    explicit List(int count, bool withTable = false) {
        if (withTable) {
            std::filesystem::remove_all(folder);
            std::filesystem::create_directories(folder);
            database.Open();
        }
        for (int i = 0; i < count; ++i) {
            model.AddFile(L"C:\\영화\\긴 목록\\Episode " + std::to_wstring(i * 7919 % count) +
                          L" 한글 제목.mkv");
        }
        model.RebuildView();
    }
    ~List() { std::filesystem::remove_all(folder); }
    List(const List&) = delete;
    List& operator=(const List&) = delete;

    std::filesystem::path folder = std::filesystem::temp_directory_path() / "brindlecast_bench";
    FakeClock clock;
    FakeSettingsStore settings;
    FakeFileMetadata files;
    PlaylistDatabase database{clock, [this] {
                                  const std::string name = folder.string();
                                  return std::optional(std::wstring(name.begin(), name.end()));
                              }};
    PlaylistModel model{{settings,
                         files,
                         database,
                         [](const std::wstring& path) { return path; },
                         {},
                         [](const std::wstring& left, const std::wstring& right) {
                             return left.compare(right);
                         }}};
};

void FindByPath(benchmark::State& state) {
    const List list(kLongList);
    const std::wstring last = list.model.items.back().file_path;
    for (auto _ : state) {
        benchmark::DoNotOptimize(list.model.FindByPath(last));
    }
}
BENCHMARK(FindByPath)->Name("FindByPath, the last of 100,000")->Unit(benchmark::kMillisecond);

void RebuildView(benchmark::State& state) {
    List list(kLongList);
    const std::wstring typed = L"한글 제";
    std::size_t length = 0;
    for (auto _ : state) {
        length = length % typed.size() + 1;
        list.model.searchText = typed.substr(0, length);
        list.model.RebuildView();
    }
}
BENCHMARK(RebuildView)->Name("RebuildView, one key of a search in 100,000")->Unit(benchmark::kMillisecond);

void SortBy(benchmark::State& state) {
    List list(kLongList);
    for (auto _ : state) {
        list.model.ChooseColumn(PlaylistColumn::Name);
    }
}
BENCHMARK(SortBy)->Name("SortBy name, 100,000")->Unit(benchmark::kMillisecond);

void RemoveRows(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        List list(kLongList);
        std::vector<int> rows;
        for (int row = 0; row < kLongList; row += 2) {
            rows.push_back(row);
        }
        state.ResumeTiming();
        benchmark::DoNotOptimize(list.model.RemoveRows(rows));
    }
}
BENCHMARK(RemoveRows)
    ->Name("RemoveRows, every second of 100,000")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);

void ReorderRows(benchmark::State& state) {
    List list(kLongList);
    for (auto _ : state) {
        benchmark::DoNotOptimize(list.model.ReorderRows({1, 3, 5, 90'000}, 50'000));
    }
}
BENCHMARK(ReorderRows)->Name("ReorderRows, 4 of 100,000")->Unit(benchmark::kMillisecond);

void FindSeries(benchmark::State& state) {
    FakeFolder folder;
    for (int i = 0; i < kLargeFolder; ++i) {
        // One in a hundred belongs to the series.
        folder.entries.push_back(
            {(i % 100 == 0 ? L"Show - " : L"Other - ") + std::to_wstring(i) + L" [1080p].mkv"});
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(FindSeriesFiles(folder, L"C:\\영화\\Show - 100 [1080p].mkv", 100));
    }
}
BENCHMARK(FindSeries)->Name("FindSeriesFiles, 10,000 names")->Unit(benchmark::kMillisecond);

void RewriteTable(benchmark::State& state) {
    List list(kRewrittenRows, true);
    for (auto _ : state) {
        list.model.SyncToDatabase();
    }
}
BENCHMARK(RewriteTable)->Name("SyncToDatabase, 100 rows")->Unit(benchmark::kMillisecond)->UseRealTime();

void LoadTable(benchmark::State& state) {
    List list(kLongList, true);
    sqlite3_exec(list.database.Connection(), "BEGIN;", nullptr, nullptr, nullptr);
    list.model.SyncToDatabase();
    sqlite3_exec(list.database.Connection(), "COMMIT;", nullptr, nullptr, nullptr);
    for (auto _ : state) {
        benchmark::DoNotOptimize(list.database.LoadItems());
    }
}
BENCHMARK(LoadTable)->Name("LoadItems, 100,000 rows")->Unit(benchmark::kMillisecond);

} // namespace
} // namespace brindlecast

BENCHMARK_MAIN();
