#include "tests/e2e/fixture.h"
#include "tests/e2e/storm.h"
#include "tests/e2e/waits.h"

#include <shlobj.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace brindlecast::testing {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t kSeed = 20'251;
constexpr int kSteps = 200;
constexpr int kManySteps = 5000; // in long runs

// Ends the player when one step takes far too long, because the step itself may hang with it.
class HangGuard {
public:
    explicit HangGuard(Player& guardedPlayer) : player(guardedPlayer), thread([this] { Watch(); }) {}
    HangGuard(const HangGuard&) = delete;
    HangGuard& operator=(const HangGuard&) = delete;
    ~HangGuard() {
        isOver = true;
        thread.join();
    }
    void BeginStep() { begin = Clock::now(); }

private:
    static constexpr std::chrono::seconds kLongestStep{40};

    void Watch() {
        while (!isOver) {
            if (Clock::now() - begin.load() > kLongestStep) {
                std::printf("the last step hangs: the player is ended\n");
                player.Kill();
                return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
    }

    Player& player;
    std::atomic<Clock::time_point> begin = Clock::now();
    std::atomic<bool> isOver = false;
    std::thread thread;
};

class StormTest : public ProgramTest {
protected:
    void TearDown() override {
        if (HasFailure()) {
            std::printf("seed %u\n", kSeed);
            for (std::size_t i = 0; i < steps.size(); ++i) {
                std::printf("step %zu: %s\n", i + 1, steps[i].c_str());
            }
        }
        RemovePictures();
        ProgramTest::TearDown();
    }

    std::vector<std::string> steps;

private:
    // Those that the commands for it have taken.
    static void RemovePictures() {
        PWSTR pictures = nullptr;
        if (SUCCEEDED(SHGetKnownFolderPath(FOLDERID_Pictures, 0, nullptr, &pictures))) {
            std::filesystem::remove_all(std::filesystem::path(pictures) / L"Brindlecast");
        }
        CoTaskMemFree(pictures);
    }
};

TEST_F(StormTest, NothingThatIsDoneToItMakesThePlayerHangOrEnd) {
    Player player;
    HangGuard guard(player);
    Storm storm(player, kSeed);
    for (int step = 0; step < (IsLongRun() ? kManySteps : kSteps); ++step) {
        const StormStep next = storm.Next();
        steps.push_back(next.text);
        guard.BeginStep();
        next.run();
        ASSERT_TRUE(player.OwnProcess().IsRunning()) << "ended at step " << steps.size();
        ASSERT_TRUE(player.Answers()) << "hangs at step " << steps.size();
        ASSERT_FALSE(HasFailure()) << "at step " << steps.size();
    }
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
