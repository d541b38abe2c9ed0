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

FramePainter::FramePainter(std::shared_ptr<WindowSlot> window, SubtitleLink& theSubtitles,
                           PresenterFactory theFactory)
    : windowSlot(std::move(window)), subtitles(theSubtitles), factory(std::move(theFactory)) {}

FramePainter::~FramePainter() {
    subtitles.DeviceGone();
    presenter.reset();
    slots = {};
    if (resources != nullptr) {
        resources->Device().context->ClearState();
        resources->Device().context->Flush();
        KeepResources(std::move(resources));
    }
}

HRESULT FramePainter::EnsureDevice() {
    if (resources != nullptr) {
        return S_OK;
    }
    if (deviceFailed && GetTickCount64() < nextAttempt) {
        return E_FAIL;
    }
    HRESULT result = S_OK;
    resources = TakeKeptResources();
    if (resources == nullptr) {
        resources = RenderResources::Create(&result);
    }
    deviceFailed = FAILED(result);
    nextAttempt = GetTickCount64() + kRetryMilliseconds;
    return result;
}

void FramePainter::LoseDevice() {
    subtitles.DeviceGone();
    presenter.reset();
    presenterWindow = nullptr;
    for (Slot& slot : slots) {
        slot.textures.Reset();
        slot.picture.reset();
    }
    drawn = {};
    resources.reset();
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
        static_cast<void>(resources->BindPictureShader(PixelFormat::kNv12, 1, {}));
    }
}

HRESULT FramePainter::SlotFor(const PicturePtr& picture, Slot** out) {
    for (Slot& slot : slots) {
        if (slot.picture == picture) {
            *out = &slot;
            return S_OK;
        }
    }
    // Never the slot of the last picture, which a redraw may need.
    Slot& slot = slots[0].picture == shown && shown != nullptr ? slots[1] : slots[0];
    slot.picture.reset();
    const HRESULT result = slot.textures.Upload(resources->Device(), *picture);
    if (SUCCEEDED(result)) {
        slot.picture = picture;
        *out = &slot;
    }
    return result;
}

HRESULT FramePainter::DrawPicture(const Slot& slot, ID3D11RenderTargetView* target, PictureSize size,
                                  const PictureRect& destination, const Look& look) {
    ID3D11DeviceContext* const context = resources->Device().context.Get();
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

    resources->BindCommon();
    const HRESULT result = resources->BindPictureShader(picture.format.memory.format, taps, constants);
    if (FAILED(result)) {
        return result;
    }
    slot.textures.Bind(context);
    SetViewport(context, destination);
    QuadVertex corners[4];
    FillCorners(orientation, part, corners);
    return resources->DrawQuad(corners);
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
    subtitles.Render(resources->Device().device.Get(), frame, [&] {
        resources->BindCommon();
        resources->BindCopyShader();
        SetViewport(resources->Device().context.Get(), {0, 0, size.width, size.height});
    });
}

// Without a window, or one that shows nothing, a side is 0.
PictureSize FramePainter::WindowSize() const {
    const HWND window = windowSlot->Get();
    RECT client{};
    if (window == nullptr || !GetClientRect(window, &client)) {
        return {};
    }
    return {client.right, client.bottom};
}

bool FramePainter::IsDrawn(const PicturePtr& picture, const Look& look) const {
    return drawn.picture == picture && drawn.look == look && drawn.size == WindowSize() &&
           presenterWindow == windowSlot->Get();
}

HRESULT FramePainter::DrawToWindow(const PicturePtr& picture, const Look& look) {
    const HWND window = windowSlot->Get();
    const PictureSize size = WindowSize();
    if (size.width < 1 || size.height < 1) {
        return S_FALSE;
    }
    if (presenter == nullptr || presenterWindow != window) {
        presenter.reset(); // a window takes one swap chain at a time
        presenter = factory(resources->Device(), windowSlot);
        presenterWindow = window;
    }
    const PictureRect destination = DestinationIn(look, size);
    Slot* slot = nullptr;
    HRESULT result = SlotFor(picture, &slot);
    ID3D11RenderTargetView* target = nullptr;
    if (SUCCEEDED(result)) {
        result = presenter->Begin(size, &target);
    }
    if (SUCCEEDED(result)) {
        result = DrawPicture(*slot, target, size, destination, look);
    }
    if (SUCCEEDED(result)) {
        DrawSubtitles(*picture, size, destination);
        result = presenter->Finish();
    }
    drawn = SUCCEEDED(result) ? Drawn{picture, look, size} : Drawn{};
    return result;
}

void FramePainter::Prepare(const PicturePtr& picture, const Look& look) {
    if (!IsDrawn(picture, look)) {
        static_cast<void>(WithDevice([&] { return DrawToWindow(picture, look); }));
    }
}

HRESULT FramePainter::Show(const PicturePtr& picture, const Look& look) {
    const HRESULT result = WithDevice([&] {
        HRESULT outcome = S_OK;
        if (!IsDrawn(picture, look)) {
            outcome = DrawToWindow(picture, look);
        }
        drawn = {};
        return outcome == S_OK ? presenter->Show() : outcome;
    });
    shown = picture;
    shownLook = look;
    for (Slot& slot : slots) {
        if (slot.picture != picture) {
            slot.picture.reset(); // gives the older frame's memory back; its textures stay for the next one
        }
    }
    return result;
}

HRESULT FramePainter::Redraw(const Look& look) {
    if (shown == nullptr) {
        return S_FALSE;
    }
    drawn = {};
    return Show(PicturePtr(shown), look);
}

HRESULT FramePainter::ReadTarget(ID3D11Texture2D* target, CapturedImage* out) {
    const D3dDevice& device = resources->Device();
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
    if (shown == nullptr) {
        return E_ABORT;
    }
    Look used = kind == CaptureKind::kWindow ? shownLook : look;
    if (kind == CaptureKind::kWindow) {
        out->size = WindowSize();
        if (out->size.width < 1 || out->size.height < 1) {
            return E_ABORT;
        }
    } else {
        out->size = UprightSize(*shown, TotalOrientation(*shown, look).rotation);
        used.destination.reset();
        used.source.reset();
    }
    return WithDevice([&]() -> HRESULT {
        ComPtr<ID3D11Texture2D> target;
        ComPtr<ID3D11RenderTargetView> view;
        Slot* slot = nullptr;
        HRESULT result = MakeTargetTexture(resources->Device().device.Get(), out->size, target.GetAddressOf(),
                                           view.GetAddressOf());
        if (SUCCEEDED(result)) {
            result = SlotFor(shown, &slot);
        }
        const PictureRect destination = DestinationIn(used, out->size);
        if (SUCCEEDED(result)) {
            result = DrawPicture(*slot, view.Get(), out->size, destination, used);
        }
        // The callback makes its pictures for the window's size; another size would empty its store.
        if (SUCCEEDED(result) && kind == CaptureKind::kWindow) {
            DrawSubtitles(*shown, out->size, destination);
        }
        return SUCCEEDED(result) ? ReadTarget(target.Get(), out) : result;
    });
}

void FramePainter::KeepCopies() {
    if (shown != nullptr) {
        auto bytes = std::make_shared<std::vector<std::uint8_t>>(shown->data, shown->data + shown->bytes);
        auto copy = std::make_shared<Picture>(*shown);
        copy->data = bytes->data();
        copy->owner = std::move(bytes);
        for (Slot& slot : slots) {
            if (slot.picture == shown) {
                slot.picture = copy;
            }
        }
        shown = std::move(copy);
    }
    for (Slot& slot : slots) {
        if (slot.picture != shown) {
            slot.picture.reset();
        }
    }
    drawn = {};
}

} // namespace brindlecast
