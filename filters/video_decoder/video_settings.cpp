#include "filters/video_decoder/video_settings.h"

#include <optional>

namespace brindlecast {
namespace {

constexpr DWORD kMaxThreads = 128;

struct Offered {
    LavPixelFormat number;
    PixelFormat format;
};

// The pixel formats that the decoder can make.
constexpr Offered kOffered[] = {
    {kLavPixelFormatNv12, PixelFormat::kNv12}, {kLavPixelFormatP010, PixelFormat::kP010},
    {kLavPixelFormatYv12, PixelFormat::kYv12}, {kLavPixelFormatYuy2, PixelFormat::kYuy2},
    {kLavPixelFormatAyuv, PixelFormat::kAyuv}, {kLavPixelFormatRgb32, PixelFormat::kRgb32},
};

bool IsOffered(int number) {
    for (const Offered& offered : kOffered) {
        if (offered.number == number) {
            return true;
        }
    }
    return false;
}

bool IsMethod(int method) {
    return method >= kLavHwAccelNone && method <= kLavHwAccelD3D11;
}

// Number 2 is not in use.
bool IsHardwareCodec(int codec) {
    return codec >= kLavHwCodecH264 && codec <= kLavHwCodecAv1 && codec != 2;
}

// For what the decoder does not do: leaving it off is fine, turning it on is not possible.
HRESULT OnlyOff(BOOL enabled) {
    return enabled ? E_NOTIMPL : S_OK;
}

} // namespace

VideoSettings::VideoSettings() {
    for (int number = 0; number < kLavPixelFormatCount; ++number) {
        pixelFormats[static_cast<std::size_t>(number)] = IsOffered(number);
    }
    for (std::size_t codec = 0; codec < hardwareCodecs.size(); ++codec) {
        hardwareCodecs[codec] = IsHardwareCodec(static_cast<int>(codec));
    }
}

bool VideoSettings::IsEnabled(PixelFormat format) const {
    for (const Offered& offered : kOffered) {
        if (offered.format == format) {
            return pixelFormats[offered.number];
        }
    }
    return false;
}

// There are no stored settings: what this interface sets is all there is.
STDMETHODIMP VideoSettings::SetRuntimeConfig(BOOL runtime) {
    return runtime ? S_OK : E_NOTIMPL;
}

STDMETHODIMP_(BOOL) VideoSettings::GetFormatConfiguration(int codec) {
    return codec >= 0 && codec < kLavVideoCodecCount;
}

STDMETHODIMP VideoSettings::SetFormatConfiguration(int codec, BOOL enabled) {
    if (codec < 0 || codec >= kLavVideoCodecCount) {
        return E_INVALIDARG;
    }
    return enabled ? S_OK : E_NOTIMPL;
}

STDMETHODIMP VideoSettings::SetNumThreads(DWORD newThreads) {
    if (newThreads > kMaxThreads) {
        return E_INVALIDARG;
    }
    threads = newThreads;
    return S_OK;
}

STDMETHODIMP VideoSettings::SetStreamAR(DWORD mode) {
    if (mode > static_cast<DWORD>(AspectSource::kAutomatic)) {
        return E_INVALIDARG;
    }
    aspect = mode;
    return S_OK;
}

STDMETHODIMP_(BOOL) VideoSettings::GetPixelFormat(int format) {
    return format >= 0 && format < kLavPixelFormatCount && pixelFormats[static_cast<std::size_t>(format)];
}

STDMETHODIMP VideoSettings::SetPixelFormat(int format, BOOL enabled) {
    if (format < 0 || format >= kLavPixelFormatCount) {
        return E_INVALIDARG;
    }
    if (!IsOffered(format)) {
        return OnlyOff(enabled);
    }
    pixelFormats[static_cast<std::size_t>(format)] = enabled != FALSE;
    return S_OK;
}

STDMETHODIMP VideoSettings::SetRGBOutputRange(DWORD) {
    return E_NOTIMPL;
}
STDMETHODIMP_(DWORD) VideoSettings::GetRGBOutputRange() {
    return 0;
}

// Pictures leave as they were coded, both fields woven.
STDMETHODIMP VideoSettings::SetDeintFieldOrder(int) {
    return E_NOTIMPL;
}
STDMETHODIMP VideoSettings::SetDeintAggressive(BOOL enabled) {
    return OnlyOff(enabled);
}
STDMETHODIMP VideoSettings::SetDeintForce(BOOL enabled) {
    return OnlyOff(enabled);
}
STDMETHODIMP VideoSettings::SetSWDeintMode(int) {
    return E_NOTIMPL;
}
STDMETHODIMP VideoSettings::SetSWDeintOutput(int) {
    return E_NOTIMPL;
}
STDMETHODIMP VideoSettings::SetDeintTreatAsProgressive(BOOL enabled) {
    return enabled ? S_OK : E_NOTIMPL;
}
STDMETHODIMP VideoSettings::SetDeinterlacingMode(int mode) {
    if (mode < kLavDeinterlacingAuto || mode > kLavDeinterlacingDisable) {
        return E_INVALIDARG;
    }
    return mode == kLavDeinterlacingDisable ? S_OK : E_NOTIMPL;
}

STDMETHODIMP_(DWORD) VideoSettings::CheckHWAccelSupport(int method) {
    return method == kLavHwAccelNone;
}

STDMETHODIMP VideoSettings::SetHWAccel(int method) {
    if (!IsMethod(method)) {
        return E_INVALIDARG;
    }
    return method == kLavHwAccelNone ? S_OK : E_NOTIMPL;
}

STDMETHODIMP VideoSettings::SetHWAccelCodec(int codec, BOOL enabled) {
    if (!IsHardwareCodec(codec)) {
        return E_INVALIDARG;
    }
    hardwareCodecs[static_cast<std::size_t>(codec)] = enabled != FALSE;
    return S_OK;
}

STDMETHODIMP_(BOOL) VideoSettings::GetHWAccelCodec(int codec) {
    return IsHardwareCodec(codec) && hardwareCodecs[static_cast<std::size_t>(codec)];
}

STDMETHODIMP VideoSettings::SetHWAccelDeintMode(int) {
    return E_NOTIMPL;
}
STDMETHODIMP VideoSettings::SetHWAccelDeintOutput(int) {
    return E_NOTIMPL;
}
STDMETHODIMP VideoSettings::SetHWAccelDeintHQ(BOOL enabled) {
    return OnlyOff(enabled);
}

STDMETHODIMP VideoSettings::SetHWAccelResolutionFlags(DWORD flags) {
    if ((flags & ~DWORD{kLavHwResolutionSd | kLavHwResolutionHd | kLavHwResolutionUhd}) != 0) {
        return E_INVALIDARG;
    }
    hardwareSizes = flags;
    return S_OK;
}

STDMETHODIMP VideoSettings::SetDitherMode(int) {
    return E_NOTIMPL;
}
STDMETHODIMP VideoSettings::SetUseMSWMV9Decoder(BOOL enabled) {
    return OnlyOff(enabled);
}
STDMETHODIMP VideoSettings::SetDVDVideoSupport(BOOL enabled) {
    return OnlyOff(enabled);
}
STDMETHODIMP VideoSettings::SetTrayIcon(BOOL enabled) {
    return OnlyOff(enabled);
}
STDMETHODIMP VideoSettings::SetGPUDeviceIndex(DWORD) {
    return E_NOTIMPL;
}
STDMETHODIMP_(DWORD) VideoSettings::GetHWAccelNumDevices(int) {
    return 0;
}

STDMETHODIMP VideoSettings::GetHWAccelDeviceInfo(int, DWORD, BSTR* name, DWORD* id) {
    if (name) {
        *name = nullptr;
    }
    if (id) {
        *id = 0;
    }
    // There are no devices, so no number is one of a device.
    return E_INVALIDARG;
}

STDMETHODIMP_(DWORD) VideoSettings::GetHWAccelDeviceIndex(int, DWORD* id) {
    constexpr DWORD kNoDevice = 0xFFFFFFFF;
    if (id) {
        *id = 0;
    }
    return kNoDevice;
}

STDMETHODIMP VideoSettings::SetHWAccelDeviceIndex(int, DWORD, DWORD) {
    return E_NOTIMPL;
}
STDMETHODIMP VideoSettings::SetH264MVCDecodingOverride(BOOL enabled) {
    return OnlyOff(enabled);
}
STDMETHODIMP VideoSettings::SetEnableCCOutputPin(BOOL enabled) {
    return OnlyOff(enabled);
}

} // namespace brindlecast
