#include "filters/core/demux_file.h"

#include <algorithm>
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

void DemuxFile::ContextClose::operator()(AVFormatContext* context) const noexcept {
    avformat_close_input(&context);
}

DemuxFile::~DemuxFile() = default;

std::unique_ptr<DemuxFile> DemuxFile::Open(const std::string& path, int& error) {
    av_log_set_level(AV_LOG_QUIET); // a damaged file is no news for standard error
    std::unique_ptr<DemuxFile> file(new DemuxFile());
    file->input_ = DemuxInput::Open(path, error);
    if (!file->input_)
        return nullptr;
    error = file->OpenContext(path);
    if (error < 0)
        return nullptr;
    file->streams_ = DescribeStreams(*file->context_);
    const bool playable =
        std::any_of(file->streams_.begin(), file->streams_.end(), [](const DemuxStream& stream) {
            return stream.kind != StreamKind::Subtitle && stream.decodable;
        });
    if (!playable) {
        error = AVERROR_STREAM_NOT_FOUND;
        return nullptr;
    }
    file->FindStart();
    file->SelectStreams();
    const std::int64_t duration = file->context_->duration;
    file->duration_ = duration != AV_NOPTS_VALUE && duration > 0 ? duration * 10 : 0;
    return file;
}

int DemuxFile::OpenContext(const std::string& path) {
    AVFormatContext* context = avformat_alloc_context();
    if (context == nullptr)
        return AVERROR(ENOMEM);
    context->pb = input_->Context();
    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "file", 0); // for formats that name further files
    int error =
        avformat_open_input(&context, path.c_str(), nullptr, &options); // frees the context when it fails
    av_dict_free(&options);
    if (error < 0)
        return error;
    context_.reset(context);
    // The terminal format takes any text for a picture.
    if (std::strcmp(context->iformat->name, "tty") == 0)
        return AVERROR_INVALIDDATA;
    if (std::strcmp(context->iformat->name, "avi") == 0)
        context->flags |= AVFMT_FLAG_GENPTS; // AVI stores decoding order alone
    return avformat_find_stream_info(context, nullptr);
}

// The container's start, in our units. FFmpeg keeps it in microseconds; the stream that it came from is
// exact.
void DemuxFile::FindStart() {
    if (context_->start_time == AV_NOPTS_VALUE)
        return;
    start_ = context_->start_time * 10;
    for (unsigned i = 0; i < context_->nb_streams; ++i) {
        const AVStream& stream = *context_->streams[i];
        if (stream.start_time == AV_NOPTS_VALUE)
            continue;
        if (av_rescale_q(stream.start_time, stream.time_base, av_get_time_base_q()) == context_->start_time) {
            start_ = av_rescale_q(stream.start_time, stream.time_base, kTimeUnit);
            return;
        }
    }
}

void DemuxFile::SelectStreams() {
    positions_.assign(context_->nb_streams, -1);
    for (unsigned i = 0; i < context_->nb_streams; ++i)
        context_->streams[i]->discard = AVDISCARD_ALL;
    for (std::size_t i = 0; i < streams_.size(); ++i) {
        const auto containerIndex = static_cast<std::size_t>(streams_[i].containerIndex);
        if (!streams_[i].decodable)
            continue;
        positions_[containerIndex] = static_cast<int>(i);
        context_->streams[containerIndex]->discard = AVDISCARD_DEFAULT;
    }
}

std::optional<DemuxTime> DemuxFile::ToTime(int containerIndex, std::int64_t timestamp) const {
    if (timestamp == AV_NOPTS_VALUE)
        return std::nullopt;
    return av_rescale_q(timestamp, context_->streams[containerIndex]->time_base, kTimeUnit) - start_;
}

std::int64_t DemuxFile::ToTimestamp(int containerIndex, DemuxTime time) const {
    return av_rescale_q_rnd(time + start_, kTimeUnit, context_->streams[containerIndex]->time_base,
                            AV_ROUND_DOWN);
}

bool DemuxFile::SeekRaw(int containerIndex, std::int64_t timestamp) {
    return av_seek_frame(context_.get(), containerIndex, timestamp, AVSEEK_FLAG_BACKWARD) >= 0;
}

bool DemuxFile::Seek(DemuxTime target, int stream) {
    pending_.clear();
    if (stream < 0 || static_cast<std::size_t>(stream) >= streams_.size())
        return false;
    const int containerIndex = streams_[static_cast<std::size_t>(stream)].containerIndex;
    if (stream == tableStream_ && !index_.empty()) {
        auto entry = std::upper_bound(
            index_.begin(), index_.end(), target,
            [](DemuxTime time, const IndexEntry& candidate) { return time < candidate.time; });
        if (entry != index_.begin())
            --entry;
        if (!SeekRaw(containerIndex, entry->timestamp))
            return false;
        ReadToKeyframe(stream);
        return true;
    }
    // Without a table the container may go by decoding times, or to no keyframe at all: look where it went,
    // and go back further when that is behind the target.
    constexpr DemuxTime kSteps[] = {0,           kSecond / 2, kSecond,      2 * kSecond,
                                    4 * kSecond, 8 * kSecond, 16 * kSecond, 40 * kSecond};
    bool went = false;
    for (const DemuxTime step : kSteps) {
        const DemuxTime place = target - step;
        pending_.clear();
        went = place > 0 ? SeekRaw(containerIndex, ToTimestamp(containerIndex, place))
                         : SeekToStart(containerIndex);
        if (!went)
            continue;
        const std::optional<DemuxTime> found = ReadToKeyframe(stream);
        if ((found && *found <= target) || place <= 0)
            return true;
    }
    return went;
}

// The first keyframe may be decoded before time 0, so that a place well before it is asked for; formats that
// refuse that are asked for the start itself.
bool DemuxFile::SeekToStart(int containerIndex) {
    return SeekRaw(containerIndex, ToTimestamp(containerIndex, -10 * kSecond)) ||
           SeekRaw(containerIndex, ToTimestamp(containerIndex, 0)) ||
           avformat_seek_file(context_.get(), -1, INT64_MIN, context_->start_time, INT64_MAX, 0) >= 0;
}

std::optional<DemuxTime> DemuxFile::ReadToKeyframe(int stream) {
    // More than the longest distance between keyframes that is worth decoding.
    constexpr int kMaxPackets = 3000;
    int passed = 0;
    DemuxPacket packet;
    while (passed < kMaxPackets && ReadRaw(packet) == ReadResult::Packet) {
        if (packet.stream != stream) {
            pending_.push_back(std::move(packet));
            continue;
        }
        if (packet.keyframe) {
            const std::optional<DemuxTime> time = packet.start;
            pending_.push_back(std::move(packet));
            return time;
        }
        ++passed;
    }
    return std::nullopt;
}

DemuxFile::ReadResult DemuxFile::Read(DemuxPacket& packet) {
    if (pending_.empty())
        return ReadRaw(packet);
    packet = std::move(pending_.front());
    pending_.pop_front();
    return ReadResult::Packet;
}

DemuxFile::ReadResult DemuxFile::ReadRaw(DemuxPacket& packet) {
    constexpr int kMaxFailures = 200; // damaged packets in a row, after which the rest is taken for lost
    int failures = 0;
    while (failures < kMaxFailures) {
        AvPacketPointer data(av_packet_alloc());
        if (!data)
            return ReadResult::Failed;
        const int result = av_read_frame(context_.get(), data.get());
        if (result == AVERROR_EXIT)
            return ReadResult::Failed;
        if (result == AVERROR_EOF)
            return ReadResult::End;
        if (result < 0) {
            ++failures;
            continue;
        }
        const auto index = static_cast<std::size_t>(data->stream_index);
        if (index >= positions_.size() || positions_[index] < 0)
            continue;
        packet.stream = positions_[index];
        packet.start = ToTime(data->stream_index, data->pts);
        if (!packet.start && streams_[static_cast<std::size_t>(packet.stream)].kind != StreamKind::Video)
            packet.start = ToTime(data->stream_index, data->dts);
        packet.duration = av_rescale_q(std::max<std::int64_t>(data->duration, 0),
                                       context_->streams[index]->time_base, kTimeUnit);
        packet.keyframe = (data->flags & AV_PKT_FLAG_KEY) != 0;
        packet.discard = (data->flags & AV_PKT_FLAG_DISCARD) != 0;
        packet.data = std::move(data);
        return ReadResult::Packet;
    }
    return ReadResult::End;
}

} // namespace brindlecast
