#include "filters/core/codec_session.h"

#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace brindlecast {

namespace {

// More than there are threads that can each hold a broken frame, and more than any packet holds frames.
constexpr int kMaxFailuresInARow = 64;
constexpr std::size_t kLargestPacket = std::numeric_limits<int>::max() / 2;

} // namespace

std::optional<CodecSession> CodecSession::Open(const AVCodecParameters& parameters, AVMediaType kind,
                                               const std::function<void(AVCodecContext&)>& prepare) {
    const AVCodec* codec = avcodec_find_decoder(parameters.codec_id);
    if (codec == nullptr || codec->type != kind) {
        return std::nullopt;
    }
    CodecContextPtr context(avcodec_alloc_context3(codec));
    PacketPtr packet(av_packet_alloc());
    if (context == nullptr || packet == nullptr ||
        avcodec_parameters_to_context(context.get(), &parameters) < 0) {
        return std::nullopt;
    }
    context->pkt_timebase = kTimebase100ns;
    prepare(*context);
    if (avcodec_open2(context.get(), codec, nullptr) < 0) {
        return std::nullopt;
    }
    return CodecSession(std::move(context), std::move(packet));
}

AVPacket* CodecSession::Fill(std::span<const std::uint8_t> data) {
    if (data.empty() || data.size() > kLargestPacket) {
        return nullptr;
    }
    // A new buffer with the padding that the library's bit readers run into.
    av_packet_unref(packet.get());
    if (av_new_packet(packet.get(), static_cast<int>(data.size())) < 0) {
        throw std::bad_alloc();
    }
    std::memcpy(packet->data, data.data(), data.size());
    return packet.get();
}

bool CodecSession::Send(const AVPacket* sent, const Sink& sink) {
    for (;;) {
        const int result = avcodec_send_packet(context.get(), sent);
        if (!ReceiveAll(sink)) {
            return false;
        }
        if (result != AVERROR(EAGAIN)) {
            brokenPackets += result < 0 && result != AVERROR_EOF ? 1 : 0;
            return true;
        }
    }
}

bool CodecSession::ReceiveAll(const Sink& sink) {
    for (int failures = 0; failures < kMaxFailuresInARow;) {
        FramePtr frame(av_frame_alloc());
        if (frame == nullptr) {
            throw std::bad_alloc();
        }
        const int received = avcodec_receive_frame(context.get(), frame.get());
        if (received == AVERROR(EAGAIN) || received == AVERROR_EOF) {
            return true;
        }
        if (received < 0) {
            // A broken frame found late, on a decoding thread; those behind it are still to come.
            ++brokenPackets;
            ++failures;
            continue;
        }
        failures = 0;
        if (!sink(std::move(frame))) {
            return false;
        }
    }
    return true;
}

} // namespace brindlecast
