#pragma once

#include "base/geometry.h"
#include "base/win32/com_ptr.h"
#include "filters/include/mpc_video_renderer.h"

#include <windows.h>

#include <d3d11.h>

#include <atomic>
#include <cstdint>

namespace brindlecast {

class SubtitleManager;
struct ISubPic;

// Draws the subtitle picture over the frame, on the video renderer's drawing thread and with the renderer's
// device. The renderer calls SetDevice11 and Render11 on its own threads, never at once; `manager` alone is
// written on the main thread.
class CMPCVR11SubtitleCallback final : public ISubRender11Callback {
public:
    CMPCVR11SubtitleCallback() = default;
    CMPCVR11SubtitleCallback(const CMPCVR11SubtitleCallback&) = delete;
    CMPCVR11SubtitleCallback& operator=(const CMPCVR11SubtitleCallback&) = delete;

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;

    // Makes everything for `newDevice` that does not depend on a picture's size, and drops what belonged to
    // another. Null drops the device as well. E_FAIL when the device refuses anything.
    STDMETHODIMP SetDevice11(ID3D11Device* newDevice) override;
    // Draws what is shown at `start` over the `video` rectangle, with the shaders that the renderer has
    // bound; what it changes of the device's state it leaves so. S_FALSE when nothing is drawn. The other
    // times, the original rectangle and what follows the viewport are not looked at.
    STDMETHODIMP Render11(REFERENCE_TIME start, REFERENCE_TIME stop, REFERENCE_TIME frameDuration, RECT video,
                          RECT originalVideo, RECT viewport, double stretch, int xOffset,
                          DWORD flags) override;

private:
    ~CMPCVR11SubtitleCallback() = default;
    void ReleaseResources();
    [[nodiscard]] bool CreateVertexBuffer();
    [[nodiscard]] bool CreateSampler(D3D11_FILTER filter, ComPtr<ID3D11SamplerState>& sampler);
    [[nodiscard]] bool CreateBlend();
    // Fetches the picture of a time and copies it into the texture; false when there is none.
    [[nodiscard]] bool UpdateTexture(SubtitleManager& subtitles, REFERENCE_TIME time);
    [[nodiscard]] bool EnsureTexture(Size size);
    [[nodiscard]] bool CopyPicture(ISubPic& picture);
    [[nodiscard]] bool Draw(const RECT& video);
    [[nodiscard]] bool FillVertices();

    std::atomic<ULONG> references{1};

public:
    // Where the pictures come from; not owned. Written by the main thread, read by the drawing thread.
    std::atomic<SubtitleManager*> manager{nullptr};

private:
    ComPtr<ID3D11Device> device;
    ComPtr<ID3D11DeviceContext> context; // the immediate one
    ComPtr<ID3D11Texture2D> texture;
    ComPtr<ID3D11ShaderResourceView> textureView;
    ComPtr<ID3D11Buffer> vertexBuffer; // four vertices
    ComPtr<ID3D11SamplerState> pointSampler;
    ComPtr<ID3D11SamplerState> linearSampler;
    ComPtr<ID3D11BlendState> blendState;
    // Pixels; 0 while there is no texture, and no video has been seen.
    std::int32_t textureWidth = 0;
    std::int32_t textureHeight = 0;
    std::int32_t videoWidth = 0;
    std::int32_t videoHeight = 0;
};

} // namespace brindlecast
