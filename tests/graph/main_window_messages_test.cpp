#include "app/overlay.h"
#include "tests/graph/main_window_list_fixture.h"

#include <climits>

namespace brindlecast::testing {
namespace {

using Names = std::vector<std::wstring>;

// What the main window answers and does when its children ask it by message.
class MainWindowMessages : public MainWindowListTest {
protected:
    void PlaceAt(long milliseconds) { SetNumber("MpcVideoRenderer64.positionMilliseconds", milliseconds); }
};

// Asked with room for so many characters of a longer buffer; what the buffer holds then.
std::wstring CurrentFile(MainWindow& window, LPARAM capacity) {
    std::wstring buffer(24, L'#');
    EXPECT_EQ(0, SendMessageW(window.Handle(), kMessageCurrentFile, reinterpret_cast<WPARAM>(buffer.data()),
                              capacity));
    return buffer;
}

TEST_F(MainWindowMessages, TheCurrentFileIsCutToTheBuffer) {
    const std::wstring untouched(24, L'#');
    EXPECT_EQ(untouched, CurrentFile(*window, 24)) << "nothing is open";
    Drop(L"C:\\films\\film.mkv"); // 17 characters
    EXPECT_EQ(L"C:\\films\\film.mkv" + std::wstring(1, L'\0') + L"######", CurrentFile(*window, 24));
    EXPECT_EQ(L"C:\\films\\film.mkv" + std::wstring(1, L'\0') + L"######", CurrentFile(*window, 18));
    EXPECT_EQ(L"C:\\films\\film.mk" + std::wstring(1, L'\0') + L"#######", CurrentFile(*window, 17));
    EXPECT_EQ(L"C" + std::wstring(1, L'\0') + std::wstring(22, L'#'), CurrentFile(*window, 2));
    EXPECT_EQ(std::wstring(1, L'\0') + std::wstring(23, L'#'), CurrentFile(*window, 1));
    EXPECT_EQ(untouched, CurrentFile(*window, 0));
    EXPECT_EQ(untouched, CurrentFile(*window, -1));
    EXPECT_EQ(0, Send(kMessageCurrentFile, 0, 24));
    Send(kMessageStop);
    EXPECT_EQ(untouched, CurrentFile(*window, 24));
}

TEST_F(MainWindowMessages, ThePositionIsAnsweredInWholeMilliseconds) {
    EXPECT_EQ(0, Send(kMessageCurrentPosition));
    Drop(kFilm);
    for (const long place : {0L, 250L, 4'500L, 3'600'000L}) {
        PlaceAt(place);
        EXPECT_EQ(place, Send(kMessageCurrentPosition));
    }
}

TEST_F(MainWindowMessages, NumbersWithoutAMeaningAreLeftToTheSystem) {
    Drop(kFilm);
    // The source is told last.
    ASSERT_TRUE(HandleMessagesUntil([] { return CountOf(StatesOf(L"LAVSplitter"), L"Run") > 0; }));
    PlaceAt(4'500);
    ASSERT_EQ(L"film.mkv", CurrentOverlay()->text);
    ClearCalls();
    std::wstring buffer(4, L'#');
    for (const UINT number : {1242U, 1243U, 1247U, 1248U, 1249U, 1250U, 1251U, 1252U, 1253U, 1256U}) {
        SCOPED_TRACE(number);
        const auto wParam = reinterpret_cast<WPARAM>(buffer.data());
        EXPECT_EQ(DefWindowProcW(window->Handle(), number, wParam, 4), Send(number, wParam, 4));
        EXPECT_EQ(L"####", buffer);
        EXPECT_TRUE(IsPlaying());
        EXPECT_EQ(L"film.mkv", CurrentOverlay()->text) << "a message of the window";
        EXPECT_EQ(L"Brindlecast - film.mkv", Title());
    }
    EXPECT_EQ(Lines{}, CallsAndStates());
}

TEST_F(MainWindowMessages, AnItemOfTheListIsPlayedByItsPlace) {
    Fill({L"one.mkv", L"two.mkv", L"three.mkv"});
    EXPECT_EQ(0, Send(kMessagePlayItem, 1));
    EXPECT_EQ((Names{L"two.mkv"}), Loads());
    EXPECT_EQ(L"Brindlecast - two.mkv", Title());
    EXPECT_EQ(1, List().model.currentIndex);
    EXPECT_TRUE(IsPlaying());
    EXPECT_EQ((Names{L"one.mkv", L"two.mkv", L"three.mkv"}), NamesInList());
}

TEST_F(MainWindowMessages, APlaceOutsideTheListIsNoItem) {
    Fill({L"one.mkv", L"two.mkv"});
    List().model.items.push_back({}); // without a path
    Play(1);
    for (const int index : {-1, 2, 3, INT_MAX, INT_MIN}) {
        SCOPED_TRACE(index);
        EXPECT_EQ(0, Send(kMessagePlayItem, static_cast<WPARAM>(index)));
        EXPECT_EQ(0, Send(kMessagePlayItemAt, static_cast<WPARAM>(index), 4'000));
        EXPECT_EQ(Lines{}, Calls());
        EXPECT_EQ(L"Brindlecast - two.mkv", Title());
        EXPECT_EQ(1, List().model.currentIndex);
    }
    EXPECT_TRUE(IsPlaying());
}

TEST_F(MainWindowMessages, AnItemIsPlayedFromAPlaceInMilliseconds) {
    Fill({L"one.mkv", L"two.mkv"});
    Send(kMessagePlayItem, 1);
    const Lines ofOpening = SeeksInNewFile();
    for (const LPARAM start : {LPARAM{0}, LPARAM{-4'000}}) {
        ClearCalls();
        EXPECT_EQ(0, Send(kMessagePlayItemAt, 0, start));
        EXPECT_EQ((Names{L"one.mkv"}), Loads());
        EXPECT_EQ(ofOpening, SeeksInNewFile()) << "from the beginning";
    }
    ClearCalls();
    EXPECT_EQ(0, Send(kMessagePlayItemAt, 1, 3'700));
    EXPECT_EQ((Names{L"two.mkv"}), Loads());
    EXPECT_EQ(L"LAVSplitter.SetPositions(40000000, 1, 0)", SeeksInNewFile().back()) << "the nearest keyframe";
    EXPECT_EQ(1, List().model.currentIndex);
    EXPECT_TRUE(IsPlaying());
}

TEST_F(MainWindowMessages, AnItemThatIsPlayedFromAPlaceHasNoSecondTry) {
    Fill({L"one.mkv", L"bad.mkv", L"three.mkv"});
    Play(0);
    SetNumber("LAVSplitter.load", E_FAIL);
    Send(kMessagePlayItemAt, 1, 4'000);
    EXPECT_EQ((Names{L"bad.mkv", L"bad.mkv"}), Loads()) << "with and without the hardware";
    EXPECT_FALSE(IsPlaying());
    EXPECT_EQ(1, List().model.currentIndex);
}

TEST_F(MainWindowMessages, ItemsThatDoNotOpenArePassedOver) {
    Fill({L"one.mkv", L"bad.mkv", L"worse.mkv", L"four.mkv"});
    SetNumber("LAVSplitter.loadFailures", 4);
    Send(kMessagePlayItem, 1);
    EXPECT_EQ((Names{L"bad.mkv", L"bad.mkv", L"worse.mkv", L"worse.mkv", L"four.mkv"}), Loads());
    EXPECT_TRUE(IsPlaying());
    EXPECT_EQ(3, List().model.currentIndex);
    EXPECT_EQ(L"Brindlecast - four.mkv", Title());
}

TEST_F(MainWindowMessages, AWalkOverBadFilesThatStandTwiceComesToItsEnd) {
    Fill({L"bad.mkv", L"worse.mkv", L"bad.mkv", L"bad.mkv", L"worse.mkv"});
    SetNumber("LAVSplitter.load", E_FAIL);
    EXPECT_EQ(0, Send(kMessagePlayItem, 0));
    EXPECT_EQ((Names{L"bad.mkv", L"bad.mkv", L"worse.mkv", L"worse.mkv", L"bad.mkv", L"bad.mkv", L"bad.mkv",
                     L"bad.mkv", L"worse.mkv", L"worse.mkv"}),
              Loads());
    EXPECT_FALSE(IsPlaying());
    EXPECT_EQ((Names{L"bad.mkv", L"worse.mkv", L"bad.mkv", L"bad.mkv", L"worse.mkv"}), NamesInList());
}

TEST_F(MainWindowMessages, AFrameRateThatTheFilmCannotReachIsShownAndNotPlayed) {
    SetText("LAVSplitter.pins", L"Video:video/1920/1080/83333;Audio:audio"); // 120 frames a second
    constexpr WPARAM kSlowest = 5050;
    constexpr WPARAM kFastest = 5056;
    Send(WM_COMMAND, kSlowest);
    EXPECT_EQ(Lines{}, CallsOf(L"LAVSplitter.SetRate(")) << "the rate of no film is known";
    EXPECT_EQ(L"", CurrentOverlay()->text);
    Drop(kFilm);
    Send(WM_COMMAND, kSlowest);
    EXPECT_EQ(Lines{}, CallsOf(L"LAVSplitter.SetRate("));
    EXPECT_EQ(L"0.20x", CurrentOverlay()->text);
    Send(WM_COMMAND, kFastest);
    EXPECT_EQ((Lines{L"LAVSplitter.SetRate(0.50)"}), CallsOf(L"LAVSplitter.SetRate("));
    EXPECT_EQ(L"0.50x", CurrentOverlay()->text);
}

} // namespace
} // namespace brindlecast::testing
