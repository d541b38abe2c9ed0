#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

namespace brindlecast {

// Software; what remains when nothing else works.
inline constexpr std::uint32_t kHardwareNone = 0;
inline constexpr std::uint32_t kHardwareCuda = 1;
inline constexpr std::uint32_t kHardwareQuickSync = 2;
inline constexpr std::uint32_t kHardwareDxva2 = 3;
inline constexpr std::uint32_t kHardwareDxva2Native = 4;
inline constexpr std::uint32_t kHardwareD3D11 = 5;

// The name of a hardware decoding method, "Unknown" for other numbers.
[[nodiscard]] const wchar_t* HardwareMethodName(std::uint32_t method);

// Asks the decoder for support of one method: 0 unsupported, other values supported.
using HardwareProbe = std::function<std::uint32_t(std::uint32_t method)>;

// The method to use when `requested` turned out unsupported: from CUDA D3D11, then DXVA2; from D3D11 DXVA2;
// else none. Probes nothing that it does not need.
[[nodiscard]] std::uint32_t FallbackHardwareMethod(std::uint32_t requested, const HardwareProbe& probe);

// True for a size that only D3D11 decodes fast enough: wider than 3840 or at least 2161 high.
[[nodiscard]] bool NeedsD3D11(int width, int height);

// True when a decoder of this name decodes in hardware. The search is case-sensitive.
[[nodiscard]] bool IsHardwareDecoderName(std::wstring_view decoderName);

} // namespace brindlecast
