#include "engine/player_engine.h"
#include "engine/render_rect.h"

#include <array>
#include <variant>

namespace brindlecast {

namespace {

// In the order in which they are set.
struct StartOption {
    const char* name;
    std::variant<bool, int> value;
};
constexpr std::array kStartOptions = {StartOption{"useD3D11", true},
                                      StartOption{"presentationType", 0},
                                      StartOption{"vsync", false},
                                      StartOption{"vBlankBeforePresent", false},
                                      StartOption{"adjustPresentTime", false},
                                      StartOption{"vpScaling", false},
                                      StartOption{"lessRedraws", true},
                                      StartOption{"d3dFullscreenControl", false},
                                      StartOption{"chromaUpsampling", 0},
                                      StartOption{"upscaler", 0},
                                      StartOption{"downscaler", 0}};

constexpr const char* kRotationOption = "rotation"; // degrees
constexpr const char* kFlipOption = "flip";
constexpr const char* kRedrawCommand = "cmd_redraw";

void SetStartOptions(IExFilterConfig& renderer) {
    for (const StartOption& option : kStartOptions) {
        if (const bool* flag = std::get_if<bool>(&option.value)) {
            renderer.Flt_SetBool(option.name, *flag);
        } else {
            renderer.Flt_SetInt(option.name, std::get<int>(option.value));
        }
    }
}

} // namespace

void PlayerEngine::ConfigureRenderer() {
    rendererConfig = QueryFor<IExFilterConfig>(videoRenderer.Get());
    if (rendererConfig != nullptr) {
        SetStartOptions(*rendererConfig.Get());
    }
    const auto subtitleDrawing = QueryFor<ISubRender11>(videoRenderer.Get());
    if (subtitleDrawing == nullptr) {
        return;
    }
    // Not Attach: that of the compiler's ComPtr adds a reference.
    *subtitleCallback.ReleaseAndGetAddressOf() = new CMPCVR11SubtitleCallback;
    if (FAILED(subtitleDrawing->SetCallback11(subtitleCallback.Get()))) {
        subtitleCallback.Reset();
    }
}

bool PlayerEngine::SetRenderRect(int /*x*/, int /*y*/, int width, int height) {
    if (videoWindowControl == nullptr) {
        return false;
    }
    if (basicVideo != nullptr) {
        long videoWidth = 0;
        long videoHeight = 0;
        basicVideo->GetVideoSize(&videoWidth, &videoHeight);
        const RenderRect rect =
            LetterboxRect({static_cast<int>(videoWidth), static_cast<int>(videoHeight)}, {width, height});
        basicVideo->SetDestinationPosition(rect.left, rect.top, rect.width, rect.height);
    }
    // The window covers the whole host, the picture lies inside it.
    return SUCCEEDED(videoWindowControl->SetWindowPosition(0, 0, width, height));
}

void PlayerEngine::RedrawVideo() {
    if (videoHost == nullptr || IsWindow(videoHost) == FALSE) {
        return;
    }
    RECT client{};
    GetClientRect(videoHost, &client);
    // A minimised window has no height.
    if (client.bottom - client.top <= 0) {
        return;
    }
    SetRenderRect(0, 0, client.right - client.left, client.bottom - client.top);
    if (rendererConfig != nullptr) {
        rendererConfig->Flt_SetBool(kRedrawCommand, true);
        return;
    }
    InvalidateRect(videoHost, nullptr, FALSE);
    UpdateWindow(videoHost);
}

bool PlayerEngine::SetRotation(int degrees) {
    const std::uint32_t turned = NormalizeRotation(degrees);
    if (turned == rotation) {
        return true;
    }
    rotation = turned;
    if (rendererConfig != nullptr &&
        SUCCEEDED(rendererConfig->Flt_SetInt(kRotationOption, static_cast<int>(rotation)))) {
        RedrawVideo();
        return true;
    }
    return rotation == 0;
}

bool PlayerEngine::SetFlipHorizontal(bool on) {
    flipHorizontal = on;
    if (rendererConfig == nullptr) {
        return false;
    }
    rendererConfig->Flt_SetBool(kFlipOption, flipHorizontal != flipVertical);
    return true;
}

bool PlayerEngine::SetFlipVertical(bool on) {
    flipVertical = on;
    if (rendererConfig == nullptr) {
        return false;
    }
    // The renderer flips horizontally alone; upside down is that and half a turn.
    const std::uint32_t turned = on ? (rotation + 180) % 360 : rotation;
    rendererConfig->Flt_SetInt(kRotationOption, static_cast<int>(turned));
    rendererConfig->Flt_SetBool(kFlipOption, on ? !flipHorizontal : flipHorizontal);
    return true;
}

} // namespace brindlecast
