#include "subtitles/win32/cue_text_drawing.h"

#include "tests/support/subtitle_fixture.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <utility>

// Plain text over a picture. The pictures are compared with a slow drawing of the test's own, pass by pass,
// with every number worked out here.

namespace brindlecast::testing {
namespace {

// A drawing surface of the platform, black at first.
class Surface {
public:
    explicit Surface(Size surfaceSize) : size(surfaceSize), context(CreateCompatibleDC(nullptr)) {
        BITMAPINFO info{};
        info.bmiHeader = {40, size.width, -size.height, 1, 32, 0, 0, 0, 0, 0, 0};
        void* memory = nullptr;
        bitmap = CreateDIBSection(context, &info, 0, &memory, nullptr, 0);
        bytes = static_cast<std::uint8_t*>(memory);
        old = SelectObject(context, bitmap);
        SetBkMode(context, 1);
    }
    ~Surface() {
        SelectObject(context, old);
        DeleteObject(bitmap);
        DeleteDC(context);
    }
    Surface(const Surface&) = delete;
    Surface& operator=(const Surface&) = delete;

    [[nodiscard]] Pixel At(int x, int y) const {
        GdiFlush();
        const std::uint8_t* const pixel = bytes + (static_cast<std::ptrdiff_t>(y) * size.width + x) * 4;
        return {pixel[0], pixel[1], pixel[2], 0};
    }

    const Size size;
    const HDC context;

private:
    HBITMAP bitmap = nullptr;
    HGDIOBJ old = nullptr;
    std::uint8_t* bytes = nullptr;
};

// The font, measured text and distances of a picture.
class Letters {
public:
    Letters(std::wstring theText, Size thePicture)
        : text(std::move(theText)), picture(thePicture), surface(thePicture),
          fontHeight(picture.height / 20 > 16 ? picture.height / 20 : 16),
          shadow(fontHeight / 12 > 2 ? fontHeight / 12 : 2),
          radius(std::min(std::max(fontHeight / 20, 1), 3)),
          font(CreateFontW(fontHeight, 0, 0, 0, 700, 0, 0, 0, 1, 0, 0, 5, 32, L"Malgun Gothic")),
          old(SelectObject(surface.context, font)) {
        RECT measured{20, 0, picture.width - 20, picture.height - 20};
        DrawTextW(surface.context, text.c_str(), -1, &measured, 1041);
        textHeight = static_cast<int>(measured.bottom - measured.top);
    }
    ~Letters() {
        SelectObject(surface.context, old);
        DeleteObject(font);
    }
    Letters(const Letters&) = delete;
    Letters& operator=(const Letters&) = delete;

    void Pass(int right, int down, COLORREF color) const {
        RECT place{20 + right, picture.height - 20 - textHeight + down, picture.width - 20 + right,
                   picture.height - 20 + down};
        SetTextColor(surface.context, color);
        DrawTextW(surface.context, text.c_str(), -1, &place, 273);
    }
    void AllPasses() const {
        Pass(shadow, shadow, 0x202020);
        for (int dx = -radius; dx <= radius; ++dx) {
            for (int dy = -radius; dy <= radius; ++dy) {
                if (dx != 0 || dy != 0) {
                    Pass(dx, dy, 0);
                }
            }
        }
        Pass(0, 0, 0xFFFFFF);
    }

    const std::wstring text;
    const Size picture;
    const Surface surface;
    const int fontHeight;
    const int shadow;
    const int radius;
    int textHeight = 0;

private:
    const HFONT font;
    const HGDIOBJ old;
};

Canvas DrawOn(Size size, const std::wstring& text, Rect* box = nullptr) {
    Canvas canvas(size);
    Rect bbox = kInvertedRect;
    DrawCueText(text, canvas.desc, bbox);
    EXPECT_EQ(canvas.Drawn(), bbox);
    EXPECT_TRUE(canvas.GapsAreClear());
    if (box != nullptr) {
        *box = bbox;
    }
    return canvas;
}

struct DrawingRow {
    Size picture;
    const wchar_t* text;
};

void PrintTo(const DrawingRow& row, std::ostream* out) {
    *out << row.picture.width << "x" << row.picture.height;
}

class CueTextDrawingPasses : public ::testing::TestWithParam<DrawingRow> {};

TEST_P(CueTextDrawingPasses, AreThoseOfShadowOutlineAndText) {
    const DrawingRow& row = GetParam();
    const Canvas canvas = DrawOn(row.picture, row.text);
    const Letters letters(row.text, row.picture);
    letters.AllPasses();
    int different = 0;
    int drawn = 0;
    for (int y = 0; y < row.picture.height; ++y) {
        for (int x = 0; x < row.picture.width; ++x) {
            Pixel expected = letters.surface.At(x, y);
            if (expected != kClear) {
                expected.alpha = 255;
                ++drawn;
            }
            different += expected == canvas.At(x, y) ? 0 : 1;
        }
    }
    EXPECT_EQ(0, different);
    EXPECT_GT(drawn, 50);
}

INSTANTIATE_TEST_SUITE_P(
    Pictures, CueTextDrawingPasses,
    ::testing::Values(DrawingRow{{320, 180}, L"Hi"}, DrawingRow{{320, 319}, L"Hi"},
                      DrawingRow{{640, 360}, L"가나다 <i>abc</i>"}, DrawingRow{{1280, 720}, L"two\nlines"},
                      DrawingRow{{1000, 800}, L"Wide outline"}, DrawingRow{{1600, 1200}, L"Wider outline"},
                      DrawingRow{{200, 400}, L"words that break into several lines"},
                      DrawingRow{{100, 60}, L"taller than the picture is with all of this"},
                      DrawingRow{{60, 300}, L"Unbreakableunbreakable"}));

class CueTextDrawing : public ::testing::Test {
protected:
    static constexpr Size kPicture{800, 800}; // letters of 40 pixels, a shadow of 3, an outline of 2
    static constexpr Pixel kShadow{0x20, 0x20, 0x20, 255};
};

TEST_F(CueTextDrawing, NothingBlackIsWritten) {
    const Canvas canvas = DrawOn(kPicture, L"Hello\nthere");
    for (int y = 0; y < kPicture.height; ++y) {
        for (int x = 0; x < kPicture.width; ++x) {
            const Pixel pixel = canvas.At(x, y);
            ASSERT_TRUE(pixel == kClear || (pixel.alpha == 255 && pixel.blue + pixel.green + pixel.red > 0))
                << x << ", " << y;
        }
    }
    EXPECT_GT(canvas.Count(kWhite), 500);
    EXPECT_GT(canvas.Count(kShadow), 50);
}

TEST_F(CueTextDrawing, TheShadowIsSeenOnlyBeyondTheOutline) {
    const Letters letters(L"Hello", kPicture);
    ASSERT_EQ(40, letters.fontHeight);
    ASSERT_EQ(3, letters.shadow);
    ASSERT_EQ(2, letters.radius);
    letters.Pass(0, 0, 0xFFFFFF);
    const auto isLetter = [&](int x, int y) {
        return x >= 0 && y >= 0 && x < kPicture.width && y < kPicture.height &&
               letters.surface.At(x, y) == Pixel{255, 255, 255, 0};
    };
    const Canvas canvas = DrawOn(kPicture, L"Hello");
    for (int y = 0; y < kPicture.height; ++y) {
        for (int x = 0; x < kPicture.width; ++x) {
            EXPECT_EQ(isLetter(x, y), canvas.At(x, y) == kWhite) << x << ", " << y;
            if (canvas.At(x, y) != kShadow) {
                continue;
            }
            EXPECT_TRUE(isLetter(x - 3, y - 3)) << x << ", " << y;
            for (int dy = -2; dy <= 2; ++dy) {
                for (int dx = -2; dx <= 2; ++dx) {
                    ASSERT_FALSE(isLetter(x + dx, y + dy)) << x << ", " << y;
                }
            }
        }
    }
}

TEST_F(CueTextDrawing, TextStandsCenteredAtTheBottom) {
    Rect box;
    static_cast<void>(DrawOn(kPicture, L"HHH", &box));
    EXPECT_NEAR(800, box.left + box.right, 10);
    EXPECT_LE(box.bottom, 780 + 3) << "20 pixels of margin, and the shadow";
    EXPECT_GE(box.top, 780 - 60);
    Rect two;
    static_cast<void>(DrawOn(kPicture, L"HHH\nHHH", &two));
    EXPECT_EQ(box.bottom, two.bottom);
    const Letters line(L"HHH", kPicture);
    EXPECT_EQ(box.top - line.textHeight, two.top) << "one line higher";
}

TEST_F(CueTextDrawing, TagsAreText) {
    Rect plain;
    Rect tagged;
    static_cast<void>(DrawOn(kPicture, L"Hi", &plain));
    static_cast<void>(DrawOn(kPicture, L"<i>Hi</i>", &tagged));
    EXPECT_GT(tagged.Width(), plain.Width() * 2);
}

TEST_F(CueTextDrawing, APictureWithoutRoomGetsWhatFits) {
    for (const Size size : {Size{1, 1}, Size{39, 200}, Size{40, 40}, Size{41, 20}, Size{5000, 3}}) {
        static_cast<void>(DrawOn(size, L"Text"));
    }
}

TEST_F(CueTextDrawing, NothingIsDrawnWithoutMemoryOrText) {
    for (const Size size : {Size{0, 0}, Size{0, 100}, Size{100, 0}, Size{2'000'000'000, 2'000'000'000}}) {
        SubPicDesc desc;
        desc.width = size.width;
        desc.height = size.height;
        desc.bpp = 32;
        Rect bbox = kInvertedRect;
        DrawCueText(L"Text", desc, bbox);
        EXPECT_EQ(kInvertedRect, bbox);
    }
    Rect box;
    static_cast<void>(DrawOn(kPicture, L"", &box));
    EXPECT_EQ(kInvertedRect, box);
    static_cast<void>(DrawOn(kPicture, L" \n ", &box));
    EXPECT_EQ(kInvertedRect, box);
}

// The number of drawing objects that live, or a number that grows with it. Wine does not count them, but
// numbers an object anew only when no number is free.
int LivingObjects() {
    if (const DWORD count = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS); count != 0) {
        return static_cast<int>(count);
    }
    std::array<HBRUSH, 2000> brushes{};
    int highest = 0;
    for (HBRUSH& brush : brushes) {
        brush = CreateSolidBrush(0x123456);
        highest = std::max<int>(highest, LOWORD(reinterpret_cast<ULONG_PTR>(brush)));
    }
    std::ranges::for_each(brushes, DeleteObject);
    return highest;
}

TEST_F(CueTextDrawing, GivesBackWhatItTook) {
    static_cast<void>(DrawOn({64, 64}, L"Hi"));
    const int before = LivingObjects();
    for (int draw = 0; draw < 100; ++draw) {
        static_cast<void>(DrawOn({64, 64}, L"Hi"));
    }
    EXPECT_LT(LivingObjects() - before, 50);
}

TEST_F(CueTextDrawing, TheRestOfThePictureStays) {
    Canvas canvas({320, 180});
    std::fill_n(canvas.desc.bits, canvas.desc.width * 4, std::uint8_t{9});
    Rect bbox{0, 0, 5, 1};
    DrawCueText(L"Hi", canvas.desc, bbox);
    EXPECT_EQ((Pixel{9, 9, 9, 9}), canvas.At(100, 0));
    EXPECT_EQ(0, bbox.left);
    EXPECT_EQ(0, bbox.top);
    EXPECT_GT(bbox.bottom, 100);
}

} // namespace
} // namespace brindlecast::testing
