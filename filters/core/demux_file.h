#pragma once

#include "filters/core/demux_input.h"
#include "filters/core/demux_streams.h"

#include <deque>
#include <memory>

struct AVIndexEntry;
struct AVPacket;

namespace brindlecast {

struct AvPacketFree {
    void operator()(AVPacket* packet) const noexcept;
};
using AvPacketPointer = std::unique_ptr<AVPacket, AvPacketFree>;

// One packet of a listed stream.
struct DemuxPacket {
    AvPacketPointer data;           // payload and side data; its own times are in the stream's time base
    int stream = -1;                // position in DemuxFile::Streams
    std::optional<DemuxTime> start; // presentation time; unknown in some containers
    DemuxTime duration = 0;         // 0 when unknown
    bool keyframe = false;
    bool discard = false; // to be decoded but not shown (edit lists)

    [[nodiscard]] std::size_t Bytes() const;
};

// An open media file. One thread at a time, except Interrupt and the constant descriptions.
class DemuxFile {
public:
    // `path` is UTF-8, a local file. Null with a negative FFmpeg error code when it is no media file, or has
    // neither sound nor video that can be decoded. Reads the file's head and index: milliseconds, more on
    // slow disks.
    static std::unique_ptr<DemuxFile> Open(const std::string& path, int& error);
    ~DemuxFile();

    DemuxFile(const DemuxFile&) = delete;
    DemuxFile& operator=(const DemuxFile&) = delete;

    [[nodiscard]] const std::vector<DemuxStream>& Streams() const { return streams; }
    // 0 when unknown.
    [[nodiscard]] DemuxTime Duration() const { return duration; }

    // Reads the container's index of the stream's keyframes. Called once, before the first Read; leaves the
    // file at its start. Afterwards Seek goes by this table. For a stream that has no trustworthy index the
    // table stays empty.
    void LoadKeyframes(int stream);
    // Presentation times, strictly rising. Empty: there is no table.
    [[nodiscard]] const std::vector<DemuxTime>& Keyframes() const { return keyframes; }
    // True when the index says that every frame is a keyframe (the table is empty then).
    [[nodiscard]] bool AllIntra() const { return allIntra; }

    // Goes to where reading must begin to show `target`: the keyframe of `stream` at or before it, or the
    // packet of a stream without keyframes. Packets of `stream` before that keyframe are not given by Read.
    // False when the file cannot seek; the place is then unknown.
    bool Seek(DemuxTime target, int stream);

    enum class ReadResult { Packet, End, Failed };
    // The next packet of a listed stream. Damaged data is skipped, End is also the answer at a truncated
    // end.
    ReadResult Read(DemuxPacket& packet);

    // Makes a running or the next Read fail soon (any thread), or possible again (when none is running).
    void Interrupt(bool interrupt) { input->Interrupt(interrupt); }

private:
    struct IndexEntry {
        DemuxTime time;
        std::int64_t timestamp; // for a seek, in the stream's time base
    };
    struct ContextClose {
        void operator()(AVFormatContext* closed) const noexcept;
    };

    DemuxFile() = default;
    int OpenContext(const std::string& path);
    void FindStart();
    [[nodiscard]] std::optional<DemuxTime> ToTime(int containerIndex, std::int64_t timestamp) const;
    [[nodiscard]] std::int64_t ToTimestamp(int containerIndex, DemuxTime time) const;
    [[nodiscard]] std::vector<IndexEntry> ReadIndex(int containerIndex);
    static bool Append(std::vector<IndexEntry>& entries, IndexEntry entry);
    [[nodiscard]] std::vector<IndexEntry> TimedEntries(int containerIndex,
                                                       const std::vector<AVIndexEntry>& stored) const;
    [[nodiscard]] std::vector<IndexEntry> PresentedEntries(int containerIndex,
                                                           const std::vector<AVIndexEntry>& stored);
    [[nodiscard]] std::optional<std::int64_t> PresentationOf(int containerIndex, std::int64_t place,
                                                             std::int64_t decoded);
    [[nodiscard]] static DemuxTime WidestGap(const std::vector<IndexEntry>& entries);
    [[nodiscard]] bool SpansFile(const std::vector<IndexEntry>& entries) const;
    void DiscardAllBut(int containerIndex);
    void SelectStreams();
    ReadResult ReadRaw(DemuxPacket& packet);
    bool SeekRaw(int containerIndex, std::int64_t timestamp);
    bool SeekToStart(int containerIndex);
    // Reads on to the first keyframe of the stream, keeping the packets for Read; its time, if there was
    // one.
    std::optional<DemuxTime> ReadToKeyframe(int stream);

    // Order matters: the context uses the input.
    std::unique_ptr<DemuxInput> input;
    std::unique_ptr<AVFormatContext, ContextClose> context;
    std::vector<DemuxStream> streams;
    std::vector<int> positions; // container index to position in streams, -1 for unlisted
    DemuxTime start = 0;
    DemuxTime duration = 0;
    int tableStream = -1;
    std::vector<IndexEntry> index; // one entry for each of keyframes
    std::vector<DemuxTime> keyframes;
    bool allIntra = false;
    std::deque<DemuxPacket> pending; // read while seeking
};

} // namespace brindlecast
