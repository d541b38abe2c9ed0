#pragma once

#include <windows.h>

#include <strmif.h>

namespace brindlecast {

// A filter that knows how far its pictures are turned before the first of them has come: the renderer is
// asked for the upright size as soon as it is connected. Side data of samples tells the same later on.
struct IPictureOrientation : public IUnknown {
    // Clockwise degrees that bring the picture upright: 0, 90, 180 or 270.
    virtual int STDMETHODCALLTYPE GetPictureRotation() = 0;
};

inline constexpr IID kIidPictureOrientation = {
    0x6D0A1D0B, 0x4B5C, 0x4D0E, {0x9A, 0x5E, 0x0C, 0x3C, 0x6F, 0x1B, 0x72, 0xD4}};

// What the filter of the connected pin says, 0 where it knows nothing of it.
[[nodiscard]] int PictureRotationOf(IPin& peer);

} // namespace brindlecast
