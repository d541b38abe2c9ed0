#include "tests/graph/allocation_limit.h"
#include "tests/graph/capture_fixture.h"
#include "tests/graph/import_swap.h"
#include "tests/graph/task_memory_spy.h"

#include <cstring>

namespace brindlecast::testing {
namespace {

const Lines kDisplayedCall = {L"MpcVideoRenderer64.Flt_GetBin(displayedImage)"};
const Lines kCurrentCalls = {L"MpcVideoRenderer64.GetCurrentImage(size)",
                             L"MpcVideoRenderer64.GetCurrentImage(image)"};

// The lower half of the host red, the rest blue, however it is asked to draw itself.
LRESULT CALLBACK DrawHalves(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const auto draw = [window](HDC context) {
        RECT client{};
        GetClientRect(window, &client);
        RECT lower = client;
        lower.top = client.bottom / 2;
        const UniqueBrush blue(CreateSolidBrush(RGB(0, 0, 255)));
        const UniqueBrush red(CreateSolidBrush(RGB(255, 0, 0)));
        FillRect(context, &client, blue.Get());
        FillRect(context, &lower, red.Get());
    };
    if (message == WM_PRINT || message == WM_PRINTCLIENT) {
        draw(reinterpret_cast<HDC>(wParam));
        return 0;
    }
    if (message == WM_PAINT) {
        PAINTSTRUCT paint{};
        draw(BeginPaint(window, &paint));
        EndPaint(window, &paint);
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

// Stands in for PrintWindow; a plain function, so what it knows lies outside of any object.
std::vector<UINT> printFlags;
BOOL printAnswer = TRUE;
BOOL WINAPI RecordPrint(HWND /*window*/, HDC /*context*/, UINT flags) {
    printFlags.push_back(flags);
    return printAnswer;
}

class Capture : public CaptureTest {};

TEST_F(Capture, WithoutAGraphThereIsNothing) {
    host = nullptr;
    engine->videoHost = nullptr;
    EXPECT_EQ(nullptr, engine->CaptureDisplayedImage());
    EXPECT_EQ(nullptr, engine->CaptureCurrentImage());
    EXPECT_EQ(nullptr, engine->CaptureWindowImage());
    EXPECT_EQ(nullptr, engine->CaptureFrame());
    EXPECT_FALSE(engine->SaveScreenshot(ImagePath()));
    EXPECT_EQ(Lines{}, Calls());
    EXPECT_TRUE(ReadBack().empty());
}

TEST_F(Capture, TheCurrentImageBecomesAFile) {
    Open();
    SetNumber("MpcVideoRenderer64.currentBytes", 48);
    const BitmapBytes image = engine->CaptureCurrentImage();
    ASSERT_NE(nullptr, image);
    ASSERT_EQ(62U, image->size());
    EXPECT_EQ('B', image->at(0));
    EXPECT_EQ('M', image->at(1));
    EXPECT_EQ(62, image->at(2));
    EXPECT_EQ(54, image->at(10));
    EXPECT_EQ(40, image->at(14));
    EXPECT_EQ((std::vector<std::uint8_t>{40, 41, 42, 43, 44, 45, 46, 47}),
              std::vector<std::uint8_t>(image->begin() + 54, image->end()));
    ExpectLines(kCurrentCalls, Calls());
}

TEST_F(Capture, TheCurrentImageOfEightBitsKeepsItsPalette) {
    Open();
    const auto dib = EightBitDib(4, 2, {7, 6, 5, 4, 3, 2, 1, 0});
    ShowCurrent(dib);
    const BitmapBytes image = engine->CaptureCurrentImage();
    ASSERT_NE(nullptr, image);
    EXPECT_EQ(1086U, image->size());
    EXPECT_EQ(1086U, Number32(*image, 2));
    EXPECT_EQ(1078U, Number32(*image, 10));
    EXPECT_EQ(dib, std::vector<std::uint8_t>(image->begin() + 14, image->end()));
}

TEST_F(Capture, ARendererWithoutCurrentImageGivesNothing) {
    Open();
    EXPECT_EQ(nullptr, engine->CaptureCurrentImage()) << "size 0";
    SetNumber("MpcVideoRenderer64.currentBytes", -5);
    EXPECT_EQ(nullptr, engine->CaptureCurrentImage()) << "negative size";
    SetNumber("MpcVideoRenderer64.currentBytes", 48);
    SetNumber("MpcVideoRenderer64.currentSize", E_FAIL);
    EXPECT_EQ(nullptr, engine->CaptureCurrentImage());
    SetNumber("MpcVideoRenderer64.currentSize", 0);
    SetNumber("MpcVideoRenderer64.currentImage", E_UNEXPECTED);
    EXPECT_EQ(nullptr, engine->CaptureCurrentImage());
}

TEST_F(Capture, APictureShorterThanItsHeaderIsNoCrash) {
    Open();
    SetNumber("MpcVideoRenderer64.currentBytes", 3);
    const BitmapBytes image = engine->CaptureCurrentImage();
    ASSERT_NE(nullptr, image);
    EXPECT_EQ(17U, image->size());
    EXPECT_FALSE(engine->SaveScreenshot(ImagePath())) << "no encoder takes it";
}

TEST_F(Capture, TheDisplayedImageIsNormalised) {
    Open();
    SetNumber("MpcVideoRenderer64.displayedBytes", 44);
    const BitmapBytes image = engine->CaptureDisplayedImage();
    ASSERT_NE(nullptr, image);
    EXPECT_EQ(58U, image->size());
    EXPECT_EQ(40, image->at(54));
    ExpectLines(kDisplayedCall, Calls());
}

TEST_F(Capture, ADisplayedImageFromTheTopIsTurnedRound) {
    Open();
    ShowDisplayed(DeepDib(3, -2, {kTopRow, kBottomRow}));
    const BitmapBytes image = engine->CaptureDisplayedImage();
    ASSERT_NE(nullptr, image);
    EXPECT_EQ(54U, Number32(*image, 10));
    EXPECT_EQ(2U, Number32(*image, 22)) << "the height";
    EXPECT_EQ(DeepDib(3, 2, {kBottomRow, kTopRow}),
              std::vector<std::uint8_t>(image->begin() + 14, image->end()));
}

TEST_F(Capture, TheDisplayedImageOfEightBitsKeepsItsPalette) {
    Open();
    ShowDisplayed(EightBitDib(4, -2, {7, 6, 5, 4, 3, 2, 1, 0}));
    const BitmapBytes image = engine->CaptureDisplayedImage();
    ASSERT_NE(nullptr, image);
    EXPECT_EQ(1078U, Number32(*image, 10));
    EXPECT_EQ(EightBitDib(4, 2, {3, 2, 1, 0, 7, 6, 5, 4}),
              std::vector<std::uint8_t>(image->begin() + 14, image->end()));
}

TEST_F(Capture, ADisplayedFileIsTakenAsItIs) {
    Open();
    std::vector<std::uint8_t> file(60, 9);
    file[0] = 'B';
    file[1] = 'M';
    ShowDisplayed(file);
    const BitmapBytes image = engine->CaptureDisplayedImage();
    ASSERT_NE(nullptr, image);
    EXPECT_EQ(file, *image);
}

TEST_F(Capture, TheMemoryOfTheDisplayedImageIsFreed) {
    Open();
    TaskMemorySpy& spy = TaskMemorySpy::Instance();
    for (const long bytes : {44, 39, 0}) {
        SetNumber("MpcVideoRenderer64.displayedBytes", bytes);
        spy.Start();
        EXPECT_EQ(bytes == 44, engine->CaptureDisplayedImage() != nullptr);
        spy.Stop();
        EXPECT_EQ(1U, spy.Allocations()) << bytes;
        EXPECT_EQ(0U, spy.Living()) << bytes;
    }
}

TEST_F(Capture, ADisplayedImageWithoutAHeaderGivesNothing) {
    Open();
    EXPECT_EQ(nullptr, engine->CaptureDisplayedImage()) << "size 0";
    SetNumber("MpcVideoRenderer64.displayedBytes", 39);
    EXPECT_EQ(nullptr, engine->CaptureDisplayedImage());
    SetNumber("MpcVideoRenderer64.getBin", E_ABORT);
    EXPECT_EQ(nullptr, engine->CaptureDisplayedImage());
}

TEST_F(Capture, WithoutOptionsThereIsNoDisplayedImage) {
    SetNumber("MpcVideoRenderer64.noConfig", 1);
    Open();
    EXPECT_EQ(nullptr, engine->CaptureDisplayedImage());
}

TEST_F(Capture, TheMethodChoosesThePicture) {
    Open();
    SetNumber("MpcVideoRenderer64.currentBytes", 48);
    SetNumber("MpcVideoRenderer64.displayedBytes", 44);
    struct Row {
        std::uint32_t method;
        std::size_t size;
        Lines calls;
    };
    for (const Row& row : {Row{kCurrentImage, 62, kCurrentCalls}, Row{3, 62, kCurrentCalls},
                           Row{0xFFFFFFFF, 62, kCurrentCalls}, Row{kDisplayedImage, 58, kDisplayedCall}}) {
        UseMethod(row.method);
        ClearCalls();
        const BitmapBytes image = engine->CaptureFrame();
        ASSERT_NE(nullptr, image) << row.method;
        EXPECT_EQ(row.size, image->size()) << row.method;
        ExpectLines(row.calls, Calls());
    }
}

TEST_F(Capture, WithoutASettingItIsTheCurrentImage) {
    Open();
    SetNumber("MpcVideoRenderer64.currentBytes", 48);
    EXPECT_NE(nullptr, engine->CaptureFrame());
    ExpectLines(kCurrentCalls, Calls());
}

TEST_F(Capture, NoDisplayedImageFallsBackToTheCurrentOne) {
    Open();
    UseMethod(kDisplayedImage);
    SetNumber("MpcVideoRenderer64.currentBytes", 48);
    SetNumber("MpcVideoRenderer64.getBin", E_ABORT);
    const BitmapBytes image = engine->CaptureFrame();
    ASSERT_NE(nullptr, image);
    EXPECT_EQ(62U, image->size());
    ExpectLines(Join({kDisplayedCall, kCurrentCalls}), Calls());
}

TEST_F(Capture, TheWindowMethodHasNoFallBack) {
    Open();
    UseMethod(kWindowImage);
    SetNumber("MpcVideoRenderer64.currentBytes", 48);
    SetWindowPos(host, nullptr, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOZORDER);
    RECT client{};
    GetClientRect(host, &client);
    ASSERT_EQ(0, client.bottom);
    EXPECT_EQ(nullptr, engine->CaptureFrame());
    EXPECT_FALSE(engine->SaveScreenshot(ImagePath()));
    EXPECT_EQ(Lines{}, Calls());
}

TEST_F(Capture, TheWindowImageIsWhatTheHostDraws) {
    Open();
    UseMethod(kWindowImage);
    SetWindowLongPtrW(host, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&DrawHalves));
    ShowWindow(host, SW_SHOWNOACTIVATE);
    // Rows of 15, 18, 21 and 24 bytes, which are padded to 16, 20 and 24.
    for (const int width : {5, 6, 7, 8}) {
        SetWindowPos(host, nullptr, 0, 0, width, 4, SWP_NOZORDER | SWP_NOACTIVATE);
        RECT client{};
        GetClientRect(host, &client);
        ASSERT_EQ(width, client.right);
        ASSERT_EQ(4, client.bottom);
        const BitmapBytes image = engine->CaptureFrame();
        ASSERT_NE(nullptr, image);
        const std::size_t stride = static_cast<std::size_t>(width * 3 + 3) / 4 * 4;
        ASSERT_EQ(54 + stride * 4, image->size());
        EXPECT_EQ(image->size(), Number32(*image, 2));
        EXPECT_EQ(54U, Number32(*image, 10));
        BITMAPINFOHEADER header{};
        std::memcpy(&header, image->data() + 14, sizeof(header));
        EXPECT_EQ(40U, header.biSize);
        EXPECT_EQ(width, header.biWidth);
        EXPECT_EQ(4, header.biHeight);
        EXPECT_EQ(1, header.biPlanes);
        EXPECT_EQ(24, header.biBitCount);
        EXPECT_EQ(DWORD{BI_RGB}, header.biCompression);
        for (std::size_t row = 0; row < 4; ++row) {
            // From below; blue, green, red.
            const std::vector<std::uint8_t> expected =
                row < 2 ? std::vector<std::uint8_t>{0, 0, 255} : std::vector<std::uint8_t>{255, 0, 0};
            for (std::size_t column = 0; column < static_cast<std::size_t>(width); ++column) {
                const auto* pixel = image->data() + 54 + row * stride + column * 3;
                EXPECT_EQ(expected, std::vector<std::uint8_t>(pixel, pixel + 3)) << row << ", " << column;
            }
        }
    }
    EXPECT_EQ(Lines{}, Calls());
}

TEST_F(Capture, TheWindowIsPrintedWithItsFullContent) {
    Open();
    printFlags.clear();
    printAnswer = TRUE;
    const ImportSwap swap("user32.dll", "PrintWindow", reinterpret_cast<void*>(&RecordPrint));
    ASSERT_NE(nullptr, swap.Original());
    EXPECT_NE(nullptr, engine->CaptureWindowImage());
    EXPECT_EQ((std::vector<UINT>{2}), printFlags);
}

TEST_F(Capture, AWindowThatCanNotBePrintedHasNoImage) {
    Open();
    UseMethod(kWindowImage);
    SetNumber("MpcVideoRenderer64.currentBytes", 48);
    printAnswer = FALSE;
    const ImportSwap swap("user32.dll", "PrintWindow", reinterpret_cast<void*>(&RecordPrint));
    EXPECT_EQ(nullptr, engine->CaptureFrame());
    EXPECT_EQ(Lines{}, Calls());
}

TEST_F(Capture, AHostWithoutSizeOrAHostThatIsGoneIsNotEvenPrinted) {
    Open();
    printFlags.clear();
    const ImportSwap swap("user32.dll", "PrintWindow", reinterpret_cast<void*>(&RecordPrint));
    for (const SIZE size : {SIZE{0, 100}, SIZE{100, 0}}) {
        SetWindowPos(host, nullptr, 0, 0, size.cx, size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
        RECT client{};
        GetClientRect(host, &client);
        ASSERT_EQ(size.cx, client.right);
        ASSERT_EQ(size.cy, client.bottom);
        EXPECT_EQ(nullptr, engine->CaptureWindowImage());
    }
    DestroyWindow(host);
    EXPECT_EQ(nullptr, engine->CaptureWindowImage());
    EXPECT_TRUE(printFlags.empty());
}

TEST_F(Capture, APictureThatDoesNotFitIntoMemoryGivesNothing) {
    Open();
    SetNumber("MpcVideoRenderer64.currentBytes", 500'000);
    SetNumber("MpcVideoRenderer64.displayedBytes", 500'000);
    const AllocationLimit limit(400'000);
    EXPECT_EQ(nullptr, engine->CaptureDisplayedImage());
    EXPECT_EQ(nullptr, engine->CaptureCurrentImage());
    EXPECT_EQ(nullptr, engine->CaptureWindowImage()) << "a million pixels";
}

} // namespace
} // namespace brindlecast::testing
