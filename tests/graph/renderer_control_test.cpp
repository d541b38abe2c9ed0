#include "tests/graph/graph_fixture.h"

namespace brindlecast::testing {
namespace {

// Answers the painting of its window as an owner of a picture would, and records it among the calls.
LRESULT CALLBACK RecordPainting(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_PAINT) {
        PAINTSTRUCT paint{};
        BeginPaint(window, &paint);
        EndPaint(window, &paint);
        RecorderAdd(kRecordCall, paint.fErase != FALSE ? L"host paints and erases" : L"host paints");
        return 0;
    }
    if (message == WM_ERASEBKGND) {
        RecorderAdd(kRecordCall, L"host erases");
        return 1;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

class RendererControl : public GraphTest {
protected:
    void Open() {
        ASSERT_TRUE(engine->OpenFile(kFilm));
        ClearCalls();
    }
    static Lines Fitted() {
        return {L"MpcVideoRenderer64.SetDestinationPosition(0, 218, 1000, 562)",
                L"MpcVideoRenderer64.SetWindowPosition(0, 0, 1000, 1000)"};
    }
    // A host on the screen with nothing left to paint, whose painting is recorded from now on.
    void ShowRecordingHost() {
        ShowWindow(host, SW_SHOWNOACTIVATE);
        UpdateWindow(host);
        HandleMessages();
        SetWindowLongPtrW(host, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&RecordPainting));
        RedrawWindow(host, nullptr, nullptr, RDW_VALIDATE | RDW_NOERASE | RDW_NOINTERNALPAINT);
        HandleMessages();
        ClearCalls();
    }
    static void HandleMessages() {
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            DispatchMessageW(&message);
        }
    }
    static Lines StartOptions() {
        return {L"MpcVideoRenderer64.Flt_SetBool(useD3D11, 1)",
                L"MpcVideoRenderer64.Flt_SetInt(presentationType, 0)",
                L"MpcVideoRenderer64.Flt_SetBool(vsync, 0)",
                L"MpcVideoRenderer64.Flt_SetBool(vBlankBeforePresent, 0)",
                L"MpcVideoRenderer64.Flt_SetBool(adjustPresentTime, 0)",
                L"MpcVideoRenderer64.Flt_SetBool(vpScaling, 0)",
                L"MpcVideoRenderer64.Flt_SetBool(lessRedraws, 1)",
                L"MpcVideoRenderer64.Flt_SetBool(d3dFullscreenControl, 0)",
                L"MpcVideoRenderer64.Flt_SetInt(chromaUpsampling, 0)",
                L"MpcVideoRenderer64.Flt_SetInt(upscaler, 0)",
                L"MpcVideoRenderer64.Flt_SetInt(downscaler, 0)"};
    }
    static Lines Redrawn() { return Join({Fitted(), {L"MpcVideoRenderer64.Flt_SetBool(cmd_redraw, 1)"}}); }
};

TEST_F(RendererControl, WithoutConfigurationTheCallbackIsStillHandedOver) {
    SetNumber("MpcVideoRenderer64.noConfig", 1);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(Lines{}, CallsOf(L"MpcVideoRenderer64.Flt"));
    EXPECT_EQ((Lines{L"MpcVideoRenderer64.SetCallback11(callback)"}),
              CallsOf(L"MpcVideoRenderer64.SetCallback11"));
    EXPECT_EQ(nullptr, engine->rendererConfig);
    EXPECT_NE(nullptr, engine->subtitleCallback);
}

TEST_F(RendererControl, ARendererWithoutSubtitlesHasNoCallback) {
    SetNumber("MpcVideoRenderer64.noSubtitles", 1);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(nullptr, engine->subtitleCallback);
}

TEST_F(RendererControl, ARefusedCallbackIsReleased) {
    SetNumber("MpcVideoRenderer64.setCallback", E_FAIL);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(nullptr, engine->subtitleCallback);
}

TEST_F(RendererControl, TheCallbackGoesWithItsGraph) {
    ASSERT_TRUE(engine->OpenFile(kFilm));
    ComPtr<CMPCVR11SubtitleCallback> callback = engine->subtitleCallback;
    engine->CloseGraph();
    callback->AddRef();
    EXPECT_EQ(1U, callback->Release()) << "the test's own reference is the last";
}

TEST_F(RendererControl, RejectedOptionsChangeNothing) {
    SetNumber("MpcVideoRenderer64.setBool", E_INVALIDARG);
    SetNumber("MpcVideoRenderer64.setInt", E_INVALIDARG);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    ExpectLines(Join({{L"> OpenFile with HWAccel=5"}, expected::FilmBuild()}), Calls());
}

TEST_F(RendererControl, RenderRectNeedsAVideoWindow) {
    EXPECT_FALSE(engine->SetRenderRect(0, 0, 100, 100));
    EXPECT_EQ(Lines{}, Calls());
}

TEST_F(RendererControl, RenderRectFitsThePicture) {
    Open();
    SetNumber("MpcVideoRenderer64.width", 1000);
    SetNumber("MpcVideoRenderer64.height", 1000);
    EXPECT_TRUE(engine->SetRenderRect(7, 9, 1920, 1080));
    ExpectLines({L"MpcVideoRenderer64.SetDestinationPosition(420, 0, 1080, 1080)",
                 L"MpcVideoRenderer64.SetWindowPosition(0, 0, 1920, 1080)"},
                Calls());
}

TEST_F(RendererControl, WithoutVideoSizeThePictureIsEmpty) {
    Open();
    SetNumber("MpcVideoRenderer64.width", 0);
    EXPECT_TRUE(engine->SetRenderRect(0, 0, 1920, 1080));
    ExpectLines({L"MpcVideoRenderer64.SetDestinationPosition(0, 0, 0, 0)",
                 L"MpcVideoRenderer64.SetWindowPosition(0, 0, 1920, 1080)"},
                Calls());
}

TEST_F(RendererControl, WithoutPictureTheWindowAloneIsPlaced) {
    Open();
    engine->basicVideo.Reset();
    EXPECT_TRUE(engine->SetRenderRect(0, 0, 1920, 1080));
    ExpectLines({L"MpcVideoRenderer64.SetWindowPosition(0, 0, 1920, 1080)"}, Calls());
}

TEST_F(RendererControl, ARefusedWindowPositionIsReported) {
    Open();
    SetNumber("MpcVideoRenderer64.windowPosition", E_FAIL);
    EXPECT_FALSE(engine->SetRenderRect(0, 0, 1920, 1080));
}

TEST_F(RendererControl, RedrawFitsAndRepaints) {
    Open();
    engine->RedrawVideo();
    ExpectLines(Redrawn(), Calls());
}

TEST_F(RendererControl, RedrawDoesNothingInAHostWithoutHeight) {
    Open();
    SetWindowPos(host, nullptr, 0, 0, 500, 0, SWP_NOZORDER | SWP_NOACTIVATE);
    engine->RedrawVideo();
    EXPECT_EQ(Lines{}, Calls());
    engine->videoHost = nullptr;
    engine->RedrawVideo();
    EXPECT_EQ(Lines{}, Calls());
}

TEST_F(RendererControl, RedrawDoesNothingInAHostThatIsGone) {
    Open();
    DestroyWindow(host);
    engine->RedrawVideo();
    EXPECT_EQ(Lines{}, Calls());
}

TEST_F(RendererControl, WithoutRendererTheHostItselfIsRepaintedAtOnce) {
    ShowRecordingHost();
    engine->RedrawVideo();
    ExpectLines({L"host paints"}, Calls());
    HandleMessages();
    ExpectLines({L"host paints"}, Calls());
}

TEST_F(RendererControl, WithoutConfigurationThePictureIsFittedAndTheHostRepaintedOnceWithoutErasing) {
    SetNumber("MpcVideoRenderer64.noConfig", 1);
    Open();
    ShowRecordingHost();
    engine->RedrawVideo();
    ExpectLines(Join({Fitted(), {L"host paints"}}), Calls());
    HandleMessages();
    ExpectLines(Join({Fitted(), {L"host paints"}}), Calls());
}

TEST_F(RendererControl, ARendererThatRedrawsLeavesTheHostAlone) {
    Open();
    ShowRecordingHost();
    engine->RedrawVideo();
    HandleMessages();
    ExpectLines(Redrawn(), Calls());
}

TEST_F(RendererControl, RotationIsSentAndRedrawn) {
    Open();
    EXPECT_TRUE(engine->SetRotation(-90));
    EXPECT_EQ(270U, engine->rotation);
    ExpectLines(Join({{L"MpcVideoRenderer64.Flt_SetInt(rotation, 270)"}, Redrawn()}), Calls());
}

TEST_F(RendererControl, TheCurrentRotationIsNotSentAgain) {
    Open();
    EXPECT_TRUE(engine->SetRotation(450));
    ClearCalls();
    EXPECT_TRUE(engine->SetRotation(90));
    EXPECT_TRUE(engine->SetRotation(91));
    EXPECT_EQ(Lines{}, Calls());
}

TEST_F(RendererControl, RotationWithoutRendererIsRemembered) {
    EXPECT_TRUE(engine->SetRotation(0));
    EXPECT_FALSE(engine->SetRotation(180));
    EXPECT_EQ(180U, engine->rotation);
    EXPECT_TRUE(engine->SetRotation(0));
}

TEST_F(RendererControl, ARefusedRotationIsRememberedAndNotRedrawn) {
    Open();
    SetNumber("MpcVideoRenderer64.setInt", E_FAIL);
    EXPECT_FALSE(engine->SetRotation(180));
    EXPECT_EQ(180U, engine->rotation);
    ExpectLines({L"MpcVideoRenderer64.Flt_SetInt(rotation, 180)"}, Calls());
}

TEST_F(RendererControl, ARefusedWayBackToUprightIsNoFailure) {
    Open();
    EXPECT_TRUE(engine->SetRotation(90));
    SetNumber("MpcVideoRenderer64.setInt", E_FAIL);
    ClearCalls();
    EXPECT_TRUE(engine->SetRotation(0));
    EXPECT_EQ(0U, engine->rotation);
    ExpectLines({L"MpcVideoRenderer64.Flt_SetInt(rotation, 0)"}, Calls());
}

TEST_F(RendererControl, WithoutConfigurationTurnsAreRememberedAlone) {
    SetNumber("MpcVideoRenderer64.noConfig", 1);
    Open();
    EXPECT_FALSE(engine->SetRotation(180));
    EXPECT_FALSE(engine->SetFlipHorizontal(true));
    EXPECT_FALSE(engine->SetFlipVertical(true));
    EXPECT_EQ(180U, engine->rotation);
    EXPECT_TRUE(engine->flipHorizontal);
    EXPECT_TRUE(engine->flipVertical);
    EXPECT_EQ(Lines{}, Calls());
}

TEST_F(RendererControl, ANewFilePlaysUprightWhileTheTurnsStay) {
    Open();
    engine->SetRotation(90);
    engine->SetFlipHorizontal(true);
    engine->SetFlipVertical(true);
    engine->CloseGraph();
    EXPECT_EQ(90U, engine->rotation);
    EXPECT_TRUE(engine->flipHorizontal);
    EXPECT_TRUE(engine->flipVertical);
    ClearCalls();
    ASSERT_TRUE(engine->OpenFile(kFilm));
    ExpectLines(StartOptions(), CallsOf(L"MpcVideoRenderer64.Flt_"));
    EXPECT_EQ(90U, engine->rotation);
    EXPECT_TRUE(engine->flipHorizontal);
    EXPECT_TRUE(engine->flipVertical);
}

TEST_F(RendererControl, InANewFileTheStoredRotationIsTheCurrentOne) {
    Open();
    EXPECT_TRUE(engine->SetRotation(90));
    Open();
    EXPECT_TRUE(engine->SetRotation(90));
    EXPECT_EQ(Lines{}, Calls());
    EXPECT_TRUE(engine->SetRotation(180));
    EXPECT_EQ((Lines{L"MpcVideoRenderer64.Flt_SetInt(rotation, 180)"}),
              CallsOf(L"MpcVideoRenderer64.Flt_SetInt"));
}

TEST_F(RendererControl, InANewFileTheNextToggleGoesByTheStoredFlips) {
    Open();
    EXPECT_TRUE(engine->SetRotation(90));
    EXPECT_TRUE(engine->SetFlipHorizontal(true));
    Open();
    EXPECT_TRUE(engine->SetFlipVertical(true));
    ExpectLines({L"MpcVideoRenderer64.Flt_SetInt(rotation, 270)", L"MpcVideoRenderer64.Flt_SetBool(flip, 0)"},
                Calls());
    Open();
    EXPECT_TRUE(engine->SetFlipHorizontal(false));
    ExpectLines({L"MpcVideoRenderer64.Flt_SetBool(flip, 1)"}, Calls());
}

TEST_F(RendererControl, HorizontalFlip) {
    EXPECT_FALSE(engine->SetFlipHorizontal(true));
    EXPECT_TRUE(engine->flipHorizontal);
    Open();
    EXPECT_TRUE(engine->SetFlipHorizontal(true));
    EXPECT_TRUE(engine->SetFlipHorizontal(false));
    ExpectLines({L"MpcVideoRenderer64.Flt_SetBool(flip, 1)", L"MpcVideoRenderer64.Flt_SetBool(flip, 0)"},
                Calls());
}

TEST_F(RendererControl, VerticalFlipIsHalfATurnAndAFlip) {
    EXPECT_FALSE(engine->SetFlipVertical(true));
    EXPECT_TRUE(engine->flipVertical);
    Open();
    engine->rotation = 270;
    EXPECT_TRUE(engine->SetFlipVertical(true));
    EXPECT_TRUE(engine->SetFlipVertical(false));
    ExpectLines({L"MpcVideoRenderer64.Flt_SetInt(rotation, 90)", L"MpcVideoRenderer64.Flt_SetBool(flip, 1)",
                 L"MpcVideoRenderer64.Flt_SetInt(rotation, 270)", L"MpcVideoRenderer64.Flt_SetBool(flip, 0)"},
                Calls());
}

TEST_F(RendererControl, BothFlipsAreAHalfTurn) {
    Open();
    EXPECT_TRUE(engine->SetFlipHorizontal(true));
    EXPECT_TRUE(engine->SetFlipVertical(true));
    ExpectLines({L"MpcVideoRenderer64.Flt_SetBool(flip, 1)", L"MpcVideoRenderer64.Flt_SetInt(rotation, 180)",
                 L"MpcVideoRenderer64.Flt_SetBool(flip, 0)"},
                Calls());
    // In the other order the flag alone is sent.
    ClearCalls();
    EXPECT_TRUE(engine->SetFlipHorizontal(true));
    ExpectLines({L"MpcVideoRenderer64.Flt_SetBool(flip, 0)"}, Calls());
}

TEST_F(RendererControl, BothFlipsTurnOnFromTheRotation) {
    Open();
    EXPECT_TRUE(engine->SetRotation(90));
    EXPECT_TRUE(engine->SetFlipHorizontal(true));
    ClearCalls();
    EXPECT_TRUE(engine->SetFlipVertical(true));
    ExpectLines({L"MpcVideoRenderer64.Flt_SetInt(rotation, 270)", L"MpcVideoRenderer64.Flt_SetBool(flip, 0)"},
                Calls());
    EXPECT_EQ(90U, engine->rotation);
    ClearCalls();
    EXPECT_TRUE(engine->SetFlipVertical(false));
    ExpectLines({L"MpcVideoRenderer64.Flt_SetInt(rotation, 90)", L"MpcVideoRenderer64.Flt_SetBool(flip, 1)"},
                Calls());
}

TEST_F(RendererControl, RefusedFlipsAreNotNoticed) {
    Open();
    SetNumber("MpcVideoRenderer64.setInt", E_FAIL);
    SetNumber("MpcVideoRenderer64.setBool", E_FAIL);
    EXPECT_TRUE(engine->SetFlipHorizontal(true));
    EXPECT_TRUE(engine->SetFlipVertical(true));
    ExpectLines({L"MpcVideoRenderer64.Flt_SetBool(flip, 1)", L"MpcVideoRenderer64.Flt_SetInt(rotation, 180)",
                 L"MpcVideoRenderer64.Flt_SetBool(flip, 0)"},
                Calls());
}

TEST_F(RendererControl, ARotationDropsTheHalfTurnUntilTheNextToggle) {
    Open();
    EXPECT_TRUE(engine->SetFlipVertical(true));
    ClearCalls();
    EXPECT_TRUE(engine->SetRotation(90));
    ExpectLines(Join({{L"MpcVideoRenderer64.Flt_SetInt(rotation, 90)"}, Redrawn()}), Calls());
    ClearCalls();
    EXPECT_TRUE(engine->SetFlipVertical(true));
    ExpectLines({L"MpcVideoRenderer64.Flt_SetInt(rotation, 270)", L"MpcVideoRenderer64.Flt_SetBool(flip, 1)"},
                Calls());
}

} // namespace
} // namespace brindlecast::testing
