#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

struct AVFormatContext;
struct AVCodecParameters;

namespace brindlecast {

// Times are in units of 100 ns on the graph's time line: 0 is where the container starts.
using DemuxTime = std::int64_t;

enum class StreamKind { Video, Audio, Subtitle };

// A packet side data block: AVPacketSideDataType and its bytes.
using SideDataBlock = std::pair<std::uint32_t, std::vector<std::uint8_t>>;

// A stream of the file as the player lists it.
struct DemuxStream {
    int containerIndex = 0;
    StreamKind kind = StreamKind::Video;
    std::string codecName; // FFmpeg's
    std::string language;  // ISO 639-2 as the file has it, lower case; empty when unknown
    std::string title;     // UTF-8
    bool isDefault = false;
    bool isForced = false;
    bool decodable = false;
    const AVCodecParameters* parameters = nullptr; // lives as long as the file is open
    DemuxTime frameDuration = 0;                   // video; 0 when unknown
    int aspectX = 0;                               // sample aspect ratio; 0 when unknown
    int aspectY = 0;
    std::vector<SideDataBlock> sideData; // the stream's own: display matrix, mastering display, light level
};

// Every video, audio and subtitle stream in container order. Attached pictures are left out when there is
// sound.
[[nodiscard]] std::vector<DemuxStream> DescribeStreams(AVFormatContext& context);

// Positions in the list of streams; -1 for none.
struct StreamChoice {
    int video = -1;
    int audio = -1;
    int subtitle = -1;
};

// What decides the streams at opening.
struct StreamPreferences {
    std::vector<std::string> audioLanguages;
    std::vector<std::string> subtitleLanguages;
    enum class Subtitles { None, ForcedOnly, Default };
    Subtitles subtitles = Subtitles::None;
};

// Only decodable streams are chosen. Video: the default flag, else the first. Audio: the first preferred
// language that is there, else the default flag, else the first. Subtitles: by mode and language, else none
// in ForcedOnly, else the default flag in Default.
[[nodiscard]] StreamChoice ChooseStreams(const std::vector<DemuxStream>& streams,
                                         const StreamPreferences& preferences);

// "kor, eng" as {"kor", "eng"}: lower case, no blanks, no empty parts.
[[nodiscard]] std::vector<std::string> ParseLanguages(const std::string& list);

// True for the same language, also when one code is bibliographic and the other terminological ("ger",
// "deu").
[[nodiscard]] bool SameLanguage(const std::string& first, const std::string& second);

// Title, language and codec name, for menus: "Title [kor] (aac)". Never empty.
[[nodiscard]] std::string DisplayName(const DemuxStream& stream);

} // namespace brindlecast
