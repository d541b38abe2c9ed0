#include "subtitles/image_blend.h"
#include "subtitles/mem_sub_pic.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <vector>

using namespace brindlecast;

namespace {

using Wide = std::int64_t;

constexpr int kLargest = 24; // pixels along an edge of anything that has memory

// Hands out the input from its beginning, and zeros behind its end.
class Input {
public:
    Input(const std::uint8_t* bytes, std::size_t size) : data(bytes), left(size) {}

    [[nodiscard]] bool IsEmpty() const { return left == 0; }
    std::uint8_t Byte() {
        if (left == 0) {
            return 0;
        }
        --left;
        return *data++;
    }
    int Below(int limit) { return Byte() % limit; }
    std::uint32_t Word() {
        std::uint32_t word = 0;
        for (int i = 0; i < 4; ++i) {
            word = word << 8 | Byte();
        }
        return word;
    }
    // Near the picture most of the time; else anywhere, both ends of the range included.
    int Coordinate() {
        switch (Below(8)) {
        case 0: return static_cast<int>(Word());
        case 1: return std::numeric_limits<int>::min() + Below(4);
        case 2: return std::numeric_limits<int>::max() - Below(4);
        default: return Below(4 * kLargest) - 2 * kLargest;
        }
    }
    Rect Rectangle() {
        const int left_ = Coordinate();
        const int top = Coordinate();
        return {left_, top, Coordinate(), Coordinate()};
    }

private:
    const std::uint8_t* data;
    std::size_t left;
};

// Memory that ends where its last row ends.
struct Picture {
    SubPicDesc desc;
    std::vector<std::uint8_t> bits;

    explicit Picture(Input& input) {
        desc.width = input.Below(kLargest);
        desc.height = input.Below(kLargest);
        desc.bpp = 32;
        desc.pitch = desc.width * 4 + input.Below(20);
        if (desc.height > 0) {
            bits.resize(static_cast<std::size_t>(desc.pitch * (desc.height - 1) + desc.width * 4));
        }
        std::generate(bits.begin(), bits.end(), [&input] { return input.Byte(); });
        desc.bits = bits.data();
    }
    [[nodiscard]] std::uint8_t& At(Wide x, Wide y, int channel) {
        return bits[static_cast<std::size_t>(y * desc.pitch + x * 4 + channel)];
    }
    [[nodiscard]] bool Holds(Wide x, Wide y) const {
        return x >= 0 && y >= 0 && x < desc.width && y < desc.height;
    }
};

struct Image {
    AlphaImage image;
    std::vector<std::uint8_t> bitmap;

    explicit Image(Input& input) {
        image.width = input.Below(kLargest);
        image.height = input.Below(kLargest);
        image.stride = image.width + input.Below(8);
        image.color = input.Word();
        image.dstX = input.Coordinate();
        image.dstY = input.Coordinate();
        if (image.height > 0) {
            bitmap.resize(static_cast<std::size_t>(image.stride * (image.height - 1) + image.width));
        }
        std::generate(bitmap.begin(), bitmap.end(), [&input] { return input.Byte(); });
        image.bitmap = bitmap.empty() ? nullptr : bitmap.data();
        if (input.Below(16) == 0) { // sizes that there is no memory for, and that nothing may be read of
            image.width = -image.width;
        }
    }
};

Wide Rounded(Wide product) {
    return (product + 127) / 255;
}

void PutPixel(Picture& picture, Wide x, Wide y, std::uint32_t color, Wide coverage) {
    const Wide alpha = Rounded(coverage * (255 - (color & 0xFF)));
    if (alpha == 0) {
        return;
    }
    const Wide from[4] = {Rounded((color >> 8 & 0xFF) * alpha), Rounded((color >> 16 & 0xFF) * alpha),
                          Rounded((color >> 24 & 0xFF) * alpha), alpha};
    const bool empty = picture.At(x, y, 3) == 0;
    for (int i = 0; i < 4; ++i) {
        std::uint8_t& onto = picture.At(x, y, i);
        onto = static_cast<std::uint8_t>(empty ? from[i] : Rounded(onto * (255 - alpha)) + from[i]);
    }
}

// The same as BlendImage: every pixel of the image asked by itself whether it lies in the picture.
void BlendPixelByPixel(const AlphaImage& image, Picture& picture, Rect& bounds) {
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            const Wide column = Wide{image.dstX} + x;
            const Wide row = Wide{image.dstY} + y;
            if (image.bitmap == nullptr || !picture.Holds(column, row)) {
                continue;
            }
            PutPixel(picture, column, row, image.color, image.bitmap[y * image.stride + x]);
            bounds = {std::min(bounds.left, static_cast<int>(column)),
                      std::min(bounds.top, static_cast<int>(row)),
                      std::max(bounds.right, static_cast<int>(column) + 1),
                      std::max(bounds.bottom, static_cast<int>(row) + 1)};
        }
    }
}

void CheckBlend(Input& input) {
    Picture picture(input);
    Picture expected = picture;
    Rect bounds = kInvertedRect;
    Rect expectedBounds = kInvertedRect;
    for (int i = 0; i < 8 && !input.IsEmpty(); ++i) {
        const Image image(input);
        BlendImage(image.image, picture.desc, bounds);
        BlendPixelByPixel(image.image, expected, expectedBounds);
        if (picture.bits != expected.bits || bounds != expectedBounds) {
            std::abort();
        }
    }
}

// The same as AlphaBlt, from the target's side: every pixel of it asked where it comes from.
void BltPixelByPixel(const SubPicDesc& source, const Rect& src, const Rect& dst, Picture& target) {
    const Wide width = std::min(Wide{src.right} - src.left, Wide{dst.right} - dst.left);
    const Wide height = std::min(Wide{src.bottom} - src.top, Wide{dst.bottom} - dst.top);
    for (Wide y = 0; y < target.desc.height; ++y) {
        for (Wide x = 0; x < target.desc.width; ++x) {
            const Wide column = x - dst.left;
            const Wide row = y - dst.top;
            const Wide fromX = src.left + column;
            const Wide fromY = src.top + row;
            if (column < 0 || row < 0 || column >= width || row >= height || fromX < 0 || fromY < 0 ||
                fromX >= source.width || fromY >= source.height) {
                continue;
            }
            const std::uint8_t* from = source.bits + fromY * source.pitch + fromX * 4;
            const int alpha = from[3];
            for (int i = 0; i < 3; ++i) {
                std::uint8_t& onto = target.At(x, y, i);
                onto = static_cast<std::uint8_t>(((255 - alpha) * onto + alpha * from[i]) / 255);
            }
            std::uint8_t& onto = target.At(x, y, 3);
            onto = static_cast<std::uint8_t>((255 - alpha) * onto / 255 + alpha);
        }
    }
}

void CheckAlphaBlt(Input& input) {
    const ComReference<ISubPic> source(
        CMemSubPic::Make({input.Below(kLargest), input.Below(kLargest)}, {}, 32, 0));
    SubPicDesc desc;
    if (source == nullptr || source->Lock(desc) != S_OK) {
        std::abort();
    }
    std::generate_n(desc.bits, desc.pitch * desc.height, [&input] { return input.Byte(); });
    Picture target(input);
    Picture expected = target;
    const Rect src = input.Rectangle();
    const Rect dst = input.Rectangle();
    const HRESULT result = source->AlphaBlt(&src, &dst, &target.desc);
    if (result == S_OK) {
        BltPixelByPixel(desc, src, dst, expected);
    }
    if (target.bits != expected.bits) {
        std::abort();
    }
    const Rect drawn = input.Rectangle();
    Rect dirty;
    if (source->Unlock(&drawn) != S_OK || source->GetDirtyRect(&dirty) != S_OK || dirty.left < 0 ||
        dirty.top < 0 || dirty.right > desc.width || dirty.bottom > desc.height) {
        std::abort();
    }
}

} // namespace

// Draws images and a picture that the input describes, and compares with the same drawn pixel by pixel.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    if (input.Below(2) == 0) {
        CheckBlend(input);
    } else {
        CheckAlphaBlt(input);
    }
    return 0;
}
