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

struct ParametersDeleter {
    void operator()(AVCodecParameters* parameters) const noexcept { avcodec_parameters_free(&parameters); }
};
using ParametersPtr = std::unique_ptr<AVCodecParameters, ParametersDeleter>;

REFERENCE_TIME FrameDurationOf(const MediaType& type) {
    REFERENCE_TIME duration = 0;
    if (const auto* info = type.Format<VIDEOINFOHEADER2>(FORMAT_VideoInfo2)) {
        duration = info->AvgTimePerFrame;
    } else if (const auto* info = type.Format<VIDEOINFOHEADER>(FORMAT_VideoInfo)) {
        duration = info->AvgTimePerFrame;
    } else if (const auto* info = type.Format<MPEG2VIDEOINFO>(FORMAT_MPEG2Video)) {
        duration = info->hdr.AvgTimePerFrame;
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
    return hasDecoder_ ? L"avcodec" : nullptr;
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
    if (decoder_ && State() != State_Stopped) {
        const HRESULT drained = Drain();
        if (drained != S_OK) {
            return drained;
        }
    }
    const REFERENCE_TIME frameDuration = FrameDurationOf(type);
    auto decoder = VideoDecoder::Create(*parameters, frameDuration, threads());
    if (!decoder) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    decoder->StartSegment(rate_);
    containerAspect_ = parameters->sample_aspect_ratio;
    if (!Output().IsConnected()) {
        SetExpected(
            {ShapeOf(*parameters, decoder->context()), ExpectedFormat(decoder->context()), frameDuration});
    }
    decoder_ = std::move(decoder);
    hasDecoder_ = true;
    return S_OK;
}

void VideoDecoderFilter::OnInputDisconnected() {
    hasDecoder_ = false;
    decoder_.reset();
}

VideoDecoderFilter::Expected VideoDecoderFilter::CurrentExpected() {
    const std::lock_guard lock(expectedLock_);
    return expected_;
}

void VideoDecoderFilter::SetExpected(const Expected& expected) {
    const std::lock_guard lock(expectedLock_);
    expected_ = expected;
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
    target_ = *buffer;
    return S_OK;
}

ALLOCATOR_PROPERTIES VideoDecoderFilter::OutputBuffers() {
    const std::size_t bytes = PictureBytes(target_.format, target_.rowPixels, target_.rows);
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
    if (decoder_) {
        decoder_->Flush();
    }
    discontinuity_ = true;
}

HRESULT VideoDecoderFilter::OnSegment(const BasePin::Segment& segment) {
    if (State() != State_Stopped && !IsFlushing()) {
        // Pictures that wait belong to the segment that ends.
        const HRESULT drained = Drain();
        if (FAILED(drained)) {
            return drained;
        }
    }
    rate_ = segment.rate;
    if (decoder_) {
        decoder_->StartSegment(rate_);
    }
    discontinuity_ = true;
    return TransformFilter::OnSegment(segment);
}

HRESULT VideoDecoderFilter::Process(IMediaSample& sample) {
    if (!decoder_) {
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
    packet.sideData = sideData.blocks();
    REFERENCE_TIME start = 0;
    REFERENCE_TIME stop = 0;
    const HRESULT timed = sample.GetTime(&start, &stop);
    if (SUCCEEDED(timed)) {
        packet.start = start;
        packet.stop = timed == S_OK ? stop : kNoTime;
    }
    deliveryResult_ = S_OK;
    decoder_->Decode(packet, [this](VideoFrame&& frame) { return Deliver(std::move(frame)); });
    return deliveryResult_;
}

HRESULT VideoDecoderFilter::Drain() {
    deliveryResult_ = S_OK;
    if (decoder_) {
        decoder_->Drain([this](VideoFrame&& frame) { return Deliver(std::move(frame)); });
    }
    return deliveryResult_;
}

bool VideoDecoderFilter::Deliver(VideoFrame&& frame) {
    deliveryResult_ = IsFlushing() ? S_FALSE : DeliverPicture(frame);
    return deliveryResult_ == S_OK;
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
    auto bytes = PictureBytes(target_.format, target_.rowPixels, target_.rows);
    result = Output().GetBuffer(sample.GetAddressOf(), static_cast<LONG>(bytes));
    if (FAILED(result)) {
        return IsFlushing() ? S_FALSE : result;
    }
    result = AdoptTypeOf(*sample.Get());
    if (FAILED(result)) {
        return result;
    }
    bytes = PictureBytes(target_.format, target_.rowPixels, target_.rows);
    PictureBuffer buffer = target_;
    if (FAILED(sample->GetPointer(&buffer.data)) || static_cast<std::size_t>(sample->GetSize()) < bytes) {
        return VFW_E_BUFFER_OVERFLOW;
    }
    if (!writer_.Write(picture, buffer)) {
        // A picture in a form that can't be shown is left out like a broken one.
        return S_OK;
    }
    REFERENCE_TIME start = frame.start;
    REFERENCE_TIME stop = frame.stop;
    sample->SetTime(&start, &stop);
    sample->SetActualDataLength(static_cast<LONG>(bytes));
    sample->SetSyncPoint(TRUE);
    sample->SetDiscontinuity(std::exchange(discontinuity_, false));
    result = CopySideData(picture, *sample.Get());
    return FAILED(result) ? result : Output().Deliver(sample.Get());
}

// Sees to it that the output's type fits the picture.
HRESULT VideoDecoderFilter::FollowPicture(const AVFrame& picture) {
    const Expected old = CurrentExpected();
    Expected now = old;
    now.format = static_cast<AVPixelFormat>(picture.format);
    now.shape = ShapeOf(picture, containerAspect_, aspectSource(), target_.format == PixelFormat::kRgb32);
    std::vector<PixelFormat> formats = {target_.format};
    const std::vector<PixelFormat> preferred = EnabledFormats(now.format);
    const bool otherSource = now.format != old.format && preferred != EnabledFormats(old.format);
    if (otherSource) {
        formats = preferred;
        formats.push_back(target_.format);
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
            target_ = *buffer;
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
