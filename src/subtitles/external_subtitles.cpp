#include "subtitles/external_subtitles.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace brindlecast {

namespace {

constexpr std::array<std::wstring_view, 6> kExtensions = {L".srt", L".ass", L".ssa",
                                                          L".sub", L".smi", L".vtt"};
// The empty tag first: the plain name comes before every language.
constexpr std::array<std::wstring_view, 11> kLanguageTags = {
    L"", L".ko", L".en", L".jp", L".ja", L".cn", L".zh", L".korean", L".english", L".japanese", L".chinese"};

} // namespace

std::vector<std::wstring> FindExternalSubtitles(const wchar_t* mediaPath, const PathExists& exists) {
    std::vector<std::wstring> found;
    if (mediaPath == nullptr) {
        return found;
    }
    // The last point of the whole path: without an extension it may stand in a folder's name, and the
    // candidates then lie beside that folder.
    std::wstring base = mediaPath;
    base.resize(std::min(base.size(), base.rfind(L'.')));
    for (const std::wstring_view extension : kExtensions) {
        for (const std::wstring_view tag : kLanguageTags) {
            std::wstring candidate = base;
            candidate.append(tag).append(extension);
            if (exists(candidate)) {
                found.push_back(std::move(candidate));
            }
        }
    }
    return found;
}

} // namespace brindlecast
