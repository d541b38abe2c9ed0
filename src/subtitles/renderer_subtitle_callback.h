#pragma once

#include "base/win32/com_ptr.h"
#include "filters/include/mpc_video_renderer.h"

#include <windows.h>

#include <d3d11.h>

#include <atomic>
#include <cstdint>

namespace brindlecast {

class SubtitleManager;

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
    // Answers 1, nothing drawn, as long as no manager is set.
    STDMETHODIMP Render11(REFERENCE_TIME start, REFERENCE_TIME stop, REFERENCE_TIME frameDuration, RECT video,
                          RECT originalVideo, RECT viewport, double stretch, int xOffset,
                          DWORD flags) override;

private:
    ~CMPCVR11SubtitleCallback() = default;
    void ReleaseResources();
    [[nodiscard]] bool CreateVertexBuffer();
    [[nodiscard]] bool CreateSampler(D3D11_FILTER filter, ComPtr<ID3D11SamplerState>& sampler);
    [[nodiscard]] bool CreateBlend();

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
