#include "library/playlist_format.h"

#include "base/text.h"

#include <algorithm>
#include <cmath>

namespace brindlecast {

namespace {

constexpr std::uint64_t kKilobyte = 1024;
constexpr std::uint64_t kMegabyte = kKilobyte * 1024;
constexpr std::uint64_t kGigabyte = kMegabyte * 1024;
constexpr double kSecondsPerHour = 3600.0;
constexpr double kSecondsPerMinute = 60.0;
// More than any file lasts, and still a whole number.
constexpr double kMostSeconds = 2'000'000'000.0;
constexpr int kYearsPerCentury = 100;

} // namespace

std::wstring FormatFileSize(std::uint64_t bytes) {
    if (bytes < kKilobyte) {
        return FormatText(L"%llu B", bytes);
    }
    const auto size = static_cast<double>(bytes);
    if (bytes < kMegabyte) {
        return FormatText(L"%.1f KB", size / static_cast<double>(kKilobyte));
    }
    if (bytes < kGigabyte) {
        return FormatText(L"%.1f MB", size / static_cast<double>(kMegabyte));
    }
    return FormatText(L"%.1f GB", size / static_cast<double>(kGigabyte));
}

std::wstring FormatDuration(double seconds) {
    // Written so that not-a-number is unknown too.
    if (!(seconds > 0.0)) {
        return L"--:--";
    }
    const double length = std::min(seconds, kMostSeconds);
    const int hours = static_cast<int>(length / kSecondsPerHour);
    const int minutes = static_cast<int>(std::fmod(length, kSecondsPerHour) / kSecondsPerMinute);
    const int rest = static_cast<int>(std::fmod(length, kSecondsPerMinute));
    return hours < 1 ? FormatText(L"%d:%02d", minutes, rest)
                     : FormatText(L"%d:%02d:%02d", hours, minutes, rest);
}

std::wstring FormatFileDate(FileTime time) {
    const CalendarDay date = DayOf(time);
    return FormatText(L"%02d/%02d/%02d", date.year % kYearsPerCentury, date.month, date.day);
}

std::wstring FormatCodecInfo(const std::wstring& videoCodec, const std::wstring& audioCodec) {
    return audioCodec.empty() ? videoCodec : videoCodec + L"/" + audioCodec;
}

} // namespace brindlecast
