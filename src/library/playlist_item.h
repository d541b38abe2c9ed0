#pragma once

#include "base/file_time.h"

#include <cstdint>
#include <string>

namespace brindlecast {

// One entry of the play list.
struct PlaylistItem {
    std::int32_t id = 0;         // row id when it came from the table, 0 when it was made in this run
    std::wstring file_path;      // full path
    std::wstring file_name;      // its last component
    std::uint64_t file_size = 0; // bytes
    double duration = 0;         // seconds; 0 or less is unknown
    FileTime file_date = 0;      // last write
    std::wstring codec_info;     // video and audio codec, or empty
    std::int32_t sort_order = 0; // place in the list when it was last added or written
    bool operator==(const PlaylistItem&) const = default;
};

} // namespace brindlecast
