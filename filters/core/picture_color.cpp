#include "filters/core/picture_color.h"

namespace brindlecast {

namespace {

// Control flags: the lowest byte holds flags of its own, then come fields of the extended colour format.
constexpr std::uint32_t kFlagsUsed = 0x01;
constexpr std::uint32_t kColorInfoPresent = 0x80;
constexpr int kSitingShift = 8;
constexpr int kRangeShift = 12;
constexpr int kMatrixShift = 15;
constexpr std::uint32_t kSitingHorizontallyCosited = 0x4;
constexpr std::uint32_t kSitingVerticallyCosited = 0x2;

struct LumaWeights {
    double red;
    double blue;
};

LumaWeights WeightsOf(YuvMatrixKind kind) {
    switch (kind) {
    case YuvMatrixKind::kBt601: return {0.299, 0.114};
    case YuvMatrixKind::kSmpte240: return {0.212, 0.087};
    case YuvMatrixKind::kBt2020: return {0.2627, 0.0593};
    case YuvMatrixKind::kUnknown:
    case YuvMatrixKind::kBt709: break;
    }
    return {0.2126, 0.0722};
}

YuvMatrixKind MatrixFromBits(std::uint32_t bits) {
    switch (bits) {
    case 1: return YuvMatrixKind::kBt709;
    case 2: return YuvMatrixKind::kBt601;
    case 3: return YuvMatrixKind::kSmpte240;
    case 4: // 10 bit
    case 5: // 12 bit
        return YuvMatrixKind::kBt2020;
    default: return YuvMatrixKind::kUnknown;
    }
}

} // namespace

ColorInfo ColorFromControlFlags(std::uint32_t controlFlags) {
    ColorInfo color;
    if ((controlFlags & kFlagsUsed) == 0 || (controlFlags & kColorInfoPresent) == 0) {
        return color;
    }
    const std::uint32_t siting = (controlFlags >> kSitingShift) & 0xF;
    if (siting != 0) {
        color.siting.horizontallyCosited = (siting & kSitingHorizontallyCosited) != 0;
        color.siting.verticallyCosited = (siting & kSitingVerticallyCosited) != 0;
    }
    const std::uint32_t range = (controlFlags >> kRangeShift) & 0x7;
    if (range == 1) {
        color.range = NominalRange::kFull;
    } else if (range == 2) {
        color.range = NominalRange::kLimited;
    }
    color.matrix = MatrixFromBits((controlFlags >> kMatrixShift) & 0x7);
    return color;
}

ColorInfo WithDefaults(ColorInfo color, PictureSize size) {
    if (color.range == NominalRange::kUnknown) {
        color.range = NominalRange::kLimited;
    }
    if (color.matrix == YuvMatrixKind::kUnknown) {
        const bool standardDefinition = size.width <= 1024 && size.height <= 576;
        color.matrix = standardDefinition ? YuvMatrixKind::kBt601 : YuvMatrixKind::kBt709;
    }
    return color;
}

ColorMatrix MatrixFor(PixelFormat format, const ColorInfo& color) {
    if (format == PixelFormat::kRgb32) {
        return {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}};
    }
    // `full` is what the texture value 1.0 stands for in codes of 8 bit; P010 keeps its ten bits at the top
    // of sixteen.
    const double full = format == PixelFormat::kP010 ? 65535.0 / 256.0 : 255.0;
    const double top = format == PixelFormat::kP010 ? 1023.0 / 4.0 : 255.0;
    const bool limited = color.range == NominalRange::kLimited;
    const double black = limited ? 16.0 : 0.0;
    const double lumaSpan = limited ? 219.0 : top;
    const double chromaSpan = limited ? 224.0 : top;

    const LumaWeights k = WeightsOf(color.matrix);
    const double green = 1.0 - k.red - k.blue;
    const double luma = full / lumaSpan;
    const double chroma = full / chromaSpan;
    const double redFromV = 2.0 * (1.0 - k.red) * chroma;
    const double blueFromU = 2.0 * (1.0 - k.blue) * chroma;
    const double greenFromU = -blueFromU * k.blue / green;
    const double greenFromV = -redFromV * k.red / green;
    const double blackAt = black / full;
    const double middleAt = 128.0 / full;

    const auto row = [&](double u, double v) {
        return std::array<float, 4>{static_cast<float>(luma), static_cast<float>(u), static_cast<float>(v),
                                    static_cast<float>(-luma * blackAt - (u + v) * middleAt)};
    };
    return {row(0, redFromV), row(greenFromU, greenFromV), row(blueFromU, 0)};
}

ChromaMapping ChromaMappingFor(PixelFormat format, PictureSize size, const ChromaSiting& siting) {
    const PictureSize span = ChromaSpan(format);
    const auto map = [](int texels, int step, bool cosited, float& scale, float& offset) {
        if (step == 1) {
            return;
        }
        const int wholeTexels = (texels + 1) / 2;
        const auto chromaTexels = static_cast<float>(wholeTexels);
        scale = static_cast<float>(texels) / (2.0F * chromaTexels);
        // The middle of a chroma texel stands, without an offset, between its two luma samples; a cosited one
        // belongs half a luma sample, a quarter of its own width, further left.
        offset = cosited ? 0.25F / chromaTexels : 0.0F;
    };
    ChromaMapping mapping;
    map(size.width, span.width, siting.horizontallyCosited, mapping.scaleX, mapping.offsetX);
    map(size.height, span.height, siting.verticallyCosited, mapping.scaleY, mapping.offsetY);
    return mapping;
}

} // namespace brindlecast
