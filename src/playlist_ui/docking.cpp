#include "playlist_ui/docking.h"

#include <cstdlib>

namespace brindlecast {

namespace {

// Sums and differences of coordinates may leave the range of int.
using Wide = std::int64_t;

bool AreNear(int one, int other, int limit) {
    return std::abs(Wide{one} - Wide{other}) < limit;
}

} // namespace

DockPlace PlaceBeside(const Rect& mainWindow, const Rect& workArea, int width) {
    int left = workArea.left;
    DockSide side = DockSide::None;
    if (Wide{mainWindow.right} + width <= workArea.right) {
        left = mainWindow.right;
        side = DockSide::Right;
    } else if (Wide{mainWindow.left} - width >= workArea.left) {
        left = mainWindow.left - width;
        side = DockSide::Left;
    }
    return {{left, mainWindow.top, left + width, mainWindow.bottom}, side};
}

DockSide TouchedSide(const Rect& mainWindow, const Rect& playlist, int limit) {
    if (!AreNear(playlist.top, mainWindow.top, limit)) {
        return DockSide::None;
    }
    if (AreNear(playlist.left, mainWindow.right, limit)) {
        return DockSide::Right;
    }
    return AreNear(playlist.right, mainWindow.left, limit) ? DockSide::Left : DockSide::None;
}

} // namespace brindlecast
