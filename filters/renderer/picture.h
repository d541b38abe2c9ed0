#pragma once

#include "filters/core/picture_color.h"
#include "filters/core/picture_format.h"
#include "filters/core/picture_schedule.h"

#include <cstdint>
#include <memory>

namespace brindlecast {

// What a media type says about its pictures.
struct PictureFormat {
    PictureMemory memory;
    ColorInfo color; // unknowns filled in
    int aspectX = 0; // shape of the whole picture, 0 when unknown
    int aspectY = 0;
    std::int64_t frameDuration = 0; // 100 ns units, 0 when unknown

    [[nodiscard]] PictureSize Size() const { return {memory.visible.Width(), memory.visible.Height()}; }
    bool operator==(const PictureFormat&) const = default;
};

// One frame with its memory. Never changed once it is shared between threads.
struct Picture {
    PictureFormat format;
    const std::uint8_t* data = nullptr;
    std::size_t bytes = 0;
    FrameTimes times;
    int containerRotation = 0; // clockwise degrees that bring the picture upright
    // Keeps `data` alive: a media sample or a copy.
    std::shared_ptr<const void> owner;
};

using PicturePtr = std::shared_ptr<const Picture>;

} // namespace brindlecast
