#include "engine/embedded_subtitle_rules.h"

#include "base/text.h"

#include <algorithm>
#include <array>
#include <span>

namespace brindlecast {

namespace {

constexpr std::array<std::wstring_view, 6> kPictureWordsOfTool = {L"pgs",  L"PGS",    L"hdmv",
                                                                  L"HDMV", L"dvdsub", L"dvd_subtitle"};
constexpr std::array<std::wstring_view, 4> kPictureWordsOfGrabber = {L"pgs", L"PGS", L"hdmv", L"dvdsub"};
constexpr std::array<std::wstring_view, 4> kAssWords = {L"ass", L"ASS", L"ssa", L"SSA"};

bool HasAnyOf(std::wstring_view name, std::span<const std::wstring_view> words) {
    return std::ranges::any_of(
        words, [name](std::wstring_view word) { return name.find(word) != std::wstring_view::npos; });
}

} // namespace

bool IsPictureTrackForTool(std::wstring_view name) {
    return HasAnyOf(name, kPictureWordsOfTool);
}

bool IsPictureTrackForGrabber(std::wstring_view name) {
    return HasAnyOf(name, kPictureWordsOfGrabber);
}

bool IsAssTrack(std::wstring_view name) {
    return HasAnyOf(name, kAssWords);
}

std::wstring ExtractedFileName(std::wstring_view trackName) {
    return std::wstring(L"Brindlecast_embedded_sub") + (IsAssTrack(trackName) ? L".ass" : L".srt");
}

std::wstring ExtractionCommandLine(const std::wstring& tool, const std::wstring& film, int ordinal,
                                   const std::wstring& target) {
    return FormatText(L"\"%s\" -y -i \"%s\" -map 0:s:%d -c:s copy \"%s\"", tool, film, ordinal, target);
}

} // namespace brindlecast
