#pragma once

#include "filters/base/media_type.h"
#include "tests/filters/renderer/screen.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace brindlecast::test {

enum class Format { Nv12, P010, Yv12, Yuy2, Ayuv, Rgb32, Rgb32TopDown };
enum class Matrix { Bt601, Bt709, Bt2020 };

struct PictureKind {
    Format format = Format::Nv12;
    Matrix matrix = Matrix::Bt709;
    bool fullRange = false;
    int width = 320;
    int height = 180;
    // Shape of the whole picture; 0 means that the header says nothing.
    int aspectX = 0;
    int aspectY = 0;
    std::int64_t frameDuration = 400'000;
    // Header without colour information (VIDEOINFOHEADER).
    bool oldHeader = false;
};
std::ostream& operator<<(std::ostream& out, const PictureKind& kind);

[[nodiscard]] MediaType TypeOf(const PictureKind& kind);

// The memory of a picture whose pixels have these colours, computed here from the definitions of the
// matrices.
[[nodiscard]] std::vector<std::uint8_t> MakePicture(const PictureKind& kind,
                                                    const std::function<Color(int x, int y)>& pixel);
[[nodiscard]] std::vector<std::uint8_t> MakePicture(const PictureKind& kind, const Color& all);

// Eight vertical bars, saturated and grey.
[[nodiscard]] const std::vector<Color>& BarColors();
[[nodiscard]] Color BarAt(int x, int width);
// Four quadrants: red, green over blue, white.
[[nodiscard]] Color QuadrantAt(int x, int y, int width, int height);

inline constexpr Color kRed{200, 20, 20};
inline constexpr Color kGreen{20, 180, 40};
inline constexpr Color kBlue{30, 40, 200};
inline constexpr Color kWhite{235, 235, 235};
inline constexpr Color kBlack{0, 0, 0};

} // namespace brindlecast::test
