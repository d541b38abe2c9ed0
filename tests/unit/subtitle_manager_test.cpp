#include "subtitles/subtitle_manager.h"

#include "tests/support/fake_settings_store.h"
#include "tests/support/subtitle_fixture.h"

#include <set>
#include <stdexcept>

// From a file to the picture of a moment, as the window and the renderer ask for it.

namespace brindlecast::testing {
namespace {

constexpr Size kFrame{200, 100};
constexpr Rect kPlace{10, 20, 110, 60};
constexpr Time100ns kWithin = 15'000'000; // the event of most files here: from 1 to 2 seconds

struct PictureFacts {
    Time100ns start = 0;
    Time100ns stop = 0;
    Size size;
    Size maxSize;
    Rect videoRect;
    Pixel middle; // of kPlace, when that lies in the picture
};

PictureFacts FactsOf(ISubPic& picture) {
    PictureFacts facts{picture.GetStart(), picture.GetStop(), {}, {}, {}, {}};
    EXPECT_EQ(S_OK, picture.GetSize(&facts.size));
    EXPECT_EQ(S_OK, picture.GetMaxSize(&facts.maxSize));
    SubPicDesc desc;
    EXPECT_EQ(S_OK, picture.Lock(desc));
    facts.videoRect = desc.videoRect;
    if (desc.width > 60 && desc.height > 40) {
        facts.middle = PixelAt(desc, 60, 40);
    }
    EXPECT_EQ(S_OK, picture.Unlock(nullptr));
    return facts;
}

class SubtitleManagerTest : public SubtitleTest {
protected:
    bool Load(const std::u8string& name, std::string_view bytes) {
        return manager.Load(folder.Write(name, bytes));
    }
    // One event of one colour, from 1 to 2 seconds.
    bool LoadBlock(const char* color = "0000FF") {
        return Load(u8"block.ass", AssScript(kFrame, {{.place = kPlace, .color = color}}));
    }
    // The colour that is shown at a time; clear without a picture.
    Pixel ColorAt(Time100ns rt) {
        const ComReference<ISubPic> picture = manager.GetSubPic(rt);
        return picture != nullptr ? FactsOf(*picture).middle : kClear;
    }
    void ExpectEmpty() {
        EXPECT_EQ(0, manager.EntryCount());
        EXPECT_EQ(-1, manager.CurrentIndex());
        EXPECT_EQ(nullptr, manager.GetEntry(0));
        EXPECT_EQ(L"", manager.NameAt(0));
        EXPECT_FALSE(manager.Select(0));
        EXPECT_FALSE(manager.IsActive());
        EXPECT_EQ(nullptr, manager.GetSubPic(kWithin));
    }

    FakeSettingsStore store;
    SubtitleManager manager{store, DrawFakeCue};
};

// Its life.

TEST_F(SubtitleManagerTest, NothingWorksBeforeItIsInitialised) {
    const std::wstring path = folder.Write(u8"a.ass", AssScript(kFrame, {{.place = kPlace}}));
    EXPECT_TRUE(manager.enabled);
    EXPECT_FALSE(manager.HasProvider());
    EXPECT_FALSE(manager.Load(path));
    manager.Unload();
    manager.SetDelay(500);
    EXPECT_EQ(0, manager.Delay());
    ExpectEmpty();
    manager.Shutdown();
    EXPECT_EQ(Lines{}, TakeLines());
    EXPECT_TRUE(store.reads.empty());
}

TEST_F(SubtitleManagerTest, WithoutAUsableSizeItIsThatOfFullHd) {
    struct Row {
        Size given;
        Size used;
    };
    for (const Row& row : {Row{{640, 360}, {640, 360}}, Row{{0, 0}, {1920, 1080}}, Row{{-1, 5}, {1920, 5}},
                           Row{{5, 0}, {5, 1080}}, Row{{1, 1}, {1, 1}}}) {
        EXPECT_TRUE(manager.Initialise(row.given.width, row.given.height));
        EXPECT_EQ(Lines{L"Subtitle video size: " + std::to_wstring(row.used.width) + L"x" +
                        std::to_wstring(row.used.height)},
                  TakeLines());
        ASSERT_TRUE(Load(u8"a.ass", AssScript({1, 1}, {{.place = {0, 0, 1, 1}}})));
        const ComReference<ISubPic> picture = manager.GetSubPic(kWithin);
        ASSERT_NE(nullptr, picture);
        const PictureFacts facts = FactsOf(*picture);
        EXPECT_EQ(row.used, facts.size);
        EXPECT_EQ(row.used, facts.maxSize);
        EXPECT_EQ((Rect{0, 0, row.used.width, row.used.height}), facts.videoRect);
        TakeLines();
    }
}

TEST_F(SubtitleManagerTest, TheLookOfConvertedFilesIsReadOnceAtItsStart) {
    const std::set<std::wstring> names = {L"SubFontName",     L"SubFontSize",     L"SubOutline",
                                          L"SubShadow",       L"SubBold",         L"SubItalic",
                                          L"SubPrimaryColor", L"SubOutlineColor", L"SubShadowColor",
                                          L"SubMarginBottom", L"SubAlignment"};
    EXPECT_TRUE(manager.Initialise(200, 100));
    EXPECT_EQ(names.size(), store.reads.size());
    EXPECT_EQ(names, std::set<std::wstring>(store.reads.begin(), store.reads.end()));
    store.reads.clear();
    EXPECT_TRUE(Load(u8"a.srt", kSubRip));
    manager.Unload();
    EXPECT_TRUE(store.reads.empty());
    EXPECT_TRUE(store.writes.empty()) << "the program only reads them";
}

TEST_F(SubtitleManagerTest, ShutdownGivesEverythingBack) {
    ASSERT_TRUE(manager.Initialise(200, 100));
    manager.SetDelay(100);
    ASSERT_TRUE(LoadBlock());
    ComReference<ISubPic> picture = manager.GetSubPic(kWithin);
    ASSERT_NE(nullptr, picture);
    manager.Shutdown();
    EXPECT_EQ(0U, picture.release()->Release()) << "the only reference left";
    EXPECT_FALSE(manager.HasProvider());
    EXPECT_EQ(0, manager.Delay());
    ExpectEmpty();
    EXPECT_FALSE(LoadBlock());
}

TEST_F(SubtitleManagerTest, InitialisingAgainBeginsAnew) {
    ASSERT_TRUE(manager.Initialise(200, 100));
    ASSERT_TRUE(LoadBlock());
    manager.SetDelay(100);
    ASSERT_TRUE(manager.Initialise(400, 200));
    ExpectEmpty();
    EXPECT_EQ(0, manager.Delay());
    ASSERT_TRUE(LoadBlock());
    const ComReference<ISubPic> picture = manager.GetSubPic(kWithin);
    ASSERT_NE(nullptr, picture);
    EXPECT_EQ((Size{400, 200}), FactsOf(*picture).size);
}

// Files.

TEST_F(SubtitleManagerTest, ALoadedFileIsTheOnlyEntry) {
    ASSERT_TRUE(manager.Initialise(200, 100));
    const std::wstring first = folder.Write(u8"처음.srt", kSubRip);
    ASSERT_TRUE(manager.Load(first));
    EXPECT_EQ(1, manager.EntryCount());
    EXPECT_EQ(0, manager.CurrentIndex());
    const SubtitleEntry* const entry = manager.GetEntry(0);
    ASSERT_NE(nullptr, entry);
    EXPECT_EQ(0, entry->id);
    EXPECT_EQ(L"처음.srt", entry->name);
    EXPECT_EQ(L"", entry->language);
    EXPECT_EQ(first, entry->path);
    EXPECT_EQ(L"처음.srt", manager.NameAt(0));
    for (const int none : {-1, 1, 1000, -2'147'483'647}) {
        EXPECT_EQ(nullptr, manager.GetEntry(none));
        EXPECT_EQ(L"", manager.NameAt(none));
    }
    ASSERT_TRUE(Load(u8"second.idx", kSubRip));
    EXPECT_EQ(1, manager.EntryCount());
    EXPECT_EQ(L"second.idx", manager.NameAt(0));
    EXPECT_EQ(0, manager.CurrentIndex());
}

TEST_F(SubtitleManagerTest, ANameIsWhatFollowsTheLastBackslashOrElseTheLastSlash) {
    ASSERT_TRUE(manager.Initialise(200, 100));
    const std::wstring path = folder.Write(u8"a.srt", kSubRip);
#ifdef _WIN32
    const std::wstring directory = path.substr(0, path.rfind(L'\\'));
    const std::wstring last = directory.substr(directory.rfind(L'\\') + 1);
    ASSERT_TRUE(manager.Load(directory + L"/a.srt"));
    EXPECT_EQ(last + L"/a.srt", manager.NameAt(0));
    std::wstring slashes = path;
    std::ranges::replace(slashes, L'\\', L'/');
    ASSERT_TRUE(manager.Load(slashes));
    EXPECT_EQ(L"a.srt", manager.NameAt(0));
#else
    ASSERT_TRUE(manager.Load(path));
    EXPECT_EQ(L"a.srt", manager.NameAt(0));
    // A backslash is an ordinary letter of a file's name here.
    ASSERT_TRUE(Load(u8"x\\y.srt", kSubRip));
    EXPECT_EQ(L"y.srt", manager.NameAt(0));
    MakeFolder(u8"p\\q");
    ASSERT_TRUE(Load(u8"p\\q/z.srt", kSubRip));
    EXPECT_EQ(L"q/z.srt", manager.NameAt(0));
#endif
}

TEST_F(SubtitleManagerTest, APathWithoutFolderIsItsOwnName) {
    ASSERT_TRUE(manager.Initialise(200, 100));
    const std::filesystem::path before = std::filesystem::current_path();
    const std::wstring path = folder.Write(u8"alone.srt", kSubRip);
    const std::string directory = WideToUtf8(folder.Path(u8""));
    std::filesystem::current_path(std::u8string(directory.begin(), directory.end()));
    const bool loaded = manager.Load(L"alone.srt");
    std::filesystem::current_path(before);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(L"alone.srt", manager.NameAt(0));
    EXPECT_EQ(L"alone.srt", manager.GetEntry(0)->path);
}

TEST_F(SubtitleManagerTest, AFailedLoadLeavesNothing) {
    ASSERT_TRUE(manager.Initialise(200, 100));
    for (const std::wstring& path : {folder.Path(u8"gone.srt"), folder.Write(u8"a.smi", "<SAMI>\n</SAMI>\n"),
                                     folder.Write(u8"a.idx", "# VobSub index file, v7\n")}) {
        ASSERT_TRUE(LoadBlock());
        ASSERT_EQ(kRed, ColorAt(kWithin));
        EXPECT_FALSE(manager.Load(path));
        ExpectEmpty();
    }
    ASSERT_TRUE(LoadBlock("00FF00"));
    EXPECT_EQ(kGreen, ColorAt(kWithin)) << "no picture of the file before";
}

TEST_F(SubtitleManagerTest, AnEmptyPathChangesNothing) {
    ASSERT_TRUE(manager.Initialise(200, 100));
    ASSERT_TRUE(LoadBlock());
    EXPECT_FALSE(manager.Load(L""));
    EXPECT_EQ(1, manager.EntryCount());
    EXPECT_EQ(0, manager.CurrentIndex());
    EXPECT_EQ(kRed, ColorAt(kWithin));
}

TEST_F(SubtitleManagerTest, AnInterruptedLoadListsNothing) {
    ASSERT_TRUE(manager.Initialise(200, 100));
    ASSERT_TRUE(LoadBlock());
    EXPECT_THROW(static_cast<void>(
                     Load(u8"a.idx", std::string(kSubRip) + "\n2\n00:00:03,000 --> 00:00:04,000\n\xFF\n")),
                 std::range_error);
    EXPECT_EQ(0, manager.EntryCount());
    EXPECT_EQ(-1, manager.CurrentIndex());
    EXPECT_TRUE(manager.IsActive()) << "the cues so far are still there";
    manager.Unload();
    ExpectEmpty();
}

TEST_F(SubtitleManagerTest, ALoadDropsThePicturesOfTheFileBefore) {
    ASSERT_TRUE(manager.Initialise(200, 100));
    ASSERT_TRUE(LoadBlock());
    EXPECT_EQ(kRed, ColorAt(kWithin));
    ASSERT_TRUE(LoadBlock("00FF00"));
    EXPECT_EQ(kGreen, ColorAt(kWithin));
}

TEST_F(SubtitleManagerTest, UnloadForgetsTheFileAndKeepsTheDelay) {
    ASSERT_TRUE(manager.Initialise(200, 100));
    ASSERT_TRUE(LoadBlock());
    manager.SetDelay(-500);
    ASSERT_EQ(kRed, ColorAt(kWithin));
    manager.Unload();
    ExpectEmpty();
    EXPECT_EQ(-500, manager.Delay());
    EXPECT_TRUE(manager.HasProvider());
    TakeLines();
    manager.SetRenderSize(400, 200);
    EXPECT_EQ((Lines{L"SetRenderSize: 400x200", L"libass: frame=400x200"}), TakeLines()) << "libass stays up";
}

TEST_F(SubtitleManagerTest, SelectingTheCurrentEntryReadsNothing) {
    ASSERT_TRUE(manager.Initialise(200, 100));
    ASSERT_TRUE(LoadBlock());
    const ComReference<ISubPic> picture = manager.GetSubPic(kWithin);
    TakeLines();
    EXPECT_TRUE(manager.Select(0));
    EXPECT_EQ(Lines{}, TakeLines());
    EXPECT_EQ(picture.get(), manager.GetSubPic(kWithin).get()) << "and drops no picture";
    for (const int none : {-1, 1, 2}) {
        EXPECT_FALSE(manager.Select(none));
        EXPECT_EQ(0, manager.CurrentIndex());
    }
    EXPECT_EQ(Lines{}, TakeLines());
}

// Pictures.

TEST_F(SubtitleManagerTest, APictureStandsForItsEventAndIsKept) {
    ASSERT_TRUE(manager.Initialise(200, 100));
    ASSERT_TRUE(LoadBlock());
    EXPECT_EQ(nullptr, manager.GetSubPic(9'999'999));
    ComReference<ISubPic> first = manager.GetSubPic(10'000'000);
    ASSERT_NE(nullptr, first);
    EXPECT_EQ(2U, first->AddRef() - 1) << "one reference of the queue's and one of the caller's";
    EXPECT_EQ(2U, first->Release());
    const PictureFacts facts = FactsOf(*first);
    EXPECT_EQ(10'000'000, facts.start);
    EXPECT_EQ(20'000'000, facts.stop);
    EXPECT_EQ(kRed, facts.middle);
    const ComReference<ISubPic> second = manager.GetSubPic(19'999'999);
    EXPECT_EQ(first.get(), second.get());
    EXPECT_EQ(3U, second->AddRef() - 1);
    EXPECT_EQ(3U, second->Release());
    EXPECT_EQ(nullptr, manager.GetSubPic(20'000'000));
}

TEST_F(SubtitleManagerTest, WithoutEnabledThereIsNoPicture) {
    ASSERT_TRUE(manager.Initialise(200, 100));
    ASSERT_TRUE(LoadBlock());
    EXPECT_TRUE(manager.IsActive());
    manager.enabled = false;
    EXPECT_FALSE(manager.IsActive());
    EXPECT_EQ(nullptr, manager.GetSubPic(kWithin));
    EXPECT_EQ(1, manager.EntryCount()) << "nothing is unloaded";
    manager.enabled = true;
    EXPECT_EQ(kRed, ColorAt(kWithin));
}

TEST_F(SubtitleManagerTest, EveryPictureIsTold) {
    ASSERT_TRUE(manager.Initialise(200, 100));
    ASSERT_TRUE(LoadBlock());
    std::vector<ISubPic*> told;
    manager.onSubPic = [&told](ISubPic& picture) {
        told.push_back(&picture);
    };
    EXPECT_EQ(nullptr, manager.GetSubPic(0));
    EXPECT_TRUE(told.empty());
    const ComReference<ISubPic> one = manager.GetSubPic(kWithin);
    const ComReference<ISubPic> two = manager.GetSubPic(kWithin + 1);
    EXPECT_EQ((std::vector<ISubPic*>{one.get(), one.get()}), told) << "also one that was kept";
    manager.enabled = false;
    EXPECT_EQ(nullptr, manager.GetSubPic(kWithin));
    EXPECT_EQ(2U, told.size());
}

TEST_F(SubtitleManagerTest, TenPicturesAreKept) {
    ASSERT_TRUE(manager.Initialise(200, 100));
    // All within a second, so that none is dropped for its age.
    const auto digits = [](int event) {
        return std::string{static_cast<char>('0' + event * 5 / 10), static_cast<char>('0' + event * 5 % 10)};
    };
    std::string script = AssHead(kFrame);
    for (int event = 0; event < 11; ++event) {
        const std::string start = "0:00:01." + digits(event);
        const std::string end = "0:00:01." + digits(event + 1);
        script += AssLine({.start = start.c_str(), .end = end.c_str(), .place = kPlace});
    }
    ASSERT_TRUE(Load(u8"a.ass", script));
    const auto time = [](int event) {
        return 10'000'000 + event * Time100ns{500'000};
    };
    std::vector<ComReference<ISubPic>> pictures;
    for (int event = 0; event < 11; ++event) {
        pictures.push_back(manager.GetSubPic(time(event)));
        ASSERT_NE(nullptr, pictures.back());
        EXPECT_EQ(time(event), pictures.back()->GetStart());
    }
    for (int event = 10; event >= 1; --event) {
        EXPECT_EQ(pictures[static_cast<std::size_t>(event)].get(), manager.GetSubPic(time(event)).get())
            << event;
    }
    EXPECT_NE(pictures[0].get(), manager.GetSubPic(time(0)).get())
        << "the eleventh took the place of the first";
}

// The render size.

TEST_F(SubtitleManagerTest, PicturesHaveTheRenderSize) {
    ASSERT_TRUE(manager.Initialise(200, 100));
    ASSERT_TRUE(LoadBlock());
    const ComReference<ISubPic> before = manager.GetSubPic(kWithin);
    TakeLines();
    manager.SetRenderSize(400, 200);
    EXPECT_EQ((Lines{L"SetRenderSize: 400x200", L"libass: frame=400x200"}), TakeLines());
    const ComReference<ISubPic> after = manager.GetSubPic(kWithin);
    ASSERT_NE(nullptr, after);
    const PictureFacts facts = FactsOf(*after);
    EXPECT_EQ((Size{400, 200}), facts.size);
    EXPECT_EQ((Size{400, 200}), facts.maxSize);
    EXPECT_EQ((Rect{0, 0, 400, 200}), facts.videoRect);
    EXPECT_EQ((Size{200, 100}), FactsOf(*before).size) << "a picture in use stays as it is";
}

TEST_F(SubtitleManagerTest, ASizeThatIsNoneOrTheSameChangesNothing) {
    ASSERT_TRUE(manager.Initialise(200, 100));
    ASSERT_TRUE(LoadBlock());
    manager.SetRenderSize(400, 200);
    const ComReference<ISubPic> picture = manager.GetSubPic(kWithin);
    TakeLines();
    for (const Size size :
         {Size{400, 200}, Size{0, 200}, Size{400, 0}, Size{-1, 200}, Size{400, -1}, Size{0, 0}}) {
        manager.SetRenderSize(size.width, size.height);
    }
    EXPECT_EQ(picture.get(), manager.GetSubPic(kWithin).get());
    EXPECT_EQ(Lines{}, TakeLines());
    manager.SetRenderSize(400, 201);
    manager.SetRenderSize(401, 201);
    EXPECT_EQ((Lines{L"SetRenderSize: 400x201", L"libass: frame=400x201", L"SetRenderSize: 401x201",
                     L"libass: frame=401x201"}),
              TakeLines());
    EXPECT_NE(picture.get(), manager.GetSubPic(kWithin).get());
}

TEST_F(SubtitleManagerTest, TheFirstRenderSizeIsNewAlsoWhenItIsThatOfTheVideo) {
    ASSERT_TRUE(manager.Initialise(200, 100));
    ASSERT_TRUE(LoadBlock());
    const ComReference<ISubPic> picture = manager.GetSubPic(kWithin);
    TakeLines();
    manager.SetRenderSize(200, 100);
    EXPECT_EQ(Lines{L"SetRenderSize: 200x100"}, TakeLines()) << "libass has that size";
    EXPECT_NE(picture.get(), manager.GetSubPic(kWithin).get());
}

// The delay.

TEST_F(SubtitleManagerTest, ADelayedMomentIsShownWithinTheUndelayedEvent) {
    ASSERT_TRUE(manager.Initialise(200, 100));
    ASSERT_TRUE(Load(u8"a.ass",
                     AssScript(kFrame, {{.place = kPlace}, {"0:00:02.00", "0:00:03.00", kPlace, "00FF00"}})));
    manager.SetDelay(1000);
    EXPECT_EQ(kClear, ColorAt(5'000'000)) << "the first event's text would stand here, but no event does";
    const ComReference<ISubPic> picture = manager.GetSubPic(10'000'000);
    ASSERT_NE(nullptr, picture);
    const PictureFacts facts = FactsOf(*picture);
    EXPECT_EQ(kGreen, facts.middle);
    EXPECT_EQ(10'000'000, facts.start);
    EXPECT_EQ(20'000'000, facts.stop);
    EXPECT_EQ(kClear, ColorAt(25'000'000)) << "in the second event nothing of the delayed time is shown";
    manager.SetDelay(-1000);
    EXPECT_EQ(kClear, ColorAt(15'000'000));
    EXPECT_EQ(kRed, ColorAt(25'000'000));
    EXPECT_EQ(kClear, ColorAt(35'000'000));
    manager.SetDelay(0);
    EXPECT_EQ(kRed, ColorAt(15'000'000));
}

TEST_F(SubtitleManagerTest, AChangeOfTheDelayDropsThePictures) {
    ASSERT_TRUE(manager.Initialise(200, 100));
    ASSERT_TRUE(LoadBlock());
    const ComReference<ISubPic> picture = manager.GetSubPic(kWithin);
    manager.SetDelay(0);
    EXPECT_NE(picture.get(), manager.GetSubPic(kWithin).get());
    manager.SetDelay(100);
    EXPECT_EQ(100, manager.Delay());
    EXPECT_EQ(kRed, ColorAt(kWithin));
}

TEST_F(SubtitleManagerTest, ADelaySetWithoutASubtitleStandsForTheNext) {
    ASSERT_TRUE(manager.Initialise(200, 100));
    manager.SetDelay(-500);
    EXPECT_EQ(-500, manager.Delay());
    ASSERT_TRUE(Load(u8"a.idx", "1\n00:00:01,000 --> 00:00:02,000\nHi\n"));
    EXPECT_EQ(-500, manager.Delay());
    EXPECT_EQ(nullptr, manager.GetSubPic(14'999'999));
    EXPECT_NE(nullptr, manager.GetSubPic(15'000'000));
    EXPECT_EQ((std::vector<DrawnCue>{{L"Hi", kFrame}}), drawnCues);
}

} // namespace
} // namespace brindlecast::testing
