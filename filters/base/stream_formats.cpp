#include "filters/base/stream_formats.h"

#include <algorithm>
#include <cstring>
#include <ks.h>
#include <ksmedia.h>
#include <mmreg.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavcodec/codec_par.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
}

namespace brindlecast {
namespace {

constexpr std::uint32_t FourCc(char a, char b, char c, char d) {
    return MKTAG(static_cast<unsigned char>(a), static_cast<unsigned char>(b), static_cast<unsigned char>(c),
                 static_cast<unsigned char>(d));
}

constexpr std::uint16_t kTagRawAac = 0x00ff;
constexpr std::uint16_t kTagAdtsAac = 0x1600;
constexpr std::size_t kMaxAudioExtradata = 0xffff; // cbSize has 16 bits

struct VideoTag {
    AVCodecID codec;
    std::uint32_t tag;
};

// Tags of ours where FFmpeg's table has none, has a lower-case one, or has several. The first of a codec is
// written; all are read.
constexpr VideoTag kVideoTags[] = {
    {AV_CODEC_ID_H264, FourCc('H', '2', '6', '4')},
    {AV_CODEC_ID_H264, FourCc('A', 'V', 'C', '1')},
    {AV_CODEC_ID_H264, FourCc('h', '2', '6', '4')},
    {AV_CODEC_ID_H264, FourCc('a', 'v', 'c', '1')},
    {AV_CODEC_ID_HEVC, FourCc('H', 'E', 'V', 'C')},
    {AV_CODEC_ID_HEVC, FourCc('H', 'V', 'C', '1')},
    {AV_CODEC_ID_MPEG1VIDEO, FourCc('M', 'P', 'G', '1')},
    {AV_CODEC_ID_MPEG2VIDEO, FourCc('M', 'P', 'G', '2')},
    {AV_CODEC_ID_MPEG4, FourCc('M', 'P', '4', 'V')},
    {AV_CODEC_ID_VP8, FourCc('V', 'P', '8', '0')},
    {AV_CODEC_ID_VP9, FourCc('V', 'P', '9', '0')},
    {AV_CODEC_ID_AV1, FourCc('A', 'V', '0', '1')},
    {AV_CODEC_ID_VC1, FourCc('W', 'V', 'C', '1')},
    {AV_CODEC_ID_WMV3, FourCc('W', 'M', 'V', '3')},
    {AV_CODEC_ID_MJPEG, FourCc('M', 'J', 'P', 'G')},
};

bool HasConfigurationRecord(const AVCodecParameters& parameters) {
    return parameters.extradata_size > 6 && parameters.extradata[0] == 1;
}

// 0 when the codec has no FOURCC.
std::uint32_t VideoTagFor(const AVCodecParameters& parameters) {
    if (parameters.codec_id == AV_CODEC_ID_H264 && HasConfigurationRecord(parameters)) {
        return FourCc('A', 'V', 'C', '1');
    }
    if (parameters.codec_id == AV_CODEC_ID_HEVC && HasConfigurationRecord(parameters)) {
        return FourCc('H', 'V', 'C', '1');
    }
    for (const VideoTag& entry : kVideoTags) {
        if (entry.codec == parameters.codec_id) {
            return entry.tag;
        }
    }
    const AVCodecTag* const riff[] = {avformat_get_riff_video_tags(), nullptr};
    return av_codec_get_tag(riff, parameters.codec_id);
}

AVCodecID VideoCodecFor(std::uint32_t tag) {
    for (const VideoTag& entry : kVideoTags) {
        if (entry.tag == tag) {
            return entry.codec;
        }
    }
    const AVCodecTag* const tables[] = {avformat_get_riff_video_tags(), avformat_get_mov_video_tags(),
                                        nullptr};
    return av_codec_get_id(tables, tag);
}

GUID VideoSubtype(const AVCodecParameters& parameters, std::uint32_t tag) {
    if (parameters.codec_id == AV_CODEC_ID_MPEG1VIDEO) {
        return MEDIASUBTYPE_MPEG1Payload;
    }
    if (parameters.codec_id == AV_CODEC_ID_MPEG2VIDEO) {
        return MEDIASUBTYPE_MPEG2_VIDEO;
    }
    return tag != 0 ? TagSubtype(tag) : CodecSubtype(parameters.codec_id);
}

void FillVideoHeader(VIDEOINFOHEADER2& header, const AVCodecParameters& parameters,
                     const StreamTiming& timing, std::uint32_t tag) {
    header.rcSource = header.rcTarget = {0, 0, parameters.width, parameters.height};
    header.dwBitRate = static_cast<DWORD>(std::clamp<std::int64_t>(parameters.bit_rate, 0, 0x7fffffff));
    header.AvgTimePerFrame = timing.frameDuration;
    const bool interlaced =
        parameters.field_order != AV_FIELD_UNKNOWN && parameters.field_order != AV_FIELD_PROGRESSIVE;
    header.dwInterlaceFlags = interlaced ? AMINTERLACE_IsInterlaced | AMINTERLACE_DisplayModeBobOrWeave : 0;
    const bool ownAspect = timing.aspectX > 0 && timing.aspectY > 0;
    const AVRational sample =
        ownAspect ? AVRational{timing.aspectX, timing.aspectY} : parameters.sample_aspect_ratio;
    const bool known = sample.num > 0 && sample.den > 0;
    int x = 0;
    int y = 0;
    av_reduce(&x, &y, static_cast<std::int64_t>(parameters.width) * (known ? sample.num : 1),
              static_cast<std::int64_t>(parameters.height) * (known ? sample.den : 1), 0x7fffffff);
    header.dwPictAspectRatioX = static_cast<DWORD>(x);
    header.dwPictAspectRatioY = static_cast<DWORD>(y);
    BITMAPINFOHEADER& bitmap = header.bmiHeader;
    bitmap.biSize = sizeof(BITMAPINFOHEADER);
    bitmap.biWidth = parameters.width;
    bitmap.biHeight = parameters.height;
    bitmap.biPlanes = 1;
    bitmap.biBitCount = static_cast<WORD>(
        parameters.bits_per_coded_sample > 0 ? std::min(parameters.bits_per_coded_sample, 64) : 24);
    bitmap.biCompression = tag;
    const std::int64_t imageSize = static_cast<std::int64_t>(parameters.width) * parameters.height * 3;
    bitmap.biSizeImage = static_cast<DWORD>(std::min<std::int64_t>(imageSize, 0x7fffffff));
}

// Reads the configuration records of MP4 byte by byte; past the end it answers zeros and remembers.
class RecordReader {
public:
    RecordReader(const std::uint8_t* record, int recordSize)
        : data(record), size(static_cast<std::size_t>(recordSize)) {}

    [[nodiscard]] std::uint8_t Byte(std::size_t offset) const { return offset < size ? data[offset] : 0; }
    void Skip(std::size_t count) { position += count; }
    std::uint32_t Next8() { return Byte(position++); }
    std::uint32_t Next16() {
        const std::uint32_t high = Next8();
        return high << 8 | Next8();
    }
    // A unit behind a 16-bit length, appended with that length; false at the end of the data.
    bool AppendUnit(std::vector<std::uint8_t>& out) {
        const std::uint32_t length = Next16();
        if (position + length > size) {
            return false;
        }
        out.push_back(static_cast<std::uint8_t>(length >> 8));
        out.push_back(static_cast<std::uint8_t>(length));
        out.insert(out.end(), data + position, data + position + length);
        position += length;
        return true;
    }

private:
    const std::uint8_t* data;
    std::size_t size;
    std::size_t position = 0;
};

// Parameter sets behind 16-bit lengths, from avcC or hvcC.
std::vector<std::uint8_t> ParameterSets(const AVCodecParameters& parameters) {
    std::vector<std::uint8_t> sets;
    RecordReader reader(parameters.extradata, parameters.extradata_size);
    if (parameters.codec_id == AV_CODEC_ID_H264) {
        reader.Skip(5);
        for (const std::uint32_t mask : {0x1fu, 0xffu}) { // sequence sets, then picture sets
            for (std::uint32_t count = reader.Next8() & mask; count > 0; --count) {
                if (!reader.AppendUnit(sets)) {
                    return sets;
                }
            }
        }
        return sets;
    }
    reader.Skip(22);
    for (std::uint32_t arrays = reader.Next8(); arrays > 0; --arrays) {
        reader.Skip(1);
        for (std::uint32_t count = reader.Next16(); count > 0; --count) {
            if (!reader.AppendUnit(sets)) {
                return sets;
            }
        }
    }
    return sets;
}

MediaType Mpeg2VideoType(const AVCodecParameters& parameters, const VIDEOINFOHEADER2& header,
                         const GUID& subtype) {
    const bool avc = header.bmiHeader.biCompression == FourCc('A', 'V', 'C', '1');
    const bool hvc = header.bmiHeader.biCompression == FourCc('H', 'V', 'C', '1');
    std::vector<std::uint8_t> sequence;
    DWORD lengthBytes = 0;
    if (avc || hvc) {
        sequence = ParameterSets(parameters);
        const RecordReader record(parameters.extradata, parameters.extradata_size);
        lengthBytes = (record.Byte(avc ? 4 : 21) & 3u) + 1;
    } else if (parameters.extradata_size > 0) {
        sequence.assign(parameters.extradata, parameters.extradata + parameters.extradata_size);
    }
    MediaType type(MEDIATYPE_Video, subtype);
    constexpr std::size_t kHeader = offsetof(MPEG2VIDEOINFO, dwSequenceHeader);
    auto* info = reinterpret_cast<MPEG2VIDEOINFO*>(
        type.AllocateFormat(FORMAT_MPEG2Video, std::max(sizeof(MPEG2VIDEOINFO), kHeader + sequence.size())));
    info->hdr = header;
    info->cbSequenceHeader = static_cast<DWORD>(sequence.size());
    info->dwProfile = parameters.profile > 0 ? static_cast<DWORD>(parameters.profile) : 0;
    info->dwLevel = parameters.level > 0 ? static_cast<DWORD>(parameters.level) : 0;
    info->dwFlags = lengthBytes;
    if (!sequence.empty()) {
        std::memcpy(info->dwSequenceHeader, sequence.data(), sequence.size());
    }
    return type;
}

std::vector<MediaType> VideoTypes(const AVCodecParameters& parameters, const StreamTiming& timing) {
    if (parameters.width <= 0 || parameters.height <= 0) {
        return {};
    }
    const std::uint32_t tag = VideoTagFor(parameters);
    const GUID subtype = VideoSubtype(parameters, tag);
    VIDEOINFOHEADER2 header{};
    FillVideoHeader(header, parameters, timing, tag);
    MediaType first(MEDIATYPE_Video, subtype);
    const auto extra = static_cast<std::size_t>(parameters.extradata_size);
    BYTE* block = first.AllocateFormat(FORMAT_VideoInfo2, sizeof(header) + extra);
    std::memcpy(block, &header, sizeof(header));
    if (extra != 0) {
        std::memcpy(block + sizeof(header), parameters.extradata, extra);
    }
    std::vector<MediaType> types;
    types.push_back(std::move(first));
    types.push_back(Mpeg2VideoType(parameters, header, subtype));
    return types;
}

std::uint16_t PcmTag(AVCodecID codec) {
    switch (codec) {
    case AV_CODEC_ID_PCM_U8:
    case AV_CODEC_ID_PCM_S16LE:
    case AV_CODEC_ID_PCM_S24LE:
    case AV_CODEC_ID_PCM_S32LE: return WAVE_FORMAT_PCM;
    case AV_CODEC_ID_PCM_F32LE:
    case AV_CODEC_ID_PCM_F64LE: return WAVE_FORMAT_IEEE_FLOAT;
    default: return 0;
    }
}

AVCodecID PcmCodec(std::uint16_t tag, int bits) {
    if (tag == WAVE_FORMAT_IEEE_FLOAT) {
        return bits == 64 ? AV_CODEC_ID_PCM_F64LE : bits == 32 ? AV_CODEC_ID_PCM_F32LE : AV_CODEC_ID_NONE;
    }
    switch (bits) {
    case 8: return AV_CODEC_ID_PCM_U8;
    case 16: return AV_CODEC_ID_PCM_S16LE;
    case 24: return AV_CODEC_ID_PCM_S24LE;
    case 32: return AV_CODEC_ID_PCM_S32LE;
    default: return AV_CODEC_ID_NONE;
    }
}

// 0 when the codec has no wave tag that leads back to it.
std::uint16_t AudioTagFor(const AVCodecParameters& parameters) {
    if (parameters.codec_id == AV_CODEC_ID_AAC) {
        return parameters.extradata_size > 0 ? kTagRawAac : kTagAdtsAac;
    }
    if (const std::uint16_t pcm = PcmTag(parameters.codec_id); pcm != 0) {
        return pcm;
    }
    const AVCodecTag* const riff[] = {avformat_get_riff_audio_tags(), nullptr};
    const unsigned tag = av_codec_get_tag(riff, parameters.codec_id);
    const bool leadsBack = tag != 0 && tag <= 0xffff && tag != WAVE_FORMAT_PCM &&
                           tag != WAVE_FORMAT_IEEE_FLOAT && av_codec_get_id(riff, tag) == parameters.codec_id;
    return leadsBack ? static_cast<std::uint16_t>(tag) : 0;
}

AVCodecID AudioCodecFor(std::uint16_t tag, int bits) {
    if (tag == WAVE_FORMAT_PCM || tag == WAVE_FORMAT_IEEE_FLOAT) {
        return PcmCodec(tag, bits);
    }
    if (tag == kTagRawAac || tag == kTagAdtsAac) {
        return AV_CODEC_ID_AAC;
    }
    const AVCodecTag* const riff[] = {avformat_get_riff_audio_tags(), nullptr};
    return av_codec_get_id(riff, tag);
}

std::vector<MediaType> AudioTypes(const AVCodecParameters& parameters) {
    const int channels = parameters.ch_layout.nb_channels;
    const auto extra = static_cast<std::size_t>(parameters.extradata_size);
    if (parameters.sample_rate <= 0 || channels <= 0 || channels > 0xffff || extra > kMaxAudioExtradata) {
        return {};
    }
    const std::uint16_t tag = AudioTagFor(parameters);
    WAVEFORMATEXTENSIBLE wave{};
    WAVEFORMATEX& format = wave.Format;
    format.wFormatTag = tag;
    format.nChannels = static_cast<WORD>(channels);
    format.nSamplesPerSec = static_cast<DWORD>(parameters.sample_rate);
    const int bits = parameters.bits_per_coded_sample > 0 ? parameters.bits_per_coded_sample
                                                          : parameters.bits_per_raw_sample;
    format.wBitsPerSample = static_cast<WORD>(std::clamp(bits, 0, 64));
    format.nBlockAlign = static_cast<WORD>(std::clamp(parameters.block_align, 1, 0xffff));
    format.nAvgBytesPerSec =
        static_cast<DWORD>(std::clamp<std::int64_t>(parameters.bit_rate / 8, 0, 0x7fffffff));
    MediaType type(MEDIATYPE_Audio, tag != 0 ? TagSubtype(tag) : CodecSubtype(parameters.codec_id));
    if (PcmTag(parameters.codec_id) != 0) {
        format.wBitsPerSample = static_cast<WORD>(av_get_bits_per_sample(parameters.codec_id));
        format.nBlockAlign = static_cast<WORD>(channels * format.wBitsPerSample / 8);
        format.nAvgBytesPerSec = format.nBlockAlign * format.nSamplesPerSec;
        if (channels > 2 || format.wBitsPerSample > 16) {
            format.wFormatTag = WAVE_FORMAT_EXTENSIBLE;
            format.cbSize = sizeof(wave) - sizeof(format);
            wave.Samples.wValidBitsPerSample = format.wBitsPerSample;
            if (parameters.ch_layout.order == AV_CHANNEL_ORDER_NATIVE) {
                wave.dwChannelMask = static_cast<DWORD>(parameters.ch_layout.u.mask);
            }
            wave.SubFormat = TagSubtype(tag);
            type.SetFormat(FORMAT_WaveFormatEx, &wave, sizeof(wave));
            return {std::move(type)};
        }
    }
    format.cbSize = static_cast<WORD>(extra);
    BYTE* block = type.AllocateFormat(FORMAT_WaveFormatEx, sizeof(format) + extra);
    std::memcpy(block, &format, sizeof(format));
    if (extra != 0) {
        std::memcpy(block + sizeof(format), parameters.extradata, extra);
    }
    return {std::move(type)};
}

bool SetExtradata(AVCodecParameters& parameters, const void* data, std::size_t size) {
    if (size == 0) {
        return true;
    }
    if (size > 0x7fffffff - AV_INPUT_BUFFER_PADDING_SIZE) {
        return false;
    }
    parameters.extradata = static_cast<std::uint8_t*>(av_mallocz(size + AV_INPUT_BUFFER_PADDING_SIZE));
    if (parameters.extradata == nullptr) {
        return false;
    }
    std::memcpy(parameters.extradata, data, size);
    parameters.extradata_size = static_cast<int>(size);
    return true;
}

AVCodecID VideoCodecOf(const AM_MEDIA_TYPE& type, DWORD compression) {
    if (const auto codec = CodecOfSubtype(type.subtype)) {
        return static_cast<AVCodecID>(*codec);
    }
    if (type.subtype == MEDIASUBTYPE_MPEG1Payload || type.subtype == MEDIASUBTYPE_MPEG1Packet) {
        return AV_CODEC_ID_MPEG1VIDEO;
    }
    if (type.subtype == MEDIASUBTYPE_MPEG2_VIDEO) {
        return AV_CODEC_ID_MPEG2VIDEO;
    }
    const auto tag = TagOfSubtype(type.subtype);
    const AVCodecID codec = tag ? VideoCodecFor(*tag) : AV_CODEC_ID_NONE;
    return codec != AV_CODEC_ID_NONE || tag ? codec : VideoCodecFor(compression);
}

// avcC from the parameter sets of an MPEG2VIDEOINFO, which stand behind 16-bit lengths.
std::vector<std::uint8_t> AvcRecord(const std::uint8_t* sets, std::size_t size, unsigned lengthBytes) {
    std::vector<std::uint8_t> sequence;
    std::vector<std::uint8_t> picture;
    int sequenceCount = 0;
    int pictureCount = 0;
    for (std::size_t at = 0; at + 2 < size;) {
        const std::size_t length = static_cast<std::size_t>(sets[at]) << 8 | sets[at + 1];
        if (length == 0 || at + 2 + length > size) {
            break;
        }
        const bool isSequence = (sets[at + 2] & 0x1f) == 7;
        auto& target = isSequence ? sequence : picture;
        ++(isSequence ? sequenceCount : pictureCount);
        target.insert(target.end(), sets + at, sets + at + 2 + length);
        at += 2 + length;
    }
    if (sequence.size() < 6 || sequenceCount > 31 || pictureCount > 255) {
        return {};
    }
    std::vector<std::uint8_t> record = {1,
                                        sequence[3],
                                        sequence[4],
                                        sequence[5],
                                        static_cast<std::uint8_t>(0xfc | (lengthBytes - 1)),
                                        static_cast<std::uint8_t>(0xe0 | sequenceCount)};
    record.insert(record.end(), sequence.begin(), sequence.end());
    record.push_back(static_cast<std::uint8_t>(pictureCount));
    record.insert(record.end(), picture.begin(), picture.end());
    return record;
}

bool ReadMpeg2Extradata(AVCodecParameters& parameters, const AM_MEDIA_TYPE& type,
                        const MPEG2VIDEOINFO& info) {
    constexpr std::size_t kHeader = offsetof(MPEG2VIDEOINFO, dwSequenceHeader);
    const std::size_t size = std::min<std::size_t>(info.cbSequenceHeader, type.cbFormat - kHeader);
    const auto* sets = reinterpret_cast<const std::uint8_t*>(info.dwSequenceHeader);
    if (parameters.codec_id == AV_CODEC_ID_H264 && info.dwFlags >= 1 && info.dwFlags <= 4) {
        const std::vector<std::uint8_t> record = AvcRecord(sets, size, info.dwFlags);
        return !record.empty() && SetExtradata(parameters, record.data(), record.size());
    }
    if (parameters.codec_id == AV_CODEC_ID_HEVC && info.dwFlags != 0) {
        return false; // the first type of the pin carries hvcC whole
    }
    return SetExtradata(parameters, sets, size);
}

template <class Header>
void ReadBitmap(AVCodecParameters& parameters, const Header& header) {
    parameters.width = header.bmiHeader.biWidth;
    parameters.height =
        header.bmiHeader.biHeight < 0 ? -header.bmiHeader.biHeight : header.bmiHeader.biHeight;
    parameters.bits_per_coded_sample = header.bmiHeader.biBitCount;
    parameters.codec_tag = header.bmiHeader.biCompression;
}

void ReadAspect(AVCodecParameters& parameters, const VIDEOINFOHEADER2& header) {
    if (header.dwPictAspectRatioX == 0 || header.dwPictAspectRatioY == 0 || parameters.width <= 0 ||
        parameters.height <= 0) {
        return;
    }
    av_reduce(&parameters.sample_aspect_ratio.num, &parameters.sample_aspect_ratio.den,
              static_cast<std::int64_t>(header.dwPictAspectRatioX) * parameters.height,
              static_cast<std::int64_t>(header.dwPictAspectRatioY) * parameters.width, 0x7fffffff);
}

bool ReadVideo(AVCodecParameters& parameters, const AM_MEDIA_TYPE& type) {
    parameters.codec_type = AVMEDIA_TYPE_VIDEO;
    if (const auto* info = MediaType::FormatOf<MPEG2VIDEOINFO>(type, FORMAT_MPEG2Video)) {
        parameters.codec_id = VideoCodecOf(type, info->hdr.bmiHeader.biCompression);
        ReadBitmap(parameters, info->hdr);
        ReadAspect(parameters, info->hdr);
        return ReadMpeg2Extradata(parameters, type, *info);
    }
    if (const auto* header = MediaType::FormatOf<VIDEOINFOHEADER2>(type, FORMAT_VideoInfo2)) {
        parameters.codec_id = VideoCodecOf(type, header->bmiHeader.biCompression);
        ReadBitmap(parameters, *header);
        ReadAspect(parameters, *header);
        return SetExtradata(parameters, type.pbFormat + sizeof(*header), type.cbFormat - sizeof(*header));
    }
    if (const auto* header = MediaType::FormatOf<VIDEOINFOHEADER>(type, FORMAT_VideoInfo)) {
        parameters.codec_id = VideoCodecOf(type, header->bmiHeader.biCompression);
        ReadBitmap(parameters, *header);
        return SetExtradata(parameters, type.pbFormat + sizeof(*header), type.cbFormat - sizeof(*header));
    }
    return false;
}

bool ReadAudio(AVCodecParameters& parameters, const AM_MEDIA_TYPE& type) {
    const auto* format = MediaType::FormatOf<WAVEFORMATEX>(type, FORMAT_WaveFormatEx);
    if (format == nullptr || format->nChannels == 0 || format->nSamplesPerSec == 0) {
        return false;
    }
    parameters.codec_type = AVMEDIA_TYPE_AUDIO;
    std::size_t extra = std::min<std::size_t>(format->cbSize, type.cbFormat - sizeof(*format));
    const auto* extraData = type.pbFormat + sizeof(*format);
    std::uint16_t tag = format->wFormatTag;
    std::uint64_t mask = 0;
    constexpr std::size_t kExtension = sizeof(WAVEFORMATEXTENSIBLE) - sizeof(WAVEFORMATEX);
    if (tag == WAVE_FORMAT_EXTENSIBLE && extra >= kExtension) {
        const auto* wave = reinterpret_cast<const WAVEFORMATEXTENSIBLE*>(format);
        tag = static_cast<std::uint16_t>(TagOfSubtype(wave->SubFormat).value_or(0));
        mask = wave->dwChannelMask;
        extra -= kExtension;
        extraData += kExtension;
    }
    if (const auto codec = CodecOfSubtype(type.subtype)) {
        parameters.codec_id = static_cast<AVCodecID>(*codec);
    } else {
        parameters.codec_id = AudioCodecFor(tag, format->wBitsPerSample);
    }
    parameters.sample_rate = static_cast<int>(std::min<DWORD>(format->nSamplesPerSec, 0x7fffffff));
    parameters.block_align = format->nBlockAlign;
    parameters.bits_per_coded_sample = format->wBitsPerSample;
    parameters.bit_rate = static_cast<std::int64_t>(format->nAvgBytesPerSec) * 8;
    av_channel_layout_uninit(&parameters.ch_layout);
    if (mask == 0 || av_channel_layout_from_mask(&parameters.ch_layout, mask) < 0 ||
        parameters.ch_layout.nb_channels != format->nChannels) {
        av_channel_layout_uninit(&parameters.ch_layout);
        av_channel_layout_default(&parameters.ch_layout, format->nChannels);
    }
    return SetExtradata(parameters, extraData, extra);
}

} // namespace

std::vector<MediaType> MediaTypesFor(const AVCodecParameters& parameters, const StreamTiming& timing) {
    switch (parameters.codec_type) {
    case AVMEDIA_TYPE_VIDEO: return VideoTypes(parameters, timing);
    case AVMEDIA_TYPE_AUDIO: return AudioTypes(parameters);
    case AVMEDIA_TYPE_SUBTITLE: {
        MediaType type(kMediaTypeSubtitle, CodecSubtype(parameters.codec_id));
        type.SetFormat(kFormatSubtitle, parameters.extradata,
                       static_cast<std::size_t>(parameters.extradata_size));
        return {std::move(type)};
    }
    default: return {};
    }
}

AVCodecParameters* ParametersFromMediaType(const AM_MEDIA_TYPE& type) {
    AVCodecParameters* parameters = avcodec_parameters_alloc();
    if (parameters == nullptr) {
        return nullptr;
    }
    bool understood = false;
    if (type.majortype == MEDIATYPE_Video) {
        understood = ReadVideo(*parameters, type);
    } else if (type.majortype == MEDIATYPE_Audio) {
        understood = ReadAudio(*parameters, type);
    } else if (const auto codec = CodecOfSubtype(type.subtype);
               codec && type.majortype == kMediaTypeSubtitle && type.formattype == kFormatSubtitle) {
        parameters->codec_type = AVMEDIA_TYPE_SUBTITLE;
        parameters->codec_id = static_cast<AVCodecID>(*codec);
        understood = SetExtradata(*parameters, type.pbFormat, type.cbFormat);
    }
    if (!understood || parameters->codec_id == AV_CODEC_ID_NONE) {
        avcodec_parameters_free(&parameters);
    }
    return parameters;
}

} // namespace brindlecast
