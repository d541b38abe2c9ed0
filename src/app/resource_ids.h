#pragma once

// Numbers of the program's resources; read by the resource compiler as well.
#ifdef RC_INVOKED
#define ID_ICON_LARGE 107
#define ID_ICON_SMALL 108
#else
namespace brindlecast {
inline constexpr int kIconLarge = 107;
inline constexpr int kIconSmall = 108;
} // namespace brindlecast
#endif
