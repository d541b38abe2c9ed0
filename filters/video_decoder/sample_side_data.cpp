#include "filters/video_decoder/sample_side_data.h"

#include "filters/base/stream_formats.h"

namespace brindlecast {
namespace {

struct Carried {
    AVFrameSideDataType ofPicture;
    AVPacketSideDataType ofPacket;
};

constexpr Carried kCarried[] = {
    {AV_FRAME_DATA_DISPLAYMATRIX, AV_PKT_DATA_DISPLAYMATRIX},
    {AV_FRAME_DATA_MASTERING_DISPLAY_METADATA, AV_PKT_DATA_MASTERING_DISPLAY_METADATA},
    {AV_FRAME_DATA_CONTENT_LIGHT_LEVEL, AV_PKT_DATA_CONTENT_LIGHT_LEVEL},
};

Microsoft::WRL::ComPtr<ISampleSideData> HolderOf(IMediaSample& sample) {
    Microsoft::WRL::ComPtr<ISampleSideData> holder;
    if (FAILED(sample.QueryInterface(kIidSampleSideData, reinterpret_cast<void**>(holder.GetAddressOf())))) {
        return nullptr;
    }
    return holder;
}

} // namespace

InputSideData::InputSideData(IMediaSample& sample) : holder(HolderOf(sample)) {
    const ULONG count = holder ? holder->GetSideDataCount() : 0;
    for (ULONG i = 0; i < count; ++i) {
        GUID kind{};
        const BYTE* data = nullptr;
        ULONG size = 0;
        if (FAILED(holder->GetSideDataKind(i, &kind)) || FAILED(holder->GetSideData(kind, &data, &size))) {
            continue;
        }
        if (const auto type = PacketSideDataType(kind)) {
            blocks.push_back({static_cast<AVPacketSideDataType>(*type), {data, size}});
        }
    }
}

HRESULT CopySideData(const AVFrame& picture, IMediaSample& sample) {
    const auto holder = HolderOf(sample);
    if (!holder) {
        return S_OK;
    }
    for (const Carried& carried : kCarried) {
        const AVFrameSideData* data = av_frame_get_side_data(&picture, carried.ofPicture);
        if (!data) {
            continue;
        }
        const HRESULT result =
            holder->SetSideData(PacketSideDataKind(static_cast<std::uint32_t>(carried.ofPacket)), data->data,
                                static_cast<ULONG>(data->size));
        if (FAILED(result)) {
            return result;
        }
    }
    return S_OK;
}

} // namespace brindlecast
