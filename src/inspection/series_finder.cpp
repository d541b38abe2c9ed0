#include "inspection/series_finder.h"

#include "base/case_fold.h"
#include "base/paths.h"
#include "inspection/media_extensions.h"
#include "inspection/series_pattern.h"

#include <algorithm>
#include <optional>

namespace brindlecast {

namespace {

constexpr std::size_t kMostFiles = 100;

struct SeriesCandidate {
    std::wstring path;
    std::int32_t order = 0;
};

// The name without its extension, if it has one that counts as media.
std::optional<std::wstring_view> MediaStem(std::wstring_view name) {
    const std::size_t point = name.rfind(L'.');
    if (point == std::wstring_view::npos || !IsMediaExtension(ToLower(name.substr(point)))) {
        return std::nullopt;
    }
    return name.substr(0, point);
}

} // namespace

std::vector<std::wstring> FindSeriesFiles(const FolderEnumerator& folders, const std::wstring& path,
                                          int /*limit*/) {
    const std::size_t separator = LastSeparator(path);
    if (separator == std::wstring::npos) {
        return {};
    }
    const auto stem = MediaStem(FileNameOf(path));
    if (!stem) {
        return {};
    }
    const auto pattern = FindSeriesPattern(*stem);
    if (!pattern) {
        return {path};
    }
    const std::wstring folder = path.substr(0, separator + 1);
    std::vector<SeriesCandidate> found;
    const bool read = folders.Enumerate(folder, [&](std::wstring_view name, bool isFolder) {
        const auto other = isFolder ? std::nullopt : MediaStem(name);
        const auto order = other ? PlaceInSeries(*pattern, *other) : std::nullopt;
        if (order) {
            found.push_back({folder + std::wstring(name), *order});
        }
        return found.size() < kMostFiles;
    });
    if (!read) {
        return {};
    }
    std::ranges::sort(found, {}, &SeriesCandidate::order);
    std::vector<std::wstring> paths;
    for (SeriesCandidate& candidate : found) {
        paths.push_back(std::move(candidate.path));
    }
    return paths;
}

} // namespace brindlecast
