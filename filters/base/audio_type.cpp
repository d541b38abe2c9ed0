#include "filters/base/audio_type.h"

#include "filters/core/audio_wave_header.h"

#include <span>

namespace brindlecast {
namespace {

constexpr GUID kSubtypePcm = {0x00000001, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
constexpr GUID kSubtypeFloat = {0x00000003, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};

const GUID& SubtypeOf(const AudioFormat& format) {
    return format.kind == SampleKind::kFloat32 ? kSubtypeFloat : kSubtypePcm;
}

} // namespace

MediaType MakeAudioType(const AudioFormat& format) {
    MediaType type(MEDIATYPE_Audio, SubtypeOf(format));
    const auto header = WriteWaveHeader(format);
    type.SetFormat(FORMAT_WaveFormatEx, header.data(), header.size());
    type.Edit().bFixedSizeSamples = TRUE;
    type.Edit().lSampleSize = static_cast<ULONG>(format.BytesPerFrame());
    return type;
}

std::optional<AudioFormat> ReadAudioType(const AM_MEDIA_TYPE& type) {
    if (type.majortype != MEDIATYPE_Audio || type.formattype != FORMAT_WaveFormatEx || !type.pbFormat) {
        return std::nullopt;
    }
    const auto format = ReadWaveHeader(std::span(type.pbFormat, type.cbFormat));
    return format && type.subtype == SubtypeOf(*format) ? format : std::nullopt;
}

} // namespace brindlecast
