#include "engine/image_file.h"
#include "tests/graph/capture_fixture.h"
#include "tests/graph/screenshot_calls.h"

namespace brindlecast::testing {
namespace {

class Screenshot : public CaptureTest {
protected:
    static BitmapBytes NormalizedPicture() {
        const auto dib = DeepDib(3, -2, {kTopRow, kBottomRow});
        return NormalizeBitmap(dib.data(), dib.size());
    }
};

TEST_F(Screenshot, TheFormatChoosesTheBytesAndNeverTheName) {
    Open();
    SetNumber("MpcVideoRenderer64.currentBytes", 48);
    const std::vector<std::uint8_t> png = {0x89, 'P', 'N', 'G'};
    ASSERT_TRUE(engine->SaveScreenshot(ImagePath()));
    EXPECT_TRUE(BeginsWith(png)) << "absent";
    for (const std::uint32_t format : {0U, 3U}) {
        UseFormat(format);
        ASSERT_TRUE(engine->SaveScreenshot(ImagePath()));
        EXPECT_TRUE(BeginsWith(png)) << format;
    }
    UseFormat(1);
    ASSERT_TRUE(engine->SaveScreenshot(ImagePath()));
    EXPECT_TRUE(BeginsWith({0xFF, 0xD8, 0xFF}));
    UseFormat(2);
    ASSERT_TRUE(engine->SaveScreenshot(ImagePath()));
    EXPECT_EQ(*engine->CaptureCurrentImage(), ReadBack());
}

TEST_F(Screenshot, ColoursSurviveInAPng) {
    Open();
    ShowCurrent(DeepDib(3, 2, {kBottomRow, kTopRow}));
    ASSERT_TRUE(engine->SaveScreenshot(ImagePath()));
    const Picture picture = DecodePicture(path);
    EXPECT_EQ(3U, picture.width);
    EXPECT_EQ(2U, picture.height);
    EXPECT_EQ(Opaque(Join({kTopRow, kBottomRow})), picture.pixels);
}

TEST_F(Screenshot, ColoursOfAPaletteSurviveInAPng) {
    Open();
    UseMethod(kDisplayedImage);
    ShowDisplayed(EightBitDib(4, -2, {7, 6, 5, 4, 3, 2, 1, 0}));
    ASSERT_TRUE(engine->SaveScreenshot(ImagePath()));
    std::vector<std::uint32_t> expected;
    for (const int index : {7, 6, 5, 4, 3, 2, 1, 0}) {
        expected.push_back(EightBitColor(index));
    }
    EXPECT_EQ(Opaque(expected), DecodePicture(path).pixels);
}

// What the file holds depends on the system: some versions of GDI+ pass over the quality.
TEST_F(Screenshot, AJpegIsAskedForWithQualityNinetyFive) {
    Open();
    UseFormat(1);
    ShowCurrent(DeepDib(3, 2, {kBottomRow, kTopRow}));
    const GdiplusRecording recording;
    ASSERT_TRUE(engine->SaveScreenshot(ImagePath()));
    ASSERT_EQ(1U, recording.Saves().size());
    const auto& parameters = recording.Saves()[0];
    ASSERT_EQ(1U, parameters.size());
    EXPECT_EQ(L"{1D5BE4B5-FA4A-452D-9CDD-5DB35105E7EB}", parameters[0].name);
    EXPECT_EQ(4U, parameters[0].type);
    EXPECT_EQ((std::vector<std::uint32_t>{95}), parameters[0].values);
    const Picture picture = DecodePicture(path);
    EXPECT_EQ(3U, picture.width);
    EXPECT_EQ(2U, picture.height);
}

TEST_F(Screenshot, APngIsAskedForWithoutParameters) {
    Open();
    ShowCurrent(DeepDib(3, 2, {kBottomRow, kTopRow}));
    const GdiplusRecording recording;
    ASSERT_TRUE(engine->SaveScreenshot(ImagePath()));
    ASSERT_EQ(1U, recording.Saves().size());
    EXPECT_TRUE(recording.Saves()[0].empty());
}

TEST_F(Screenshot, GdiplusIsStartedForEachCallAndShutDownBehindThePicture) {
    Open();
    const auto image = std::make_shared<std::vector<std::uint8_t>>();
    *image = *NormalizedPicture();
    const Lines saved = {L"start", L"save", L"dispose", L"shut down"};
    const Lines notSaved = {L"start", L"dispose", L"shut down"};
    const GdiplusRecording recording;
    EXPECT_TRUE(EncodeImageFile(image, ImagePath(), L"image/png"));
    EXPECT_TRUE(EncodeImageFile(image, ImagePath(), L"image/jpeg"));
    EXPECT_EQ(Join({saved, saved}), recording.Steps());
    recording.Clear();
    EXPECT_FALSE(EncodeImageFile(image, L"C:\\no such folder\\film.png", L"image/png"));
    EXPECT_EQ(saved, recording.Steps());
    recording.Clear();
    EXPECT_FALSE(EncodeImageFile(image, ImagePath(), L"image/brindle"));
    EXPECT_EQ(notSaved, recording.Steps());
    recording.Clear();
    image->assign(500, 77);
    EXPECT_FALSE(EncodeImageFile(image, ImagePath(), L"image/png"));
    EXPECT_EQ(L"start", recording.Steps().front());
    EXPECT_EQ(L"shut down", recording.Steps().back());
}

TEST_F(Screenshot, ASecondPictureReplacesTheFirst) {
    Open();
    for (const std::uint32_t format : {0U, 1U, 2U}) {
        UseFormat(format);
        ShowCurrent(DeepDib(64, 64, std::vector(64, std::vector<std::uint32_t>(64, 0x00345678))));
        ASSERT_TRUE(engine->SaveScreenshot(ImagePath()));
        const std::size_t larger = ReadBack().size();
        EXPECT_EQ(64U, DecodePicture(path).width);
        ShowCurrent(DeepDib(3, 2, {kBottomRow, kTopRow}));
        ASSERT_TRUE(engine->SaveScreenshot(path));
        EXPECT_EQ(3U, DecodePicture(path).width) << format;
        EXPECT_LT(ReadBack().size(), larger) << format;
    }
    EXPECT_EQ(54U + 24U, ReadBack().size()) << "nothing of the longer file is left";
}

TEST_F(Screenshot, AFileInUseIsReported) {
    Open();
    SetNumber("MpcVideoRenderer64.currentBytes", 48);
    const UniqueFile locked(
        CreateFileW(ImagePath().c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    ASSERT_TRUE(locked);
    for (const std::uint32_t format : {0U, 1U, 2U}) {
        UseFormat(format);
        EXPECT_FALSE(engine->SaveScreenshot(path)) << format;
    }
}

TEST_F(Screenshot, AFileWrittenInPartIsReported) {
    Open();
    UseFormat(2);
    SetNumber("MpcVideoRenderer64.currentBytes", 48);
    const WriteRecording recording(WriteRecording::kOneByteLess);
    EXPECT_FALSE(engine->SaveScreenshot(ImagePath()));
    EXPECT_EQ(61U, ReadBack().size());
}

TEST_F(Screenshot, AFileThatCanNotBeWrittenIsReported) {
    Open();
    UseFormat(2);
    SetNumber("MpcVideoRenderer64.currentBytes", 48);
    const WriteRecording recording(WriteRecording::kNothing);
    EXPECT_FALSE(engine->SaveScreenshot(ImagePath()));
}

TEST_F(Screenshot, NobodyReadsTheFileWhileItIsWritten) {
    Open();
    UseFormat(2);
    SetNumber("MpcVideoRenderer64.currentBytes", 48);
    const std::wstring name = ImagePath();
    const WriteRecording recording(WriteRecording::kEverything, name);
    EXPECT_TRUE(engine->SaveScreenshot(name));
    EXPECT_EQ(DWORD{ERROR_SHARING_VIOLATION}, recording.ReadersError());
    EXPECT_FALSE(ReadBack().empty());
}

TEST_F(Screenshot, AFolderThatIsMissingIsReported) {
    Open();
    SetNumber("MpcVideoRenderer64.currentBytes", 48);
    for (const std::uint32_t format : {0U, 1U, 2U}) {
        UseFormat(format);
        EXPECT_FALSE(engine->SaveScreenshot(L"C:\\no such folder\\film.png")) << format;
    }
}

TEST_F(Screenshot, AnUnknownTypeHasNoEncoder) {
    Open();
    SetNumber("MpcVideoRenderer64.currentBytes", 48);
    EXPECT_FALSE(EncodeImageFile(engine->CaptureCurrentImage(), ImagePath(), L"image/brindle"));
    EXPECT_FALSE(EncodeImageFile(nullptr, ImagePath(), L"image/png"));
    EXPECT_FALSE(EncodeImageFile(std::make_shared<std::vector<std::uint8_t>>(), ImagePath(), L"image/png"));
    EXPECT_TRUE(ReadBack().empty());
}

TEST_F(Screenshot, BytesThatAreNoPictureAreNotEncoded) {
    const auto noise = std::make_shared<std::vector<std::uint8_t>>(500, std::uint8_t{77});
    EXPECT_FALSE(EncodeImageFile(noise, ImagePath(), L"image/png"));
    EXPECT_FALSE(EncodeImageFile(noise, ImagePath(), L"image/jpeg"));
    EXPECT_TRUE(ReadBack().empty());
}

} // namespace
} // namespace brindlecast::testing
