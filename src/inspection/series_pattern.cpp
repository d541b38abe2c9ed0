#include "inspection/series_pattern.h"

#include "base/case_fold.h"

#include <algorithm>
#include <array>
#include <limits>

namespace brindlecast {

namespace {

// Values that tell a resolution.
constexpr std::array kResolutions = {480, 720, 1080, 2160, 4320, 576, 1440};
constexpr int kFirstYear = 1900;
constexpr int kLastYear = 2099;
constexpr std::size_t kShortestCode = 4;
// A number with fewer characters behind it stands near the end.
constexpr std::size_t kNearEnd = 30;

bool IsDigit(wchar_t unit) {
    return unit >= L'0' && unit <= L'9';
}

bool IsLetter(wchar_t unit) {
    return (unit >= L'A' && unit <= L'Z') || (unit >= L'a' && unit <= L'z');
}

bool IsCapital(wchar_t unit) {
    return unit >= L'A' && unit <= L'Z';
}

std::size_t EndOfDigits(std::wstring_view text, std::size_t from) {
    while (from < text.size() && IsDigit(text[from])) {
        ++from;
    }
    return from;
}

// Values beyond 32 bits count as the largest.
std::int32_t ValueOf(std::wstring_view digits) {
    constexpr std::int64_t kLargest = std::numeric_limits<std::int32_t>::max();
    std::int64_t value = 0;
    for (const wchar_t digit : digits) {
        value = std::min(value * 10 + (digit - L'0'), kLargest);
    }
    return static_cast<std::int32_t>(value);
}

struct CodeNumber {
    std::wstring_view prefix;
    std::wstring_view digits;
    std::wstring_view behind;
};

// Runs of letters and digits, joined by hyphens, of which the last is a number: ABC-123.
std::optional<CodeNumber> ParseCodeNumber(std::wstring_view stem) {
    if (stem.size() < kShortestCode) {
        return std::nullopt;
    }
    std::size_t runBegin = 0;
    for (std::size_t at = 0;; ++at) {
        const bool inRun = at < stem.size() && (IsLetter(stem[at]) || IsDigit(stem[at]));
        if (inRun) {
            continue;
        }
        if (at == runBegin) {
            return std::nullopt; // an empty run, also behind a hyphen at the very end
        }
        if (at < stem.size() && stem[at] == L'-') {
            runBegin = at + 1;
            continue;
        }
        if (runBegin == 0 || EndOfDigits(stem, runBegin) != at) {
            return std::nullopt;
        }
        return CodeNumber{stem.substr(0, runBegin), stem.substr(runBegin, at - runBegin), stem.substr(at)};
    }
}

// A capital behind a blank, a hyphen or an underscore, at the very end.
bool HasPartLetter(std::wstring_view text) {
    if (text.size() < 2 || !IsCapital(text.back())) {
        return false;
    }
    const wchar_t before = text[text.size() - 2];
    return before == L' ' || before == L'-' || before == L'_';
}

// With a part letter behind the number the number is fixed and the letter varies.
SeriesPattern PartLetterPattern(std::wstring_view prefix, std::wstring_view digits,
                                std::wstring_view behind) {
    std::wstring fixed(prefix);
    fixed += digits;
    fixed += behind.substr(0, behind.size() - 1);
    return {SeriesMode::Letter, fixed, {}};
}

// "ep" right before a place.
bool StandsBehindEp(std::wstring_view stem, std::size_t place) {
    return place >= 2 && ToLower(stem[place - 1]) == L'p' && ToLower(stem[place - 2]) == L'e';
}

// Years and what tells a resolution. The p of "ep" tells an episode.
bool IsNoEpisode(std::wstring_view stem, std::size_t begin, std::size_t end, std::int32_t value) {
    if (std::ranges::find(kResolutions, value) != kResolutions.end() ||
        (value >= kFirstYear && value <= kLastYear)) {
        return true;
    }
    const auto tellsResolution = [](wchar_t unit) {
        const wchar_t lower = ToLower(unit);
        return lower == L'p' || lower == L'k';
    };
    return (begin > 0 && tellsResolution(stem[begin - 1]) && !StandsBehindEp(stem, begin)) ||
           (end < stem.size() && tellsResolution(stem[end]));
}

std::int32_t ScoreOf(std::wstring_view stem, std::size_t begin, std::size_t end, std::int32_t value) {
    std::int32_t score = 100;
    const wchar_t before = begin > 0 ? ToLower(stem[begin - 1]) : L'\0';
    const wchar_t behind = end < stem.size() ? stem[end] : L'\0';
    if (before == L'e' || before == L'#') {
        score = 10;
    }
    if (StandsBehindEp(stem, begin)) {
        score = 5;
    }
    if ((before == L'[' && behind == L']') || (before == L'(' && behind == L')')) {
        score = 15;
    }
    if (value >= 1 && value <= 99) {
        score -= 5;
    } else if (value >= 100 && value <= 999) {
        score -= 2;
    }
    if (stem.size() - end < kNearEnd) {
        score -= 3;
    }
    return score;
}

} // namespace

std::optional<NumberToken> FindEpisodeNumber(std::wstring_view stem) {
    std::optional<NumberToken> best;
    for (std::size_t at = 0; at < stem.size();) {
        if (!IsDigit(stem[at])) {
            ++at;
            continue;
        }
        const std::size_t end = EndOfDigits(stem, at);
        const std::int32_t value = ValueOf(stem.substr(at, end - at));
        if (!IsNoEpisode(stem, at, end, value)) {
            const NumberToken token{at, end, value, ScoreOf(stem, at, end, value)};
            if (!best || token.score < best->score) {
                best = token;
            }
        }
        at = end;
    }
    return best;
}

std::optional<SeriesPattern> FindSeriesPattern(std::wstring_view stem) {
    if (const auto code = ParseCodeNumber(stem)) {
        if (HasPartLetter(code->behind)) {
            return PartLetterPattern(code->prefix, code->digits, code->behind);
        }
        return SeriesPattern{SeriesMode::CodeNumber, std::wstring(code->prefix), {}};
    }
    if (const auto token = FindEpisodeNumber(stem)) {
        const std::wstring_view prefix = stem.substr(0, token->begin);
        const std::wstring_view suffix = stem.substr(token->end);
        if (HasPartLetter(suffix)) {
            return PartLetterPattern(prefix, stem.substr(token->begin, token->end - token->begin), suffix);
        }
        return SeriesPattern{SeriesMode::EpisodeNumber, std::wstring(prefix), std::wstring(suffix)};
    }
    if (HasPartLetter(stem)) {
        return SeriesPattern{SeriesMode::Letter, std::wstring(stem.substr(0, stem.size() - 1)), {}};
    }
    return std::nullopt;
}

std::optional<std::int32_t> PlaceInSeries(const SeriesPattern& pattern, std::wstring_view stem) {
    if (!stem.starts_with(pattern.prefix)) {
        return std::nullopt;
    }
    const std::wstring_view rest = stem.substr(pattern.prefix.size());
    const std::size_t digits = EndOfDigits(rest, 0);
    switch (pattern.mode) {
    case SeriesMode::Letter:
        return rest.size() == 1 && IsCapital(rest[0]) ? std::optional<std::int32_t>(rest[0]) : std::nullopt;
    case SeriesMode::CodeNumber:
        if (digits == 0 || (digits < rest.size() && IsLetter(rest[digits]))) {
            return std::nullopt;
        }
        return ValueOf(rest.substr(0, digits));
    case SeriesMode::EpisodeNumber: {
        if (rest.size() <= pattern.suffix.size() || !rest.ends_with(pattern.suffix)) {
            return std::nullopt;
        }
        const std::wstring_view number = rest.substr(0, rest.size() - pattern.suffix.size());
        return EndOfDigits(number, 0) == number.size() ? std::optional(ValueOf(number)) : std::nullopt;
    }
    }
    return std::nullopt;
}

} // namespace brindlecast
