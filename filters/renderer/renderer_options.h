#pragma once

#include "filters/include/mpc_video_renderer.h"
#include "filters/renderer/filter_part.h"
#include "filters/renderer/renderer_core.h"

#include <array>
#include <mutex>

namespace brindlecast {

// IExFilterConfig. "rotation", "flip", "cmd_redraw" and "displayedImage" act on the picture. The other
// options are remembered and answered, but choose nothing: there is one way to scale and to present.
class RendererOptions final : public FilterPart<IExFilterConfig> {
public:
    RendererOptions(BaseFilter& theFilter, RendererCore& theCore) : FilterPart(theFilter), core(theCore) {}

    STDMETHODIMP Flt_GetBool(LPCSTR field, bool* value) override;
    STDMETHODIMP Flt_GetInt(LPCSTR field, int* value) override;
    STDMETHODIMP Flt_GetInt64(LPCSTR, __int64*) override { return E_NOTIMPL; }
    STDMETHODIMP Flt_GetDouble(LPCSTR, double*) override { return E_NOTIMPL; }
    STDMETHODIMP Flt_GetString(LPCSTR, LPWSTR*, unsigned*) override { return E_NOTIMPL; }
    // "displayedImage": what the window shows, as a bottom-up 32-bit DIB.
    STDMETHODIMP Flt_GetBin(LPCSTR field, LPVOID* value, unsigned* size) override;
    STDMETHODIMP Flt_SetBool(LPCSTR field, bool value) override;
    STDMETHODIMP Flt_SetInt(LPCSTR field, int value) override;
    STDMETHODIMP Flt_SetInt64(LPCSTR, __int64) override { return E_NOTIMPL; }
    STDMETHODIMP Flt_SetDouble(LPCSTR, double) override { return E_NOTIMPL; }
    STDMETHODIMP Flt_SetString(LPCSTR, LPWSTR, int) override { return E_NOTIMPL; }
    STDMETHODIMP Flt_SetBin(LPCSTR, LPVOID, int) override { return E_NOTIMPL; }

private:
    struct BoolOption {
        const char* name;
        bool value;
    };
    struct IntOption {
        const char* name;
        int value;
    };

    RendererCore& core;
    std::mutex mutex;
    std::array<BoolOption, 7> bools{{{"useD3D11", true},
                                     {"vsync", false},
                                     {"vBlankBeforePresent", false},
                                     {"adjustPresentTime", false},
                                     {"vpScaling", false},
                                     {"lessRedraws", true},
                                     {"d3dFullscreenControl", false}}};
    std::array<IntOption, 4> ints{
        {{"presentationType", 0}, {"chromaUpsampling", 0}, {"upscaler", 0}, {"downscaler", 0}}};
};

} // namespace brindlecast
