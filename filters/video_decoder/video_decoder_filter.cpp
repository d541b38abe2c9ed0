#include "filters/video_decoder/video_decoder_filter.h"

#include "filters/base/stream_formats.h"
#include "filters/video_decoder/output_type.h"
#include "filters/video_decoder/sample_side_data.h"

#include <algorithm>
#include <utility>

namespace brindlecast {
namespace {

using Microsoft::WRL::ComPtr;

// One being filled, one on its way, one on the screen.
constexpr LONG kOutputBuffers = 3;
constexpr LONG kOutputAlignment = 64;

REFERENCE_TIME FrameDurationOf(const MediaType& type) {
    REFERENCE_TIME duration = 0;
    if (const auto* info = type.Format<VIDEOINFOHEADER2>(FORMAT_VideoInfo2)) {
        duration = info->AvgTimePerFrame;
    } else if (const auto* oldInfo = type.Format<VIDEOINFOHEADER>(FORMAT_VideoInfo)) {
        duration = oldInfo->AvgTimePerFrame;
    } else if (const auto* mpegInfo = type.Format<MPEG2VIDEOINFO>(FORMAT_MPEG2Video)) {
        duration = mpegInfo->hdr.AvgTimePerFrame;
    }
    return std::clamp<REFERENCE_TIME>(duration, 0, 60 * kTime100nsPerSecond);
}

// Colours and aspect may be told late or not at all; another size or memory layout must be agreed on.
bool NeedsNewMemory(const VideoShape& from, const VideoShape& to) {
    return from.width != to.width || from.height != to.height;
}

// Fields come and go within a stream; a change of type for each would cost more than it tells.
bool LooksTheSame(VideoShape from, const VideoShape& to) {
    from.interlaceFlags = to.interlaceFlags;
    return from == to;
}

} // namespace

VideoDecoderFilter::VideoDecoderFilter() : TransformFilter(kClsidLavVideo, L"Input", L"Output") {}

void* VideoDecoderFilter::FindInterface(REFIID iid) noexcept {
    if (iid == __uuidof(ILAVVideoSettings)) {
        return static_cast<ILAVVideoSettings*>(this);
    }
    if (iid == __uuidof(ILAVVideoStatus)) {
        return static_cast<ILAVVideoStatus*>(this);
    }
    if (iid == kIidPictureOrientation) {
        return static_cast<IPictureOrientation*>(this);
    }
    return TransformFilter::FindInterface(iid);
}

int VideoDecoderFilter::GetPictureRotation() {
    const auto source = Input().Peer();
    return source != nullptr ? PictureRotationOf(*source.Get()) : 0;
}

STDMETHODIMP_(LPCWSTR) VideoDecoderFilter::GetActiveDecoderName() {
    return hasDecoder ? L"avcodec" : nullptr;
}

STDMETHODIMP VideoDecoderFilter::GetHWAccelActiveDevice(BSTR* device) {
    if (!device) {
        return E_POINTER;
    }
    *device = nullptr;
    return HRESULT_FROM_WIN32(ERROR_NOT_FOUND);
}

HRESULT VideoDecoderFilter::CheckInput(const MediaType& type) {
    if (type->majortype != MEDIATYPE_Video) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    const ParametersPtr parameters(ParametersFromMediaType(type.Get()));
    const bool known = parameters && parameters->codec_type == AVMEDIA_TYPE_VIDEO &&
                       avcodec_find_decoder(parameters->codec_id) != nullptr;
    return known ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

HRESULT VideoDecoderFilter::OnInputType(const MediaType& type) {
    const ParametersPtr parameters(ParametersFromMediaType(type.Get()));
    if (!parameters) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    if (decoder && State() != State_Stopped) {
        const HRESULT drained = Drain();
        if (drained != S_OK) {
            return drained;
        }
    }
    const REFERENCE_TIME frameDuration = FrameDurationOf(type);
    auto newDecoder = VideoDecoder::Create(*parameters, frameDuration, Threads());
    if (!newDecoder) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    newDecoder->StartSegment(rate);
    containerAspect = parameters->sample_aspect_ratio;
    if (!Output().IsConnected()) {
        SetExpected({ShapeOf(*parameters, newDecoder->Context()), ExpectedFormat(newDecoder->Context()),
                     frameDuration});
    }
    decoder = std::move(newDecoder);
    hasDecoder = true;
    return S_OK;
}

void VideoDecoderFilter::OnInputDisconnected() {
    hasDecoder = false;
    decoder.reset();
}

VideoDecoderFilter::Expected VideoDecoderFilter::CurrentExpected() {
    const std::lock_guard lock(expectedLock);
    return currentExpected;
}

void VideoDecoderFilter::SetExpected(const Expected& expected) {
    const std::lock_guard lock(expectedLock);
    currentExpected = expected;
}

std::vector<PixelFormat> VideoDecoderFilter::EnabledFormats(AVPixelFormat source) const {
    std::vector<PixelFormat> formats = PreferredFormats(source);
    std::erase_if(formats, [this](PixelFormat format) { return !IsEnabled(format); });
    return formats;
}

std::vector<MediaType> VideoDecoderFilter::OutputTypes() {
    const Expected expected = CurrentExpected();
    std::vector<MediaType> types;
    for (const bool extended : {true, false}) {
        for (const PixelFormat format : EnabledFormats(expected.format)) {
            types.push_back(MakeOutputType(format, expected.shape, expected.frameDuration, extended));
        }
    }
    return types;
}

HRESULT VideoDecoderFilter::CheckOutput(const MediaType& type) {
    const VideoShape shape = CurrentExpected().shape;
    const auto buffer = ReadOutputType(type.Get(), shape.width, shape.height);
    return buffer && IsEnabled(buffer->format) ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

HRESULT VideoDecoderFilter::OnOutputType(const MediaType& type) {
    const VideoShape shape = CurrentExpected().shape;
    const auto buffer = ReadOutputType(type.Get(), shape.width, shape.height);
    if (!buffer) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    target = *buffer;
    return S_OK;
}

ALLOCATOR_PROPERTIES VideoDecoderFilter::OutputBuffers() {
    const std::size_t bytes = PictureBytes(target.format, target.rowPixels, target.rows);
    return {kOutputBuffers, static_cast<LONG>(bytes), kOutputAlignment, 0};
}

HRESULT VideoDecoderFilter::OnStart() {
    Reset();
    return S_OK;
}

void VideoDecoderFilter::OnStop() {
    Reset();
}

void VideoDecoderFilter::Reset() {
    if (decoder) {
        decoder->Flush();
    }
    discontinuity = true;
}

HRESULT VideoDecoderFilter::OnSegment(const BasePin::Segment& segment) {
    if (State() != State_Stopped && !IsFlushing()) {
        // Pictures that wait belong to the segment that ends.
        const HRESULT drained = Drain();
        if (FAILED(drained)) {
            return drained;
        }
    }
    rate = segment.rate;
    if (decoder) {
        decoder->StartSegment(rate);
    }
    discontinuity = true;
    return TransformFilter::OnSegment(segment);
}

HRESULT VideoDecoderFilter::Process(IMediaSample& sample) {
    if (!decoder) {
        return VFW_E_NOT_CONNECTED;
    }
    BYTE* data = nullptr;
    HRESULT result = sample.GetPointer(&data);
    if (FAILED(result)) {
        return result;
    }
    const LONG length = sample.GetActualDataLength();
    const InputSideData sideData(sample);
    VideoPacket packet;
    packet.data = {data, static_cast<std::size_t>(std::max<LONG>(length, 0))};
    packet.keyframe = sample.IsSyncPoint() == S_OK;
    packet.sideData = sideData.Blocks();
    REFERENCE_TIME start = 0;
    REFERENCE_TIME stop = 0;
    const HRESULT timed = sample.GetTime(&start, &stop);
    if (SUCCEEDED(timed)) {
        packet.start = start;
        packet.stop = timed == S_OK ? stop : kNoTime;
    }
    deliveryResult = S_OK;
    decoder->Decode(packet, [this](VideoFrame&& frame) { return Deliver(std::move(frame)); });
    return deliveryResult;
}

HRESULT VideoDecoderFilter::Drain() {
    deliveryResult = S_OK;
    if (decoder) {
        decoder->Drain([this](VideoFrame&& frame) { return Deliver(std::move(frame)); });
    }
    return deliveryResult;
}

bool VideoDecoderFilter::Deliver(VideoFrame&& frame) {
    deliveryResult = IsFlushing() ? S_FALSE : DeliverPicture(frame);
    return deliveryResult == S_OK;
}

HRESULT VideoDecoderFilter::DeliverPicture(const VideoFrame& frame) {
    const AVFrame& picture = *frame.picture;
    HRESULT result = FollowPicture(picture);
    if (FAILED(result)) {
        if (result == VFW_E_TYPE_NOT_ACCEPTED) {
            Notify(EC_ERRORABORT, result, 0);
        }
        return result;
    }
    ComPtr<IMediaSample> sample;
    auto bytes = PictureBytes(target.format, target.rowPixels, target.rows);
    result = Output().GetBuffer(sample.GetAddressOf(), static_cast<LONG>(bytes));
    if (FAILED(result)) {
        return IsFlushing() ? S_FALSE : result;
    }
    result = AdoptTypeOf(*sample.Get());
    if (FAILED(result)) {
        return result;
    }
    bytes = PictureBytes(target.format, target.rowPixels, target.rows);
    PictureBuffer buffer = target;
    if (FAILED(sample->GetPointer(&buffer.data)) || static_cast<std::size_t>(sample->GetSize()) < bytes) {
        return VFW_E_BUFFER_OVERFLOW;
    }
    if (!writer.Write(picture, buffer)) {
        // A picture in a form that can't be shown is left out like a broken one.
        return S_OK;
    }
    REFERENCE_TIME start = frame.start;
    REFERENCE_TIME stop = frame.stop;
    sample->SetTime(&start, &stop);
    sample->SetActualDataLength(static_cast<LONG>(bytes));
    sample->SetSyncPoint(TRUE);
    sample->SetDiscontinuity(std::exchange(discontinuity, false));
    result = CopySideData(picture, *sample.Get());
    return FAILED(result) ? result : Output().Deliver(sample.Get());
}

// Sees to it that the output's type fits the picture.
HRESULT VideoDecoderFilter::FollowPicture(const AVFrame& picture) {
    const Expected old = CurrentExpected();
    Expected now = old;
    now.format = static_cast<AVPixelFormat>(picture.format);
    now.shape = ShapeOf(picture, containerAspect, SourceOfAspect(), target.format == PixelFormat::kRgb32);
    std::vector<PixelFormat> formats = {target.format};
    const std::vector<PixelFormat> preferred = EnabledFormats(now.format);
    const bool otherSource = now.format != old.format && preferred != EnabledFormats(old.format);
    if (otherSource) {
        formats = preferred;
        formats.push_back(target.format);
    } else if (LooksTheSame(old.shape, now.shape)) {
        return S_OK;
    }
    SetExpected(now);
    const HRESULT result = Propose(now, formats);
    return result == VFW_E_TYPE_NOT_ACCEPTED && !NeedsNewMemory(old.shape, now.shape) ? S_OK : result;
}

HRESULT VideoDecoderFilter::Propose(const Expected& expected, const std::vector<PixelFormat>& formats) {
    const bool extended = Output().Type()->formattype == FORMAT_VideoInfo2;
    for (const PixelFormat format : formats) {
        const MediaType type = MakeOutputType(format, expected.shape, expected.frameDuration, extended);
        const auto buffer = ReadOutputType(type.Get(), expected.shape.width, expected.shape.height);
        if (!buffer) {
            continue;
        }
        const std::size_t bytes = PictureBytes(buffer->format, buffer->rowPixels, buffer->rows);
        const HRESULT result = Output().ChangeType(type, static_cast<LONG>(bytes));
        if (result == S_OK) {
            target = *buffer;
            return S_OK;
        }
        if (result != VFW_E_TYPE_NOT_ACCEPTED) {
            return result;
        }
    }
    return VFW_E_TYPE_NOT_ACCEPTED;
}

// A receiver may ask for another layout of its memory by a type on the buffer that it hands out.
HRESULT VideoDecoderFilter::AdoptTypeOf(IMediaSample& sample) {
    AM_MEDIA_TYPE* asked = nullptr;
    if (sample.GetMediaType(&asked) != S_OK || !asked) {
        return S_OK;
    }
    const MediaType type(*asked);
    MediaType::FreeTaskMem(asked);
    return CheckOutput(type) == S_OK ? OnOutputType(type) : VFW_E_TYPE_NOT_ACCEPTED;
}

} // namespace brindlecast
