#include "tests/filters/renderer/renderer_bench.h"

#include <gtest/gtest.h>

#include <cstring>

namespace brindlecast::test {
namespace {

TEST(OptionsTest, NamesAndTypes) {
    PictureKind kind;
    RendererBench bench(kind);
    IExFilterConfig& options = *bench.options.Get();
    const std::vector<std::pair<const char*, bool>> bools{{"useD3D11", true},
                                                          {"vsync", false},
                                                          {"vBlankBeforePresent", false},
                                                          {"adjustPresentTime", false},
                                                          {"vpScaling", false},
                                                          {"lessRedraws", true},
                                                          {"d3dFullscreenControl", false},
                                                          {"flip", false}};
    for (const auto& [name, value] : bools) {
        bool seen = !value;
        int number = 0;
        EXPECT_EQ(options.Flt_GetBool(name, &seen), S_OK) << name;
        EXPECT_EQ(seen, value) << name;
        EXPECT_EQ(options.Flt_SetBool(name, !value), S_OK) << name;
        EXPECT_EQ(options.Flt_GetBool(name, &seen), S_OK) << name;
        EXPECT_EQ(seen, !value) << name;
        EXPECT_EQ(options.Flt_SetInt(name, 1), E_INVALIDARG) << name;
        EXPECT_EQ(options.Flt_GetInt(name, &number), E_INVALIDARG) << name;
    }
    for (const char* name : {"presentationType", "chromaUpsampling", "upscaler", "downscaler"}) {
        int seen = 7;
        bool truth = false;
        EXPECT_EQ(options.Flt_GetInt(name, &seen), S_OK) << name;
        EXPECT_EQ(seen, 0) << name;
        EXPECT_EQ(options.Flt_SetInt(name, 2), S_OK) << name;
        EXPECT_EQ(options.Flt_GetInt(name, &seen), S_OK) << name;
        EXPECT_EQ(seen, 2) << name;
        EXPECT_EQ(options.Flt_SetBool(name, true), E_INVALIDARG) << name;
        EXPECT_EQ(options.Flt_GetBool(name, &truth), E_INVALIDARG) << name;
    }
}

TEST(OptionsTest, ErrorAnswers) {
    PictureKind kind;
    RendererBench bench(kind);
    IExFilterConfig& options = *bench.options.Get();
    bool truth = false;
    int number = 0;
    __int64 large = 0;
    double real = 0;
    LPWSTR text = nullptr;
    LPVOID data = nullptr;
    unsigned size = 0;
    EXPECT_EQ(options.Flt_SetBool(nullptr, true), E_POINTER);
    EXPECT_EQ(options.Flt_SetInt(nullptr, 1), E_POINTER);
    EXPECT_EQ(options.Flt_GetBool("flip", nullptr), E_POINTER);
    EXPECT_EQ(options.Flt_GetInt("rotation", nullptr), E_POINTER);
    EXPECT_EQ(options.Flt_GetBin("displayedImage", nullptr, &size), E_POINTER);
    EXPECT_EQ(options.Flt_GetBool("no such", &truth), E_INVALIDARG);
    EXPECT_EQ(options.Flt_GetInt("Rotation", &number), E_INVALIDARG) << "case counts";
    EXPECT_EQ(options.Flt_SetBool("no such", true), E_INVALIDARG);
    EXPECT_EQ(options.Flt_SetInt("no such", 1), E_INVALIDARG);
    EXPECT_EQ(options.Flt_GetBin("no such", &data, &size), E_INVALIDARG);
    EXPECT_EQ(options.Flt_GetBool("cmd_redraw", &truth), E_ABORT);
    EXPECT_EQ(options.Flt_GetBin("displayedImage", &data, &size), E_ABORT) << "no picture yet";
    EXPECT_EQ(options.Flt_GetInt64("rotation", &large), E_NOTIMPL);
    EXPECT_EQ(options.Flt_GetDouble("rotation", &real), E_NOTIMPL);
    EXPECT_EQ(options.Flt_GetString("rotation", &text, &size), E_NOTIMPL);
    EXPECT_EQ(options.Flt_SetInt64("rotation", 1), E_NOTIMPL);
}

TEST(OptionsTest, RotationIsNormalised) {
    PictureKind kind;
    RendererBench bench(kind);
    const std::vector<std::pair<int, int>> cases{{90, 90}, {450, 90}, {-90, 270},
                                                 {45, 0},  {360, 0},  {270, 270}};
    for (const auto& [given, kept] : cases) {
        int seen = -1;
        ASSERT_EQ(bench.options->Flt_SetInt("rotation", given), S_OK);
        ASSERT_EQ(bench.options->Flt_GetInt("rotation", &seen), S_OK);
        EXPECT_EQ(seen, kept) << given;
    }
}

Color DibColor(const BITMAPINFOHEADER& header, int x, int y) {
    const auto* pixels = reinterpret_cast<const std::uint8_t*>(&header + 1);
    const int row = header.biHeight - 1 - y; // bottom-up
    const std::uint8_t* pixel = pixels + (row * header.biWidth + x) * 4;
    return {pixel[2], pixel[1], pixel[0]};
}

std::vector<std::uint8_t> Quadrants(const PictureKind& kind) {
    return MakePicture(kind, [&](int x, int y) { return QuadrantAt(x, y, kind.width, kind.height); });
}

TEST(CaptureTest, CurrentImageHasTheDisplaySize) {
    PictureKind kind{Format::Nv12, Matrix::Bt601, false, 320, 240, 16, 9};
    RendererBench bench(kind, 200, 200);
    bench.AttachWindow();
    LONG size = 0;
    ASSERT_EQ(bench.basicVideo->GetCurrentImage(&size, nullptr), S_OK);
    EXPECT_EQ(size, 40 + 427 * 240 * 4);
    std::vector<LONG> buffer(static_cast<std::size_t>(size) / 4 + 1);
    EXPECT_EQ(bench.basicVideo->GetCurrentImage(&size, buffer.data()), E_UNEXPECTED) << "no picture yet";
    bench.ShowPaused(Quadrants(kind));
    ASSERT_TRUE(
        PumpUntil([&] { return SUCCEEDED(bench.basicVideo->GetCurrentImage(&size, buffer.data())); }, 3000));
    const auto& header = *reinterpret_cast<const BITMAPINFOHEADER*>(buffer.data());
    EXPECT_EQ(header.biSize, 40U);
    EXPECT_EQ(header.biWidth, 427);
    EXPECT_EQ(header.biHeight, 240);
    EXPECT_EQ(header.biBitCount, 32);
    EXPECT_LE(Distance(DibColor(header, 50, 50), kRed), 2);
    EXPECT_LE(Distance(DibColor(header, 400, 50), kGreen), 2);
    EXPECT_LE(Distance(DibColor(header, 50, 200), kBlue), 2);
    EXPECT_LE(Distance(DibColor(header, 400, 200), kWhite), 2);
    LONG little = 100;
    EXPECT_EQ(bench.basicVideo->GetCurrentImage(&little, buffer.data()), E_OUTOFMEMORY);
    ASSERT_EQ(bench.options->Flt_SetInt("rotation", 90), S_OK);
    ASSERT_EQ(bench.basicVideo->GetCurrentImage(&size, buffer.data()), S_OK);
    EXPECT_EQ(header.biWidth, 240);
    EXPECT_EQ(header.biHeight, 427);
    EXPECT_LE(Distance(DibColor(header, 50, 50), kBlue), 2);
}

TEST(CaptureTest, DisplayedImageIsTheWindow) {
    PictureKind kind;
    RendererBench bench(kind, 400, 300);
    bench.AttachWindow();
    bench.Place(400, 300, {0, 37, 400, 262});
    bench.ShowPaused(Quadrants(kind));
    EXPECT_LE(Distance(bench.WaitForColor(100, 100, kRed), kRed), 2);
    LPVOID data = nullptr;
    unsigned size = 0;
    ASSERT_EQ(bench.options->Flt_GetBin("displayedImage", &data, &size), S_OK);
    ASSERT_EQ(size, 40U + 400 * 300 * 4);
    const auto& header = *static_cast<const BITMAPINFOHEADER*>(data);
    EXPECT_EQ(header.biWidth, 400);
    EXPECT_EQ(header.biHeight, 300);
    const Image screen = bench.Screen();
    for (const auto& [x, y] :
         std::vector<std::pair<int, int>>{{10, 10}, {100, 100}, {300, 100}, {100, 250}, {399, 299}}) {
        EXPECT_EQ(DibColor(header, x, y), screen.At(x, y)) << x << " " << y;
    }
    CoTaskMemFree(data);
}

} // namespace
} // namespace brindlecast::test
