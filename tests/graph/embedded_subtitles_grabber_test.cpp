#include "tests/graph/embedded_subtitles_fixture.h"
#include "tests/graph/fake_sample.h"

// Text tracks whose samples are grabbed from the running film, with the tool to fall back on.

namespace brindlecast::testing {
namespace {

// A class of the system, made by one of the fake modules while this lives.
class StandIn {
public:
    StandIn(const CLSID& clsid, const std::wstring& module) {
        // Stays loaded: the platform keeps the factory as long as it likes.
        const HMODULE library = LoadLibraryW(module.c_str());
        using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, LPVOID*);
        ComPtr<IClassFactory> factory;
        FindFunction<GetClassObject>(library, "DllGetClassObject")(clsid, IID_PPV_ARGS(&factory));
        EXPECT_EQ(S_OK, CoRegisterClassObject(clsid, factory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                                              &cookie));
    }
    StandIn(const StandIn&) = delete;
    StandIn& operator=(const StandIn&) = delete;
    ~StandIn() { CoRevokeClassObject(cookie); }

private:
    DWORD cookie = 0;
};

// With stand-ins for the two filters of the system.
class GrabberCalls : public GrabberTest {
protected:
    // The tool has done it after all.
    void ExpectToolTookOver(int ordinal) {
        EXPECT_EQ(Lines{Command(ordinal, L".srt")}, ToolStarts());
        ExpectLoaded(ordinal);
        EXPECT_EQ(1, engine->subtitleManager->EntryCount());
    }

private:
    StandIn grabberClass{kClsidSampleGrabber, ModulePath(L"FakeSampleGrabber.ax")};
    StandIn sinkClass{kClsidNullRenderer, ModulePath(L"FakeNullRenderer.ax")};
};

const Lines kGrabberPrepared = {L"SampleGrabber.joins the graph as Subtitle Grabber",
                                L"SampleGrabber.SetMediaType(subtitle and zeros)",
                                L"SampleGrabber.SetCallback(callback, 0)"};
const Lines kSinkAdded = {L"NullRenderer.joins the graph as Subtitle Null"};
const Lines kGrabberConnected = {L"LAVSplitter.Subtitle connected to Subtitle Grabber"};
const Lines kSinkConnected = {L"SampleGrabber.Out connected to Subtitle Null"};

TEST_F(GrabberCalls, TheGrabberIsAttachedStepByStep) {
    Open();
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(1));
    ExpectLines(Join({{L"LAVSplitter.Enable(3, 1)"},
                      kGrabberPrepared,
                      kSinkAdded,
                      kGrabberConnected,
                      kSinkConnected,
                      {L"> Subtitle video size: 1920x1080"}}),
                Calls());
    ExpectLoaded(1);
    EXPECT_EQ(0, engine->subtitleManager->EntryCount()) << "nothing of it is shown";
    EXPECT_FALSE(engine->subtitleManager->IsActive());
    EXPECT_NE(nullptr, engine->subtitleGrabber);
    ASSERT_NE(nullptr, engine->subtitleGrabberCallback);
    EXPECT_FALSE(engine->subtitleGrabberCallback->isAss);
    EXPECT_EQ(Lines{}, ToolStarts());
}

TEST_F(GrabberCalls, PicturesAreRefusedBeforeAnythingIsEnabled) {
    Open();
    for (const wchar_t* word : {L"pgs", L"PGS", L"hdmv", L"dvdsub"}) {
        SetText("LAVSplitter.streams", (std::wstring(L"subtitle:0:English ") + word + L" 2").c_str());
        EXPECT_FALSE(engine->LoadEmbeddedSubtitle(0)) << word;
    }
    EXPECT_EQ(Lines{}, Calls());
    EXPECT_EQ(Lines{}, ToolStarts()) << "the tool refuses them too";
    ExpectNothingLoaded();
}

TEST_F(GrabberCalls, TwoWordsForPicturesAreUnknownToIt) {
    for (const wchar_t* word : {L"HDMV", L"dvd_subtitle"}) {
        SetText("LAVSplitter.streams", (std::wstring(L"subtitle:0:English ") + word).c_str());
        engine = std::make_unique<PlayerEngine>(settings);
        Open();
        EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0)) << word;
        ExpectLoaded(0);
    }
    EXPECT_EQ(Lines{}, ToolStarts());
}

TEST_F(GrabberCalls, TheFormatIsToldByTheName) {
    for (const wchar_t* name : {L"ass", L"ASS", L"ssa", L"SSA", L"Classic"}) {
        SetText("LAVSplitter.streams", (std::wstring(L"subtitle:0:") + name).c_str());
        engine = std::make_unique<PlayerEngine>(settings);
        Open();
        EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0)) << name;
        EXPECT_TRUE(engine->subtitleGrabberCallback->isAss) << name;
    }
}

TEST_F(GrabberCalls, AStreamThatCanNotBeAskedForItsNameIsRefused) {
    Open();
    SetNumber("LAVSplitter.nameFails", 1);
    EXPECT_FALSE(engine->LoadEmbeddedSubtitle(0));
    EXPECT_EQ(Lines{}, Calls());
}

TEST_F(GrabberCalls, AnOrdinalOutsideTheTracksIsRefusedBeforeAnyWork) {
    Open();
    EXPECT_FALSE(engine->LoadEmbeddedSubtitle(-1));
    EXPECT_FALSE(engine->LoadEmbeddedSubtitle(3));
    EXPECT_EQ(Lines{}, Calls());
    EXPECT_EQ(Lines{}, settings.reads);
}

TEST_F(GrabberCalls, WithoutAPinTheToolTakesOver) {
    SetText("LAVSplitter.enabledPins", L"");
    Open();
    ToolGives(kSubRipText);
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0));
    EXPECT_EQ(Lines{L"LAVSplitter.Enable(1, 1)"}, FilterCalls());
    EXPECT_EQ(nullptr, engine->subtitleGrabber);
    EXPECT_EQ(nullptr, engine->subtitleGrabberCallback);
    ExpectToolTookOver(0);
}

TEST_F(GrabberCalls, WhenBothFailNothingIsLoaded) {
    SetText("LAVSplitter.enabledPins", L"");
    Open();
    EXPECT_FALSE(engine->LoadEmbeddedSubtitle(0));
    EXPECT_EQ(1U, ToolStarts().size());
    ExpectNothingLoaded();
}

TEST_F(GrabberCalls, TheFirstFreePinThatOffersSubtitlesIsTaken) {
    // One of another kind, one that offers subtitles second, and one more that would do.
    SetText("LAVSplitter.enabledPins", L"Sound:audio;Second:audio,subtitle;Third:subtitle");
    Open();
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0));
    EXPECT_EQ(Lines{L"LAVSplitter.Second connected to Subtitle Grabber"}, CallsOf(L"LAVSplitter.Second"));
    EXPECT_EQ(Lines{}, CallsOf(L"LAVSplitter.Third"));
}

TEST_F(GrabberCalls, APinOfTheOtherTextTypeIsChosenAndRefused) {
    // The grabber is told of the one type alone, and refuses it.
    SetText("LAVSplitter.enabledPins", L"Text:text;Subtitle:subtitle");
    Open();
    ToolGives(kSubRipText);
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0));
    EXPECT_EQ(Join({{L"LAVSplitter.Enable(1, 1)"}, kGrabberPrepared, kSinkAdded}), FilterCalls());
    ExpectToolTookOver(0);
}

TEST_F(GrabberCalls, APinThatWasThereBeforeIsTakenToo) {
    SetText("LAVSplitter.enabledPins", L"");
    SetText("LAVSplitter.pins", (std::wstring(kFilmPins) + L";Subtitle:subtitle").c_str());
    Open();
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0));
    EXPECT_EQ(kGrabberConnected, CallsOf(L"LAVSplitter.Subtitle"));
}

TEST_F(GrabberCalls, WhetherEnablingSucceedsDoesNotMatter) {
    Open();
    SetNumber("LAVSplitter.enable", E_FAIL);
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0));
    ExpectLoaded(0);
}

TEST_F(GrabberCalls, PinsThatCanNotBeListedAreNone) {
    for (const char* key :
         {"LAVSplitter.enumPins", "LAVSplitter.pinsAreNull", "LAVSplitter.pinIsNull",
          "LAVSplitter.enumMediaTypes", "LAVSplitter.typesAreNull", "LAVSplitter.typeIsNull"}) {
        engine = std::make_unique<PlayerEngine>(settings);
        Open();
        SetNumber(key, E_FAIL);
        EXPECT_FALSE(engine->LoadEmbeddedSubtitle(0)) << key;
        EXPECT_EQ(nullptr, engine->subtitleGrabber) << key;
        SetNumber(key, 0);
    }
}

TEST_F(GrabberCalls, EndlessTypesWithoutSubtitlesEnd) {
    SetText("LAVSplitter.enabledPins", L"Sound:audio");
    Open();
    SetNumber("LAVSplitter.typesAreEndless", 1);
    EXPECT_FALSE(engine->LoadEmbeddedSubtitle(0));
    EXPECT_EQ(nullptr, engine->subtitleGrabber);
}

TEST_F(GrabberCalls, AGrabberThatCanNotBeMadeIsNotKept) {
    Open();
    ToolGives(kSubRipText);
    SetNumber("SampleGrabber.create", E_FAIL);
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0));
    EXPECT_EQ(Lines{L"LAVSplitter.Enable(1, 1)"}, FilterCalls());
    EXPECT_EQ(nullptr, engine->subtitleGrabber);
    ExpectToolTookOver(0);
}

TEST_F(GrabberCalls, AGrabberThatDoesNotJoinIsNotKept) {
    Open();
    ToolGives(kSubRipText);
    const long before = RecorderLiving();
    SetNumber("SampleGrabber.join", E_FAIL);
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0));
    EXPECT_EQ((Lines{L"LAVSplitter.Enable(1, 1)", L"SampleGrabber.joins the graph as Subtitle Grabber"}),
              FilterCalls());
    EXPECT_EQ(nullptr, engine->subtitleGrabber);
    EXPECT_EQ(before, RecorderLiving());
    ExpectToolTookOver(0);
}

TEST_F(GrabberCalls, AFilterThatGrabsNothingIsOfNoUse) {
    Open();
    ToolGives(kSubRipText);
    SetNumber("SampleGrabber.noGrabber", 1);
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0));
    EXPECT_EQ((Lines{L"LAVSplitter.Enable(1, 1)", L"SampleGrabber.joins the graph as Subtitle Grabber"}),
              FilterCalls());
    EXPECT_NE(nullptr, engine->subtitleGrabber) << "it stays where it is";
    EXPECT_EQ(nullptr, engine->subtitleGrabberCallback);
    ExpectToolTookOver(0);
}

TEST_F(GrabberCalls, WhatTheGrabberAnswersToItsSettingsDoesNotMatter) {
    Open();
    SetNumber("SampleGrabber.setMediaType", E_FAIL);
    SetNumber("SampleGrabber.setCallback", E_FAIL);
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0));
    ExpectLoaded(0);
}

TEST_F(GrabberCalls, WithoutSinkTheGrabberIsTheEnd) {
    for (const char* key : {"NullRenderer.create", "NullRenderer.join"}) {
        engine = std::make_unique<PlayerEngine>(settings);
        Open();
        SetNumber(key, E_FAIL);
        const long before = RecorderLiving();
        EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0)) << key;
        EXPECT_EQ(before + 1, RecorderLiving()) << key;
        EXPECT_EQ(kGrabberConnected, CallsOf(L"LAVSplitter.Subtitle")) << key;
        EXPECT_EQ(Lines{}, CallsOf(L"SampleGrabber.Out")) << key;
        ExpectLoaded(0);
        SetNumber(key, 0);
    }
}

TEST_F(GrabberCalls, WhetherTheSinkConnectsDoesNotMatter) {
    Open();
    SetNumber("NullRenderer.refuse", E_FAIL);
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0));
    EXPECT_EQ(kGrabberConnected, CallsOf(L"LAVSplitter.Subtitle"));
    EXPECT_EQ(Lines{}, CallsOf(L"SampleGrabber.Out"));
    ExpectLoaded(0);
}

TEST_F(GrabberCalls, AGrabberThatDoesNotConnectLeavesTheTrackToTheTool) {
    Open();
    ToolGives(kSubRipText);
    SetNumber("SampleGrabber.refuse", E_FAIL);
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0));
    Lines begun = FilterCalls();
    // The graph goes on and tries what else is in it, which leads nowhere.
    begun.resize(5);
    EXPECT_EQ(Join({{L"LAVSplitter.Enable(1, 1)"}, kGrabberPrepared, kSinkAdded}), begun);
    EXPECT_EQ(L"Subtitle", FreeSplitterPin());
    ExpectToolTookOver(0);
}

TEST_F(GrabberCalls, AGrabberWithoutInputLeavesTheTrackToTheTool) {
    Open();
    ToolGives(kSubRipText);
    SetNumber("SampleGrabber.noInput", 1);
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0));
    ExpectToolTookOver(0);
}

TEST_F(GrabberCalls, TheCallbackIsLinkedToAProviderThatIsThere) {
    Open();
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0));
    EXPECT_FALSE(engine->subtitleGrabberCallback->providerLinked) << "the manager came afterwards";
    EXPECT_EQ(nullptr, engine->subtitleGrabberCallback->providerTarget);
    Open();
    ToolGives(kSubRipText);
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0));
    EXPECT_TRUE(engine->subtitleGrabberCallback->providerLinked);
    EXPECT_EQ(engine->subtitleManager->Provider(), engine->subtitleGrabberCallback->providerTarget);
    EXPECT_NE(nullptr, engine->subtitleGrabberCallback->providerTarget);
}

TEST_F(GrabberCalls, AnotherTrackOfTheFileFindsThePinTaken) {
    Open();
    ToolGives(kSubRipText);
    ASSERT_TRUE(engine->LoadEmbeddedSubtitle(1));
    ClearCalls();
    settings.writes.clear();
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(0));
    EXPECT_EQ(Lines{L"LAVSplitter.Enable(1, 1)"}, FilterCalls());
    ExpectToolTookOver(0);
}

TEST_F(GrabberCalls, AnotherFileDoesNotGetTheGrabberIntoItsGraph) {
    Open();
    ASSERT_TRUE(engine->LoadEmbeddedSubtitle(0));
    const IBaseFilter* const grabber = engine->subtitleGrabber.Get();
    const CSubtitleGrabberCallback* const callback = engine->subtitleGrabberCallback.Get();
    FakeSample sample(0, 1, {1});
    EXPECT_EQ(S_OK, engine->subtitleGrabberCallback->SampleCB(0.0, &sample));
    engine->CloseGraph();
    EXPECT_EQ(grabber, engine->subtitleGrabber.Get());
    EXPECT_EQ(callback, engine->subtitleGrabberCallback.Get());
    EXPECT_EQ(1U, callback->samples.size()) << "held for the life of the callback";
    Open();
    ToolGives(kAdvancedText);
    EXPECT_TRUE(engine->LoadEmbeddedSubtitle(2));
    EXPECT_EQ(
        (Lines{L"LAVSplitter.Enable(4, 1)", L"SampleGrabber.SetMediaType(subtitle and zeros)",
               L"SampleGrabber.SetCallback(callback, 0)", L"NullRenderer.joins the graph as Subtitle Null"}),
        FilterCalls());
    EXPECT_EQ(grabber, engine->subtitleGrabber.Get());
    EXPECT_EQ(callback, engine->subtitleGrabberCallback.Get());
    EXPECT_EQ(L"Subtitle", FreeSplitterPin());
    EXPECT_TRUE(callback->samples.empty()) << "cleared for the new stream";
    EXPECT_TRUE(callback->isAss);
    EXPECT_EQ(Lines{Command(2, L".ass")}, ToolStarts());
    ExpectLoaded(2);
}

TEST_F(GrabberCalls, TheEngineGivesBothBackAtItsEnd) {
    Open();
    ASSERT_TRUE(engine->LoadEmbeddedSubtitle(0));
    const ComPtr<CSubtitleGrabberCallback> callback = engine->subtitleGrabberCallback;
    engine->Shutdown();
    EXPECT_EQ(1, RecorderLiving()) << "the grabber itself";
    EXPECT_NE(nullptr, engine->subtitleGrabber);
    EXPECT_NE(nullptr, engine->subtitleGrabberCallback);
    engine.reset();
    EXPECT_EQ(0, RecorderLiving());
    EXPECT_EQ(2U, callback.Get()->AddRef());
    EXPECT_EQ(1U, callback.Get()->Release());
}

} // namespace
} // namespace brindlecast::testing
