#include "subtitles/subtitle_provider.h"

#include "tests/support/subtitle_fixture.h"

#include <future>
#include <stdexcept>
#include <utility>

// Which reader takes a subtitle file, and what a load leaves behind.

namespace brindlecast::testing {
namespace {

constexpr Size kFrame{200, 100};
constexpr Rect kPlace{10, 20, 110, 60};

std::string OneBlock() {
    return AssScript(kFrame, {{.place = kPlace}});
}

constexpr const char* kSsa = "[Script Info]\nScriptType: v4.00\nPlayResX: 200\nPlayResY: 100\n\n[V4 Styles]\n"
                             "Format: Name, Fontname, Fontsize, PrimaryColour, SecondaryColour, "
                             "TertiaryColour, BackColour, Bold, Italic, BorderStyle, Outline, Shadow, "
                             "Alignment, MarginL, MarginR, MarginV, AlphaLevel, Encoding\n"
                             "Style: Default,Malgun Gothic,20,255,255,255,0,0,0,1,1,1,2,5,5,5,0,1\n\n"
                             "[Events]\nFormat: Marked, Start, End, Style, Name, MarginL, MarginR, MarginV, "
                             "Effect, Text\n"
                             "Dialogue: Marked=0,0:00:01.00,0:00:02.00,Default,,0,0,0,,Hi\n";
constexpr const char* kWebVtt = "WEBVTT\n\n1\n00:00:01.000 --> 00:00:02.000\nHi\n";
constexpr const char* kSami = "<SAMI>\n<BODY>\n<SYNC Start=1000><P Class=KRCC>Hi\n</BODY>\n</SAMI>\n";
constexpr const char* kMicroDvd = "{25}{50}Hi\n{75}{100}there\n";
constexpr const char* kIndex = "# VobSub index file, v7 (do not modify this line!)\nsize: 720x480\n";

class SubtitleLoading : public SubtitleTest {
protected:
    SubtitleLoading() { provider->SetVideoSize(kFrame); }
    [[nodiscard]] static ComReference<CSubtitleProvider> Make() {
        return ComReference<CSubtitleProvider>(new CSubtitleProvider(SubtitleStyle{}, DrawFakeCue));
    }
    bool Load(const std::u8string& name, std::string_view bytes) {
        return provider->LoadFile(folder.Write(name, bytes));
    }
    HRESULT Render(Canvas& canvas, Time100ns rt) {
        Rect bbox;
        return provider->Render(canvas.desc, rt, 25.0, bbox);
    }

    ComReference<CSubtitleProvider> provider = Make();
};

// Which reader takes a file: by its name, and then by what libass says to its content.

enum class Reader { None, Conversion, Libass, Cues };

struct LoadRow {
    const char8_t* name;
    std::string content;
    int type; // by the name
    Reader reader;
};

void PrintTo(const LoadRow& row, std::ostream* out) {
    *out << reinterpret_cast<const char*>(row.name) << ": " << row.content.substr(0, 12);
}

class SubtitleLoad : public SubtitleLoading, public ::testing::WithParamInterface<LoadRow> {};

TEST_P(SubtitleLoad, GoesToTheReaderOfItsKind) {
    const LoadRow& row = GetParam();
    const bool taken = row.reader != Reader::None;
    EXPECT_EQ(taken, Load(row.name, row.content));
    const Lines loading = TakeLines();
    // The conversion has two lines of its own.
    ASSERT_EQ(row.reader == Reader::Conversion ? 3U : 1U, loading.size());
    EXPECT_EQ(L"Subtitle type: " + std::to_wstring(row.type), loading[0]);
    EXPECT_EQ(taken, provider->HasContent());

    EXPECT_EQ(taken ? 1U : 0U, provider->GetStartPosition(0, 25.0));
    EXPECT_EQ(taken ? 10'000'000 : 0, provider->GetStart(1, 25.0));
    EXPECT_EQ(taken ? 20'000'000 : 0, provider->GetStop(1, 25.0));
    Lines building;
    if (row.reader == Reader::Conversion || row.reader == Reader::Libass) {
        building.emplace_back(L"libass event count: 1");
    }
    if (taken) {
        building.emplace_back(L"Total events loaded: 1");
    }
    EXPECT_EQ(building, TakeLines());

    Canvas canvas(kFrame);
    EXPECT_EQ(taken ? 0 : 1, Render(canvas, 15'000'000));
    EXPECT_EQ(!taken, canvas.Drawn() == kInvertedRect);
    EXPECT_EQ(row.reader == Reader::Cues ? (std::vector<DrawnCue>{{L"Hi", kFrame}}) : std::vector<DrawnCue>{},
              drawnCues);
}

INSTANTIATE_TEST_SUITE_P(
    ByNameAndContent, SubtitleLoad,
    ::testing::Values(
        // As each kind is meant.
        LoadRow{u8"a.srt", kSubRip, 1, Reader::Conversion},
        LoadRow{u8"a.SRT", kSubRip, 1, Reader::Conversion},
        LoadRow{u8"a.bak.sRt", kSubRip, 1, Reader::Conversion},
        LoadRow{u8"영화 자막.srt", kSubRip, 1, Reader::Conversion},
        LoadRow{u8"a.vtt", kWebVtt, 6, Reader::Conversion},
        LoadRow{u8"a.VTT", kWebVtt, 6, Reader::Conversion}, LoadRow{u8"a.ass", OneBlock(), 2, Reader::Libass},
        LoadRow{u8"a.ASS", OneBlock(), 2, Reader::Libass},
        LoadRow{u8"영화 자막.ass", OneBlock(), 2, Reader::Libass},
        LoadRow{u8"a.ssa", kSsa, 3, Reader::Libass},
        // What nothing reads.
        LoadRow{u8"a.sub", kMicroDvd, 4, Reader::None}, LoadRow{u8"a.smi", kSami, 5, Reader::None},
        LoadRow{u8"a.sami", kSami, 5, Reader::None}, LoadRow{u8"a.SAMI", kSami, 5, Reader::None},
        LoadRow{u8"a.idx", kIndex, 0, Reader::None}, LoadRow{u8"a.txt", "Hi\n", 0, Reader::None},
        LoadRow{u8"a.ass", "", 2, Reader::None}, LoadRow{u8"a.ssa", "Hi\n", 3, Reader::None},
        // libass is asked whatever the extension, but for the two that are converted.
        LoadRow{u8"a.ssa", OneBlock(), 3, Reader::Libass}, LoadRow{u8"a.ass", kSsa, 2, Reader::Libass},
        LoadRow{u8"a.sub", OneBlock(), 4, Reader::Libass}, LoadRow{u8"a.smi", OneBlock(), 5, Reader::Libass},
        LoadRow{u8"a.idx", OneBlock(), 0, Reader::Libass}, LoadRow{u8"a.txt", OneBlock(), 0, Reader::Libass},
        LoadRow{u8"no point", OneBlock(), 0, Reader::Libass}, LoadRow{u8"srt", OneBlock(), 0, Reader::Libass},
        LoadRow{u8"a.srt.bak", OneBlock(), 0, Reader::Libass},
        LoadRow{u8"a.srt_", OneBlock(), 0, Reader::Libass},
        // The plain reader takes what libass refuses.
        LoadRow{u8"a.ass", kSubRip, 2, Reader::Cues}, LoadRow{u8"a.ssa", kSubRip, 3, Reader::Cues},
        LoadRow{u8"a.sub", kSubRip, 4, Reader::Cues}, LoadRow{u8"a.smi", kSubRip, 5, Reader::Cues},
        LoadRow{u8"a.sami", kSubRip, 5, Reader::Cues}, LoadRow{u8"a.idx", kSubRip, 0, Reader::Cues},
        LoadRow{u8"a.txt", kSubRip, 0, Reader::Cues}, LoadRow{u8"no point", kSubRip, 0, Reader::Cues},
        LoadRow{u8"a.srt.bak", kSubRip, 0, Reader::Cues}));

TEST_F(SubtitleLoading, APointInTheFoldersNameIsTheLastOneOfThePath) {
    MakeFolder(u8"a.srt");
    const std::wstring path = folder.Write(u8"a.srt/movie", OneBlock());
    EXPECT_TRUE(provider->LoadFile(path));
    EXPECT_EQ(Lines{L"Subtitle type: 0"}, TakeLines());
}

TEST_F(SubtitleLoading, AConvertedFileHasATrackAlsoWithoutEvents) {
    for (const std::string_view content : {"", "no cue at all\n", "[Script Info]\nScriptType: v4.00+\n"}) {
        EXPECT_TRUE(Load(u8"a.srt", content));
        EXPECT_TRUE(provider->HasContent());
        TakeLines();
        EXPECT_EQ(0U, provider->GetStartPosition(0, 25.0));
        EXPECT_EQ((Lines{L"libass event count: 0", L"Total events loaded: 0"}), TakeLines());
        Canvas canvas(kFrame);
        EXPECT_EQ(1, Render(canvas, 15'000'000));
        EXPECT_TRUE(drawnCues.empty());
    }
}

TEST_F(SubtitleLoading, TheLinesOfAConversionCountItsBytes) {
    EXPECT_TRUE(Load(u8"a.srt", std::string("\xEF\xBB\xBF") + kSubRip));
    const std::string ass =
        "[Script Info]\nScriptType: v4.00+\nWrapStyle: 0\nScaledBorderAndShadow: yes\nPlayResX: 384\n"
        "PlayResY: 288\n\n[V4+ Styles]\n"
        "Format: Name, Fontname, Fontsize, PrimaryColour, SecondaryColour, OutlineColour, BackColour, Bold, "
        "Italic, Underline, StrikeOut, ScaleX, ScaleY, Spacing, Angle, BorderStyle, Outline, Shadow, "
        "Alignment, MarginL, MarginR, MarginV, Encoding\n"
        "Style: Default,Malgun Gothic,24,&H00FFFFFF,&H000000FF,&H00000000,&H80000000,-1,0,0,0,100,100,0,0,1,"
        "0.666667,0.4,2,5,5,6,1\n\n[Events]\n"
        "Format: Layer, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\n"
        "Dialogue: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,Hi\n";
    EXPECT_EQ((Lines{L"Subtitle type: 1", L"SRT content size: 38 bytes",
                     L"ASS content size: " + std::to_wstring(ass.size()) + L" bytes"}),
              TakeLines());
}

TEST_F(SubtitleLoading, WhatCanNotBeOpenedLeavesNothing) {
    struct Row {
        const char8_t* name;
        int type;
    };
    for (const Row& row :
         {Row{u8"gone.srt", 1}, Row{u8"gone.ass", 2}, Row{u8"gone.ssa", 3}, Row{u8"gone.sub", 4},
          Row{u8"gone.smi", 5}, Row{u8"gone.vtt", 6}, Row{u8"no/such/folder.srt", 1}, Row{u8"gone", 0}}) {
        ASSERT_TRUE(Load(u8"before.ass", OneBlock()));
        ASSERT_EQ(1U, provider->GetStartPosition(0, 25.0));
        TakeLines();
        EXPECT_FALSE(provider->LoadFile(folder.Path(row.name)));
        EXPECT_EQ(Lines{L"Subtitle type: " + std::to_wstring(row.type)}, TakeLines());
        EXPECT_FALSE(provider->HasContent()) << "the file before is gone as well";
        EXPECT_EQ(0U, provider->GetStartPosition(0, 25.0));
        EXPECT_EQ(0, provider->GetStart(1, 25.0));
        Canvas canvas(kFrame);
        EXPECT_EQ(1, Render(canvas, 15'000'000));
        EXPECT_EQ(Lines{}, TakeLines());
    }
    EXPECT_FALSE(provider->LoadFile(L""));
    EXPECT_TRUE(drawnCues.empty());
}

TEST_F(SubtitleLoading, AFolderIsNoFile) {
    MakeFolder(u8"folder.srt");
    EXPECT_FALSE(provider->LoadFile(folder.Path(u8"folder.srt")));
    EXPECT_FALSE(provider->HasContent());
}

TEST_F(SubtitleLoading, EachFileTakesThePlaceOfTheOneBefore) {
    ASSERT_TRUE(Load(u8"a.ass", AssScript(kFrame, {{"0:00:07.00", "0:00:08.00", kPlace}})));
    EXPECT_EQ(1U, provider->GetStartPosition(0, 25.0));
    EXPECT_EQ(70'000'000, provider->GetStart(1, 25.0));
    ASSERT_TRUE(Load(u8"b.idx", kSubRip));
    EXPECT_EQ(1U, provider->GetStartPosition(0, 25.0));
    EXPECT_EQ(10'000'000, provider->GetStart(1, 25.0));
    EXPECT_EQ(0, provider->GetStart(2, 25.0));
    ASSERT_TRUE(Load(u8"c.ass", AssScript(kFrame, {{"0:00:03.00", "0:00:04.00", kPlace}})));
    EXPECT_EQ(0, provider->GetStart(1, 25.0)) << "events are built when a position is asked for";
    EXPECT_EQ(1U, provider->GetStartPosition(0, 25.0));
    EXPECT_EQ(30'000'000, provider->GetStart(1, 25.0));
    Canvas canvas(kFrame);
    EXPECT_EQ(1, Render(canvas, 15'000'000)) << "no cue of the file before";
    EXPECT_EQ(0, Render(canvas, 35'000'000));
    EXPECT_TRUE(drawnCues.empty());
}

TEST_F(SubtitleLoading, ClearForgetsTheFileAndKeepsTheDelay) {
    provider->SetDelay(-700);
    for (const auto& [name, content] :
         {std::pair{u8"a.ass", OneBlock()}, std::pair{u8"a.idx", std::string(kSubRip)}}) {
        ASSERT_TRUE(Load(name, content));
        ASSERT_EQ(1U, provider->GetStartPosition(0, 25.0));
        provider->Clear();
        EXPECT_FALSE(provider->HasContent());
        EXPECT_EQ(0U, provider->GetStartPosition(0, 25.0));
        EXPECT_EQ(0U, provider->GetNext(1));
        EXPECT_EQ(0, provider->GetStop(1, 25.0));
        EXPECT_EQ(-700, provider->Delay());
    }
}

// A cue's text that is not UTF-8: the cues before it stay, and no lock is left behind.
TEST_F(SubtitleLoading, TextThatIsNotUtf8EndsTheLoadWithAnException) {
    const std::string content = std::string(kSubRip) + "\n2\n00:00:03,000 --> 00:00:04,000\n\xFF\xFE\n";
    ASSERT_TRUE(Load(u8"before.ass", AssScript(kFrame, {{"0:00:07.00", "0:00:08.00", kPlace}})));
    ASSERT_EQ(1U, provider->GetStartPosition(0, 25.0));
    try {
        static_cast<void>(Load(u8"a.idx", content));
        FAIL() << "nothing thrown";
    } catch (const std::range_error& error) {
        EXPECT_STREQ("bad conversion", error.what());
    }
    std::async(std::launch::async, [this] {
        provider->Lock();
        provider->Unlock();
    }).get();
    EXPECT_TRUE(provider->HasContent());
    EXPECT_EQ(1U, provider->GetStartPosition(0, 25.0));
    EXPECT_EQ(0U, provider->GetStartPosition(20'000'000, 25.0));
    Canvas canvas(kFrame);
    EXPECT_EQ(0, Render(canvas, 15'000'000));
    EXPECT_EQ((std::vector<DrawnCue>{{L"Hi", kFrame}}), drawnCues);
}

// By its name such a file is one for libass, which has no track of it.
TEST_F(SubtitleLoading, CuesOfAnInterruptedLoadOfAnAssFileAreNotDrawn) {
    const std::string content = std::string(kSubRip) + "\n2\n00:00:03,000 --> 00:00:04,000\n\xFF\xFE\n";
    EXPECT_THROW(static_cast<void>(Load(u8"a.ass", content)), std::range_error);
    EXPECT_TRUE(provider->HasContent());
    TakeLines();
    Canvas canvas(kFrame);
    Rect bbox;
    EXPECT_EQ(1, provider->Render(canvas.desc, 15'000'000, 25.0, bbox));
    EXPECT_EQ(kInvertedRect, bbox);
    EXPECT_TRUE(drawnCues.empty());
    EXPECT_EQ(Lines{}, TakeLines());
}

} // namespace
} // namespace brindlecast::testing
