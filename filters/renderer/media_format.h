#pragma once

#include "filters/base/media_type.h"
#include "filters/renderer/picture.h"

#include <array>
#include <optional>

namespace brindlecast {

// The subtypes that the renderer takes, best first.
struct AcceptedSubtype {
    const GUID* subtype;
    PixelFormat format;
};
[[nodiscard]] const std::array<AcceptedSubtype, 7>& AcceptedSubtypes();

// What an uncompressed video type with VIDEOINFOHEADER or VIDEOINFOHEADER2 describes; nothing for any other
// type or a header that contradicts itself.
[[nodiscard]] std::optional<PictureFormat> PictureFormatOf(const AM_MEDIA_TYPE& type);

} // namespace brindlecast
