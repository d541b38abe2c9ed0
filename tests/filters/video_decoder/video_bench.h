#pragma once

#include "filters/include/lav_video.h"
#include "tests/filters/support/push_source.h"
#include "tests/filters/support/recording_sink.h"
#include "tests/filters/support/test_graph.h"
#include "tests/filters/support/test_module.h"
#include "tests/filters/video_decoder/media_reader.h"

#include <optional>

namespace brindlecast {

// The decoder in a graph between a source of packets and a sink, connected and paused.
class VideoBench {
public:
    // Which types the sink takes; all of video by default.
    using Accepts = std::function<bool(const MediaType&)>;
    // Called with the decoder before it is connected.
    using Prepare = std::function<void(ILAVVideoSettings&)>;

    explicit VideoBench(const MediaStream& stream, Accepts accepts = {}, const Prepare& prepare = {});
    ~VideoBench();

    // Pushes the stream from that packet on, in a segment that begins at `segmentStart`.
    void PushFrom(const MediaStream& stream, std::size_t firstPacket, Time100ns segmentStart);
    HRESULT Push(const MediaPacket& packet, Time100ns segmentStart);
    void EndOfStream();

    // The type that samples have now.
    [[nodiscard]] MediaType OutputType();
    [[nodiscard]] const VIDEOINFOHEADER2& OutputHeader();

    TestModule& module();
    TestGraph graph;
    Microsoft::WRL::ComPtr<IBaseFilter> decoder;
    Microsoft::WRL::ComPtr<PushSource> source;
    Microsoft::WRL::ComPtr<RecordingSink> sink;

private:
    MediaType outputType_;
};

// The loaded LAVVideo.ax.
[[nodiscard]] TestModule& VideoModule();

[[nodiscard]] bool HasSubtype(const MediaType& type, const GUID& subtype);
inline constexpr GUID kSubtypeP010 = {
    0x30313050, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};

// A decoded 4:2:0 picture as NV12 without padding.
[[nodiscard]] std::vector<BYTE> AsNv12(const AVFrame& picture);

} // namespace brindlecast
