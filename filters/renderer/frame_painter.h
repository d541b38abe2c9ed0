#pragma once

#include "filters/renderer/look.h"
#include "filters/renderer/picture.h"
#include "filters/renderer/picture_textures.h"
#include "filters/renderer/presenter.h"
#include "filters/renderer/render_resources.h"
#include "filters/renderer/subtitle_link.h"

#include <array>
#include <functional>
#include <memory>
#include <vector>

namespace brindlecast {

// A picture taken from the renderer: rows of B, G, R, 255 from top to bottom without padding.
struct CapturedImage {
    PictureSize size;
    std::vector<std::uint8_t> pixels;
};

// Draws pictures into the window in the slot. Belongs to the drawing thread; only the constructor runs
// elsewhere. A lost device is replaced and the pictures that are still held are uploaded anew.
class FramePainter {
public:
    using PresenterFactory =
        std::function<std::unique_ptr<Presenter>(const D3dDevice&, std::shared_ptr<WindowSlot>)>;

    // `factory` makes the presenter of a device; tests put their own in.
    FramePainter(std::shared_ptr<WindowSlot> window, SubtitleLink& theSubtitles, PresenterFactory theFactory);
    ~FramePainter();

    // Makes the device when there is none, so that the first picture does not wait for it.
    void WarmUp();
    // Uploads and draws a picture whose time has not come. Failures are met again, and handled, by Show;
    // so is a look or a window that changes until then.
    void Prepare(const PicturePtr& picture, const Look& look);
    // Brings a picture to the screen; one that is prepared needs only to be shown. It becomes the last one.
    [[nodiscard]] HRESULT Show(const PicturePtr& picture, const Look& look);
    // Draws the last picture again.
    [[nodiscard]] HRESULT Redraw(const Look& look);
    // What the window shows, with subtitles, as it was shown, or the last picture alone in its display size
    // and the given look.
    enum class CaptureKind { kWindow, kPicture };
    [[nodiscard]] HRESULT Capture(CaptureKind kind, const Look& look, CapturedImage* out);
    // Replaces media samples by copies, so that their owner gets them back.
    void KeepCopies();
    [[nodiscard]] bool HasPicture() const noexcept { return shown != nullptr; }

private:
    struct Slot {
        PicturePtr picture;
        PictureTextures textures;
    };

    [[nodiscard]] HRESULT EnsureDevice();
    void LoseDevice();
    template <class Action>
    [[nodiscard]] HRESULT WithDevice(Action&& action);
    [[nodiscard]] PictureSize WindowSize() const;
    [[nodiscard]] bool IsDrawn(const PicturePtr& picture, const Look& look) const;
    [[nodiscard]] HRESULT DrawToWindow(const PicturePtr& picture, const Look& look);
    [[nodiscard]] HRESULT SlotFor(const PicturePtr& picture, Slot** out);
    [[nodiscard]] HRESULT DrawPicture(const Slot& slot, ID3D11RenderTargetView* target, PictureSize size,
                                      const PictureRect& destination, const Look& look);
    void DrawSubtitles(const Picture& picture, PictureSize size, const PictureRect& destination);
    [[nodiscard]] HRESULT ReadTarget(ID3D11Texture2D* target, CapturedImage* out);

    std::shared_ptr<WindowSlot> windowSlot;
    SubtitleLink& subtitles;
    PresenterFactory factory;
    std::unique_ptr<RenderResources> resources;
    std::unique_ptr<Presenter> presenter;
    HWND presenterWindow = nullptr;
    std::array<Slot, 2> slots;
    PicturePtr shown;
    Look shownLook;
    // What Finish was called for and Show not yet; no picture: nothing.
    struct Drawn {
        PicturePtr picture;
        Look look;
        PictureSize size; // of the window
    };
    Drawn drawn;
    ULONGLONG nextAttempt = 0;
    bool deviceFailed = false;
};

} // namespace brindlecast
