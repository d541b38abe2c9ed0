#include "engine/codec_names.h"
#include "engine/graph_pins.h"
#include "engine/hardware_choice.h"
#include "engine/player_engine.h"
#include "filters/include/lav_audio.h"
#include "filters/include/lav_video.h"

#include <amvideo.h>
#include <dvdmedia.h>
#include <uuids.h>

#include <array>
#include <optional>

namespace brindlecast {

namespace {

// The compression code of a video type's format block, nothing for other blocks.
std::optional<std::uint32_t> CompressionOf(const AM_MEDIA_TYPE& type) {
    if (type.pbFormat == nullptr) {
        return std::nullopt;
    }
    if (type.formattype == FORMAT_VideoInfo && type.cbFormat >= sizeof(VIDEOINFOHEADER)) {
        return reinterpret_cast<const VIDEOINFOHEADER*>(type.pbFormat)->bmiHeader.biCompression;
    }
    if (type.formattype == FORMAT_VideoInfo2 && type.cbFormat >= sizeof(VIDEOINFOHEADER2)) {
        return reinterpret_cast<const VIDEOINFOHEADER2*>(type.pbFormat)->bmiHeader.biCompression;
    }
    return std::nullopt;
}

// The four-character code that a subtype stands for, 0 for a subtype of another form.
std::uint32_t FourCcOf(GUID subtype) {
    const std::uint32_t code = subtype.Data1;
    subtype.Data1 = 0;
    constexpr GUID kFourCcForm = {0, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
    return subtype == kFourCcForm ? code : 0;
}

std::wstring FromSystemCodePage(const std::string& text) {
    std::array<wchar_t, 8> buffer{};
    const int length = MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()),
                                           buffer.data(), static_cast<int>(buffer.size()));
    return {buffer.data(), static_cast<std::size_t>(length)};
}

std::wstring VideoCodecName(const AM_MEDIA_TYPE& type) {
    if (const wchar_t* known = KnownVideoCodecName(FourCcOf(type.subtype)); known != nullptr) {
        return known;
    }
    return FromSystemCodePage(CompressionText(CompressionOf(type).value_or(0)));
}

// The type under which the pin is connected, released when done.
struct ConnectionType : AM_MEDIA_TYPE {
    ConnectionType() : AM_MEDIA_TYPE{} {}
    ConnectionType(const ConnectionType&) = delete;
    ConnectionType& operator=(const ConnectionType&) = delete;
    ~ConnectionType() { FreeMediaTypeContent(*this); }
};

std::wstring ConnectedVideoCodec(IBaseFilter* decoder) {
    std::wstring codec;
    std::vector<ComPtr<IPin>> pins;
    if (FAILED(ListPins(decoder, PINDIR_INPUT, pins))) {
        return codec;
    }
    for (const ComPtr<IPin>& pin : pins) {
        ComPtr<IPin> peer;
        ConnectionType type;
        if (SUCCEEDED(pin->ConnectedTo(&peer)) && SUCCEEDED(pin->ConnectionMediaType(&type)) &&
            type.majortype == MEDIATYPE_Video) {
            codec = VideoCodecName(type);
        }
    }
    return codec;
}

} // namespace

MediaSummary PlayerEngine::GetMediaSummary() const {
    MediaSummary summary;
    if (lavVideo != nullptr) {
        if (const auto status = QueryFor<ILAVVideoStatus>(lavVideo.Get()); status != nullptr) {
            if (const wchar_t* name = status->GetActiveDecoderName(); name != nullptr) {
                summary.decoderName = name;
                summary.isHardware = IsHardwareDecoderName(summary.decoderName);
            }
        }
        summary.videoCodec = ConnectedVideoCodec(lavVideo.Get());
    }
    if (const auto status = QueryFor<ILAVAudioStatus>(lavAudio.Get()); status != nullptr) {
        LPCSTR codec = nullptr;
        LPCSTR format = nullptr;
        int channels = 0;
        int sampleRate = 0;
        DWORD channelMask = 0;
        if (SUCCEEDED(status->GetDecodeDetails(&codec, &format, &channels, &sampleRate, &channelMask))) {
            summary.audioCodec = UpperCaseCodecName(codec);
            summary.audioChannels = channels;
            summary.audioSampleRate = sampleRate;
        }
    }
    summary.frameRate = frameRate;
    return summary;
}

} // namespace brindlecast
