// Looks at windows on the screen:
//   watch_screen find TITLE SECONDS             waits for a window of that title, prints "id left top width
//   height" watch_screen record ID FOLDER SECONDS STEP  every STEP seconds saves what the screen shows where
//   the window is watch_screen close ID                       asks the window to close
// A recording is FOLDER/index.tsv with lines of time (seconds since 1970), width, height, file; each file
// holds 4 bytes a pixel in the order B, G, R, unused.
#include "tests/support/capture/screen.h"

#include <chrono>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <span>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace brindlecast::testing {
namespace {

using Clock = std::chrono::system_clock;
using Seconds = std::chrono::duration<double>;

void Sleep(double seconds) {
    std::this_thread::sleep_for(Seconds(seconds));
}

double Now() {
    return Seconds(Clock::now().time_since_epoch()).count();
}

int Find(const std::string& title, double seconds) {
    const Screen screen;
    const double end = Now() + seconds;
    do {
        if (const auto window = screen.FindWindow(title)) {
            std::cout << window->id << ' ' << window->left << ' ' << window->top << ' ' << window->width
                      << ' ' << window->height << '\n';
            return 0;
        }
        Sleep(0.05);
    } while (Now() < end);
    std::cerr << "watch_screen: no window is titled " << title << '\n';
    return 1;
}

int Record(unsigned long id, const std::string& folder, double seconds, double step) {
    const Screen screen;
    std::ofstream index(folder + "/index.tsv");
    index << std::fixed << std::setprecision(4);
    const double begin = Now();
    for (int number = 0; number * step <= seconds; ++number) {
        Sleep(std::max(0.0, begin + number * step - Now()));
        const auto window = screen.Locate(id);
        if (!window) {
            std::cerr << "watch_screen: the window is gone after " << Now() - begin << " s\n";
            return 1;
        }
        // The time before and after: the picture belongs to the middle.
        const double before = Now();
        const auto picture = screen.Grab(window->left, window->top, window->width, window->height);
        const double taken = (before + Now()) / 2;
        if (!picture) {
            std::cerr << "watch_screen: the window is not wholly on the screen\n";
            return 1;
        }
        const std::string name = std::to_string(number) + ".bgra";
        std::ofstream out(folder + "/" + name, std::ios::binary);
        out.write(reinterpret_cast<const char*>(picture->bytes.data()),
                  static_cast<std::streamsize>(picture->bytes.size()));
        index << taken << '\t' << picture->width << '\t' << picture->height << '\t' << name << '\n';
        if (!out.flush() || !index.flush()) {
            throw std::runtime_error("cannot write to " + folder);
        }
    }
    return 0;
}

int Run(const std::vector<std::string>& words) {
    if (words.size() == 4 && words[1] == "find") {
        return Find(words[2], std::stod(words[3]));
    }
    if (words.size() == 6 && words[1] == "record") {
        return Record(std::stoul(words[2], nullptr, 0), words[3], std::stod(words[4]), std::stod(words[5]));
    }
    if (words.size() == 3 && words[1] == "close") {
        Screen().AskToClose(std::stoul(words[2], nullptr, 0));
        return 0;
    }
    std::cerr << "usage: watch_screen find TITLE SECONDS | record ID FOLDER SECONDS STEP | close ID\n";
    return 2;
}

} // namespace
} // namespace brindlecast::testing

int main(int argc, char** argv) {
    try {
        const std::span<char* const> arguments(argv, static_cast<std::size_t>(argc));
        return brindlecast::testing::Run({arguments.begin(), arguments.end()});
    } catch (const std::exception& error) {
        std::cerr << "watch_screen: " << error.what() << '\n';
        return 1;
    }
}
