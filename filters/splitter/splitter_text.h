#pragma once

#include <string>
#include <windows.h>

namespace brindlecast {

[[nodiscard]] std::string Utf8(const std::wstring& text);
[[nodiscard]] std::wstring Wide(const std::string& utf8);
// A copy from CoTaskMemAlloc. A null target is E_POINTER.
[[nodiscard]] HRESULT TaskMemString(const std::wstring& text, LPWSTR* target);

} // namespace brindlecast
