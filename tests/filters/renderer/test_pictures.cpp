#include "tests/filters/renderer/test_pictures.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace brindlecast::test {

namespace {

struct Yuv {
    double y, u, v; // 0..1 and -0.5..0.5
};

Yuv ToYuv(const Color& color, Matrix matrix) {
    double red = 0.2126;
    double blue = 0.0722;
    if (matrix == Matrix::Bt601) {
        red = 0.299;
        blue = 0.114;
    } else if (matrix == Matrix::Bt2020) {
        red = 0.2627;
        blue = 0.0593;
    }
    const double r = color.red / 255.0;
    const double g = color.green / 255.0;
    const double b = color.blue / 255.0;
    const double y = red * r + (1 - red - blue) * g + blue * b;
    return {y, (b - y) / (2 * (1 - blue)), (r - y) / (2 * (1 - red))};
}

struct Codes {
    int y, u, v;
};

Codes Quantize(const Yuv& value, bool full, int bits) {
    const double unit = bits == 10 ? 4 : 1;
    const double top = bits == 10 ? 1023 : 255;
    const auto round = [](double code) {
        return static_cast<int>(std::lround(code));
    };
    if (full) {
        const double middle = 128 * unit;
        return {round(value.y * top), round(std::min(middle + value.u * top, top)),
                round(std::min(middle + value.v * top, top))};
    }
    return {round((16 + 219 * value.y) * unit), round((128 + 224 * value.u) * unit),
            round((128 + 224 * value.v) * unit)};
}

struct Source {
    const PictureKind& kind;
    const std::function<Color(int, int)>& pixel;

    [[nodiscard]] Codes At(int x, int y) const {
        return Quantize(ToYuv(pixel(std::min(x, kind.width - 1), std::min(y, kind.height - 1)), kind.matrix),
                        kind.fullRange, kind.format == Format::P010 ? 10 : 8);
    }
};

std::vector<std::uint8_t> MakeSemiPlanar(const Source& source, bool wide) {
    const int chromaWidth = (source.kind.width + 1) / 2;
    const int chromaHeight = (source.kind.height + 1) / 2;
    std::vector<std::uint8_t> bytes;
    const auto put = [&](int code) {
        const int stored = wide ? code << 6 : code;
        bytes.push_back(static_cast<std::uint8_t>(stored & 0xFF));
        if (wide) {
            bytes.push_back(static_cast<std::uint8_t>(stored >> 8));
        }
    };
    for (int y = 0; y < source.kind.height; ++y) {
        for (int x = 0; x < source.kind.width; ++x) {
            put(source.At(x, y).y);
        }
    }
    for (int y = 0; y < chromaHeight; ++y) {
        for (int x = 0; x < chromaWidth; ++x) {
            const Codes codes = source.At(2 * x, 2 * y);
            put(codes.u);
            put(codes.v);
        }
    }
    return bytes;
}

std::vector<std::uint8_t> MakePlanar(const Source& source) {
    std::vector<std::uint8_t> bytes;
    for (int y = 0; y < source.kind.height; ++y) {
        for (int x = 0; x < source.kind.width; ++x) {
            bytes.push_back(static_cast<std::uint8_t>(source.At(x, y).y));
        }
    }
    for (const bool second : {false, true}) {
        for (int y = 0; y < (source.kind.height + 1) / 2; ++y) {
            for (int x = 0; x < (source.kind.width + 1) / 2; ++x) {
                const Codes codes = source.At(2 * x, 2 * y);
                bytes.push_back(static_cast<std::uint8_t>(second ? codes.u : codes.v));
            }
        }
    }
    return bytes;
}

std::vector<std::uint8_t> MakePacked(const Source& source) {
    std::vector<std::uint8_t> bytes;
    for (int y = 0; y < source.kind.height; ++y) {
        for (int x = 0; x < source.kind.width; ++x) {
            if (source.kind.format == Format::Ayuv) {
                const Codes codes = source.At(x, y);
                for (const int code : {codes.v, codes.u, codes.y, 255}) {
                    bytes.push_back(static_cast<std::uint8_t>(code));
                }
            } else if (x % 2 == 0) {
                const Codes first = source.At(x, y);
                for (const int code : {first.y, first.u, source.At(x + 1, y).y, first.v}) {
                    bytes.push_back(static_cast<std::uint8_t>(code));
                }
            }
        }
    }
    return bytes;
}

std::vector<std::uint8_t> MakeRgb(const Source& source) {
    std::vector<std::uint8_t> bytes;
    const bool bottomUp = source.kind.format == Format::Rgb32;
    for (int row = 0; row < source.kind.height; ++row) {
        for (int x = 0; x < source.kind.width; ++x) {
            const Color color = source.pixel(x, bottomUp ? source.kind.height - 1 - row : row);
            for (const int code : {color.blue, color.green, color.red, 0}) {
                bytes.push_back(static_cast<std::uint8_t>(code));
            }
        }
    }
    return bytes;
}

GUID SubtypeOf(Format format) {
    const auto code = [](const char* text) {
        GUID guid = {0, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
        std::memcpy(&guid.Data1, text, 4);
        return guid;
    };
    switch (format) {
    case Format::Nv12: return code("NV12");
    case Format::P010: return code("P010");
    case Format::Yv12: return code("YV12");
    case Format::Yuy2: return code("YUY2");
    case Format::Ayuv: return code("AYUV");
    case Format::Rgb32:
    case Format::Rgb32TopDown: break;
    }
    return MEDIASUBTYPE_RGB32;
}

DWORD ColorFlags(const PictureKind& kind) {
    // AMCONTROL_USED, AMCONTROL_COLORINFO_PRESENT, then the range at bit 12 and the matrix at bit 15.
    const DWORD range = kind.fullRange ? 1 : 2;
    const DWORD matrix = kind.matrix == Matrix::Bt709 ? 1 : kind.matrix == Matrix::Bt601 ? 2 : 4;
    return 0x81 | range << 12 | matrix << 15;
}

} // namespace

std::ostream& operator<<(std::ostream& out, const PictureKind& kind) {
    static constexpr const char* kFormats[] = {"NV12", "P010",  "YV12",          "YUY2",
                                               "AYUV", "RGB32", "RGB32 top-down"};
    static constexpr const char* kMatrices[] = {"601", "709", "2020"};
    return out << kFormats[static_cast<int>(kind.format)] << " " << kMatrices[static_cast<int>(kind.matrix)]
               << (kind.fullRange ? " full " : " limited ") << kind.width << "x" << kind.height;
}

MediaType TypeOf(const PictureKind& kind) {
    MediaType type(MEDIATYPE_Video, SubtypeOf(kind.format));
    BITMAPINFOHEADER bitmap{};
    bitmap.biSize = sizeof(bitmap);
    bitmap.biWidth = kind.width;
    bitmap.biHeight = kind.format == Format::Rgb32TopDown ? -kind.height : kind.height;
    bitmap.biPlanes = 1;
    bitmap.biBitCount = 32;
    bitmap.biCompression = kind.format == Format::Rgb32 || kind.format == Format::Rgb32TopDown
                               ? static_cast<DWORD>(BI_RGB)
                               : type.Get().subtype.Data1;
    if (kind.oldHeader) {
        VIDEOINFOHEADER header{};
        header.AvgTimePerFrame = kind.frameDuration;
        header.bmiHeader = bitmap;
        type.SetFormat(FORMAT_VideoInfo, &header, sizeof(header));
        return type;
    }
    VIDEOINFOHEADER2 header{};
    header.AvgTimePerFrame = kind.frameDuration;
    header.dwPictAspectRatioX = static_cast<DWORD>(kind.aspectX);
    header.dwPictAspectRatioY = static_cast<DWORD>(kind.aspectY);
    header.dwControlFlags = ColorFlags(kind);
    header.bmiHeader = bitmap;
    type.SetFormat(FORMAT_VideoInfo2, &header, sizeof(header));
    return type;
}

std::vector<std::uint8_t> MakePicture(const PictureKind& kind,
                                      const std::function<Color(int x, int y)>& pixel) {
    const Source source{kind, pixel};
    switch (kind.format) {
    case Format::Nv12: return MakeSemiPlanar(source, false);
    case Format::P010: return MakeSemiPlanar(source, true);
    case Format::Yv12: return MakePlanar(source);
    case Format::Yuy2:
    case Format::Ayuv: return MakePacked(source);
    case Format::Rgb32:
    case Format::Rgb32TopDown: break;
    }
    return MakeRgb(source);
}

std::vector<std::uint8_t> MakePicture(const PictureKind& kind, const Color& all) {
    return MakePicture(kind, [all](int, int) { return all; });
}

const std::vector<Color>& BarColors() {
    static const std::vector<Color> colors{{235, 235, 235}, {200, 200, 20}, {20, 190, 190}, {20, 180, 40},
                                           {190, 30, 190},  {200, 20, 20},  {30, 40, 200},  {16, 16, 16}};
    return colors;
}

Color BarAt(int x, int width) {
    return BarColors()[static_cast<std::size_t>(std::clamp(x * 8 / width, 0, 7))];
}

Color QuadrantAt(int x, int y, int width, int height) {
    const bool right = 2 * x >= width;
    if (2 * y < height) {
        return right ? kGreen : kRed;
    }
    return right ? kWhite : kBlue;
}

} // namespace brindlecast::test
