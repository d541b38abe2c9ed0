#include "subtitles/subtitle_type.h"

#include "base/case_fold.h"

#include <array>

namespace brindlecast {

namespace {

struct ExtensionType {
    std::wstring_view extension;
    SubtitleType type;
};

constexpr auto kExtensionTypes = std::to_array<ExtensionType>({
    {L"srt", SubtitleType::SubRip},
    {L"ass", SubtitleType::Ass},
    {L"ssa", SubtitleType::Ssa},
    {L"sub", SubtitleType::Sub},
    {L"smi", SubtitleType::Sami},
    {L"sami", SubtitleType::Sami},
    {L"vtt", SubtitleType::WebVtt},
});

} // namespace

SubtitleType SubtitleTypeOf(std::wstring_view path) {
    const std::size_t point = path.rfind(L'.');
    if (point == std::wstring_view::npos) {
        return SubtitleType::Unknown;
    }
    for (const ExtensionType& row : kExtensionTypes) {
        if (EqualIgnoringCase(path.substr(point + 1), row.extension)) {
            return row.type;
        }
    }
    return SubtitleType::Unknown;
}

} // namespace brindlecast
