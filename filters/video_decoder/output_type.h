#pragma once

#include "filters/base/media_type.h"
#include "filters/core/video_picture.h"
#include "filters/core/video_shape.h"

#include <optional>

namespace brindlecast {

[[nodiscard]] const GUID& SubtypeOf(PixelFormat format);
[[nodiscard]] std::optional<PixelFormat> PixelFormatOf(const GUID& subtype);

// A type for pictures of `shape`. `extended` chooses FORMAT_VideoInfo2 over FORMAT_VideoInfo, which can't
// say anything about colours and aspect. Sides are rounded up to even ones, the picture itself being the
// source rectangle.
[[nodiscard]] MediaType MakeOutputType(PixelFormat format, const VideoShape& shape,
                                       REFERENCE_TIME frameDuration, bool extended);

// Where the pictures of a type go, with a null data pointer; nothing when the type is not one of ours or has
// no room for pictures of that size at its top left.
[[nodiscard]] std::optional<PictureBuffer> ReadOutputType(const AM_MEDIA_TYPE& type, int width, int height);

} // namespace brindlecast
