#include "tests/graph/graph_fixture.h"

namespace brindlecast::testing {
namespace {

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

TEST_F(RendererControl, WithoutRendererTheHostItselfIsRepainted) {
    ShowWindow(host, SW_SHOWNOACTIVATE);
    ValidateRect(host, nullptr);
    engine->RedrawVideo();
    EXPECT_EQ(Lines{}, Calls());
    EXPECT_FALSE(GetUpdateRect(host, nullptr, FALSE)) << "the update has been painted already";
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

TEST_F(RendererControl, ANewFilePlaysUnrotatedWhileTheNumberStays) {
    Open();
    engine->SetRotation(90);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(90U, engine->rotation);
    EXPECT_EQ((Lines{L"MpcVideoRenderer64.Flt_SetInt(rotation, 90)"}),
              CallsOf(L"MpcVideoRenderer64.Flt_SetInt(rotation"));
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

TEST_F(RendererControl, ARotationDropsTheHalfTurnOfTheFlip) {
    Open();
    EXPECT_TRUE(engine->SetFlipVertical(true));
    ClearCalls();
    EXPECT_TRUE(engine->SetRotation(90));
    EXPECT_EQ((Lines{L"MpcVideoRenderer64.Flt_SetInt(rotation, 90)"}),
              CallsOf(L"MpcVideoRenderer64.Flt_SetInt"));
}

} // namespace
} // namespace brindlecast::testing
