#include "filters/core/demux_streams.h"

#include <algorithm>
#include <array>
#include <string_view>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace brindlecast {
namespace {

std::string LowerCase(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return text;
}

std::string Tag(const AVStream& stream, const char* key) {
    const AVDictionaryEntry* entry = av_dict_get(stream.metadata, key, nullptr, 0);
    return entry != nullptr && entry->value != nullptr ? entry->value : "";
}

std::optional<StreamKind> KindOf(const AVStream& stream) {
    switch (stream.codecpar->codec_type) {
    case AVMEDIA_TYPE_VIDEO: return StreamKind::Video;
    case AVMEDIA_TYPE_AUDIO: return StreamKind::Audio;
    case AVMEDIA_TYPE_SUBTITLE: return StreamKind::Subtitle;
    default: return std::nullopt;
    }
}

// Frame duration from the average rate. A rate beyond what any film has is a clock tick taken for a frame.
DemuxTime FrameDuration(AVFormatContext& context, AVStream& stream) {
    constexpr double kHighestRate = 300.0;
    AVRational rate = stream.avg_frame_rate;
    if (rate.num <= 0 || rate.den <= 0) {
        rate = av_guess_frame_rate(&context, &stream, nullptr);
    }
    if (rate.num <= 0 || rate.den <= 0 || av_q2d(rate) > kHighestRate) {
        return 0;
    }
    return av_rescale(10'000'000, rate.den, rate.num);
}

std::vector<SideDataBlock> OwnSideData(const AVStream& stream) {
    std::vector<SideDataBlock> blocks;
    for (int i = 0; i < stream.nb_side_data; ++i) {
        const AVPacketSideData& block = stream.side_data[i];
        const bool wanted = block.type == AV_PKT_DATA_DISPLAYMATRIX ||
                            block.type == AV_PKT_DATA_MASTERING_DISPLAY_METADATA ||
                            block.type == AV_PKT_DATA_CONTENT_LIGHT_LEVEL;
        if (wanted) {
            blocks.emplace_back(block.type, std::vector<std::uint8_t>(block.data, block.data + block.size));
        }
    }
    return blocks;
}

DemuxStream Describe(AVFormatContext& context, AVStream& stream, StreamKind kind) {
    DemuxStream described;
    described.containerIndex = stream.index;
    described.kind = kind;
    described.codecName = avcodec_get_name(stream.codecpar->codec_id);
    described.language = LowerCase(Tag(stream, "language"));
    if (described.language == "und") {
        described.language.clear();
    }
    described.title = Tag(stream, "title");
    described.isDefault = (stream.disposition & AV_DISPOSITION_DEFAULT) != 0;
    described.isForced = (stream.disposition & AV_DISPOSITION_FORCED) != 0;
    described.decodable = avcodec_find_decoder(stream.codecpar->codec_id) != nullptr;
    described.parameters = stream.codecpar;
    if (kind == StreamKind::Video) {
        described.decodable =
            described.decodable && stream.codecpar->width > 0 && stream.codecpar->height > 0;
        described.frameDuration = FrameDuration(context, stream);
        const AVRational aspect = av_guess_sample_aspect_ratio(&context, &stream, nullptr);
        if (aspect.num > 0 && aspect.den > 0) {
            described.aspectX = aspect.num;
            described.aspectY = aspect.den;
        }
        described.sideData = OwnSideData(stream);
    }
    if (kind == StreamKind::Audio) {
        described.decodable = described.decodable && stream.codecpar->sample_rate > 0 &&
                              stream.codecpar->ch_layout.nb_channels > 0;
    }
    return described;
}

// Languages with two codes: bibliographic, terminological.
constexpr std::array<std::pair<std::string_view, std::string_view>, 20> kLanguagePairs{{
    {"alb", "sqi"}, {"arm", "hye"}, {"baq", "eus"}, {"bur", "mya"}, {"chi", "zho"},
    {"cze", "ces"}, {"dut", "nld"}, {"fre", "fra"}, {"geo", "kat"}, {"ger", "deu"},
    {"gre", "ell"}, {"ice", "isl"}, {"mac", "mkd"}, {"mao", "mri"}, {"may", "msa"},
    {"per", "fas"}, {"rum", "ron"}, {"slo", "slk"}, {"tib", "bod"}, {"wel", "cym"},
}};

std::string_view Terminological(std::string_view code) {
    for (const auto& [bibliographic, terminological] : kLanguagePairs) {
        if (code == bibliographic) {
            return terminological;
        }
    }
    return code;
}

template <class Wanted>
int FirstWhere(const std::vector<DemuxStream>& streams, StreamKind kind, Wanted wanted) {
    for (std::size_t i = 0; i < streams.size(); ++i) {
        if (streams[i].kind == kind && streams[i].decodable && wanted(streams[i])) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

template <class Wanted>
int FirstOfLanguages(const std::vector<DemuxStream>& streams, StreamKind kind,
                     const std::vector<std::string>& languages, Wanted wanted) {
    for (const std::string& language : languages) {
        const int found = FirstWhere(streams, kind, [&](const DemuxStream& stream) {
            return SameLanguage(stream.language, language) && wanted(stream);
        });
        if (found >= 0) {
            return found;
        }
    }
    return -1;
}

int FirstOrDefault(const std::vector<DemuxStream>& streams, StreamKind kind) {
    const int flagged = FirstWhere(streams, kind, [](const DemuxStream& stream) { return stream.isDefault; });
    return flagged >= 0 ? flagged : FirstWhere(streams, kind, [](const DemuxStream&) { return true; });
}

} // namespace

std::vector<DemuxStream> DescribeStreams(AVFormatContext& context) {
    bool hasSound = false;
    for (unsigned i = 0; i < context.nb_streams; ++i) {
        hasSound = hasSound || context.streams[i]->codecpar->codec_type == AVMEDIA_TYPE_AUDIO;
    }
    std::vector<DemuxStream> streams;
    for (unsigned i = 0; i < context.nb_streams; ++i) {
        AVStream& stream = *context.streams[i];
        const auto kind = KindOf(stream);
        const bool picture = (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
        if (kind && !(picture && hasSound)) {
            streams.push_back(Describe(context, stream, *kind));
        }
    }
    return streams;
}

StreamChoice ChooseStreams(const std::vector<DemuxStream>& streams, const StreamPreferences& preferences) {
    StreamChoice choice;
    choice.video = FirstOrDefault(streams, StreamKind::Video);
    choice.audio = FirstOfLanguages(streams, StreamKind::Audio, preferences.audioLanguages,
                                    [](const DemuxStream&) { return true; });
    if (choice.audio < 0) {
        choice.audio = FirstOrDefault(streams, StreamKind::Audio);
    }
    using Subtitles = StreamPreferences::Subtitles;
    if (preferences.subtitles == Subtitles::None) {
        return choice;
    }
    const bool forcedOnly = preferences.subtitles == Subtitles::ForcedOnly;
    const auto allowed = [&](const DemuxStream& stream) {
        return !forcedOnly || stream.isForced;
    };
    choice.subtitle = FirstOfLanguages(streams, StreamKind::Subtitle, preferences.subtitleLanguages, allowed);
    if (choice.subtitle < 0 && (!forcedOnly || preferences.subtitleLanguages.empty())) {
        choice.subtitle = FirstWhere(streams, StreamKind::Subtitle, [&](const DemuxStream& stream) {
            return forcedOnly ? stream.isForced : stream.isDefault;
        });
    }
    return choice;
}

std::vector<std::string> ParseLanguages(const std::string& list) {
    std::vector<std::string> languages;
    std::string part;
    for (const char c : list + ",") {
        if (c == ',' || c == ';') {
            if (!part.empty()) {
                languages.push_back(LowerCase(part));
            }
            part.clear();
        } else if (c != ' ' && c != '\t') {
            part += c;
        }
    }
    return languages;
}

bool SameLanguage(const std::string& first, const std::string& second) {
    return !first.empty() && Terminological(first) == Terminological(second);
}

std::string DisplayName(const DemuxStream& stream) {
    std::string name = stream.title;
    if (!stream.language.empty()) {
        name += (name.empty() ? "[" : " [") + stream.language + "]";
    }
    name += (name.empty() ? "(" : " (") + stream.codecName + ")";
    return name;
}

} // namespace brindlecast
