#include "subtitles/subtitle_manager.h"

#include "tests/support/fake_settings_store.h"
#include "tests/support/subtitle_fixture.h"

#include <atomic>
#include <stdexcept>
#include <thread>

// The drawing thread looks up pictures while the main thread loads, shifts and switches. What races shows
// under ThreadSanitizer; what must hold anyway is checked here.

namespace brindlecast::testing {
namespace {

constexpr Size kFrame{200, 100};
constexpr Rect kPlace{10, 20, 110, 60};
constexpr int kRounds = 60;

class SubtitleThreads : public SubtitleTest {
protected:
    SubtitleThreads() {
        SetTraceSink({}); // the lines of two threads at once are of no use
        EXPECT_TRUE(manager.Initialise(kFrame.width, kFrame.height));
    }

    // What the renderer does with each frame, until the main thread is done: looks up, reads, lets go.
    void DrawUntilDone() {
        for (int frame = 0; !done; ++frame) {
            const Time100ns rt = 10'000'000 + frame % 200 * Time100ns{100'000};
            if (changesSize && frame % 10 == 0) {
                manager.SetRenderSize(kFrame.width + frame % 3, kFrame.height);
            }
            if (const ComReference<ISubPic> picture = manager.GetSubPic(rt)) {
                LookAt(*picture, rt);
            }
            ++frames;
        }
    }
    void LookAt(ISubPic& picture, Time100ns rt) {
        SubPicDesc desc;
        ASSERT_EQ(S_OK, picture.Lock(desc));
        const Pixel pixel = PixelAt(desc, 60, 40);
        const Pixel cue = PixelAt(desc, 4, 5);
        picture.Unlock(nullptr);
        EXPECT_TRUE(pixel == kRed || pixel == kGreen || cue == kWhite) << ::testing::PrintToString(pixel);
        EXPECT_LE(picture.GetStart(), rt);
        EXPECT_LT(rt, picture.GetStop());
        ++pictures;
    }
    // Runs `round` on this thread, as the main one, while another draws.
    template <class Round>
    void Run(Round&& round) {
        std::thread drawing([this] { DrawUntilDone(); });
        for (int number = 0; number < kRounds; ++number) {
            round(number);
            // Each round meets a few frames.
            const int seen = frames;
            while (frames < seen + 2) {
                std::this_thread::yield();
            }
        }
        done = true;
        drawing.join();
    }

    const std::wstring red = folder.Write(
        u8"red.ass",
        AssScript(kFrame, {{"0:00:01.00", "0:00:02.00", kPlace}, {"0:00:02.00", "0:00:03.00", kPlace}}));
    const std::wstring green =
        folder.Write(u8"green.ass", AssScript(kFrame, {{"0:00:01.00", "0:00:03.00", kPlace, "00FF00"}}));
    const std::wstring cues = folder.Write(u8"cues.idx", "1\n00:00:01,000 --> 00:00:03,000\nHi\n");
    const std::wstring broken =
        folder.Write(u8"broken.idx", std::string("1\n00:00:01,000 --> 00:00:03,000\nHi\n\n"
                                                 "2\n00:00:03,000 --> 00:00:04,000\n\xFF\n"));
    FakeSettingsStore store;
    SubtitleManager manager{store, [](const std::wstring&, const SubPicDesc& picture, Rect& bbox) {
                                std::fill_n(picture.bits + std::ptrdiff_t{5} * picture.pitch,
                                            picture.width * 4, std::uint8_t{255});
                                bbox = {0, 5, picture.width, 6};
                            }};
    std::atomic<bool> done = false;
    std::atomic<int> frames = 0;
    std::atomic<int> pictures = 0;
    bool changesSize = false;
};

TEST_F(SubtitleThreads, LoadingWhileDrawing) {
    const std::wstring gone = folder.Path(u8"gone.ass");
    Run([&](int round) {
        switch (round % 5) {
        case 0: EXPECT_TRUE(manager.Load(red)); break;
        case 1: EXPECT_TRUE(manager.Load(cues)); break;
        case 2: EXPECT_FALSE(manager.Load(gone)); break;
        case 3: EXPECT_TRUE(manager.Load(green)); break;
        default: EXPECT_THROW(static_cast<void>(manager.Load(broken)), std::range_error); break;
        }
    });
    EXPECT_GT(pictures, 0);
    ASSERT_TRUE(manager.Load(green));
    const ComReference<ISubPic> picture = manager.GetSubPic(15'000'000);
    ASSERT_NE(nullptr, picture);
    LookAt(*picture, 15'000'000);
}

TEST_F(SubtitleThreads, ShiftingWhileDrawing) {
    ASSERT_TRUE(manager.Load(red));
    Run([&](int round) {
        manager.SetDelay(Milliseconds{round % 7} * 100);
        EXPECT_EQ(Milliseconds{round % 7} * 100, manager.Delay());
    });
    EXPECT_GT(pictures, 0);
    ASSERT_TRUE(manager.Load(cues));
    done = false;
    Run([&](int round) { manager.SetDelay(Milliseconds{round % 7} * -100); });
}

TEST_F(SubtitleThreads, SwitchingAndUnloadingWhileDrawing) {
    Run([&](int round) {
        manager.enabled = round % 2 == 0;
        if (round % 3 == 0) {
            manager.Unload();
        } else {
            EXPECT_TRUE(manager.Load(round % 3 == 1 ? red : cues));
            EXPECT_TRUE(manager.Select(0));
        }
        EXPECT_EQ(round % 3 == 0 ? 0 : 1, manager.EntryCount());
        EXPECT_EQ(round % 2 == 0 && round % 3 != 0, manager.IsActive());
    });
    manager.enabled = false;
    EXPECT_EQ(nullptr, manager.GetSubPic(15'000'000));
}

TEST_F(SubtitleThreads, LoadingWhileTheSizeOfTheFrameChanges) {
    changesSize = true;
    Run([&](int round) {
        EXPECT_TRUE(manager.Load(round % 2 == 0 ? green : cues));
        manager.SetDelay(Milliseconds{round % 3} * 10);
    });
    EXPECT_GT(pictures, 0);
}

TEST_F(SubtitleThreads, APictureOutlivesWhatMadeIt) {
    ASSERT_TRUE(manager.Load(green));
    ComReference<ISubPic> picture = manager.GetSubPic(15'000'000);
    ASSERT_NE(nullptr, picture);
    std::thread drawing([&] {
        for (int look = 0; look < 1000; ++look) {
            LookAt(*picture, 15'000'000);
        }
        picture.reset();
    });
    manager.Unload();
    EXPECT_TRUE(manager.Load(red));
    drawing.join();
    EXPECT_EQ(1000, pictures);
}

} // namespace
} // namespace brindlecast::testing
