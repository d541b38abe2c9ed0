// stamp_sound FILE: writes the s16le stereo sound of 48000 Hz that arrives at standard input to FILE, and the
// time of its first sample (seconds since 1970) to FILE.start. At the end of input it writes that time again,
// better known, and makes FILE.end.
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iomanip>
#include <limits>
#include <stdexcept>
#include <string>

namespace {

constexpr double kBytesPerSecond = 48000.0 * 4;

double Now() {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

// Whole or not at all, for readers who poll.
void WriteStart(const std::string& file, double start) {
    const std::string part = file + ".start.part";
    {
        std::ofstream out(part);
        out << std::fixed << std::setprecision(4) << start << '\n';
        if (!out.flush()) {
            throw std::runtime_error("cannot write " + part);
        }
    }
    if (std::rename(part.c_str(), (file + ".start").c_str()) != 0) {
        throw std::runtime_error("cannot rename " + part);
    }
}

void Record(const std::string& file) {
    std::ofstream out(file, std::ios::binary);
    std::array<char, 16384> buffer;
    double start = std::numeric_limits<double>::max();
    double received = 0;
    // Every arrival is late by some delay; the least late one tells best when the first sample was played.
    for (ssize_t count = 0; (count = read(STDIN_FILENO, buffer.data(), buffer.size())) != 0;) {
        if (count < 0) {
            throw std::runtime_error("cannot read standard input");
        }
        const bool first = received == 0;
        received += static_cast<double>(count);
        start = std::min(start, Now() - received / kBytesPerSecond);
        if (!out.write(buffer.data(), count) || !out.flush()) {
            throw std::runtime_error("cannot write " + file);
        }
        if (first) {
            WriteStart(file, start);
        }
    }
    if (received > 0) {
        WriteStart(file, start);
    }
    if (!std::ofstream(file + ".end")) {
        throw std::runtime_error("cannot write " + file + ".end");
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: stamp_sound FILE\n", stderr);
        return 2;
    }
    try {
        Record(argv[1]);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "stamp_sound: %s\n", error.what());
        return 1;
    }
}
