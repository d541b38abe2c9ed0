#include "base/win32/unique_handle.h"
#include "engine/image_file.h"
#include "tests/e2e/environment.h"
#include "tests/filters/roads/road_fixture.h"

#include <gdiplus.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace brindlecast::testing {
namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 180;
constexpr int kFrame = 50; // of film.mkv: a keyframe
// Of film.mkv's frame 50: rows from top to bottom of B, G, R, 255, decoded by another program.
constexpr const wchar_t* kReference = L"film_frame_50.bgra";

// Rows from top to bottom of B, G, R, unused.
struct Image {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;
};

Image ReadReference() {
    Image image{kWidth, kHeight, std::vector<std::uint8_t>(kWidth * kHeight * 4)};
    std::ifstream file(std::filesystem::path(Media(kReference)), std::ios::binary);
    file.read(reinterpret_cast<char*>(image.pixels.data()),
              static_cast<std::streamsize>(image.pixels.size()));
    EXPECT_TRUE(file.good());
    return image;
}

Image FromBitmapFile(const BitmapBytes& bytes) {
    Image image;
    if (bytes == nullptr || bytes->size() < 54) {
        return image;
    }
    BITMAPINFOHEADER header{};
    std::memcpy(&header, bytes->data() + 14, sizeof(header));
    image.width = header.biWidth;
    image.height = header.biHeight;
    const auto row = static_cast<std::size_t>(header.biWidth) * 4;
    if (header.biBitCount != 32 || bytes->size() < 54 + row * static_cast<std::size_t>(header.biHeight)) {
        return {};
    }
    for (int y = header.biHeight - 1; y >= 0; --y) {
        const auto at = bytes->begin() + 54 + static_cast<std::ptrdiff_t>(row) * y;
        image.pixels.insert(image.pixels.end(), at, at + static_cast<std::ptrdiff_t>(row));
    }
    return image;
}

Image FromImageFile(const std::wstring& path) {
    Gdiplus::GdiplusStartupInput input;
    ULONG_PTR token = 0;
    Gdiplus::GdiplusStartup(&token, &input, nullptr);
    Image image;
    {
        Gdiplus::Bitmap bitmap(path.c_str());
        image.width = static_cast<int>(bitmap.GetWidth());
        image.height = static_cast<int>(bitmap.GetHeight());
        for (int y = 0; y < image.height; ++y) {
            for (int x = 0; x < image.width; ++x) {
                Gdiplus::Color color;
                bitmap.GetPixel(x, y, &color);
                image.pixels.insert(image.pixels.end(), {color.GetB(), color.GetG(), color.GetR(), 255});
            }
        }
    }
    Gdiplus::GdiplusShutdown(token);
    return image;
}

// Decibels over the three colours; 99 for equal pictures, 0 for pictures of different sizes.
double Psnr(const Image& one, const Image& other) {
    if (one.width != other.width || one.height != other.height || one.pixels.size() != other.pixels.size()) {
        return 0.0;
    }
    double sum = 0.0;
    for (std::size_t i = 0; i < one.pixels.size(); ++i) {
        const double difference = i % 4 == 3 ? 0.0 : one.pixels[i] - other.pixels[i];
        sum += difference * difference;
    }
    const double mean = sum / (static_cast<double>(one.pixels.size()) * 0.75);
    return mean > 0.0 ? std::min(99.0, 10.0 * std::log10(255.0 * 255.0 / mean)) : 99.0;
}

class CaptureRoad : public RoadTest {
protected:
    void ShowFrame() {
        ShowHost(kWidth, kHeight);
        OpenPaused(L"film.mkv");
        ASSERT_TRUE(engine->Seek(static_cast<double>(engine->keyFrames[1]) / 1e7));
        ASSERT_TRUE(WaitForFrame(kFrame));
    }
    std::wstring ImagePath() const { return ReportFolder() + L"\\screenshot.png"; }
};

TEST_F(CaptureRoad, TheCurrentImageIsTheFrame) {
    ShowFrame();
    EXPECT_GT(Psnr(ReadReference(), FromBitmapFile(engine->CaptureCurrentImage())), 35.0);
}

TEST_F(CaptureRoad, TheDisplayedImageIsTheFrameAtFullSize) {
    ShowFrame();
    EXPECT_GT(Psnr(ReadReference(), FromBitmapFile(engine->CaptureDisplayedImage())), 35.0);
}

TEST_F(CaptureRoad, TheCurrentImageKeepsTheSizeOfTheVideoInALargerWindow) {
    ShowFrame();
    ShowHost(640, 480);
    EXPECT_GT(Psnr(ReadReference(), FromBitmapFile(engine->CaptureCurrentImage())), 35.0);
    const Image displayed = FromBitmapFile(engine->CaptureDisplayedImage());
    EXPECT_EQ(640, displayed.width);
    EXPECT_EQ(480, displayed.height);
}

TEST_F(CaptureRoad, AnotherFrameIsAnotherPicture) {
    ShowFrame();
    ASSERT_TRUE(engine->Seek(static_cast<double>(engine->keyFrames[3]) / 1e7));
    ASSERT_TRUE(WaitForFrame(150));
    EXPECT_LT(Psnr(ReadReference(), FromBitmapFile(engine->CaptureCurrentImage())), 35.0)
        << "else the comparison could not fail";
}

// Paused, a flip stands in the options and not on the screen until something draws.
TEST_F(CaptureRoad, TheDisplayedImageIsWhatTheScreenShowsAlsoAfterAFlip) {
    ShowFrame();
    const Image before = FromBitmapFile(engine->CaptureDisplayedImage());
    ASSERT_TRUE(engine->SetFlipHorizontal(true));
    EXPECT_EQ(kFrame, FrameOnScreen()) << "a mirrored mark can't be read";
    EXPECT_GT(Psnr(before, FromBitmapFile(engine->CaptureDisplayedImage())), 60.0);
    engine->RedrawVideo();
    ASSERT_TRUE(PumpUntil(std::chrono::milliseconds(3000), [this] { return !FrameOnScreen(); }));
    EXPECT_LT(Psnr(before, FromBitmapFile(engine->CaptureDisplayedImage())), 35.0);
}

TEST_F(CaptureRoad, FilesHoldThePicture) {
    ShowFrame();
    const Image captured = FromBitmapFile(engine->CaptureCurrentImage());
    ASSERT_TRUE(engine->SaveScreenshot(ImagePath()));
    EXPECT_EQ(99.0, Psnr(captured, FromImageFile(ImagePath()))) << "PNG loses nothing";
    store.values[L"ScreenshotFormat"] = 1U;
    ASSERT_TRUE(engine->SaveScreenshot(ImagePath()));
    const double jpeg = Psnr(captured, FromImageFile(ImagePath()));
    EXPECT_GT(jpeg, 30.0);
    EXPECT_LT(jpeg, 99.0);
    store.values[L"ScreenshotFormat"] = 2U;
    ASSERT_TRUE(engine->SaveScreenshot(ImagePath()));
    EXPECT_EQ(99.0, Psnr(captured, FromImageFile(ImagePath())));
    DeleteFileW(ImagePath().c_str());
}

// What stands in this picture is not judged: Wine gives black for windows that Direct3D draws, where Windows
// gives what is seen.
TEST_F(CaptureRoad, TheWindowImageHasTheSizeOfTheWindow) {
    ShowFrame();
    const BitmapBytes image = engine->CaptureWindowImage();
    ASSERT_NE(nullptr, image);
    EXPECT_EQ(54U + kWidth * 3 * kHeight, image->size());
}

} // namespace
} // namespace brindlecast::testing
