#pragma once

#include "filters/core/audio_video_types.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>

namespace brindlecast {

// One open decoder of libavcodec: packets in, frames out. Broken data is counted and is no failure. Out of
// memory is std::bad_alloc. One thread at a time.
class CodecSession {
public:
    // Takes a frame; false ends the delivery.
    using Sink = std::function<bool(FramePtr)>;

    // Opens the decoder for a stream whose times count 100 ns, after `prepare` has set options on the
    // context. Nothing when there is no decoder of that kind or it refuses the set-up data.
    [[nodiscard]] static std::optional<CodecSession>
    Open(const AVCodecParameters& parameters, AVMediaType kind,
         const std::function<void(AVCodecContext&)>& prepare);

    [[nodiscard]] AVCodecContext& Context() const { return *context; }

    // The packet of this session, filled with a copy of `data` and otherwise blank; nothing when the data is
    // empty or longer than a packet may be. Valid until the next call or Discard.
    [[nodiscard]] AVPacket* Fill(std::span<const std::uint8_t> data);
    void Discard() { av_packet_unref(packet.get()); }

    // Sends a packet, or with null the end, and hands out every frame that is ready. False when the sink
    // refused one.
    [[nodiscard]] bool Send(const AVPacket* sent, const Sink& sink);

    // Forgets everything that was sent.
    void Flush() { avcodec_flush_buffers(context.get()); }

    // Packets that the library called broken since creation.
    [[nodiscard]] std::int64_t BrokenPackets() const { return brokenPackets; }

private:
    CodecSession(CodecContextPtr openContext, PacketPtr ownPacket)
        : context(std::move(openContext)), packet(std::move(ownPacket)) {}
    [[nodiscard]] bool ReceiveAll(const Sink& sink);

    CodecContextPtr context;
    PacketPtr packet;
    std::int64_t brokenPackets = 0;
};

} // namespace brindlecast
