#pragma once

#include <string>
#include <string_view>

namespace brindlecast {

// A moment of the local time.
struct LocalTime {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

// The file name of a screenshot of that file: "Film_20261121_201502.png". The extension is that of PNG
// whatever the format; a path without separator gives no name of its own.
[[nodiscard]] std::wstring ScreenshotName(std::wstring_view filePath, const LocalTime& time);

} // namespace brindlecast
