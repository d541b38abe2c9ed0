#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace brindlecast {

// How playback goes along the rows of a favorites group.
struct FavoritesWalk {
    bool active = false;
    std::int32_t row = -1; // the one that plays, -1 for none
    bool operator==(const FavoritesWalk&) const = default;
};

// Goes on to the next row and answers the item that it shows. Nothing when the walk is not active, when no
// row follows, which ends the walk, or when the row shows none of the group's items: the walk then stays
// active on that row. `rows` holds the item of each row.
[[nodiscard]] std::optional<std::size_t>
AdvanceWalk(FavoritesWalk& walk, const std::vector<std::int32_t>& rows, std::size_t itemCount);

} // namespace brindlecast
