#include "filters/renderer/renderer_pin.h"

#include "filters/base/media_sample.h"
#include "filters/base/picture_orientation.h"
#include "filters/base/stream_formats.h"
#include "filters/renderer/media_format.h"

#include <vfwmsgs.h>

#include <array>
#include <cstring>
#include <utility>

extern "C" {
#include <libavcodec/packet.h>
}

namespace brindlecast {

namespace {

// Frames that we hold at once: those that wait, the one on the screen and the one in the sender's hands.
constexpr long kBuffersHeld = static_cast<long>(DrawingThread::kQueueLength) + 2;
// Duration of a frame that states none.
constexpr std::int64_t kUnknownDuration = 400'000;

// The stream times of a sample. A missing stop time is made from the frame's duration.
FrameTimes TimesOf(IMediaSample& sample, const PictureFormat& format, const BasePin::Segment& segment) {
    FrameTimes times;
    times.segmentStart = segment.start;
    times.rate = segment.rate;
    REFERENCE_TIME start = 0;
    REFERENCE_TIME stop = 0;
    const HRESULT result = sample.GetTime(&start, &stop);
    if (FAILED(result)) {
        return times;
    }
    times.timed = true;
    times.start = start;
    const std::int64_t duration = format.frameDuration > 0 ? format.frameDuration : kUnknownDuration;
    times.stop = result == VFW_S_NO_STOP_TIME || stop <= start ? start + duration : stop;
    return times;
}

} // namespace

RendererPin::RendererPin(BaseFilter& filter, RendererCore& theCore)
    : InputPin(filter, L"Input"), core(theCore) {}

STDMETHODIMP RendererPin::NotifyAllocator(IMemAllocator* allocator, BOOL readOnly) {
    const HRESULT result = InputPin::NotifyAllocator(allocator, readOnly);
    if (SUCCEEDED(result)) {
        ALLOCATOR_PROPERTIES actual{};
        // A sender with fewer buffers would wait for the one that we keep on the screen: then pictures are
        // copied.
        copies = FAILED(allocator->GetProperties(&actual)) || actual.cBuffers <= kBuffersHeld;
    }
    return result;
}

STDMETHODIMP RendererPin::GetAllocatorRequirements(ALLOCATOR_PROPERTIES* properties) {
    if (properties == nullptr) {
        return E_POINTER;
    }
    *properties = {kBuffersHeld + 1, 0, 1, 0};
    return S_OK;
}

std::vector<MediaType> RendererPin::PreferredTypes() {
    std::vector<MediaType> types;
    for (const AcceptedSubtype& accepted : AcceptedSubtypes()) {
        types.emplace_back(MEDIATYPE_Video, *accepted.subtype);
    }
    return types;
}

HRESULT RendererPin::CheckType(const MediaType& type) {
    return PictureFormatOf(type.Get()) ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

HRESULT RendererPin::OnTypeAgreed(const MediaType& type) {
    const std::optional<PictureFormat> format = PictureFormatOf(type.Get());
    if (!format) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    agreedFormat = *format;
    return S_OK;
}

HRESULT RendererPin::OnConnected(IPin& peer) {
    const HRESULT result = core.Drawing().Start();
    if (SUCCEEDED(result)) {
        core.SetContainerRotation(PictureRotationOf(peer));
        core.SetFormat(agreedFormat);
    }
    return result;
}

void RendererPin::OnDisconnected() {
    core.SetFormat(std::nullopt);
    InputPin::OnDisconnected();
}

HRESULT RendererPin::Activate() {
    return InputPin::Activate();
}

void RendererPin::Deactivate() {
    core.Drawing().Stop();
    InputPin::Deactivate();
}

HRESULT RendererPin::MakePicture(IMediaSample& sample, const FrameTimes& times, PicturePtr* out) const {
    BYTE* data = nullptr;
    if (const HRESULT result = sample.GetPointer(&data); FAILED(result)) {
        return result;
    }
    const auto bytes = static_cast<std::size_t>(std::max<LONG>(sample.GetActualDataLength(), 0));
    if (bytes < LayoutOf(agreedFormat.memory).bytes) {
        return E_INVALIDARG; // less than the media type promises
    }
    auto picture = std::make_shared<Picture>();
    picture->format = agreedFormat;
    picture->times = times;
    picture->containerRotation = core.ContainerRotation();
    picture->bytes = bytes;
    if (copies) {
        auto copy = std::make_shared<std::vector<std::uint8_t>>(data, data + bytes);
        picture->data = copy->data();
        picture->owner = std::move(copy);
    } else {
        sample.AddRef();
        picture->data = data;
        picture->owner =
            std::shared_ptr<const void>(&sample, [held = &sample](const void*) { held->Release(); });
    }
    *out = std::move(picture);
    return S_OK;
}

void RendererPin::ReadRotation(IMediaSample& sample) {
    ComPtr<ISampleSideData> sideData;
    if (FAILED(
            sample.QueryInterface(kIidSampleSideData, reinterpret_cast<void**>(sideData.GetAddressOf())))) {
        return;
    }
    const BYTE* data = nullptr;
    ULONG size = 0;
    std::array<std::int32_t, 9> matrix{};
    if (FAILED(sideData->GetSideData(PacketSideDataKind(AV_PKT_DATA_DISPLAYMATRIX), &data, &size)) ||
        size < sizeof(matrix)) {
        return;
    }
    std::memcpy(matrix.data(), data, sizeof(matrix));
    const int rotation = RotationOfDisplayMatrix(matrix);
    if (rotation != core.ContainerRotation()) {
        core.SetContainerRotation(rotation);
        TellSizeChange();
    }
}

void RendererPin::TellSizeChange() {
    if (const auto size = core.VideoSize()) {
        Filter().Notify(EC_VIDEO_SIZE_CHANGED, MAKELONG(size->width, size->height), 0);
    }
}

HRESULT RendererPin::OnSample(IMediaSample& sample) {
    const std::lock_guard lock(receiving);
    ReadRotation(sample);
    const FrameTimes times = TimesOf(sample, agreedFormat, CurrentSegment());
    if (sample.IsPreroll() == S_OK || (times.timed && times.stop <= 0)) {
        return S_OK; // before the segment's start: decoded, not shown
    }
    PicturePtr picture;
    const HRESULT result = MakePicture(sample, times, &picture);
    return SUCCEEDED(result) ? core.Drawing().Push(std::move(picture)) : result;
}

HRESULT RendererPin::OnFormatChange(const MediaType& type) {
    const std::optional<PictureFormat> format = PictureFormatOf(type.Get());
    if (!format) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    const std::lock_guard lock(receiving);
    const auto before = core.VideoSize();
    agreedFormat = *format;
    core.SetFormat(agreedFormat);
    if (before != core.VideoSize()) {
        TellSizeChange();
    }
    return S_OK;
}

HRESULT RendererPin::OnEndOfStream() {
    core.Drawing().EndOfStream();
    return S_OK;
}

HRESULT RendererPin::OnBeginFlush() {
    core.Drawing().BeginFlush();
    return S_OK;
}

HRESULT RendererPin::OnEndFlush() {
    const std::lock_guard left(receiving); // the streaming thread has gone with its old frame
    core.Drawing().EndFlush();
    return S_OK;
}

HRESULT RendererPin::OnNewSegment(const Segment& segment) {
    core.Drawing().NewSegment(segment.start, segment.rate);
    return S_OK;
}

} // namespace brindlecast
