#pragma once

namespace brindlecast::texts {

// Width and height of the video area.
inline constexpr const wchar_t* kVideoSize = L"%d × %d";

} // namespace brindlecast::texts
