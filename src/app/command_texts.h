#pragma once

#include <cstddef>

namespace brindlecast::texts {

// On-screen messages of commands and messages.
inline constexpr const wchar_t* kVolume = L"볼륨 %d%%";
inline constexpr const wchar_t* kMuted = L"음소거";
inline constexpr const wchar_t* kUnmuted = L"음소거 해제";
inline constexpr const wchar_t* kRotation = L"회전 %d°";
inline constexpr const wchar_t* kFlippedHorizontally = L"좌우 반전";
inline constexpr const wchar_t* kNotFlippedHorizontally = L"좌우 반전 해제";
inline constexpr const wchar_t* kFlippedVertically = L"상하 반전";
inline constexpr const wchar_t* kNotFlippedVertically = L"상하 반전 해제";
inline constexpr const wchar_t* kRate = L"%.2fx";
inline constexpr const wchar_t* kPositionWithHours = L"%d:%02d:%02d";
inline constexpr const wchar_t* kPosition = L"%02d:%02d";
inline constexpr const wchar_t* kMarkASet = L"A 지점 설정";
inline constexpr const wchar_t* kMarkACleared = L"A 지점 해제";
inline constexpr const wchar_t* kMarkBSet = L"B 지점 설정";
inline constexpr const wchar_t* kMarkBSetFromStart = L"처음 → B 구간 설정";
inline constexpr const wchar_t* kMarkBCleared = L"B 지점 해제";
inline constexpr const wchar_t* kMarksCleared = L"구간 반복 해제";
inline constexpr const wchar_t* kSubtitleDelay = L"자막 딜레이 %+.1f초";
inline constexpr const wchar_t* kSubtitleDelayReset = L"자막 딜레이 초기화";
inline constexpr const wchar_t* kSubtitlesOn = L"자막 켜기";
inline constexpr const wchar_t* kSubtitlesOff = L"자막 끄기";
inline constexpr const wchar_t* kCompressionOn = L"DRC ON";
inline constexpr const wchar_t* kCompressionOff = L"DRC OFF";
inline constexpr const wchar_t* kSubtitleTrack = L"자막: %s";
inline constexpr const wchar_t* kAudioTrack = L"오디오: %s";
inline constexpr const wchar_t* kFullScreen = L"전체화면";
inline constexpr const wchar_t* kNotFullScreen = L"전체화면 해제";

// Room for a text with its terminator, in characters: a longer one ends the process.
inline constexpr std::size_t kShortTextCapacity = 32;    // volume, rotation, rate
inline constexpr std::size_t kPositionTextCapacity = 64; // position, size, subtitle delay
inline constexpr std::size_t kTrackTextCapacity = 128;
inline constexpr std::size_t kRecentFileCapacity = 270;

// What plays.
inline constexpr const wchar_t* kPlaying = L"재생";
inline constexpr const wchar_t* kPaused = L"일시정지";
inline constexpr const wchar_t* kStopped = L"정지";
inline constexpr const wchar_t* kRepeatsToEnd = L"A → 끝 반복";
inline constexpr const wchar_t* kScreenshotSaved = L"스크린샷 저장됨";

// Boxes.
inline constexpr const wchar_t* kFileMissing = L"파일을 찾을 수 없습니다.";
inline constexpr const wchar_t* kFileMissingCaption = L"오류";
inline constexpr const wchar_t* kAbout = L"Brindlecast\nVersion 1.0";
inline constexpr const wchar_t* kAboutCaption = L"About Brindlecast";

// The menu of recent files.
inline constexpr const wchar_t* kNoRecentFiles = L"(없음)";
inline constexpr const wchar_t* kRecentFile = L"&%d. %s";
inline constexpr const wchar_t* kClearRecentFiles = L"목록 지우기";

} // namespace brindlecast::texts
