#pragma once

#include <chrono>
#include <cstdio>
#include <functional>
#include <thread>

namespace brindlecast::testing {

// The longest that anything may take, generous for a slow machine. A wait that used more than half of its
// limit is printed.
namespace limits {
using std::chrono::milliseconds;
inline constexpr milliseconds kStart{20'000};
inline constexpr milliseconds kDialog{10'000};
inline constexpr milliseconds kPicture{10'000};
inline constexpr milliseconds kReaction{5'000};
inline constexpr milliseconds kExit{2'000};
} // namespace limits

// Asks again every few milliseconds until the answer is yes; false when the limit has passed.
inline bool WaitUntil(std::chrono::milliseconds limit, const char* what,
                      const std::function<bool()>& condition) {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    for (;;) {
        const bool done = condition();
        const auto spent = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
        if (done && spent * 2 > limit) {
            std::printf("[  SLOW    ] %s took %lld of %lld ms\n", what, static_cast<long long>(spent.count()),
                        static_cast<long long>(limit.count()));
        }
        if (done || spent > limit) {
            return done;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

// A span of the run itself, in which playback goes on; never a stand-in for waiting until something happens.
inline void LetPlay(std::chrono::milliseconds time) {
    std::this_thread::sleep_for(time);
}

} // namespace brindlecast::testing
