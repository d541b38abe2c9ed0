#include "tests/unit/windows/video_window_fixture.h"

namespace brindlecast::testing {
namespace {

// The renderer's own window, which lies over the video window and takes what is meant for it.
class VideoWindowRendererTest : public VideoWindowTest {
protected:
    static constexpr Rect kAll{0, 0, 400, 300};

    void SetUp() override {
        VideoWindowTest::SetUp();
        // All of the owner, so that every edge and corner can be reached.
        MoveVideo(kAll);
    }
    [[nodiscard]] std::unique_ptr<RecordingWindow> MakeChild() const {
        auto child = std::make_unique<RecordingWindow>(WS_CHILD | WS_VISIBLE, kAll, video.Handle());
        EXPECT_NE(child->Handle(), nullptr);
        return child;
    }
    static LRESULT HitAt(const RecordingWindow& child, int x, int y) {
        return SendMessageW(child.Handle(), WM_NCHITTEST, 0, PackedPoint(x, y));
    }
    // Whether the frame of the owner can be taken hold of over that window.
    static bool FrameLiesOver(const RecordingWindow& child) {
        return HitAt(child, kOwnerPlace.left, 300) == HTTRANSPARENT;
    }
    // With the cursor at that point; the answer goes into `answer`.
    HCURSOR CursorOver(const RecordingWindow& child, POINT point, LRESULT& answer) const {
        toldCursor = point;
        return CursorSetBy([&] {
            answer = SendMessageW(child.Handle(), WM_SETCURSOR, reinterpret_cast<WPARAM>(child.Handle()),
                                  MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
        });
    }
};

TEST_F(VideoWindowRendererTest, HitsNearTheOwnersOuterEdgeFallThrough) {
    const auto child = MakeChild();
    video.AttachRenderer();
    for (const auto& [x, y] : {std::pair(200, 300), std::pair(205, 300), std::pair(595, 300),
                               std::pair(599, 300), std::pair(400, 150), std::pair(400, 155),
                               std::pair(400, 445), std::pair(400, 449), std::pair(205, 155)}) {
        EXPECT_EQ(HitAt(*child, x, y), HTTRANSPARENT) << x << ", " << y;
    }
    EXPECT_TRUE(child->Take().empty()) << "it must not be asked";
    for (const auto& [x, y] :
         {std::pair(206, 300), std::pair(594, 300), std::pair(400, 156), std::pair(400, 444)}) {
        EXPECT_EQ(HitAt(*child, x, y), RecordingWindow::kAnswer) << x << ", " << y;
        EXPECT_EQ(child->Take(), (std::vector<Received>{{WM_NCHITTEST, 0, PackedPoint(x, y)}}));
    }
}

TEST_F(VideoWindowRendererTest, TheCursorTellsTheSideOrCornerUnderIt) {
    const struct {
        POINT point;
        const wchar_t* cursor;
    } rows[] = {
        {{205, 300}, IDC_SIZEWE},   {{595, 300}, IDC_SIZEWE},   {{400, 155}, IDC_SIZENS},
        {{400, 445}, IDC_SIZENS},   {{200, 150}, IDC_SIZENWSE}, {{599, 449}, IDC_SIZENWSE},
        {{599, 150}, IDC_SIZENESW}, {{200, 449}, IDC_SIZENESW},
    };
    const auto child = MakeChild();
    video.AttachRenderer();
    for (const auto& row : rows) {
        LRESULT answer = 0;
        EXPECT_EQ(CursorOver(*child, row.point, answer), SystemCursor(row.cursor))
            << row.point.x << ", " << row.point.y;
        EXPECT_EQ(answer, 1);
    }
    EXPECT_TRUE(child->Take().empty()) << "it must not be asked";
}

TEST_F(VideoWindowRendererTest, InsideTheCursorIsTheRenderersAffair) {
    const auto child = MakeChild();
    video.AttachRenderer();
    for (const POINT point : {POINT{206, 300}, POINT{594, 444}, POINT{400, 156}}) {
        LRESULT answer = 0;
        EXPECT_EQ(CursorOver(*child, point, answer), nullptr);
        EXPECT_EQ(answer, RecordingWindow::kAnswer);
        EXPECT_EQ(child->Take().size(), 1U);
    }
}

TEST_F(VideoWindowRendererTest, AllElseReachesTheRenderer) {
    const auto child = MakeChild();
    video.AttachRenderer();
    for (const UINT message :
         {static_cast<UINT>(WM_LBUTTONDOWN), static_cast<UINT>(WM_KEYDOWN), static_cast<UINT>(WM_USER) + 7}) {
        EXPECT_EQ(SendMessageW(child->Handle(), message, 5, 6), RecordingWindow::kAnswer);
        EXPECT_EQ(child->Take(), (std::vector<Received>{{message, 5, 6}}));
    }
    EXPECT_TRUE(owner.Take().empty());
}

TEST_F(VideoWindowRendererTest, OnlyTheFirstChildIsTaken) {
    const auto one = MakeChild();
    const auto other = MakeChild();
    for (const auto* first : {&one, &other}) {
        const auto& second = first == &one ? other : one;
        SetWindowPos((*first)->Handle(), HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
        ASSERT_EQ(GetWindow(video.Handle(), GW_CHILD), (*first)->Handle());
        video.AttachRenderer();
        EXPECT_TRUE(FrameLiesOver(**first));
        EXPECT_FALSE(FrameLiesOver(*second));
        video.DetachRenderer();
    }
}

TEST_F(VideoWindowRendererTest, WithoutAChildNothingIsAttached) {
    video.AttachRenderer();
    video.DetachRenderer();
    const auto late = MakeChild();
    EXPECT_FALSE(FrameLiesOver(*late));
    EXPECT_EQ(Send(WM_NCHITTEST, 0, PackedPoint(400, 300)), HTCLIENT) << "nor the window itself";
}

TEST_F(VideoWindowRendererTest, ADetachedWindowIsItsOwnAgain) {
    const auto child = MakeChild();
    video.AttachRenderer();
    ASSERT_TRUE(FrameLiesOver(*child));
    video.DetachRenderer();
    EXPECT_FALSE(FrameLiesOver(*child));
    LRESULT answer = 0;
    EXPECT_EQ(CursorOver(*child, {200, 300}, answer), nullptr);
    EXPECT_EQ(answer, RecordingWindow::kAnswer);
    video.DetachRenderer();
    video.AttachRenderer();
    EXPECT_TRUE(FrameLiesOver(*child));
}

TEST_F(VideoWindowRendererTest, AWindowThatGoesByItselfMakesRoomForTheNext) {
    for (int file = 0; file < 3; ++file) {
        const auto child = MakeChild();
        video.AttachRenderer();
        EXPECT_TRUE(FrameLiesOver(*child));
        child->Destroy();
        ASSERT_EQ(GetWindow(video.Handle(), GW_CHILD), nullptr);
        if (file == 1) {
            video.DetachRenderer();
        }
    }
}

TEST_F(VideoWindowRendererTest, AnAttachedWindowMayGoWithTheOwner) {
    const auto child = MakeChild();
    video.AttachRenderer();
    owner.Destroy();
    EXPECT_EQ(child->Handle(), nullptr);
    EXPECT_EQ(video.Handle(), nullptr);
    video.DetachRenderer();
    video.AttachRenderer();
    EXPECT_EQ(video.Handle(), nullptr);
}

} // namespace
} // namespace brindlecast::testing
