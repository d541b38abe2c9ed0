#include "filters/splitter/splitter_text.h"

#include <algorithm>
#include <objbase.h>

namespace brindlecast {

std::string Utf8(const std::wstring& text) {
    const int length = static_cast<int>(text.size());
    const int needed = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(std::max(needed, 0)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, utf8.data(), needed, nullptr, nullptr);
    return utf8;
}

std::wstring Wide(const std::string& utf8) {
    const int length = static_cast<int>(utf8.size());
    const int needed = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, nullptr, 0);
    std::wstring text(static_cast<std::size_t>(std::max(needed, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, text.data(), needed);
    return text;
}

HRESULT TaskMemString(const std::wstring& text, LPWSTR* target) {
    if (target == nullptr) {
        return E_POINTER;
    }
    *target = static_cast<LPWSTR>(CoTaskMemAlloc((text.size() + 1) * sizeof(wchar_t)));
    if (*target == nullptr) {
        return E_OUTOFMEMORY;
    }
    std::copy_n(text.c_str(), text.size() + 1, *target);
    return S_OK;
}

} // namespace brindlecast
