#include "subtitles/subtitle_manager.h"

#include "tests/support/fake_settings_store.h"
#include "tests/support/subtitle_fixture.h"

// What the user's look makes of a converted file, and that it leaves other files alone.

namespace brindlecast::testing {
namespace {

// Three pixels for each of the 384 by 288 of a converted file.
constexpr Size kFrame{1152, 864};
constexpr int kScale = 3;
constexpr Pixel kBlack{0, 0, 0, 255};

class SubtitleLook : public SubtitleTest {
protected:
    using Value = std::pair<const wchar_t*, std::uint32_t>;

    // The picture of a short SubRip text under these settings.
    Canvas Draw(std::initializer_list<Value> values, const char8_t* name = u8"a.srt",
                std::string_view bytes = "1\n00:00:01,000 --> 00:00:02,000\nHHH\n") {
        FakeSettingsStore store;
        for (const auto& [key, value] : values) {
            store.values[key] = value;
        }
        SubtitleManager manager(store, DrawFakeCue);
        Canvas canvas(kFrame);
        EXPECT_TRUE(manager.Initialise(kFrame.width, kFrame.height));
        EXPECT_TRUE(manager.Load(folder.Write(name, bytes)));
        const ComReference<ISubPic> picture = manager.GetSubPic(15'000'000);
        EXPECT_NE(nullptr, picture);
        SubPicDesc desc;
        if (picture != nullptr && picture->Lock(desc) == S_OK) {
            for (int y = 0; y < kFrame.height; ++y) {
                std::copy_n(desc.bits + static_cast<std::ptrdiff_t>(y) * desc.pitch, kFrame.width * 4,
                            canvas.desc.bits + static_cast<std::ptrdiff_t>(y) * canvas.desc.pitch);
            }
        }
        return canvas;
    }
    // The number of bytes that the conversion has made.
    int ConvertedBytes(const wchar_t* fontName) {
        FakeSettingsStore store;
        if (fontName != nullptr) {
            store.values[L"SubFontName"] = std::wstring(fontName);
        }
        SubtitleManager manager(store, DrawFakeCue);
        EXPECT_TRUE(manager.Initialise(kFrame.width, kFrame.height));
        EXPECT_TRUE(manager.Load(folder.Write(u8"a.srt", kSubRip)));
        const std::wstring last = TakeLines().back();
        EXPECT_TRUE(last.starts_with(L"ASS content size: ")) << ::testing::PrintToString(last);
        return std::stoi(last.substr(18));
    }
};

TEST_F(SubtitleLook, WhiteWithBlackOutlineAndPaleShadowAtTheBottom) {
    const Canvas canvas = Draw({});
    EXPECT_GT(canvas.Count(kWhite), 1000);
    EXPECT_GT(canvas.Count(kBlack), 100);
    EXPECT_GT(canvas.Count({0, 0, 0, 127}), 0) << "what is under the shadow shines through";
    const Rect drawn = canvas.Drawn();
    EXPECT_GT(drawn.top, kFrame.height / 2);
    EXPECT_NEAR(kFrame.width, drawn.left + drawn.right, 8);
}

TEST_F(SubtitleLook, EachPartHasItsColor) {
    // Red letters, green outline, blue shadow.
    const Canvas canvas = Draw({{L"SubPrimaryColor", 0x00FF0000},
                                {L"SubOutlineColor", 0x0000FF00},
                                {L"SubShadowColor", 0x000000FF},
                                {L"SubShadow", 60}});
    EXPECT_GT(canvas.Count(kRed), 1000);
    EXPECT_GT(canvas.Count(kGreen), 100);
    EXPECT_GT(canvas.Count(kBlue), 20);
    EXPECT_EQ(0, canvas.Count(kWhite));
    EXPECT_EQ(0, canvas.Count(kBlack));
    const Canvas bare = Draw({{L"SubPrimaryColor", 0x00FF0000},
                              {L"SubOutlineColor", 0x0000FF00},
                              {L"SubShadowColor", 0x000000FF},
                              {L"SubOutline", 0},
                              {L"SubShadow", 0}});
    EXPECT_GT(bare.Count(kRed), 1000);
    EXPECT_EQ(0, bare.Count(kGreen));
    EXPECT_EQ(0, bare.Count(kBlue));
}

TEST_F(SubtitleLook, OutlineAndShadowAreTenthsOfTheUnit) {
    // 45 tenths of 1080 lines are 3.6 of this picture's 864, 90 are 7.2.
    const Rect bare = Draw({{L"SubOutline", 0}, {L"SubShadow", 0}}).Drawn();
    const Rect wide = Draw({{L"SubOutline", 90}, {L"SubShadow", 0}}).Drawn();
    EXPECT_NEAR(bare.Width() + 2 * 7.2, wide.Width(), 2.0);
    EXPECT_NEAR(bare.Height() + 2 * 7.2, wide.Height(), 2.0);
    const Rect shadowed = Draw({{L"SubOutline", 0}, {L"SubShadow", 45}}).Drawn();
    EXPECT_NEAR(bare.right + 3.6, shadowed.right, 1.5);
    EXPECT_NEAR(bare.bottom + 3.6, shadowed.bottom, 1.5);
    EXPECT_NEAR(bare.left, shadowed.left, 1.0);
}

TEST_F(SubtitleLook, TheFontsSizeIsThatOfTheScript) {
    const Rect usual = Draw({}).Drawn();
    EXPECT_EQ(usual, Draw({{L"SubFontSize", 24}}).Drawn()) << "0 is 24";
    const int letters = Draw({{L"SubOutline", 0}, {L"SubShadow", 0}}).Drawn().Height();
    const int larger = Draw({{L"SubOutline", 0}, {L"SubShadow", 0}, {L"SubFontSize", 48}}).Drawn().Height();
    EXPECT_NEAR(2 * letters, larger, 3);
    EXPECT_GT(letters, 24 * kScale / 2);
    EXPECT_LT(letters, 24 * kScale);
}

TEST_F(SubtitleLook, BoldAndItalic) {
    const Canvas bold = Draw({});
    const Canvas regular = Draw({{L"SubBold", 0}});
    const Canvas italic = Draw({{L"SubItalic", 1}});
    EXPECT_GT(bold.Count(kWhite), regular.Count(kWhite) * 11 / 10);
    EXPECT_TRUE(bold == Draw({{L"SubBold", 7}}));
    EXPECT_FALSE(bold == italic);
    EXPECT_GT(italic.Drawn().Width(), bold.Drawn().Width()) << "slanted";
}

TEST_F(SubtitleLook, MarginAndAlignment) {
    const Rect usual = Draw({}).Drawn();
    // 25 and 250 of 1080 lines are 6 and 66 of the script's 288.
    const Rect raised = Draw({{L"SubMarginBottom", 250}}).Drawn();
    EXPECT_EQ(usual.bottom - (66 - 6) * kScale, raised.bottom);
    EXPECT_EQ(usual.left, raised.left);
    const Rect top = Draw({{L"SubAlignment", 8}}).Drawn();
    EXPECT_LT(top.bottom, kFrame.height / 4);
    EXPECT_EQ(usual.left, top.left);
    EXPECT_LT(Draw({{L"SubAlignment", 1}}).Drawn().right, kFrame.width / 2);
    EXPECT_GT(Draw({{L"SubAlignment", 3}}).Drawn().left, kFrame.width / 2);
}

TEST_F(SubtitleLook, TheFontsNameGoesIntoTheConvertedText) {
    const int usual = ConvertedBytes(nullptr);
    EXPECT_EQ(usual - 13 + 9, ConvertedBytes(L"바탕체")) << "three letters of three bytes for Malgun Gothic";
    EXPECT_EQ(usual - 13, ConvertedBytes(L"")) << "a name that is present and empty";
}

TEST_F(SubtitleLook, AFileWithStylesKeepsThem) {
    const std::string script = AssHead({384, 288}) + AssLine("0:00:01.00", "0:00:02.00", "HHH");
    const Canvas usual = Draw({}, u8"a.ass", script);
    EXPECT_GT(usual.Count(kWhite), 500);
    EXPECT_TRUE(usual == Draw({{L"SubPrimaryColor", 0x00FF0000},
                               {L"SubFontSize", 60},
                               {L"SubOutline", 200},
                               {L"SubItalic", 1},
                               {L"SubAlignment", 8}},
                              u8"a.ass", script));
}

} // namespace
} // namespace brindlecast::testing
