#include "tests/graph/embedded_subtitles_fixture.h"

#include <limits>

// Text tracks that the tool beside the program takes out of the file.

namespace brindlecast::testing {
namespace {

using ToolExtraction = EmbeddedSubtitlesTest;

TEST_F(ToolExtraction, ATrackIsCopiedIntoAFileAndLoaded) {
    Open();
    ToolGives(kSubRipText);
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0));
    EXPECT_EQ(Lines{Command(0, L".srt")}, ToolStarts());
    ExpectLoaded(0);
    ASSERT_EQ(1, engine->subtitleManager->EntryCount());
    EXPECT_EQ(Extracted(L".srt"), engine->subtitleManager->GetEntry(0)->path);
    EXPECT_TRUE(engine->subtitleManager->IsActive());
    EXPECT_EQ(kSubRipText, ReadBytes(Extracted(L".srt"))) << "the file stays";
    EXPECT_EQ(Lines{}, CallsOf(L"LAVSplitter.")) << "the graph is left alone";
    EXPECT_EQ(nullptr, engine->subtitleGrabber);
    EXPECT_EQ(nullptr, engine->subtitleGrabberCallback);
}

TEST_F(ToolExtraction, EverythingHappensInOrder) {
    Open();
    ToolGives(kSubRipText);
    const ToolWatch watch(Shortened);
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0));
    ExpectLines({L"temporary folder", L"attributes of <dir>\\ffmpeg.exe",
                 L"delete <temp>Brindlecast_embedded_sub.srt", L"start", L"wait 30000", L"exit code",
                 L"close", L"close", L"size of <temp>Brindlecast_embedded_sub.srt"},
                watch.Seen());
    ASSERT_TRUE(watch.LastStart().has_value());
    const ToolWatch::Start& start = *watch.LastStart();
    EXPECT_EQ(ModulePath(L"ffmpeg.exe"), start.program);
    EXPECT_EQ(Command(0, L".srt"), Shortened(start.commandLine));
    EXPECT_FALSE(start.inheritsHandles);
    EXPECT_EQ(0x8000000U, start.flags);
    EXPECT_EQ(DWORD{STARTF_USESHOWWINDOW}, start.startFlags);
    EXPECT_EQ(SW_HIDE, start.show);
    EXPECT_FALSE(start.hasOwnSurroundings);
}

TEST_F(ToolExtraction, TheToolIsToldTheOrdinalAndNotTheStream) {
    Open();
    ToolGives(kSubRipText);
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(1));
    EXPECT_EQ(Lines{Command(1, L".srt")}, ToolStarts()) << "of stream 3, which has no name";
    ExpectLoaded(1);
}

TEST_F(ToolExtraction, AdvancedTextIsKeptAsSuch) {
    Open();
    ToolGives(kAdvancedText);
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(2));
    EXPECT_EQ(Lines{Command(2, L".ass")}, ToolStarts());
    ExpectLoaded(2);
    EXPECT_EQ(Extracted(L".ass"), engine->subtitleManager->GetEntry(0)->path);
    EXPECT_EQ(std::nullopt, ReadBytes(Extracted(L".srt")));
}

TEST_F(ToolExtraction, TheNameTellsTheFormatWhateverItMeans) {
    SetText("LAVSplitter.streams", L"subtitle:0:ASS;subtitle:0:Classic [subrip];subtitle:0:Korean");
    Open();
    ToolGives(kAdvancedText);
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0));
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(1));
    ToolGives(kSubRipText);
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(2));
    EXPECT_EQ((Lines{Command(0, L".ass"), Command(1, L".ass"), Command(2, L".srt")}), ToolStarts());
}

TEST_F(ToolExtraction, AnyMethodButTheFirstAsksTheToolAlone) {
    Open();
    ToolGives(kSubRipText);
    for (const std::uint32_t method : {0U, 2U, 0xFFFFFFFFU}) {
        UseMethod(method);
        EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0)) << method;
    }
    EXPECT_EQ(3U, ToolStarts().size());
    EXPECT_EQ(Lines{}, CallsOf(L"LAVSplitter.Enable"));
}

TEST_F(ToolExtraction, AnOrdinalOutsideTheTracksIsRefusedBeforeAnyWork) {
    Open();
    ToolGives(kSubRipText);
    EXPECT_FALSE(engine->LoadEmbeddedSubtitle(-1));
    EXPECT_FALSE(engine->LoadEmbeddedSubtitle(std::numeric_limits<int>::min()));
    EXPECT_EQ(Lines{}, QueriesOf(L"LAVSplitter.")) << "not even counted";
    EXPECT_FALSE(engine->LoadEmbeddedSubtitle(3));
    EXPECT_FALSE(engine->LoadEmbeddedSubtitle(std::numeric_limits<int>::max()));
    EXPECT_EQ(Lines{}, QueriesOf(L"LAVSplitter.Info(1, type, ")) << "no name is asked for";
    EXPECT_EQ(Lines{}, settings.reads);
    EXPECT_EQ(Lines{}, ToolStarts());
    ExpectNothingLoaded();
}

TEST_F(ToolExtraction, WithoutOpenFileThereIsNoTrack) {
    ToolGives(kSubRipText);
    EXPECT_FALSE(engine->LoadEmbeddedSubtitle(0));
    // A graph without a path.
    Open(L"");
    EXPECT_EQ(3, engine->GetEmbeddedSubtitleCount());
    EXPECT_FALSE(engine->LoadEmbeddedSubtitle(0));
    EXPECT_EQ(Lines{}, ToolStarts());
    ExpectNothingLoaded();
}

TEST_F(ToolExtraction, PicturesAreRefused) {
    Open();
    ToolGives(kSubRipText);
    WriteBytes(Extracted(L".srt"), "of another track");
    for (const wchar_t* word : {L"pgs", L"PGS", L"hdmv", L"HDMV", L"dvdsub", L"dvd_subtitle"}) {
        SetText("LAVSplitter.streams", (std::wstring(L"subtitle:0:English ") + word + L" 2").c_str());
        EXPECT_FALSE(engine->LoadEmbeddedSubtitle(0)) << word;
    }
    EXPECT_EQ(Lines{}, ToolStarts());
    EXPECT_EQ("of another track", ReadBytes(Extracted(L".srt")));
    ExpectNothingLoaded();
}

TEST_F(ToolExtraction, AStreamThatCanNotBeAskedForItsNameIsRefused) {
    Open();
    ToolGives(kSubRipText);
    SetNumber("LAVSplitter.nameFails", 1);
    EXPECT_FALSE(engine->LoadEmbeddedSubtitle(0));
    EXPECT_EQ(Lines{}, ToolStarts());
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(1));
}

TEST_F(ToolExtraction, WithoutToolTheFileOfAnotherTrackStays) {
    Open();
    HideModule(L"ffmpeg.exe");
    WriteBytes(Extracted(L".srt"), "of another track");
    EXPECT_FALSE(engine->LoadEmbeddedSubtitle(0));
    EXPECT_EQ("of another track", ReadBytes(Extracted(L".srt")));
    EXPECT_EQ(nullptr, engine->subtitleManager);
    ExpectNothingLoaded();
}

TEST_F(ToolExtraction, AToolThatIsNoProgramFails) {
    Open();
    WriteBytes(ModulePath(L"no_program.txt"), "text");
    ReplaceModule(L"ffmpeg.exe", L"no_program.txt");
    const ToolWatch watch(Shortened);
    EXPECT_FALSE(engine->LoadEmbeddedSubtitle(0));
    EXPECT_EQ(L"start", watch.Seen().back());
    EXPECT_TRUE(DeleteFileW(ModulePath(L"no_program.txt").c_str()));
    ExpectNothingLoaded();
}

TEST_F(ToolExtraction, WhatAnEarlierTrackLeftIsNotLoaded) {
    Open();
    WriteBytes(Extracted(L".srt"), kSubRipText);
    EXPECT_FALSE(engine->LoadEmbeddedSubtitle(0)) << "the tool writes nothing";
    EXPECT_EQ(1U, ToolStarts().size());
    EXPECT_EQ(std::nullopt, ReadBytes(Extracted(L".srt")));
    EXPECT_EQ(nullptr, engine->subtitleManager);
    ExpectNothingLoaded();
}

TEST_F(ToolExtraction, AToolThatFailsIsNotTrusted) {
    Open();
    ToolGives(kSubRipText);
    for (const int exitCode : {1, -1, 259}) {
        ToolEndsWith(exitCode);
        EXPECT_FALSE(engine->LoadEmbeddedSubtitle(0)) << exitCode;
    }
    EXPECT_EQ(3U, ToolStarts().size());
    EXPECT_EQ(kSubRipText, ReadBytes(Extracted(L".srt")));
    EXPECT_EQ(nullptr, engine->subtitleManager);
    ExpectNothingLoaded();
}

TEST_F(ToolExtraction, AnEmptyFileIsTakenAway) {
    Open();
    ToolGives("");
    EXPECT_FALSE(engine->LoadEmbeddedSubtitle(0));
    EXPECT_EQ(1U, ToolStarts().size());
    EXPECT_EQ(std::nullopt, ReadBytes(Extracted(L".srt")));
    EXPECT_EQ(nullptr, engine->subtitleManager);
    ExpectNothingLoaded();
}

TEST_F(ToolExtraction, AFileThatDoesNotLoadFails) {
    Open();
    // Neither is what its extension says, nor has a readable cue; the text of the second is not UTF-8.
    for (const char* content : {"no subtitles", "1\n00:00:01,000 --> 00:00:02,000\n\xFF\xFE\n\n"}) {
        ToolGives(content);
        EXPECT_FALSE(engine->LoadEmbeddedSubtitle(2)) << content;
        EXPECT_EQ(content, ReadBytes(Extracted(L".ass")));
    }
    EXPECT_EQ(2U, ToolStarts().size());
    ExpectNothingLoaded();
}

TEST_F(ToolExtraction, AToolThatHangsIsLeftRunning) {
    Open();
    ToolGives(kSubRipText);
    constexpr const wchar_t* kEnd = L"BrindlecastFakeToolMayEnd";
    const UniqueHandle end(CreateEventW(nullptr, TRUE, FALSE, kEnd));
    SetEnvironmentVariableW(L"BRINDLECAST_TOOL_AWAITS", kEnd);
    UniqueHandle tool;
    {
        constexpr DWORD kShort = 1000;
        const ToolWatch watch(Shortened, kShort);
        EXPECT_FALSE(engine->LoadEmbeddedSubtitle(0));
        EXPECT_EQ(1U, CountOf(watch.Seen(), L"wait 30000"));
        EXPECT_EQ(2U, CountOf(watch.Seen(), L"close"));
        EXPECT_EQ(L"close", watch.Seen().back()) << "nobody looks at what it has written";
        ASSERT_TRUE(watch.LastStart().has_value());
        tool.Reset(OpenProcess(SYNCHRONIZE, FALSE, watch.LastStart()->processId));
    }
    ASSERT_TRUE(tool);
    EXPECT_EQ(DWORD{WAIT_TIMEOUT}, WaitForSingleObject(tool.Get(), 0));
    EXPECT_EQ(nullptr, engine->subtitleManager);
    ExpectNothingLoaded();
    SetEvent(end.Get());
    constexpr DWORD kTimeToEnd = 10000;
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(tool.Get(), kTimeToEnd));
}

TEST_F(ToolExtraction, AnotherTrackTakesThePlaceInTheSameManager) {
    Open();
    ToolGives(kSubRipText);
    ASSERT_TRUE(engine->LoadEmbeddedSubtitle(0));
    const SubtitleManager* const manager = engine->subtitleManager.get();
    engine->SetSubtitleEnabled(false);
    settings.writes.clear();
    ToolGives(kAdvancedText);
    ASSERT_TRUE(engine->LoadEmbeddedSubtitle(2));
    EXPECT_EQ(manager, engine->subtitleManager.get());
    ExpectLoaded(2);
    ASSERT_EQ(1, engine->subtitleManager->EntryCount());
    EXPECT_EQ(Extracted(L".ass"), engine->subtitleManager->GetEntry(0)->path);
}

TEST_F(ToolExtraction, AFailureKeepsWhatIsLoaded) {
    Open();
    ToolGives(kSubRipText);
    ASSERT_TRUE(engine->LoadEmbeddedSubtitle(1));
    settings.writes.clear();
    ToolEndsWith(1);
    EXPECT_FALSE(engine->LoadEmbeddedSubtitle(0));
    ExpectNothingLoaded(1);
    EXPECT_TRUE(engine->subtitleManager->IsActive());
}

TEST_F(ToolExtraction, ANewFileHasNoTrackLoaded) {
    Open();
    ToolGives(kSubRipText);
    ASSERT_TRUE(engine->LoadEmbeddedSubtitle(1));
    engine->CloseGraph();
    EXPECT_EQ(-1, engine->embeddedSubtitleTrack);
    EXPECT_FALSE(engine->subtitleManager->IsActive());
}

TEST_F(ToolExtraction, APathOfAnyWordsReachesTheTool) {
    Open(L"C:\\films\\한국어 영화 100% %s.mkv");
    ToolGives(kSubRipText);
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0));
    EXPECT_EQ(
        Lines{L"\"<dir>\\ffmpeg.exe\" -y -i \"C:\\films\\한국어 영화 100% %s.mkv\" -map 0:s:0 -c:s copy "
              L"\"<temp>Brindlecast_embedded_sub.srt\""},
        ToolStarts());
}

} // namespace
} // namespace brindlecast::testing
