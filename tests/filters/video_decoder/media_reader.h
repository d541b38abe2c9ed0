#pragma once

#include "filters/base/media_type.h"
#include "filters/core/audio_video_types.h"
#include "tests/filters/support/push_source.h"

#include <memory>
#include <string>
#include <vector>

namespace brindlecast {

struct MediaPacket {
    std::vector<std::uint8_t> bytes;
    Time100ns start = kNoTime; // from the beginning of the file
    Time100ns stop = kNoTime;
    bool keyframe = false;
    std::vector<std::pair<GUID, std::vector<BYTE>>> sideData;

    // How the packet travels in a segment that begins at `segmentStart`.
    [[nodiscard]] PushSource::Options In(Time100ns segmentStart) const;
};

// One stream of a file, read whole by the demultiplexing library without any filter.
struct MediaStream {
    ParametersPtr parameters;
    std::vector<MediaType> types;
    std::vector<MediaPacket> packets; // in decoding order
    Time100ns frameDuration = 0;

    // The last packet at or before that time from which decoding can begin.
    [[nodiscard]] std::size_t KeyframeBefore(Time100ns time) const;
};

// Reads the first stream of that kind. Throws std::runtime_error when the file can't be read.
[[nodiscard]] MediaStream ReadStream(const std::wstring& mediaName, AVMediaType kind);

// What the decoding library makes of the stream by itself, in one thread, from that packet on; pts in 100
// ns.
[[nodiscard]] std::vector<FramePtr> DecodeStream(const MediaStream& stream, std::size_t firstPacket = 0);

} // namespace brindlecast
