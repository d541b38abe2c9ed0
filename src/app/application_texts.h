#pragma once

namespace brindlecast::texts {

inline constexpr const wchar_t* kErrorCaption = L"오류";
inline constexpr const wchar_t* kComFailed = L"COM 초기화 실패";
inline constexpr const wchar_t* kGdiplusFailed = L"GDI+ 초기화 실패";
inline constexpr const wchar_t* kMainWindowFailed = L"메인 윈도우 생성 실패";

} // namespace brindlecast::texts
