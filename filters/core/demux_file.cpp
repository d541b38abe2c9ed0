#include "filters/core/demux_file.h"

#include <algorithm>
#include <array>
#include <cstring>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace brindlecast {
namespace {

constexpr AVRational kTimeUnit = {1, 10'000'000};
constexpr DemuxTime kSecond = 10'000'000;

} // namespace

void AvPacketFree::operator()(AVPacket* packet) const noexcept {
    av_packet_free(&packet);
}

std::size_t DemuxPacket::Bytes() const {
    return data && data->size > 0 ? static_cast<std::size_t>(data->size) : 0;
}

void DemuxFile::ContextClose::operator()(AVFormatContext* closed) const noexcept {
    avformat_close_input(&closed);
}

DemuxFile::~DemuxFile() = default;

std::unique_ptr<DemuxFile> DemuxFile::Open(const std::string& path, int& error) {
    av_log_set_level(AV_LOG_QUIET); // a damaged file is no news for standard error
    std::unique_ptr<DemuxFile> file(new DemuxFile());
    file->input = DemuxInput::Open(path, error);
    if (!file->input) {
        return nullptr;
    }
    error = file->OpenContext(path);
    if (error < 0) {
        return nullptr;
    }
    file->streams = DescribeStreams(*file->context);
    const bool playable =
        std::any_of(file->streams.begin(), file->streams.end(), [](const DemuxStream& stream) {
            return stream.kind != StreamKind::Subtitle && stream.decodable;
        });
    if (!playable) {
        error = AVERROR_STREAM_NOT_FOUND;
        return nullptr;
    }
    file->FindStart();
    file->SelectStreams();
    const std::int64_t statedDuration = file->context->duration;
    file->duration = statedDuration != AV_NOPTS_VALUE && statedDuration > 0 ? statedDuration * 10 : 0;
    return file;
}

int DemuxFile::OpenContext(const std::string& path) {
    AVFormatContext* opened = avformat_alloc_context();
    if (opened == nullptr) {
        return AVERROR(ENOMEM);
    }
    opened->pb = input->Context();
    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "file", 0); // for formats that name further files
    int error =
        avformat_open_input(&opened, path.c_str(), nullptr, &options); // frees the context when it fails
    av_dict_free(&options);
    if (error < 0) {
        return error;
    }
    context.reset(opened);
    // The terminal format takes any text for a picture.
    if (std::strcmp(opened->iformat->name, "tty") == 0) {
        return AVERROR_INVALIDDATA;
    }
    if (std::strcmp(opened->iformat->name, "avi") == 0) {
        opened->flags |= AVFMT_FLAG_GENPTS; // AVI stores decoding order alone
    }
    return avformat_find_stream_info(opened, nullptr);
}

// The container's start, in our units. FFmpeg keeps it in microseconds; the stream that it came from is
// exact.
void DemuxFile::FindStart() {
    if (context->start_time == AV_NOPTS_VALUE) {
        return;
    }
    start = context->start_time * 10;
    for (unsigned i = 0; i < context->nb_streams; ++i) {
        const AVStream& stream = *context->streams[i];
        if (stream.start_time == AV_NOPTS_VALUE) {
            continue;
        }
        if (av_rescale_q(stream.start_time, stream.time_base, av_get_time_base_q()) == context->start_time) {
            start = av_rescale_q(stream.start_time, stream.time_base, kTimeUnit);
            return;
        }
    }
}

void DemuxFile::SelectStreams() {
    positions.assign(context->nb_streams, -1);
    for (unsigned i = 0; i < context->nb_streams; ++i) {
        context->streams[i]->discard = AVDISCARD_ALL;
    }
    for (std::size_t i = 0; i < streams.size(); ++i) {
        const auto containerIndex = static_cast<std::size_t>(streams[i].containerIndex);
        if (!streams[i].decodable) {
            continue;
        }
        positions[containerIndex] = static_cast<int>(i);
        context->streams[containerIndex]->discard = AVDISCARD_DEFAULT;
    }
}

std::optional<DemuxTime> DemuxFile::ToTime(int containerIndex, std::int64_t timestamp) const {
    if (timestamp == AV_NOPTS_VALUE) {
        return std::nullopt;
    }
    return av_rescale_q(timestamp, context->streams[containerIndex]->time_base, kTimeUnit) - start;
}

std::int64_t DemuxFile::ToTimestamp(int containerIndex, DemuxTime time) const {
    return av_rescale_q_rnd(time + start, kTimeUnit, context->streams[containerIndex]->time_base,
                            AV_ROUND_DOWN);
}

bool DemuxFile::SeekRaw(int containerIndex, std::int64_t timestamp) {
    return av_seek_frame(context.get(), containerIndex, timestamp, AVSEEK_FLAG_BACKWARD) >= 0;
}

bool DemuxFile::Seek(DemuxTime target, int stream) {
    pending.clear();
    if (stream < 0 || static_cast<std::size_t>(stream) >= streams.size()) {
        return false;
    }
    const int containerIndex = streams[static_cast<std::size_t>(stream)].containerIndex;
    if (stream == tableStream && !index.empty()) {
        auto entry = std::upper_bound(
            index.begin(), index.end(), target,
            [](DemuxTime time, const IndexEntry& candidate) { return time < candidate.time; });
        if (entry != index.begin()) {
            --entry;
        }
        if (!SeekRaw(containerIndex, entry->timestamp)) {
            return false;
        }
        ReadToKeyframe(stream);
        return true;
    }
    // Without a table the container may go by decoding times, or to no keyframe at all: look where it went,
    // and go back further when that is behind the target.
    constexpr std::array<DemuxTime, 8> kSteps{0,           kSecond / 2, kSecond,      2 * kSecond,
                                              4 * kSecond, 8 * kSecond, 16 * kSecond, 40 * kSecond};
    bool went = false;
    for (const DemuxTime step : kSteps) {
        const DemuxTime place = target - step;
        pending.clear();
        went = place > 0 ? SeekRaw(containerIndex, ToTimestamp(containerIndex, place))
                         : SeekToStart(containerIndex);
        if (!went) {
            continue;
        }
        const std::optional<DemuxTime> found = ReadToKeyframe(stream);
        if ((found && *found <= target) || place <= 0) {
            return true;
        }
    }
    return went;
}

// The first keyframe may be decoded before time 0, so that a place well before it is asked for; formats that
// refuse that are asked for the start itself.
bool DemuxFile::SeekToStart(int containerIndex) {
    return SeekRaw(containerIndex, ToTimestamp(containerIndex, -10 * kSecond)) ||
           SeekRaw(containerIndex, ToTimestamp(containerIndex, 0)) ||
           avformat_seek_file(context.get(), -1, INT64_MIN, context->start_time, INT64_MAX, 0) >= 0;
}

std::optional<DemuxTime> DemuxFile::ReadToKeyframe(int stream) {
    // More than the longest distance between keyframes that is worth decoding.
    constexpr int kMaxPackets = 3000;
    int passed = 0;
    DemuxPacket packet;
    while (passed < kMaxPackets && ReadRaw(packet) == ReadResult::Packet) {
        if (packet.stream != stream) {
            pending.push_back(std::move(packet));
            continue;
        }
        if (packet.keyframe) {
            const std::optional<DemuxTime> time = packet.start;
            pending.push_back(std::move(packet));
            return time;
        }
        ++passed;
    }
    return std::nullopt;
}

DemuxFile::ReadResult DemuxFile::Read(DemuxPacket& packet) {
    if (pending.empty()) {
        return ReadRaw(packet);
    }
    packet = std::move(pending.front());
    pending.pop_front();
    return ReadResult::Packet;
}

DemuxFile::ReadResult DemuxFile::ReadRaw(DemuxPacket& packet) {
    constexpr int kMaxFailures = 200; // damaged packets in a row, after which the rest is taken for lost
    int failures = 0;
    while (failures < kMaxFailures) {
        AvPacketPointer data(av_packet_alloc());
        if (!data) {
            return ReadResult::Failed;
        }
        const int result = av_read_frame(context.get(), data.get());
        if (result == AVERROR_EXIT) {
            return ReadResult::Failed;
        }
        if (result == AVERROR_EOF) {
            return ReadResult::End;
        }
        if (result < 0) {
            ++failures;
            continue;
        }
        const auto streamIndex = static_cast<std::size_t>(data->stream_index);
        if (streamIndex >= positions.size() || positions[streamIndex] < 0) {
            continue;
        }
        packet.stream = positions[streamIndex];
        packet.start = ToTime(data->stream_index, data->pts);
        if (!packet.start && streams[static_cast<std::size_t>(packet.stream)].kind != StreamKind::Video) {
            packet.start = ToTime(data->stream_index, data->dts);
        }
        packet.duration = av_rescale_q(std::max<std::int64_t>(data->duration, 0),
                                       context->streams[streamIndex]->time_base, kTimeUnit);
        packet.keyframe = (data->flags & AV_PKT_FLAG_KEY) != 0;
        packet.discard = (data->flags & AV_PKT_FLAG_DISCARD) != 0;
        packet.data = std::move(data);
        return ReadResult::Packet;
    }
    return ReadResult::End;
}

} // namespace brindlecast
