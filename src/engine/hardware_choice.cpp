#include "engine/hardware_choice.h"

#include <algorithm>
#include <array>
#include <initializer_list>

namespace brindlecast {

namespace {

std::uint32_t FirstSupported(std::initializer_list<std::uint32_t> methods, const HardwareProbe& probe) {
    const auto found =
        std::ranges::find_if(methods, [&](std::uint32_t method) { return probe(method) != 0; });
    return found != methods.end() ? *found : kHardwareNone;
}

} // namespace

const wchar_t* HardwareMethodName(std::uint32_t method) {
    constexpr std::array<const wchar_t*, 6> kNames = {L"None",  L"CUDA",        L"QuickSync",
                                                      L"DXVA2", L"DXVA2Native", L"D3D11"};
    return method < kNames.size() ? kNames[method] : L"Unknown";
}

std::uint32_t FallbackHardwareMethod(std::uint32_t requested, const HardwareProbe& probe) {
    switch (requested) {
    case kHardwareCuda: return FirstSupported({kHardwareD3D11, kHardwareDxva2}, probe);
    case kHardwareD3D11: return FirstSupported({kHardwareDxva2}, probe);
    default: return kHardwareNone;
    }
}

bool NeedsD3D11(int width, int height) {
    return width > 3840 || height >= 2161;
}

bool IsHardwareDecoderName(std::wstring_view decoderName) {
    constexpr std::array<std::wstring_view, 5> kHardwareWords = {L"dxva", L"d3d11", L"cuda", L"nvdec",
                                                                 L"qsv"};
    return std::ranges::any_of(kHardwareWords, [&](std::wstring_view word) {
        return decoderName.find(word) != std::wstring_view::npos;
    });
}

} // namespace brindlecast
