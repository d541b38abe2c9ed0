#pragma once

#include "base/trace.h"
#include "base/utf8.h"
#include "subtitles/sub_pic.h"
#include "tests/support/ass_script.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace brindlecast::testing {

struct Pixel {
    int blue = 0;
    int green = 0;
    int red = 0;
    int alpha = 0;
    bool operator==(const Pixel&) const = default;
};

inline void PrintTo(const Pixel& pixel, std::ostream* out) {
    *out << "b " << pixel.blue << " g " << pixel.green << " r " << pixel.red << " a " << pixel.alpha;
}

inline constexpr Pixel kClear{};
inline constexpr Pixel kRed{0, 0, 255, 255};
inline constexpr Pixel kGreen{0, 255, 0, 255};
inline constexpr Pixel kBlue{255, 0, 0, 255};
inline constexpr Pixel kWhite{255, 255, 255, 255};

[[nodiscard]] inline Pixel PixelAt(const SubPicDesc& desc, int x, int y) {
    const std::uint8_t* const bytes =
        desc.bits + static_cast<std::ptrdiff_t>(y) * desc.pitch + static_cast<std::ptrdiff_t>(x) * 4;
    return {bytes[0], bytes[1], bytes[2], bytes[3]};
}

// The memory of a picture, clear at first. Rows have `kGap` bytes more than their pixels.
class Canvas {
public:
    explicit Canvas(Size size)
        : memory(static_cast<std::size_t>(size.height) * (static_cast<std::size_t>(size.width) * 4 + kGap)) {
        desc.width = size.width;
        desc.height = size.height;
        desc.bpp = 32;
        desc.pitch = size.width * 4 + static_cast<int>(kGap);
        desc.bits = memory.data();
        desc.videoRect = {0, 0, size.width, size.height};
    }
    Canvas(const Canvas&) = delete;
    Canvas(Canvas&&) = default;
    [[nodiscard]] Pixel At(int x, int y) const { return PixelAt(desc, x, y); }
    [[nodiscard]] int Count(const Pixel& pixel) const {
        int count = 0;
        for (int y = 0; y < desc.height; ++y) {
            for (int x = 0; x < desc.width; ++x) {
                count += At(x, y) == pixel ? 1 : 0;
            }
        }
        return count;
    }
    // Around all pixels that are not clear; the inverted rectangle without any.
    [[nodiscard]] Rect Drawn() const {
        Rect drawn = kInvertedRect;
        for (int y = 0; y < desc.height; ++y) {
            for (int x = 0; x < desc.width; ++x) {
                if (At(x, y) != kClear) {
                    drawn = {std::min(drawn.left, x), std::min(drawn.top, y), std::max(drawn.right, x + 1),
                             std::max(drawn.bottom, y + 1)};
                }
            }
        }
        return drawn;
    }
    [[nodiscard]] bool GapsAreClear() const {
        for (int y = 0; y < desc.height; ++y) {
            const auto* const end = desc.bits + static_cast<std::ptrdiff_t>(y + 1) * desc.pitch;
            if (std::any_of(end - kGap, end, [](std::uint8_t byte) { return byte != 0; })) {
                return false;
            }
        }
        return true;
    }
    void Clear() { std::ranges::fill(memory, std::uint8_t{0}); }
    bool operator==(const Canvas& other) const { return memory == other.memory; }

    SubPicDesc desc;

private:
    static constexpr std::size_t kGap = 12;
    std::vector<std::uint8_t> memory;
};

[[nodiscard]] inline bool Holds(const Rect& outer, const Rect& inner) {
    return outer.left <= inner.left && outer.top <= inner.top && outer.right >= inner.right &&
           outer.bottom >= inner.bottom;
}

// libass spreads an edge over the pixels beside it.
[[nodiscard]] inline bool IsAbout(const Rect& expected, const Rect& drawn) {
    const auto isBeside = [](int one, int other) {
        return one - other <= 1 && other - one <= 1;
    };
    return isBeside(expected.left, drawn.left) && isBeside(expected.top, drawn.top) &&
           isBeside(expected.right, drawn.right) && isBeside(expected.bottom, drawn.bottom);
}

// What the drawing of cues was asked for.
struct DrawnCue {
    std::wstring text;
    Size picture;
    bool operator==(const DrawnCue&) const = default;
};

inline void PrintTo(const DrawnCue& cue, std::ostream* out) {
    *out << ::testing::PrintToString(cue.text) << " on " << cue.picture.width << "x" << cue.picture.height;
}

inline std::vector<DrawnCue> drawnCues;
inline constexpr Rect kCuePlace{2, 3, 7, 9};

// Stands for the drawing of a cue's text: a white rectangle.
inline void DrawFakeCue(const std::wstring& text, const SubPicDesc& picture, Rect& bbox) {
    drawnCues.push_back({text, {picture.width, picture.height}});
    for (int y = kCuePlace.top; y < kCuePlace.bottom; ++y) {
        std::fill_n(picture.bits + static_cast<std::ptrdiff_t>(y) * picture.pitch + kCuePlace.left * 4,
                    kCuePlace.Width() * 4, std::uint8_t{255});
    }
    bbox = kCuePlace;
}

using Lines = std::vector<std::wstring>;

// A folder for subtitle files, and every diagnostic line without its prefix and newline.
class SubtitleTest : public ::testing::Test {
protected:
    SubtitleTest() {
        drawnCues.clear();
        SetTraceSink([this](std::wstring_view line) {
            constexpr std::wstring_view kPrefix = L"[Brindlecast] ";
            // Without prefix or newline a line stays as it is, and fails the comparison.
            lines.emplace_back(line.starts_with(kPrefix) && line.ends_with(L'\n')
                                   ? line.substr(kPrefix.size(), line.size() - kPrefix.size() - 1)
                                   : line);
        });
    }
    ~SubtitleTest() override { SetTraceSink({}); }

    // The lines since the last call.
    Lines TakeLines() { return std::exchange(lines, {}); }
    void MakeFolder(const std::u8string& name) const {
        const std::string path = WideToUtf8(folder.Path(name));
        std::filesystem::create_directories(std::u8string(path.begin(), path.end()));
    }

    TemporaryFolder folder;
    Lines lines;
};

inline constexpr const char* kSubRip = "1\n00:00:01,000 --> 00:00:02,000\nHi\n";

} // namespace brindlecast::testing
