#pragma once

#include <windows.h>

#include <unknwn.h>
#include <wtypes.h>

// What LAVVideo.ax offers besides the standard DirectShow interfaces. The order of the methods is the binary
// contract: every slot is named, also those that the player does not call, because other hosts call them. No
// interface has a virtual destructor, which would take two slots.

namespace brindlecast {

// The video decoder.
inline constexpr GUID kClsidLavVideo = {
    0xEE30215D, 0x164F, 0x4A92, {0xA4, 0xEB, 0x9D, 0x4C, 0x13, 0x39, 0x0F, 0x9F}};

// Hardware decoding methods.
enum LavHwAccel : int {
    kLavHwAccelNone = 0,
    kLavHwAccelCuda = 1,
    kLavHwAccelQuickSync = 2,
    kLavHwAccelDxva2CopyBack = 3,
    kLavHwAccelDxva2Native = 4,
    kLavHwAccelD3D11 = 5,
};

// Codec numbers of SetHWAccelCodec. Number 2 is not in use.
enum LavHwCodec : int {
    kLavHwCodecH264 = 0,
    kLavHwCodecVc1 = 1,
    kLavHwCodecMpeg2 = 3,
    kLavHwCodecMpeg4 = 4,
    kLavHwCodecMpeg2Dvd = 5, // retired
    kLavHwCodecHevc = 6,
    kLavHwCodecVp9 = 7,
    kLavHwCodecH264Mvc = 8,
    kLavHwCodecAv1 = 9,
};

// Output pixel formats of SetPixelFormat.
enum LavPixelFormat : int {
    kLavPixelFormatYv12 = 0,
    kLavPixelFormatNv12 = 1,
    kLavPixelFormatYuy2 = 2,
    kLavPixelFormatUyvy = 3,
    kLavPixelFormatAyuv = 4,
    kLavPixelFormatP010 = 5,
    kLavPixelFormatP210 = 6,
    kLavPixelFormatY410 = 7,
    kLavPixelFormatP016 = 8,
    kLavPixelFormatP216 = 9,
    kLavPixelFormatY416 = 10,
    kLavPixelFormatRgb32 = 11,
    kLavPixelFormatRgb24 = 12,
    kLavPixelFormatV210 = 13,
    kLavPixelFormatV410 = 14,
    kLavPixelFormatYv16 = 15,
    kLavPixelFormatYv24 = 16,
    kLavPixelFormatRgb48 = 17,
    kLavPixelFormatCount = 18,
};

// Codec numbers of SetFormatConfiguration run from 0 to below this one.
inline constexpr int kLavVideoCodecCount = 64;

// Bits of SetHWAccelResolutionFlags.
enum LavHwResolutionFlags : DWORD {
    kLavHwResolutionSd = 1,
    kLavHwResolutionHd = 2,
    kLavHwResolutionUhd = 4,
};

// Numbers of SetDeinterlacingMode.
enum LavDeinterlacingMode : int {
    kLavDeinterlacingAuto = 0,
    kLavDeinterlacingAggressive = 1,
    kLavDeinterlacingForce = 2,
    kLavDeinterlacingDisable = 3,
};

// Settings of the video decoder. Calls may come from the main thread at any time.
struct ILAVVideoSettings : public IUnknown {
    // TRUE: use only what this interface sets; stored settings are neither read nor changed.
    virtual HRESULT STDMETHODCALLTYPE SetRuntimeConfig(BOOL runtime) = 0;
    virtual BOOL STDMETHODCALLTYPE GetFormatConfiguration(int codec) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetFormatConfiguration(int codec, BOOL enabled) = 0;
    // 0: as many threads as the decoder thinks fit.
    virtual HRESULT STDMETHODCALLTYPE SetNumThreads(DWORD threads) = 0;
    virtual DWORD STDMETHODCALLTYPE GetNumThreads() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetStreamAR(DWORD mode) = 0;
    virtual DWORD STDMETHODCALLTYPE GetStreamAR() = 0;
    virtual BOOL STDMETHODCALLTYPE GetPixelFormat(int format) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetPixelFormat(int format, BOOL enabled) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetRGBOutputRange(DWORD range) = 0;
    virtual DWORD STDMETHODCALLTYPE GetRGBOutputRange() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetDeintFieldOrder(int order) = 0;
    virtual int STDMETHODCALLTYPE GetDeintFieldOrder() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetDeintAggressive(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetDeintAggressive() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetDeintForce(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetDeintForce() = 0;
    // 0 when the LavHwAccel `method` can't be used on this machine, any other value when it can.
    virtual DWORD STDMETHODCALLTYPE CheckHWAccelSupport(int method) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetHWAccel(int method) = 0;
    virtual int STDMETHODCALLTYPE GetHWAccel() = 0;
    // `codec` is a LavHwCodec.
    virtual HRESULT STDMETHODCALLTYPE SetHWAccelCodec(int codec, BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetHWAccelCodec(int codec) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetHWAccelDeintMode(int mode) = 0;
    virtual int STDMETHODCALLTYPE GetHWAccelDeintMode() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetHWAccelDeintOutput(int output) = 0;
    virtual int STDMETHODCALLTYPE GetHWAccelDeintOutput() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetHWAccelDeintHQ(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetHWAccelDeintHQ() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetSWDeintMode(int mode) = 0;
    virtual int STDMETHODCALLTYPE GetSWDeintMode() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetSWDeintOutput(int output) = 0;
    virtual int STDMETHODCALLTYPE GetSWDeintOutput() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetDeintTreatAsProgressive(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetDeintTreatAsProgressive() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetDitherMode(int mode) = 0;
    virtual int STDMETHODCALLTYPE GetDitherMode() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetUseMSWMV9Decoder(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetUseMSWMV9Decoder() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetDVDVideoSupport(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetDVDVideoSupport() = 0;
    // LavHwResolutionFlags.
    virtual HRESULT STDMETHODCALLTYPE SetHWAccelResolutionFlags(DWORD flags) = 0;
    virtual DWORD STDMETHODCALLTYPE GetHWAccelResolutionFlags() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetTrayIcon(BOOL enabled) = 0;
    virtual BOOL STDMETHODCALLTYPE GetTrayIcon() = 0;
    // A LavDeinterlacingMode number.
    virtual HRESULT STDMETHODCALLTYPE SetDeinterlacingMode(int mode) = 0;
    virtual int STDMETHODCALLTYPE GetDeinterlacingMode() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetGPUDeviceIndex(DWORD device) = 0;
    virtual DWORD STDMETHODCALLTYPE GetHWAccelNumDevices(int method) = 0;
    // `name` is a BSTR that the caller frees with SysFreeString.
    virtual HRESULT STDMETHODCALLTYPE GetHWAccelDeviceInfo(int method, DWORD index, BSTR* name,
                                                           DWORD* id) = 0;
    virtual DWORD STDMETHODCALLTYPE GetHWAccelDeviceIndex(int method, DWORD* id) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetHWAccelDeviceIndex(int method, DWORD index, DWORD id) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetH264MVCDecodingOverride(BOOL enabled) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetEnableCCOutputPin(BOOL enabled) = 0;
};

// What the video decoder is doing.
struct ILAVVideoStatus : public IUnknown {
    // Static text owned by the filter, null while nothing is being decoded.
    virtual LPCWSTR STDMETHODCALLTYPE GetActiveDecoderName() = 0;
    // `device` is a BSTR that the caller frees with SysFreeString.
    virtual HRESULT STDMETHODCALLTYPE GetHWAccelActiveDevice(BSTR* device) = 0;
};

} // namespace brindlecast

__CRT_UUID_DECL(brindlecast::ILAVVideoSettings, 0xFA40D6E9, 0x4D38, 0x4761, 0xAD, 0xD2, 0x71, 0xA9, 0xEC,
                0x5F, 0xD3, 0x2F)
__CRT_UUID_DECL(brindlecast::ILAVVideoStatus, 0x1CC2385F, 0x36FA, 0x41B1, 0x99, 0x42, 0x50, 0x24, 0xCE, 0x02,
                0x35, 0xDC)
