#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace brindlecast {

// What varies among the names of a series.
enum class SeriesMode { CodeNumber, EpisodeNumber, Letter };

// The fixed parts of a series' names, without extension, and what varies between them. `suffix` belongs to
// EpisodeNumber alone.
struct SeriesPattern {
    SeriesMode mode = SeriesMode::Letter;
    std::wstring prefix;
    std::wstring suffix;
    bool operator==(const SeriesPattern&) const = default;
};

// A run of digits that may be the episode's number. Lower scores are better.
struct NumberToken {
    std::size_t begin = 0;
    std::size_t end = 0; // one behind the last digit
    std::int32_t number = 0;
    std::int32_t score = 0;
    bool operator==(const NumberToken&) const = default;
};

// The best number of a name without its extension; years, resolutions and the like don't count.
[[nodiscard]] std::optional<NumberToken> FindEpisodeNumber(std::wstring_view stem);

// What varies in a name without its extension; nothing when it belongs to no series.
[[nodiscard]] std::optional<SeriesPattern> FindSeriesPattern(std::wstring_view stem);

// The place in the series of another name without its extension; nothing when it does not belong to it.
// Compared exactly: case counts.
[[nodiscard]] std::optional<std::int32_t> PlaceInSeries(const SeriesPattern& pattern, std::wstring_view stem);

} // namespace brindlecast
