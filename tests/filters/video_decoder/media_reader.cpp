#include "tests/filters/video_decoder/media_reader.h"

#include "filters/base/stream_formats.h"
#include "tests/filters/support/test_module.h"

#include <cstring>
#include <stdexcept>

extern "C" {
#include <libavformat/avformat.h>
}

namespace brindlecast {
namespace {

struct FormatDeleter {
    void operator()(AVFormatContext* context) const noexcept { avformat_close_input(&context); }
};

void Require(bool condition, const char* what) {
    if (!condition) {
        throw std::runtime_error(what);
    }
}

std::string Utf8(const std::wstring& text) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0,
                                         nullptr, nullptr);
    std::string out(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out.data(), size, nullptr,
                        nullptr);
    return out;
}

void AddSideData(const AVPacketSideData* blocks, int count, MediaPacket& packet) {
    for (int i = 0; i < count; ++i) {
        packet.sideData.emplace_back(PacketSideDataKind(static_cast<std::uint32_t>(blocks[i].type)),
                                     std::vector<BYTE>(blocks[i].data, blocks[i].data + blocks[i].size));
    }
}

} // namespace

PushSource::Options MediaPacket::In(Time100ns segmentStart) const {
    PushSource::Options options;
    if (start != kNoTime) {
        options.start = start - segmentStart;
        options.stop = stop != kNoTime ? std::optional(stop - segmentStart) : std::nullopt;
        options.preroll = start < segmentStart;
    }
    options.syncPoint = keyframe;
    options.sideData = sideData;
    return options;
}

std::size_t MediaStream::KeyframeBefore(Time100ns time) const {
    std::size_t found = 0;
    for (std::size_t i = 0; i < packets.size(); ++i) {
        if (packets[i].keyframe && packets[i].start <= time) {
            found = i;
        }
    }
    return found;
}

MediaStream ReadStream(const std::wstring& mediaName, AVMediaType kind) {
    AVFormatContext* opened = nullptr;
    Require(avformat_open_input(&opened, Utf8(MediaPath(mediaName)).c_str(), nullptr, nullptr) >= 0,
            "open media");
    const std::unique_ptr<AVFormatContext, FormatDeleter> file(opened);
    Require(avformat_find_stream_info(file.get(), nullptr) >= 0, "stream info");
    const int index = av_find_best_stream(file.get(), kind, -1, -1, nullptr, 0);
    Require(index >= 0, "no such stream");
    const AVStream& source = *file->streams[index];

    MediaStream stream;
    stream.parameters.reset(avcodec_parameters_alloc());
    Require(avcodec_parameters_copy(stream.parameters.get(), source.codecpar) >= 0, "parameters");
    if (source.avg_frame_rate.num > 0) {
        stream.frameDuration = av_rescale_q(1, av_inv_q(source.avg_frame_rate), kTimebase100ns);
    }
    const AVRational aspect = source.sample_aspect_ratio;
    stream.types = MediaTypesFor(*source.codecpar, {stream.frameDuration, aspect.num, aspect.den});
    Require(!stream.types.empty(), "media type");
    const Time100ns origin = file->start_time != AV_NOPTS_VALUE ? file->start_time * 10 : 0;
    const PacketPtr packet(av_packet_alloc());
    while (av_read_frame(file.get(), packet.get()) >= 0) {
        if (packet->stream_index == index) {
            MediaPacket copy;
            copy.bytes.assign(packet->data, packet->data + packet->size);
            if (packet->pts != AV_NOPTS_VALUE) {
                copy.start = av_rescale_q(packet->pts, source.time_base, kTimebase100ns) - origin;
                if (packet->duration > 0) {
                    copy.stop = copy.start + av_rescale_q(packet->duration, source.time_base, kTimebase100ns);
                }
            }
            copy.keyframe = (packet->flags & AV_PKT_FLAG_KEY) != 0;
            AddSideData(source.side_data, source.nb_side_data, copy);
            AddSideData(packet->side_data, packet->side_data_elems, copy);
            stream.packets.push_back(std::move(copy));
        }
        av_packet_unref(packet.get());
    }
    Require(!stream.packets.empty(), "no packets");
    return stream;
}

std::vector<FramePtr> DecodeStream(const MediaStream& stream, std::size_t firstPacket) {
    const CodecContextPtr decoder(avcodec_alloc_context3(avcodec_find_decoder(stream.parameters->codec_id)));
    Require(avcodec_parameters_to_context(decoder.get(), stream.parameters.get()) >= 0, "parameters");
    decoder->pkt_timebase = kTimebase100ns;
    decoder->thread_count = 1;
    Require(avcodec_open2(decoder.get(), nullptr, nullptr) >= 0, "reference decoder");
    std::vector<FramePtr> frames;
    auto receive = [&] {
        for (;;) {
            FramePtr frame(av_frame_alloc());
            if (avcodec_receive_frame(decoder.get(), frame.get()) < 0) {
                return;
            }
            frame->pts = frame->best_effort_timestamp;
            frames.push_back(std::move(frame));
        }
    };
    const PacketPtr packet(av_packet_alloc());
    for (std::size_t i = firstPacket; i < stream.packets.size(); ++i) {
        const MediaPacket& source = stream.packets[i];
        Require(av_new_packet(packet.get(), static_cast<int>(source.bytes.size())) >= 0, "packet");
        std::memcpy(packet->data, source.bytes.data(), source.bytes.size());
        packet->pts = source.start;
        for (const auto& [kindOf, bytes] : source.sideData) {
            if (const auto type = PacketSideDataType(kindOf)) {
                std::uint8_t* block = av_packet_new_side_data(
                    packet.get(), static_cast<AVPacketSideDataType>(*type), bytes.size());
                Require(block != nullptr, "side data");
                std::memcpy(block, bytes.data(), bytes.size());
            }
        }
        avcodec_send_packet(decoder.get(), packet.get());
        av_packet_unref(packet.get());
        receive();
    }
    avcodec_send_packet(decoder.get(), nullptr);
    receive();
    return frames;
}

} // namespace brindlecast
