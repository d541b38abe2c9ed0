#pragma once

#include "filters/base/picture_orientation.h"
#include "filters/base/transform_filter.h"
#include "filters/core/video_decoder.h"
#include "filters/core/video_picture.h"
#include "filters/core/video_shape.h"
#include "filters/video_decoder/video_settings.h"

#include <memory>
#include <mutex>
#include <vector>

namespace brindlecast {

// The DirectShow filter around VideoDecoder. Pictures leave in the first of its formats that the receiver
// takes; the format changes in mid-stream when the pictures do and the receiver agrees.
class VideoDecoderFilter final : public TransformFilter,
                                 public VideoSettings,
                                 public ILAVVideoStatus,
                                 public IPictureOrientation {
public:
    VideoDecoderFilter();

    BRINDLECAST_COM_METHODS

    STDMETHODIMP_(LPCWSTR) GetActiveDecoderName() override;
    STDMETHODIMP GetHWAccelActiveDevice(BSTR* device) override;

    // What the source says; decoding turns nothing.
    int STDMETHODCALLTYPE GetPictureRotation() override;

    HRESULT CheckInput(const MediaType& type) override;
    std::vector<MediaType> OutputTypes() override;
    HRESULT CheckOutput(const MediaType& type) override;
    ALLOCATOR_PROPERTIES OutputBuffers() override;
    HRESULT OnInputType(const MediaType& type) override;
    HRESULT OnOutputType(const MediaType& type) override;
    void OnInputDisconnected() override;
    HRESULT Process(IMediaSample& sample) override;
    HRESULT Drain() override;
    void Reset() override;
    HRESULT OnSegment(const BasePin::Segment& segment) override;
    HRESULT OnStart() override;
    void OnStop() override;

protected:
    void* FindInterface(REFIID iid) noexcept override;

private:
    // What the output's type was made for. Written on the streaming thread and at connection, read by type
    // checks of any thread.
    struct Expected {
        VideoShape shape;
        AVPixelFormat format = AV_PIX_FMT_NONE;
        REFERENCE_TIME frameDuration = 0;
    };

    [[nodiscard]] Expected CurrentExpected();
    void SetExpected(const Expected& expected);
    [[nodiscard]] std::vector<PixelFormat> EnabledFormats(AVPixelFormat source) const;

    bool Deliver(VideoFrame&& frame);
    HRESULT DeliverPicture(const VideoFrame& frame);
    HRESULT FollowPicture(const AVFrame& picture);
    HRESULT Propose(const Expected& expected, const std::vector<PixelFormat>& formats);
    HRESULT AdoptTypeOf(IMediaSample& sample);

    // Streaming lock, or while stopped.
    std::unique_ptr<VideoDecoder> decoder;
    PictureWriter writer;
    AVRational containerAspect{0, 1};
    PictureBuffer target;
    double rate = 1.0;
    bool discontinuity = true;
    HRESULT deliveryResult = S_OK;

    std::atomic<bool> hasDecoder{false};
    std::mutex expectedLock; // leaf lock
    Expected currentExpected;
};

} // namespace brindlecast
