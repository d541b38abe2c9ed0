#pragma once

#include "filters/core/picture_format.h"
#include "filters/core/picture_geometry.h"

#include <mutex>
#include <optional>

namespace brindlecast {

// How the picture is to stand in the window, as the application set it.
struct Look {
    // Pixels of the window's client area; none means all of it.
    std::optional<PictureRect> destination;
    // Pixels of the display size; none means all of it.
    std::optional<PictureRect> source;
    // The options "rotation" (normalised) and "flip".
    Orientation orientation;
    bool operator==(const Look&) const = default;
};

// The look, set from the application's threads and read by the drawing thread.
class SharedLook {
public:
    [[nodiscard]] Look Get() const {
        const std::lock_guard lock(mutex);
        return look;
    }
    // Calls `change(look)` with the look locked.
    template <class Change>
    void Edit(Change&& change) {
        const std::lock_guard lock(mutex);
        change(look);
    }

private:
    mutable std::mutex mutex;
    Look look;
};

} // namespace brindlecast
