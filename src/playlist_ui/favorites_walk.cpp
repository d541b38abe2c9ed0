#include "playlist_ui/favorites_walk.h"

namespace brindlecast {

std::optional<std::size_t> AdvanceWalk(FavoritesWalk& walk, const std::vector<std::int32_t>& rows,
                                       std::size_t itemCount) {
    if (!walk.active) {
        return std::nullopt;
    }
    if (walk.row < 0 || static_cast<std::size_t>(walk.row) + 1 >= rows.size()) {
        walk = {};
        return std::nullopt;
    }
    ++walk.row;
    const std::int32_t item = rows[static_cast<std::size_t>(walk.row)];
    if (item < 0 || static_cast<std::size_t>(item) >= itemCount) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(item);
}

} // namespace brindlecast
