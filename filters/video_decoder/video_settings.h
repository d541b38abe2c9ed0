#pragma once

#include "filters/core/picture_format.h"
#include "filters/core/video_shape.h"
#include "filters/include/lav_video.h"

#include <array>
#include <atomic>

namespace brindlecast {

// The decoder's settings. Every method may be called on any thread at any time; what changes how a stream is
// set up takes effect with the next connection. A setter answers E_NOTIMPL where the decoder can't do what
// is asked for, and its getter tells what the decoder does. The class that derives brings IUnknown.
class VideoSettings : public ILAVVideoSettings {
public:
    STDMETHODIMP SetRuntimeConfig(BOOL runtime) override;
    STDMETHODIMP_(BOOL) GetFormatConfiguration(int codec) override;
    STDMETHODIMP SetFormatConfiguration(int codec, BOOL enabled) override;
    STDMETHODIMP SetNumThreads(DWORD newThreads) override;
    STDMETHODIMP_(DWORD) GetNumThreads() override { return threads; }
    STDMETHODIMP SetStreamAR(DWORD mode) override;
    STDMETHODIMP_(DWORD) GetStreamAR() override { return aspect; }
    STDMETHODIMP_(BOOL) GetPixelFormat(int format) override;
    STDMETHODIMP SetPixelFormat(int format, BOOL enabled) override;
    STDMETHODIMP SetRGBOutputRange(DWORD range) override;
    STDMETHODIMP_(DWORD) GetRGBOutputRange() override;
    STDMETHODIMP SetDeintFieldOrder(int order) override;
    STDMETHODIMP_(int) GetDeintFieldOrder() override { return 0; }
    STDMETHODIMP SetDeintAggressive(BOOL enabled) override;
    STDMETHODIMP_(BOOL) GetDeintAggressive() override { return FALSE; }
    STDMETHODIMP SetDeintForce(BOOL enabled) override;
    STDMETHODIMP_(BOOL) GetDeintForce() override { return FALSE; }
    STDMETHODIMP_(DWORD) CheckHWAccelSupport(int method) override;
    STDMETHODIMP SetHWAccel(int method) override;
    STDMETHODIMP_(int) GetHWAccel() override { return kLavHwAccelNone; }
    STDMETHODIMP SetHWAccelCodec(int codec, BOOL enabled) override;
    STDMETHODIMP_(BOOL) GetHWAccelCodec(int codec) override;
    STDMETHODIMP SetHWAccelDeintMode(int mode) override;
    STDMETHODIMP_(int) GetHWAccelDeintMode() override { return 0; }
    STDMETHODIMP SetHWAccelDeintOutput(int output) override;
    STDMETHODIMP_(int) GetHWAccelDeintOutput() override { return 0; }
    STDMETHODIMP SetHWAccelDeintHQ(BOOL enabled) override;
    STDMETHODIMP_(BOOL) GetHWAccelDeintHQ() override { return FALSE; }
    STDMETHODIMP SetSWDeintMode(int mode) override;
    STDMETHODIMP_(int) GetSWDeintMode() override { return 0; }
    STDMETHODIMP SetSWDeintOutput(int output) override;
    STDMETHODIMP_(int) GetSWDeintOutput() override { return 0; }
    STDMETHODIMP SetDeintTreatAsProgressive(BOOL enabled) override;
    STDMETHODIMP_(BOOL) GetDeintTreatAsProgressive() override { return TRUE; }
    STDMETHODIMP SetDitherMode(int mode) override;
    STDMETHODIMP_(int) GetDitherMode() override { return 0; }
    STDMETHODIMP SetUseMSWMV9Decoder(BOOL enabled) override;
    STDMETHODIMP_(BOOL) GetUseMSWMV9Decoder() override { return FALSE; }
    STDMETHODIMP SetDVDVideoSupport(BOOL enabled) override;
    STDMETHODIMP_(BOOL) GetDVDVideoSupport() override { return FALSE; }
    STDMETHODIMP SetHWAccelResolutionFlags(DWORD flags) override;
    STDMETHODIMP_(DWORD) GetHWAccelResolutionFlags() override { return hardwareSizes; }
    STDMETHODIMP SetTrayIcon(BOOL enabled) override;
    STDMETHODIMP_(BOOL) GetTrayIcon() override { return FALSE; }
    STDMETHODIMP SetDeinterlacingMode(int mode) override;
    STDMETHODIMP_(int) GetDeinterlacingMode() override { return kLavDeinterlacingDisable; }
    STDMETHODIMP SetGPUDeviceIndex(DWORD device) override;
    STDMETHODIMP_(DWORD) GetHWAccelNumDevices(int method) override;
    STDMETHODIMP GetHWAccelDeviceInfo(int method, DWORD index, BSTR* name, DWORD* id) override;
    STDMETHODIMP_(DWORD) GetHWAccelDeviceIndex(int method, DWORD* id) override;
    STDMETHODIMP SetHWAccelDeviceIndex(int method, DWORD index, DWORD id) override;
    STDMETHODIMP SetH264MVCDecodingOverride(BOOL enabled) override;
    STDMETHODIMP SetEnableCCOutputPin(BOOL enabled) override;

protected:
    VideoSettings();
    ~VideoSettings() = default;

    [[nodiscard]] int Threads() const { return static_cast<int>(threads.load()); }
    [[nodiscard]] AspectSource SourceOfAspect() const { return static_cast<AspectSource>(aspect.load()); }
    [[nodiscard]] bool IsEnabled(PixelFormat format) const;

private:
    std::atomic<DWORD> threads{0};
    std::atomic<DWORD> aspect{static_cast<DWORD>(AspectSource::kAutomatic)};
    std::atomic<DWORD> hardwareSizes{kLavHwResolutionSd | kLavHwResolutionHd | kLavHwResolutionUhd};
    std::array<std::atomic<bool>, kLavPixelFormatCount> pixelFormats;
    std::array<std::atomic<bool>, kLavHwCodecAv1 + 1> hardwareCodecs;
};

} // namespace brindlecast
