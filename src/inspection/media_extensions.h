#pragma once

#include <algorithm>
#include <array>
#include <string_view>

namespace brindlecast {

// The file extensions that count as media when a folder is looked through, in lower case with the leading
// point. The open dialog and the drop handler have their own rules.
inline constexpr std::array kMediaExtensions = [] {
    std::array extensions = std::to_array<std::wstring_view>({
        L".mp4",  L".mkv",  L".avi",  L".mov", L".wmv",  L".flv",  L".webm", L".m4v", L".f4v",
        L".ts",   L".m2ts", L".mts",  L".mpg", L".mpeg", L".vob",  L".3gp",  L".3g2", L".wtv",
        L".bdmv", L".mpls", L".iso",  L".ifo", L".mp3",  L".flac", L".wav",  L".aac", L".ogg",
        L".wma",  L".m4a",  L".opus", L".ape", L".wv",   L".tta",  L".tak",  L".dsf", L".dff",
        L".divx", L".xvid", L".rmvb", L".rm",  L".asf",  L".ogv",  L".ogm",
    });
    std::ranges::sort(extensions);
    return extensions;
}();

// `extension` must be in lower case with its leading point.
[[nodiscard]] constexpr bool IsMediaExtension(std::wstring_view extension) {
    return std::ranges::binary_search(kMediaExtensions, extension);
}

} // namespace brindlecast
