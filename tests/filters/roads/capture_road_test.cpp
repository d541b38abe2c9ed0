#include "base/win32/unique_handle.h"
#include "engine/image_file.h"
#include "tests/e2e/environment.h"
#include "tests/filters/roads/captured_image.h"
#include "tests/filters/roads/road_fixture.h"

#include <gdiplus.h>

#include <filesystem>
#include <fstream>

namespace brindlecast::testing {
namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 180;
constexpr int kFrame = 50; // of film.mkv: a keyframe
// Of film.mkv's frame 50: rows from top to bottom of B, G, R, 255, decoded by another program.
constexpr const wchar_t* kReference = L"film_frame_50.bgra";

Image ReadReference() {
    Image image{kWidth, kHeight, std::vector<std::uint8_t>(kWidth * kHeight * 4)};
    std::ifstream file(std::filesystem::path(Media(kReference)), std::ios::binary);
    file.read(reinterpret_cast<char*>(image.pixels.data()),
              static_cast<std::streamsize>(image.pixels.size()));
    EXPECT_TRUE(file.good());
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
