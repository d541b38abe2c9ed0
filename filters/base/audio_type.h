#pragma once

#include "filters/base/media_type.h"
#include "filters/core/audio_format.h"

#include <optional>

namespace brindlecast {

// The media type of uncompressed sound in a valid format.
[[nodiscard]] MediaType MakeAudioType(const AudioFormat& format);

// The format of a media type; nothing when it is no uncompressed sound of a supported kind.
[[nodiscard]] std::optional<AudioFormat> ReadAudioType(const AM_MEDIA_TYPE& type);

} // namespace brindlecast
