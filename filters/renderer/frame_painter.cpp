#include "filters/renderer/frame_painter.h"

#include "filters/renderer/read_back_presenter.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace brindlecast {

namespace {

// How long to leave a graphics system alone that could make no device.
constexpr ULONGLONG kRetryMilliseconds = 500;

RECT ToRect(const PictureRect& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

Orientation TotalOrientation(const Picture& picture, const Look& look) {
    return {NormalizedRotation(picture.containerRotation + look.orientation.rotation), look.orientation.flip};
}

PictureSize UprightSize(const Picture& picture, int rotation) {
    return DisplaySize(picture.format.Size(), picture.format.aspectX, picture.format.aspectY, rotation);
}

// The visible part may begin one texel into the textures, where chroma has half the resolution.
TexturePart WithinTextures(const PictureMemory& memory, const PicturePlane& luma, const TexturePart& part) {
    const PictureSize span = ChromaSpan(memory.format);
    const float left = static_cast<float>(memory.visible.left % span.width) / static_cast<float>(luma.width);
    const float top = static_cast<float>(memory.visible.top % span.height) / static_cast<float>(luma.height);
    const auto map = [](float value, float offset) {
        return offset + value * (1 - offset);
    };
    return {map(part.left, left), map(part.top, top), map(part.right, left), map(part.bottom, top)};
}

PictureConstants ConstantsFor(const PictureFormat& format, const PicturePlane& luma) {
    PictureConstants constants{};
    const ColorMatrix matrix = MatrixFor(format.memory.format, format.color);
    for (std::size_t row = 0; row < 3; ++row) {
        std::copy(matrix[row].begin(), matrix[row].end(), constants.matrix[row]);
    }
    const ChromaMapping chroma =
        ChromaMappingFor(format.memory.format, {luma.width, luma.height}, format.color.siting);
    constants.chromaMap[0] = chroma.scaleX;
    constants.chromaMap[1] = chroma.scaleY;
    constants.chromaMap[2] = chroma.offsetX;
    constants.chromaMap[3] = chroma.offsetY;
    return constants;
}

void FillCorners(const Orientation& orientation, const TexturePart& part, QuadVertex (&corners)[4]) {
    const auto coordinates = CornerCoordinates(orientation, part);
    for (std::size_t i = 0; i < 4; ++i) {
        const float x = i % 2 == 0 ? -1.0F : 1.0F;
        const float y = i < 2 ? 1.0F : -1.0F;
        corners[i] = {x, y, 0.0F, coordinates[i].u, coordinates[i].v};
    }
}

void SetViewport(ID3D11DeviceContext* context, const PictureRect& rect) {
    const D3D11_VIEWPORT viewport{static_cast<float>(rect.left),
                                  static_cast<float>(rect.top),
                                  static_cast<float>(rect.Width()),
                                  static_cast<float>(rect.Height()),
                                  0.0F,
                                  1.0F};
    context->RSSetViewports(1, &viewport);
}

PictureRect DestinationIn(const Look& look, PictureSize size) {
    return look.destination.value_or(PictureRect{0, 0, size.width, size.height});
}

bool Covers(const PictureRect& rect, PictureSize size) {
    return rect.left <= 0 && rect.top <= 0 && rect.right >= size.width && rect.bottom >= size.height;
}

} // namespace

FramePainter::FramePainter(std::shared_ptr<WindowSlot> window, SubtitleLink& subtitles,
                           PresenterFactory factory)
    : window_(std::move(window)), subtitles_(subtitles), factory_(std::move(factory)) {}

FramePainter::~FramePainter() {
    subtitles_.DeviceGone();
    presenter_.reset();
    slots_ = {};
    if (resources_ != nullptr) {
        resources_->Device().context->ClearState();
        resources_->Device().context->Flush();
        KeepResources(std::move(resources_));
    }
}

HRESULT FramePainter::EnsureDevice() {
    if (resources_ != nullptr) {
        return S_OK;
    }
    if (deviceFailed_ && GetTickCount64() < nextAttempt_) {
        return E_FAIL;
    }
    HRESULT result = S_OK;
    resources_ = TakeKeptResources();
    if (resources_ == nullptr) {
        resources_ = RenderResources::Create(&result);
    }
    deviceFailed_ = FAILED(result);
    nextAttempt_ = GetTickCount64() + kRetryMilliseconds;
    return result;
}

void FramePainter::LoseDevice() {
    subtitles_.DeviceGone();
    presenter_.reset();
    presenterWindow_ = nullptr;
    for (Slot& slot : slots_) {
        slot.textures.Reset();
        slot.picture.reset();
    }
    drawn_.reset();
    resources_.reset();
}

template <class Action>
HRESULT FramePainter::WithDevice(Action&& action) {
    HRESULT result = EnsureDevice();
    if (SUCCEEDED(result)) {
        result = action();
    }
    if (IsDeviceLost(result)) {
        LoseDevice();
        result = EnsureDevice();
        if (SUCCEEDED(result)) {
            result = action();
        }
    }
    return result;
}

void FramePainter::WarmUp() {
    if (SUCCEEDED(EnsureDevice())) {
        // The commonest shader is compiled now as well.
        static_cast<void>(resources_->BindPictureShader(PixelFormat::kNv12, 1, {}));
    }
}

HRESULT FramePainter::SlotFor(const PicturePtr& picture, Slot** out) {
    for (Slot& slot : slots_) {
        if (slot.picture == picture) {
            *out = &slot;
            return S_OK;
        }
    }
    // Never the slot of the last picture, which a redraw may need.
    Slot& slot = slots_[0].picture == shown_ && shown_ != nullptr ? slots_[1] : slots_[0];
    slot.picture.reset();
    const HRESULT result = slot.textures.Upload(resources_->Device(), *picture);
    if (SUCCEEDED(result)) {
        slot.picture = picture;
        *out = &slot;
    }
    return result;
}

HRESULT FramePainter::DrawPicture(const Slot& slot, ID3D11RenderTargetView* target, PictureSize size,
                                  const PictureRect& destination, const Look& look) {
    ID3D11DeviceContext* const context = resources_->Device().context.Get();
    context->OMSetRenderTargets(1, &target, nullptr);
    if (!Covers(destination, size)) {
        static constexpr float kBlack[4] = {0, 0, 0, 1};
        context->ClearRenderTargetView(target, kBlack);
    }
    const Picture& picture = *slot.picture;
    const PicturePlane luma = LayoutOf(picture.format.memory).planes[0];
    const Orientation orientation = TotalOrientation(picture, look);
    TexturePart part;
    if (look.source) {
        part = PartOfSource(*look.source, UprightSize(picture, orientation.rotation), orientation);
    }
    part = WithinTextures(picture.format.memory, luma, part);

    const bool sideways = orientation.rotation % 180 != 0;
    const int outputU = sideways ? destination.Height() : destination.Width();
    const int outputV = sideways ? destination.Width() : destination.Height();
    const float extentU = part.right - part.left;
    const float extentV = part.bottom - part.top;
    const int taps = std::max(TapsFor(static_cast<double>(extentU) * luma.width, outputU),
                              TapsFor(static_cast<double>(extentV) * luma.height, outputV));
    PictureConstants constants = ConstantsFor(picture.format, luma);
    constants.footprint[0] = extentU / static_cast<float>(outputU);
    constants.footprint[1] = extentV / static_cast<float>(outputV);

    resources_->BindCommon();
    const HRESULT result = resources_->BindPictureShader(picture.format.memory.format, taps, constants);
    if (FAILED(result)) {
        return result;
    }
    slot.textures.Bind(context);
    SetViewport(context, destination);
    QuadVertex corners[4];
    FillCorners(orientation, part, corners);
    return resources_->DrawQuad(corners);
}

void FramePainter::DrawSubtitles(const Picture& picture, PictureSize size, const PictureRect& destination) {
    const FrameTimes& times = picture.times;
    const PictureSize upright = UprightSize(picture, NormalizedRotation(picture.containerRotation));
    SubtitleLink::Frame frame;
    frame.start = MediaPosition(times.segmentStart, times.rate, times.start);
    frame.stop = MediaPosition(times.segmentStart, times.rate, times.stop);
    frame.duration =
        picture.format.frameDuration > 0 ? picture.format.frameDuration : frame.stop - frame.start;
    frame.video = ToRect(destination);
    frame.originalVideo = {0, 0, upright.width, upright.height};
    frame.viewport = {0, 0, size.width, size.height};
    subtitles_.Render(resources_->Device().device.Get(), frame, [&] {
        resources_->BindCommon();
        resources_->BindCopyShader();
        SetViewport(resources_->Device().context.Get(), {0, 0, size.width, size.height});
    });
}

HRESULT FramePainter::DrawToWindow(const PicturePtr& picture, const Look& look) {
    const HWND window = window_->Get();
    RECT client{};
    if (window == nullptr || !GetClientRect(window, &client) || client.right < 1 || client.bottom < 1) {
        return S_FALSE;
    }
    if (presenter_ == nullptr || presenterWindow_ != window) {
        presenter_.reset(); // a window takes one swap chain at a time
        presenter_ = factory_(resources_->Device(), window_);
        presenterWindow_ = window;
    }
    const PictureSize size{client.right, client.bottom};
    const PictureRect destination = DestinationIn(look, size);
    Slot* slot = nullptr;
    HRESULT result = SlotFor(picture, &slot);
    ID3D11RenderTargetView* target = nullptr;
    if (SUCCEEDED(result)) {
        result = presenter_->Begin(size, &target);
    }
    if (SUCCEEDED(result)) {
        result = DrawPicture(*slot, target, size, destination, look);
    }
    if (SUCCEEDED(result)) {
        DrawSubtitles(*picture, size, destination);
        result = presenter_->Finish();
    }
    drawn_ = SUCCEEDED(result) ? picture : nullptr;
    return result;
}

void FramePainter::Prepare(const PicturePtr& picture, const Look& look) {
    if (drawn_ != picture) {
        static_cast<void>(WithDevice([&] { return DrawToWindow(picture, look); }));
    }
}

HRESULT FramePainter::Show(const PicturePtr& picture, const Look& look) {
    const HRESULT result = WithDevice([&] {
        HRESULT drawn = S_OK;
        if (drawn_ != picture) {
            drawn = DrawToWindow(picture, look);
        }
        drawn_.reset();
        return drawn == S_OK ? presenter_->Show() : drawn;
    });
    shown_ = picture;
    for (Slot& slot : slots_) {
        if (slot.picture != picture) {
            slot.picture.reset(); // gives the older frame's memory back; its textures stay for the next one
        }
    }
    return result;
}

HRESULT FramePainter::Redraw(const Look& look) {
    if (shown_ == nullptr) {
        return S_FALSE;
    }
    drawn_.reset();
    return Show(PicturePtr(shown_), look);
}

HRESULT FramePainter::ReadTarget(ID3D11Texture2D* target, CapturedImage* out) {
    const D3dDevice& device = resources_->Device();
    ComPtr<ID3D11Texture2D> readable;
    HRESULT result = MakeReadableTexture(device.device.Get(), out->size, readable.GetAddressOf());
    if (FAILED(result)) {
        return result;
    }
    device.context->CopyResource(readable.Get(), target);
    D3D11_MAPPED_SUBRESOURCE rows{};
    result = device.context->Map(readable.Get(), 0, D3D11_MAP_READ, 0, &rows);
    if (FAILED(result)) {
        return result;
    }
    const auto rowBytes = static_cast<std::size_t>(out->size.width) * 4;
    out->pixels.resize(rowBytes * static_cast<std::size_t>(out->size.height));
    for (std::size_t row = 0; row < static_cast<std::size_t>(out->size.height); ++row) {
        std::memcpy(out->pixels.data() + row * rowBytes,
                    static_cast<const std::uint8_t*>(rows.pData) + row * rows.RowPitch, rowBytes);
    }
    device.context->Unmap(readable.Get(), 0);
    return S_OK;
}

HRESULT FramePainter::Capture(CaptureKind kind, const Look& look, CapturedImage* out) {
    if (shown_ == nullptr) {
        return E_ABORT;
    }
    Look used = look;
    out->size = UprightSize(*shown_, TotalOrientation(*shown_, look).rotation);
    if (kind == CaptureKind::kWindow) {
        RECT client{};
        const HWND window = window_->Get();
        if (window == nullptr || !GetClientRect(window, &client) || client.right < 1 || client.bottom < 1) {
            return E_ABORT;
        }
        out->size = {client.right, client.bottom};
    } else {
        used.destination.reset();
        used.source.reset();
    }
    return WithDevice([&]() -> HRESULT {
        ComPtr<ID3D11Texture2D> target;
        ComPtr<ID3D11RenderTargetView> view;
        Slot* slot = nullptr;
        HRESULT result = MakeTargetTexture(resources_->Device().device.Get(), out->size,
                                           target.GetAddressOf(), view.GetAddressOf());
        if (SUCCEEDED(result)) {
            result = SlotFor(shown_, &slot);
        }
        const PictureRect destination = DestinationIn(used, out->size);
        if (SUCCEEDED(result)) {
            result = DrawPicture(*slot, view.Get(), out->size, destination, used);
        }
        // The callback makes its pictures for the window's size; another size would empty its store.
        if (SUCCEEDED(result) && kind == CaptureKind::kWindow) {
            DrawSubtitles(*shown_, out->size, destination);
        }
        return SUCCEEDED(result) ? ReadTarget(target.Get(), out) : result;
    });
}

void FramePainter::KeepCopies() {
    if (shown_ != nullptr) {
        auto bytes = std::make_shared<std::vector<std::uint8_t>>(shown_->data, shown_->data + shown_->bytes);
        auto copy = std::make_shared<Picture>(*shown_);
        copy->data = bytes->data();
        copy->owner = std::move(bytes);
        for (Slot& slot : slots_) {
            if (slot.picture == shown_) {
                slot.picture = copy;
            }
        }
        shown_ = std::move(copy);
    }
    for (Slot& slot : slots_) {
        if (slot.picture != shown_) {
            slot.picture.reset();
        }
    }
    drawn_.reset();
}

} // namespace brindlecast
