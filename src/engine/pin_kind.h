#pragma once

#include <string_view>

namespace brindlecast {

// What a splitter's pin carries is told by its name alone: a case-sensitive search. A name may hold both
// words.

[[nodiscard]] constexpr bool IsVideoPinName(std::wstring_view name) {
    return name.find(L"Video") != std::wstring_view::npos || name.find(L"video") != std::wstring_view::npos;
}

[[nodiscard]] constexpr bool IsAudioPinName(std::wstring_view name) {
    return name.find(L"Audio") != std::wstring_view::npos || name.find(L"audio") != std::wstring_view::npos;
}

} // namespace brindlecast
