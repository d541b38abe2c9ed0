#pragma once

#include "filters/base/media_type.h"

#include <cstdint>
#include <optional>
#include <vector>

struct AVCodecParameters;

namespace brindlecast {

// How a compressed stream travels in a media type between splitter and decoders.
//
// Video, major type MEDIATYPE_Video. The splitter offers two types, in this order:
//   1. FORMAT_VideoInfo2: VIDEOINFOHEADER2, then the codec's extradata (avcC, hvcC, sequence header...)
//   exactly as the
//      container stores it, to the end of the format block. AvgTimePerFrame is 0 when unknown. biWidth and
//      biHeight are the picture's size in stored pixels, positive; dwPictAspectRatioX/Y is the shape of the
//      upright picture before rotation. biCompression is always the FOURCC.
//   2. FORMAT_MPEG2Video: MPEG2VIDEOINFO with the extradata as dwSequenceHeader; for AVC1 and HVC1 the
//   parameter sets,
//      each behind a 16-bit big-endian length, and dwFlags is the size of the NAL length field in bytes.
//   H.264 with avcC extradata is 'AVC1' (length-prefixed NAL units), otherwise 'H264' (start codes); HEVC
//   with hvcC is 'HVC1', otherwise 'HEVC'. MPEG-1 and MPEG-2 use MEDIASUBTYPE_MPEG1Payload and
//   MEDIASUBTYPE_MPEG2_VIDEO with biCompression 'MPG1' and 'MPG2'. Other codecs: subtype and biCompression
//   are the FOURCC of RIFF files.
//
// Audio, major type MEDIATYPE_Audio, FORMAT_WaveFormatEx: WAVEFORMATEX with the codec's RIFF tag as
// wFormatTag, the
//   extradata behind it in cbSize bytes, and the subtype of that tag. AAC is 0x00FF with AudioSpecificConfig
//   as extradata, or 0x1600 for ADTS frames; FLAC 0xF1AC with STREAMINFO; MP3 0x0055; AC-3 0x2000; Opus and
//   Vorbis carry their headers as FFmpeg keeps them. PCM is tag 1, float is tag 3; with more than two
//   channels or 16 bits they are WAVEFORMATEXTENSIBLE with a channel mask.
//
// Subtitles, major type MEDIATYPE_Subtitle, kFormatSubtitle: the format block is the codec's extradata.
//
// A codec without tag, of any kind, has the subtype CodecSubtype(codec id), and for audio wFormatTag 0.
//
// Samples carry one packet each. Their time is (presentation time - segment start) / rate, with a stop time
// where the duration is known; it is negative, and IsPreroll is S_OK, before the segment start: decoders
// decode such packets, show nothing of them and drop the sound before time 0. Packet side data, and the
// stream's own (display matrix, mastering display, content light level), travel through ISampleSideData of
// media_sample.h under PacketSideDataKind(AVPacketSideDataType), with the bytes as libavcodec defines them.

// Format type of subtitle media types: the block is the codec's extradata.
inline constexpr GUID kFormatSubtitle = {
    0x5c1f6e0a, 0x3d52, 0x4a0e, {0x91, 0x7b, 0x42, 0x52, 0x4e, 0x44, 0x53, 0x46}};

// Major type of subtitle streams.
inline constexpr GUID kMediaTypeSubtitle = {
    0xe487eb08, 0x6b26, 0x4be9, {0x9d, 0xd3, 0x99, 0x34, 0x34, 0xd3, 0x13, 0xfd}};

// Subtype for an FFmpeg codec id that has no tag of its own.
[[nodiscard]] GUID CodecSubtype(std::uint32_t codecId);

// The codec id of a subtype made by CodecSubtype, if it is one.
[[nodiscard]] std::optional<std::uint32_t> CodecOfSubtype(const GUID& subtype);

// Subtype of a FOURCC or wave format tag, and back.
[[nodiscard]] GUID TagSubtype(std::uint32_t tag);
[[nodiscard]] std::optional<std::uint32_t> TagOfSubtype(const GUID& subtype);

// Key under which packet side data of an AVPacketSideDataType travels on samples.
[[nodiscard]] GUID PacketSideDataKind(std::uint32_t type);

// The AVPacketSideDataType of a key made by PacketSideDataKind, if it is one.
[[nodiscard]] std::optional<std::uint32_t> PacketSideDataType(const GUID& kind);

// Facts about a stream that its codec parameters do not hold.
struct StreamTiming {
    std::int64_t frameDuration = 0; // video: 100 ns units a frame, 0 when unknown
    int aspectX = 0;                // video: sample aspect ratio of the container, 0 when unknown
    int aspectY = 0;
};

// Media types for a stream, best first; empty when it cannot be expressed (no picture size, oversized
// extradata).
[[nodiscard]] std::vector<MediaType> MediaTypesFor(const AVCodecParameters& parameters,
                                                   const StreamTiming& timing);

// Codec parameters for a media type of any of the forms above, or null when none of our codecs is meant.
// Accepts foreign splitters' types as well: any FOURCC or wave tag that FFmpeg knows.
// The caller frees the result with avcodec_parameters_free.
[[nodiscard]] AVCodecParameters* ParametersFromMediaType(const AM_MEDIA_TYPE& type);

} // namespace brindlecast
