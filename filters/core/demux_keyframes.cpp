// The keyframe table of a DemuxFile.
#include "filters/core/demux_file.h"

#include <algorithm>
#include <limits>
#include <string_view>

extern "C" {
#include <libavcodec/packet.h>
#include <libavformat/avformat.h>
}

namespace brindlecast {
namespace {

enum class IndexTimes { Unknown, Presentation, Decoding };

// What the index of a container counts in. Only containers whose index is known to hold every keyframe
// count.
IndexTimes TimesOf(const AVFormatContext& context) {
    const std::string_view name = context.iformat->name;
    if (name.starts_with("matroska")) {
        return IndexTimes::Presentation;
    }
    if (name.starts_with("mov,")) {
        return IndexTimes::Decoding;
    }
    return IndexTimes::Unknown;
}

// Keeps the demuxer's flags and FFmpeg's own reading of payloads out of a walk over blank packets.
class BlankReading {
public:
    BlankReading(AVFormatContext& theContext, DemuxInput& theInput)
        : context(theContext), input(theInput), flags(theContext.flags) {
        context.flags |= AVFMT_FLAG_NOPARSE | AVFMT_FLAG_NOFILLIN;
        context.flags &= ~AVFMT_FLAG_GENPTS;
        input.SetBlank(true);
    }
    ~BlankReading() {
        input.SetBlank(false);
        context.flags = flags;
    }
    BlankReading(const BlankReading&) = delete;
    BlankReading& operator=(const BlankReading&) = delete;

private:
    AVFormatContext& context;
    DemuxInput& input;
    const int flags;
};

} // namespace

void DemuxFile::LoadKeyframes(int stream) {
    keyframes.clear();
    index.clear();
    allIntra = false;
    if (stream < 0 || static_cast<std::size_t>(stream) >= streams.size() ||
        streams[static_cast<std::size_t>(stream)].kind != StreamKind::Video) {
        return;
    }
    const int containerIndex = streams[static_cast<std::size_t>(stream)].containerIndex;
    if (TimesOf(*context) == IndexTimes::Unknown) {
        return;
    }
    // Matroska reads its cues at the first seek.
    const std::int64_t beginning = ToTimestamp(containerIndex, 0);
    const bool seekable = SeekRaw(containerIndex, beginning);
    std::vector<IndexEntry> entries;
    if (seekable) {
        entries = ReadIndex(containerIndex);
    }
    DiscardAllBut(-1);
    SelectStreams();
    SeekRaw(containerIndex, beginning);
    pending.clear();
    const DemuxTime frame = streams[static_cast<std::size_t>(stream)].frameDuration;
    // An index of presentation times does not say what stands between them.
    if (!entries.empty() && frame > 0) {
        allIntra = allIntra || WidestGap(entries) <= frame + frame / 2;
    }
    if (allIntra || !SpansFile(entries)) {
        return;
    }
    tableStream = stream;
    index = std::move(entries);
    keyframes.reserve(index.size());
    for (const IndexEntry& entry : index) {
        keyframes.push_back(entry.time);
    }
}

void DemuxFile::DiscardAllBut(int containerIndex) {
    for (unsigned i = 0; i < context->nb_streams; ++i) {
        context->streams[i]->discard =
            static_cast<int>(i) == containerIndex ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
}

std::vector<DemuxFile::IndexEntry> DemuxFile::ReadIndex(int containerIndex) {
    AVStream* stream = context->streams[containerIndex];
    // A copy first: seeking may add to the demuxer's own index.
    std::vector<AVIndexEntry> stored;
    const int count = avformat_index_get_entries_count(stream);
    bool others = false;
    for (int i = 0; i < count; ++i) {
        const AVIndexEntry* entry = avformat_index_get_entry(stream, i);
        if ((entry->flags & AVINDEX_KEYFRAME) == 0) {
            others = true;
        } else if (entry->pos + std::max(entry->size, 1) <= input->Size()) {
            stored.push_back(*entry); // what a truncated file has lost is no place to go to
        }
    }
    const bool decoding = TimesOf(*context) == IndexTimes::Decoding;
    if (decoding && !others && count > 1) {
        allIntra = true;
        return {};
    }
    if (!decoding) {
        return TimedEntries(containerIndex, stored);
    }
    DiscardAllBut(containerIndex);
    const BlankReading blank(*context, *input);
    return PresentedEntries(containerIndex, stored);
}

bool DemuxFile::Append(std::vector<IndexEntry>& entries, IndexEntry entry) {
    // What an edit list cuts off at the front is the way to time 0, not a time before it.
    entry.time = std::max<DemuxTime>(entry.time, 0);
    if (!entries.empty() && entries.back().time == 0 && entry.time == 0) {
        entries.back() = entry;
        return true;
    }
    if (!entries.empty() && entries.back().time >= entry.time) {
        return false;
    }
    entries.push_back(entry);
    return true;
}

// For an index of presentation times.
std::vector<DemuxFile::IndexEntry> DemuxFile::TimedEntries(int containerIndex,
                                                           const std::vector<AVIndexEntry>& stored) const {
    std::vector<IndexEntry> entries;
    for (const AVIndexEntry& entry : stored) {
        const std::optional<DemuxTime> time = ToTime(containerIndex, entry.timestamp);
        if (!time || !Append(entries, {*time, entry.timestamp})) {
            return {};
        }
    }
    return entries;
}

// For an index of decoding times: goes to each keyframe and looks at the packet's presentation time. Seeks
// count in presentation time, so the place to ask for is guessed from the keyframe before, then from the one
// behind.
std::vector<DemuxFile::IndexEntry> DemuxFile::PresentedEntries(int containerIndex,
                                                               const std::vector<AVIndexEntry>& stored) {
    std::vector<IndexEntry> entries;
    std::int64_t delay = 0; // from decoding to presentation
    for (std::size_t i = 0; i < stored.size(); ++i) {
        const std::int64_t decoded = stored[i].timestamp;
        const bool last = i + 1 == stored.size();
        const std::int64_t behind = last ? decoded + 2 * delay + 1 : stored[i + 1].timestamp;
        std::optional<std::int64_t> presented;
        for (const std::int64_t place : {decoded + delay, behind - 1, behind + delay - 1}) {
            presented = PresentationOf(containerIndex, place, decoded);
            if (presented) {
                break;
            }
        }
        const auto time = presented ? ToTime(containerIndex, *presented) : std::nullopt;
        if (!time || !Append(entries, {*time, *presented})) {
            return {};
        }
        delay = std::max<std::int64_t>(*presented - decoded, 0);
    }
    return entries;
}

// Presentation timestamp of the keyframe with that decoding timestamp when a seek to `place` leads to it.
std::optional<std::int64_t> DemuxFile::PresentationOf(int containerIndex, std::int64_t place,
                                                      std::int64_t decoded) {
    if (!SeekRaw(containerIndex, place)) {
        return std::nullopt;
    }
    const AvPacketPointer packet(av_packet_alloc());
    if (!packet || av_read_frame(context.get(), packet.get()) < 0) {
        return std::nullopt;
    }
    const bool found = packet->stream_index == containerIndex && (packet->flags & AV_PKT_FLAG_KEY) != 0 &&
                       packet->dts == decoded && packet->pts != AV_NOPTS_VALUE;
    return found ? std::optional(packet->pts) : std::nullopt;
}

DemuxTime DemuxFile::WidestGap(const std::vector<IndexEntry>& entries) {
    DemuxTime widest = entries.size() < 2 ? std::numeric_limits<DemuxTime>::max() : 0;
    for (std::size_t i = 1; i < entries.size(); ++i) {
        widest = std::max(widest, entries[i].time - entries[i - 1].time);
    }
    return widest;
}

// An index that was cut short, or made up while reading, ends long before the file does.
bool DemuxFile::SpansFile(const std::vector<IndexEntry>& entries) const {
    if (entries.size() < 2 || duration <= 0) {
        return false;
    }
    constexpr DemuxTime kSlack = 1'000'000;
    return TimesOf(*context) == IndexTimes::Decoding ||
           duration - entries.back().time <= WidestGap(entries) + kSlack;
}

} // namespace brindlecast
