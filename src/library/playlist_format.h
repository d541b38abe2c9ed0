#pragma once

#include "base/file_time.h"

#include <cstdint>
#include <string>

namespace brindlecast {

// "1023 B", "1.0 KB", "1.0 MB", "1.0 GB", by powers of 1024.
[[nodiscard]] std::wstring FormatFileSize(std::uint64_t bytes);

// "0:59" or "1:00:00", cut to whole seconds; "--:--" for 0 or less.
[[nodiscard]] std::wstring FormatDuration(double seconds);

// The day of the time in UTC, "26/11/14".
[[nodiscard]] std::wstring FormatFileDate(FileTime time);

// "H264/AAC", or the video codec alone when there is no sound.
[[nodiscard]] std::wstring FormatCodecInfo(const std::wstring& videoCodec, const std::wstring& audioCodec);

} // namespace brindlecast
