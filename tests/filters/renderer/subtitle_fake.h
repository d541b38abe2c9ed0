#pragma once

#include "filters/base/com_object.h"
#include "filters/include/mpc_video_renderer.h"

#include <d3d11.h>
#include <wrl/client.h>

#include <mutex>
#include <vector>

namespace brindlecast::test {

// A subtitle callback that draws a rectangle of one colour in the way that players do: with a texture, a
// vertex buffer, a blend state and a viewport of its own, without restoring anything.
class FakeSubtitles final : public ISubRender11Callback, public RefCounted {
public:
    [[nodiscard]] static Microsoft::WRL::ComPtr<FakeSubtitles> Create();

    BRINDLECAST_COM_METHODS

    STDMETHODIMP SetDevice11(ID3D11Device* device) override;
    STDMETHODIMP Render11(REFERENCE_TIME start, REFERENCE_TIME stop, REFERENCE_TIME duration, RECT video,
                          RECT originalVideo, RECT viewport, double stretch, int xOffset,
                          DWORD flags) override;

    struct Call {
        REFERENCE_TIME start, stop, duration;
        RECT video, originalVideo, viewport;
        double stretch;
        int xOffset;
        DWORD flags;
    };
    [[nodiscard]] std::vector<Call> Calls();
    // One entry a call: true for a device, false for null.
    [[nodiscard]] std::vector<bool> Devices();

    // Pixels of the render target that are to be covered.
    RECT area{0, 0, 40, 20};

private:
    void* FindInterface(REFIID iid) noexcept;
    void Draw();

    std::mutex mutex_;
    std::vector<Call> calls_;
    std::vector<bool> devices_;
    Microsoft::WRL::ComPtr<ID3D11Device> device_;
    Microsoft::WRL::ComPtr<ID3D11DeviceContext> context_;
    Microsoft::WRL::ComPtr<ID3D11Buffer> vertices_;
    Microsoft::WRL::ComPtr<ID3D11ShaderResourceView> view_;
    Microsoft::WRL::ComPtr<ID3D11BlendState> blend_;
    Microsoft::WRL::ComPtr<ID3D11SamplerState> sampler_;
};

} // namespace brindlecast::test
