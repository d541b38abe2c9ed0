#include "app/overlay.h"
#include "library/favorites_database.h"
#include "tests/graph/main_window_list_fixture.h"

namespace brindlecast::testing {
namespace {

using Names = std::vector<std::wstring>;

constexpr WPARAM kMarkA = 6030;
constexpr WPARAM kMarkB = 6031;
constexpr const wchar_t* kSeekToFour = L"LAVSplitter.SetPositions(40000000, 1, 0)";

// What follows when a file has come to its end.
class MainWindowEnd : public MainWindowListTest {
protected:
    void PlaceAt(long milliseconds) { SetNumber("MpcVideoRenderer64.positionMilliseconds", milliseconds); }
};

TEST_F(MainWindowEnd, TheNextItemThatOpensIsPlayed) {
    Fill({L"one.mkv", L"bad.mkv", L"three.mkv"});
    Play(0);
    SetNumber("LAVSplitter.loadFailures", 2);
    LetFileEndOnce();
    EXPECT_EQ((Names{L"bad.mkv", L"bad.mkv", L"three.mkv"}), Loads());
    EXPECT_EQ(L"Brindlecast - three.mkv", Title());
    EXPECT_EQ(2, List().model.currentIndex);
    EXPECT_TRUE(IsPlaying());
}

TEST_F(MainWindowEnd, BehindTheLastItemPlaybackStops) {
    Fill({L"one.mkv", L"two.mkv"});
    Play(1);
    LetFileEndOnce();
    EXPECT_EQ(Names{}, Loads());
    EXPECT_FALSE(IsPlaying());
    EXPECT_EQ(L"정지", CurrentOverlay()->text);
    EXPECT_EQ(L"Brindlecast - two.mkv", Title()) << "the window keeps the last name";
}

TEST_F(MainWindowEnd, AnItemWithoutAPathStops) {
    Fill({L"one.mkv"});
    List().model.items.push_back({});
    Play(0);
    LetFileEndOnce();
    EXPECT_EQ(Names{}, Loads());
    EXPECT_FALSE(IsPlaying());
}

TEST_F(MainWindowEnd, BadFilesThatStandTwiceAreWalkedOverOnce) {
    Fill({L"one.mkv", L"bad.mkv", L"worse.mkv", L"bad.mkv", L"one.mkv", L"worse.mkv"});
    Play(0);
    SetNumber("LAVSplitter.load", E_FAIL);
    LetFileEndOnce();
    EXPECT_EQ((Names{L"bad.mkv", L"bad.mkv", L"worse.mkv", L"worse.mkv", L"bad.mkv", L"bad.mkv", L"one.mkv",
                     L"one.mkv", L"worse.mkv", L"worse.mkv"}),
              Loads());
    EXPECT_FALSE(IsPlaying());
}

TEST_F(MainWindowEnd, WithAAloneTheFileGoesOnFromThere) {
    Fill({L"one.mkv", L"two.mkv"});
    Play(0);
    PlaceAt(3'700);
    Send(WM_COMMAND, kMarkA);
    EXPECT_EQ(L"A 지점 설정", CurrentOverlay()->text);
    for (int time = 0; time < 2; ++time) {
        LetFileEndOnce();
        EXPECT_EQ(Names{}, Loads());
        ASSERT_FALSE(Seeks().empty());
        EXPECT_EQ(kSeekToFour, Seeks().back()) << "the keyframe nearest to A";
        EXPECT_TRUE(IsPlaying());
        EXPECT_EQ(L"A → 끝 반복", CurrentOverlay()->text);
        EXPECT_EQ(0, List().model.currentIndex);
    }
}

TEST_F(MainWindowEnd, AnEndThatIsReachedWithBothMarksIsAnEnd) {
    Fill({L"one.mkv", L"two.mkv"});
    Play(0);
    PlaceAt(3'700);
    Send(WM_COMMAND, kMarkA);
    PlaceAt(9'000);
    Send(WM_COMMAND, kMarkB);
    EXPECT_EQ(L"B 지점 설정", CurrentOverlay()->text);
    PlaceAt(5'000); // in front of B, so that no jump comes first
    LetFileEndOnce();
    EXPECT_EQ((Names{L"two.mkv"}), Loads());
    EXPECT_TRUE(IsPlaying());
    // The marks were those of the former file.
    LetFileEndOnce();
    EXPECT_FALSE(IsPlaying());
}

// A group of favorites is played along, as if the user had started it from its list.
class FavoritesQueue : public MainWindowEnd {
protected:
    void SetUp() override {
        MainWindowEnd::SetUp();
        RemoveGroup(); // of a run that did not come to its end
        ASSERT_TRUE(Store().AddGroup(kGroup));
    }
    void TearDown() override {
        RemoveGroup();
        MainWindowEnd::TearDown();
    }

    static FavoritesDatabase& Store() { return FavoritesDatabase::Instance(); }
    static int Group() {
        const auto& groups = Store().groups;
        const auto found = std::ranges::find(groups, kGroup, &FavoriteGroup::name);
        return found != groups.end() ? static_cast<int>(found - groups.begin()) : -1;
    }
    static void Add(const std::wstring& name, double seconds) {
        ASSERT_TRUE(Store().AddOrUpdateItem(Group(), PathOf(name), seconds));
    }
    void Start(int row) {
        List().selectedGroup = Group();
        List().RebuildFavoritesView();
        List().groupQueueActive = true;
        List().groupQueuePosition = row;
    }

private:
    static constexpr const wchar_t* kGroup = L"시험 묶음";

    static void RemoveGroup() {
        if (Group() >= 0) {
            EXPECT_TRUE(Store().DeleteGroup(Group()));
        }
    }
};

TEST_F(FavoritesQueue, EachFavoriteIsPlayedFromItsPlaceAndComesIntoTheList) {
    Add(L"one.mkv", 0.0);
    Add(L"two.mkv", 3.7);
    Add(L"three.mkv", 0.0);
    Fill({L"one.mkv", L"other.mkv"});
    Play(0);
    Start(0);
    LetFileEndOnce();
    EXPECT_EQ((Names{L"two.mkv"}), Loads());
    EXPECT_EQ(1U, CountOf(SeeksInNewFile(), kSeekToFour));
    EXPECT_EQ((Names{L"one.mkv", L"other.mkv", L"two.mkv"}), NamesInList());
    EXPECT_EQ(2, List().model.currentIndex);
    EXPECT_EQ(1, List().groupQueuePosition);
    EXPECT_TRUE(List().groupQueueActive);
    EXPECT_TRUE(IsPlaying());
    ASSERT_TRUE(WaitUntilRunning());
    LetFileEndOnce();
    EXPECT_EQ((Names{L"three.mkv"}), Loads());
    EXPECT_EQ(0U, CountOf(SeeksInNewFile(), kSeekToFour));
    EXPECT_EQ(2, List().groupQueuePosition);
    ASSERT_TRUE(WaitUntilRunning());
    LetFileEndOnce();
    EXPECT_EQ(Names{}, Loads());
    EXPECT_FALSE(List().groupQueueActive);
    EXPECT_EQ(-1, List().groupQueuePosition);
    EXPECT_FALSE(IsPlaying());
    EXPECT_EQ(L"정지", CurrentOverlay()->text);
}

TEST_F(FavoritesQueue, AFavoriteThatDoesNotOpenEndsTheQueue) {
    Add(L"one.mkv", 0.0);
    Add(L"bad.mkv", 0.0);
    Add(L"three.mkv", 0.0);
    Fill({L"one.mkv", L"other.mkv"});
    Play(0);
    Start(0);
    SetNumber("LAVSplitter.loadFailures", 2);
    LetFileEndOnce();
    EXPECT_EQ((Names{L"bad.mkv", L"bad.mkv"}), Loads());
    EXPECT_FALSE(List().groupQueueActive);
    EXPECT_EQ(-1, List().groupQueuePosition);
    EXPECT_FALSE(IsPlaying());
}

TEST_F(FavoritesQueue, AFavoriteInTheListIsNotAddedAgain) {
    Add(L"one.mkv", 0.0);
    Add(L"TWO.mkv", 0.0);
    Fill({L"one.mkv", L"other.mkv", L"two.mkv"});
    Play(0);
    Start(0);
    LetFileEndOnce();
    EXPECT_EQ((Names{L"TWO.mkv"}), Loads());
    EXPECT_EQ((Names{L"one.mkv", L"other.mkv", L"two.mkv"}), NamesInList());
    EXPECT_EQ(2, List().model.currentIndex);
}

TEST_F(FavoritesQueue, AQueueWithoutAPlaceStops) {
    Add(L"one.mkv", 0.0);
    Add(L"two.mkv", 0.0);
    Fill({L"one.mkv", L"other.mkv"});
    Play(0);
    Start(-1);
    LetFileEndOnce();
    EXPECT_EQ(Names{}, Loads());
    EXPECT_FALSE(List().groupQueueActive);
    EXPECT_FALSE(IsPlaying());
}

} // namespace
} // namespace brindlecast::testing
