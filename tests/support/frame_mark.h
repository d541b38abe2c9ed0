#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace brindlecast::testing {

// A frame number that can be read back from a photograph of the screen.
//
// The mark is a row of kMarkCells cells, each a pair of one light and one dark half (upper over lower for a
// 1, lower over upper for a 0). A bit is told by comparing the halves of its own cell, so brightness,
// gamma, range and moderate coding loss cannot turn it. Guard cells at the ends, a quiet margin beside them
// and an 8-bit check reject pictures that carry no mark, mirrored and misplaced ones, and frames blended into
// each other.
// All functions here are pure; views do not own their memory.

inline constexpr int kMarkCells = 26;

// A part of a picture in fractions of its width and height.
struct RelativeRect {
    double left;
    double top;
    double right;
    double bottom;
};

// Where the mark and the colour patches stand in every marked frame. Above 0.28 and below 0.68 of the height
// the picture is free for moving content, on-screen messages and subtitles.
inline constexpr RelativeRect kMarkArea{0.04, 0.30, 0.96, 0.50};
inline constexpr RelativeRect kPatchArea{0.04, 0.54, 0.96, 0.66};

// In pixels of the image it belongs to.
struct PixelRect {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

struct Rgb {
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;
    bool operator==(const Rgb&) const = default;
};

// The colour patches from left to right, as they are to appear on the screen.
inline constexpr std::array<Rgb, 9> kPatchColours{{{255, 255, 255},
                                                   {191, 191, 0},
                                                   {0, 191, 191},
                                                   {0, 191, 0},
                                                   {191, 0, 191},
                                                   {191, 0, 0},
                                                   {0, 0, 191},
                                                   {0, 0, 0},
                                                   {128, 128, 128}}};

// Read-only image of 4 bytes a pixel in the order B, G, R, unused; stride in bytes, negative for bottom-up.
struct BgraView {
    const std::uint8_t* data;
    int width;
    int height;
    std::ptrdiff_t stride;
};

// Writable image of 3 bytes a pixel in the order R, G, B.
struct Rgb24View {
    std::uint8_t* data;
    int width;
    int height;
    std::ptrdiff_t stride;
};

enum class YuvMatrix { Bt601, Bt709 };

// Writable planar 8-bit Y, U, V. The chroma planes are smaller by the shifts (1 and 1 for 4:2:0).
struct PlanarView {
    std::array<std::uint8_t*, 3> planes;
    std::array<std::ptrdiff_t, 3> strides;
    int width;
    int height;
    int chromaShiftX;
    int chromaShiftY;
    YuvMatrix matrix;
    bool fullRange;
};

// 8-bit Y, U, V of a colour.
[[nodiscard]] std::array<std::uint8_t, 3> ToYuv(Rgb colour, YuvMatrix matrix, bool fullRange);

// Fills the part of the image that `area` covers; edges are rounded to whole pixels.
void FillArea(const Rgb24View& image, RelativeRect area, Rgb colour);
void FillArea(const PlanarView& image, RelativeRect area, Rgb colour);

// Draws the mark of `number` (0..65535) or the patches into their fixed place of the whole image.
void DrawFrameMark(const Rgb24View& image, std::uint16_t number);
void DrawFrameMark(const PlanarView& image, std::uint16_t number);
void DrawColourPatches(const Rgb24View& image);
void DrawColourPatches(const PlanarView& image);

// The number in the mark of the picture that `picture` covers within `image`, or nothing when there is no
// readable mark (also when `picture` does not lie inside the image). The picture must be at least about
// 130 pixels wide; an error of `picture` up to 0.5 % of its size does no harm.
[[nodiscard]] std::optional<int> ReadFrameMark(const BgraView& image, const PixelRect& picture);

// Mean colour of the middle of each patch. Nothing when `picture` does not lie inside the image.
[[nodiscard]] std::optional<std::array<Rgb, kPatchColours.size()>>
ReadColourPatches(const BgraView& image, const PixelRect& picture);

// Largest difference in any channel between what was read and kPatchColours.
[[nodiscard]] int LargestPatchError(const std::array<Rgb, kPatchColours.size()>& seen);

// The largest rectangle of the shape displayWidth:displayHeight centred in `window`.
[[nodiscard]] PixelRect FitPicture(const PixelRect& window, int displayWidth, int displayHeight);

// What a row of readings, made at the given times, says about playing.
struct PlaybackVerdict {
    int readable = 0;      // readings that carried a mark
    int distinct = 0;      // different numbers among them
    bool moving = false;   // numbers rise with time and never fall
    bool inStep = false;   // moving, and each stands within the tolerance of its expected place
    double largestLag = 0; // seconds; the largest distance between the read and the expected position
};

struct TimedMark {
    double seconds;            // position that the picture ought to have
    std::optional<int> number; // what was read
};

// Judges readings of a film with `framesPerSecond` whose frame n carries the number n. A single unreadable
// picture, a standstill or a shift by more than `tolerance` seconds makes `inStep` false.
[[nodiscard]] PlaybackVerdict JudgePlayback(std::span<const TimedMark> readings, double framesPerSecond,
                                            double tolerance);

} // namespace brindlecast::testing
